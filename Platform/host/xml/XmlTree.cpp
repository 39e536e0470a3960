// SPDX-License-Identifier: MIT
#include "xml/XmlTree.hpp"

#include <cstring>
#include <new>
#include <pugixml.hpp>
#include <string>
#include <utility>
#include <vector>

using dorn::host::XmlPosition;
using dorn::host::XmlPositions;

namespace {

XmlPosition positionOf(const pugi::xml_node& element, const XmlPositions& positions)
{
    return positions.at(static_cast<std::size_t>(element.offset_debug() - 1)); // the offset is the name's
}

bool isText(const pugi::xml_node& node)
{
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

} // namespace

std::unique_ptr<AaGpuXmlNode> AaGpuXmlTree::copy(const pugi::xml_node& documentElement, const pugi::xml_node& leftOut,
                                                 const XmlPositions& positions)
{
    std::unique_ptr<AaGpuXmlNode> root(new AaGpuXmlNode);
    root->m_tree = new AaGpuXmlTree;
    root->m_type = AA_GPU_XML_ROOT_NODE;
    root->m_line = 1;
    root->m_column = 1;
    AaGpuXmlTree& tree = *root->m_tree;

    std::vector<std::pair<pugi::xml_node, AaGpuXmlNode*>> pending;
    const auto copyElement = [&](const pugi::xml_node& from) {
        AaGpuXmlNode* const node = tree.makeNode(AA_GPU_XML_ELEMENT_NODE, tree.store(from.name()),
                                                 tree.storeContent(from), positionOf(from, positions));
        pending.emplace_back(from, node);
        return node;
    };
    root->m_firstChild = copyElement(documentElement);
    while (!pending.empty()) {
        const auto [from, to] = pending.back();
        pending.pop_back();
        AaGpuXmlNode** next = tree.copyAttributes(from, *to);
        for (const pugi::xml_node& child : from.children()) {
            if (child.type() == pugi::node_element && child != leftOut) {
                *next = copyElement(child);
                next = &(*next)->m_next;
            }
        }
    }
    return root;
}

/// @return where the pointer to the first child element belongs.
AaGpuXmlNode** AaGpuXmlTree::copyAttributes(const pugi::xml_node& from, AaGpuXmlNode& to)
{
    AaGpuXmlNode** next = &to.m_firstChild;
    for (const pugi::xml_attribute& attribute : from.attributes()) {
        *next = makeNode(AA_GPU_XML_ATTRIBUTE_NODE, store(attribute.name()), store(attribute.value()),
                         {to.m_line, to.m_column});
        next = &(*next)->m_next;
    }
    return next;
}

AaGpuXmlNode* AaGpuXmlTree::makeNode(EAaGpuXmlNodeType type, const char* name, const char* value, XmlPosition position)
{
    auto* const node = new (m_arena.allocate(sizeof(AaGpuXmlNode), alignof(AaGpuXmlNode))) AaGpuXmlNode;
    node->m_type = type;
    node->m_name = name;
    node->m_value = value;
    node->m_line = position.line;
    node->m_column = position.column;
    return node;
}

const char* AaGpuXmlTree::store(std::string_view text)
{
    if (text.empty()) {
        return "";
    }
    char* const copy = static_cast<char*>(m_arena.allocate(text.size() + 1, 1));
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

const char* AaGpuXmlTree::storeContent(const pugi::xml_node& element)
{
    std::string_view only;
    std::string joined;
    for (const pugi::xml_node& child : element.children()) {
        if (!isText(child)) {
            continue;
        }
        if (only.empty() && joined.empty()) {
            only = child.value();
            continue;
        }
        joined += joined.empty() ? std::string(only) + child.value() : child.value();
    }
    return store(joined.empty() ? only : joined);
}
