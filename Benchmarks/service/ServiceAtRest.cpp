// SPDX-License-Identifier: MIT
/// @file ServiceAtRest.cpp
/// Registers what a service takes while it has nothing to do: memory, threads, context switches.
#include "service/Child.hpp"
#include "service/IdleState.hpp"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace {

using namespace dorn::benchmarks;

constexpr std::chrono::milliseconds settlingTime{500};
constexpr std::chrono::seconds watchedTime{10};

/// Sum of the numbers behind @p name, a field of a file below /proc, "Name: number".
std::uint64_t sumOf(const std::filesystem::path& file, const std::string& name)
{
    std::ifstream in(file);
    std::uint64_t sum = 0;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with(name + ":")) {
            sum += std::stoull(line.substr(name.size() + 1));
        }
    }
    return sum;
}

struct Tasks {
    std::uint64_t count = 0;
    std::uint64_t switches = 0; ///< voluntary and other ones of all tasks so far
};

Tasks tasksOf(const std::filesystem::path& process)
{
    Tasks tasks;
    for (const auto& task : std::filesystem::directory_iterator(process / "task")) {
        ++tasks.count;
        tasks.switches += sumOf(task.path() / "status", "voluntary_ctxt_switches") +
                          sumOf(task.path() / "status", "nonvoluntary_ctxt_switches");
    }
    return tasks;
}

void serviceAtRest(benchmark::State& state)
{
    IdleState idle;
    const Child service(DORN_IDLE_SERVICE);
    if (!idle.waitUntilReady()) {
        state.SkipWithError("the service is not ready");
        return;
    }
    const std::filesystem::path process = "/proc/" + std::to_string(service.pid());
    std::this_thread::sleep_for(settlingTime);
    for (auto _ : state) {
        const Tasks before = tasksOf(process);
        std::this_thread::sleep_for(watchedTime);
        const Tasks after = tasksOf(process);
        const std::filesystem::path memory = process / "smaps_rollup";
        const std::uint64_t privateKib = sumOf(memory, "Private_Clean") + sumOf(memory, "Private_Dirty");
        state.counters["rss_kib"] = static_cast<double>(sumOf(memory, "Rss"));
        state.counters["private_kib"] = static_cast<double>(privateKib);
        state.counters["threads_beyond_main"] = static_cast<double>(after.count - 1);
        state.counters["context_switches"] = static_cast<double>(after.switches - before.switches);
    }
}
BENCHMARK(serviceAtRest)->Name("atRest/service")->Iterations(1)->UseRealTime()->Unit(benchmark::kSecond);

} // namespace
