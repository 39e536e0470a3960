// SPDX-License-Identifier: MIT
/// @file ShellCmdOutReader.hpp
/// Runs a shell command and collects what it prints.
#pragma once

#include <string>

namespace vel::hwapi::common {

/// Runs shell commands and takes what they write.
class ShellCmdOutReader {
public:
    /// Runs @p command in the shell, waits for its end and appends its standard output to @p output.
    ///
    /// Meant for text: of a line that contains a NUL byte, what follows the byte is lost.
    /// @return 0 when the command was started, however it ended, also when the shell does not know it; 1 when there was
    ///   no shell to start, and @p output is as it was.
    int RunAndReadOutput(const std::string& command, std::string& output);
};

} // namespace vel::hwapi::common
