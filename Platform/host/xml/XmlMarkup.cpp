// SPDX-License-Identifier: MIT
#include "xml/XmlMarkup.hpp"

#include "xml/XmlCharacters.hpp"

#include <algorithm>
#include <string_view>

namespace dorn::host {
namespace {

constexpr const char* wrongInstruction = "a declaration or processing instruction is wrong or does not end";
constexpr const char* wrongComment = "a comment is wrong or does not end";

const char* skipEquals(const char* at)
{
    return skipXmlBlanks(expectXml(skipXmlBlanks(at), "=", wrongInstruction));
}

/// Steps over a text in quotes, which has to be as @p isRight wants it.
template <class Condition>
const char* skipQuoted(const char* at, Condition isRight)
{
    const char* const end = skipXmlLiteral(at, wrongInstruction);
    if (!isRight(std::string_view(at + 1, static_cast<std::size_t>(end - at - 2)))) {
        throw XmlMarkupFault{at, wrongInstruction};
    }
    return end;
}

bool isVersion(std::string_view text)
{
    return text.size() > 2 && text.starts_with("1.") &&
           text.find_first_not_of("0123456789", 2) == std::string_view::npos;
}

bool isEncoding(std::string_view text)
{
    return !text.empty() && text.front() != '_' && isXmlByte(text.front(), NameStartByte) &&
           std::all_of(text.begin(), text.end(), [](char c) { return c != ':' && isXmlByte(c, NameByte); });
}

bool isYesOrNo(std::string_view text)
{
    return text == "yes" || text == "no";
}

/// Whether a processing instruction may not have this name.
bool isReserved(std::string_view target)
{
    const auto isLetter = [&target](std::size_t index, char letter) { return (target[index] | 0x20) == letter; };
    return target.size() == 3 && isLetter(0, 'x') && isLetter(1, 'm') && isLetter(2, 'l');
}

} // namespace

const char* skipXmlDeclaration(const char* at)
{
    constexpr std::string_view begin = "<?xml";
    constexpr std::string_view version = "version";
    constexpr std::string_view encoding = "encoding";
    constexpr std::string_view standalone = "standalone";
    at = expectXmlBlanks(at + begin.size());
    at = skipQuoted(skipEquals(expectXml(at, version, wrongInstruction)), isVersion);
    const char* next = skipXmlBlanks(at);
    if (next != at && isXmlAt(next, encoding)) {
        at = skipQuoted(skipEquals(next + encoding.size()), isEncoding);
        next = skipXmlBlanks(at);
    }
    if (next != at && isXmlAt(next, standalone)) {
        next = skipXmlBlanks(skipQuoted(skipEquals(next + standalone.size()), isYesOrNo));
    }
    return expectXml(next, "?>", wrongInstruction);
}

const char* skipXmlComment(const char* at)
{
    constexpr std::string_view begin = "<!--";
    return expectXml(skipXmlUntil(at + begin.size(), "--", wrongComment), ">", wrongComment);
}

const char* skipXmlInstruction(const char* at)
{
    const char* const target = at + 2;
    const char* const end = skipXmlName(target, wrongInstruction);
    if (isReserved(std::string_view(target, static_cast<std::size_t>(end - target)))) {
        throw XmlMarkupFault{at, wrongInstruction};
    }
    return isXmlAt(end, "?>") ? end + 2 : skipXmlUntil(expectXmlBlanks(end), "?>", wrongInstruction);
}

const char* skipXmlMisc(const char* at)
{
    for (;;) {
        at = skipXmlBlanks(at);
        if (isXmlAt(at, "<!--")) {
            at = skipXmlComment(at);
        } else if (isXmlAt(at, "<?")) {
            at = skipXmlInstruction(at);
        } else {
            return at;
        }
    }
}

const char* skipXmlLiteral(const char* at, const char* reason)
{
    if (*at != '"' && *at != '\'') {
        throw XmlMarkupFault{at, reason};
    }
    return skipXmlUntil(at + 1, std::string_view(at, 1), reason);
}

} // namespace dorn::host
