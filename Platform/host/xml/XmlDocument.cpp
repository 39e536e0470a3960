// SPDX-License-Identifier: MIT
#include "xml/XmlDocument.hpp"

#include "xml/XmlEncoding.hpp"
#include "xml/XmlPositions.hpp"
#include "xml/XmlTree.hpp"

#include <algorithm>
#include <array>
#include <pugixml.hpp>
#include <string_view>
#include <utility>
#include <vector>

namespace dorn::host {
namespace {

constexpr std::string_view whiteSpace = " \t\r\n";

/// Keeps white space as written; with parse_fragment, what stands beside the document element is seen.
constexpr unsigned int documentOptions = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol |
                                         pugi::parse_wconv_attribute | pugi::parse_ws_pcdata | pugi::parse_fragment;

/// A fault before its line and column are known.
struct Fault {
    std::size_t offset;
    std::string reason;
};

struct StatusReason {
    pugi::xml_parse_status status;
    const char* reason;
};
constexpr std::array<StatusReason, 9> statusReasons{{
    {pugi::status_unrecognized_tag, "'<' begins neither an element nor anything else"},
    {pugi::status_bad_pi, "a declaration or processing instruction is wrong or does not end"},
    {pugi::status_bad_comment, "a comment is wrong or does not end"},
    {pugi::status_bad_cdata, "a CDATA section is wrong or does not end"},
    {pugi::status_bad_doctype, "a document type declaration is wrong or does not end"},
    {pugi::status_bad_pcdata, "text is wrong"},
    {pugi::status_bad_start_element, "a start tag is wrong or does not end"},
    {pugi::status_bad_attribute, "an attribute is wrong or does not end"},
    {pugi::status_bad_end_element, "an end tag is wrong or does not end"},
}};

std::string reasonOf(const pugi::xml_parse_result& result)
{
    if (result.status == pugi::status_end_element_mismatch) {
        return "an element is not closed, or an end tag has another name";
    }
    const auto* const known = std::find_if(statusReasons.begin(), statusReasons.end(),
                                           [&result](const StatusReason& row) { return row.status == result.status; });
    return known != statusReasons.end() ? known->reason : result.description();
}

/// What the parser tolerates beside the document element.
std::optional<Fault> findTopLevelFault(const pugi::xml_document& document, std::string_view text)
{
    bool hasElement = false;
    for (const pugi::xml_node& node : document.children()) {
        const auto offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(node.offset_debug(), 0));
        if (node.type() == pugi::node_element) {
            if (std::exchange(hasElement, true)) {
                return Fault{offset - 1, "there is a second element beside the first"};
            }
        } else if (node.type() == pugi::node_cdata ||
                   std::string_view(node.value()).find_first_not_of(whiteSpace) != std::string_view::npos) {
            return Fault{std::min(text.find_first_not_of(whiteSpace, offset), text.size()),
                         "there is text outside the element"};
        }
    }
    return hasElement ? std::nullopt : std::optional(Fault{text.size(), "there is no element"});
}

/// Whether @p text is one element or more.
bool isElements(std::string_view text)
{
    pugi::xml_document document;
    return document.load_buffer(text.data(), text.size(), pugi::parse_minimal | pugi::parse_fragment,
                                pugi::encoding_utf8) &&
           document.first_child().type() == pugi::node_element;
}

/// Whether an element that begins at @p begin has its end before the fault. The fault's offset lies somewhere in what
/// is wrong, so the begin of that is searched for among the last few candidates.
bool endsBefore(std::string_view text, std::size_t begin, std::size_t fault)
{
    constexpr int candidates = 8;
    std::vector<std::size_t> ends{text.size(), std::min(fault, text.size())};
    std::size_t at = fault;
    for (int count = 0; count < candidates; ++count) {
        at = text.rfind('<', at);
        if (at == std::string_view::npos || at <= begin) {
            break;
        }
        ends.push_back(at--);
    }
    return std::any_of(ends.begin(), ends.end(), [text, begin](std::size_t end) {
        return end > begin && isElements(text.substr(begin, end - begin));
    });
}

std::size_t beginOf(const pugi::xml_node& element)
{
    return static_cast<std::size_t>(element.offset_debug() - 1);
}

pugi::xml_node lastElementIn(const pugi::xml_node& parent)
{
    pugi::xml_node child = parent.last_child();
    while (child && child.type() != pugi::node_element) {
        child = child.previous_sibling();
    }
    return child;
}

/// The tree of a document element that stands, perhaps with its end missing, before a fault; null when it has no child
/// element to show.
std::unique_ptr<AaGpuXmlNode> copyBeforeFault(const pugi::xml_node& element, std::string_view text, const Fault& fault,
                                              const XmlPositions& positions)
{
    const pugi::xml_node last = lastElementIn(element);
    if (!last || beginOf(element) > fault.offset) {
        return nullptr;
    }
    const bool isWhole =
        endsBefore(text, beginOf(element), fault.offset) || endsBefore(text, beginOf(last), fault.offset);
    return AaGpuXmlTree::copy(element, isWhole ? pugi::xml_node() : last, positions);
}

/// The text of a document without its byte order mark.
std::string_view withoutMark(std::string_view text)
{
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    return text.starts_with(mark) ? text.substr(mark.size()) : text;
}

XmlDocument parseUtf8(std::string_view text, XmlPositions::Unit unit, std::optional<Fault> fault, XmlFaultPolicy policy)
{
    pugi::xml_document document;
    const pugi::xml_parse_result result =
        document.load_buffer(text.data(), text.size(), documentOptions, pugi::encoding_utf8);
    if (!fault && !result) {
        fault = Fault{static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0)), reasonOf(result)};
    }
    if (!fault) {
        fault = findTopLevelFault(document, text);
    }
    const XmlPositions positions(text, unit);
    const pugi::xml_node element =
        document.find_child([](const pugi::xml_node& node) { return node.type() == pugi::node_element; });
    if (!fault) {
        return {AaGpuXmlTree::copy(element, {}, positions), std::nullopt};
    }
    const XmlPosition position = positions.at(fault->offset);
    XmlDocument answer{nullptr, XmlFault{position.line, position.column, fault->reason, false}};
    if (policy == XmlFaultPolicy::GiveWhatStandsBefore && element) {
        answer.root = copyBeforeFault(element, text, *fault, positions);
    }
    return answer;
}

