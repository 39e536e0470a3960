// SPDX-License-Identifier: MIT
#include "AaGpuXml.hpp"

#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using Tree = std::unique_ptr<AaGpuXmlNode>;

class AaGpuXmlTest : public ::testing::Test {
protected:
    Tree parse(const std::string& text, const std::string& encoding = {})
    {
        return Tree(m_parser.AaGpuXmlParse(text, encoding));
    }

    /// The document element of a text that must be well-formed.
    const AaGpuXmlNode& documentElementOf(const std::string& text)
    {
        m_trees.push_back(parse(text));
        if (!m_trees.back()) {
            throw std::invalid_argument(text + ": " + m_parser.AaGpuXmlLastError());
        }
        return **m_trees.back()->AaGpuXmlGetFirstChildren();
    }

    std::string errorOf(const std::string& text)
    {
        EXPECT_EQ(parse(text), nullptr) << text;
        return m_parser.AaGpuXmlLastError();
    }

    AaGpuXmlParser m_parser{0};
    Tree m_tree;
    std::vector<Tree> m_trees; ///< those of documentElementOf()
};

std::vector<std::string> namesIn(const AaGpuXmlNode& parent)
{
    std::vector<std::string> names;
    for (auto child = parent.AaGpuXmlGetFirstChildren(); child != parent.AaGpuXmlGetLastChildren(); ++child) {
        names.emplace_back((*child)->AaGpuXmlGetName());
    }
    return names;
}

const AaGpuXmlNode& childOf(const AaGpuXmlNode& parent, int index)
{
    return **std::next(parent.AaGpuXmlGetFirstChildren(), index);
}

std::string valueOf(const AaGpuXmlNode& node)
{
    return node.AaGpuXmlGetValue();
}

std::string positionOf(const AaGpuXmlNode& node)
{
    return std::to_string(node.AaGpuXmlGetLine()) + ":" + std::to_string(node.AaGpuXmlGetColumn());
}

TEST_F(AaGpuXmlTest, RootStandsAboveTheDocumentElement)
{
    m_tree = parse("<raml/>");
    ASSERT_NE(m_tree, nullptr);
    EXPECT_EQ(m_tree->AaGpuXmlGetType(), AA_GPU_XML_ROOT_NODE);
    EXPECT_STREQ(m_tree->AaGpuXmlGetName(), "");
    EXPECT_STREQ(m_tree->AaGpuXmlGetValue(), "");
    EXPECT_EQ(m_tree->AaGpuXmlGetNext(), nullptr);
    EXPECT_EQ(positionOf(*m_tree), "1:1");
    EXPECT_EQ(namesIn(*m_tree), std::vector<std::string>{"raml"});
    EXPECT_EQ(childOf(*m_tree, 0).AaGpuXmlGetType(), AA_GPU_XML_ELEMENT_NODE);
}

TEST_F(AaGpuXmlTest, AttributesAreTheFirstChildrenInTheOrderOfTheText)
{
    const AaGpuXmlNode& element = documentElementOf("<a><b/><c/></a>");
    EXPECT_EQ(namesIn(element), (std::vector<std::string>{"b", "c"}));
    const AaGpuXmlNode& mixed = documentElementOf("<a z='1' y=\"2\">text<b x='3'/>more<c/></a>");
    EXPECT_EQ(namesIn(mixed), (std::vector<std::string>{"z", "y", "b", "c"}));
    EXPECT_EQ(childOf(mixed, 0).AaGpuXmlGetType(), AA_GPU_XML_ATTRIBUTE_NODE);
    EXPECT_EQ(childOf(mixed, 1).AaGpuXmlGetType(), AA_GPU_XML_ATTRIBUTE_NODE);
    EXPECT_EQ(childOf(mixed, 2).AaGpuXmlGetType(), AA_GPU_XML_ELEMENT_NODE);
    EXPECT_EQ(valueOf(childOf(mixed, 0)), "1");
    EXPECT_EQ(valueOf(childOf(mixed, 1)), "2");
    EXPECT_EQ(valueOf(childOf(childOf(mixed, 2), 0)), "3");
}

TEST_F(AaGpuXmlTest, NextLeadsFromAttributesToElementsAndEnds)
{
    const AaGpuXmlNode& element = documentElementOf("<a x='1'><b/><c/></a>");
    const AaGpuXmlNode* node = *element.AaGpuXmlGetFirstChildren();
    EXPECT_STREQ(node->AaGpuXmlGetName(), "x");
    node = node->AaGpuXmlGetNext();
    EXPECT_STREQ(node->AaGpuXmlGetName(), "b");
    node = node->AaGpuXmlGetNext();
    EXPECT_STREQ(node->AaGpuXmlGetName(), "c");
    EXPECT_EQ(node->AaGpuXmlGetNext(), nullptr);
}

