// SPDX-License-Identifier: MIT
#include "TestBoard.hpp"

#include "NodeTest.hpp"
#include "Process.hpp"
#include "ddal_boot.h"
#include "ddal_devicetree.h"
#include "ddal_fpga.h"
#include "ddal_watchdog.h"

#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace dorn::testkit {
namespace {

class TestBoardTest : public NodeTest {
protected:
    static std::string unitId()
    {
        std::array<char, 32> text{};
        return ddal_devicetree_get_unit_id(0, text.size() - 1, text.data()) == DDAL_OK ? text.data() : "(failed)";
    }
};

TEST_F(TestBoardTest, NodeWithoutOneHasNoBoard)
{
    EXPECT_EQ(unitId(), "(failed)");
}

TEST_F(TestBoardTest, SmallTarnBoardIsWhatDriversFind)
{
    const TestBoard board;
    std::uint32_t hwSwId = 0;

    EXPECT_EQ(unitId(), "NAXE");
    EXPECT_EQ(ddal_devicetree_get_hw_sw_id(0, &hwSwId), DDAL_OK);
    EXPECT_EQ(hwSwId, 0x00A00100U);
}

TEST_F(TestBoardTest, PropertiesAreReplaced)
{
    TestBoard board;
    board.text("units/unit@0", "dorn,unit-id", "KIVN").cells("units/unit@0", "dorn,hw-sw-id", {0x00A00123});
    std::uint32_t hwSwId = 0;

    EXPECT_EQ(unitId(), "KIVN");
    EXPECT_EQ(ddal_devicetree_get_hw_sw_id(0, &hwSwId), DDAL_OK);
    EXPECT_EQ(hwSwId, 0x00A00123U);
}

TEST_F(TestBoardTest, NodesAndPropertiesAreTakenAway)
{
    TestBoard board;
    board.remove("watchdog").remove("units/unit@0/dorn,unit-id");

    EXPECT_EQ(ddal_watchdog_reboot(), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(unitId(), "(failed)");
}

TEST_F(TestBoardTest, PropertyMayBeAnyBytes)
{
    TestBoard board;
    board.bytes("units/unit@0", "dorn,unit-id", "no terminator");

    EXPECT_EQ(unitId(), "(failed)");
}

TEST_F(TestBoardTest, BlobIsUnpackedAndCanBeChanged)
{
    TestBoard board(DORN_TARN_BOARD);
    board.cells("fpgas/fpga@10002", "dorn,version", {7});
    std::uint32_t version = 0;

    EXPECT_EQ(unitId(), "NAXE");
    EXPECT_EQ(ddal_fpga_get_active_version(0x10002, &version), DDAL_OK);
    EXPECT_EQ(version, 7U);
}

TEST_F(TestBoardTest, FunctionFailsAsOftenAsItWasTold)
{
    const TestBoard board;
    board.fail("ddal_boot_get_uboot_id", DDAL_ERROR_TIMEOUT, 2);
    std::int32_t location = -1;

    EXPECT_EQ(ddal_boot_get_uboot_id(&location), DDAL_ERROR_TIMEOUT);
    EXPECT_EQ(ddal_boot_get_uboot_id(&location), DDAL_ERROR_TIMEOUT);
    EXPECT_EQ(ddal_boot_get_uboot_id(&location), DDAL_OK);
    EXPECT_EQ(location, DDAL_BOOT_PRIMARY);
}

TEST_F(TestBoardTest, FunctionThatThereIsNotIsRefused)
{
    const TestBoard board;

    EXPECT_THROW(board.fail("ddal_fly", 1), std::invalid_argument);
}

TEST_F(TestBoardTest, EndOfTheNodeTakesTheNameAway)
{
    {
        const TestNode other;
        const TestBoard board;
        EXPECT_EQ(std::getenv("DORN_BOARD"), board.path());
        EXPECT_EQ(unitId(), "NAXE");
    }
    EXPECT_EQ(std::getenv("DORN_BOARD"), nullptr);
    EXPECT_EQ(unitId(), "(failed)");
}

TEST_F(TestBoardTest, NodesAreMadeWhereTheyAreMissing)
{
    TestBoard board;
    board.cells("units/unit@7", "reg", {7}).text("units/unit@7", "dorn,unit-id", "RUDA");
    std::array<char, 8> text{};

    EXPECT_EQ(ddal_devicetree_get_unit_id(7, 7, text.data()), DDAL_OK);
    EXPECT_STREQ(text.data(), "RUDA");
}

TEST_F(TestBoardTest, WholeBoardCanBeTakenAway)
{
    TestBoard board;
    board.remove("");

    EXPECT_TRUE(board.tree().children.empty());
    EXPECT_EQ(unitId(), "(failed)");
}

} // namespace
} // namespace dorn::testkit
