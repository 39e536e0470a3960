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

void onEndingSignal(int signal)
{
    const int saved = errno;
    const std::int64_t now = dorn::host::Clock::get().monotonic().count();
    std::int64_t first = never;
    if (firstRequest.compare_exchange_strong(first, now)) {
        if (const TAaStartupShutdownHandler handler = shutdownHandler.load()) {
            handler();
        }
    } else if (now - first >= oneRequest) {
        restoreDefaults(); // the process hangs
        raise(signal);
    }
    errno = saved;
}

} // namespace

void AaStartupSetShutdownHandler(TAaStartupShutdownHandler handler)
{
    shutdownHandler.store(handler);
    firstRequest.store(never);
    if (!handler) {
        restoreDefaults();
        return;
    }
    struct sigaction action {};
    action.sa_handler = onEndingSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : endingSignals) {
        sigaction(signal, &action, nullptr);
    }
}
