// SPDX-License-Identifier: MIT
// Start-up and end of a process.
#include "AaConfigTag.h"
#include "AaError.h"
#include "AaSem.h"
#include "AaStartup.h"
#include "AaSysCom.h"
#include "Check.hpp"
#include "Finding.hpp"
#include "Options.hpp"
#include "OtherProcess.hpp"
#include "Rules.hpp"

#include <array>
#include <atomic>
#include <csignal>
#include <string>
#include <unistd.h>

namespace dorn::conformance {
namespace {

constexpr int unreachedStatus = 77; ///< of a process that has gone on behind a broken assertion

void stepsBringThePlatformUp()
{
    startPlatform();
}

void tagsAreUsableEarly()
{
    expectEqual(AaConfigEarlyStartup(), 0, "AaConfigEarlyStartup()");
    expectEqual(AaConfigTagSetU32("conformance.early", 7), 0, "AaConfigTagSetU32() before AaStartupEeStartup()");
    std::uint32_t value = 0;
    expectEqual(AaConfigTagGetU32("conformance.early", &value), 0, "AaConfigTagGetU32() before AaStartupEeStartup()");
    expectEqual(value, 7U, "the tag that was set before AaStartupEeStartup()");
    startPlatform();
}

int endSignal()
{
    if (options().endSignal == 0) {
        skip("your platform asks processes to end by other means than a signal (--end-signal 0); see yourself that it "
             "calls the handler");
    }
    return options().endSignal;
}

/// For rules whose process waits when it is asked.
int endSignalOfWaiting()
{
#if defined(__SANITIZE_THREAD__)
    skip("ThreadSanitizer keeps signals back while a thread sleeps on a bare futex");
#endif
    return endSignal();
}

AaSem* askedToEnd = nullptr;
TAaProEuId waitingEu = 0;
std::atomic<unsigned> handlerCalls{0};

/// What a handler may do.
void onShutdown()
{
    handlerCalls.fetch_add(1);
    AaSemGive(askedToEnd);
    AaSysComEuWakeUp(waitingEu);
}

void handlerIsCalled()
{
    const int signal = endSignalOfWaiting();
    askedToEnd = AaSemCreateC(0);
    expect(askedToEnd != nullptr, "AaSemCreateC() gave null");
    waitingEu = AaProEuCurrent();
    AaStartupSetShutdownHandler(onShutdown);
    kill(getpid(), signal);
    expectEqual(AaSemTake(askedToEnd, boundOfSeam()), 0,
                "AaSemTake() of the semaphore that the handler gives when the process is asked to end");
    void* message = AaSysComMsgReceive(boundOfSeam());
    expect(message == nullptr, "AaSysComMsgReceive() gave a message that nobody has sent");
    AaStartupSetShutdownHandler(nullptr);
}

/// @return how a process has ended, as OtherProcess::waitForEnd() gives it
int endOfOneAskedThreeTimes(int signal)
{
    OtherProcess other("ends-when-asked");
    other.expectToHear("ready");
    other.signal(signal);
    other.expectToHear("asked");
    other.signal(signal);
    other.signal(signal);
    other.tell();
    return other.waitForEnd();
}

void requestsWithinASecondAreOne()
{
    const int signal = endSignalOfWaiting();
    constexpr int attempts = 3;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        int end = 0;
        const Milliseconds taken = durationOf([&] { end = endOfOneAskedThreeTimes(signal); });
        if (end == 0) {
            return;
        }
        expect(taken > Milliseconds(900),
               "a process that was asked to end three times within a second ended with " + std::to_string(end));
    }
    skip("the machine is too busy for three requests within a second");
}

void endWhenAsked(std::span<char* const>)
{
    askedToEnd = AaSemCreateC(0);
    waitingEu = AaProEuCurrent();
    AaStartupSetShutdownHandler(onShutdown);
    say("ready");
    AaSemTake(askedToEnd, AA_WAIT_FOREVER);
    say("asked");
    awaitWord();
    AaStartupSetShutdownHandler(nullptr);
    expectEqual(handlerCalls.load(), 1U, "calls of the shutdown handler");
}

void nullRestoresWhatWasBefore()
{
    const int signal = endSignal();
    OtherProcess other("takes-no-requests");
    other.expectToHear("ready");
    other.signal(signal);
    expectEqual(other.waitForEnd(), -signal, "a process without handler that is asked to end");
}

void takeNoRequests(std::span<char* const>)
{
    AaStartupSetShutdownHandler(onShutdown);
    AaStartupSetShutdownHandler(nullptr);
    say("ready");
    awaitWord();
}

void brokenAssertionEndsTheProcess()
{
    AaErrorAssertion(options().bound.count() > 0);
    OtherProcess other("breaks-an-assertion");
    other.expectToHear("ready");
    other.tell();
    const int end = other.waitForEnd();
    expect(end != 0, "a process with a broken assertion went on and ended well");
    expect(end != unreachedStatus, "AaErrorAssertionFailed() returned");
}

void breakAnAssertion(std::span<char* const> arguments)
{
    say("ready");
    awaitWord();
    AaErrorAssertion(!arguments.empty());
    _exit(unreachedStatus);
}

constexpr std::array rules{
    Rule{"startup.steps-bring-the-platform-up", "AaStartup.h",
         "AaConfigEarlyStartup AaConfigTagSetString AaConfigTagSetU16 AaStartupEeStartup",
         "AaConfigEarlyStartup(), the EE's two tags and AaStartupEeStartup() bring the platform up, each with result 0",
         stepsBringThePlatformUp, Effect::Start},
    Rule{"startup.tags-are-usable-early", "AaStartup.h", "AaConfigEarlyStartup AaConfigTagSetU32 AaConfigTagGetU32",
         "After AaConfigEarlyStartup() tags can be set and read; AaStartupEeStartup() has not been called yet",
         tagsAreUsableEarly, Effect::Start},
    Rule{"startup.shutdown-handler-is-called", "AaStartup.h", "AaStartupSetShutdownHandler AaSemGive AaSysComEuWakeUp",
         "The shutdown handler is called when the process is asked to end, and may call AaSemGive() and "
         "AaSysComEuWakeUp()",
         handlerIsCalled},
    Rule{"startup.requests-within-a-second-are-one", "AaStartup.h", "AaStartupSetShutdownHandler",
         "Requests that follow within a second count as the first one: the process does not die of them",
         requestsWithinASecondAreOne},
    Rule{"startup.null-handler-restores", "AaStartup.h", "AaStartupSetShutdownHandler",
         "Setting null restores what was there before: a process without handler ends when it is asked to",
         nullRestoresWhatWasBefore},
    Rule{"error.broken-assertion-ends-the-process", "AaError.h", "AaErrorAssertionFailed",
         "AaErrorAssertion() of a condition that does not hold ends the process; it does nothing otherwise",
         brokenAssertionEndsTheProcess},
};

constexpr std::array roles{
    Role{"ends-when-asked", endWhenAsked},
    Role{"takes-no-requests", takeNoRequests},
    Role{"breaks-an-assertion", breakAnAssertion},
};

} // namespace

Rules startupRules()
{
    return rules;
}

Roles startupRoles()
{
    return roles;
}

} // namespace dorn::conformance
