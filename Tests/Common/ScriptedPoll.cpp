// SPDX-License-Identifier: MIT
#include "ScriptedPoll.hpp"

#include "RecordingPlatform.hpp"

#include <string>
#include <utility>
#include <vector>

namespace dorn::test {
namespace {

ScriptedPoll* instance = nullptr;

} // namespace

ScriptedPoll::ScriptedPoll(std::function<void()> whenOver) : m_whenOver(std::move(whenOver))
{
    instance = this;
}

ScriptedPoll::~ScriptedPoll()
{
    instance = nullptr;
}

void ScriptedPoll::add(Round round)
{
    m_rounds.push_back(std::move(round));
}

void ScriptedPoll::add(std::initializer_list<std::pair<std::size_t, int>> events)
{
    add([events = std::vector(events)](pollfd* entries) {
        for (const auto& [place, happened] : events) {
            entries[place].revents = static_cast<short>(happened);
        }
        return static_cast<int>(events.size());
    });
}

int ScriptedPoll::poll(pollfd* entries, nfds_t count, int timeout)
{
    std::string text = "poll(";
    for (nfds_t index = 0; index < count; ++index) {
        entries[index].revents = 0;
        text += formatted("%d:0x%X, ", entries[index].fd, static_cast<unsigned>(entries[index].events));
    }
    RecordingPlatform::get().note(text + formatted("%d)", timeout), "poll");
    if (m_rounds.empty()) {
        m_whenOver();
        return 0;
    }
    const Round round = std::move(m_rounds.front());
    m_rounds.pop_front();
    return round(entries);
}

} // namespace dorn::test

extern "C" {

int __real_poll(pollfd* entries, nfds_t count, int timeout);
int __wrap_poll(pollfd* entries, nfds_t count, int timeout);

int __wrap_poll(pollfd* entries, nfds_t count, int timeout)
{
    return dorn::test::instance ? dorn::test::instance->poll(entries, count, timeout)
                                : __real_poll(entries, count, timeout);
}
}
