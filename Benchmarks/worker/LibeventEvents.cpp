// SPDX-License-Identifier: MIT
/// @file LibeventEvents.cpp
/// Registers libevent's loop with its usual backend.
#include "worker/Events.hpp"

#include <event2/event.h>
#include <memory>

namespace {

using namespace dorn::benchmarks;

class LibeventWaiter {
public:
    LibeventWaiter(const Event& source, Goal& goal) : m_source(source), m_goal(goal)
    {
        m_event.reset(event_new(
            m_base.get(), source.descriptor(), EV_READ | EV_PERSIST,
            [](evutil_socket_t, short, void* self) { static_cast<LibeventWaiter*>(self)->handle(); }, this));
        event_add(m_event.get(), nullptr);
        m_thread = std::thread([this] { event_base_dispatch(m_base.get()); });
    }
    ~LibeventWaiter()
    {
        m_isOver.store(true);
        m_source.raise();
        m_thread.join();
    }
    LibeventWaiter(const LibeventWaiter&) = delete;
    LibeventWaiter& operator=(const LibeventWaiter&) = delete;

private:
    void handle()
    {
        m_source.take();
        if (m_isOver.load()) {
            event_base_loopbreak(m_base.get());
            return;
        }
        m_goal.approach();
    }

    const Event& m_source;
    Goal& m_goal;
    std::atomic<bool> m_isOver{false};
    std::unique_ptr<event_base, decltype(&event_base_free)> m_base{event_base_new(), event_base_free};
    std::unique_ptr<event, decltype(&event_free)> m_event{nullptr, event_free};
    std::thread m_thread;
};

[[maybe_unused]] const bool isRegistered = registerEvent<LibeventWaiter>("libevent");

} // namespace
