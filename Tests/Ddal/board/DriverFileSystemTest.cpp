// SPDX-License-Identifier: MIT
#include "BoardTest.hpp"
#include "ddal_ffs.h"
#include "description/DescribedBoard.hpp"
#include "device/FileSystem.hpp"
#include "device/Resets.hpp"
#include "node/PerNode.hpp"

#include <gtest/gtest.h>

namespace dorn::board {
namespace {

class DriverFileSystemTest : public BoardTest {
protected:
    static std::uint32_t mode(std::uint32_t fileSystem)
    {
        std::uint32_t mode = 99;
        EXPECT_EQ(ddal_ffs_is_mounted(fileSystem, &mode), DDAL_OK);
        return mode;
    }
    static FileSystem fileSystem(std::uint32_t id)
    {
        return FileSystem(DescribedBoard::get().part("file-systems", id));
    }
};

TEST_F(DriverFileSystemTest, EachStartMountsItAsDescribed)
{
    m_board.cells("file-systems/file-system@2", "dorn,mode", {DDAL_FFS_NOT_MOUNTED});

    EXPECT_EQ(mode(1), DDAL_FFS_READ_ONLY);
    EXPECT_EQ(mode(2), DDAL_FFS_NOT_MOUNTED);
}

TEST_F(DriverFileSystemTest, MountServiceMountsItOtherwise)
{
    fileSystem(1).mount(DDAL_FFS_READ_WRITE);

    EXPECT_EQ(mode(1), DDAL_FFS_READ_WRITE);
    EXPECT_EQ(mode(2), DDAL_FFS_READ_ONLY);
}

TEST_F(DriverFileSystemTest, ModeLastsUntilTheNextReset)
{
    fileSystem(1).mount(DDAL_FFS_READ_WRITE);
    host::closeNode(); // as a process that begins
    EXPECT_EQ(mode(1), DDAL_FFS_READ_WRITE);

    countReset();

    EXPECT_EQ(mode(1), DDAL_FFS_READ_ONLY);
}

TEST_F(DriverFileSystemTest, OtherModesArePassedOn)
{
    fileSystem(1).mount(7);

    EXPECT_EQ(mode(1), 7U);
}

TEST_F(DriverFileSystemTest, FileSystemThatTheBoardDoesNotHaveIsNotFound)
{
    std::uint32_t mode = 99;

    EXPECT_EQ(ddal_ffs_is_mounted(53, &mode), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(mode, 99U);
    EXPECT_EQ(ddal_ffs_is_mounted(1, nullptr), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(m_log.count("Warning 0x0 ddal_ffs_is_mounted(): " + m_origin +
                          "node '/board/file-systems' has no node with reg 53"),
              1U);
}

TEST_F(DriverFileSystemTest, StateThatIsNoModeIsSetAside)
{
    for (const char* const content : {"", "0\n", "0\nrw\n", "x\n2\n", "0\n2", "0\n2\n3\n"}) {
        m_log.clear();
        m_node.writeBoardFile("/var/lib/dorn/board/file-system-1.mode", content);

        EXPECT_EQ(mode(1), DDAL_FFS_READ_ONLY) << content;

        EXPECT_EQ(m_node.readBoardFile("/var/lib/dorn/board/file-system-1.mode.broken"), content);
        EXPECT_EQ(m_log.texts().size(), 1U);
    }
}

} // namespace
} // namespace dorn::board
