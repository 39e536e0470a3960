// SPDX-License-Identifier: MIT
#include "FaultManagerS.hpp"

#include "AaFault.h"
#include "FailNth.hpp"
#include "NodeTest.hpp"
#include "OutputCapture.hpp"
#include "Peer.hpp"
#include "ServiceUnderTest.hpp"

#include <gmock/gmock.h>

#include <array>
#include <cstring>
#include <memory>

namespace dorn::examples {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testkit::FailNth;
using testkit::Peer;
using vel::hwapi::common::HwapiAlarm;
using vel::hwapi::common::SHwapiFaultInd;

class FaultManagerSTest : public testkit::NodeTest {
protected:
    FaultManagerSTest()
    {
        m_manager.SetVerbose(1); // has its lines of information kept
        m_running = std::make_unique<testkit::ServiceUnderTest>(m_manager);
        if (!m_running->waitUntilReady()) {
            throw std::runtime_error("the fault manager does not start");
        }
        m_log.clear();
    }

    /// The lines of the fault manager's own feature.
    std::vector<std::string> lines() const
    {
        std::vector<std::string> found;
        for (const std::string& text : m_log.texts()) {
            if (text.find(" 0x20009 ") != std::string::npos) {
                found.push_back(text);
            }
        }
        return found;
    }
    std::vector<SAlarm> alarms()
    {
        m_operator.send<AlarmListReqMsg>(faultManagerCpid, {7});
        const auto answer = m_operator.expect<AlarmListRespMsg>();
        EXPECT_EQ(answer->transactionId, 7U);
        std::vector<SAlarm> all(answer->activeCount + answer->pastCount);
        EXPECT_EQ(answer.payload().size(), sizeof *answer.operator->() + all.size() * sizeof(SAlarm));
        if (!all.empty()) {
            std::memcpy(all.data(), &*answer + 1, all.size() * sizeof(SAlarm));
        }
        return all;
    }
    std::uint32_t clear(std::uint32_t number)
    {
        m_operator.send<AlarmClearReqMsg>(faultManagerCpid, {8, number});
        const auto answer = m_operator.expect<AlarmClearRespMsg>();
        EXPECT_EQ(answer->transactionId, 8U);
        return answer->clearedCount;
    }
    static std::uint32_t subscribe(Peer& peer, std::uint32_t isWanted = 1)
    {
        peer.send<AlarmSubscribeReqMsg>(faultManagerCpid, {9, isWanted});
        const auto answer = peer.expect<AlarmSubscribeRespMsg>();
        EXPECT_EQ(answer->transactionId, 9U);
        return answer->status;
    }

