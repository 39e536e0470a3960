// SPDX-License-Identifier: MIT
#include "binary/ImageTrailer.hpp"

#include "binary.h"

#include <new>
#include <string>

namespace vel::hwapi::firmware {

TrailerFields readTrailerFields(const AaGpuXmlNode& trailer)
{
    return {.version = getU32ValueFromNode(&trailer, "Version"),
            .crc32 = getU32ValueFromNode(&trailer, "Crc32"),
            .length = getU32ValueFromNode(&trailer, "Length"),
            .targetUnit = getStringValueFromNode(&trailer, "TargetUnit"),
            .swId = getStringValueFromNode(&trailer, "SwId"),
            .swVersion = getStringValueFromNode(&trailer, "SwVersion"),
            .buildTime = getStringValueFromNode(&trailer, "BuildTime")};
}

std::uint32_t ImageTrailer::read(const char* fileName)
{
    char* text = nullptr;
    const std::uint32_t result = get_trailer(fileName, &m_beginning, &text);
    m_text.reset(text);
    return result;
}

bool ImageTrailer::parse()
try {
    const std::string text = m_text.get();
    m_text.reset();
    AaGpuXmlParser parser(0);
    m_root.reset(parser.AaGpuXmlParsePrefix(text, ""));
    m_parserResult = parser.AaGpuXmlLastResult();
    return m_root != nullptr;
} catch (const std::bad_alloc&) {
    m_parserResult = AA_GPU_XML_NO_MEMORY; // the parser has not come to say so itself
    return false;
}

const AaGpuXmlNode* ImageTrailer::node() const
{
    return FindXmlTag(m_root.get(), "trailer");
}

} // namespace vel::hwapi::firmware
