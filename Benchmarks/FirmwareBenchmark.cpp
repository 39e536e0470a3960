// SPDX-License-Identifier: MIT
/// @file FirmwareBenchmark.cpp
/// Checking and copying a firmware image of 64 MiB, next to zlib's crc32 and plain copies.
#include "RunOnNode.hpp"
#include "firmware/Image.hpp"

int main(int argc, char** argv)
{
    return dorn::benchmarks::runOnNode(argc, argv, {}, dorn::benchmarks::writeImage);
}
