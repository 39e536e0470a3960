// SPDX-License-Identifier: MIT
#include "ShellCmdOutReader.hpp"

#include <array>
#include <cstdio>
#include <memory>

namespace vel::hwapi::common {
namespace {

struct ClosePipe {
    void operator()(std::FILE* pipe) const { pclose(pipe); }
};

} // namespace

int ShellCmdOutReader::RunAndReadOutput(const std::string& command, std::string& output)
{
    // "e": commands that other threads start meanwhile do not inherit the pipe, which would keep it open.
    const std::unique_ptr<std::FILE, ClosePipe> pipe(popen(command.c_str(), "re"));
    if (!pipe) {
        return 1;
    }
    std::array<char, 256> piece{};
    while (std::fgets(piece.data(), static_cast<int>(piece.size()), pipe.get())) {
        output += piece.data();
    }
    return 0;
}

} // namespace vel::hwapi::common
