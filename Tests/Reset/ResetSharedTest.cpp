// SPDX-License-Identifier: MIT
#include "ResetShared.h"

#include "FailNth.hpp"
#include "LogCapture.hpp"
#include "RpramShared.h"
#include "TestBoard.hpp"
#include "TestNode.hpp"
#include "ddal_watchdog.h"

#include <gmock/gmock.h>

extern "C" std::int32_t rememberAndResetInC(std::uint32_t value);

namespace {

using dorn::testkit::FailNth;
using testing::ElementsAre;

class ResetSharedTest : public testing::Test {
protected:
    dorn::testkit::TestNode m_node{{.logLevel = "debug"}};
    dorn::testkit::LogCapture m_log;
};

TEST_F(ResetSharedTest, WatchdogResetsTheUnit)
{
    // A driver that does not return cannot be told from one that returns success.
    const FailNth<ddal_watchdog_reboot> reset(1, DDAL_OK);

    ApiResetMcu();

    EXPECT_TRUE(reset.hasFailed());
    EXPECT_THAT(m_log.texts(), ElementsAre("Debug 0x20006 ApiResetMcu() called"));
}

TEST_F(ResetSharedTest, UnitThatCannotBeResetIsLogged)
{
    const FailNth<ddal_watchdog_reboot> noReset(1, -11);

    ApiResetMcu();

    EXPECT_THAT(m_log.texts(), ElementsAre("Debug 0x20006 ApiResetMcu() called",
                                           "Info 0x20006 ApiResetMcu() could not reboot, ddal error code: -11"));
}

TEST_F(ResetSharedTest, UnitWithoutWatchdogIsNotReset)
{
    dorn::testkit::TestBoard board;
    board.remove("watchdog");

    ApiResetMcu();

    EXPECT_EQ(m_log.texts().back(), "Info 0x20006 ApiResetMcu() could not reboot, ddal error code: 5");
}

TEST_F(ResetSharedTest, FunctionsAreCalledFromC)
{
    const FailNth<ddal_watchdog_reboot> reset(1, DDAL_OK);

    EXPECT_EQ(rememberAndResetInC(0x1F), 0);

    EXPECT_EQ(reset.count(), 1U);
    std::uint32_t value = 0;
    char text[RPRAM_TEXT_SIZE] = "";
    EXPECT_EQ(ApiResetRpramGet(ERP_RAM_field_user5, &value, text), 0);
    EXPECT_EQ(value, 0x1FU);
    EXPECT_STREQ(text, "from C");
    EXPECT_EQ(m_node.readBoardFile("/var/tmp/hwapi/RP_RAM_field_user5.txt"), "0x1F :from C");
}

} // namespace
