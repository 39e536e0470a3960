// SPDX-License-Identifier: MIT
/// @file BoundaryIfBenchmark.cpp
/// Events of boundary interfaces, next to other ways to call somebody back.
#include "RunOnNode.hpp"
#include "Worker.hpp"

int main(int argc, char** argv)
{
    return dorn::benchmarks::runOnNode(argc, argv, {}, [](const auto&) {
        // A service has several threads. In a process with only one, locks and counters do without atomic instructions.
        vel::hwapi::common::Worker::Get(1)->Setup(ERadHwapi_PrintBoundaryIf, "Benchmark");
    });
}
