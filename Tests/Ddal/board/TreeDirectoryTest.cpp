// SPDX-License-Identifier: MIT
#include "description/TreeDirectory.hpp"

#include "TestNode.hpp"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace dorn::board {
namespace {

class TreeDirectoryTest : public ::testing::Test {
protected:
    TreeNode read() const { return readTreeDirectory(m_path, "board"); }

    std::string error() const
    {
        try {
            read();
            return "";
        } catch (const TreeError& error) {
            return error.what();
        }
    }

    testkit::TestNode m_node;
    std::string m_path = m_node.boardRoot() + "/tree";
};

TEST_F(TreeDirectoryTest, RootAndTheWantedNodeAreRead)
{
    m_node.writeBoardFile("/tree/model", std::string("m\0", 2));
    m_node.writeBoardFile("/tree/cpus/name", "cpus");
    m_node.writeBoardFile("/tree/board/b", "2");
    m_node.writeBoardFile("/tree/board/a", "");
    m_node.writeBoardFile("/tree/board/unit@0/reg", std::string(4, '\0'));

    const TreeNode root = read();

    EXPECT_EQ(root.name, "");
    EXPECT_EQ(root.properties.at(0).name, "model");
    EXPECT_EQ(root.properties[0].value.size(), 2U);
    ASSERT_EQ(root.children.size(), 1U);
    const TreeNode& board = root.children[0];
    EXPECT_EQ(board.name, "board");
    ASSERT_EQ(board.properties.size(), 2U);
    EXPECT_EQ(board.properties[0].name, "a");
    EXPECT_TRUE(board.properties[0].value.empty());
    EXPECT_EQ(board.properties[1].name, "b");
    EXPECT_EQ(board.children.at(0).name, "unit@0");
    EXPECT_EQ(board.children[0].properties.at(0).value, TreeBytes(4));
}

TEST_F(TreeDirectoryTest, MissingDirectoryIsReported)
{
    EXPECT_EQ(error(), "cannot be read: No such file or directory");
}

TEST_F(TreeDirectoryTest, LinkIsNotFollowed)
{
    m_node.writeBoardFile("/tree/board/a", "");
    std::filesystem::create_directory_symlink(m_path, m_path + "/board/round");

    EXPECT_EQ(error(), "is damaged: 'round' in it is neither file nor directory");
}

TEST_F(TreeDirectoryTest, NamedPipeIsNotOpened)
{
    m_node.writeBoardFile("/tree/board/a", "");
    ASSERT_EQ(mkfifo((m_path + "/board/pipe").c_str(), 0600), 0);

    EXPECT_EQ(error(), "is damaged: 'pipe' in it is neither file nor directory");
}

TEST_F(TreeDirectoryTest, NameThatWouldSpeakToATerminalIsRefused)
{
    m_node.writeBoardFile("/tree/board/\x1b[2J", "");

    EXPECT_EQ(error(), "is damaged: a node or property has a name that no device tree has");
}

TEST_F(TreeDirectoryTest, LargePropertyIsRefused)
{
    m_node.writeBoardFile("/tree/board/large", std::string(largestTreeProperty + 1, 'x'));

    EXPECT_EQ(error(), "cannot be read: more than 65536 bytes");
}

TEST_F(TreeDirectoryTest, DeepTreeIsRefused)
{
    std::string path = "/tree";
    for (unsigned depth = 0; depth < deepestTree; ++depth) {
        path += "/board";
    }
    m_node.writeBoardFile(path + "/a", "");

    EXPECT_EQ(error(), "has more than 16 nodes below each other");
}

TEST_F(TreeDirectoryTest, WrongDirectoryIsGivenUpSoon)
{
    m_node.writeBoardFile("/tree/first", "");
    for (std::size_t index = 0; index < mostTreeEntries; ++index) {
        std::filesystem::create_hard_link(m_path + "/first", m_path + "/" + std::to_string(index));
    }

    EXPECT_EQ(error(), "has more than 4096 nodes and properties");
}

} // namespace
} // namespace dorn::board
