// SPDX-License-Identifier: MIT
/// @file WorkerBenchmark.cpp
/// Worker threads and event dispatchers, next to other ways to hand work over and to wait for descriptors.
#include "RunOnNode.hpp"

int main(int argc, char** argv)
{
    return dorn::benchmarks::runOnNode(argc, argv);
}
