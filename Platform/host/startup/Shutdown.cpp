// SPDX-License-Identifier: MIT
#include "AaStartup.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

namespace {

constexpr std::array<int, 3> endingSignals{SIGTERM, SIGINT, SIGHUP};

std::atomic<TAaStartupShutdownHandler> shutdownHandler{nullptr};

void restoreDefaults()
{
    struct sigaction action {};
    action.sa_handler = SIG_DFL; // NOLINT: the system's macro
    for (const int signal : endingSignals) {
        sigaction(signal, &action, nullptr);
    }
}

void onEndingSignal(int)
{
    const int saved = errno;
    restoreDefaults(); // so that a second request ends a process that hangs
    if (const TAaStartupShutdownHandler handler = shutdownHandler.load()) {
        handler();
    }
    errno = saved;
}

} // namespace

void AaStartupSetShutdownHandler(TAaStartupShutdownHandler handler)
{
    shutdownHandler.store(handler);
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
