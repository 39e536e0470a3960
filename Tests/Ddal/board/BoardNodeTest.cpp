// SPDX-License-Identifier: MIT
#include "description/BoardNode.hpp"

#include "BoardTest.hpp"

#include <gtest/gtest.h>

namespace dorn::board {
namespace {

TreeBytes bytes(const std::string& text)
{
    const auto* const data = reinterpret_cast<const std::byte*>(text.data());
    return {data, data + text.size()};
}

TreeProperty reg(unsigned char number)
{
    return {"reg", bytes(std::string{'\0', '\0', '\0', static_cast<char>(number)})};
}

class BoardNodeTest : public ::testing::Test {
protected:
    TreeNode m_tree{"group",
                    {{"text", bytes(std::string("a text\0", 7))},
                     {"list", bytes(std::string("one\0two\0", 8))},
                     {"empty", {}},
                     {"cell", bytes(std::string("\x12\x34\x56\x78", 4))},
                     {"three", bytes("abc")},
                     {"unterminated", bytes("abc")}},
                    {{"b@2", {reg(2)}, {}},
                     {"a@1", {reg(1)}, {}},
                     {"off@3", {reg(3), {"status", bytes(std::string("disabled\0", 9))}}, {}},
                     {"on@4", {reg(4), {"status", bytes(std::string("okay\0", 5))}}, {}},
                     {"plain", {}, {}}}};
    BoardNode m_node{m_tree, "board 'x': ", "/board/group"};

    std::tuple<int, std::string> bad(const std::string& text) const
    {
        return {DDAL_ERROR_BAD_DESCRIPTION, "board 'x': " + text};
    }
};

TEST_F(BoardNodeTest, TextIsWhatStandsBeforeItsZero)
{
    EXPECT_EQ(m_node.text("text"), "a text");
}

TEST_F(BoardNodeTest, CellIsBigEndian)
{
    EXPECT_EQ(m_node.cell("cell"), 0x12345678U);
}

TEST_F(BoardNodeTest, MissingPropertyIsNamed)
{
    EXPECT_EQ(failureOf([&] { m_node.text("nothing"); }), bad("node '/board/group' has no property 'nothing'"));
    EXPECT_EQ(failureOf([&] { m_node.cell("nothing"); }), bad("node '/board/group' has no property 'nothing'"));
}

TEST_F(BoardNodeTest, PropertyThatNeedNotBeThereHasADefault)
{
    EXPECT_EQ(m_node.textIfAny("nothing"), "");
    EXPECT_EQ(m_node.cellIfAny("nothing"), std::nullopt);
    EXPECT_EQ(m_node.textIfAny("text"), "a text");
    EXPECT_EQ(m_node.cellIfAny("cell"), 0x12345678U);
}

TEST_F(BoardNodeTest, TextWithoutTerminatorIsRefused)
{
    const std::string reason = "of node '/board/group' is no text: it does not end with a zero";

    EXPECT_EQ(failureOf([&] { m_node.text("unterminated"); }), bad("property 'unterminated' " + reason));
    EXPECT_EQ(failureOf([&] { m_node.text("empty"); }), bad("property 'empty' " + reason));
}

TEST_F(BoardNodeTest, ListIsNoSingleText)
{
    EXPECT_EQ(failureOf([&] { m_node.text("list"); }),
              bad("property 'list' of node '/board/group' is no single text: it has a zero inside"));
}

TEST_F(BoardNodeTest, ListIsSearched)
{
    EXPECT_TRUE(m_node.lists("list", "one"));
    EXPECT_TRUE(m_node.lists("list", "two"));
    EXPECT_FALSE(m_node.lists("list", "on"));
    EXPECT_EQ(failureOf([&] { m_node.lists("unterminated", "abc"); }),
              bad("property 'unterminated' of node '/board/group' is no list of texts: it does not end with a zero"));
}

TEST_F(BoardNodeTest, CellsOfAnotherSizeAreRefused)
{
    EXPECT_EQ(failureOf([&] { m_node.cell("three"); }),
              bad("property 'three' of node '/board/group' has 3 bytes, not 4"));
    EXPECT_EQ(failureOf([&] { m_node.cells("cell", 3); }),
              bad("property 'cell' of node '/board/group' has 4 bytes, not 12"));
    EXPECT_EQ(failureOf([&] { m_node.cell("empty"); }),
              bad("property 'empty' of node '/board/group' has 0 bytes, not 4"));
}

TEST_F(BoardNodeTest, ChildIsFoundByItsName)
{
    EXPECT_EQ(m_node.child("plain").path(), "/board/group/plain");
    EXPECT_EQ(failureOf([&] { m_node.child("nothing"); }),
              std::tuple(DDAL_ERROR_NOT_FOUND, "board 'x': node '/board/group' has no node 'nothing'"));
}

TEST_F(BoardNodeTest, ChildIsFoundByItsNumberWhateverItsName)
{
    m_tree.children[0].name = "called-otherwise";

    EXPECT_EQ(m_node.numberedChild(2).path(), "/board/group/called-otherwise");
    EXPECT_EQ(failureOf([&] { m_node.numberedChild(7); }),
              std::tuple(DDAL_ERROR_NOT_FOUND, "board 'x': node '/board/group' has no node with reg 7"));
}

TEST_F(BoardNodeTest, NodeThatIsNotInUseIsNotThere)
{
    EXPECT_EQ(m_node.findChild("off@3"), std::nullopt);
    EXPECT_EQ(std::get<0>(failureOf([&] { m_node.numberedChild(3); })), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(m_node.numberedChild(4).path(), "/board/group/on@4");
}

TEST_F(BoardNodeTest, NumberedChildrenComeInTheOrderOfTheirNumbers)
{
    std::vector<std::string> paths;
    for (const BoardNode& child : m_node.numberedChildren()) {
        paths.push_back(child.path());
    }

    EXPECT_EQ(paths, (std::vector<std::string>{"/board/group/a@1", "/board/group/b@2", "/board/group/on@4"}));
}

TEST_F(BoardNodeTest, BrokenNumberOfOneChildIsInNobodyElsesWay)
{
    m_tree.children[0].properties[0].value = bytes("xyz");

    EXPECT_EQ(m_node.numberedChild(1).path(), "/board/group/a@1");
    EXPECT_EQ(failureOf([&] { m_node.numberedChild(2); }),
              bad("property 'reg' of node '/board/group/b@2' has 3 bytes, not 4"));
}

TEST_F(BoardNodeTest, BrokenStatusOfOneChildIsInNobodyElsesWay)
{
    m_tree.children[0].properties.push_back({"status", bytes("okay")});

    EXPECT_EQ(m_node.numberedChild(1).path(), "/board/group/a@1");
    EXPECT_EQ(failureOf([&] { m_node.numberedChild(2); }),
              bad("property 'status' of node '/board/group/b@2' is no list of texts: it does not end with a zero"));
}

} // namespace
} // namespace dorn::board
