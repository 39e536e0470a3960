// SPDX-License-Identifier: MIT
#include "eu/Eu.hpp"
#include "AaPro.h"
#include "AaSem.h"
#include "AaSysCom.h"
#include "NodeTest.hpp"
#include "PthreadCreate.hpp"
#include "TestEu.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <list>
#include <set>
#include <thread>

namespace dorn::host::test {
namespace {

using testkit::TestEu;

class EuTest : public testkit::NodeTest {};

/// What an EU of these tests is given.
struct Task {
    TAaProEuId* id;
    std::atomic<TAaProEuId>* seen;
    AaSem* done;
};

void* noteId(void* args)
{
    Task task{};
    std::memcpy(&task, args, sizeof task);
    task.seen->store(*task.id);
    AaSemGive(task.done);
    return nullptr;
}

TEST_F(EuTest, IdIsStoredBeforeTheEuRunsItsFirstInstruction)
{
    AaSem* done = AaSemCreateC(0);
    for (int round = 0; round < 200; ++round) {
        TAaProEuId id = 0;
        std::atomic<TAaProEuId> seen{0};
        const Task task{&id, &seen, done};
        ASSERT_EQ(AaSysComEuCreateAndStart(&id, "Eu", noteId, 4096, 0, &task, sizeof task), 0);
        AaSemTake(done, AA_WAIT_FOREVER);

        ASSERT_NE(id, 0U);
        ASSERT_EQ(seen.load(), id);
    }
    AaSemDestroy(&done);
}

TEST_F(EuTest, IdIsTheOneTheEuKnowsItselfBy)
{
    TAaProEuId inside = 0;
    TestEu eu([&] { inside = AaProEuCurrent(); });
    eu.wait();

    EXPECT_EQ(inside, eu.id());
    EXPECT_NE(inside, AaProEuCurrent());
}

TEST_F(EuTest, NullIdIsNotStored)
{
    EXPECT_EQ(AaSysComEuCreateAndStartWithPolicy(
                  nullptr, "Eu", [](void*) -> void* { return nullptr; }, 4096, EAaProEuSchedulingPolicy_Background, 0,
                  nullptr, 0, 1),
              0);
}

TEST_F(EuTest, WaitingCreationReturnsWhenTheEuHasEnded)
{
    std::atomic<bool> hasEnded{false};
    std::atomic<bool>* args = &hasEnded;
    TAaProEuId id = 0;

    EXPECT_EQ(AaSysComEuCreateAndStartWithPolicy(
                  &id, "Eu",
                  [](void* block) -> void* {
                      std::atomic<bool>* ended = nullptr;
                      std::memcpy(&ended, block, sizeof ended);
                      AaSysComUserRegister(0x0300, AaProEuCurrent());
                      AaSysComMsgReceive(2000);
                      ended->store(true);
                      return nullptr;
                  },
                  4096, EAaProEuSchedulingPolicy_NotDefined, 0, &args, sizeof args, 1),
              0);

    EXPECT_TRUE(hasEnded.load());
    EXPECT_EQ(eus::find(id), nullptr);
    EXPECT_EQ(AaSysComUserRegister(0x0300, AaProEuCurrent()), 0x0300); // all that it held is free
    AaSysComUserDeregister(0x0300);
}

TEST_F(EuTest, ArgumentsAreCopiedBeforeTheCallReturns)
{
    struct Args {
        AaSem* go;
        AaSem* done;
        std::atomic<int>* sum;
        std::array<std::uint8_t, 1001> bytes;
    };
    std::atomic<int> sum{0};
    Args args{AaSemCreateC(0), AaSemCreateC(0), &sum, {}};
    args.bytes.fill(1);
    const Args kept = args;
    ASSERT_EQ(AaSysComEuCreateAndStart(
                  nullptr, "Eu",
                  [](void* block) -> void* {
                      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0U);
                      const Args& own = *static_cast<const Args*>(block);
                      AaSemTake(own.go, AA_WAIT_FOREVER);
                      for (const std::uint8_t byte : own.bytes) {
                          own.sum->fetch_add(byte);
                      }
                      AaSemGive(own.done);
                      return nullptr;
                  },
                  4096, 0, &args, sizeof args),
              0);

    std::memset(static_cast<void*>(&args), 0xEE, sizeof args);
    AaSemGive(kept.go);
    AaSemTake(kept.done, AA_WAIT_FOREVER);

