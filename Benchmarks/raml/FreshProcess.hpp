// SPDX-License-Identifier: MIT
/// @file FreshProcess.hpp
/// Work in a process of its own, whose memory nobody has used before.
#pragma once

#include <benchmark/benchmark.h>
#include <functional>

namespace dorn::benchmarks {

struct Effort {
    double seconds;
    double peakKib; ///< what the process has grown by at most
};

/// Does the work in a child of this process. @throws std::system_error when there can be none.
Effort inFreshProcess(const std::function<void()>& work);

/// Measures the work in fresh processes: the time, the rate of @p items and the counter "peak_kib". The benchmark has
/// to use manual time.
void measureInFreshProcesses(benchmark::State& state, std::size_t items, const std::function<void()>& work);

} // namespace dorn::benchmarks
