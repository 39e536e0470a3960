// SPDX-License-Identifier: MIT
/// @file XmlReader.hpp
/// Reads the text of an XML tree into its nodes.
#pragma once

#include "xml/XmlDocument.hpp"
#include "xml/XmlTree.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace dorn::host {

/// Reads a document in one pass over the text, in time and memory in proportion to its size. How deep elements stand in
/// each other costs no stack.
class XmlReader {
public:
    explicit XmlReader(XmlTree& tree);

    /// Reads the document.
    /// @return the end of what has been looked at
    /// @throws XmlMarkupFault when it is not well-formed; what stands before the fault is in the tree.
    const char* read(XmlExtent extent);

    /// After a fault, takes the last child of the document element out of the tree when it is not complete.
    /// @return whether there is any element inside the document element.
    bool keepComplete();

    bool hasDoctype() const { return m_hasDoctype; }

private:
    /// An element whose end has not come.
    struct Open {
        XmlNode* node;
        XmlNode** nextChild; ///< where the pointer to its next child belongs
        bool hasElements;
    };
    /// Text of an element that has elements inside as well.
    struct MixedText {
        std::size_t depth; ///< of the element
        std::string text;
    };

    char* inText(const char* at) { return m_tree.text() + (at - m_tree.text()); }
    const char* skipProlog(const char* at);
    char* readStartTag(char* at);
    char* readAttribute(char* at);
    static void checkAttributes(const XmlNode& element, std::size_t count);
    static void checkManyAttributes(const XmlNode& element);
    char* readEndTag(char* at);
    char* readContent(char* at);
    char* readInterruption(char* at);
    void endPiece(const char* begin, const char* end);
    void endContent(char* begin, char* end, bool isPlain);

    XmlTree& m_tree;
    bool m_hasDoctype = false;
    std::vector<Open> m_open; ///< the root first
    std::vector<MixedText> m_mixed;
    std::string m_pieces;  ///< of a text that is interrupted
    std::string m_scratch; ///< of one attribute
};

} // namespace dorn::host
