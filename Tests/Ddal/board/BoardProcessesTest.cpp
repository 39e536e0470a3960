// SPDX-License-Identifier: MIT
// Several processes use one board at once, and die when they like.
#include "BoardTest.hpp"
#include "Process.hpp"
#include "ddal_fpga.h"
#include "ddal_rio.h"
#include "description/DescribedBoard.hpp"
#include "device/FileSystem.hpp"
#include "device/Fpga.hpp"
#include "device/Resets.hpp"
#include "fault/FaultStore.hpp"
#include "node/PerNode.hpp"
#include "state/StateFile.hpp"

#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dorn::board {
namespace {

using testkit::Process;

constexpr std::uint32_t fpga = 0x10002;

class BoardProcessesTest : public BoardTest {
protected:
    static std::string outputOf(const std::vector<std::string>& arguments)
    {
        Process process(DORN_BOARD_PROGRAM, arguments);
        EXPECT_EQ(process.waitForEnd(), 0) << process.standardError();
        return process.standardOutput();
    }
    static std::optional<FlashedImage> primarySlot()
    {
        return Fpga(DescribedBoard::get().part("fpgas", fpga)).slots().at(0).area.flashed();
    }
};

TEST_F(BoardProcessesTest, MemoryThatOneWritesTheOtherReads)
{
    EXPECT_EQ(outputOf({"write", "0x80000010", "hello"}), "0\n");

    EXPECT_EQ(outputOf({"read", "0x80000010", "5"}), "hello\n");
    EXPECT_EQ(outputOf({"read", "0x80000014", "1"}), "o\n");
}

TEST_F(BoardProcessesTest, ModeThatOneMountsTheOtherSees)
{
    FileSystem(DescribedBoard::get().part("file-systems", 1)).mount(2);

    EXPECT_EQ(outputOf({"mode", "1"}), "2\n");
    EXPECT_EQ(outputOf({"mode", "2"}), "1\n");
}

TEST_F(BoardProcessesTest, FaultsAreSharedOutExactly)
{
    m_board.fail("ddal_fpga_get_active_version", DDAL_ERROR_TIMEOUT, 500);
    std::vector<std::unique_ptr<Process>> processes;
    for (int index = 0; index < 3; ++index) {
        processes.push_back(std::make_unique<Process>(DORN_BOARD_PROGRAM, std::vector<std::string>{"count", "400"}));
    }
    int failed = 0;
    for (const auto& process : processes) {
        EXPECT_EQ(process->waitForEnd(), 0);
        failed += std::stoi(process->standardOutput());
    }

    EXPECT_EQ(failed, 500);
    const std::vector<DriverFault> faults = host::PerNode<FaultStore>::get().list();
    ASSERT_EQ(faults.size(), 1U);
    EXPECT_EQ(faults[0].left, 0U);
    EXPECT_EQ(faults[0].given, 500U);
}

TEST_F(BoardProcessesTest, FaultReachesAProcessThatRunsAlready)
{
    Process living(DORN_BOARD_PROGRAM, {"live"});
    ASSERT_TRUE(living.waitForOutput("lives"));
    m_board.fail("ddal_watchdog_reboot", 42);

    EXPECT_EQ(outputOf({"reboot"}), "watchdog returned 42\n");
    EXPECT_TRUE(living.isRunning());
    EXPECT_EQ(resetCount(), 0U);
}

TEST_F(BoardProcessesTest, WatchdogEndsEveryProcessOfTheNodeAndCounts)
{
    Process first(DORN_BOARD_PROGRAM, {"live"});
    Process second(DORN_BOARD_PROGRAM, {"live"});
    ASSERT_TRUE(first.waitForOutput("lives"));
    ASSERT_TRUE(second.waitForOutput("lives"));

    Process rebooting(DORN_BOARD_PROGRAM, {"reboot"});

    EXPECT_EQ(rebooting.waitForEnd(), -SIGKILL);
    EXPECT_EQ(first.waitForEnd(), -SIGKILL);
    EXPECT_EQ(second.waitForEnd(), -SIGKILL);
    EXPECT_EQ(rebooting.standardOutput(), "");
    EXPECT_EQ(resetCount(), 1U);
    ASSERT_TRUE(lastReset());
    EXPECT_LE(*lastReset(), host::Clock::get().wall());
    EXPECT_GT(*lastReset(), host::Clock::get().wall() - std::chrono::hours(1));
}

TEST_F(BoardProcessesTest, WatchdogLeavesOtherNodesAlone)
{
    Process here(DORN_BOARD_PROGRAM, {"live"});
    ASSERT_TRUE(here.waitForOutput("lives"));
    const testkit::TestNode elsewhere;
    const testkit::TestBoard board;

    EXPECT_EQ(Process(DORN_BOARD_PROGRAM, {"reboot"}).waitForEnd(), -SIGKILL);

    EXPECT_TRUE(here.isRunning());
}

TEST_F(BoardProcessesTest, BoardWithoutAWatchdogIsNotReset)
{
    m_board.remove("watchdog");
    Process living(DORN_BOARD_PROGRAM, {"live"});
    ASSERT_TRUE(living.waitForOutput("lives"));

    EXPECT_EQ(outputOf({"reboot"}), "watchdog returned 5\n");
    EXPECT_TRUE(living.isRunning());
}

TEST_F(BoardProcessesTest, ResetThatCannotBeCountedDoesNotHappen)
{
    m_node.writeBoardFile("/var/lib/dorn/board", "a file in the directory's place");
    Process living(DORN_BOARD_PROGRAM, {"live"});
    ASSERT_TRUE(living.waitForOutput("lives"));

    EXPECT_EQ(outputOf({"reboot"}), "watchdog returned 9\n");
    EXPECT_TRUE(living.isRunning());
}

TEST_F(BoardProcessesTest, ResetTakesFlashedImagesIntoUse)
{
    writeImage(m_node, "/tmp/image", 0x77);
    ASSERT_EQ(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, "/tmp/image"), DDAL_OK);
    EXPECT_EQ(outputOf({"version"}), std::to_string(0x20010) + "\n");

