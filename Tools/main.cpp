// SPDX-License-Identifier: MIT
#include "Console.hpp"
#include "Nouns.hpp"
#include "Program.hpp"
#include "port/StandardStreams.hpp"

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <unistd.h>

int main(int argc, char** argv)
{
    dorn::host::openMissingStandardStreams();
    std::signal(SIGPIPE, SIG_IGN); // a closed pipe is seen where the answer is written
    const bool isColoured =
        dorn::tool::isColourWanted(isatty(STDOUT_FILENO) == 1, std::getenv("NO_COLOR"), std::getenv("TERM"));
    dorn::tool::Console console(std::cout, std::cerr, isColoured, isatty(STDERR_FILENO) == 1);
    dorn::tool::Program program;
    dorn::tool::addNouns(program);
    return static_cast<int>(program.run({argv + 1, argv + argc}, console));
}
