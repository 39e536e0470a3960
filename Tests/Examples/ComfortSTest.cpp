// SPDX-License-Identifier: MIT
#include "ComfortS.hpp"

#include "AaConfigTag.h"
#include "BoardPlan.hpp"
#include "ClimateMessages.hpp"
#include "ComfortMessages.hpp"
#include "ManualClock.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "PlanTexts.hpp"
#include "ServiceUnderTest.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <optional>

namespace dorn::examples {
namespace {

using testing::IsEmpty;
using testkit::ManualClock;
using testkit::NodeTest;
using testkit::Peer;
using testkit::ServiceUnderTest;

class ComfortSTest : public NodeTest {
protected:
    /// Starts the service, which observes its tags from then on.
    void start() { ASSERT_TRUE(m_running.emplace(m_comfort).waitUntilReady()); }

    void ask(std::uint32_t transactionId = 1) { m_asker.send<ComfortReqMsg>(m_running->address(), {transactionId}); }
    /// Has the climate service answer the question that it is asked next.
    void answerOfClimate(std::int32_t temperature)
    {
        const auto question = m_climate.expect<ClimateStatusReqMsg>();
        m_climate.send<ClimateStatusRespMsg>(m_running->address(), {question->transactionId, temperature, 0, 0});
    }
    std::uint32_t comfort() { return m_asker.expect<ComfortRespMsg>()->comfort; }

    ManualClock m_clock;
    ComfortS m_comfort;
    Peer m_climate{climateServiceCpid};
    Peer m_asker;
    std::optional<ServiceUnderTest> m_running;
};

TEST_F(ComfortSTest, CoolBoardIsComfortable)
{
    start();
    ask(77);
    answerOfClimate(55);

    const auto answer = m_asker.expect<ComfortRespMsg>();
    EXPECT_EQ(answer->transactionId, 77U);
    EXPECT_EQ(answer->comfort, EComfort_Comfortable);
}

TEST_F(ComfortSTest, WarmBoardIsNot)
{
    start();
    ask();
    answerOfClimate(56);

    EXPECT_EQ(comfort(), EComfort_TooWarm);
}

TEST_F(ComfortSTest, LimitIsTheTags)
{
    AaConfigTagSetU32(comfortLimitTag, 30);
    start();
    ask();
    answerOfClimate(31);

    EXPECT_EQ(comfort(), EComfort_TooWarm);
}

TEST_F(ComfortSTest, LimitIsThePlans)
{
    m_node.writeBoardFile(boardPlanFile, planFor(comfortPlanObject, planned("limit", "40")));
    start();
    ask();
    answerOfClimate(41);
    EXPECT_EQ(comfort(), EComfort_TooWarm);
    ask();
    answerOfClimate(40);
    EXPECT_EQ(comfort(), EComfort_Comfortable);
}

TEST_F(ComfortSTest, TagOverrulesThePlan)
{
    m_node.writeBoardFile(boardPlanFile, planFor(comfortPlanObject, planned("limit", "40")));
    AaConfigTagSetU32(comfortLimitTag, 60);
    start();
    ask();
    answerOfClimate(60);

    EXPECT_EQ(comfort(), EComfort_Comfortable);
}

TEST_F(ComfortSTest, NothingIsKnownWhileTheClimateServiceIsSilent)
{
    start();
    ask();
    m_climate.expect<ClimateStatusReqMsg>();

    m_clock.advance(std::chrono::milliseconds(500));

    EXPECT_EQ(comfort(), EComfort_Unknown);
}

TEST_F(ComfortSTest, EachAskerGetsItsOwnAnswer)
{
    start();
    m_log.clear(); // of what it has said at its start
    ask(1);
    ask(2);
    const auto first = m_climate.expect<ClimateStatusReqMsg>();
    const auto second = m_climate.expect<ClimateStatusReqMsg>();
    m_climate.send<ClimateStatusRespMsg>(m_running->address(), {second->transactionId, 90, 0, 0});
    m_climate.send<ClimateStatusRespMsg>(m_running->address(), {first->transactionId, 20, 0, 0});

    const auto answerToSecond = m_asker.expect<ComfortRespMsg>();
    EXPECT_EQ(answerToSecond->transactionId, 2U);
    EXPECT_EQ(answerToSecond->comfort, EComfort_TooWarm);
    const auto answerToFirst = m_asker.expect<ComfortRespMsg>();
    EXPECT_EQ(answerToFirst->transactionId, 1U);
    EXPECT_EQ(answerToFirst->comfort, EComfort_Comfortable);
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

} // namespace
} // namespace dorn::examples
