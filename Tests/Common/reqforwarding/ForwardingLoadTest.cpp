// SPDX-License-Identifier: MIT
// Thousands of requests whose replies come once, twice, late or never, and whose time-outs are mostly too late.
#include "ForwardingS.hpp"

#include "NodeTest.hpp"
#include "Peer.hpp"
#include "ServiceUnderTest.hpp"

#include <gmock/gmock.h>

#include <array>
#include <thread>
#include <vector>

namespace dorn::test {
namespace {

using testing::Each;
using testing::IsEmpty;
using testkit::NodeTest;
using testkit::Peer;
using testkit::ServiceUnderTest;

constexpr std::uint32_t requests = 6000;

/// What the server does with a request.
enum class Manner { Once, Twice, Late, Never };

Manner mannerOf(std::uint32_t number)
{
    return static_cast<Manner>(number % 4);
}

/// Replies to every request in its manner, until it has had all.
void serve(Peer& server, TAaSysComSicad service)
{
    std::vector<std::uint32_t> late;
    for (std::uint32_t count = 0; count < requests; ++count) {
        const std::uint32_t number = server.expect<ForwardedReqMsg>()->number;
        switch (mannerOf(number)) {
        case Manner::Once:
        case Manner::Twice:
            server.send<ForwardedRespMsg>(service, {number});
            if (mannerOf(number) == Manner::Twice) {
                server.send<ForwardedRespMsg>(service, {number});
            }
            break;
        case Manner::Late:
            late.push_back(number);
            if (late.size() == 50) {
                for (const std::uint32_t held : late) {
                    server.send<ForwardedRespMsg>(service, {held});
                }
                late.clear();
            }
            break;
        case Manner::Never:
            break;
        }
    }
}

class ForwardingLoadTest : public NodeTest {};

TEST_F(ForwardingLoadTest, EveryRequestIsAnsweredExactlyOnce)
{
    ForwardingS service;
    ServiceUnderTest running(service);
    ASSERT_TRUE(running.waitUntilReady());
    Peer server(serverCpid);
    std::thread serving([&] { serve(server, running.address()); });
    Peer requester;
    std::vector<unsigned> answers(requests, 0);
    std::array<unsigned, 3> results{};

    std::uint32_t asked = 0;
    for (std::uint32_t answered = 0; answered < requests; ++answered) {
        while (asked < requests && asked - answered < 500) { // so that addresses are used again and again
            const std::uint32_t timeout = asked % 7 * 300;
            const std::uint32_t leavesItsTimer = asked % 3 == 0 ? 0 : 1;
            requester.send<AskMsg>(running.address(), {asked, timeout, leavesItsTimer});
            ++asked;
        }
        const auto answer = requester.expect<AnswerMsg>();
        ASSERT_LT(answer->number, requests);
        ++answers[answer->number];
        ++results.at(answer->result);
    }
    serving.join();
    running.sync();

    EXPECT_THAT(answers, Each(1U));
    EXPECT_GT(results[EResult_TimedOut], 0U);
    EXPECT_EQ(results[EResult_Answered] + results[EResult_TimedOut], requests);
    EXPECT_EQ(service.open(), 0U);
    requester.expectNothing();
    EXPECT_EQ(running.terminate(), 1U);
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

} // namespace
} // namespace dorn::test
