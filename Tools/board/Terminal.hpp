// SPDX-License-Identifier: MIT
/// @file Terminal.hpp
/// The terminal of this process, taken over for a picture.
#pragma once

#include "board/Frame.hpp"
#include "board/TerminalKeeper.hpp"
#include "port/Descriptor.hpp"

#include <string>
#include <termios.h>

namespace dorn::tool {

/// As long as it lives the picture stands on the terminal's other page, keys arrive one by one and unseen, and the
/// cursor is hidden. At its end, and at any other end of the process, all is as it was.
class Terminal {
public:
    /// Whether standard output is a terminal on which pictures can be drawn.
    /// @param terminal value of `TERM`, null when it is not set
    static bool canBeUsed(const char* terminal);

    /// Before the process has a second thread.
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// To write to; not blocking.
    int output() const { return m_output.get(); }
    /// To read keys from; negative when standard input is no terminal.
    int input() const { return m_hasKeys ? 0 : -1; }
    FrameSize size() const;
    /// What has been typed; empty when nothing has. Ctrl-C is in it, and no signal.
    std::string takeKeys();

private:
    void takeOver();

    bool m_hasKeys;
    termios m_before{};
    host::Descriptor m_output;
    TerminalKeeper m_keeper;
};

} // namespace dorn::tool
