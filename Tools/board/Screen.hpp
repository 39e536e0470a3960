// SPDX-License-Identifier: MIT
/// @file Screen.hpp
/// Brings pictures to a terminal that may be slow.
#pragma once

#include "board/Frame.hpp"

#include <optional>
#include <string>

namespace dorn::tool {

/// Writes what has changed since the last picture, and nothing else. A write never waits: what the terminal does not
/// take stays here, and pictures that come meanwhile are dropped.
class Screen {
public:
    /// @param descriptor of the terminal, not blocking; stays the caller's
    Screen(int descriptor, bool isColoured) : m_descriptor(descriptor), m_isColoured(isColoured) {}

    /// Shows a picture. @return false when it was dropped because the last one is still on its way.
    bool show(const Frame& frame);
    /// Goes on writing. Call it when the descriptor can be written to.
    void flush();
    /// Whether something waits to be written.
    bool isBusy() const { return m_written < m_waiting.size(); }
    /// Whether nobody takes what is written any more.
    bool isBroken() const { return m_isBroken; }
    /// Has the next picture drawn from the beginning.
    void forget() { m_shown.reset(); }

private:
    void draw(const Frame& frame, std::size_t row);

    int m_descriptor;
    bool m_isColoured;
    bool m_isBroken = false;
    std::string m_waiting;
    std::size_t m_written = 0; ///< of what waits
    std::optional<Frame> m_shown;
};

} // namespace dorn::tool
