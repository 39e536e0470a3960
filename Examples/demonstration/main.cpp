// SPDX-License-Identifier: MIT
#include "Steps.hpp"

#include <cstdio>
#include <cstring>
#include <exception>

int main(int argc, char** argv)
{
    if (argc != 2 || std::strcmp(argv[1], "--once") != 0) {
        std::fprintf(stderr, "Usage: dorn-demonstration --once\n"
                             "'dorn board run' runs the board for as long as one likes.\n");
        return 2;
    }
    try {
        return dorn::demonstration::goThroughSteps() ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "dorn-demonstration: %s\n", error.what());
        return 1;
    }
}
