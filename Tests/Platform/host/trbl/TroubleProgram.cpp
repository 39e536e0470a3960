// SPDX-License-Identifier: MIT
/// @file TroubleProgram.cpp
/// Registers a troubleshooting file and waits: `<program> MODE NAME PATH`. MODE is what becomes of it when it is to be
/// stored: stored, late, failed, crashed, hung; or left, for one that is there without steps. With the MODE collecting
/// it is the one who collects.
#include "AaFile.h"
#include "AaTrbl.h"
#include "node/PerNode.hpp"
#include "trbl/TroubleCollection.hpp"

#include <array>
#include <climits>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

int32_t storeFile(const char* path, void* /*opaque*/)
{
    AaFile* const file = AaFileOpen(path, "w");
    const std::string content = "stored by " + std::to_string(getpid());
    const bool isWritten = AaFileWrite(file, content.data(), static_cast<std::uint32_t>(content.size())) > 0;
    return AaFileClose(file) == 0 && isWritten ? 0 : 1;
}

int32_t fail(const char* path, void* opaque)
{
    storeFile(path, opaque);
    return 1;
}

int32_t crash(const char* /*path*/, void* /*opaque*/)
{
    std::raise(SIGKILL);
    return 0;
}

int32_t hang(const char* /*path*/, void* /*opaque*/)
{
    for (;;) {
        pause();
    }
}

/// Waits until something has been written into the pipe "/ram/gate".
int32_t storeLate(const char* path, void* opaque)
{
    std::array<char, PATH_MAX> gate{};
    AaFileGetBoardPath("/ram/gate", gate.data(), gate.size());
    std::ifstream(gate.data()).get();
    return storeFile(path, opaque);
}

int32_t removeFile(const char* path, void* /*opaque*/)
{
    const int32_t status = AaFileRemove(path);
    std::printf("removed\n");
    std::fflush(stdout);
    return status;
}

TAaTrblFileCallback storeOf(const std::string& mode)
{
    if (mode == "failed") {
        return fail;
    }
    if (mode == "crashed") {
        return crash;
    }
    if (mode == "late") {
        return storeLate;
    }
    return mode == "hung" ? hang : storeFile;
}

int say(const char* text)
{
    std::printf("%s\n", text);
    std::fflush(stdout);
    pause(); // until it is killed
    return 0;
}

int collect()
{
    using namespace dorn::host;
    const TroubleCollection collection(PerNode<TroubleFiles>::get(), noDeadline);
    return say("collecting");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        return 2;
    }
    const std::string mode = argv[1];
    if (mode == "collecting") {
        return collect();
    }
    const bool hasSteps = mode != "left";
    if (!hasSteps) {
        storeFile(argv[3], nullptr);
    }
    if (AaTrblFileRegister(argv[2], argv[3], 1, 0, nullptr, hasSteps ? storeOf(mode) : nullptr,
                           hasSteps ? removeFile : nullptr, nullptr) != 0) {
        return 1;
    }
    return say("ready");
}
