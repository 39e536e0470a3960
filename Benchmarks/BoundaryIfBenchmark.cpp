// SPDX-License-Identifier: MIT
/// @file BoundaryIfBenchmark.cpp
/// Events of boundary interfaces, next to other ways to call somebody back.
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
