// SPDX-License-Identifier: MIT
#include "LinkS.hpp"

#include "FailNth.hpp"
#include "NodeTest.hpp"
#include "PassTime.hpp"
#include "Peer.hpp"
#include "ServiceUnderTest.hpp"
#include "rad/ERadHwapi.h"

#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common::bif::baseband;
using testing::ElementsAre;
using testkit::Peer;
using testkit::ServiceUnderTest;

LinkName nameOf(const std::string& text)
{
    LinkName name{};
    std::copy(text.begin(), text.end(), name.begin());
    return name;
}

class LinkSTest : public testkit::NodeTest {
protected:
    LinkSTest() { EXPECT_TRUE(m_running.waitUntilReady()); }

    std::vector<SLink> show()
    {
        m_hands.send<LinkShowReqMsg>(m_running.address(), {5});
        const auto answer = m_hands.expect<LinkShowRespMsg>();
        EXPECT_EQ(answer->transactionId, 5U);
        std::vector<SLink> links(answer->linkCount);
        EXPECT_EQ(answer.payload().size(), sizeof(SLinkShowResp) + links.size() * sizeof(SLink));
        std::memcpy(links.data(), answer.payload().data() + sizeof(SLinkShowResp), links.size() * sizeof(SLink));
        return links;
    }
    std::uint32_t breakLink(const std::string& name, std::uint32_t parts)
    {
        m_hands.send<LinkBreakReqMsg>(m_running.address(), {6, nameOf(name), parts});
        const auto answer = m_hands.expect<LinkBreakRespMsg>();
        EXPECT_EQ(answer->transactionId, 6U);
        return answer->status;
    }
    bool areAllUp()
    {
        const std::vector<SLink> links = show();
        return std::all_of(links.begin(), links.end(), [](const SLink& link) {
            return link.standard == ELinkStandard_Cpri
                       ? link.rxState == cpri::ERxLinkState_HFNSYNC && link.conditions == 0
                       : link.rxState == obsai::ERxLinkState_Frame && link.txState == obsai::ETxLinkState_Frame;
        });
    }
    bool comeUp()
    {
        return passTimeUntil(m_clock, [this] { return areAllUp(); });
    }
    /// Lets time pass until nothing moves. A time-out that is on its way is awaited by nobody: it is looked for again.
    bool settle()
    {
        constexpr int looks = 20;
        return passTimeUntil(m_clock, [this] {
            for (int look = 0; look < looks; ++look) {
                m_running.sync();
                if (awaitedTime(m_clock)) {
                    return false;
                }
            }
            return true;
        });
    }

    testkit::ManualClock m_clock;
    LinkS m_links;
    ServiceUnderTest m_running{m_links};
    Peer m_hands{0x0301};
};

TEST_F(LinkSTest, LinksComeUpAndThenNothingMoves)
{
    EXPECT_TRUE(comeUp());
    EXPECT_TRUE(settle());

    const std::vector<SLink> links = show();
    ASSERT_EQ(links.size(), 4U);
    EXPECT_EQ(links[0].name, nameOf("cpri0"));
    EXPECT_EQ(links[0].standard, ELinkStandard_Cpri);
    EXPECT_EQ(links[0].uniqueId, 20U);
    EXPECT_EQ(links[0].delay, 614);
    EXPECT_EQ(links[1].name, nameOf("cpri1"));
    EXPECT_EQ(links[2].name, nameOf("obsai0"));
    EXPECT_EQ(links[2].standard, ELinkStandard_Obsai);
    EXPECT_EQ(links[3].delay, 154);
    EXPECT_EQ(links[3].brokenParts, 0U);
}

TEST_F(LinkSTest, BrokenCpriLinkLosesSignalAndFrame)
{
    ASSERT_TRUE(comeUp());

    EXPECT_EQ(breakLink("cpri0", ELinkPart_Receive | ELinkPart_Transmit), ELinkBreakStatus_Done);

    EXPECT_TRUE(
        passTimeUntil(m_clock, [this] { return show()[0].conditions == (ELinkCondition_Los | ELinkCondition_Lof); }));
    const SLink link = show()[0];
    EXPECT_EQ(link.rxState, cpri::ERxLinkState_XACQ1);
    EXPECT_EQ(link.delay, 0);
    EXPECT_EQ(link.brokenParts, ELinkPart_Receive + ELinkPart_Transmit);
    EXPECT_EQ(show()[1].rxState, cpri::ERxLinkState_HFNSYNC);

    EXPECT_EQ(breakLink("cpri0", 0), ELinkBreakStatus_Done);
    EXPECT_TRUE(comeUp());
    EXPECT_EQ(show()[0].delay, 614);
}

