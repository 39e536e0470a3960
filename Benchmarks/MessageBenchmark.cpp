// SPDX-License-Identifier: MIT
/// @file MessageBenchmark.cpp
/// Messages between the EUs of a process and between the processes of a node, next to other ways to pass them.
#include "RunOnNode.hpp"
#include "messages/BetweenProcesses.hpp"

int main(int argc, char** argv)
{
    if (dorn::benchmarks::runAsPartner(argc, argv)) {
        return 0;
    }
    return dorn::benchmarks::runOnNode(argc, argv);
}
