// SPDX-License-Identifier: MIT
// Execution units: their creation, identity, scheduling and end.
#include "AaPro.h"
#include "AaSysCom.h"
#include "Check.hpp"
#include "Eu.hpp"
#include "Rules.hpp"

#include <array>
#include <atomic>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace dorn::conformance {
namespace {

constexpr uint32_t stackSize = 256 * 1024;

void currentIsNotZero()
{
    const TAaProEuId own = AaProEuCurrent();
    expect(own != 0, "AaProEuCurrent() gave 0");
    expectEqual(AaProEuCurrent(), own, "AaProEuCurrent() asked again");
}

void foreignThreadIsAnEu()
{
    TAaProEuId other = 0;
    TAaProEuId again = 0;
    std::thread([&] {
        other = AaProEuCurrent();
        again = AaProEuCurrent();
    }).join();
    expect(other != 0, "AaProEuCurrent() in a thread that the platform did not create gave 0");
    expectEqual(again, other, "AaProEuCurrent() asked again in such a thread");
    expect(other != AaProEuCurrent(), "two living threads have the same EU id");
}

void defaultPolicyIsKnown()
{
    EAaProEuSchedulingPolicy policy = EAaProEuSchedulingPolicy_NotDefined;
    EAaProEuSchedulingPolicy again = EAaProEuSchedulingPolicy_Fifo;
    expectEqual(AaProEeGetDefaultSchedulingPolicy(&policy), 0, "AaProEeGetDefaultSchedulingPolicy()");
    expectEqual(AaProEeGetDefaultSchedulingPolicy(&again), 0, "AaProEeGetDefaultSchedulingPolicy() asked again");
    expectEqual(again, policy, "the default policy asked again");
    expect(policy >= EAaProEuSchedulingPolicy_NotDefined && policy <= EAaProEuSchedulingPolicy_Fifo,
           "the default policy is " + shown(policy) + ", which is none");
    expect(AaProEeGetDefaultSchedulingPolicy(nullptr) != 0, "AaProEeGetDefaultSchedulingPolicy(null) returned 0");
}

/// What an EU of these rules is given, by value.
struct Block {
    std::array<char, 1000> pattern{};
    std::atomic<bool>* isRight = nullptr;
    Signal* mayLook = nullptr;
    Signal* hasLooked = nullptr;
};

void* lookAtBlock(void* argument)
{
    const auto* const block = static_cast<const Block*>(argument);
    block->mayLook->await("the rule does not go on");
    bool isRight = true;
    for (const char character : block->pattern) {
        isRight = isRight && character == 'A';
    }
    block->isRight->store(isRight);
    block->hasLooked->raise();
    return nullptr;
}

void argumentsAreCopied()
{
    std::atomic<bool> isRight{false};
    Signal mayLook;
    Signal hasLooked;
    Block block{{}, &isRight, &mayLook, &hasLooked};
    block.pattern.fill('A');
    expectEqual(AaSysComEuCreateAndStart(nullptr, "Arguments", lookAtBlock, stackSize, 10, &block, sizeof block), 0,
                "AaSysComEuCreateAndStart()");
    block.pattern.fill('B');
    mayLook.raise();
    hasLooked.await("the EU has not run to its end");
    expect(isRight.load(), "the EU saw what the creator wrote into the block after the call");
}

struct IdBlock {
    TAaProEuId* id;
    Signal* hasRun;
    TAaProEuId* stored;
    TAaProEuId* current;
};

void* noteIds(void* argument)
{
    const IdBlock block = *static_cast<const IdBlock*>(argument);
    *block.stored = __atomic_load_n(block.id, __ATOMIC_SEQ_CST);
    *block.current = AaProEuCurrent();
    block.hasRun->raise();
    return nullptr;
}

void idIsStoredFirst()
{
    for (int round = 0; round < 200; ++round) {
        TAaProEuId id = 0;
        TAaProEuId stored = 0;
        TAaProEuId current = 0;
        Signal hasRun;
        const IdBlock block{&id, &hasRun, &stored, &current};
        expectEqual(AaSysComEuCreateAndStart(&id, "Id", noteIds, stackSize, 10, &block, sizeof block), 0,
                    "AaSysComEuCreateAndStart()");
        hasRun.await("a new EU has not run");
        expect(current != 0, "AaProEuCurrent() of an EU gave 0");
        expectEqual(stored, current, "the id that stood at the caller's pointer when the EU began to run");
    }
}

void idsDiffer()
{
    constexpr std::size_t count = 16;
    Signal mayEnd;
    std::vector<std::unique_ptr<Eu>> eus;
    std::set<TAaProEuId> ids{AaProEuCurrent()};
    for (std::size_t index = 0; index < count; ++index) {
        eus.push_back(std::make_unique<Eu>([&] { mayEnd.await("the rule does not go on"); }));
        ids.insert(eus.back()->id());
    }
    mayEnd.raise();
    expect(!ids.contains(0), "a living EU has the id 0");
    expectEqual(ids.size(), count + 1, "different ids of 17 EUs that live at once");
}

struct WaitBlock {
    Signal* mayEnd;
    std::atomic<bool>* hasEnded;
};

void* endWhenAllowed(void* argument)
{
    const auto* const block = static_cast<const WaitBlock*>(argument);
    block->mayEnd->await("the rule does not go on");
    block->hasEnded->store(true);
    return nullptr;
}

int32_t create(TAaSysComEuEntry entry, EAaProEuSchedulingPolicy policy, uint32_t priority, uint32_t stack,
               const void* args, uint32_t argsSize, TBoolean waitForEnd)
{
    return AaSysComEuCreateAndStartWithPolicy(nullptr, "ConformanceEu", entry, stack, policy, priority, args, argsSize,
                                              waitForEnd);
}

void callReturnsWhileTheEuRuns()
{
    for (const bool isPlain : {true, false}) {
        Signal mayEnd;
        std::atomic<bool> hasEnded{false};
        const WaitBlock block{&mayEnd, &hasEnded};
        const int32_t status =
            isPlain
                ? AaSysComEuCreateAndStart(nullptr, "Runs", endWhenAllowed, stackSize, 10, &block, sizeof block)
                : create(endWhenAllowed, EAaProEuSchedulingPolicy_NotDefined, 10, stackSize, &block, sizeof block, 0);
        const bool isOver = hasEnded.load();
        mayEnd.raise();
        expectEqual(status, 0, "the creation of an EU");
        expect(!isOver, "the call returned when the EU had ended");
        const auto deadline = std::chrono::steady_clock::now() + bound();
        while (!hasEnded.load()) {
            expect(std::chrono::steady_clock::now() < deadline, "a new EU has not run to its end");
            std::this_thread::yield();
        }
    }
}

void callWaitsForTheEnd()
{
    for (int round = 0; round < 50; ++round) {
        Signal mayEnd;
        std::atomic<bool> hasEnded{false};
        const WaitBlock block{&mayEnd, &hasEnded};
        std::thread allower([&] { mayEnd.raise(); });
        const int32_t status =
            create(endWhenAllowed, EAaProEuSchedulingPolicy_NotDefined, 10, stackSize, &block, sizeof block, 1);
        const bool isOver = hasEnded.load();
        allower.join();
        expectEqual(status, 0, "AaSysComEuCreateAndStartWithPolicy()");
        expect(isOver, "the call returned before the EU had ended");
    }
}

std::atomic<unsigned> runs{0};

void* runOnce(void*)
{
    runs.fetch_add(1);
    return nullptr;
}

void nothingButTheEntryIsNeeded()
{
    expectEqual(create(runOnce, EAaProEuSchedulingPolicy_NotDefined, 0, 0, nullptr, 0, 1), 0,
                "the creation of an EU without arguments, with a stack of 0 bytes");
    expectEqual(runs.load(), 1U, "runs of an EU without arguments, with a stack of 0 bytes");
}

void everyPolicyAndPriorityRuns()
{
    unsigned created = 0;
    for (const EAaProEuSchedulingPolicy policy :
         {EAaProEuSchedulingPolicy_NotDefined, EAaProEuSchedulingPolicy_Background, EAaProEuSchedulingPolicy_RoundRobin,
          EAaProEuSchedulingPolicy_Fifo}) {
        for (const uint32_t priority : {0U, 1U, 50U, 1000U}) {
            expectEqual(create(runOnce, policy, priority, stackSize, nullptr, 0, 1), 0,
                        "the creation of an EU with policy " + shown(policy) + " and priority " + shown(priority));
            ++created;
        }
    }
    expectEqual(runs.load(), created, "EUs that have run");
}

void receiveIsCancelled()
{
    expectUnwinding([] {
        void* message = AaSysComMsgReceive(AA_WAIT_FOREVER);
        AaSysComMsgDestroy(&message);
    });
}

constexpr std::array rules{
    Rule{"eu.current-is-not-zero", "AaPro.h", "AaProEuCurrent", "An EU's id is never 0 and stays the same",
         currentIsNotZero},
    Rule{"eu.foreign-thread-is-an-eu", "AaPro.h", "AaProEuCurrent",
         "A thread that the platform did not create becomes an EU of its own when it asks", foreignThreadIsAnEu},
    Rule{"eu.default-policy-is-known", "AaPro.h", "AaProEeGetDefaultSchedulingPolicy",
         "AaProEeGetDefaultSchedulingPolicy() stores a policy and returns 0; for null it returns something else",
         defaultPolicyIsKnown},
    Rule{"eu.arguments-are-copied", "AaSysCom.h", "AaSysComEuCreateAndStart",
         "The argument block is copied before the call returns, and the EU is given its own copy", argumentsAreCopied},
    Rule{"eu.id-is-stored-first", "AaSysCom.h", "AaSysComEuCreateAndStart AaProEuCurrent",
         "The EU's id stands at the caller's pointer before the EU runs, and is what AaProEuCurrent() gives in it",
         idIsStoredFirst},
    Rule{"eu.ids-differ", "AaPro.h", "AaSysComEuCreateAndStart", "No two living EUs have the same id", idsDiffer},
    Rule{"eu.call-returns-while-the-eu-runs", "AaSysCom.h",
         "AaSysComEuCreateAndStart AaSysComEuCreateAndStartWithPolicy",
         "The creation returns as soon as the EU has been started, unless it is told to wait",
         callReturnsWhileTheEuRuns},
    Rule{"eu.call-waits-for-the-end", "AaSysCom.h", "AaSysComEuCreateAndStartWithPolicy",
         "With waitForEnd 1 the call returns when the EU has ended, and not before", callWaitsForTheEnd},
    Rule{"eu.nothing-but-the-entry-is-needed", "AaSysCom.h", "AaSysComEuCreateAndStartWithPolicy",
         "Id and arguments may be null, and the stack is raised to what the system needs", nothingButTheEntryIsNeeded},
    Rule{"eu.every-policy-and-priority-runs", "AaSysCom.h", "AaSysComEuCreateAndStartWithPolicy",
         "Priorities are limited to what the policy allows; without the right to real time an EU runs time-shared",
         everyPolicyAndPriorityRuns},
    Rule{"eu.receive-is-cancelled", "AaTypes.h", "AaSysComMsgReceive",
         "An EU that is cancelled in AaSysComMsgReceive() unwinds, so that destructors run", receiveIsCancelled},
};

} // namespace

Rules euRules()
{
    return rules;
}

} // namespace dorn::conformance
