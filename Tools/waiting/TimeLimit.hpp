// SPDX-License-Identifier: MIT
/// @file TimeLimit.hpp
/// An operator's command answers or gives up, whatever hangs.
#pragma once

#include "port/Clock.hpp"

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace dorn::tool {

/// Calls a function, on a thread of its own, unless it ends before the time is up. Signals pass that thread by.
class TimeLimit {
public:
    TimeLimit(host::Nanoseconds limit, std::function<void()> giveUp);
    ~TimeLimit();
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;

private:
    void run();

    host::Deadline m_until;
    std::function<void()> m_giveUp;
    std::atomic<std::uint32_t> m_isOver{0};
    std::thread m_thread;
};

/// How long a command may work on a node; with it the whole of it stays within two seconds.
constexpr std::chrono::milliseconds answerLimit{1700};

/// Ends the process with Outcome::No, having said on standard error that @p awaited does not answer.
[[noreturn]] void giveUp(const std::string& awaited);

/// What @p work gives; gives up when it takes longer than a command may. For one piece of work in a command.
/// @param awaited what is being asked, as in "the node's tags do not answer"
template <class Work>
auto answerOf(const std::string& awaited, const Work& work)
{
    const TimeLimit limit(answerLimit, [&awaited] { giveUp(awaited); });
    return work();
}

} // namespace dorn::tool
