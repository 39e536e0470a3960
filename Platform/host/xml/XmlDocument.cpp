// SPDX-License-Identifier: MIT
#include "xml/XmlDocument.hpp"

#include "xml/XmlCharacters.hpp"
#include "xml/XmlEncoding.hpp"
#include "xml/XmlReader.hpp"
#include "xml/XmlTree.hpp"

#include <algorithm>
#include <string_view>

namespace dorn::host {
namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

XmlDocument unsupported(std::string_view encoding)
{
    const std::string what = isXmlEncodingName(encoding) ? "encoding '" + std::string(encoding) + "'" : "the encoding";
    return {nullptr, XmlFault{1, 1, what + " is not supported", true}};
}

/// US-ASCII is read as UTF-8; here is what it must not have.
void checkAscii(const char* begin, const char* end)
{
    const char* const beyond = std::find_if(begin, end, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
    if (beyond != end) {
        throw XmlMarkupFault{beyond, "there is a byte that is not US-ASCII"};
    }
}

XmlFault faultOf(const XmlMarkupFault& fault, const XmlTree& tree, bool hasDoctype)
{
    using Kind = XmlMarkupFault::Kind;
    const XmlPosition position = tree.positionOf(fault.at);
    const bool isZero = *fault.at == '\0' && fault.at != tree.textEnd();
    const bool isUnsupported = fault.kind == Kind::NotSupported || (fault.kind == Kind::UnknownEntity && hasDoctype);
    return {position.line, position.column, isZero ? "there is a zero byte" : fault.reason, isUnsupported};
}

XmlDocument parse(std::string_view text, XmlEncoding encoding, XmlFaultPolicy policy, XmlExtent extent)
{
    const bool isLatin1 = encoding == XmlEncoding::Latin1;
    XmlDocument document{isLatin1 ? XmlTree::create(latin1ToUtf8(text), XmlPositions::Unit::Characters)
                                  : XmlTree::create(text, XmlPositions::Unit::Bytes),
                         std::nullopt};
    XmlTree& tree = XmlTree::of(*document.root);
    XmlReader reader(tree);
    try {
        const char* const end = reader.read(extent);
        if (encoding == XmlEncoding::Ascii) {
            checkAscii(tree.text(), end);
        }
    } catch (const XmlMarkupFault& fault) {
        document.fault = faultOf(fault, tree, reader.hasDoctype());
        if (policy == XmlFaultPolicy::GiveNothing || !reader.keepComplete()) {
            document.root.reset();
        }
    }
    return document;
}

} // namespace

XmlDocument parseXml(const std::string& text, const std::string& encoding, XmlFaultPolicy policy, XmlExtent extent)
{
    const std::string_view whole = text;
    if (encoding.empty() && (whole.starts_with("\xFE\xFF") || whole.starts_with("\xFF\xFE"))) {
        return unsupported("UTF-16");
    }
    const std::string_view unmarked = whole.substr(whole.starts_with(utf8Mark) ? utf8Mark.size() : 0);
    const std::string_view name = encoding.empty() ? declaredXmlEncoding(unmarked) : std::string_view(encoding);
    const std::optional<XmlEncoding> known = name.empty() ? XmlEncoding::Utf8 : xmlEncodingOf(name);
    if (!known) {
        return unsupported(name);
    }
    return parse(*known == XmlEncoding::Utf8 ? unmarked : whole, *known, policy, extent);
}

} // namespace dorn::host
