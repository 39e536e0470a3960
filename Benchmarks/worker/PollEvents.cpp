// SPDX-License-Identifier: MIT
/// @file PollEvents.cpp
/// Registers what lies beneath an event dispatcher: a thread that calls `poll`.
#include "worker/Events.hpp"

#include <atomic>
#include <poll.h>

namespace {

using namespace dorn::benchmarks;

class PollWaiter {
public:
    PollWaiter(const Event& event, Goal& goal)
        : m_event(event), m_thread([this, &goal] {
              while (!m_isOver.load()) {
                  pollfd entry{m_event.descriptor(), POLLIN, 0};
                  if (poll(&entry, 1, 200) > 0 && (entry.revents & POLLIN)) {
                      m_event.take();
                      goal.approach();
                  }
              }
          })
    {
    }
    ~PollWaiter()
    {
        m_isOver.store(true);
        m_thread.join();
    }
    PollWaiter(const PollWaiter&) = delete;
    PollWaiter& operator=(const PollWaiter&) = delete;

private:
    const Event& m_event;
    std::atomic<bool> m_isOver{false};
    std::thread m_thread;
};

[[maybe_unused]] const bool isRegistered = registerEvent<PollWaiter>("poll");

} // namespace
