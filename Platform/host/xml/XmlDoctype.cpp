// SPDX-License-Identifier: MIT
#include "xml/XmlDoctype.hpp"

#include "xml/XmlCharacters.hpp"
#include "xml/XmlMarkup.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace dorn::host {
namespace {

constexpr const char* wrong = "a document type declaration is wrong or does not end";

const char* skipName(const char* at)
{
    return skipXmlName(at, wrong);
}

const char* skipBlanksAndName(const char* at)
{
    return skipName(expectXmlBlanks(at));
}

/// Steps over the blanks and the '>' at the end of a declaration.
const char* skipEnd(const char* at)
{
    return expectXml(skipXmlBlanks(at), ">", wrong);
}

const char* skipPublicId(const char* at)
{
    const char* const end = skipXmlLiteral(at, wrong);
    if (!std::all_of(at + 1, end - 1, [](char c) { return isXmlByte(c, PublicIdByte); })) {
        throw XmlMarkupFault{at, wrong};
    }
    return end;
}

bool isExternalId(const char* at)
{
    return isXmlAt(at, "SYSTEM") || isXmlAt(at, "PUBLIC");
}

constexpr std::size_t externalIdWord = 6;

const char* skipExternalId(const char* at)
{
    const char* const literal = expectXmlBlanks(at + externalIdWord);
    return skipXmlLiteral(isXmlAt(at, "SYSTEM") ? literal : expectXmlBlanks(skipPublicId(literal)), wrong);
}

/// Steps over a list of what @p skipEntry steps over, from its first entry to its ')'.
template <class SkipEntry>
const char* skipChoices(const char* at, SkipEntry skipEntry)
{
    for (;;) {
        at = skipXmlBlanks(skipEntry(skipXmlBlanks(at)));
        if (*at == ')') {
            return at + 1;
        }
        at = expectXml(at, "|", wrong);
    }
}

const char* skipQuantifier(const char* at)
{
    return *at == '?' || *at == '*' || *at == '+' ? at + 1 : at;
}

/// Steps over what stands behind "(", blanks and "#PCDATA".
const char* skipMixed(const char* at)
{
    at = skipXmlBlanks(at);
    if (*at == ')') {
        return at[1] == '*' ? at + 2 : at + 1;
    }
    return expectXml(skipChoices(expectXml(at, "|", wrong), skipName), "*", wrong);
}

/// Steps over names in groups, from the first '(' on. How deep groups stand in each other costs no stack.
const char* skipGroups(const char* at)
{
    std::string separators; // of the groups that are open; blank while not known
    for (;;) {
        while (*at == '(') {
            separators += ' ';
            at = skipXmlBlanks(at + 1);
        }
        at = skipXmlBlanks(skipQuantifier(skipName(at)));
        while (*at == ')') {
            separators.pop_back();
            at = skipQuantifier(at + 1);
            if (separators.empty()) {
                return at;
            }
            at = skipXmlBlanks(at);
        }
        if ((*at != '|' && *at != ',') || (separators.back() != ' ' && separators.back() != *at)) {
            throw XmlMarkupFault{at, wrong};
        }
        separators.back() = *at;
        at = skipXmlBlanks(at + 1);
    }
}

const char* skipElement(const char* at)
{
    at = expectXmlBlanks(skipBlanksAndName(at));
    for (const std::string_view content : {"EMPTY", "ANY"}) {
        if (isXmlAt(at, content)) {
            return skipEnd(at + content.size());
        }
    }
    constexpr std::string_view text = "#PCDATA";
    const char* const first = skipXmlBlanks(expectXml(at, "(", wrong));
    return skipEnd(isXmlAt(first, text) ? skipMixed(first + text.size()) : skipGroups(at));
}

/// Longer words before those that they begin with.
constexpr std::array<std::string_view, 8> attributeTypes{"CDATA",    "IDREFS", "IDREF",    "ID",
                                                         "ENTITIES", "ENTITY", "NMTOKENS", "NMTOKEN"};

const char* skipAttributeType(const char* at)
{
    constexpr std::string_view notation = "NOTATION";
    if (isXmlAt(at, notation)) {
        return skipChoices(expectXml(expectXmlBlanks(at + notation.size()), "(", wrong), skipName);
    }
    if (*at == '(') {
        return skipChoices(at + 1, [](const char* token) { return skipXmlNameToken(token, wrong); });
    }
    for (const std::string_view type : attributeTypes) {
        if (isXmlAt(at, type)) {
            return at + type.size();
        }
    }
    throw XmlMarkupFault{at, wrong};
}

const char* skipAttributeDefault(const char* at)
{
    for (const std::string_view word : {"#REQUIRED", "#IMPLIED"}) {
        if (isXmlAt(at, word)) {
            return at + word.size();
        }
    }
    constexpr std::string_view fixed = "#FIXED";
    skipXmlLiteral(isXmlAt(at, fixed) ? expectXmlBlanks(at + fixed.size()) : at, wrong);
    throw XmlMarkupFault{at, "defaults of attributes are not supported", XmlMarkupFault::Kind::NotSupported};
}

const char* skipAttributes(const char* at)
{
    at = skipBlanksAndName(at);
    for (;;) {
        const char* const next = skipXmlBlanks(at);
        if (*next == '>') {
            return next + 1;
        }
        at = expectXmlBlanks(skipBlanksAndName(at));
        at = skipAttributeDefault(expectXmlBlanks(skipAttributeType(at)));
    }
}

const char* skipEntityValue(const char* at)
{
    const char* const end = skipXmlLiteral(at, wrong);
    const char* place = at;
    while (place != end) {
        if (*place == '%') {
            throw XmlMarkupFault{place, wrong}; // no parameter entity inside a declaration
        }
        place = *place == '&' ? skipXmlReference(place) : place + 1;
    }
    return end;
}

const char* skipEntity(const char* at)
{
    at = expectXmlBlanks(at);
    const bool isParameter = *at == '%';
    at = expectXmlBlanks(skipName(isParameter ? expectXmlBlanks(at + 1) : at));
    if (!isExternalId(at)) {
        return skipEnd(skipEntityValue(at));
    }
    at = skipExternalId(at);
    const char* const next = skipXmlBlanks(at);
    constexpr std::string_view notation = "NDATA";
    if (next != at && !isParameter && isXmlAt(next, notation)) {
        at = skipBlanksAndName(next + notation.size());
    }
    return skipEnd(at);
}

const char* skipNotation(const char* at)
{
    at = expectXmlBlanks(skipBlanksAndName(at));
    if (!isExternalId(at)) {
        throw XmlMarkupFault{at, wrong};
    }
    if (isXmlAt(at, "SYSTEM")) {
        return skipEnd(skipExternalId(at));
    }
    at = skipPublicId(expectXmlBlanks(at + externalIdWord));
    const char* const next = skipXmlBlanks(at);
    return skipEnd(*next == '>' ? next : skipXmlLiteral(expectXmlBlanks(at), wrong));
}

struct Declaration {
    std::string_view begin;
    const char* (*skip)(const char* at);
};
constexpr auto declarations = std::to_array<Declaration>({{"<!ELEMENT", skipElement},
                                                          {"<!ATTLIST", skipAttributes},
                                                          {"<!ENTITY", skipEntity},
                                                          {"<!NOTATION", skipNotation}});
static_assert(declarations.size() == 4);

const char* skipDeclaration(const char* at)
{
    const auto* const declaration = std::find_if(declarations.begin(), declarations.end(),
                                                 [at](const Declaration& known) { return isXmlAt(at, known.begin); });
    if (declaration != declarations.end()) {
        return declaration->skip(at + declaration->begin.size());
    }
    if (*at == '%') {
        expectXml(skipName(at + 1), ";", wrong);
        throw XmlMarkupFault{at, "parameter entities are not supported", XmlMarkupFault::Kind::NotSupported};
    }
    throw XmlMarkupFault{at, wrong};
}

/// Steps over declarations, from behind '[' to behind ']'.
const char* skipInternalSubset(const char* at)
{
    at = skipXmlMisc(at);
    while (*at != ']') {
        at = skipXmlMisc(skipDeclaration(at));
    }
    return at + 1;
}

} // namespace

const char* skipXmlDoctype(const char* at)
{
    constexpr std::string_view begin = "<!DOCTYPE";
    at = skipBlanksAndName(at + begin.size());
    const char* next = skipXmlBlanks(at);
    if (next != at && isExternalId(next)) {
        next = skipXmlBlanks(skipExternalId(next));
    }
    return skipEnd(*next == '[' ? skipInternalSubset(next + 1) : next);
}

} // namespace dorn::host
