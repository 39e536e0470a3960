// SPDX-License-Identifier: MIT
/// @file QueuedEvents.hpp
/// Events that are delivered by another thread. A `Source(count)` has a number of events; `raise(which)` raises one,
/// which approaches the goal in the other thread; after `hold()`, that thread waits until `release()`.
#pragma once

#include "messages/AllocationCount.hpp"
#include "worker/Goal.hpp"
#include "worker/Tasks.hpp"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace dorn::benchmarks {

constexpr std::uint32_t eventsOfARound = 10'000;

/// Measures raising events, while the other thread is held, as "raise/<events>/<name>", and counts what each takes from
/// the heap.
template <class Source>
void measureRaising(benchmark::State& state, std::size_t count)
{
    Goal goal;
    Source source(count, goal);
    const auto raiseAll = [&] {
        for (std::uint32_t number = 0; number < eventsOfARound; ++number) {
            source.raise(number % count);
        }
    };
    std::uint32_t allocations = 0;
    for (auto _ : state) {
        goal.expect(eventsOfARound);
        source.hold();
        startCountingAllocations();
        const Moment before = std::chrono::steady_clock::now();
        raiseAll();
        const Moment after = std::chrono::steady_clock::now();
        allocations = stopCountingAllocations();
        state.SetIterationTime(std::chrono::duration<double>(after - before).count() / eventsOfARound);
        source.release();
        goal.wait();
    }
    state.counters["allocations_per_event"] = static_cast<double>(allocations) / eventsOfARound;
}

/// Measures from just before an event is raised until the other thread, which has fallen asleep, runs its callback, as
/// "deliver/<name>".
template <class Source>
void measureDelivery(benchmark::State& state)
{
    Goal goal;
    Source source(1, goal);
    for (auto _ : state) {
        state.SetIterationTime(medianOfRareSamples([&] {
            goal.expect(1);
            const Moment before = std::chrono::steady_clock::now();
            source.raise(0);
            return std::chrono::duration<double>(goal.wait() - before).count();
        }));
    }
}

template <class Source>
bool registerQueuedEvents(const std::string& name)
{
    for (const std::size_t count : {1U, 10U, 100U}) {
        benchmark::RegisterBenchmark(("raise/" + std::to_string(count) + '/' + name).c_str(),
                                     [count](benchmark::State& state) { measureRaising<Source>(state, count); })
            ->UseManualTime()
            ->Iterations(20);
    }
    benchmark::RegisterBenchmark(("deliver/" + name).c_str(), measureDelivery<Source>)->UseManualTime()->Iterations(10);
    return true;
}

} // namespace dorn::benchmarks
