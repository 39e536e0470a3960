// SPDX-License-Identifier: MIT
/// @file ScriptedPoll.hpp
/// A `poll` that reports what a test says and is written down with the platform's calls. A program that links it is
/// linked with `--wrap=poll`.
#pragma once

#include <deque>
#include <functional>

#include <poll.h>

namespace dorn::test {

/// In use while it lives; without one `poll` is the system's.
class ScriptedPoll {
public:
    /// What one call does: fills in `revents` and returns what `poll` returns.
    using Round = std::function<int(pollfd* entries)>;

    /// @param whenOver called by the first call that comes after the last round; that call returns 0
    explicit ScriptedPoll(std::function<void()> whenOver);
    ~ScriptedPoll();
    ScriptedPoll(const ScriptedPoll&) = delete;
    ScriptedPoll& operator=(const ScriptedPoll&) = delete;

    /// Adds a round that does what @p round does.
    void add(Round round);
    /// Adds a round in which the entries at these places have these events.
    void add(std::initializer_list<std::pair<std::size_t, int>> events);

    int poll(pollfd* entries, nfds_t count, int timeout);

private:
    std::function<void()> m_whenOver;
    std::deque<Round> m_rounds;
};

} // namespace dorn::test
