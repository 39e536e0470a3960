// SPDX-License-Identifier: MIT
// Many EUs at once: what is sent arrives once, and nobody is left asleep.
#include "Pattern.hpp"
#include "SysComTest.hpp"
#include "eu/TestEu.hpp"

#include <atomic>
#include <list>
#include <thread>

namespace dorn::host::test {
namespace {

using testkit::TestEu;

constexpr TAaSysComCpid cpid = 0x0300;

class StressTest : public SysComTest {};

TEST_F(StressTest, NothingIsLostOrDoubledUnderSeveralSendingEus)
{
    constexpr std::uint32_t senders = 4;
    constexpr std::uint32_t each = 10000;
    const TAaSysComSicad own = address();
    std::list<TestEu> eus;
    for (std::uint32_t stream = 0; stream < senders; ++stream) {
        eus.emplace_back([own, stream] {
            for (std::uint32_t sequence = 0; sequence < each; ++sequence) {
                void* message = makePattern(own, stream, sequence, leastPattern);
                EXPECT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_Ok);
            }
        });
    }
    PatternCheck check;
    while (check.count() < senders * each) {
        void* message = AaSysComMsgReceive(generousTimeout);
        ASSERT_NE(message, nullptr);
        check.take(message);
        AaSysComMsgDestroy(&message);
    }

    EXPECT_EQ(check.broken(), 0U);
    EXPECT_EQ(check.outOfOrder(), 0U);
    EXPECT_EQ(takeId(), 0U);
}

/// One message at a time: the receiver is met going to sleep, asleep and on its way back.
TEST_F(StressTest, NoMessageIsLostHoweverItMeetsTheReceive)
{
    constexpr int rounds = 20000;
    std::atomic<int> taken{0};
    TestEu receiver([&] {
        while (taken.load() < rounds) {
            EXPECT_NE(takeId(AA_WAIT_FOREVER), 0U);
            taken.fetch_add(1);
        }
    });
    ASSERT_EQ(AaSysComUserRegister(cpid, receiver.id()), cpid);
    for (int round = 0; round < rounds; ++round) {
        ASSERT_EQ(sendEmpty(1, addressOf(cpid)), EAaSysComStatus_Ok);
        while (taken.load() <= round) {
            if (round % 2 == 0) {
                std::this_thread::yield();
            }
        }
    }
    receiver.wait();
}

TEST_F(StressTest, EusThatAnswerEachOtherNeverStop)
{
    constexpr int rounds = 5000;
    TestEu echo([] {
        for (int round = 0; round < rounds; ++round) {
            void* question = AaSysComMsgReceive(AA_WAIT_FOREVER);
            sendEmpty(2, AaSysComMsgGetSender(question));
            AaSysComMsgDestroy(&question);
        }
    });
    ASSERT_EQ(AaSysComUserRegister(cpid, echo.id()), cpid);
    for (int round = 0; round < rounds; ++round) {
        ASSERT_EQ(sendEmpty(1, addressOf(cpid)), EAaSysComStatus_Ok);
        ASSERT_EQ(takeId(generousTimeout, {2}), 2U);
    }
    echo.wait();
}

TEST_F(StressTest, ReceiversThatEndWhileOthersSendDoNoHarm)
{
    std::atomic<bool> isOver{false};
    std::atomic<std::uint64_t> accepted{0};
    const auto body = [&] {
        while (!isOver.load()) {
            accepted += sendEmpty(1, addressOf(cpid)) == EAaSysComStatus_Ok ? 1U : 0U;
        }
    };
    std::list<TestEu> senders;
    senders.emplace_back(body);
    senders.emplace_back(body);
    for (int round = 0; round < 300; ++round) {
        TestEu receiver([] {
            EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
            EXPECT_EQ(takeId(AA_WAIT_FOREVER), 1U);
        });
    }
    isOver.store(true);
    senders.clear();

    EXPECT_GE(accepted.load(), 300U);
}

TEST_F(StressTest, WakeUpsOfEusThatEndDoNoHarm)
{
    std::atomic<TAaProEuId> target{0};
    std::atomic<bool> isOver{false};
    std::thread waker([&] {
        while (!isOver.load()) {
            AaSysComEuWakeUp(target.load());
        }
    });
    for (int round = 0; round < 300; ++round) {
        TestEu eu([&] {
            target.store(AaProEuCurrent());
            EXPECT_EQ(AaSysComMsgReceive(AA_WAIT_FOREVER), nullptr);
        });
    }
    isOver.store(true);
    waker.join();
}

} // namespace
} // namespace dorn::host::test
