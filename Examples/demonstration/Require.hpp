// SPDX-License-Identifier: MIT
/// @file Require.hpp
/// What a step of the demonstration has to see.
#pragma once

#include <chrono>
#include <stdexcept>
#include <string>

namespace dorn::demonstration {

/// How long a step waits for what it is to see.
constexpr std::chrono::seconds stepBound{5};

/// Ends the step unless @p condition holds. @throws std::runtime_error
inline void require(bool condition, const std::string& otherwise)
{
    if (!condition) {
        throw std::runtime_error(otherwise);
    }
}

} // namespace dorn::demonstration
