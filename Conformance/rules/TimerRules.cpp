// SPDX-License-Identifier: MIT
// Time-outs that arrive as messages.
#include "AaTimer.h"
#include "Check.hpp"
#include "Eu.hpp"
#include "Letter.hpp"
#include "Rules.hpp"

#include <array>
#include <chrono>
#include <cstdint>
#include <cstring>

namespace dorn::conformance {
namespace {

/// Words that nobody can follow: the platform never does.
const void* identity(std::uintptr_t number)
{
    return reinterpret_cast<const void*>(number); // NOLINT(performance-no-int-to-ptr)
}

TAaTimerId arm(int64_t microseconds, std::uintptr_t number)
{
    const TAaTimerId timer = AaTimerArm(microseconds, identity(number));
    expect(timer != 0, "AaTimerArm(" + std::to_string(microseconds) + ") gave 0");
    return timer;
}

void expectTimeout(std::uintptr_t number)
{
    Letter letter = take();
    expectEqual(letter.id(), AA_TIMER_MSG_TIMEOUT, "the id of the time-out message");
    const std::string payload = letter.text();
    expect(payload.size() >= sizeof(void*),
           "the time-out message has a payload of " + std::to_string(payload.size()) + " bytes");
    std::uintptr_t word = 0;
    std::memcpy(&word, payload.data(), sizeof word);
    expectEqual(word, number, "the pointer-sized word with which the payload begins");
}

void timeoutArrives()
{
    expectDuration(Milliseconds(50), "the time-out of 50000 us", [] {
        arm(50'000, 0x1234567);
        expectTimeout(0x1234567);
    });
    arm(0, 1);
    expectTimeout(1);
}

/// Arms three time-outs, the last one first. @return whether it was quick enough for their order to be certain
bool armThree()
{
    constexpr Milliseconds gap(100);
    return durationOf([gap] {
               const std::int64_t microseconds = std::chrono::microseconds(gap).count();
               arm(3 * microseconds, 3);
               arm(1 * microseconds, 1);
               arm(2 * microseconds, 2);
           }) < gap;
}

void timeoutsArriveByTheirTime()
{
    constexpr int attempts = 5;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (armThree()) {
            for (const std::uintptr_t number : {1U, 2U, 3U}) {
                expectTimeout(number);
            }
            return;
        }
        for (int number = 0; number < 3; ++number) {
            take();
        }
    }
    skip("the machine is too busy for times to be certain");
}

void theArmingEuReceives()
{
    Eu other([] {
        arm(1'000, 7);
        expectTimeout(7);
    });
    other.join();
    expectNoLetter("and another EU had armed its time-out");
}

void cancelledTimeoutStaysAway()
{
    const TAaTimerId timer = arm(300'000, 1);
    expectEqual(AaTimerCancel(timer), 0, "AaTimerCancel()");
    expectEqual(AaTimerCancel(timer), 1, "AaTimerCancel() of a time-out that has been cancelled");
    arm(400'000, 2);
    expectTimeout(2);
    expectNoLetter("and its time-out had been cancelled");
}

void deliveredTimeoutIsNotCancelled()
{
    const TAaTimerId timer = arm(0, 1);
    expectTimeout(1);
    expectEqual(AaTimerCancel(timer), 1, "AaTimerCancel() of a time-out that has been delivered");
    expectEqual(AaTimerCancel(0), 1, "AaTimerCancel(0)");
}

void negativeTimeIsRefused()
{
    expectEqual(AaTimerArm(-1, identity(1)), 0U, "AaTimerArm(-1)");
}

void idsAreNotUsedAgain()
{
    const TAaTimerId first = arm(0, 1);
    expectTimeout(1);
    const TAaTimerId second = arm(0, 2);
    expectTimeout(2);
    expect(first != second, "a time-out has the id of one that has been delivered");
}

constexpr std::array rules{
    Rule{"timer.timeout-arrives", "AaTimer.h", "AaTimerArm",
         "When the time has passed, and not before, the message AA_TIMER_MSG_TIMEOUT arrives; its payload begins with "
         "the identity, one pointer-sized word",
         timeoutArrives},
    Rule{"timer.timeouts-arrive-by-their-time", "AaTimer.h", "AaTimerArm",
         "Of several time-outs the one with the earliest time arrives first", timeoutsArriveByTheirTime},
    Rule{"timer.the-arming-eu-receives", "AaTimer.h", "AaTimerArm",
         "The EU that has armed a time-out receives it, whether or not it has a cpid", theArmingEuReceives},
    Rule{"timer.cancelled-timeout-stays-away", "AaTimer.h", "AaTimerCancel AaTimerArm",
         "AaTimerCancel() returns 0, and the time-out does not arrive; cancelled again it returns 1",
         cancelledTimeoutStaysAway},
    Rule{"timer.delivered-timeout-is-not-cancelled", "AaTimer.h", "AaTimerCancel",
         "AaTimerCancel() of a time-out that has been delivered returns 1", deliveredTimeoutIsNotCancelled},
    Rule{"timer.negative-time-is-refused", "AaTimer.h", "AaTimerArm", "AaTimerArm() of a negative time gives 0",
         negativeTimeIsRefused},
    Rule{"timer.ids-are-not-used-again", "AaTimer.h", "AaTimerArm", "An id is never used again within a process",
         idsAreNotUsedAgain},
};

} // namespace

Rules timerRules()
{
    return rules;
}

} // namespace dorn::conformance
