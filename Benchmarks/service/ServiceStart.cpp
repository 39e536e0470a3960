// SPDX-License-Identifier: MIT
/// @file ServiceStart.cpp
/// Registers the time from starting the idle service's executable until it waits for messages, and the time that an
/// empty program takes from start to end.
#include "TestNode.hpp"
#include "service/Child.hpp"
#include "service/IdleState.hpp"

#include <benchmark/benchmark.h>
#include <chrono>

namespace {

using namespace dorn::benchmarks;

/// @return whether the service got there.
bool startOnce(benchmark::State& state)
{
    IdleState idle;
    const auto begin = std::chrono::steady_clock::now();
    const Child service(DORN_IDLE_SERVICE);
    const bool isReady = idle.waitUntilReady();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    state.SetIterationTime(taken.count());
    return isReady;
}

/// The node is in use already, as a board's is when a service is started again.
void startService(benchmark::State& state)
{
    for (auto _ : state) {
        if (!startOnce(state)) {
            state.SkipWithError("the service is not ready");
            break;
        }
    }
}
BENCHMARK(startService)->Name("start/service")->UseManualTime()->Unit(benchmark::kMicrosecond);

/// The service is the first of its node and makes the node's stores.
void startServiceOnNewNode(benchmark::State& state)
{
    for (auto _ : state) {
        const dorn::testkit::TestNode node({.log = ""});
        if (!startOnce(state)) {
            state.SkipWithError("the service is not ready");
            break;
        }
    }
}
BENCHMARK(startServiceOnNewNode)->Name("start/serviceOnNewNode")->UseManualTime()->Unit(benchmark::kMicrosecond);

void startEmptyProgram(benchmark::State& state)
{
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        Child(DORN_EMPTY_PROGRAM).waitForEnd();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(taken.count());
    }
}
BENCHMARK(startEmptyProgram)->Name("start/emptyProgram")->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace
