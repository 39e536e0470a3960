// SPDX-License-Identifier: MIT
/// @file FirmwareBenchmark.cpp
/// Checking and copying a firmware image of 64 MiB, next to zlib's crc32 and plain copies.
#include "TestNode.hpp"
#include "firmware/Image.hpp"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    const dorn::testkit::TestNode node;
    dorn::benchmarks::writeImage(node);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
