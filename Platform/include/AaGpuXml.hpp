// SPDX-License-Identifier: MIT
/// @file AaGpuXml.hpp
/// The platform's XML parser: a text becomes a tree of nodes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>
#include <string>

/// Kind of a node.
enum EAaGpuXmlNodeType {
    AA_GPU_XML_INVALID = 0,        ///< none: not made by a parser
    AA_GPU_XML_ELEMENT_NODE = 1,   ///< an element
    AA_GPU_XML_ATTRIBUTE_NODE = 2, ///< an attribute, a child of its element
    AA_GPU_XML_ROOT_NODE = 3       ///< the document itself
};

/// What came of a parse.
enum EAaGpuXmlResult {
    AA_GPU_XML_OK = 0,              ///< there is a tree
    AA_GPU_XML_NOT_WELL_FORMED = 1, ///< the text is not well-formed XML
    AA_GPU_XML_NOT_SUPPORTED = 2,   ///< an encoding, or something that is declared, which is not read
    AA_GPU_XML_NO_MEMORY = 3        ///< there is no memory for the tree
};

class AaGpuXmlNode;

/// Steps through the children of a node, its attributes first, then its elements, each in the order of
/// the text.
class TAaGpuXmlNodeListConstIterator {
public:
    /// @{
    /// What the standard algorithms ask of an iterator.
    using iterator_category = std::forward_iterator_tag;
    using value_type = AaGpuXmlNode*;
    using difference_type = std::ptrdiff_t;
    using pointer = AaGpuXmlNode* const*;
    using reference = AaGpuXmlNode* const&;
    /// @}

    TAaGpuXmlNodeListConstIterator() = default;
    /// Stands at @p node; null is the end.
    explicit TAaGpuXmlNodeListConstIterator(AaGpuXmlNode* node) : m_node(node) {}

    /// The node; not to be asked for at the end.
    reference operator*() const { return m_node; }
    /// @{
    /// Goes on to the next child, behind the last to the end.
    TAaGpuXmlNodeListConstIterator& operator++();
    TAaGpuXmlNodeListConstIterator operator++(int);
    /// @}

    friend bool operator==(const TAaGpuXmlNodeListConstIterator&, const TAaGpuXmlNodeListConstIterator&) = default;

private:
    AaGpuXmlNode* m_node = nullptr;
};

/// One node of the tree: the root, an element or an attribute.
///
/// The root stands above the document element, which is its only child. Who owns the root owns the whole tree: `delete`
/// on it deletes every node, without deep recursion; no other node is deleted. A tree stands by itself, without the
/// text that it was made of. It may be read by any number of threads at once; nothing changes it.
class AaGpuXmlNode {
public:
    /// Deletes the tree of a root.
    static void operator delete(AaGpuXmlNode* root, std::destroying_delete_t);
    ~AaGpuXmlNode() = default;
    AaGpuXmlNode(const AaGpuXmlNode&) = delete;
    AaGpuXmlNode& operator=(const AaGpuXmlNode&) = delete;

    /// Element or attribute name; empty for the root. Valid as long as the tree.
    const char* AaGpuXmlGetName() const;
    /// An attribute's value, or an element's character content. Valid as long as the tree.
    ///
    /// The content is all text directly inside the element, joined: references are resolved, CDATA sections stand for
    /// their text, comments and processing instructions for nothing, line ends are line feeds, and white space is as
    /// written. In an element that has elements inside, runs of nothing but white space, which are there to make the
    /// document readable, are left out. An attribute has a blank for each line end, line feed and tab in its value.
    /// All texts are UTF-8, whatever the document is.
    const char* AaGpuXmlGetValue() const;
    /// Whether it is an element or an attribute.
    EAaGpuXmlNodeType AaGpuXmlGetType() const;
    /// The next node with the same parent, or null.
    AaGpuXmlNode* AaGpuXmlGetNext() const;
    /// Whether it has attributes or elements inside; an attribute never has.
    bool AaGpuXmlHasChildren() const;
    /// Begin of the child list.
    TAaGpuXmlNodeListConstIterator AaGpuXmlGetFirstChildren() const;
    /// End of the child list.
    TAaGpuXmlNodeListConstIterator AaGpuXmlGetLastChildren() const;
    /// Line of the text on which the node begins, from 1. The first question for a line or a column of a tree reads its
    /// text; until then they cost nothing.
    std::uint32_t AaGpuXmlGetLine() const;
    /// Column at which the node begins, from 1, in bytes.
    std::uint32_t AaGpuXmlGetColumn() const;

protected:
    AaGpuXmlNode() = default; ///< what a node consists of is its provider's
};

/// Turns XML text into a tree.
///
/// A text is taken only when it is well-formed XML 1.0 in UTF-8, US-ASCII or ISO-8859-1, with or without a byte order
/// mark. What a document type declaration refers to is not read, and what it declares inside is checked for its form
/// and not used: a document that needs a declared entity or an attribute's declared default is not taken. Time and
/// memory are in proportion to the text's size, however deep or odd it is.
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
