// SPDX-License-Identifier: MIT
/// @file Bound.hpp
/// How long a test waits for what must happen.
#pragma once

#include <chrono>

namespace dorn::testkit {

/// Real time, whatever clock is in use. Generous: it passes only in a test that fails.
using Bound = std::chrono::milliseconds;
/// For what ends at once in a test that passes, on a machine however busy.
constexpr Bound generousBound = std::chrono::seconds(20);

} // namespace dorn::testkit
