// SPDX-License-Identifier: MIT
#include "BoardSoak.hpp"

#include <cstdio>
#include <cstdlib>
#include <exception>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "Usage: dorn-board-soak COUNT SEED\n"
                             "Lets COUNT faults happen to the demonstration board; the same SEED, the same faults.\n");
        return 2;
    }
    const unsigned long count = std::strtoul(argv[1], nullptr, 10);
    unsigned long number = 0;
    try {
        dorn::soak::BoardSoak soak(static_cast<std::uint32_t>(std::strtoul(argv[2], nullptr, 10)));
        soak.start();
        for (number = 1; number <= count; ++number) {
            std::printf("%lu %s\n", number, soak.suffer().c_str());
            std::fflush(stdout);
        }
        soak.end();
        std::printf("%s\nThe board has survived %lu faults.\n", soak.summary().c_str(), count);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "dorn-board-soak: fault %lu: %s\n", number, error.what());
        return 1;
    }
}