    EXPECT_EQ(Process(DORN_BOARD_PROGRAM, {"reboot"}).waitForEnd(), -SIGKILL);

    EXPECT_EQ(outputOf({"version"}), std::to_string(0x77) + "\n");
}

/// Kills a process that flashes, again and again: flash holds a whole image at any time, and is free for the next.
TEST_F(BoardProcessesTest, ProcessThatDiesWhileItFlashesLeavesAWholeImage)
{
    writeImage(m_node, "/tmp/a", 1, 0x10000);
    writeImage(m_node, "/tmp/b", 2, 0x10000);
    const std::string a = m_node.readBoardFile("/tmp/a");
    const std::string b = m_node.readBoardFile("/tmp/b");
    ASSERT_EQ(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, "/tmp/a"), DDAL_OK);
    for (int round = 0; round < 10; ++round) {
        Process flashing(DORN_BOARD_PROGRAM, {"flash", "/tmp/a", "/tmp/b"});
        ASSERT_TRUE(flashing.waitForOutput("flashes"));
        flashing.signal(SIGKILL);
        flashing.waitForEnd();

        const auto image = primarySlot();
        ASSERT_TRUE(image && image->isWhole);
        const std::string content = m_node.readBoardFile(image->path);

        EXPECT_TRUE(content == a || content == b);
        EXPECT_EQ(outputOf({"version"}), std::to_string(0x20010) + "\n");
    }
    EXPECT_EQ(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, "/tmp/b"), DDAL_OK);
}

TEST_F(BoardProcessesTest, PowerIsLostHalfWay)
{
    writeImage(m_node, "/tmp/image", 0x77);
    Process living(DORN_BOARD_PROGRAM, {"live"});
    ASSERT_TRUE(living.waitForOutput("lives"));
    m_board.fail("ddal_fpga_update_mod", FaultStore::powerLoss, 1, 1); // in the second call

    EXPECT_EQ(Process(DORN_BOARD_PROGRAM, {"flash", "/tmp/image", "/tmp/image"}).waitForEnd(), -SIGKILL);

    EXPECT_EQ(living.waitForEnd(), -SIGKILL);
    EXPECT_EQ(resetCount(), 1U);
    ASSERT_TRUE(primarySlot());
    EXPECT_FALSE(primarySlot()->isWhole);
    EXPECT_EQ(primarySlot()->size, m_node.readBoardFile("/tmp/image").size() / 2);
    EXPECT_EQ(outputOf({"version"}), std::to_string(0x20010) + "\n");
}

TEST_F(BoardProcessesTest, PowerMayBeLostInAnyFunction)
{
    m_board.fail("ddal_fpga_get_active_version", FaultStore::powerLoss);

    EXPECT_EQ(Process(DORN_BOARD_PROGRAM, {"version"}).waitForEnd(), -SIGKILL);

    EXPECT_EQ(resetCount(), 1U);
    EXPECT_EQ(outputOf({"version"}), std::to_string(0x20010) + "\n");
}

TEST_F(BoardProcessesTest, ResetsOfManyProcessesAreAllCounted)
{
    constexpr int count = 4;
    for (int index = 0; index < count; ++index) {
        EXPECT_EQ(Process(DORN_BOARD_PROGRAM, {"reboot"}).waitForEnd(), -SIGKILL);
    }

    EXPECT_EQ(resetCount(), static_cast<std::uint32_t>(count));
}

} // namespace
} // namespace dorn::board
