// SPDX-License-Identifier: MIT
#include "dsp.h"

#include "AaFile.h"
#include "AaGpuXml.hpp"
#include "AaSysLog.h"
#include "PlatformBlock.hpp"
#include "rad/ERadHwapi.h"

#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

using vel::hwapi::common::allocateArray;
using vel::hwapi::common::PlatformBlock;

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

/// What has come of a text.
struct Parsed {
    std::unique_ptr<AaGpuXmlNode> above; ///< what stands above the document element; null when the text is no XML
    EAaGpuXmlResult result;
};

Parsed parse(std::string_view text)
try {
    AaGpuXmlParser parser(0);
    std::unique_ptr<AaGpuXmlNode> above(parser.AaGpuXmlParse(std::string(text), ""));
    return {std::move(above), parser.AaGpuXmlLastResult()};
} catch (const std::bad_alloc&) {
    return {nullptr, AA_GPU_XML_NO_MEMORY};
}

std::nullopt_t readFailed(const char* name)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_PrintDspXml, "File '%s' read failed", name);
    return std::nullopt;
}

/// Parses a file and gives it back, with the buffer, before it returns. Nothing when there is no text to parse.
std::optional<Parsed> parseFile(const char* name)
{
    const OwnedFile file = open(name);
    if (!file) {
        return std::nullopt;
    }
    const std::int32_t size = AaFileGetSize(file.get());
    if (size < 0) {
        return readFailed(name);
    }
    const auto length = static_cast<std::uint32_t>(size);
    const PlatformBlock<char[]> content(allocateArray<char>(length));
    if (!content) {
        return std::nullopt;
    }
    if (AaFileRead(file.get(), content.get(), length) < size) {
        return readFailed(name);
    }
    return parse({content.get(), length});
}

} // namespace

TBoolean ApiReadDspXml(const char* name, SStartUpGlobalParameters* configParams, SDspAddressParams* addrParams)
{
    const std::optional<Parsed> parsed = name ? parseFile(name) : std::nullopt;
    if (!parsed) {
        return 0;
    }
    if (!parsed->above) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_PrintDspXml, "XML parsing failed %d",
                       static_cast<int>(parsed->result));
        return 0;
    }
    return ApiParseDspXml(*parsed->above->AaGpuXmlGetFirstChildren(), configParams, addrParams);
}
