// SPDX-License-Identifier: MIT
#include "xml/XmlReader.hpp"

#include "xml/XmlCharacters.hpp"
#include "xml/XmlDoctype.hpp"
#include "xml/XmlMarkup.hpp"

#include <algorithm>
#include <cstring>

namespace dorn::host {
namespace {

constexpr const char* wrongMarkup = "'<' begins neither an element nor anything else";
constexpr const char* wrongAttribute = "an attribute is wrong or does not end";
constexpr std::string_view cdataBegin = "<![CDATA[";
constexpr std::string_view cdataEnd = "]]>";

/// Steps over text to the next '<'. @param[in,out] isPlain made false when the text reads otherwise than it is written
const char* skipText(const char* at, bool& isPlain)
{
    for (;;) {
        while (isXmlByte(*at, PlainTextByte)) {
            ++at;
        }
        switch (*at) {
        case '<':
            return at;
        case '&':
            at = checkXmlReference(at);
            isPlain = false;
            break;
        case '\r':
            isPlain = false;
            ++at;
            break;
        case ']':
            if (isXmlAt(at, cdataEnd)) {
                throw XmlMarkupFault{at, "']]>' stands in text"};
            }
            ++at;
            break;
        case '\0':
            throw XmlMarkupFault{at, "an element is not closed"};
        default:
            at = skipXmlCharacter(at);
        }
    }
}

/// Steps over an attribute's value to the quote at its end.
/// @param[in,out] isPlain made false when the value reads otherwise than it is written
const char* skipValue(const char* at, char quote, bool& isPlain)
{
    for (;;) {
        while (isXmlByte(*at, PlainValueByte)) {
            ++at;
        }
        if (*at == quote) {
            return at;
        }
        switch (*at) {
        case '<':
        case '\0':
            throw XmlMarkupFault{at, wrongAttribute};
        case '&':
            at = checkXmlReference(at);
            isPlain = false;
            break;
        case '\t':
        case '\n':
        case '\r':
            isPlain = false;
            ++at;
            break;
        default:
            at = skipXmlCharacter(at);
        }
    }
}

/// Appends what a text reads as: references resolved, line ends and other characters in their standard form.
/// @param standsFor tells what a character other than an ampersand stands for
template <class StandsFor>
void appendText(const char* at, const char* end, bool hasReferences, StandsFor standsFor, std::string& to)
{
    while (at != end) {
        if (*at == '&' && hasReferences) {
            at = readXmlReference(at, to);
            continue;
        }
        to += standsFor(*at);
        at += *at == '\r' && at[1] == '\n' ? 2 : 1;
    }
}

void appendContent(const char* at, const char* end, bool hasReferences, std::string& to)
{
    appendText(
        at, end, hasReferences, [](char c) { return c == '\r' ? '\n' : c; }, to);
}

void appendValue(const char* at, const char* end, std::string& to)
{
    appendText(
        at, end, true, [](char c) { return isXmlByte(c, BlankByte) ? ' ' : c; }, to);
}

bool isBlank(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return isXmlByte(c, BlankByte); });
}

bool hasElement(const XmlNode& parent)
{
    const XmlNode* child = parent.firstChild;
    while (child && child->type != AA_GPU_XML_ELEMENT_NODE) {
        child = child->next;
    }
    return child != nullptr;
}

} // namespace

XmlReader::XmlReader(XmlTree& tree) : m_tree(tree)
{
    m_open.push_back({&tree.root(), &tree.root().firstChild, false});
}

const char* XmlReader::read(XmlExtent extent)
{
    char* at = readStartTag(inText(skipProlog(m_tree.text())));
    while (m_open.size() > 1) {
        at = readContent(at);
    }
    if (extent == XmlExtent::Prefix) {
        return at;
    }
    const char* const behind = skipXmlMisc(at);
    if (*behind == '<') {
        skipXmlName(behind + 1, wrongMarkup);
        throw XmlMarkupFault{behind, "there is a second element beside the first"};
    }
    if (behind != m_tree.textEnd()) {
        throw XmlMarkupFault{behind, "there is text outside the element"};
    }
    return behind;
}

