// SPDX-License-Identifier: MIT
/// @file StepReport.hpp
/// What came of the steps of a demonstration.
#pragma once

#include <functional>
#include <string>

namespace dorn::examples {

/// Prints a line for each step: its number, whether it went well, how long it took, and what it is.
class StepReport {
public:
    /// Does a step, and prints its line. @return what went wrong, empty when nothing did
    std::string run(const char* text, const std::function<void()>& action);

    /// Whether every step so far went well.
    bool isAllWell() const { return m_isAllWell; }

private:
    unsigned m_steps = 0;
    bool m_isAllWell = true;
};

} // namespace dorn::examples
