// SPDX-License-Identifier: MIT
/// @file XmlTree.hpp
/// The storage of an XML tree.
#pragma once

#include "AaGpuXml.hpp"
#include "xml/XmlPositions.hpp"

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <string_view>

namespace pugi {
class xml_node;
}

/// All nodes below a root and their texts, in one arena. The root owns it.
class AaGpuXmlTree {
public:
    /// Makes a root above a copy of @p documentElement, all but its child element @p leftOut, which may be empty. Takes
    /// no more stack for a deep document than for a flat one.
    static std::unique_ptr<AaGpuXmlNode> copy(const pugi::xml_node& documentElement, const pugi::xml_node& leftOut,
                                              const dorn::host::XmlPositions& positions);

    AaGpuXmlTree(const AaGpuXmlTree&) = delete;
    AaGpuXmlTree& operator=(const AaGpuXmlTree&) = delete;

private:
    friend class AaGpuXmlNode;

    AaGpuXmlTree() = default;
    ~AaGpuXmlTree() = default;

    const char* store(std::string_view text);
    const char* storeContent(const pugi::xml_node& element);
    AaGpuXmlNode* makeNode(EAaGpuXmlNodeType type, const char* name, const char* value,
                           dorn::host::XmlPosition position);
    AaGpuXmlNode** copyAttributes(const pugi::xml_node& from, AaGpuXmlNode& to);

    std::pmr::monotonic_buffer_resource m_arena;
};