/// Steps over what stands in front of the document element.
const char* XmlReader::skipProlog(const char* at)
{
    constexpr std::string_view declaration = "<?xml";
    if (isXmlAt(at, declaration) && isXmlByte(at[declaration.size()], BlankByte)) {
        at = skipXmlDeclaration(at);
    }
    at = skipXmlMisc(at);
    if (isXmlAt(at, "<!DOCTYPE")) {
        m_hasDoctype = true;
        at = skipXmlMisc(skipXmlDoctype(at));
    }
    if (*at != '<') {
        throw XmlMarkupFault{at, *at == '\0' ? "there is no element" : "there is text outside the element"};
    }
    return at;
}

/// Reads a start tag, or the tag of an empty element, from its '<' on.
char* XmlReader::readStartTag(char* at)
{
    char* const nameEnd = inText(skipXmlName(at + 1, wrongMarkup));
    XmlNode* const element = m_tree.makeNode(AA_GPU_XML_ELEMENT_NODE, at + 1);
    Open& parent = m_open.back();
    parent.hasElements = true;
    *parent.nextChild = element;
    parent.nextChild = &element->next;
    m_open.push_back({element, &element->firstChild, false}); // parent is not valid any more

    std::size_t attributes = 0;
    char* end = inText(skipXmlBlanks(nameEnd));
    for (char* last = nameEnd; *end != '>' && *end != '/'; end = inText(skipXmlBlanks(last))) {
        if (end == last) {
            throw XmlMarkupFault{end, "a start tag is wrong or does not end"};
        }
        last = readAttribute(end);
        ++attributes;
    }
    checkAttributes(*element, attributes);
    const bool isEmpty = *end == '/';
    if (isEmpty && end[1] != '>') {
        throw XmlMarkupFault{end, "a start tag is wrong or does not end"};
    }
    m_tree.terminate(nameEnd);
    if (!isEmpty) {
        return end + 1;
    }
    m_open.pop_back();
    return end + 2;
}

char* XmlReader::readAttribute(char* at)
{
    char* const nameEnd = inText(skipXmlName(at, wrongAttribute));
    const char* const equals = skipXmlBlanks(nameEnd);
    if (*equals != '=') {
        throw XmlMarkupFault{equals, wrongAttribute};
    }
    const char* const quote = skipXmlBlanks(equals + 1);
    if (*quote != '"' && *quote != '\'') {
        throw XmlMarkupFault{quote, wrongAttribute};
    }
    char* const value = inText(quote + 1);
    bool isPlain = true;
    char* const end = inText(skipValue(value, *quote, isPlain));

    XmlNode* const attribute = m_tree.makeNode(AA_GPU_XML_ATTRIBUTE_NODE, at);
    *m_open.back().nextChild = attribute;
    m_open.back().nextChild = &attribute->next;
    if (isPlain) {
        attribute->value = value;
        m_tree.terminate(end);
    } else {
        m_scratch.clear();
        appendValue(value, end, m_scratch);
        attribute->value = m_tree.store(m_scratch);
    }
    m_tree.terminate(nameEnd);
    return end + 1;
}

/// Looks for an attribute that is there twice.
void XmlReader::checkAttributes(const XmlNode& element, std::size_t count)
{
    constexpr std::size_t few = 16;
    if (count > few) {
        checkManyAttributes(element);
        return;
    }
    for (const XmlNode* later = element.firstChild; later; later = later->next) {
        for (const XmlNode* attribute = element.firstChild; attribute != later; attribute = attribute->next) {
            if (std::strcmp(attribute->name, later->name) == 0) {
                throw XmlMarkupFault{later->name, "an attribute is there twice"};
            }
        }
    }
}

void XmlReader::checkManyAttributes(const XmlNode& element)
{
    std::vector<std::string_view> names;
    for (const XmlNode* attribute = element.firstChild; attribute; attribute = attribute->next) {
        names.emplace_back(attribute->name);
    }
    std::sort(names.begin(), names.end());
    const auto twice = std::adjacent_find(names.begin(), names.end());
    if (twice != names.end()) {
        throw XmlMarkupFault{std::max(twice[0].data(), twice[1].data()), "an attribute is there twice"};
    }
}

