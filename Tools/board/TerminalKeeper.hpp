// SPDX-License-Identifier: MIT
/// @file TerminalKeeper.hpp
/// Gives a terminal back for a process that no longer can.
#pragma once

#include "port/Descriptor.hpp"

#include <sys/types.h>
#include <termios.h>

namespace dorn::tool {

/// Gives the terminal back: its own page, the cursor, and @p before if @p hasKeys. Waits a moment for a slow one.
/// @param output the terminal
void giveTerminalBack(int output, bool hasKeys, const termios& before);

/// A small process beside this one that gives the terminal back when this one dies without having done it, of SIGKILL
/// too.
class TerminalKeeper {
public:
    /// Parameters as for giveTerminalBack(). Without such a process, when there can be none, nothing else is different.
    TerminalKeeper(int output, bool hasKeys, const termios& before);
    /// Ends it: it has nothing to do.
    ~TerminalKeeper();
    TerminalKeeper(const TerminalKeeper&) = delete;
    TerminalKeeper& operator=(const TerminalKeeper&) = delete;

private:
    host::Descriptor m_life; ///< closes with this process
    pid_t m_pid = -1;
};

} // namespace dorn::tool
