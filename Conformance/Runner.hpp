// SPDX-License-Identifier: MIT
/// @file Runner.hpp
/// Tries rules, each in a process of its own.
#pragma once

#include "Finding.hpp"

#include <string>

namespace dorn::conformance {

/// What came of a rule, and what was printed meanwhile.
struct Trial {
    Finding finding;
    std::string output;
};

/// Tries a rule in a child. @throws std::system_error when it cannot be started.
Trial tryInChild(const Rule& rule);

} // namespace dorn::conformance