/// Reads an end tag, from its '<' on.
char* XmlReader::readEndTag(char* at)
{
    const char* name = m_open.back().node->name;
    const char* place = at + 2;
    for (; *name != '\0' && *name == *place; ++name) {
        ++place;
    }
    if (*name != '\0' || (*place != '>' && skipXmlNameRest(place) != place)) {
        throw XmlMarkupFault{at + 2, "an end tag has another name than its element"};
    }
    place = skipXmlBlanks(place);
    if (*place != '>') {
        throw XmlMarkupFault{place, "an end tag is wrong or does not end"};
    }
    m_open.pop_back();
    return inText(place + 1);
}

/// Reads text, if there is any, and the markup behind it.
char* XmlReader::readContent(char* at)
{
    bool isPlain = true;
    const char* const behindBlanks = skipXmlBlanks(at);
    char* const end = inText(*behindBlanks == '<' ? behindBlanks : skipText(behindBlanks, isPlain));
    switch (end[1]) {
    case '/':
        endContent(at, end, isPlain);
        return readEndTag(end);
    case '!':
    case '?':
        appendContent(at, end, true, m_pieces);
        return readInterruption(end);
    default:
        if (end != behindBlanks || !m_pieces.empty()) { // seldom: most often there is an indentation
            endPiece(at, end);
        }
        return readStartTag(end);
    }
}

/// Reads what may stand inside a text: a CDATA section, a comment, a processing instruction.
char* XmlReader::readInterruption(char* at)
{
    if (isXmlAt(at, cdataBegin)) {
        const char* const text = at + cdataBegin.size();
        const char* const end = skipXmlUntil(text, cdataEnd, "a CDATA section is wrong or does not end");
        appendContent(text, end - cdataEnd.size(), false, m_pieces);
        return inText(end);
    }
    if (isXmlAt(at, "<!--")) {
        return inText(skipXmlComment(at));
    }
    if (at[1] == '?') {
        return inText(skipXmlInstruction(at));
    }
    throw XmlMarkupFault{at + 1, wrongMarkup};
}

/// Takes text in front of an element inside. It counts unless it is nothing but white space.
void XmlReader::endPiece(const char* begin, const char* end)
{
    if (m_pieces.empty() && skipXmlBlanks(begin) == end) {
        return;
    }
    appendContent(begin, end, true, m_pieces);
    if (!isBlank(m_pieces)) {
        if (m_mixed.empty() || m_mixed.back().depth != m_open.size()) {
            m_mixed.push_back({m_open.size(), {}});
        }
        m_mixed.back().text += m_pieces;
    }
    m_pieces.clear();
}

/// Takes text in front of the element's end tag.
void XmlReader::endContent(char* begin, char* end, bool isPlain)
{
    XmlNode& element = *m_open.back().node;
    if (m_open.back().hasElements) {
        endPiece(begin, end);
        if (!m_mixed.empty() && m_mixed.back().depth == m_open.size()) {
            element.value = m_tree.store(m_mixed.back().text);
            m_mixed.pop_back();
        }
        return;
    }
    const auto size = static_cast<std::size_t>(end - begin);
    const bool hasReturn = isXmlByte(*begin, BlankByte) && std::memchr(begin, '\r', size);
    if (m_pieces.empty() && isPlain && !hasReturn) {
        element.value = begin;
        *end = '\0'; // nobody looks at the '<' again
        return;
    }
    appendContent(begin, end, true, m_pieces);
    element.value = m_tree.store(m_pieces);
    m_pieces.clear();
}

bool XmlReader::keepComplete()
{
    XmlNode* const document = m_tree.root().firstChild;
    if (!document) {
        return false;
    }
    if (m_open.size() > 2) {
        XmlNode** link = &document->firstChild;
        while (*link != m_open[2].node) {
            link = &(*link)->next;
        }
        *link = nullptr;
    }
    return hasElement(*document);
}

} // namespace dorn::host
