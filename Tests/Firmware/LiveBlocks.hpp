// SPDX-License-Identifier: MIT
/// @file LiveBlocks.hpp
/// What this program has allocated and not yet freed. A program that links it wraps `malloc` and `free`.
#pragma once

#include <cstddef>

namespace dorn::test {

/// How many blocks of memory there are, from all threads.
std::ptrdiff_t liveBlocks();

} // namespace dorn::test