TEST_F(AaGpuXmlTest, ElementWithoutAttributesAndElementsHasNoChildren)
{
    EXPECT_FALSE(documentElementOf("<a>text</a>").AaGpuXmlHasChildren());
    EXPECT_TRUE(documentElementOf("<a x=''/>").AaGpuXmlHasChildren());
    EXPECT_TRUE(documentElementOf("<a><b/></a>").AaGpuXmlHasChildren());
    const AaGpuXmlNode& empty = documentElementOf("<a/>");
    EXPECT_EQ(empty.AaGpuXmlGetFirstChildren(), empty.AaGpuXmlGetLastChildren());
}

TEST_F(AaGpuXmlTest, IteratorStepsInBothForms)
{
    const AaGpuXmlNode& element = documentElementOf("<a><b/><c/></a>");
    auto iterator = element.AaGpuXmlGetFirstChildren();
    EXPECT_STREQ((*iterator++)->AaGpuXmlGetName(), "b");
    EXPECT_STREQ((*iterator)->AaGpuXmlGetName(), "c");
    EXPECT_EQ(++iterator, element.AaGpuXmlGetLastChildren());
}

TEST_F(AaGpuXmlTest, ContentKeepsItsWhiteSpace)
{
    EXPECT_EQ(valueOf(documentElementOf("<a>  1\n\t2 </a>")), "  1\n\t2 ");
    EXPECT_EQ(valueOf(documentElementOf("<a> </a>")), " ");
}

TEST_F(AaGpuXmlTest, ContentIsAllTextDirectlyInsideJoined)
{
    EXPECT_EQ(valueOf(documentElementOf("<a>1<b>x</b>2<!-- no -->3<?pi no?>4<![CDATA[<5>]]></a>")), "1234<5>");
    EXPECT_EQ(valueOf(documentElementOf("<a><b>x</b>2</a>")), "2");
    EXPECT_EQ(valueOf(documentElementOf("<a><![CDATA[]]>2<b/>3</a>")), "23");
}

TEST_F(AaGpuXmlTest, EntitiesAndCharacterReferencesAreResolved)
{
    EXPECT_EQ(valueOf(documentElementOf("<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x42;&#xE4;</a>")), "<>&\"'AB\xC3\xA4");
    EXPECT_EQ(valueOf(childOf(documentElementOf("<a x='&lt;&#65;'/>"), 0)), "<A");
}

TEST_F(AaGpuXmlTest, LineEndsBecomeLineFeeds)
{
    EXPECT_EQ(valueOf(documentElementOf("<a>1\r\n2\r3\n</a>")), "1\n2\n3\n");
}

TEST_F(AaGpuXmlTest, CommentsDeclarationsAndInstructionsAreNoNodes)
{
    m_tree =
        parse("<?xml version='1.0'?>\n<!DOCTYPE a [<!ELEMENT a ANY>]>\n<!-- one -->\n<?pi two?>\n<a/>\n<!-- three -->");
    ASSERT_NE(m_tree, nullptr) << m_parser.AaGpuXmlLastError();
    EXPECT_EQ(namesIn(*m_tree), std::vector<std::string>{"a"});
}

TEST_F(AaGpuXmlTest, NodesKnowLineAndColumn)
{
    const AaGpuXmlNode& element =
        documentElementOf("<?xml version='1.0'?>\n\n  <a\n x='1'>\n\t<b/><c y='2'/>\r\n<d/></a>");
    EXPECT_EQ(positionOf(element), "3:3");
    EXPECT_EQ(positionOf(childOf(element, 0)), "3:3");
    EXPECT_EQ(positionOf(childOf(element, 1)), "5:2");
    EXPECT_EQ(positionOf(childOf(element, 2)), "5:6");
    EXPECT_EQ(positionOf(childOf(childOf(element, 2), 0)), "5:6");
    EXPECT_EQ(positionOf(childOf(element, 3)), "6:1");
}

TEST_F(AaGpuXmlTest, ColumnsCountTheBytesOfTheText)
{
    EXPECT_EQ(positionOf(childOf(documentElementOf("<a>\xC3\xA4&lt;<b/></a>"), 0)), "1:10");
    const std::string latin1 = "<?xml version='1.0' encoding='ISO-8859-1'?>\n<a>\xE4<b/></a>";
    EXPECT_EQ(positionOf(childOf(documentElementOf(latin1), 0)), "2:5");
}

TEST_F(AaGpuXmlTest, ByteOrderMarkIsPassedOver)
{
    EXPECT_EQ(positionOf(documentElementOf("\xEF\xBB\xBF<a/>")), "1:1");
}

