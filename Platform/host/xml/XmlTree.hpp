// SPDX-License-Identifier: MIT
/// @file XmlTree.hpp
/// The nodes of an XML document and where they are stored.
#pragma once

#include "AaGpuXml.hpp"
#include "xml/XmlPositions.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <mutex>
#include <new>
#include <optional>
#include <string_view>
#include <vector>

namespace dorn::host {

/// What a node of the seam is on this platform.
struct XmlNode final : AaGpuXmlNode {
    const char* name = "";
    const char* value = "";
    XmlNode* next = nullptr;
    XmlNode* firstChild = nullptr;
    EAaGpuXmlNodeType type = AA_GPU_XML_INVALID;
    std::uint32_t place = 0; ///< how many nodes stand before it in its block of the tree
};

/// All nodes of a document and its text, into which their names and most of their values point. It ends with its root.
///
/// Lines and columns are looked for in the text when somebody asks. Therefore who builds a tree changes nothing in the
/// text but to end names and values, with terminate(); what has to read otherwise than it is written goes to store().
class XmlTree {
public:
    using Unit = XmlPositions::Unit;

    /// Makes a tree of a root alone, with a copy of @p text.
    static std::unique_ptr<AaGpuXmlNode> create(std::string_view text, Unit columnUnit);
    static XmlTree& of(const AaGpuXmlNode& node);

    XmlTree(const XmlTree&) = delete;
    XmlTree& operator=(const XmlTree&) = delete;
    /// For the root's end.
    ~XmlTree();

    XmlNode& root() { return *m_root; }
    /// The text's begin. There is a zero byte behind its end.
    char* text() { return m_text.get(); }
    const char* textEnd() const { return m_text.get() + m_textSize; }

    /// Makes a node without value, children and next one.
    /// @param name begins in the text, unless it is the root's
    XmlNode* makeNode(EAaGpuXmlNodeType type, const char* name)
    {
        if (m_used == m_capacity) {
            addBlock();
        }
        auto* const node = new (m_nodes + m_used) XmlNode;
        node->type = type;
        node->place = m_used++;
        node->name = name;
        return node;
    }
    /// Copies a text to where it stays as long as the tree.
    const char* store(std::string_view text);
    /// Ends a name or a value in the text at @p at.
    void terminate(char* at)
    {
        if (*at == '\n' || *at == '\r') {
            noteLineEnd(at);
        }
        *at = '\0';
    }

    /// Where a node begins. May be called by many threads at once when the tree is ready.
    XmlPosition positionOf(const XmlNode& node) const;
    /// Same for a place in the text.
    XmlPosition positionOf(const char* at) const;

private:
    struct Block;

    XmlTree(std::string_view text, Unit columnUnit);
    void addBlock();
    void noteLineEnd(const char* at);

    std::unique_ptr<char[]> m_text;
    std::size_t m_textSize;
    Unit m_columnUnit;
    Block* m_lastBlock = nullptr;
    XmlNode* m_root = nullptr;
    XmlNode* m_nodes = nullptr; ///< of the last block
    std::uint32_t m_capacity = 0;
    std::uint32_t m_used = 0;
    std::pmr::monotonic_buffer_resource m_stored;
    std::vector<std::size_t> m_lostLineEnds; ///< offsets of those that have ended a name
    mutable std::once_flag m_positionsMade;
    mutable std::optional<XmlPositions> m_positions;
};

} // namespace dorn::host
