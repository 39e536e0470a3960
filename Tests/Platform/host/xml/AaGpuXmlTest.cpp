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

TEST_F(AaGpuXmlTest, WhiteSpaceBetweenElementsIsNoContent)
{
    EXPECT_EQ(valueOf(documentElementOf("<a>\n  <b/>\n  <!-- no -->\r\n<c/>\t&#10;<d/><![CDATA[ ]]></a>")), "");
    EXPECT_EQ(valueOf(documentElementOf("<a>\n  1 <b/>\n  <c/> 2\n</a>")), "\n  1  2\n");
    EXPECT_EQ(valueOf(documentElementOf("<a> <!-- all of it counts without an element --> &#32;</a>")), "   ");
    const AaGpuXmlNode& nested = documentElementOf("<a>1<b>2<c/>3<d>4<e/>5</d>6</b>7<f>8</f>9</a>");
    EXPECT_EQ(valueOf(nested), "179");
    EXPECT_EQ(valueOf(childOf(nested, 0)), "236");
    EXPECT_EQ(valueOf(childOf(childOf(nested, 0), 1)), "45");
    EXPECT_EQ(valueOf(childOf(nested, 1)), "8");
}

TEST_F(AaGpuXmlTest, EntitiesAndCharacterReferencesAreResolved)
{
    EXPECT_EQ(valueOf(documentElementOf("<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x42;&#xE4;</a>")), "<>&\"'AB\xC3\xA4");
    EXPECT_EQ(valueOf(childOf(documentElementOf("<a x='&lt;&#65;'/>"), 0)), "<A");
}

TEST_F(AaGpuXmlTest, LineEndsBecomeLineFeeds)
{
    EXPECT_EQ(valueOf(documentElementOf("<a>1\r\n2\r3\n</a>")), "1\n2\n3\n");
    EXPECT_EQ(valueOf(documentElementOf("<a>\r\n 1</a>")), "\n 1");
    EXPECT_EQ(valueOf(documentElementOf("<a>\r</a>")), "\n");
    EXPECT_EQ(valueOf(documentElementOf("<a>&#13;<![CDATA[\r\n\r]]>&#13;&#10;</a>")), "\r\n\n\r\n");
}

TEST_F(AaGpuXmlTest, WhiteSpaceInAttributesBecomesBlanks)
{
    const AaGpuXmlNode& element = documentElementOf("<a x=' 1\t2\n3\r\n4\r5 ' y='&#9;&#10;&#13;'/>");
    EXPECT_EQ(valueOf(childOf(element, 0)), " 1 2 3 4 5 ");
    EXPECT_EQ(valueOf(childOf(element, 1)), "\t\n\r");
}

TEST_F(AaGpuXmlTest, AttributesMayHaveTheOtherQuoteAndMoreThanIsSign)
{
    const AaGpuXmlNode& element = documentElementOf("<a x = '\">' y\n=\n\"'\" z=''/>");
    EXPECT_EQ(valueOf(childOf(element, 0)), "\">");
    EXPECT_EQ(valueOf(childOf(element, 1)), "'");
    EXPECT_EQ(valueOf(childOf(element, 2)), "");
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
    EXPECT_EQ(positionOf(childOf(element, 0)), "4:2");
    EXPECT_EQ(positionOf(childOf(element, 1)), "5:2");
    EXPECT_EQ(positionOf(childOf(element, 2)), "5:6");
    EXPECT_EQ(positionOf(childOf(childOf(element, 2), 0)), "5:9");
    EXPECT_EQ(positionOf(childOf(element, 3)), "6:1");
}

TEST_F(AaGpuXmlTest, LineEndsInsideTagsCount)
{
    const AaGpuXmlNode& element = documentElementOf("<a\n><b\r\n><c\r><d\n\n x\n=\r\n'1'\n/><e/></c\n></b\n></a>");
    const AaGpuXmlNode& c = childOf(childOf(element, 0), 0);
    EXPECT_EQ(positionOf(childOf(element, 0)), "2:2");
    EXPECT_EQ(positionOf(c), "3:2");
    EXPECT_EQ(positionOf(childOf(c, 0)), "4:2");
    EXPECT_EQ(positionOf(childOf(childOf(c, 0), 0)), "6:2");
    EXPECT_EQ(positionOf(childOf(c, 1)), "9:3");
}

