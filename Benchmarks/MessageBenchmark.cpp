// SPDX-License-Identifier: MIT
/// @file MessageBenchmark.cpp
/// Messages between the EUs of a process and between the processes of a node, next to other ways to pass them.
#include "TestNode.hpp"
#include "messages/BetweenProcesses.hpp"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    if (dorn::benchmarks::runAsPartner(argc, argv)) {
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    const dorn::testkit::TestNode node;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
