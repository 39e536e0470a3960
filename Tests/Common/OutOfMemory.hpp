// SPDX-License-Identifier: MIT
/// @file OutOfMemory.hpp
/// Allocation functions that can be told to fail. A program that links them has them in place of the usual ones.
#pragma once

namespace dorn::test {

/// While this is true, every `new` throws std::bad_alloc.
extern bool memoryIsOut;

} // namespace dorn::test
