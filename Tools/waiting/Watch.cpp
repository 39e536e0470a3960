// SPDX-License-Identifier: MIT
#include "waiting/Watch.hpp"

#include "AaStartup.h"
#include "text/Values.hpp"

#include <CLI/CLI.hpp>
#include <thread>

namespace dorn::tool {
namespace {

std::atomic<StopRequest*> current{nullptr};
std::atomic<unsigned> handlersAtWork{0};

} // namespace

WatchLimitOptions addWatchLimits(CLI::App& verb, WatchLimits& limits)
{
    WatchLimitOptions options{};
    options.count = verb.add_option("--count", limits.count, "Ends after so many")->type_name("N");
    options.timeout =
        verb.add_option("--timeout", limits.timeout, "Ends after so many seconds; status 1 if --count is not reached")
            ->type_name("S");
    return options;
}

StopRequest::StopRequest(std::function<void()> wake) : m_wake(std::move(wake))
{
    current.store(this);
    AaStartupSetShutdownHandler(onRequest);
}

StopRequest::~StopRequest()
{
    AaStartupSetShutdownHandler(nullptr);
    current.store(nullptr);
    while (handlersAtWork.load() != 0) { // one that has begun on another thread
        std::this_thread::yield();
    }
}

void StopRequest::onRequest()
{
    handlersAtWork.fetch_add(1);
    if (StopRequest* const request = current.load()) {
        request->m_hasCome.store(true);
        request->m_wake();
    }
    handlersAtWork.fetch_sub(1);
}

WatchProgress::WatchProgress(const WatchLimits& limits, const Console& console) : m_console(console)
{
    if (!limits.count.empty()) {
        m_wanted = parseUnsigned<std::uint64_t>("--count", limits.count);
    }
    if (!limits.timeout.empty()) {
        m_until = host::Clock::get().monotonic() + parseSeconds("--timeout", limits.timeout);
    }
}

bool WatchProgress::hasTimePassed() const
{
    return m_until != host::noDeadline && host::Clock::get().monotonic() >= m_until;
}

bool WatchProgress::wantsMore() const
{
    return !isComplete() && !hasTimePassed() && !m_console.isClosed();
}

Outcome WatchProgress::outcome() const
{
    return m_wanted && !isComplete() && hasTimePassed() ? Outcome::No : Outcome::Fine;
}

} // namespace dorn::tool