    EXPECT_EQ(sum.load(), 1001);
    for (AaSem* sem : {kept.go, kept.done}) {
        AaSemDestroy(&sem);
    }
}

TEST_F(EuTest, InvalidArgumentsAreRefused)
{
    const auto entry = [](void*) -> void* { return nullptr; };
    TAaProEuId id = 77;
    const int value = 0;

    EXPECT_EQ(AaSysComEuCreateAndStart(&id, nullptr, entry, 0, 0, nullptr, 0), EINVAL);
    EXPECT_EQ(AaSysComEuCreateAndStart(&id, "Eu", nullptr, 0, 0, nullptr, 0), EINVAL);
    EXPECT_EQ(AaSysComEuCreateAndStart(&id, "Eu", entry, 0, 0, nullptr, 1), EINVAL);
    EXPECT_EQ(id, 77U);
    EXPECT_EQ(AaSysComEuCreateAndStartWithPolicy(nullptr, "Eu", entry, 0, EAaProEuSchedulingPolicy_NotDefined, 0,
                                                 &value, 0, 1),
              0);
}

TEST_F(EuTest, IdsOfLiveEusDiffer)
{
    AaSem* end = AaSemCreateC(0);
    std::set<TAaProEuId> ids;
    {
        std::list<TestEu> eus;
        for (int count = 0; count < 50; ++count) {
            eus.emplace_back([end] { AaSemTake(end, AA_WAIT_FOREVER); });
            ids.insert(eus.back().id());
        }
        for (int count = 0; count < 50; ++count) {
            AaSemGive(end);
        }
    }

    EXPECT_EQ(ids.size(), 50U);
    EXPECT_EQ(ids.count(0), 0U);
    AaSemDestroy(&end);
}

TEST_F(EuTest, IdOfAnEndedEuIsNotUsedAtOnceAgain)
{
    std::set<TAaProEuId> ids;
    for (int count = 0; count < 300; ++count) {
        TestEu eu([] {});
        ids.insert(eu.id());
    }

    EXPECT_EQ(ids.size(), 300U);
}

TEST_F(EuTest, SmallestStackIsEnoughForPrintingAndUnwinding)
{
    TestEu eu([] { // created with 4096 bytes
        std::array<volatile char, 100000> large{};
        large[99999] = 1;
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "%s", std::string(2000, 'x').c_str());
        EXPECT_THROW(throw std::runtime_error("unwound"), std::runtime_error);
        EXPECT_EQ(large[99999], 1);
    });
    eu.wait();

    EXPECT_EQ(m_log.texts().size(), 1U);
}

TEST_F(EuTest, NameIsTheOneInLogLines)
{
    TestEu eu([] { AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "here"); }, "AnEuWithALongName");
    eu.wait();

    ASSERT_EQ(m_log.lines().size(), 1U);
    EXPECT_EQ(m_log.lines()[0].euName, "AnEuWithALongName");
}

TEST_F(EuTest, NameForTheKernelIsItsFirstFifteenCharacters)
{
    std::array<char, 32> name{};
    TestEu eu([&] { pthread_getname_np(pthread_self(), name.data(), name.size()); }, "AnEuWithALongName");
    eu.wait();

    EXPECT_STREQ(name.data(), "AnEuWithALongNa");
}

TEST_F(EuTest, DefaultPolicyIsTold)
{
    auto policy = EAaProEuSchedulingPolicy_NotDefined;

    EXPECT_EQ(AaProEeGetDefaultSchedulingPolicy(&policy), 0);
    EXPECT_EQ(policy, EAaProEuSchedulingPolicy_Background);
    EXPECT_NE(AaProEeGetDefaultSchedulingPolicy(nullptr), 0);
}

TEST_F(EuTest, FailedCreationIsReportedAndLeavesTheIdAlone)
{
    TAaProEuId id = 77;
    {
        const PthreadCreateFails failing(EAGAIN);
        EXPECT_EQ(AaSysComEuCreateAndStart(
                      &id, "Eu", [](void*) -> void* { return nullptr; }, 4096, 0, nullptr, 0),
                  EAGAIN);
    }
    EXPECT_EQ(id, 77U);
}

TEST_F(EuTest, FailedCreationsUseUpNoPlaces)
{
    {
        const PthreadCreateFails failing(EAGAIN);
        for (std::size_t count = 0; count < eus::capacity + 10; ++count) {
            AaSysComEuCreateAndStart(
                nullptr, "Eu", [](void*) -> void* { return nullptr; }, 4096, 0, nullptr, 0);
        }
    }

    const TestEu eu([] {});
    EXPECT_NE(eu.id(), 0U);
}

