// SPDX-License-Identifier: MIT
/// @file BoundaryIfBenchmark.cpp
/// Events of boundary interfaces, next to other ways to call somebody back.
#include "TestNode.hpp"
#include "Worker.hpp"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    const dorn::testkit::TestNode node;
    // A service has several threads. In a process with only one, locks and counters do without atomic instructions.
    vel::hwapi::common::Worker::Get(1)->Setup(ERadHwapi_PrintBoundaryIf, "Benchmark");
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
