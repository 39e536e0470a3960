// SPDX-License-Identifier: MIT
// An EU whose thread is cancelled unwinds, wherever it waits, and leaves nothing behind.
#include "AaSem.h"
#include "AaSysCom.h"
#include "ManualClock.hpp"
#include "NodeTest.hpp"
#include "Sanitizers.hpp"
#include "TestEu.hpp"
#include "node/PerNode.hpp"
#include "syscom/MessageQueue.hpp"

#include <atomic>
#include <pthread.h>
#include <string>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace dorn::host::test {
namespace {

using testkit::TestEu;

constexpr TAaSysComCpid cpid = 0x0300;

/// Tells that the scope it lives in has been left.
class Left {
public:
    explicit Left(std::atomic<bool>& flag) : m_flag(flag) {}
    ~Left() { m_flag.store(true); }
    Left(const Left&) = delete;
    Left& operator=(const Left&) = delete;

private:
    std::atomic<bool>& m_flag;
};

TAaSysComSicad addressOf(TAaSysComCpid of)
{
    return AaSysComSicadGet(of, AaSysComGetOwnNid());
}

std::int32_t sendEmpty(TAaSysComCpid receiver)
{
    void* message = AaSysComMsgCreate(1, 0, addressOf(receiver));
    return AaSysComMsgSend(&message);
}

class EuCancelTest : public testkit::NodeTest {
protected:
    void SetUp() override
    {
        if (dorn::test::hasAddressSanitizer) {
            GTEST_SKIP() << dorn::test::unwindingIsNotKnown;
        }
    }

    /// Waits until the thread @p kernelId of this process has said who it is and sleeps.
    static void awaitSleep(const std::atomic<int>& kernelId)
    {
        std::string state;
        while (state != "S") {
            const std::string path = "/proc/self/task/" + std::to_string(kernelId.load()) + "/stat";
            if (FILE* const file = std::fopen(path.c_str(), "r")) {
                char letter[2] = {};
                state = std::fscanf(file, "%*d (%*[^)]) %1s", letter) == 1 ? letter : "";
                std::fclose(file);
            }
            std::this_thread::yield();
        }
    }

