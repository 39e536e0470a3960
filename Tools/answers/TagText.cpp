// SPDX-License-Identifier: MIT
#include "answers/TagText.hpp"

#include "Outcome.hpp"
#include "text/Table.hpp"
#include "text/Utf8.hpp"

#include <algorithm>
#include <array>
#include <cstring>

namespace dorn::tool {
namespace {

constexpr std::array<const char*, 4> formNames{"text", "u16", "u32", "hex"};
constexpr std::size_t longestInTable = 64;

std::string charactersOf(BytesView value)
{
    return {reinterpret_cast<const char*>(value.data()), value.size()};
}

/// Bytes that follow the first one of a UTF-8 character; 4 for a byte that cannot be the first.
std::size_t followersOf(unsigned char first)
{
    if (first < 0x80) {
        return 0;
    }
    if (first >= 0xC2 && first <= 0xDF) {
        return 1;
    }
    if (first >= 0xE0 && first <= 0xEF) {
        return 2;
    }
    return first >= 0xF0 && first <= 0xF4 ? 3 : 4;
}

/// Excludes what UTF-8 could write in fewer bytes, surrogates, and what lies beyond Unicode.
bool isPossibleSecond(unsigned char first, unsigned char second)
{
    switch (first) {
    case 0xE0:
        return second >= 0xA0;
    case 0xED:
        return second <= 0x9F;
    case 0xF0:
        return second >= 0x90;
    case 0xF4:
        return second <= 0x8F;
    case 0xC2:
        return second >= 0xA0; // the others are control characters
    default:
        return true;
    }
}

/// The length of the character at the begin of @p text; 0 when it is a control character or no UTF-8.
std::size_t characterLength(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t followers = followersOf(first);
    if (first < 0x20 || first == 0x7F || followers >= text.size() || followers > 3) {
        return 0;
    }
    for (std::size_t at = 1; at <= followers; ++at) {
        if (!isInsideCharacter(text[at])) {
            return 0;
        }
    }
    const bool isPossible = followers == 0 || isPossibleSecond(first, static_cast<unsigned char>(text[1]));
    return isPossible ? followers + 1 : 0;
}

bool isText(BytesView value)
{
    const std::string characters = charactersOf(value);
    for (std::string_view rest = characters; !rest.empty();) {
        const std::size_t length = characterLength(rest);
        if (length == 0) {
            return false;
        }
        rest.remove_prefix(length);
    }
    return true;
}

/// What of a value is shown in a table; no character is cut in two.
BytesView beginOf(BytesView value)
{
    std::size_t size = std::min(value.size(), longestInTable);
    while (size < value.size() && size > 0 && isInsideCharacter(static_cast<char>(value[size]))) {
        --size;
    }
    return value.first(size);
}

std::uint32_t numberOf(BytesView value, TagForm form)
{
    const std::size_t size = form == TagForm::U16 ? sizeof(std::uint16_t) : sizeof(std::uint32_t);
    if (value.size() != size) {
        throw Failure("its value has " + std::to_string(value.size()) + " bytes; a " + formName(form) + " has " +
                      std::to_string(size));
    }
    if (form == TagForm::U16) {
        std::uint16_t number = 0;
        std::memcpy(&number, value.data(), sizeof number);
        return number;
    }
    std::uint32_t number = 0;
    std::memcpy(&number, value.data(), sizeof number);
    return number;
}

} // namespace

const char* formName(TagForm form)
{
    return formNames[static_cast<std::size_t>(form)];
}

TagForm parseForm(const std::string& what, const std::string& name)
{
    const auto found = std::find(formNames.begin(), formNames.end(), name);
    if (found == formNames.end()) {
        throw UsageError(what + ": '" + name + "' is none of text, u16, u32, hex");
    }
    return static_cast<TagForm>(found - formNames.begin());
}

TagForm formOf(BytesView value)
{
    if (isText(value)) {
        return TagForm::Text;
    }
    switch (value.size()) {
    case sizeof(std::uint16_t):
        return TagForm::U16;
    case sizeof(std::uint32_t):
        return TagForm::U32;
    default:
        return TagForm::Hex;
    }
}

std::string tagValueText(BytesView value, TagForm form)
{
    switch (form) {
    case TagForm::Text:
        return printable(charactersOf(value));
    case TagForm::Hex:
        return hexText(value);
    default:
        return std::to_string(numberOf(value, form));
    }
}

Bytes numberBytes(std::uint32_t value, TagForm form)
{
    Bytes bytes(form == TagForm::U16 ? sizeof(std::uint16_t) : sizeof(std::uint32_t));
    if (form == TagForm::U16) {
        const auto number = static_cast<std::uint16_t>(value);
        std::memcpy(bytes.data(), &number, sizeof number);
    } else {
        std::memcpy(bytes.data(), &value, sizeof value);
    }
    return bytes;
}

std::string describedValue(BytesView value)
{
    const TagForm form = formOf(value);
    const std::string text = tagValueText(value, form);
    return value.empty() ? "empty" : text + " (" + formName(form) + ")";
}

std::string tagTable(const std::vector<host::Tag>& tags, const Console& console)
{
    Table table({"TAG", "TYPE", "VALUE"});
    for (const host::Tag& tag : tags) {
        const BytesView value(tag.value);
        const TagForm form = formOf(value);
        std::string text = tagValueText(beginOf(value), form);
        if (value.size() > longestInTable) {
            text += "... (" + std::to_string(value.size()) + " bytes)";
        }
        table.add({printable(tag.name), formName(form), text});
    }
    return table.text(console);
}

std::string tagNames(const std::vector<host::Tag>& tags)
{
    std::string text;
    for (const host::Tag& tag : tags) {
        text += printable(tag.name) + "\n";
    }
    return text;
}

Json tagValueJson(BytesView value)
{
    const TagForm form = formOf(value);
    Json shown;
    switch (form) {
    case TagForm::Text:
        shown = charactersOf(value);
        break;
    case TagForm::Hex:
        shown = hexText(value);
        break;
    default:
        shown = numberOf(value, form);
    }
    return {{"type", formName(form)}, {"value", shown}, {"hex", hexText(value)}};
}

Json tagJson(const host::Tag& tag)
{
    Json json{{"name", tag.name}};
    json.update(tagValueJson(tag.value));
    return json;
}

} // namespace dorn::tool
