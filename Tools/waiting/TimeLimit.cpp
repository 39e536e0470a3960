// SPDX-License-Identifier: MIT
#include "waiting/TimeLimit.hpp"

#include "Outcome.hpp"
#include "port/SignalsBlocked.hpp"

#include <cstdlib>
#include <unistd.h>

namespace dorn::tool {

TimeLimit::TimeLimit(host::Nanoseconds limit, std::function<void()> giveUp)
    : m_until(host::Clock::get().monotonic() + limit), m_giveUp(std::move(giveUp))
{
    const host::SignalsBlocked untilStarted;
    m_thread = std::thread([this] { run(); });
}

TimeLimit::~TimeLimit()
{
    m_isOver.store(1);
    host::wakeWaiters(m_isOver, 1, false);
    m_thread.join();
}

void TimeLimit::run()
{
    host::Clock& clock = host::Clock::get();
    while (m_isOver.load() == 0) {
        if (clock.monotonic() >= m_until) {
            m_giveUp();
            return;
        }
        clock.waitWhile(m_isOver, 0, m_until, false);
    }
}

void giveUp(const std::string& awaited)
{
    // Whatever hangs may hold any lock of this process: nothing but system calls from here on.
    const std::string text = "dorn: gave up: " + awaited +
                             " did not answer in time; a process that has been stopped may hold what is needed\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
    _exit(static_cast<int>(Outcome::No));
}

} // namespace dorn::tool
