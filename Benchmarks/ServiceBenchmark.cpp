// SPDX-License-Identifier: MIT
/// @file ServiceBenchmark.cpp
/// A whole service: handling messages, starting, and at rest.
#include "RunOnNode.hpp"

int main(int argc, char** argv)
{
    return dorn::benchmarks::runOnNode(argc, argv, {.log = ""}); // lines go where a service's usually do
}
