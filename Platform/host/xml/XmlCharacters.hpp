// SPDX-License-Identifier: MIT
/// @file XmlCharacters.hpp
/// Characters, names and references of XML 1.0 in a UTF-8 text.
///
/// The functions step through a text that has a zero byte behind its end. Each begins at `at`, returns the place behind
/// what it has read, and throws XmlMarkupFault when that is not there as XML wants it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace dorn::host {

/// A text is not taken, and where.
struct XmlMarkupFault {
    enum class Kind {
        NotWellFormed,
        UnknownEntity, ///< not well-formed, unless it is declared
        NotSupported
    };

    const char* at;
    const char* reason;
    Kind kind = Kind::NotWellFormed;
};

/// What a byte can be part of.
enum XmlByteUse : std::uint8_t {
    BlankByte = 1,
    NameStartByte = 2,
    NameByte = 4,
    PlainByte = 8,       ///< a character of its own that is allowed everywhere
    PlainTextByte = 16,  ///< and means nothing but itself in the content of an element
    PlainValueByte = 32, ///< and means nothing but itself in the value of an attribute
    PublicIdByte = 64    ///< and is allowed in a public identifier
};

constexpr std::array<std::uint8_t, 256> xmlByteUses = [] {
    std::array<std::uint8_t, 256> uses{};
    const auto add = [&uses](std::string_view bytes, int use) {
        for (const char byte : bytes) {
            uses[static_cast<unsigned char>(byte)] =
                static_cast<std::uint8_t>(uses[static_cast<unsigned char>(byte)] | use);
        }
    };
    for (unsigned byte = 0x20; byte < 0x80; ++byte) {
        uses[byte] = PlainByte | PlainTextByte | PlainValueByte;
    }
    add("\t\n\r", PlainByte);
    add("\t\n", PlainTextByte);
    for (const char byte : std::string_view("<&]")) {
        uses[static_cast<unsigned char>(byte)] &= static_cast<std::uint8_t>(~PlainTextByte);
    }
    for (const char byte : std::string_view("<&\"'")) {
        uses[static_cast<unsigned char>(byte)] &= static_cast<std::uint8_t>(~PlainValueByte);
    }
    add(" \t\n\r", BlankByte);
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    constexpr std::string_view digits = "0123456789";
    add(letters, NameStartByte | NameByte | PublicIdByte);
    add("_:", NameStartByte | NameByte | PublicIdByte);
    add(digits, NameByte | PublicIdByte);
    add("-.", NameByte | PublicIdByte);
    add(" \r\n'()+,/=?;!*#@$%", PublicIdByte);
    return uses;
}();

inline bool isXmlByte(char byte, int uses)
{
    return (xmlByteUses[static_cast<unsigned char>(byte)] & uses) != 0;
}

/// Steps over white space, if there is any.
inline const char* skipXmlBlanks(const char* at)
{
    while (isXmlByte(*at, BlankByte)) {
        ++at;
    }
    return at;
}

/// Steps over white space of which there has to be some.
const char* expectXmlBlanks(const char* at);

/// Steps over @p text, which has to stand there.
const char* expectXml(const char* at, std::string_view text, const char* reason);

/// Whether @p text stands there.
bool isXmlAt(const char* at, std::string_view text);

/// Steps over a character that XML allows.
const char* skipXmlCharacter(const char* at);

/// Steps over characters until @p closing and over that.
const char* skipXmlUntil(const char* at, std::string_view closing, const char* reason);

/// Steps over the rest of a name, from any of its characters on; there may be none left.
const char* skipXmlNameRest(const char* at);

/// Steps over a name whose first character is none of US-ASCII.
const char* skipXmlNameBeyondAscii(const char* at, const char* reason);

/// Steps over a name.
inline const char* skipXmlName(const char* at, const char* reason)
{
    if (!isXmlByte(*at, NameStartByte)) {
        return skipXmlNameBeyondAscii(at, reason);
    }
    const char* place = at + 1;
    while (isXmlByte(*place, NameByte)) {
        ++place;
    }
    return static_cast<unsigned char>(*place) < 0x80 ? place : skipXmlNameRest(place);
}

/// Steps over a name that may begin with a digit, a dash or a dot.
const char* skipXmlNameToken(const char* at, const char* reason);

/// Reads a reference to a character or to one of the five entities that XML defines.
/// @param at its ampersand
/// @param[in,out] to the character is appended here
const char* readXmlReference(const char* at, std::string& to);

/// Steps over a reference that could be read.
const char* checkXmlReference(const char* at);

/// Steps over a reference to a character or to any entity.
const char* skipXmlReference(const char* at);

} // namespace dorn::host
