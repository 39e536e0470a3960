// SPDX-License-Identifier: MIT
// Request forwarding with real messages and time-outs.
#include "ForwardingS.hpp"

#include "ManualClock.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "ScriptedService.hpp"
#include "ServiceUnderTest.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <cstring>
#include <optional>

namespace dorn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testkit::ManualClock;
using testkit::NodeTest;
using testkit::Peer;
using testkit::ServiceUnderTest;
using vel::hwapi::common::API_FORWARD_TIMEOUT_OUT;

constexpr std::uint32_t second = 1'000'000;

class ForwardingHostTest : public NodeTest {
protected:
    ForwardingHostTest() : m_running(m_service), m_server(serverCpid) { EXPECT_TRUE(m_running.waitUntilReady()); }

    void ask(std::uint32_t number, std::uint32_t timeout = second, std::uint32_t leavesItsTimer = 0)
    {
        m_requester.send<AskMsg>(m_running.address(), {number, timeout, leavesItsTimer});
    }
    void reply(std::uint32_t number) { m_server.send<ForwardedRespMsg>(m_running.address(), {number}); }
    /// Number and result of the next answer.
    std::pair<std::uint32_t, std::uint32_t> answer()
    {
        const auto message = m_requester.expect<AnswerMsg>();
        return {message->number, message->result};
    }
    /// The same, and the answer is to be the last one.
    void expectLast(std::uint32_t number, EResult result)
    {
        EXPECT_EQ(answer(), std::pair(number, std::uint32_t{result}));
        m_running.sync();
        m_requester.expectNothing();
        EXPECT_EQ(m_service.open(), 0U);
    }

    ManualClock m_clock;
    ForwardingS m_service;
    ServiceUnderTest m_running;
    Peer m_server;
    Peer m_requester;
};

TEST_F(ForwardingHostTest, RequestIsForwardedAndItsReplyAnswersIt)
{
    ask(7);
    EXPECT_EQ(m_server.expect<ForwardedReqMsg>()->number, 7U);

    reply(7);

    expectLast(7, EResult_Answered);
}

TEST_F(ForwardingHostTest, RepliesMayComeInAnyOrder)
{
    for (const std::uint32_t number : {1U, 2U, 3U}) {
        ask(number);
        m_server.expect<ForwardedReqMsg>();
    }

    reply(2);
    EXPECT_EQ(answer().first, 2U);
    reply(3);
    EXPECT_EQ(answer().first, 3U);
    reply(1);
    expectLast(1, EResult_Answered);
}

TEST_F(ForwardingHostTest, SilenceOfTheServerIsATimeOut)
{
    ask(7);
    m_server.expect<ForwardedReqMsg>();
    m_clock.advance(std::chrono::microseconds(second - 1));
    m_running.sync();
    m_requester.expectNothing();

    m_clock.advance(std::chrono::microseconds(1));

    expectLast(7, EResult_TimedOut);
}

TEST_F(ForwardingHostTest, RequestsTimeOutOneByOne)
{
    ask(1, 3 * second);
    ask(2, 1 * second);
    ask(3, 2 * second);
    m_running.sync();

    m_clock.advance(std::chrono::seconds(3));

    EXPECT_EQ(answer().first, 2U);
    EXPECT_EQ(answer().first, 3U);
    expectLast(1, EResult_TimedOut);
}

