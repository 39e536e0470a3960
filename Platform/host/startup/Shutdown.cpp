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

void restoreDefaults()
{
    struct sigaction action {};
    action.sa_handler = SIG_DFL; // NOLINT: the system's macro
    for (const int signal : endingSignals) {
        sigaction(signal, &action, nullptr);
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
        restoreDefaults(); // the process hangs, or has no handler any more
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
            restoreDefaults();
        }
        return;
    }
    firstRequest.store(never);
    struct sigaction action {};
    action.sa_handler = onEndingSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : endingSignals) {
        sigaction(signal, &action, nullptr);
    }
}