    testkit::OutputCapture m_output;
    FaultManagerS m_manager;
    std::unique_ptr<testkit::ServiceUnderTest> m_running;
    Peer m_operator{0x301};
    Peer m_service{0x211};
    HwapiAlarm m_alarm{0x211, 0x20047};
};

TEST_F(FaultManagerSTest, ReportedFaultIsListedAndLogged)
{
    m_alarm.sendAlarmMsg(EFaultId_FanFailure, "abc", 3);

    const auto listed = alarms();
    ASSERT_EQ(listed.size(), 1U);
    EXPECT_EQ(listed[0].faultId, EFaultId_FanFailure);
    EXPECT_EQ(listed[0].boardNumber, 16U);
    EXPECT_EQ(listed[0].sender, m_service.address());
    EXPECT_EQ(listed[0].detailSize, 3U);
    EXPECT_EQ(std::memcmp(listed[0].details.data(), "abc\0", 4), 0);
    EXPECT_GT(listed[0].raised, 1'000'000'000'000'000U);
    EXPECT_THAT(lines(),
                ElementsAre("Warning 0x20009 Alarm 1 raised: fault 2 fan-failure, board 16, sender 0x0F010211, "
                            "count 1, active"));
}

TEST_F(FaultManagerSTest, NobodyHasAlarmsAtFirst)
{
    EXPECT_THAT(alarms(), IsEmpty());
}

TEST_F(FaultManagerSTest, ClearedAlarmIsListedAsPast)
{
    m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0);
    m_alarm.sendAlarmMsg(EFaultId_DspFailure, nullptr, 0);
    ASSERT_EQ(alarms().size(), 2U);

    EXPECT_EQ(clear(1), 1U);
    EXPECT_EQ(clear(1), 0U);

    const auto listed = alarms();
    ASSERT_EQ(listed.size(), 2U);
    EXPECT_EQ(listed[0].number, 2U);
    EXPECT_EQ(listed[1].number, 1U);
    EXPECT_EQ(listed[1].state, EAlarmState_Cleared);
    EXPECT_THAT(lines(), Contains("Info 0x20009 Alarm 1 ended: fault 2 fan-failure, board 16, sender 0x0F010211, count "
                                  "1, cleared"));
}

TEST_F(FaultManagerSTest, FaultOutsideTheCatalogueIsKeptToo)
{
    m_alarm.sendAlarmMsg(static_cast<EFaultId>(4711), nullptr, 0);

    ASSERT_EQ(alarms().size(), 1U);
    EXPECT_THAT(lines(),
                ElementsAre("Warning 0x20009 Alarm 1 raised: fault 4711 , board 16, sender 0x0F010211, count 1, "
                            "active"));
}

TEST_F(FaultManagerSTest, FullTablesAreListedWhole)
{
    for (std::uint32_t fault = 1; fault <= 2 * maxActiveAlarms + 1; ++fault) {
        m_alarm.sendAlarmMsg(static_cast<EFaultId>(fault), nullptr, 0);
    }

    EXPECT_EQ(alarms().size(), maxActiveAlarms + maxPastAlarms);
}

TEST_F(FaultManagerSTest, FaultThatIsTooShortIsLoggedAndDropped)
{
    m_service.send(11140, faultManagerCpid, std::string(11, 'x'));

    EXPECT_THAT(alarms(), IsEmpty());
    EXPECT_THAT(lines(),
                ElementsAre("Error 0x20009 Message too short: id=0x2B84 size=11 expected=12 sender=0x0F010211"));
}

TEST_F(FaultManagerSTest, DetailSizeBeyondThePayloadIsLoggedAndDropped)
{
    struct {
        SHwapiFaultInd head{2, 16, 5};
        std::array<char, 4> details{};
    } fault;
    m_service.send(11140, faultManagerCpid, std::as_bytes(std::span(&fault, 1)));
    fault.head.detailSize = 0xFFFFFFFF;
    m_service.send(11140, faultManagerCpid, std::as_bytes(std::span(&fault, 1)));

    EXPECT_THAT(alarms(), IsEmpty());
    EXPECT_THAT(lines(),
                ElementsAre("Error 0x20009 Fault dropped: 5 detail bytes told, 4 there (fault=2 sender=0x0F010211)",
                            "Error 0x20009 Fault dropped: 4294967295 detail bytes told, 4 there (fault=2 "
                            "sender=0x0F010211)"));
}

TEST_F(FaultManagerSTest, DetailsUpToTheEndOfThePayloadAreTaken)
{
    const SHwapiFaultInd head{2, 16, 4};
    std::string payload(reinterpret_cast<const char*>(&head), sizeof head);

    m_service.send(11140, faultManagerCpid, payload + "wxyz");

    const auto listed = alarms();
    ASSERT_EQ(listed.size(), 1U);
    EXPECT_EQ(std::memcmp(listed[0].details.data(), "wxyz\0", 5), 0);
}

TEST_F(FaultManagerSTest, ShortQuestionsAreLoggedAndNotAnswered)
{
    m_operator.send(AlarmListReqMsg::ID, faultManagerCpid, "abc");
    m_operator.send(AlarmClearReqMsg::ID, faultManagerCpid, "abcdefg");
    m_operator.send(AlarmSubscribeReqMsg::ID, faultManagerCpid, "");
    m_running->sync();

    m_operator.expectNothing();
    EXPECT_THAT(lines(), ElementsAre("Error 0x20009 Message too short: id=0x2121 size=3 expected=4 sender=0x0F010301",
                                     "Error 0x20009 Message too short: id=0x2123 size=7 expected=8 sender=0x0F010301",
                                     "Error 0x20009 Message too short: id=0x2125 size=0 expected=8 sender=0x0F010301"));
}

TEST_F(FaultManagerSTest, NoMemoryForAnAnswerIsLogged)
{
    const testkit::FailEvery<AaSysComMsgCreate> noMemory;
    m_operator.send<AlarmListReqMsg>(faultManagerCpid, {1});
    m_operator.send<AlarmClearReqMsg>(faultManagerCpid, {2, 0});
    m_operator.send<AlarmSubscribeReqMsg>(faultManagerCpid, {3, 1});
    m_running->sync();

    m_operator.expectNothing();
    EXPECT_THAT(lines(), ElementsAre("Error 0x20009 No memory to answer 0x0F010301",
                                     "Error 0x20009 No memory to answer 0x0F010301",
                                     "Error 0x20009 No memory to answer 0x0F010301"));
}

TEST_F(FaultManagerSTest, SubscriberIsToldOfEveryChange)
{
    Peer watcher;
    ASSERT_EQ(subscribe(watcher), 0U);

    m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0);
    EXPECT_EQ(watcher.expect<AlarmEventIndMsg>()->event, EAlarmEvent_Raised);
    m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0);
    const auto repeated = watcher.expect<AlarmEventIndMsg>();
    EXPECT_EQ(repeated->event, EAlarmEvent_Repeated);
    EXPECT_EQ(repeated->alarm.count, 2U);
    clear(0);
    const auto ended = watcher.expect<AlarmEventIndMsg>();
    EXPECT_EQ(ended->event, EAlarmEvent_Ended);
    EXPECT_EQ(ended->alarm.number, 1U);
    EXPECT_EQ(ended->alarm.state, EAlarmState_Cleared);
}

