// SPDX-License-Identifier: MIT
#include "description/TreeBlob.hpp"

#include "TestNode.hpp"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <libfdt.h>
#include <sys/stat.h>

namespace dorn::board {
namespace {

/// A blob that is written node by node.
class BlobWriter {
public:
    BlobWriter()
    {
        fdt_create(m_blob.data(), static_cast<int>(m_blob.size()));
        fdt_finish_reservemap(m_blob.data());
        fdt_begin_node(m_blob.data(), "");
    }
    BlobWriter& begin(const std::string& name)
    {
        fdt_begin_node(m_blob.data(), name.c_str());
        return *this;
    }
    BlobWriter& property(const std::string& name, const std::string& value)
    {
        fdt_property(m_blob.data(), name.c_str(), value.data(), static_cast<int>(value.size()));
        return *this;
    }
    BlobWriter& end()
    {
        fdt_end_node(m_blob.data());
        return *this;
    }
    TreeBytes blob()
    {
        end();
        EXPECT_EQ(fdt_finish(m_blob.data()), 0);
        m_blob.resize(fdt_totalsize(m_blob.data()));
        return m_blob;
    }

private:
    TreeBytes m_blob = TreeBytes(8192);
};

TreeBytes goodBlob()
{
    return BlobWriter()
        .property("model", std::string("m\0", 2))
        .begin("cpus")
        .end()
        .begin("board")
        .property("compatible", std::string("c\0", 2))
        .begin("unit@0")
        .property("empty", "")
        .end()
        .end()
        .blob();
}

std::string textOf(const TreeBytes& value)
{
    return {reinterpret_cast<const char*>(value.data()), value.size()};
}

std::string errorOf(const TreeBytes& blob)
{
    try {
        parseTreeBlob(blob, "board");
        return "";
    } catch (const TreeError& error) {
        return error.what();
    }
}

void putCell(TreeBytes& blob, std::size_t offset, std::uint32_t value)
{
    fdt32_st(blob.data() + offset, value);
}

TEST(TreeBlobTest, RootAndTheWantedNodeAreRead)
{
    const TreeNode root = parseTreeBlob(goodBlob(), "board");

    EXPECT_EQ(root.name, "");
    ASSERT_EQ(root.properties.size(), 1U);
    EXPECT_EQ(root.properties[0].name, "model");
    EXPECT_EQ(textOf(root.properties[0].value), std::string("m\0", 2));
    ASSERT_EQ(root.children.size(), 1U);
    const TreeNode& board = root.children[0];
    EXPECT_EQ(board.name, "board");
    EXPECT_EQ(textOf(board.properties.at(0).value), std::string("c\0", 2));
    ASSERT_EQ(board.children.size(), 1U);
    EXPECT_EQ(board.children[0].name, "unit@0");
    EXPECT_EQ(board.children[0].properties.at(0).name, "empty");
    EXPECT_TRUE(board.children[0].properties[0].value.empty());
}

TEST(TreeBlobTest, TreeWithoutTheWantedNodeHasNone)
{
    EXPECT_TRUE(parseTreeBlob(BlobWriter().begin("cpus").end().blob(), "board").children.empty());
}

TEST(TreeBlobTest, BytesBehindTheBlobDoNotMatter)
{
    TreeBytes blob = goodBlob();
    blob.resize(blob.size() + 5);

    EXPECT_EQ(errorOf(blob), "");
}

TEST(TreeBlobTest, ShortFileIsTruncated)
{
    EXPECT_EQ(errorOf({}), "is truncated: 0 bytes are no device tree blob");
    TreeBytes blob = goodBlob();
    blob.resize(39);
    EXPECT_EQ(errorOf(blob), "is truncated: 39 bytes are no device tree blob");
}

TEST(TreeBlobTest, BlobCutAnywhereIsTruncated)
{
    const TreeBytes good = goodBlob();
    for (std::size_t size = sizeof(fdt_header); size < good.size(); ++size) {
        const TreeBytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
        ASSERT_EQ(errorOf(cut), "is truncated: " + std::to_string(size) + " bytes of " + std::to_string(good.size()));
    }
}

TEST(TreeBlobTest, OtherFileIsNoBlob)
{
    TreeBytes blob = goodBlob();
    putCell(blob, offsetof(fdt_header, magic), 0x2f647473); // "/dts"

    EXPECT_EQ(errorOf(blob),
              "is no device tree blob, which dtc makes of a source: it begins with 2f647473, not with d00dfeed");
}

TEST(TreeBlobTest, LaterVersionIsNamed)
{
    TreeBytes blob = goodBlob();
    putCell(blob, offsetof(fdt_header, version), 40);
    putCell(blob, offsetof(fdt_header, last_comp_version), 39);

    EXPECT_EQ(errorOf(blob), "is a device tree blob of version 40, compatible with 39; 17 can be read");
}

TEST(TreeBlobTest, OldVersionIsNamed)
{
    TreeBytes blob = goodBlob();
    putCell(blob, offsetof(fdt_header, version), 1);

    EXPECT_EQ(errorOf(blob), "is a device tree blob of version 1, compatible with 16; 17 can be read");
}

TEST(TreeBlobTest, VersionOfWhichNotAllIsCheckedIsRefused)
{
    for (const std::uint32_t version : {2U, 15U, 16U}) {
        TreeBytes blob = goodBlob();
        putCell(blob, offsetof(fdt_header, version), version);
        putCell(blob, offsetof(fdt_header, last_comp_version), 2);

        EXPECT_EQ(errorOf(blob), "is a device tree blob of version " + std::to_string(version) +
                                     ", compatible with 2; 17 can be read");
    }
}

TEST(TreeBlobTest, DamagedStructureIsRefused)
{
    TreeBytes blob = goodBlob();
    const std::uint32_t structure = fdt_off_dt_struct(blob.data());
    putCell(blob, structure + 8, 0x77); // no token

    EXPECT_EQ(errorOf(blob), "is damaged: FDT_ERR_BADSTRUCTURE");
}

TEST(TreeBlobTest, LengthThatLeadsBackToItsPropertyIsRefused)
{
    TreeBytes blob = goodBlob();
    const std::uint32_t structure = fdt_off_dt_struct(blob.data());
    constexpr std::uint32_t firstProperty = 8; // behind the root's begin and its empty name
    ASSERT_EQ(fdt32_ld(reinterpret_cast<const fdt32_t*>(blob.data() + structure + firstProperty)), FDT_PROP);
    putCell(blob, structure + firstProperty + 4, 0U - 12U);

    EXPECT_EQ(errorOf(blob), "is damaged: FDT_ERR_BADSTRUCTURE");
}

TEST(TreeBlobTest, EveryDamagedWordIsSurvived)
{
    const TreeBytes good = goodBlob();
    for (std::size_t offset = 0; offset + 4 <= good.size(); offset += 4) {
        for (const std::uint32_t value :
             {0U, 1U, 3U, 0x7FFFFFFFU, 0xFFFFFFF0U, 0xFFFFFFF4U, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
            TreeBytes blob = good;
            putCell(blob, offset, value);
            errorOf(blob); // that it comes back is all that is asked
        }
    }
}

TEST(TreeBlobTest, NameThatWouldSpeakToATerminalIsRefused)
{
    EXPECT_EQ(errorOf(BlobWriter().begin("board").begin("\x1b[2J").end().end().blob()),
              "is damaged: a node or property has a name that no device tree has");
    EXPECT_EQ(errorOf(BlobWriter().begin("board").property("a b", "").end().blob()),
              "is damaged: a node or property has a name that no device tree has");
}

TEST(TreeBlobTest, DeepTreeIsRefused)
{
    BlobWriter writer;
    for (unsigned depth = 0; depth < deepestTree; ++depth) {
        writer.begin("board");
    }
    for (unsigned depth = 0; depth < deepestTree; ++depth) {
        writer.end();
    }

    EXPECT_EQ(errorOf(writer.blob()), "has more than 16 nodes below each other");
}

class TreeBlobFileTest : public ::testing::Test {
protected:
    static std::string errorOfFile(const std::string& path)
    {
        try {
            readTreeBlob(path, "board");
            return "";
        } catch (const TreeError& error) {
            return error.what();
        }
    }

    testkit::TestNode m_node;
    std::string m_path = m_node.boardRoot() + "/board.dtb";
};

TEST_F(TreeBlobFileTest, FileIsRead)
{
    m_node.writeBoardFile("/board.dtb", textOf(goodBlob()));

    EXPECT_EQ(readTreeBlob(m_path, "board").children.size(), 1U);
}

TEST_F(TreeBlobFileTest, MissingFileIsReported)
{
    EXPECT_EQ(errorOfFile(m_path), "cannot be read: No such file or directory");
}

TEST_F(TreeBlobFileTest, NamedPipeIsNotWaitedFor)
{
    ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);

    EXPECT_EQ(errorOfFile(m_path), "cannot be read: not a file");
}

TEST_F(TreeBlobFileTest, HugeFileIsNotReadToItsEnd)
{
    m_node.writeBoardFile("/board.dtb", "");
    std::filesystem::resize_file(m_path, std::uintmax_t{1} << 30);

    EXPECT_EQ(errorOfFile(m_path), "cannot be read: more than 1048576 bytes");
}

} // namespace
} // namespace dorn::board
