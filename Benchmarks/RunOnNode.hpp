// SPDX-License-Identifier: MIT
/// @file RunOnNode.hpp
/// What main() does in a program whose benchmarks use a node.
#pragma once

#include "TestNode.hpp"

#include <benchmark/benchmark.h>

namespace dorn::benchmarks {

/// Runs the benchmarks that the command line asks for, on a node of their own.
/// @param prepare is called with the node before them
/// @return what main() is to return
template <class Prepare>
int runOnNode(int argc, char** argv, const testkit::TestNodeOptions& options, const Prepare& prepare)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    const testkit::TestNode node(options);
    prepare(node);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

inline int runOnNode(int argc, char** argv, const testkit::TestNodeOptions& options = {})
{
    return runOnNode(argc, argv, options, [](const testkit::TestNode&) {});
}

} // namespace dorn::benchmarks