TEST_F(AaGpuXmlTest, DeclaredEncodingCounts)
{
    EXPECT_EQ(valueOf(documentElementOf("<?xml version='1.0' encoding='iso-8859-1'?><a>\xE4</a>")), "\xC3\xA4");
    EXPECT_EQ(valueOf(documentElementOf("<?xml version='1.0' encoding='UTF-8'?><a>\xC3\xA4</a>")), "\xC3\xA4");
}

TEST_F(AaGpuXmlTest, GivenEncodingOverrulesTheDeclaredOne)
{
    m_tree = parse("<?xml version='1.0' encoding='UTF-8'?><a>\xE4</a>", "ISO-8859-1");
    ASSERT_NE(m_tree, nullptr);
    EXPECT_EQ(valueOf(childOf(*m_tree, 0)), "\xC3\xA4");
}

TEST_F(AaGpuXmlTest, UnknownEncodingIsAFault)
{
    EXPECT_EQ(parse("<a/>", "KOI8-R"), nullptr);
    EXPECT_EQ(m_parser.AaGpuXmlLastError(), "1:1: encoding 'KOI8-R' is not supported");
    EXPECT_EQ(errorOf("<?xml version='1.0' encoding='UTF-16'?><a/>"), "1:1: encoding 'UTF-16' is not supported");
}

TEST_F(AaGpuXmlTest, EncodingThatIsNoNameIsNotRepeatedInTheFault)
{
    EXPECT_EQ(errorOf("<?xml version='1.0' encoding='<x>\n'?><a/>"), "1:1: the encoding is not supported");
}

TEST_F(AaGpuXmlTest, GoodTextClearsTheLastError)
{
    errorOf("<a>");
    EXPECT_NE(parse("<a/>"), nullptr);
    EXPECT_EQ(m_parser.AaGpuXmlLastError(), "");
}

TEST_F(AaGpuXmlTest, UnclosedAndMismatchedElementsAreFaults)
{
    const std::string reason = ": an element is not closed, or an end tag has another name";
    EXPECT_EQ(errorOf("<a>"), "1:3" + reason);
    EXPECT_EQ(errorOf("<a>\n<b>\n</a>"), "3:3" + reason);
    EXPECT_EQ(errorOf("<a>\n</b>"), "2:3" + reason);
    EXPECT_EQ(errorOf("<a></a>\n</b>"), "2:3" + reason);
}

TEST_F(AaGpuXmlTest, BrokenMarkupIsAFault)
{
    EXPECT_EQ(errorOf("<a><1/></a>"), "1:5: '<' begins neither an element nor anything else");
    EXPECT_EQ(errorOf("<?xml version='1.0'"), "1:19: a declaration or processing instruction is wrong or does not end");
    EXPECT_EQ(errorOf("<a><!-- b</a>"), "1:13: a comment is wrong or does not end");
    EXPECT_EQ(errorOf("<a><![CDATA[ b</a>"), "1:13: a CDATA section is wrong or does not end");
    EXPECT_EQ(errorOf("<!DOCTYPE a [\n<a/>"), "2:1: a document type declaration is wrong or does not end");
    EXPECT_EQ(errorOf("<a x/>"), "1:6: an attribute is wrong or does not end");
    EXPECT_EQ(errorOf("<a\nx='1>"), "2:4: an attribute is wrong or does not end");
    EXPECT_EQ(errorOf("<a"), "1:2: a start tag is wrong or does not end");
    EXPECT_EQ(errorOf("<a></a"), "1:6: an end tag is wrong or does not end");
}

TEST_F(AaGpuXmlTest, TextWithoutAnElementIsAFault)
{
    EXPECT_EQ(errorOf(""), "1:1: there is no element");
    EXPECT_EQ(errorOf(" \n "), "2:2: there is no element");
    EXPECT_EQ(errorOf("<?xml version='1.0'?><!-- a -->"), "1:32: there is no element");
}

TEST_F(AaGpuXmlTest, SecondDocumentElementIsAFault)
{
    EXPECT_EQ(errorOf("<a/>\n <b/>"), "2:2: there is a second element beside the first");
}

TEST_F(AaGpuXmlTest, TextOutsideTheDocumentElementIsAFault)
{
    EXPECT_EQ(errorOf("\n x<a/>"), "2:2: there is text outside the element");
    EXPECT_EQ(errorOf("<a/>\r\n\r\n  x"), "3:3: there is text outside the element");
    EXPECT_EQ(errorOf("no XML at all"), "1:1: there is text outside the element");
    EXPECT_NE(errorOf("<a/><![CDATA[x]]>"), "");
    EXPECT_NE(errorOf("<![CDATA[]]><a/>"), "");
}

