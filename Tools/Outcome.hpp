// SPDX-License-Identifier: MIT
/// @file Outcome.hpp
/// How a verb ends, well or not.
#pragma once

#include <stdexcept>

namespace dorn::tool {

/// What a verb came to; its number is the exit status.
enum class Outcome {
    Fine = 0,
    No = 1,      ///< the answer is no, or there is none; standard error says why
    WrongUse = 2 ///< the command line cannot be understood
};

/// Ends a verb with Outcome::No. The text says what was wrong, with what, and what to do.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Ends a verb with Outcome::WrongUse; where to find help is added to the text.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace dorn::tool
