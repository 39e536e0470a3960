// SPDX-License-Identifier: MIT
/// @file Tasks.hpp
/// Work handed to another thread. A `Runner` has that thread as long as it lives; `assign(goal)` has it approach the
/// goal once, and `finish()` returns when it has done everything, if waiting for the goal is not enough.
#pragma once

#include "worker/Goal.hpp"

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

namespace dorn::benchmarks {

constexpr std::uint32_t tasksOfAnAssigner = 20'000;

/// Has each of some threads assign its tasks, this one alone when it is one.
template <class Runner>
void assignFromThreads(Runner& runner, Goal& goal, unsigned assigners)
{
    const auto assignAll = [&] {
        for (std::uint32_t count = 0; count < tasksOfAnAssigner; ++count) {
            runner.assign(goal);
        }
    };
    if (assigners == 1) {
        assignAll();
        return;
    }
    std::vector<std::thread> threads;
    for (unsigned number = 0; number < assigners; ++number) {
        threads.emplace_back(assignAll);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// Measures tasks per second as "tasks/<assigners>/<name>": empty tasks, each allocated by its assigner and freed by
/// the thread that has run it.
template <class Runner>
bool registerTaskRate(const std::string& name, unsigned assigners)
{
    const std::string title = "tasks/" + std::to_string(assigners) + "/" + name;
    benchmark::RegisterBenchmark(title.c_str(), [assigners](benchmark::State& state) {
        Goal goal;
        Runner runner;
        for (auto _ : state) {
            goal.expect(assigners * tasksOfAnAssigner);
            assignFromThreads(runner, goal, assigners);
            runner.finish();
            goal.wait();
        }
        state.SetItemsProcessed(state.iterations() * assigners * tasksOfAnAssigner);
    })->UseRealTime();
    return true;
}

/// Measures @p sample, seconds, some times with pauses in which everybody falls asleep. @return the median
template <class Sample>
double medianOfRareSamples(Sample&& sample)
{
    constexpr std::chrono::microseconds pause{200};
    std::array<double, 51> samples{};
    for (double& value : samples) {
        std::this_thread::sleep_for(pause);
        value = sample();
    }
    std::nth_element(samples.begin(), samples.begin() + samples.size() / 2, samples.end());
    return samples[samples.size() / 2];
}

/// Measures from just before a task is assigned to an idle thread until it runs, as "handOver/<name>".
template <class Runner>
bool registerHandOver(const std::string& name)
{
    benchmark::RegisterBenchmark(("handOver/" + name).c_str(),
                                 [](benchmark::State& state) {
                                     Goal goal;
                                     Runner runner;
                                     for (auto _ : state) {
                                         state.SetIterationTime(medianOfRareSamples([&] {
                                             goal.expect(1);
                                             const Moment before = std::chrono::steady_clock::now();
                                             runner.assign(goal);
                                             runner.finish();
                                             return std::chrono::duration<double>(goal.wait() - before).count();
                                         }));
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(10);
    return true;
}

} // namespace dorn::benchmarks
