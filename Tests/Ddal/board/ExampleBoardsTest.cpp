// SPDX-License-Identifier: MIT
// The example boards are whole: dtc has nothing to say, and the drivers find everything.
#include "BoardTest.hpp"
#include "Process.hpp"
#include "ddal_ffs.h"
#include "ddal_fpga.h"
#include "ddal_rio.h"
#include "description/DescribedBoard.hpp"
#include "device/BootLoader.hpp"
#include "device/Fpga.hpp"

#include <gtest/gtest.h>

namespace dorn::board {
namespace {

struct Example {
    const char* name;
    const char* blob;
    std::uint32_t boardCode;
    std::uint32_t fpga;
};

class ExampleBoardsTest : public testkit::NodeTest, public ::testing::WithParamInterface<Example> {
protected:
    ExampleBoardsTest() { setenv("DORN_BOARD", GetParam().blob, 1); }
};

INSTANTIATE_TEST_SUITE_P(Boards, ExampleBoardsTest,
                         ::testing::Values(Example{"tarn-single", DORN_TARN_SINGLE, 1, 0x10002},
                                           Example{"tarn-pair-master", DORN_TARN_PAIR_MASTER, 2, 0x10001}),
                         [](const auto& example) {
                             return example.param.boardCode == 1 ? "TarnSingle" : "TarnPairMaster";
                         });

TEST_P(ExampleBoardsTest, SourceIsCompiledWithoutAWarning)
{
    const std::string source = std::string(DORN_BOARD_SOURCES) + "/" + GetParam().name + ".dts";
    testkit::Process dtc(DORN_DTC, {"-I", "dts", "-O", "dtb", "-o", "/dev/null", source});

    EXPECT_EQ(dtc.waitForEnd(), 0);
    EXPECT_EQ(dtc.standardError(), "");
}

TEST_P(ExampleBoardsTest, HasWhatATarnBoardHas)
{
    const DescribedBoard& board = DescribedBoard::get();
    std::uint32_t number = 0;
    std::int32_t handle = -1;

    EXPECT_EQ(board.board().cell("dorn,board-code"), GetParam().boardCode);
    EXPECT_EQ(board.part("units", 0).cell("dorn,hw-sw-id") & 0xF00000U, 0xA00000U);
    for (const std::uint16_t dsp : {std::uint16_t{0x10}, std::uint16_t{0x11}}) {
        ASSERT_EQ(ddal_rio_copy_open_fd(0, dsp, DDAL_RIO_READ_WRITE, &handle), DDAL_OK);
        EXPECT_EQ(ddal_rio_copy_to_fd(handle, 0x0C000000, "x", 1), DDAL_OK);
        EXPECT_EQ(ddal_rio_copy_to_fd(handle, 0x81FFFFFFF, "x", 1), DDAL_OK);
        EXPECT_EQ(ddal_rio_copy_to_fd(handle, 0x820000000, "x", 1), DDAL_ERROR_BAD_ADDRESS);
    }
    for (const std::uint32_t id : {std::uint32_t{1}, GetParam().fpga}) {
        EXPECT_EQ(ddal_fpga_get_active_version(id, &number), DDAL_OK);
    }
    EXPECT_EQ(Fpga(board.part("fpgas", 1)).slots().size(), 1U);
    EXPECT_EQ(Fpga(board.part("fpgas", GetParam().fpga)).slots().size(), 2U);
    EXPECT_EQ(BootLoader(board.part("boot-loader")).version(), "20480");
    for (const std::uint32_t fileSystem : {1U, 2U}) {
        EXPECT_EQ(ddal_ffs_is_mounted(fileSystem, &number), DDAL_OK);
        EXPECT_EQ(number, DDAL_FFS_READ_ONLY);
    }
    EXPECT_EQ(board.parts("sfp-cages").size(), 2U);
    board.part("watchdog");
}

} // namespace
} // namespace dorn::board
