// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaGpuXml.hpp"

#include <gtest/gtest.h>
#include <memory>

namespace {

class TrailerNodesTest : public ::testing::Test {
protected:
    const AaGpuXmlNode* parse(const char* text)
    {
        m_root.reset(AaGpuXmlParser(0).AaGpuXmlParse(text, ""));
        return FindXmlTag(m_root.get(), "trailer");
    }

    std::unique_ptr<AaGpuXmlNode> m_root;
};

TEST_F(TrailerNodesTest, ChildIsFoundByItsExactName)
{
    const AaGpuXmlNode* const trailer = parse("<trailer><swid>1</swid><SwIds>2</SwIds><SwId>3</SwId></trailer>");

    EXPECT_STREQ(FindXmlTag(trailer, "SwId")->AaGpuXmlGetValue(), "3");
    EXPECT_EQ(FindXmlTag(trailer, "Sw"), nullptr);
    EXPECT_EQ(FindXmlTag(trailer, ""), nullptr);
}

TEST_F(TrailerNodesTest, FirstChildOfANameCounts)
{
    const AaGpuXmlNode* const trailer = parse("<trailer><SwId>1</SwId><SwId>2</SwId></trailer>");

    EXPECT_STREQ(getStringValueFromNode(trailer, "SwId"), "1");
}

TEST_F(TrailerNodesTest, AttributeIsAChild)
{
    const AaGpuXmlNode* const trailer = parse("<trailer Crc32='0x10'><Crc32>7</Crc32></trailer>");

    EXPECT_EQ(getU32ValueFromNode(trailer, "Crc32"), 16U);
}

TEST_F(TrailerNodesTest, NothingDeeperIsFound)
{
    EXPECT_EQ(FindXmlTag(parse("<trailer><a><SwId>1</SwId></a></trailer>"), "SwId"), nullptr);
    EXPECT_EQ(parse("<image><trailer/></image>"), nullptr);
}

TEST_F(TrailerNodesTest, NodeWithoutChildrenHasNone)
{
    EXPECT_EQ(FindXmlTag(parse("<trailer>SwId</trailer>"), "SwId"), nullptr);
    EXPECT_EQ(FindXmlTag(nullptr, "SwId"), nullptr);
}

TEST_F(TrailerNodesTest, MissingChildIsZeroAndEmpty)
{
    const AaGpuXmlNode* const trailer = parse("<trailer><SwId/></trailer>");

    EXPECT_STREQ(getStringValueFromNode(trailer, "Version"), "");
    EXPECT_EQ(getU32ValueFromNode(trailer, "Version"), 0U);
    EXPECT_STREQ(getStringValueFromNode(trailer, "SwId"), "");
    EXPECT_EQ(getU32ValueFromNode(trailer, "SwId"), 0U);
}

TEST_F(TrailerNodesTest, NumberIsReadByItsRule)
{
    const AaGpuXmlNode* const trailer =
        parse("<trailer><a>6699</a><b>0x1a2b</b><c>0X1A2B</c><d>4294967296</d></trailer>");

    EXPECT_EQ(getU32ValueFromNode(trailer, "a"), 6699U);
    EXPECT_EQ(getU32ValueFromNode(trailer, "b"), 0x1A2BU);
    EXPECT_EQ(getU32ValueFromNode(trailer, "c"), 0x1A2BU);
    EXPECT_EQ(getU32ValueFromNode(trailer, "d"), 0xFFFFFFFFU);
}

} // namespace
