// SPDX-License-Identifier: MIT
/// @file OutOfMemory.hpp
/// Allocation functions that count, and that can be told to fail. A program that links them has them in place of the
/// usual ones.
#pragma once

#include <atomic>
#include <cstddef>

namespace dorn::test {

/// While this is true, every `new` throws std::bad_alloc.
extern bool memoryIsOut;

/// How many blocks `new` gives out before one of them fails with std::bad_alloc; the ones after that are given out
/// again. Negative: none fails.
extern std::atomic<long> blocksBeforeFailure;

/// Blocks that `new` has given out so far, and those that it has got back, in all threads.
extern std::atomic<std::size_t> blocksTaken;
extern std::atomic<std::size_t> blocksGivenBack;

/// Bytes that `new` has given out so far, in all threads; what was given back counts as well.
extern std::atomic<std::size_t> memoryTaken;

} // namespace dorn::test
