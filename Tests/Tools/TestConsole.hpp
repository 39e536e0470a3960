// SPDX-License-Identifier: MIT
/// @file TestConsole.hpp
/// A console whose streams a test can read.
#pragma once

#include "Console.hpp"

#include <sstream>
#include <string>

namespace dorn::tool {

class TestConsole {
public:
    explicit TestConsole(bool isColoured = false, bool areRemarksLookedAt = false)
        : m_console(m_answer, m_remarks, isColoured, areRemarksLookedAt)
    {
    }

    operator Console&() { return m_console; }
    Console& console() { return m_console; }
    std::string answer() const { return m_answer.str(); }
    std::string remarks() const { return m_remarks.str(); }

private:
    std::ostringstream m_answer;
    std::ostringstream m_remarks;
    Console m_console;
};

} // namespace dorn::tool
