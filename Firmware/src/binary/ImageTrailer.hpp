// SPDX-License-Identifier: MIT
/// @file ImageTrailer.hpp
/// The trailer of an image, from the file to its fields.
#pragma once

#include "AaGpuXml.hpp"

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace vel::hwapi::firmware {

/// What stands in a trailer; texts are valid as long as its document.
struct TrailerFields {
    std::uint32_t version;
    std::uint32_t crc32;
    std::uint32_t length;
    const char* targetUnit;
    const char* swId;
    const char* swVersion;
    const char* buildTime;
};

/// Reads the children of the element "trailer".
TrailerFields readTrailerFields(const AaGpuXmlNode& trailer);

/// 1. read() brings the text into memory. 2. parse() makes a document of it and frees the text. 3. node() is the
/// element "trailer". The document goes with this object.
class ImageTrailer {
public:
    /// @return the result of get_trailer()
    std::uint32_t read(const char* fileName);
    /// @return false when the text is not well-formed XML up to its first NUL, or there is no memory.
    bool parse();
    /// The parser's word on the text, an #EAaGpuXmlResult; #AA_GPU_XML_NO_MEMORY also when the text did not get as far
    /// as the parser.
    int parserResult() const { return m_parserResult; }

    /// Where it begins: how long the payload is.
    std::uint32_t beginning() const { return m_beginning; }
    /// Null when there is no such element.
    const AaGpuXmlNode* node() const;

private:
    struct Freer {
        void operator()(char* text) const { std::free(text); }
    };

    std::uint32_t m_beginning = 0;
    std::unique_ptr<char, Freer> m_text;
    std::unique_ptr<AaGpuXmlNode> m_root;
    int m_parserResult = AA_GPU_XML_OK;
};

} // namespace vel::hwapi::firmware