TEST_F(ForwardingHostTest, ReplyThatComesTwiceAnswersOnce)
{
    ask(7);
    m_server.expect<ForwardedReqMsg>();

    reply(7);
    reply(7);

    expectLast(7, EResult_Answered);
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(ForwardingHostTest, ReplyAfterTheTimeOutIsDropped)
{
    ask(7);
    m_server.expect<ForwardedReqMsg>();
    m_clock.advance(std::chrono::seconds(1));
    EXPECT_EQ(answer().second, EResult_TimedOut);

    reply(7);

    m_running.sync();
    m_requester.expectNothing();
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(ForwardingHostTest, ReplyToNobodyIsDropped)
{
    ask(7);
    m_server.expect<ForwardedReqMsg>();

    reply(8);
    reply(7);

    expectLast(7, EResult_Answered);
}

TEST_F(ForwardingHostTest, LateTimeOutOfACompletedRequestIsIgnored)
{
    ask(7, second, 1);
    m_server.expect<ForwardedReqMsg>();
    reply(7);
    EXPECT_EQ(answer().second, EResult_Answered);
    m_running.sync();

    m_clock.advance(std::chrono::seconds(1));

    m_running.sync();
    m_requester.expectNothing();
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(ForwardingHostTest, ReplyOnTheHeelsOfTheTimeOutAnswersOnce)
{
    for (std::uint32_t number = 0; number < 50; ++number) {
        ask(number);
        m_server.expect<ForwardedReqMsg>();
        m_running.sync();
        m_clock.advance(std::chrono::seconds(1)); // now the time-out and the reply race
        reply(number);

        EXPECT_EQ(answer().first, number);
    }
    m_running.sync();
    m_requester.expectNothing();
}

TEST_F(ForwardingHostTest, EndOfTheServiceWithOpenRequestsLeavesNothing)
{
    ask(1, second, 1);
    ask(2, second, 1);
    m_running.sync();
    EXPECT_EQ(m_service.open(), 2U);

    EXPECT_EQ(m_running.terminate(), 1U);

    m_clock.advance(std::chrono::seconds(1));
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(ForwardingHostTest, ForgedIdentityOfAnotherProcessIsComparedAndNeverFollowed)
{
    ask(7);
    m_server.expect<ForwardedReqMsg>();
    for (const std::uintptr_t identity : {std::uintptr_t{0}, std::uintptr_t{1}, ~std::uintptr_t{0}}) {
        m_requester.send(API_FORWARD_TIMEOUT_OUT, m_running.address(), std::as_bytes(std::span(&identity, 1)));
    }

    reply(7);

    expectLast(7, EResult_Answered);
}

TEST_F(ForwardingHostTest, TimeOutWithoutPayloadIsLoggedAndTheServiceGoesOn)
{
    Peer stranger(0x321);
    stranger.send(API_FORWARD_TIMEOUT_OUT, m_running.address());
    stranger.send(API_FORWARD_TIMEOUT_OUT, m_running.address(), "abc");
    m_running.sync();

    const std::string beginning = "Error 0x20075 Message too short: id=0x2BFF size=";
    const std::string end = " expected=" + std::to_string(sizeof(void*)) + " sender=0x0F010321";
    EXPECT_THAT(m_log.texts(), ElementsAre(beginning + "0" + end, beginning + "3" + end));
}

class RawForwardingTest : public NodeTest {};

TEST_F(RawForwardingTest, TimeOutWithoutPayloadThatReachesTheHandlerEndsTheService)
{
    ForwardedReqs reqs;
    ScriptedService service;
    service.AddMsgDelegate(
        new ScriptedDelegate(API_FORWARD_TIMEOUT_OUT, [&](void* message) { reqs.HandleForwardedReqTimeout(message); }));
    ServiceUnderTest running(service);
    ASSERT_TRUE(running.waitUntilReady());
    Peer stranger;

    stranger.send(API_FORWARD_TIMEOUT_OUT, running.address());

    EXPECT_EQ(running.waitForEnd(), 0U);
    EXPECT_EQ(service.GetServiceStateRad(), 5U);
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Error 0x20075 Message handling failed 0x2bff",
                            MatchesRegex("Error 0x20075 Runtime error : std::exception in Run\\(\\) \\(file: "
                                         "Common/src/ServiceMainLoop.cpp, line: [0-9]+\\)"),
                            "Error 0x20075 Ping main EU died unexpectedly"));
}

TEST_F(ForwardingHostTest, StepsAreLoggedWhileTheFeatureIsOn)
{
    AaConfigRadSetValue(ERadHwapi_PrintBoundaryIf, 1);
    ask(7);
    m_server.expect<ForwardedReqMsg>();
    reply(7);
    expectLast(7, EResult_Answered);

    EXPECT_THAT(m_log.texts(), testing::Contains("Debug 0x20075 Req::Req"));
    EXPECT_THAT(m_log.texts(), testing::Contains("Debug 0x20075 ReqHandler::ReqCompleted m_reqs.size '0'"));
}

} // namespace
} // namespace dorn::test
