// SPDX-License-Identifier: MIT
#include "AaGpuXml.hpp"
#include "config/TagFile.hpp"
#include "config/TagLimits.hpp"
#include "xml/XmlDocument.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace dorn::host {
namespace {

/// Why an entry cannot be used.
class BadEntry : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

constexpr std::string_view whiteSpace = " \t\r\n";

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(whiteSpace);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(whiteSpace) + 1 - begin);
}

/// A text from the file in a form that fits into a log line.
std::string quoted(std::string_view text)
{
    constexpr std::size_t longest = 60;
    std::string result(text.substr(0, longest));
    std::replace_if(
        result.begin(), result.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
    return "'" + result + (text.size() > longest ? "...'" : "'");
}

TagBytes bytesOf(std::string_view text)
{
    const auto* const begin = reinterpret_cast<const std::byte*>(text.data());
    return {begin, begin + text.size()};
}

/// A number in the byte order and size of the tag's type.
template <class Number>
TagBytes numberOf(std::string_view text)
{
    std::string_view digits = trimmed(text);
    const bool isHex = digits.starts_with("0x") || digits.starts_with("0X");
    digits.remove_prefix(isHex ? 2 : 0);
    Number number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, number, isHex ? 16 : 10);
    if (error != std::errc{} || rest != end) {
        throw BadEntry(quoted(text) + " is not a number from 0 to " +
                       std::to_string(std::numeric_limits<Number>::max()));
    }
    TagBytes bytes(sizeof number);
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

int hexDigit(char c)
{
    constexpr std::string_view digits = "0123456789abcdef";
    const std::size_t value = digits.find(c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

TagBytes hexBytesOf(std::string_view text)
{
    TagBytes bytes;
    for (std::size_t index = 0; index < text.size();) {
        if (whiteSpace.find(text[index]) != std::string_view::npos) {
            ++index;
            continue;
        }
        const int high = hexDigit(text[index]);
        const int low = index + 1 < text.size() ? hexDigit(text[index + 1]) : -1;
        if (high < 0 || low < 0) {
            throw BadEntry(quoted(text) + " is not a row of bytes of two hexadecimal digits each");
        }
        bytes.push_back(static_cast<std::byte>(high << 4 | low));
        index += 2;
    }
    return bytes;
}

/// The types that an entry may have.
struct TagType {
    std::string_view name;
    TagBytes (*read)(std::string_view text);
};
constexpr std::array<TagType, 5> tagTypes{{{"string", bytesOf},
                                           {"u8", numberOf<std::uint8_t>},
                                           {"u16", numberOf<std::uint16_t>},
                                           {"u32", numberOf<std::uint32_t>},
                                           {"bytes", hexBytesOf}}};

const TagType& tagTypeOf(std::string_view name)
{
    const auto* const type =
        std::find_if(tagTypes.begin(), tagTypes.end(), [name](const TagType& known) { return known.name == name; });
    if (type == tagTypes.end()) {
        throw BadEntry("type " + quoted(name) + " is none of string, u8, u16, u32, bytes");
    }
    return *type;
}

/// An entry's attributes; it may have no other ones, and no elements inside.
struct Attributes {
    std::optional<std::string> name;
    std::string type = "string";
};

Attributes attributesOf(const AaGpuXmlNode& element)
{
    Attributes attributes;
    for (auto child = element.AaGpuXmlGetFirstChildren(); child != element.AaGpuXmlGetLastChildren(); ++child) {
        const std::string key = (*child)->AaGpuXmlGetName();
        if ((*child)->AaGpuXmlGetType() != AA_GPU_XML_ATTRIBUTE_NODE) {
            throw BadEntry("there is an element " + quoted(key) + " inside it");
        }
        if (key == "name") {
            attributes.name = (*child)->AaGpuXmlGetValue();
        } else if (key == "type") {
            attributes.type = (*child)->AaGpuXmlGetValue();
        } else {
            throw BadEntry("attribute " + quoted(key) + " is not known");
        }
    }
    return attributes;
}

Tag readEntry(const AaGpuXmlNode& element)
{
    const Attributes attributes = attributesOf(element);
    if (!attributes.name) {
        throw BadEntry("it has no name");
    }
    if (attributes.name->empty() || attributes.name->size() > maximumTagName) {
        throw BadEntry("its name has " + std::to_string(attributes.name->size()) + " bytes; 1 to " +
                       std::to_string(maximumTagName) + " are possible");
    }
    try {
        Tag tag{*attributes.name, tagTypeOf(attributes.type).read(element.AaGpuXmlGetValue())};
        if (tag.value.size() > maximumTagValue) {
            throw BadEntry("its value has " + std::to_string(tag.value.size()) + " bytes; at most " +
                           std::to_string(maximumTagValue) + " are possible");
        }
        return tag;
    } catch (const BadEntry& reason) {
        throw BadEntry("tag " + quoted(*attributes.name) + ": " + reason.what());
    }
}

void readElement(const AaGpuXmlNode& element, TagFileContent& content)
{
    const std::uint32_t line = element.AaGpuXmlGetLine();
    const std::string_view name = element.AaGpuXmlGetName();
    if (name != "tag") {
        content.complaints.push_back({line, "element " + quoted(name) + " is passed over: only 'tag' is known"});
        return;
    }
    try {
        content.entries.push_back({line, readEntry(element)});
    } catch (const BadEntry& reason) {
        content.complaints.push_back({line, std::string("entry is passed over: ") + reason.what()});
    }
}

void readDocumentElement(const AaGpuXmlNode& element, TagFileContent& content)
{
    const std::uint32_t line = element.AaGpuXmlGetLine();
    if (std::string_view(element.AaGpuXmlGetName()) != "dorn") {
        content.complaints.push_back(
            {line, "file is passed over: its element is " + quoted(element.AaGpuXmlGetName()) + ", not 'dorn'"});
        return;
    }
    if (const std::string_view text = trimmed(element.AaGpuXmlGetValue()); !text.empty()) {
        content.complaints.push_back({line, "text " + quoted(text) + " between the entries is passed over"});
    }
    for (auto child = element.AaGpuXmlGetFirstChildren(); child != element.AaGpuXmlGetLastChildren(); ++child) {
        if ((*child)->AaGpuXmlGetType() == AA_GPU_XML_ELEMENT_NODE) {
            readElement(**child, content);
        } else {
            content.complaints.push_back({line, "attribute " + quoted((*child)->AaGpuXmlGetName()) + " is not known"});
        }
    }
}

} // namespace

TagFileContent parseTagFile(const std::string& text)
{
    TagFileContent content;
    const XmlDocument document = parseXml(text, {}, XmlFaultPolicy::GiveWhatStandsBefore);
    if (document.root) {
        readDocumentElement(**document.root->AaGpuXmlGetFirstChildren(), content);
    }
    if (document.fault) {
        content.complaints.push_back({document.fault->line, "file is passed over from column " +
                                                                std::to_string(document.fault->column) +
                                                                " on: " + document.fault->reason});
    }
    return content;
}

} // namespace dorn::host