TEST_F(FaultManagerSTest, SubscribingTwiceIsSubscribingOnce)
{
    Peer watcher;
    ASSERT_EQ(subscribe(watcher), 0U);
    ASSERT_EQ(subscribe(watcher), 0U);

    m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0);
    watcher.expect<AlarmEventIndMsg>();
    m_running->sync();

    watcher.expectNothing();
}

TEST_F(FaultManagerSTest, SubscriptionCanBeEnded)
{
    Peer watcher;
    ASSERT_EQ(subscribe(watcher), 0U);
    EXPECT_EQ(subscribe(watcher, 0), 0U);

    m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0);
    m_running->sync();

    watcher.expectNothing();
}

TEST_F(FaultManagerSTest, SubscriberThatHasGoneIsForgotten)
{
    {
        Peer watcher(0x302);
        ASSERT_EQ(subscribe(watcher), 0U);
    }
    m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0);
    m_alarm.sendAlarmMsg(EFaultId_DspFailure, nullptr, 0);
    m_running->sync();

    EXPECT_EQ(m_log.count("Info 0x20009 Subscriber 0x0F010302 forgotten"), 1U);
    EXPECT_EQ(alarms().size(), 2U);
}

TEST_F(FaultManagerSTest, OneSubscriberTooManyIsRefusedUntilOneHasGone)
{
    std::array<std::unique_ptr<Peer>, FaultManagerS::maxSubscribers> watchers;
    for (auto& watcher : watchers) {
        watcher = std::make_unique<Peer>();
        ASSERT_EQ(subscribe(*watcher), 0U);
    }

    EXPECT_EQ(subscribe(m_operator), 1U);
    EXPECT_EQ(m_log.count("Warning 0x20009 Subscriber 0x0F010301 refused: there are 8 already"), 1U);
    watchers[3].reset();

    EXPECT_EQ(subscribe(m_operator), 0U);
}

TEST_F(FaultManagerSTest, MissedChangeDoesNotEndTheSubscription)
{
    Peer watcher;
    ASSERT_EQ(subscribe(watcher), 0U);
    {
        const FailNth<AaSysComMsgCreate> noMemory(2); // the first is the fault itself
        m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0);
        m_running->sync();
    }
    watcher.expectNothing();

    m_alarm.sendAlarmMsg(EFaultId_DspFailure, nullptr, 0);

    EXPECT_EQ(watcher.expect<AlarmEventIndMsg>()->alarm.faultId, EFaultId_DspFailure);
}

} // namespace
} // namespace dorn::examples
