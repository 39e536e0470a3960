// SPDX-License-Identifier: MIT
#include "ResetS.hpp"

#include "AaFile.h"
#include "FailNth.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "Process.hpp"
#include "RadWait.hpp"
#include "ServiceUnderTest.hpp"
#include "TestBoard.hpp"
#include "ddal_watchdog.h"
#include "device/Resets.hpp"

#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>

namespace dorn::examples {
namespace {

using testkit::FailNth;
using testkit::Peer;
using testkit::Process;
using testkit::ServiceUnderTest;

SResetReq requestFor(std::uint32_t reason, const char* text)
{
    SResetReq request{.transactionId = 3, .reason = reason, .text = {}};
    std::snprintf(request.text.data(), request.text.size(), "%s", text);
    return request;
}

class ResetSTest : public testkit::NodeTest {
protected:
    std::uint32_t statusOfReset(std::uint32_t reason, const char* text)
    {
        m_asker.send<ResetReqMsg>(resetServiceCpid, requestFor(reason, text));
        const auto answer = m_asker.expect<ResetRespMsg>();
        EXPECT_EQ(answer->transactionId, 3U);
        return answer->status;
    }
    SResetShowResp show()
    {
        m_asker.send<ResetShowReqMsg>(resetServiceCpid, {.transactionId = 5});
        const SResetShowResp answer = *m_asker.expect<ResetShowRespMsg>();
        EXPECT_EQ(answer.transactionId, 5U);
        return answer;
    }

    testkit::TestBoard m_board;
    Peer m_asker;
};

TEST_F(ResetSTest, FirstStartKnowsOfNoReset)
{
    ResetS reset;
    ServiceUnderTest running(reset);
    ASSERT_TRUE(running.waitUntilReady());

    const SResetShowResp shown = show();

    EXPECT_EQ(shown.isKnown, 0U);
    EXPECT_EQ(shown.startCount, 1U);
}

TEST_F(ResetSTest, BoardThatDoesNotResetSaysSo)
{
    m_board.remove("watchdog");
    ResetS reset;
    ServiceUnderTest running(reset);
    ASSERT_TRUE(running.waitUntilReady());

    EXPECT_EQ(statusOfReset(7, "why not"), static_cast<std::uint32_t>(EResetStatus_NotReset));

    EXPECT_EQ(m_node.readBoardFile("/var/tmp/hwapi/RP_RAM_field_ResetType.txt"), "0x7 :why not");
}

TEST_F(ResetSTest, ReasonThatIsNotRememberedKeepsTheBoard)
{
    ResetS reset;
    ServiceUnderTest running(reset);
    ASSERT_TRUE(running.waitUntilReady());
    const testkit::CountCalls<ddal_watchdog_reboot> reboots;
    const FailNth<AaFileGetBoardPath> noPlace(1);

    EXPECT_EQ(statusOfReset(7, "x"), static_cast<std::uint32_t>(EResetStatus_NotRemembered));

    EXPECT_EQ(reboots.count(), 0U);
}

TEST_F(ResetSTest, ReasonSurvivesTheReset)
{
    Process first(DORN_RESET_SERVICE);
    ASSERT_TRUE(testkit::waitForRad(ERadHwapiState_ResetState, 2));

    m_asker.send<ResetReqMsg>(resetServiceCpid, requestFor(0xCAFE, "an operator: wanted it"));

    EXPECT_EQ(first.waitForEnd(), -SIGKILL);
    EXPECT_EQ(board::resetCount(), 1U);
    ResetS reset;
    ServiceUnderTest running(reset);
    ASSERT_TRUE(running.waitUntilReady());
    const SResetShowResp shown = show();
    EXPECT_EQ(shown.isKnown, 1U);
    EXPECT_EQ(shown.reason, 0xCAFEU);
    EXPECT_STREQ(shown.text.data(), "an operator: wanted it");
    EXPECT_EQ(shown.startCount, 2U);
    m_asker.expectNothing();
}

} // namespace
} // namespace dorn::examples
