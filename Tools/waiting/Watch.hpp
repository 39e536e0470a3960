// SPDX-License-Identifier: MIT
/// @file Watch.hpp
/// What all verbs that look on have in common: when they end, and with what.
#pragma once

#include "Console.hpp"
#include "Outcome.hpp"
#include "port/Clock.hpp"

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace dorn::tool {

/// `--count` and `--timeout` as they were given; empty when they were not.
struct WatchLimits {
    std::string count;
    std::string timeout;
};

struct WatchLimitOptions {
    CLI::Option* count;
    CLI::Option* timeout;
};

/// Adds both options to a verb.
WatchLimitOptions addWatchLimits(CLI::App& verb, WatchLimits& limits);

/// Takes the request to end the process (Ctrl-C, SIGTERM, SIGHUP) as one to end the watch. A second request ends the
/// process. One lives at a time.
class StopRequest {
public:
    /// @param wake wakes the watch; called in a signal handler or on any thread
    explicit StopRequest(std::function<void()> wake);
    ~StopRequest();
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;

    bool hasCome() const { return m_hasCome.load(); }

private:
    static void onRequest();

    std::function<void()> m_wake;
    std::atomic<bool> m_hasCome{false};
};

/// Tells how far a watch has come.
class WatchProgress {
public:
    /// @throws UsageError when a limit makes no sense.
    WatchProgress(const WatchLimits& limits, const Console& console);

    /// Until when to wait for the next item.
    host::Deadline until() const { return m_until; }
    /// Whether the count is not reached, the time has not passed and somebody reads the answer.
    bool wantsMore() const;
    void noteItem() { ++m_seen; }

    /// Outcome::No when the time passed before the wanted count was reached.
    Outcome outcome() const;

private:
    bool isComplete() const { return m_wanted && m_seen >= *m_wanted; }
    bool hasTimePassed() const;

    const Console& m_console;
    std::optional<std::uint64_t> m_wanted;
    std::uint64_t m_seen = 0;
    host::Deadline m_until = host::noDeadline;
};

} // namespace dorn::tool
