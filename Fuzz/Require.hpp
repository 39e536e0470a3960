// SPDX-License-Identifier: MIT
/// @file Require.hpp
/// How a fuzz target says that it has found something.
#pragma once

#include <cstdlib>

namespace dorn::fuzz {

/// Ends the program, as a finding, when something does not hold.
inline void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

} // namespace dorn::fuzz
