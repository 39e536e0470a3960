// SPDX-License-Identifier: MIT
/// @file ServiceBenchmark.cpp
/// A whole service: handling messages, starting, and at rest.
#include "TestNode.hpp"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    const dorn::testkit::TestNode node({.log = ""}); // lines go where a service's usually do
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
