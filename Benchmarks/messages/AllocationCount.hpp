// SPDX-License-Identifier: MIT
/// @file AllocationCount.hpp
/// Counts what this process takes from the heap, in all threads. A program that uses it has its own malloc(), which
/// asks the C library's after having looked at one word; peers are measured with the same one.
#pragma once

#include <cstdint>

namespace dorn::benchmarks {

/// Counts from zero, from now on.
void startCountingAllocations();

/// Ends counting. @return allocations since startCountingAllocations(); an enlarged block counts as one.
std::uint32_t stopCountingAllocations();

} // namespace dorn::benchmarks