/// What the kernel was asked for.
struct Scheduling {
    int policy = 0;
    int priority = 0;
};

Scheduling askedFor(EAaProEuSchedulingPolicy policy, std::uint32_t priority)
{
    PthreadCreateFails failing(EAGAIN);
    AaSysComEuCreateAndStartWithPolicy(
        nullptr, "Eu", [](void*) -> void* { return nullptr; }, 4096, policy, priority, nullptr, 0, 0);
    return {failing.policy(), failing.priority()};
}

TEST_F(EuTest, RealTimePolicyIsAskedForWithItsPriority)
{
    EXPECT_EQ(askedFor(EAaProEuSchedulingPolicy_Fifo, 5).policy, SCHED_FIFO);
    EXPECT_EQ(askedFor(EAaProEuSchedulingPolicy_Fifo, 5).priority, 5);
    EXPECT_EQ(askedFor(EAaProEuSchedulingPolicy_RoundRobin, 7).policy, SCHED_RR);
    EXPECT_EQ(askedFor(EAaProEuSchedulingPolicy_RoundRobin, 7).priority, 7);
}

TEST_F(EuTest, PriorityIsLimitedToWhatThePolicyAllows)
{
    EXPECT_EQ(askedFor(EAaProEuSchedulingPolicy_Fifo, 0).priority, sched_get_priority_min(SCHED_FIFO));
    EXPECT_EQ(askedFor(EAaProEuSchedulingPolicy_Fifo, UINT32_MAX).priority, sched_get_priority_max(SCHED_FIFO));
}

TEST_F(EuTest, OtherPoliciesAreTimeShared)
{
    EXPECT_EQ(askedFor(EAaProEuSchedulingPolicy_NotDefined, 50).policy, SCHED_OTHER);
    EXPECT_EQ(askedFor(EAaProEuSchedulingPolicy_Background, 50).policy, SCHED_OTHER);
}

TEST_F(EuTest, ForeignThreadIsAnEuUntilItEnds)
{
    TAaProEuId id = 0;
    std::thread thread([&] {
        id = AaProEuCurrent();
        EXPECT_EQ(AaProEuCurrent(), id);
        EXPECT_EQ(AaSysComUserRegister(0x0300, id), 0x0300);
        EXPECT_NE(eus::find(id), nullptr);
    });
    thread.join();

    EXPECT_NE(id, 0U);
    EXPECT_EQ(eus::find(id), nullptr);
    EXPECT_EQ(AaSysComUserRegister(0x0300, AaProEuCurrent()), 0x0300);
    AaSysComUserDeregister(0x0300);
}

TEST_F(EuTest, ForeignThreadTakesTheKernelsNameForIt)
{
    std::thread thread([] {
        pthread_setname_np(pthread_self(), "Foreigner");
        EXPECT_NE(AaProEuCurrent(), 0U);
        EXPECT_EQ(currentEuName(), "Foreigner");
    });
    thread.join();
}

TEST_F(EuTest, ForeignThreadThatNeedsNoEuIsNone)
{
    std::thread thread([] {
        void* message = AaSysComMsgCreate(1, 0, 0);
        AaSysComMsgDestroy(&message);
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "here");
        EXPECT_EQ(eus::currentIfAny(), nullptr);
    });
    thread.join();
}

TEST_F(EuTest, MoreEusThanPlacesAreRefused)
{
    std::list<Eu*> taken;
    while (Eu* const eu = eus::acquire("Eu")) {
        taken.push_back(eu);
    }
    TAaProEuId id = 77;

    EXPECT_GT(taken.size(), eus::capacity / 2);
    EXPECT_EQ(AaSysComEuCreateAndStart(
                  &id, "Eu", [](void*) -> void* { return nullptr; }, 4096, 0, nullptr, 0),
              EAGAIN);
    EXPECT_EQ(id, 77U);
    std::thread thread([] {
        EXPECT_EQ(AaProEuCurrent(), 0U);
        EXPECT_EQ(AaSysComMsgReceive(AA_NO_WAIT), nullptr);
    });
    thread.join();
    for (Eu* const eu : taken) {
        eus::release(*eu);
    }
}

} // namespace
} // namespace dorn::host::test
