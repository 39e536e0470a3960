// SPDX-License-Identifier: MIT
/// @file Events.hpp
/// A thread that waits for an event descriptor. A `Waiter(event, goal)` has that thread as long as it lives; the thread
/// reads the event and approaches the goal.
#pragma once

#include "worker/Tasks.hpp"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <sys/eventfd.h>
#include <unistd.h>

namespace dorn::benchmarks {

class Event {
public:
    Event()
    {
        if (m_descriptor < 0) {
            throw std::runtime_error("no event descriptor");
        }
    }
    ~Event() { close(m_descriptor); }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    int descriptor() const { return m_descriptor; }
    void raise() const { check(eventfd_write(m_descriptor, 1)); }
    void take() const
    {
        eventfd_t count = 0;
        check(eventfd_read(m_descriptor, &count));
    }

private:
    static void check(int result)
    {
        if (result != 0) {
            throw std::runtime_error("an event was lost");
        }
    }
    int m_descriptor = eventfd(0, EFD_CLOEXEC);
};

/// Measures from just before the event is raised until its handler runs, as "event/<name>".
template <class Waiter>
bool registerEvent(const std::string& name)
{
    benchmark::RegisterBenchmark(("event/" + name).c_str(),
                                 [](benchmark::State& state) {
                                     const Event event;
                                     Goal goal;
                                     goal.expect(1);
                                     Waiter waiter(event, goal);
                                     event.raise();
                                     goal.wait();
                                     for (auto _ : state) {
                                         state.SetIterationTime(medianOfRareSamples([&] {
                                             goal.expect(1);
                                             const Moment before = std::chrono::steady_clock::now();
                                             event.raise();
                                             return std::chrono::duration<double>(goal.wait() - before).count();
                                         }));
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(10);
    return true;
}

} // namespace dorn::benchmarks
