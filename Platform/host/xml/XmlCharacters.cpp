// SPDX-License-Identifier: MIT
#include "xml/XmlCharacters.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace dorn::host {
namespace {

struct Range {
    char32_t first;
    char32_t last;
};

/// What names begin with, beyond US-ASCII.
constexpr auto nameStarts = std::to_array<Range>({{0xC0, 0xD6},
                                                  {0xD8, 0xF6},
                                                  {0xF8, 0x2FF},
                                                  {0x370, 0x37D},
                                                  {0x37F, 0x1FFF},
                                                  {0x200C, 0x200D},
                                                  {0x2070, 0x218F},
                                                  {0x2C00, 0x2FEF},
                                                  {0x3001, 0xD7FF},
                                                  {0xF900, 0xFDCF},
                                                  {0xFDF0, 0xFFFD},
                                                  {0x10000, 0xEFFFF}});
static_assert(nameStarts.size() == 12);
/// What else names consist of.
constexpr auto nameRests = std::to_array<Range>({{0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}});
static_assert(nameRests.size() == 3);

template <std::size_t count>
bool isIn(const std::array<Range, count>& ranges, char32_t code)
{
    return std::any_of(ranges.begin(), ranges.end(),
                       [code](const Range& range) { return code >= range.first && code <= range.last; });
}

struct Entity {
    std::string_view reference;
    char character;
};
constexpr auto entities =
    std::to_array<Entity>({{"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}});
static_assert(entities.size() == 5);

constexpr bool isXmlCode(char32_t code)
{
    return code == '\t' || code == '\n' || code == '\r' || (code >= 0x20 && code <= 0xD7FF) ||
           (code >= 0xE000 && code <= 0xFFFD) || (code >= 0x10000 && code <= 0x10FFFF);
}

struct Character {
    char32_t code;
    int size; ///< bytes in UTF-8; 0 when there are none of a character
};

/// Form of a sequence of bytes in UTF-8, by its first byte.
struct Sequence {
    unsigned char mask;
    unsigned char lead;
    int size;
    char32_t least; ///< a character below takes a shorter sequence
};
constexpr auto sequences =
    std::to_array<Sequence>({{0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}});

/// The character that begins at @p at with a byte beyond US-ASCII.
Character decode(const char* at)
{
    const auto byte = [at](int index) { return static_cast<unsigned char>(at[index]); };
    for (const Sequence& sequence : sequences) {
        if ((byte(0) & sequence.mask) != sequence.lead) {
            continue;
        }
        char32_t code = byte(0) & static_cast<unsigned char>(~sequence.mask);
        for (int index = 1; index < sequence.size; ++index) {
            if ((byte(index) & 0xC0U) != 0x80U) {
                return {0, 0};
            }
            code = code << 6U | (byte(index) & 0x3FU);
        }
        return {code, code >= sequence.least ? sequence.size : 0};
    }
    return {0, 0};
}

void appendUtf8(std::string& to, char32_t code)
{
    const auto append = [&to](char32_t byte) { to += static_cast<char>(byte); };
    if (code < 0x80) {
        append(code);
        return;
    }
    if (code < 0x800) {
        append(0xC0U | code >> 6U);
    } else {
        if (code < 0x10000) {
            append(0xE0U | code >> 12U);
        } else {
            append(0xF0U | code >> 18U);
            append(0x80U | (code >> 12U & 0x3FU));
        }
        append(0x80U | (code >> 6U & 0x3FU));
    }
    append(0x80U | (code & 0x3FU));
}

/// Bytes of the character there if names may have it, otherwise 0.
int sizeInName(const char* at, int use)
{
    if (static_cast<unsigned char>(*at) < 0x80) {
        return isXmlByte(*at, use) ? 1 : 0;
    }
    const Character character = decode(at);
    const bool isAllowed = isIn(nameStarts, character.code) || (use == NameByte && isIn(nameRests, character.code));
    return isAllowed ? character.size : 0;
}

/// The value of a digit; 16 or more when it is none of a hexadecimal number.
unsigned valueOfDigit(char digit)
{
    constexpr std::string_view digits = "0123456789abcdef0123456789ABCDEF";
    const std::size_t at = digits.find(digit);
    return at == std::string_view::npos ? 16U : static_cast<unsigned>(at % 16);
}

/// Reads a character by its number, from "&#" on.
const char* readCharacterReference(const char* at, std::string& to)
{
    const bool isHexadecimal = at[2] == 'x';
    const unsigned base = isHexadecimal ? 16 : 10;
    const char* const begin = at + (isHexadecimal ? 3 : 2);
    const char* digit = begin;
    char32_t code = 0;
    for (; valueOfDigit(*digit) < base; ++digit) {
        code = std::min<char32_t>(code * base + valueOfDigit(*digit), 0x110000);
    }
    if (digit == begin || *digit != ';') {
        throw XmlMarkupFault{at, "a reference to a character is wrong or does not end"};
    }
    if (!isXmlCode(code)) {
        throw XmlMarkupFault{at, "a reference leads to what is no character of XML"};
    }
    appendUtf8(to, code);
    return digit + 1;
}

} // namespace

const char* expectXmlBlanks(const char* at)
{
    if (!isXmlByte(*at, BlankByte)) {
        throw XmlMarkupFault{at, "white space is missing"};
    }
    return skipXmlBlanks(at);
}

bool isXmlAt(const char* at, std::string_view text)
{
    return std::strncmp(at, text.data(), text.size()) == 0;
}

const char* expectXml(const char* at, std::string_view text, const char* reason)
{
    if (!isXmlAt(at, text)) {
        throw XmlMarkupFault{at, reason};
    }
    return at + text.size();
}

const char* skipXmlCharacter(const char* at)
{
    if (isXmlByte(*at, PlainByte)) {
        return at + 1;
    }
    if (static_cast<unsigned char>(*at) < 0x80) {
        throw XmlMarkupFault{at, "there is a control character"};
    }
    const Character character = decode(at);
    if (character.size == 0) {
        throw XmlMarkupFault{at, "there are bytes that are not UTF-8"};
    }
    if (!isXmlCode(character.code)) {
        throw XmlMarkupFault{at, "there is a character that XML does not allow"};
    }
    return at + character.size;
}

const char* skipXmlUntil(const char* at, std::string_view closing, const char* reason)
{
    const char* place = at;
    while (!isXmlAt(place, closing)) {
        if (*place == '\0') {
            throw XmlMarkupFault{place, reason};
        }
        place = skipXmlCharacter(place);
    }
    return place + closing.size();
}

const char* skipXmlNameRest(const char* at)
{
    while (const int size = sizeInName(at, NameByte)) {
        at += size;
    }
    return at;
}

const char* skipXmlNameBeyondAscii(const char* at, const char* reason)
{
    const int first = sizeInName(at, NameStartByte);
    if (first == 0) {
        throw XmlMarkupFault{at, reason};
    }
    return skipXmlNameRest(at + first);
}

const char* skipXmlNameToken(const char* at, const char* reason)
{
    const char* const end = skipXmlNameRest(at);
    if (end == at) {
        throw XmlMarkupFault{at, reason};
    }
    return end;
}

const char* readXmlReference(const char* at, std::string& to)
{
    if (at[1] == '#') {
        return readCharacterReference(at, to);
    }
    for (const Entity& entity : entities) {
        if (isXmlAt(at, entity.reference)) {
            to += entity.character;
            return at + entity.reference.size();
        }
    }
    skipXmlReference(at);
    throw XmlMarkupFault{at, "there is a reference to an unknown entity", XmlMarkupFault::Kind::UnknownEntity};
}

const char* checkXmlReference(const char* at)
{
    std::string read;
    return readXmlReference(at, read);
}

const char* skipXmlReference(const char* at)
{
    constexpr const char* reason = "'&' begins no reference, or one that does not end";
    if (at[1] == '#') {
        std::string character;
        return readCharacterReference(at, character);
    }
    return expectXml(skipXmlName(at + 1, reason), ";", reason);
}

} // namespace dorn::host
