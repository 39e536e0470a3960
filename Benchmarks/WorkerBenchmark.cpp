// SPDX-License-Identifier: MIT
/// @file WorkerBenchmark.cpp
/// Worker threads and event dispatchers, next to other ways to hand work over and to wait for descriptors.
#include "TestNode.hpp"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    const dorn::testkit::TestNode node;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