TEST_F(AaGpuXmlTest, LineEndsInTextsThatReadOtherwiseCount)
{
    const AaGpuXmlNode& element =
        documentElementOf("<a>&lt;\r\n<!--\n--><b x='\n&amp;\r\n'>\r\n&gt;</b><![CDATA[\n\n]]>\r<c/></a>");
    EXPECT_EQ(positionOf(childOf(element, 0)), "3:4");
    EXPECT_EQ(positionOf(childOf(element, 1)), "9:1");
}

TEST_F(AaGpuXmlTest, ManyThreadsMayAskForLinesFirst)
{
    const AaGpuXmlNode& element = documentElementOf("<a>\n<b/>\n<c/></a>");
    std::vector<std::thread> readers;
    for (int count = 0; count < 4; ++count) {
        readers.emplace_back([&element] {
            EXPECT_EQ(positionOf(childOf(element, 0)), "2:1");
            EXPECT_EQ(positionOf(childOf(element, 1)), "3:1");
        });
    }
    for (std::thread& reader : readers) {
        reader.join();
    }
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
    EXPECT_EQ(errorOf(std::string("\xFF\xFE<\0a\0/\0>\0", 10)), "1:1: encoding 'UTF-16' is not supported");
    EXPECT_EQ(errorOf(std::string("\xFE\xFF\0<\0a\0/\0>", 10)), "1:1: encoding 'UTF-16' is not supported");
    EXPECT_EQ(m_parser.AaGpuXmlLastResult(), AA_GPU_XML_NOT_SUPPORTED);
    EXPECT_EQ(errorOf(std::string("<\0a\0/\0>\0", 8)), "1:2: there is a zero byte");
}

TEST_F(AaGpuXmlTest, ByteOrderMarkIsOfUtf8Only)
{
    EXPECT_EQ(errorOf("\xEF\xBB\xBF<?xml version='1.0' encoding='latin1'?><a/>"),
              "1:1: there is text outside the element");
    EXPECT_NE(parse("\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?><a/>"), nullptr);
}

TEST_F(AaGpuXmlTest, AsciiHasNothingElse)
{
    const std::string begin = "<?xml version='1.0' encoding='US-ASCII'?><a>";
    EXPECT_EQ(valueOf(documentElementOf(begin + "&#228;</a>")), "\xC3\xA4");
    EXPECT_EQ(errorOf(begin + "\xC3\xA4</a>"), "1:45: there is a byte that is not US-ASCII");
    EXPECT_NE(Tree(m_parser.AaGpuXmlParsePrefix(begin + "</a>\xC3", "")), nullptr);
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

TEST_F(AaGpuXmlTest, ElementMayHaveAMillionAttributes)
{
    constexpr int count = 1'000'000;
    std::string text = "<a";
    for (int index = 0; index < count; ++index) {
        text += " x" + std::to_string(index) + "=''";
    }
    m_tree = parse(text + "/>");
    ASSERT_NE(m_tree, nullptr) << m_parser.AaGpuXmlLastError();
    EXPECT_EQ(namesIn(childOf(*m_tree, 0)).size(), count);
    EXPECT_EQ(errorOf(text + " x77=''/>"), "1:" + std::to_string(text.size() + 2) + ": an attribute is there twice");
}

TEST_F(AaGpuXmlTest, ContentMayBeInManyPieces)
{
    constexpr std::size_t count = 100'000;
    std::string text;
    for (std::size_t index = 0; index < count; ++index) {
        text += "1<b/><!-- -->2<![CDATA[3]]>";
    }
    EXPECT_EQ(valueOf(documentElementOf("<a>" + text + "</a>")).size(), 3 * count);
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
