// SPDX-License-Identifier: MIT
/// @file AaGpuXml.hpp
/// The platform's XML parser: a text becomes a tree of nodes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>

/// Kind of a node.
enum EAaGpuXmlNodeType {
    AA_GPU_XML_INVALID = 0,
    AA_GPU_XML_ELEMENT_NODE = 1,
    AA_GPU_XML_ATTRIBUTE_NODE = 2,
    AA_GPU_XML_ROOT_NODE = 3
};

/// What came of a parse.
enum EAaGpuXmlResult {
    AA_GPU_XML_OK = 0,
    AA_GPU_XML_NOT_WELL_FORMED = 1,
    AA_GPU_XML_NOT_SUPPORTED = 2 ///< an encoding that is not read
};

class AaGpuXmlNode;
class AaGpuXmlTree;

/// Steps through the children of a node, in document order: its attributes first, then its elements.
class TAaGpuXmlNodeListConstIterator {
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = AaGpuXmlNode*;
    using difference_type = std::ptrdiff_t;
    using pointer = AaGpuXmlNode* const*;
    using reference = AaGpuXmlNode* const&;

    TAaGpuXmlNodeListConstIterator() = default;
    explicit TAaGpuXmlNodeListConstIterator(AaGpuXmlNode* node) : m_node(node) {}

    reference operator*() const { return m_node; }
    TAaGpuXmlNodeListConstIterator& operator++();
    TAaGpuXmlNodeListConstIterator operator++(int);
    friend bool operator==(const TAaGpuXmlNodeListConstIterator&, const TAaGpuXmlNodeListConstIterator&) = default;

private:
    AaGpuXmlNode* m_node = nullptr;
};

/// One node of the tree: the root, an element or an attribute.
///
/// The root stands above the document element. Whoever owns the root owns the whole tree: deleting it deletes every
/// node. No other node is deleted by itself. A tree may be read by any number of threads at once; nothing changes it.
class AaGpuXmlNode {
public:
    /// Deletes the tree; for the root only.
    ~AaGpuXmlNode();
    AaGpuXmlNode(const AaGpuXmlNode&) = delete;
    AaGpuXmlNode& operator=(const AaGpuXmlNode&) = delete;

    /// Element or attribute name; empty for the root. Valid as long as the tree.
    const char* AaGpuXmlGetName() const;
    /// An attribute's value, or an element's character content: all text directly inside it, entities resolved, joined,
    /// white space as written. Valid as long as the tree.
    const char* AaGpuXmlGetValue() const;
    EAaGpuXmlNodeType AaGpuXmlGetType() const;
    /// The next node with the same parent, or null.
    AaGpuXmlNode* AaGpuXmlGetNext() const;
    bool AaGpuXmlHasChildren() const;
    /// Begin of the child list.
    TAaGpuXmlNodeListConstIterator AaGpuXmlGetFirstChildren() const;
    /// End of the child list.
    TAaGpuXmlNodeListConstIterator AaGpuXmlGetLastChildren() const;
    /// Line of the text on which the node begins, from 1; an attribute has its element's.
    std::uint32_t AaGpuXmlGetLine() const;
    /// Column at which the node begins, from 1, in bytes; an attribute has its element's.
    std::uint32_t AaGpuXmlGetColumn() const;

private:
    friend class AaGpuXmlTree;
    AaGpuXmlNode() = default;

    EAaGpuXmlNodeType m_type = AA_GPU_XML_INVALID;
    std::uint32_t m_line = 0;
    std::uint32_t m_column = 0;
    const char* m_name = "";
    const char* m_value = "";
    AaGpuXmlNode* m_next = nullptr;
    AaGpuXmlNode* m_firstChild = nullptr;
    AaGpuXmlTree* m_tree = nullptr; ///< the storage of all nodes; the root owns it, the others have none
};

/// Turns XML text into a tree.
class AaGpuXmlParser {
public:
    /// @param options 0; other values are reserved.
    explicit AaGpuXmlParser(unsigned int options);

    /// Parses a document.
    /// @param xmlText the document
    /// @param encoding empty: the document's own declaration counts
    /// @return the root of a new tree, owned by the caller; null when the text is not well-formed.
    [[nodiscard]] AaGpuXmlNode* AaGpuXmlParse(const std::string& xmlText, const std::string& encoding);

    /// Parses the document that a text begins with. It ends with its document element; what stands behind that, as the
    /// binary behind the trailer of a firmware image does, is not looked at.
    /// @param text the document, and anything behind it
    /// @param encoding empty: the document's own declaration counts
    /// @return the root of a new tree, owned by the caller; null when the document is not well-formed.
    [[nodiscard]] AaGpuXmlNode* AaGpuXmlParsePrefix(const std::string& text, const std::string& encoding);

    /// What came of the last text.
    EAaGpuXmlResult AaGpuXmlLastResult() const;
    /// What was wrong with the last text, as "line:column: reason"; empty when nothing was.
    const std::string& AaGpuXmlLastError() const;

private:
    EAaGpuXmlResult m_lastResult = AA_GPU_XML_OK;
    std::string m_lastError;
};
