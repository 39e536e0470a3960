// SPDX-License-Identifier: MIT
#include "AaStartup.h"

#include "port/Clock.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>

namespace {

constexpr std::array<int, 3> endingSignals{SIGTERM, SIGINT, SIGHUP};

/// Requests within this time are one: who ends a process often tells it and its process group.
constexpr std::int64_t oneRequest = std::chrono::nanoseconds(std::chrono::seconds(1)).count();
constexpr std::int64_t never = -1;

std::atomic<TAaStartupShutdownHandler> shutdownHandler{nullptr};
std::atomic<std::int64_t> firstRequest{never};

/// What the signals did before they were ours; an entry is written before its signal becomes ours.
std::array<struct sigaction, endingSignals.size()> earlierActions{};

void onEndingSignal(int signal);

struct sigaction actionOf(int signal)
{
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    return action;
}

bool doesCall(const struct sigaction& action, void (*handler)(int))
{
    return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == handler;
}

void giveSignalsBack()
{
    for (std::size_t index = 0; index < endingSignals.size(); ++index) {
        if (doesCall(actionOf(endingSignals[index]), onEndingSignal)) {
            sigaction(endingSignals[index], &earlierActions[index], nullptr);
        }
    }
}

/// A signal that is ignored stays so: nohup and shells that start a process in the background have it that way.
void takeSignals()
{
    struct sigaction action {};
    action.sa_handler = onEndingSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t index = 0; index < endingSignals.size(); ++index) {
        const struct sigaction earlier = actionOf(endingSignals[index]);
        if (doesCall(earlier, SIG_IGN) || doesCall(earlier, onEndingSignal)) { // NOLINT: the system's macro
            continue;
        }
        earlierActions[index] = earlier;
        sigaction(endingSignals[index], &action, nullptr);
    }
}

bool isOneWithTheFirst()
{
    const std::int64_t first = firstRequest.load();
    const std::int64_t since = dorn::host::Clock::get().monotonic().count() - first;
    return first != never && since >= 0 && since < oneRequest;
}

void onEndingSignal(int signal)
{
    const int saved = errno;
    const TAaStartupShutdownHandler handler = shutdownHandler.load();
    std::int64_t none = never;
    if (handler && firstRequest.compare_exchange_strong(none, dorn::host::Clock::get().monotonic().count())) {
        handler();
    } else if (!isOneWithTheFirst()) {
        giveSignalsBack(); // the process hangs, or has no handler any more
        raise(signal);
    }
    errno = saved;
}

} // namespace

void AaStartupSetShutdownHandler(TAaStartupShutdownHandler handler)
{
    shutdownHandler.store(handler);
    if (!handler) {
        // What is left of a request that has just been served must not end the process that it has ended already: for
        // the rest of the second the signals are kept, and taken by no handler.
        if (!isOneWithTheFirst()) {
            giveSignalsBack();
        }
        return;
    }
    firstRequest.store(never);
    takeSignals();
}
