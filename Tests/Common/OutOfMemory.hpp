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

/// Bytes that `new` has given out so far, in all threads; what was given back counts as well.
extern std::atomic<std::size_t> memoryTaken;

} // namespace dorn::test
