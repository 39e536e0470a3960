// SPDX-License-Identifier: MIT
/// @file NodeAttributes.hpp
/// The attributes of a node of a RAML document.
#pragma once

#include "AaGpuXml.hpp"

#include <string_view>

namespace RAML {

/// Looks the attributes of one node up. They may stand anywhere among its children. Each look leaves debug lines.
///
/// The first look that is in vain goes past all children and finds where the last attribute stands. Those after it end
/// there, so that a node's million elements are passed once and not for each of its attributes.
class NodeAttributes {
public:
    /// @param node may be null; lives longer than this
    explicit NodeAttributes(const AaGpuXmlNode* node);

    /// The value of the first attribute with that whole name; null when there is none. Valid as long as the tree.
    /// @param name has a zero byte behind its end, for the debug line
    const char* find(std::string_view name);
    /// The same, but the empty text when there is none.
    const char* textOf(std::string_view name);

private:
    const AaGpuXmlNode* m_first;
    const AaGpuXmlNode* m_end = nullptr; ///< behind it there are no attributes; null: not known
};

} // namespace RAML
