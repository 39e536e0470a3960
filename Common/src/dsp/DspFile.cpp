// SPDX-License-Identifier: MIT
#include "dsp.h"

#include "AaFile.h"
#include "AaGpuXml.hpp"
#include "AaSysLog.h"
#include "rad/ERadHwapi.h"

#include <memory>
#include <new>
#include <optional>
#include <string>

namespace {

struct FileCloser {
    void operator()(AaFile* file) const { AaFileClose(file); }
};
using OwnedFile = std::unique_ptr<AaFile, FileCloser>;

OwnedFile open(const char* name)
{
    OwnedFile file(AaFileOpen(name, "r"));
    if (file) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_PrintDspXml, "File '%s' open successful", name);
    } else {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_PrintDspXml, "File '%s' open failed", name);
    }
    return file;
}

/// The whole content of a file; nothing when it cannot be had.
std::optional<std::string> contentOf(AaFile* file)
try {
    const std::int32_t size = AaFileGetSize(file);
    if (size < 0) {
        return std::nullopt;
    }
    std::string content(static_cast<std::size_t>(size), '\0');
    if (AaFileRead(file, content.data(), static_cast<std::uint32_t>(size)) < size) {
        return std::nullopt;
    }
    return content;
} catch (const std::bad_alloc&) {
    return std::nullopt;
}

/// What stands above the document element; null when the text is no XML.
std::unique_ptr<AaGpuXmlNode> parse(const std::string& text)
{
    AaGpuXmlParser parser(0);
    std::unique_ptr<AaGpuXmlNode> above(parser.AaGpuXmlParse(text, ""));
    if (!above) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_PrintDspXml, "XML parsing failed %d",
                       static_cast<int>(parser.AaGpuXmlLastResult()));
    }
    return above;
}

std::unique_ptr<AaGpuXmlNode> read(const char* name)
{
    const OwnedFile file = open(name);
    if (!file) {
        return nullptr;
    }
    const std::optional<std::string> content = contentOf(file.get());
    if (!content) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_PrintDspXml, "File '%s' read failed", name);
        return nullptr;
    }
    return parse(*content);
}

} // namespace

TBoolean ApiReadDspXml(const char* name, SStartUpGlobalParameters* configParams, SDspAddressParams* addrParams)
{
    if (!name) {
        return 0;
    }
    const std::unique_ptr<AaGpuXmlNode> above = read(name);
    if (!above) {
        return 0;
    }
    return ApiParseDspXml(*above->AaGpuXmlGetFirstChildren(), configParams, addrParams);
}
