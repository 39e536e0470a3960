// SPDX-License-Identifier: MIT
/// @file BoardFailure.hpp
/// Why the board cannot do what a driver function asks of it.
#pragma once

#include "ddal_error.h"

#include <stdexcept>
#include <string>

namespace dorn::board {

/// Carries the result for the caller of the driver function, and a text for people that names node, property or file.
class BoardFailure : public std::runtime_error {
public:
    BoardFailure(ddal_result code, const std::string& text) : std::runtime_error(text), m_code(code) {}

    ddal_result code() const { return m_code; }

private:
    ddal_result m_code;
};

} // namespace dorn::board
