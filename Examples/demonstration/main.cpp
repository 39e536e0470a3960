// SPDX-License-Identifier: MIT
#include "Board.hpp"
#include "LiveView.hpp"
#include "Steps.hpp"
#include "node/RunDirectory.hpp"
#include "rad/ERadHwapi.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

using namespace dorn::demonstration;

namespace {

std::atomic<bool> isToEnd{false};

void onSignal(int)
{
    isToEnd.store(true);
}

/// A signal that is ignored stays so: shells have it that way for what they start in the background.
void listenTo(int signal)
{
    if (std::signal(signal, onSignal) == SIG_IGN) {
        std::signal(signal, SIG_IGN);
    }
}

constexpr const char* hint = "From a second terminal: ./dorn service list    ./dorn rad set HWA/ClimateS 1\n"
                             "  ./dorn tag set board.climate.ambient --u32 60    ./dorn msg watch    ./dorn log -f\n";

/// Starts the board where the environment says and shows it until it is told to end.
int showLive()
{
    listenTo(SIGINT);
    listenTo(SIGTERM);
    setenv("DORN_ROOT", Board::files().c_str(), 0);
    setenv("DORN_LOG", "file", 0);
    Board board;
    board.start("LedS");
    board.start("ClimateS", {"-v"});
    {
        LiveView view({ERadHwapi_LED, ERadHwapi_ClimateS}, hint);
        while (!isToEnd.load() && !board.running().empty()) {
            view.update();
        }
    }
    int result = 0;
    std::printf("\n");
    for (const auto& [name, status] : board.end()) {
        std::printf("%s ended with status %d\n", name.c_str(), status);
        if (status != 1) {
            std::fputs(board.service(name).standardError().c_str(), stderr);
            result = 1;
        }
    }
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    const bool isOnce = argc == 2 && std::strcmp(argv[1], "--once") == 0;
    if (argc > 1 && !isOnce) {
        std::fprintf(stderr, "Usage: dorn-demonstration [--once]\n");
        return 2;
    }
    try {
        return isOnce ? (goThroughSteps() ? 0 : 1) : showLive();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "dorn-demonstration: %s\n", error.what());
        return 1;
    }
}