TEST_F(LinkSTest, BrokenTransmitFibreIsReportedByTheFarEnd)
{
    ASSERT_TRUE(comeUp());

    breakLink("cpri1", ELinkPart_Transmit);

    EXPECT_TRUE(passTimeUntil(m_clock, [this] {
        return show()[1].conditions == (ELinkCondition_RemoteLos | ELinkCondition_RemoteLof | ELinkCondition_RemoteRai);
    }));
    EXPECT_EQ(show()[1].rxState, cpri::ERxLinkState_HFNSYNC);
}

TEST_F(LinkSTest, BrokenObsaiLinkBeginsAnew)
{
    ASSERT_TRUE(comeUp());

    breakLink("obsai1", ELinkPart_Receive);

    EXPECT_TRUE(passTimeUntil(m_clock, [this] {
        const SLink link = show()[3];
        return link.rxState == obsai::ERxLinkState_Unsync && link.txState == obsai::ETxLinkState_IdleReq;
    }));
    breakLink("obsai1", 0);
    EXPECT_TRUE(comeUp());
}

TEST_F(LinkSTest, WhatCannotBeDoneIsRefused)
{
    EXPECT_EQ(breakLink("cpri9", ELinkPart_Receive), ELinkBreakStatus_NoSuchLink);
    EXPECT_EQ(breakLink("cpri", ELinkPart_Receive), ELinkBreakStatus_NoSuchLink);
    EXPECT_EQ(breakLink("", ELinkPart_Receive), ELinkBreakStatus_NoSuchLink);
    EXPECT_EQ(breakLink("cpri0", 8), ELinkBreakStatus_BadParts);
    EXPECT_EQ(breakLink("cpri0", 0), ELinkBreakStatus_SoAlready);
    EXPECT_EQ(breakLink("obsai0", ELinkPart_Framing), ELinkBreakStatus_Done);
    EXPECT_EQ(breakLink("obsai0", ELinkPart_Framing), ELinkBreakStatus_SoAlready);
    EXPECT_EQ(breakLink("obsai0", ELinkPart_Receive), ELinkBreakStatus_Done);
}

TEST_F(LinkSTest, EveryKindOfEventIsLogged)
{
    ASSERT_EQ(AaConfigRadSetValue(ERadHwapi_CPR, 1), 0);
    ASSERT_TRUE(comeUp());
    breakLink("cpri0", ELinkPart_Receive);
    ASSERT_TRUE(passTimeUntil(m_clock, [this] { return (show()[0].conditions & ELinkCondition_Los) != 0; }));
    breakLink("cpri0", 0);
    ASSERT_TRUE(comeUp());
    ASSERT_TRUE(settle());

    for (const char* const text :
         {"cpri0 receives: HFNSYNC", "cpri0 master frame: 614", "cpri0 LOS begins", "cpri0 LOS ends",
          "cpri0 LOF begins", "cpri0 LOF ends", "cpri0 remote protocol version: 1", "cpri0 remote pointer: 20",
          "cpri0 region 2: 16 bytes transmitted", "cpri0 region 1: 16 bytes received", "obsai0 receives: FRAME",
          "obsai0 transmits: FRAME", "obsai0 pi: 31"}) {
        EXPECT_TRUE(m_log.waitFor(std::string("Info 0x20050 Link ") + text)) << text;
    }
}

TEST_F(LinkSTest, AnswerWithoutMemoryIsLogged)
{
    m_log.clear(); // of what it has said at its start
    {
        const testkit::FailEvery<AaSysComMsgCreate> noMemory;
        m_hands.send<LinkShowReqMsg>(m_running.address(), {5});
        m_hands.send<LinkBreakReqMsg>(m_running.address(), {6, nameOf("cpri0"), 1});
        m_running.sync();
    }

    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x20050 No memory to answer 0x0F010301",
                                           "Error 0x20050 No memory to answer 0x0F010301"));
}

} // namespace
} // namespace dorn::examples
