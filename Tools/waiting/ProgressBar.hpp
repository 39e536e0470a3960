// SPDX-License-Identifier: MIT
/// @file ProgressBar.hpp
/// Shows people at a terminal how far a long work has come.
#pragma once

#include "Console.hpp"
#include "port/Clock.hpp"

#include <cstdint>
#include <string>

namespace dorn::tool {

/// A bar below all else, on a terminal only, and not before the work has taken a while; gone when this object ends.
class ProgressBar {
public:
    /// @param what is done, in front of the bar
    ProgressBar(Console& console, std::string what);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// @param fraction of the work that is done, 0 to 1; negative when nobody knows
    /// @param bytes that have been worked on
    void show(double fraction, std::uint64_t bytes);

private:
    Console& m_console;
    std::string m_what;
    host::Nanoseconds m_next; ///< when the bar is drawn again
    bool m_isShown = false;
};

} // namespace dorn::tool
