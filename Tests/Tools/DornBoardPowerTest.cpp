// SPDX-License-Identifier: MIT
// `dorn board fault --power-loss` and `--after`, and what `dorn board show` says of an image that is not whole.
#include "DornCommand.hpp"

#include "NodeTest.hpp"
#include "TestBoard.hpp"
#include "ddal_fpga.h"
#include "description/DescribedBoard.hpp"
#include "device/Fpga.hpp"
#include "text/Json.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

class DornBoardPowerTest : public testkit::NodeTest {
protected:
    testkit::TestBoard m_board;
};

TEST_F(DornBoardPowerTest, CallsMayWorkBefore)
{
    EXPECT_EQ(
        dorn({"board", "fault", "fpga_get_active_version", "--code", "9", "--after", "1"}),
        (CommandResult{
            0, "ddal_fpga_get_active_version: the next call fails with 9 (input/output error), after 1 that works\n",
            ""}));
    EXPECT_EQ(Json::parse(dorn({"board", "fault", "--json"}).answer)[0]["after"], 1);

    std::uint32_t version = 0;
    EXPECT_EQ(ddal_fpga_get_active_version(1, &version), DDAL_OK);
    EXPECT_EQ(ddal_fpga_get_active_version(1, &version), 9);
    EXPECT_EQ(ddal_fpga_get_active_version(1, &version), DDAL_OK);
}

TEST_F(DornBoardPowerTest, PowerIsLostInACall)
{
    EXPECT_EQ(dorn({"board", "fault", "fpga_update_mod", "--power-loss", "--after", "2"}),
              (CommandResult{0, "ddal_fpga_update_mod: in the next call the board loses its power, after 2 that work\n",
                             ""}));
    EXPECT_EQ(dorn({"board", "fault"}),
              (CommandResult{0,
                             "FUNCTION              CODE  MEANING                    LEFT       GIVEN\n"
                             "ddal_fpga_update_mod  -     the board loses its power  1 after 2  0\n",
                             ""}));
    const Json fault = Json::parse(dorn({"board", "fault", "--json"}).answer)[0];
    EXPECT_EQ(fault["code"], nullptr);
    EXPECT_EQ(fault["meaning"], "the board loses its power");
    EXPECT_EQ(dorn({"board", "fault", "--clear"}), (CommandResult{0, "", ""}));
    EXPECT_EQ(ddal_fpga_update_mod(1, DDAL_FPGA_SLOT_PRIMARY, "/tmp/image"), DDAL_ERROR_BAD_FILE);
}

TEST_F(DornBoardPowerTest, WrongUseIsExplained)
{
    for (const std::vector<std::string>& rest : {std::vector<std::string>{"--power-loss", "--code", "9"},
                                                 {"--power-loss", "--times", "2"},
                                                 {"--power-loss", "--always"},
                                                 {"--code", "9", "--after", "many"},
                                                 {"--code", "0"},
                                                 {"--after", "1"},
                                                 {"--code", "-2147483648"},
                                                 {"--code", "2147483648"},
                                                 {"--clear", "--power-loss"},
                                                 {"--clear", "--after", "1"}}) {
        std::vector<std::string> command{"board", "fault", "fpga_update_mod"};
        command.insert(command.end(), rest.begin(), rest.end());
        EXPECT_EQ(dorn(command).status, 2) << rest.front() << " " << rest.back();
    }
    EXPECT_EQ(dorn({"board", "fault", "--power-loss"}).status, 2);
}

TEST_F(DornBoardPowerTest, SlotThatWasFlashedHalfIsShown)
{
    m_node.writeBoardFile("/tmp/image", std::string("\x00\x00\x00\x07 and more", 13));
    board::Fpga(board::DescribedBoard::get().part("fpgas", 1))
        .update(DDAL_FPGA_SLOT_PRIMARY, "/tmp/image", board::FlashExtent::Half);

    EXPECT_NE(dorn({"board", "show"}).answer.find("6 bytes, not whole\n"), std::string::npos);
    const Json board = Json::parse(dorn({"board", "show", "--json"}).answer);
    EXPECT_EQ(board["fpgas"][0]["slots"][0]["flashed"],
              (Json{{"size", 6}, {"whole", false}, {"version", nullptr}, {"pending", true}}));
}

} // namespace
} // namespace dorn::tool