TEST_F(AaGpuXmlTest, ZeroByteIsAFaultWhereverItStands)
{
    using namespace std::string_literals;
    EXPECT_EQ(errorOf("\0<a/>"s), "1:1: there is a zero byte");
    EXPECT_EQ(errorOf("<a>\n1\0</a>"s), "2:2: there is a zero byte");
    EXPECT_EQ(errorOf("<a/>\0"s), "1:5: there is a zero byte");
}

TEST_F(AaGpuXmlTest, WhatStandsBehindADocumentOfItsOwnExtentIsNotLookedAt)
{
    using namespace std::string_literals;
    for (const std::string& behind : {""s, "\x40"s, "\x56\x34\x12"s, "<>"s, "<a"s, ">>>"s, "<b/>"s, "&"s, "\xFF\xFE"s,
                                      "\n\x56\x34"s, "\0<b/>"s, "<!--"s, "</a>"s}) {
        m_tree.reset(m_parser.AaGpuXmlParsePrefix("<?xml version='1.0'?>\n<a x='>'>1<b/></a>" + behind, ""));
        ASSERT_NE(m_tree, nullptr) << behind << m_parser.AaGpuXmlLastError();
        EXPECT_EQ(m_parser.AaGpuXmlLastResult(), AA_GPU_XML_OK);
        EXPECT_EQ(namesIn(*m_tree), std::vector<std::string>{"a"});
        EXPECT_EQ(namesIn(childOf(*m_tree, 0)), (std::vector<std::string>{"x", "b"}));
        EXPECT_EQ(valueOf(childOf(*m_tree, 0)), "1");
    }
}

TEST_F(AaGpuXmlTest, DocumentInFrontOfSomethingElseIsReadAsStrictly)
{
    using namespace std::string_literals;
    for (const std::string& text :
         {""s, "\x56\x34"s, "x<a/>"s, "<a>"s, "<a><b></a>\x40"s, "<a></b>\x40"s, "<a>\0</a>"s}) {
        EXPECT_EQ(m_parser.AaGpuXmlParsePrefix(text, ""), nullptr) << text;
        EXPECT_EQ(m_parser.AaGpuXmlLastResult(), AA_GPU_XML_NOT_WELL_FORMED) << text;
        EXPECT_NE(m_parser.AaGpuXmlLastError(), "") << text;
    }
}

TEST_F(AaGpuXmlTest, ResultTellsWhatCameOfTheLastText)
{
    EXPECT_EQ(m_parser.AaGpuXmlLastResult(), AA_GPU_XML_OK);
    EXPECT_EQ(parse("<a>"), nullptr);
    EXPECT_EQ(m_parser.AaGpuXmlLastResult(), AA_GPU_XML_NOT_WELL_FORMED);
    EXPECT_EQ(parse("<a/>", "KOI8-R"), nullptr);
    EXPECT_EQ(m_parser.AaGpuXmlLastResult(), AA_GPU_XML_NOT_SUPPORTED);
    EXPECT_NE(parse("<a/>"), nullptr);
    EXPECT_EQ(m_parser.AaGpuXmlLastResult(), AA_GPU_XML_OK);
}

TEST_F(AaGpuXmlTest, DeepDocumentTakesNoStack)
{
    constexpr std::size_t depth = 300'000;
    std::string text;
    for (std::size_t level = 0; level < depth; ++level) {
        text += "<a>";
    }
    for (std::size_t level = 0; level < depth; ++level) {
        text += "</a>";
    }
    m_tree = parse(text);
    ASSERT_NE(m_tree, nullptr);
    std::size_t found = 0;
    for (const AaGpuXmlNode* node = m_tree.get(); node->AaGpuXmlHasChildren();
         node = *node->AaGpuXmlGetFirstChildren()) {
        ++found;
    }
    EXPECT_EQ(found, depth);
    m_tree.reset();
}

TEST_F(AaGpuXmlTest, TreeOutlivesItsTextAndParser)
{
    {
        AaGpuXmlParser parser(0);
        std::string text = "<a x='1'>content</a>";
        m_tree.reset(parser.AaGpuXmlParse(text, ""));
        text.assign(text.size(), '#');
    }
    EXPECT_EQ(valueOf(childOf(*m_tree, 0)), "content");
    EXPECT_EQ(valueOf(childOf(childOf(*m_tree, 0), 0)), "1");
}

TEST_F(AaGpuXmlTest, TreeMayBeReadByManyThreads)
{
    const AaGpuXmlNode& element = documentElementOf("<a x='1'><b>2</b></a>");
    std::vector<std::thread> readers;
    for (int count = 0; count < 4; ++count) {
        readers.emplace_back([&element] {
            for (int round = 0; round < 1000; ++round) {
                EXPECT_EQ(valueOf(childOf(element, 1)), "2");
            }
        });
    }
    for (std::thread& reader : readers) {
        reader.join();
    }
}

} // namespace