XmlDocument parseWhole(const std::string& text, const std::string& encoding, XmlFaultPolicy policy)
{
    const std::string_view whole = withoutMark(text);
    const std::string_view name = encoding.empty() ? declaredXmlEncoding(whole) : std::string_view(encoding);
    const std::optional<XmlEncoding> known = name.empty() ? XmlEncoding::Utf8 : xmlEncodingOf(name);
    if (!known) {
        const std::string what = isXmlEncodingName(name) ? "encoding '" + std::string(name) + "'" : "the encoding";
        return {nullptr, XmlFault{1, 1, what + " is not supported", true}};
    }
    const std::string_view body = whole.substr(0, whole.find('\0'));
    const bool isLatin1 = *known == XmlEncoding::Latin1;
    const std::string converted = isLatin1 ? latin1ToUtf8(body) : std::string();
    const std::string_view utf8 = isLatin1 ? std::string_view(converted) : body;
    std::optional<Fault> fault;
    if (body.size() != whole.size()) {
        fault = Fault{utf8.size(), "there is a zero byte"};
    }
    return parseUtf8(utf8, isLatin1 ? XmlPositions::Unit::Characters : XmlPositions::Unit::Bytes, fault, policy);
}

/// Tries what ends with each of the last '>' in turn: little stands behind the document.
XmlDocument parsePrefix(const std::string& text, const std::string& encoding, XmlFaultPolicy policy)
{
    constexpr int candidates = 16;
    std::size_t end = text.rfind('>');
    for (int count = 0; count < candidates && end != std::string::npos && end > 0; ++count) {
        XmlDocument document = parseWhole(text.substr(0, end + 1), encoding, policy);
        if (!document.fault || document.fault->isUnsupported) {
            return document;
        }
        end = text.rfind('>', end - 1);
    }
    return parseWhole(text, encoding, policy);
}

} // namespace

XmlDocument parseXml(const std::string& text, const std::string& encoding, XmlFaultPolicy policy, XmlExtent extent)
{
    return extent == XmlExtent::Whole ? parseWhole(text, encoding, policy) : parsePrefix(text, encoding, policy);
}

} // namespace dorn::host
