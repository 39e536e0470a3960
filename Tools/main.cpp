// SPDX-License-Identifier: MIT
#include "Console.hpp"
#include "Nouns.hpp"
#include "Program.hpp"
#include "port/StandardStreams.hpp"

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string_view>
#include <unistd.h>

namespace {

/// What goes wrong is said once, in this command's own words. What is wrong with a document comes from the lines that
/// its parser prints: they are kept, whatever the environment wants to be kept.
void arrangeLog()
{
    setenv("DORN_LOG", "none", 0);
    const char* const level = std::getenv("DORN_LOG_LEVEL");
    if (level && (std::string_view(level) == "none" || std::string_view(level) == "6")) {
        unsetenv("DORN_LOG_LEVEL");
    }
}

} // namespace

int main(int argc, char** argv)
{
    dorn::host::openMissingStandardStreams();
    std::signal(SIGPIPE, SIG_IGN); // a closed pipe is seen where the answer is written
    arrangeLog();
    const bool isColoured =
        dorn::tool::isColourWanted(isatty(STDOUT_FILENO) == 1, std::getenv("NO_COLOR"), std::getenv("TERM"));
    dorn::tool::Console console(std::cout, std::cerr, isColoured, isatty(STDERR_FILENO) == 1);
    dorn::tool::Program program;
    dorn::tool::addNouns(program);
    return static_cast<int>(program.run({argv + 1, argv + argc}, console));
}