    /// Cancels an EU that waits in @p wait; it must unwind and give its cpid up.
    void expectUnwinding(const std::function<void()>& wait)
    {
        std::atomic<bool> hasLeft{false};
        std::atomic<int> kernelId{0};
        TestEu eu([&] {
            const Left left(hasLeft);
            EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
            kernelId.store(static_cast<int>(syscall(SYS_gettid)));
            wait();
            ADD_FAILURE() << "the wait has ended";
        });
        awaitSleep(kernelId);

        eu.cancel();

        eu.wait();
        EXPECT_TRUE(hasLeft.load());
        EXPECT_EQ(sendEmpty(cpid), EAaSysComStatus_NoReceiver);
        EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
        AaSysComUserDeregister(cpid);
    }
};

TEST_F(EuCancelTest, ReceiveWithoutLimitUnwinds)
{
    expectUnwinding([] { AaSysComMsgReceive(AA_WAIT_FOREVER); });
}

TEST_F(EuCancelTest, ReceiveWithTimeOutUnwinds)
{
    expectUnwinding([] { AaSysComMsgReceive(60'000'000); });
}

TEST_F(EuCancelTest, SelectiveReceiveUnwinds)
{
    expectUnwinding([] {
        const std::uint16_t filter[] = {1, 1};
        AaSysComMsgReceiveSelective(AA_WAIT_FOREVER, filter);
    });
}

TEST_F(EuCancelTest, SelectiveReceiveBehindAFullQueueUnwinds)
{
    expectUnwinding([] {
        for (int count = 0; count < MessageQueue::capacity; ++count) {
            sendEmpty(cpid);
        }
        const std::uint16_t filter[] = {1, 2};
        AaSysComMsgReceiveSelective(AA_WAIT_FOREVER, filter);
    });
}

TEST_F(EuCancelTest, SemaphoreWithoutLimitUnwinds)
{
    AaSem* sem = AaSemCreateC(0);
    expectUnwinding([sem] { AaSemTake(sem, AA_WAIT_FOREVER); });
    AaSemDestroy(&sem);
}

TEST_F(EuCancelTest, SemaphoreWithTimeOutUnwinds)
{
    AaSem* sem = AaSemCreateC(0);
    expectUnwinding([sem] { AaSemTake(sem, 60'000'000); });
    AaSemDestroy(&sem);
}

TEST_F(EuCancelTest, SendToAFullReceiverUnwinds)
{
    AaSem* end = AaSemCreateC(0);
    {
        TestEu receiver([end] { AaSemTake(end, AA_WAIT_FOREVER); });
        ASSERT_EQ(AaSysComUserRegister(0x0301, receiver.id()), 0x0301);
        for (int count = 0; count < MessageQueue::capacity; ++count) {
            ASSERT_EQ(sendEmpty(0x0301), EAaSysComStatus_Ok);
        }

        const testkit::ManualClock clock;
        expectUnwinding([] { sendEmpty(0x0301); });
        AaSemGive(end);
    }
    AaSemDestroy(&end);
}

TEST_F(EuCancelTest, CreationThatWaitsForTheEndUnwinds)
{
    if (dorn::test::hasThreadSanitizer) {
        GTEST_SKIP() << "ThreadSanitizer does not know a join that is cancelled";
    }

    AaSem* end = AaSemCreateC(0);
    AaSem* ended = AaSemCreateC(0);
    struct Args {
        AaSem* end;
        AaSem* ended;
    } const args{end, ended};

    expectUnwinding([&] {
        AaSysComEuCreateAndStartWithPolicy(
            nullptr, "Other",
            [](void* block) -> void* {
                const Args own = *static_cast<Args*>(block);
                AaSemTake(own.end, AA_WAIT_FOREVER);
                AaSemGive(own.ended);
                return nullptr;
            },
            4096, EAaProEuSchedulingPolicy_NotDefined, 0, &args, sizeof args, 1);
    });

    AaSemGive(end);
    AaSemTake(ended, AA_WAIT_FOREVER);
    AaSemDestroy(&end);
    AaSemDestroy(&ended);
}

/// A cancelled waiter may have been the one that a count was to wake.
TEST_F(EuCancelTest, CountThatWokeACancelledWaiterIsNotLostForTheOthers)
{
    AaSem* never = AaSemCreateC(0);
    for (int round = 0; round < 200; ++round) {
        AaSem* sem = AaSemCreateC(0);
        std::atomic<int> kernelId{0};
        std::atomic<bool> hasTaken{false};
        TestEu first([&] {
            kernelId.store(static_cast<int>(syscall(SYS_gettid)));
            AaSemTake(sem, AA_WAIT_FOREVER);
            hasTaken.store(true);
            AaSemTake(never, AA_WAIT_FOREVER);
        });
        awaitSleep(kernelId); // it is the first that is woken
        TestEu second([&] { AaSemTake(sem, AA_WAIT_FOREVER); });

        AaSemGive(sem);
        first.cancel();

        first.wait();
        if (hasTaken.load()) {
            AaSemGive(sem);
        }
        second.wait();
        AaSemDestroy(&sem);
    }
    AaSemDestroy(&never);
}

/// A cancellation that is under way takes effect at the next wait, and nowhere where it would end the process.
class PendingCancellationTest : public EuCancelTest {
protected:
    static void expectUnwindingAfter(const std::function<void()>& work)
    {
        std::atomic<bool> hasLeft{false};
        TestEu eu([&] {
            const Left left(hasLeft);
            EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
            pthread_cancel(pthread_self());
            work();
        });
        eu.wait();
        EXPECT_TRUE(hasLeft.load());
        EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
        AaSysComUserDeregister(cpid);
    }
};

TEST_F(PendingCancellationTest, EndOfTheEuIsClean)
{
    expectUnwindingAfter([] {});
}

TEST_F(PendingCancellationTest, ReceiveUnwinds)
{
    expectUnwindingAfter([] {
        AaSysComMsgReceive(AA_WAIT_FOREVER);
        ADD_FAILURE() << "the wait has ended";
    });
}

TEST_F(PendingCancellationTest, SendToASleepingReceiverIsFinishedFirst)
{
    std::atomic<int> kernelId{0};
    TestEu receiver([&] {
        kernelId.store(static_cast<int>(syscall(SYS_gettid)));
        void* message = AaSysComMsgReceive(AA_WAIT_FOREVER);
        AaSysComMsgDestroy(&message);
    });
    ASSERT_EQ(AaSysComUserRegister(0x0301, receiver.id()), 0x0301);
    awaitSleep(kernelId); // its bell is rung only then

    expectUnwindingAfter([] { EXPECT_EQ(sendEmpty(0x0301), EAaSysComStatus_Ok); });
}

TEST_F(PendingCancellationTest, WakeUpIsFinishedFirst)
{
    TestEu receiver([] { AaSysComMsgReceive(AA_WAIT_FOREVER); });
    expectUnwindingAfter([&] {
        AaSysComEuWakeUp(receiver.id()); // makes a system call, whether or not the receiver sleeps
        AaSysComEuWakeUp(receiver.id());
    });
}

TEST_F(PendingCancellationTest, RegistrationAndDeregistrationAreFinishedFirst)
{
    expectUnwindingAfter([] {
        AaSysComUserRegister(0x0301, AaProEuCurrent());
        AaSysComUserDeregister(0x0301);
    });
    EXPECT_EQ(AaSysComUserRegister(0x0301, AaProEuCurrent()), 0x0301);
    AaSysComUserDeregister(0x0301);
}

TEST_F(PendingCancellationTest, EndOfAForeignThreadIsClean)
{
    std::thread thread([] {
        EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
        pthread_cancel(pthread_self());
    });
    thread.join();

    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
    AaSysComUserDeregister(cpid);
}

TEST_F(PendingCancellationTest, DestructorsReceiveWhileTheEuUnwinds)
{
    struct Farewell {
        ~Farewell()
        {
            sendEmpty(cpid);
            void* message = AaSysComMsgReceive(1000);
            EXPECT_EQ(AaSysComMsgGetId(message), 1U);
            AaSysComMsgDestroy(&message);
        }
    };

    expectUnwindingAfter([] {
        const Farewell farewell;
        AaSysComMsgReceive(AA_WAIT_FOREVER);
    });
}

} // namespace
} // namespace dorn::host::test
