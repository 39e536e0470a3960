// SPDX-License-Identifier: MIT
#include "BoardSoak.hpp"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <optional>

namespace {

/// @return nothing when the text is no number.
std::optional<std::uint32_t> numberOf(const char* text)
{
    const char* const end = text + std::strlen(text);
    std::uint32_t number = 0;
    const auto [stop, error] = std::from_chars(text, end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace

int main(int argc, char** argv)
{
    const auto count = numberOf(argc == 3 ? argv[1] : "");
    const auto seed = numberOf(argc == 3 ? argv[2] : "");
    if (!count || !seed) {
        std::fprintf(stderr, "Usage: dorn-board-soak COUNT SEED\n"
                             "Lets COUNT faults happen to the demonstration board; the same SEED, the same faults.\n");
        return 2;
    }
    std::uint32_t number = 0;
    try {
        dorn::soak::BoardSoak soak(*seed);
        soak.start();
        for (number = 1; number <= *count; ++number) {
            std::printf("%u %s\n", number, soak.suffer().c_str());
            std::fflush(stdout);
        }
        soak.end();
        std::printf("%s\nThe board has survived %u faults.\n", soak.summary().c_str(), *count);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "dorn-board-soak: fault %u: %s\n", number, error.what());
        return 1;
    }
}
