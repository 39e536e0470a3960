// SPDX-License-Identifier: MIT
/// @file CallEvents.hpp
/// Events that are delivered in the thread that raises them. A `Source(count)` has a number of events, each with a
/// callback that adds what it is given up; `raise(which, reading)` raises one, and `sum()` is what has been added.
#pragma once

#include "boundaryIf/Reading.hpp"

#include <benchmark/benchmark.h>
#include <cstddef>
#include <string>

namespace dorn::benchmarks {

/// Measures raising an event as "call/<events>/<name>"; the events are raised in turn.
template <class Source>
bool registerCalls(const std::string& name)
{
    for (const std::size_t count : {1U, 10U, 100U}) {
        benchmark::RegisterBenchmark(("call/" + std::to_string(count) + '/' + name).c_str(),
                                     [count](benchmark::State& state) {
                                         Source source(count);
                                         Reading reading(1);
                                         std::size_t which = 0;
                                         for (auto _ : state) {
                                             source.raise(which, reading);
                                             which = which + 1 == count ? 0 : which + 1;
                                         }
                                         if (source.sum() != state.iterations()) {
                                             state.SkipWithError("an event was lost");
                                         }
                                     });
    }
    return true;
}

} // namespace dorn::benchmarks
