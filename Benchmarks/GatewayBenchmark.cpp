// SPDX-License-Identifier: MIT
/// @file GatewayBenchmark.cpp
/// Messages between two nodes of one machine, through two gateways over TCP on loopback, next to other ways over TCP.
#include "TestNode.hpp"
#include "gateway/TwoNodes.hpp"
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
    dorn::benchmarks::TwoNodes::end();
    benchmark::Shutdown();
    return 0;
}
