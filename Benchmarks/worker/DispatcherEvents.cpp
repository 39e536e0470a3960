// SPDX-License-Identifier: MIT
/// @file DispatcherEvents.cpp
/// Registers the library's event dispatcher, at work and at rest.
#include "EventDispatcher.hpp"
#include "worker/Events.hpp"

#include <chrono>
#include <sys/resource.h>
#include <thread>

namespace {

using namespace dorn::benchmarks;
using namespace vel::hwapi::common;

class DispatcherWaiter : public EventHandler {
public:
    DispatcherWaiter(const Event& event, Goal& goal) : m_event(event), m_goal(goal)
    {
        m_dispatcher.RegisterEventHandler(m_event.descriptor(), *this, POLLIN);
        m_dispatcher.Setup(ERadHwapi_PrintCtrlTask, "Benchmark", 5, 4096);
    }
    ~DispatcherWaiter() override
    {
        m_dispatcher.Stop();
        m_dispatcher.UnregisterEventHandler(m_event.descriptor());
    }

    void HandleEvent(int /*fd*/) override
    {
        m_event.take();
        m_goal.approach();
    }

private:
    const Event& m_event;
    Goal& m_goal;
    EventDispatcher m_dispatcher;
};

[[maybe_unused]] const bool isRegistered = registerEvent<DispatcherWaiter>("dorn");

/// Voluntary context switches of this process so far.
long voluntarySwitches()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_nvcsw;
}

void dispatcherAtRest(benchmark::State& state)
{
    constexpr std::chrono::seconds watchedTime{2};
    const Event event;
    Goal goal;
    const DispatcherWaiter waiter(event, goal);
    for (auto _ : state) {
        const long before = voluntarySwitches();
        std::this_thread::sleep_for(watchedTime); // one switch of its own
        state.counters["context_switches"] = static_cast<double>(voluntarySwitches() - before - 1);
    }
}
BENCHMARK(dispatcherAtRest)->Name("atRest/dispatcher")->Iterations(1)->UseRealTime()->Unit(benchmark::kSecond);

} // namespace
