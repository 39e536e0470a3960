// SPDX-License-Identifier: MIT
// The XML parser. AaGpuXmlNode and its iterator are covered by whoever walks a tree. What a parse says is looked at
// behind every one that is to succeed.
#include "AaGpuXml.hpp"
#include "Check.hpp"
#include "Rules.hpp"

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace dorn::conformance {
namespace {

constexpr const char* walk = "AaGpuXmlParser AaGpuXmlParse AaGpuXmlLastResult AaGpuXmlLastError "
                             "AaGpuXmlNode TAaGpuXmlNodeListConstIterator";
constexpr const char* walkOfPrefix = "AaGpuXmlParser AaGpuXmlParse AaGpuXmlParsePrefix "
                                     "AaGpuXmlNode TAaGpuXmlNodeListConstIterator";

using Tree = std::unique_ptr<AaGpuXmlNode>;

Tree parsed(const std::string& text)
{
    AaGpuXmlParser parser(0);
    Tree tree(parser.AaGpuXmlParse(text, ""));
    expect(tree != nullptr, "a document that is well-formed was not taken: " + parser.AaGpuXmlLastError());
    expectEqual(parser.AaGpuXmlLastResult(), AA_GPU_XML_OK, "AaGpuXmlLastResult() after it");
    expectEqual(parser.AaGpuXmlLastError(), std::string(), "AaGpuXmlLastError() after it");
    return tree;
}

std::vector<AaGpuXmlNode*> childrenOf(const AaGpuXmlNode& node)
{
    std::vector<AaGpuXmlNode*> children;
    for (auto child = node.AaGpuXmlGetFirstChildren(); child != node.AaGpuXmlGetLastChildren(); ++child) {
        children.push_back(*child);
    }
    return children;
}

const AaGpuXmlNode& documentElement(const Tree& tree)
{
    const std::vector<AaGpuXmlNode*> children = childrenOf(*tree);
    expectEqual(children.size(), std::size_t{1}, "children of the root");
    return *children.front();
}

void expectNode(const AaGpuXmlNode& node, EAaGpuXmlNodeType type, const std::string& name, const std::string& value)
{
    expectEqual(node.AaGpuXmlGetType(), type, "the type of node " + name);
    expectEqual(std::string(node.AaGpuXmlGetName()), name, "the name of a node");
    expectEqual(std::string(node.AaGpuXmlGetValue()), value, "the value of node " + name);
}

void treeIsWhatTheTextSays()
{
    const Tree tree =
        parsed("<?xml version=\"1.0\"?>\n<a x=\"1\" y='2'><b>text</b><!-- no --><c/><b z=\"3\">more</b></a>");
    expectNode(*tree, AA_GPU_XML_ROOT_NODE, "", "");
    const AaGpuXmlNode& top = documentElement(tree);
    expectNode(top, AA_GPU_XML_ELEMENT_NODE, "a", "");
    const std::vector<AaGpuXmlNode*> nodes = childrenOf(top);
    expectEqual(nodes.size(), std::size_t{5}, "attributes and elements of an element with two and three");
    expectNode(*nodes[0], AA_GPU_XML_ATTRIBUTE_NODE, "x", "1");
    expectNode(*nodes[1], AA_GPU_XML_ATTRIBUTE_NODE, "y", "2");
    expectNode(*nodes[2], AA_GPU_XML_ELEMENT_NODE, "b", "text");
    expectNode(*nodes[3], AA_GPU_XML_ELEMENT_NODE, "c", "");
    expectNode(*nodes[4], AA_GPU_XML_ELEMENT_NODE, "b", "more");
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        expect(nodes[index]->AaGpuXmlGetNext() == (index + 1 < nodes.size() ? nodes[index + 1] : nullptr),
               "AaGpuXmlGetNext() is not the next node with the same parent");
        expectEqual(nodes[index]->AaGpuXmlHasChildren(), index == 4,
                    "AaGpuXmlHasChildren() of node " + std::to_string(index));
    }
    expect(top.AaGpuXmlHasChildren() && tree->AaGpuXmlHasChildren(), "AaGpuXmlHasChildren() of a node with children");
}

std::string contentOf(const std::string& text)
{
    const Tree tree = parsed(text);
    return documentElement(tree).AaGpuXmlGetValue();
}

void contentIsResolved()
{
    expectEqual(contentOf("<a>1 &lt; 2 &amp; &#65;&#x42;</a>"), std::string("1 < 2 & AB"), "content with references");
    expectEqual(contentOf("<a>x<![CDATA[<y>]]>z</a>"), std::string("x<y>z"), "content with a CDATA section");
    expectEqual(contentOf("<a>x<!-- y --><?z?>w</a>"), std::string("xw"), "content with comment and instruction");
    expectEqual(contentOf("<a>1\r\n2\r3</a>"), std::string("1\n2\n3"), "content with three kinds of line ends");
    expectEqual(contentOf("<a> x </a>"), std::string(" x "), "content with white space");
    expectEqual(contentOf("<a>\n  <b/>\n</a>"), std::string(), "white space between elements");
    const Tree tree = parsed("<a b='1\t2\n3&quot;'/>");
    expectEqual(std::string(childrenOf(documentElement(tree)).front()->AaGpuXmlGetValue()), std::string("1 2 3\""),
                "an attribute's value with tab, line feed and reference");
}

void encodingsAreUtf8()
{
    expectEqual(contentOf("<a>\xC3\xA4</a>"), std::string("\xC3\xA4"), "content in UTF-8");
    expectEqual(contentOf("\xEF\xBB\xBF<a>x</a>"), std::string("x"), "content behind a byte order mark");
    expectEqual(contentOf("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE4</a>"), std::string("\xC3\xA4"),
                "content in ISO-8859-1");
}

void malformedIsRefused()
{
    for (const char* const text : {"", "text", "<a>", "<a></b>", "<a><b></a></b>", "<a x=1/>", "<a x='1' x='2'/>",
                                   "<a/><b/>", "<a>&unknown;</a>", "<a>\xFF</a>", "<a b='<'/>"}) {
        AaGpuXmlParser parser(0);
        const Tree tree(parser.AaGpuXmlParse(text, ""));
        expect(tree == nullptr, std::string("this was taken and is not well-formed: ") + text);
        expect(parser.AaGpuXmlLastResult() != AA_GPU_XML_OK, std::string("AaGpuXmlLastResult() is 0 after ") + text);
        expect(!parser.AaGpuXmlLastError().empty(), std::string("AaGpuXmlLastError() is empty after ") + text);
    }
}

void prefixEndsWithItsElement()
{
    AaGpuXmlParser parser(0);
    const std::string text = std::string("<a><b>x</b></a>") + '\0' + "\x01\x02<<>>\xFF";
    const Tree tree(parser.AaGpuXmlParsePrefix(text, ""));
    expect(tree != nullptr, "a document with something behind it was not taken: " + parser.AaGpuXmlLastError());
    expectNode(*childrenOf(documentElement(tree)).front(), AA_GPU_XML_ELEMENT_NODE, "b", "x");
    const Tree whole(parser.AaGpuXmlParse(text, ""));
    expect(whole == nullptr, "AaGpuXmlParse() took a document with something behind it");
    const Tree none(parser.AaGpuXmlParsePrefix("<a><b></a>", ""));
    expect(none == nullptr, "AaGpuXmlParsePrefix() took what is not well-formed");
}

void positionsAreThoseOfTheText()
{
    const Tree tree = parsed("<a>\n  <b/>\n</a>");
    const AaGpuXmlNode& inner = *childrenOf(documentElement(tree)).front();
    expectEqual(inner.AaGpuXmlGetLine(), 2U, "the line of a node on line 2");
    expectEqual(inner.AaGpuXmlGetColumn(), 3U, "the column of a node at column 3");
}

void treeStandsByItself()
{
    Tree tree;
    {
        std::string text = "<a>" + std::string(100, 'x') + "</a>";
        tree = parsed(text);
        text.assign(text.size(), '#');
    }
    expectEqual(std::string(documentElement(tree).AaGpuXmlGetValue()), std::string(100, 'x'),
                "content after the text has been overwritten");
}

void depthIsNoDanger()
{
    constexpr std::size_t depth = 100'000;
    std::string text;
    for (std::size_t level = 0; level < depth; ++level) {
        text += "<a>";
    }
    for (std::size_t level = 0; level < depth; ++level) {
        text += "</a>";
    }
    parsed(text);
}

constexpr std::array rules{
    Rule{"xml.tree-is-what-the-text-says", "AaGpuXml.hpp", walk,
         "The root has the document element; a node's children are its attributes and then its elements, in the order "
         "of "
         "the text",
         treeIsWhatTheTextSays},
    Rule{"xml.content-is-resolved", "AaGpuXml.hpp", walk,
         "Content is all text directly inside an element, with references resolved and CDATA sections in place; white "
         "space between elements is left out",
         contentIsResolved},
    Rule{"xml.texts-are-utf-8", "AaGpuXml.hpp", walk,
         "UTF-8, US-ASCII and ISO-8859-1 are read, with or without byte order mark; all texts are UTF-8",
         encodingsAreUtf8},
    Rule{"xml.malformed-is-refused", "AaGpuXml.hpp",
         "AaGpuXmlParser AaGpuXmlParse AaGpuXmlLastResult AaGpuXmlLastError",
         "Null for what is not well-formed; AaGpuXmlLastResult() and AaGpuXmlLastError() then tell why",
         malformedIsRefused},
    Rule{"xml.prefix-ends-with-its-element", "AaGpuXml.hpp", walkOfPrefix,
         "AaGpuXmlParsePrefix() takes the document that a text begins with and looks at nothing behind it",
         prefixEndsWithItsElement},
    Rule{"xml.positions-are-those-of-the-text", "AaGpuXml.hpp", walk, "Lines and columns count from 1",
         positionsAreThoseOfTheText},
    Rule{"xml.tree-stands-by-itself", "AaGpuXml.hpp", walk, "A tree does not need the text that it was made of",
         treeStandsByItself},
    Rule{"xml.depth-is-no-danger", "AaGpuXml.hpp", walk,
         "A document of 100,000 elements inside each other is read and deleted without running out of stack",
         depthIsNoDanger},
};

} // namespace

Rules xmlRules()
{
    return rules;
}

} // namespace dorn::conformance
