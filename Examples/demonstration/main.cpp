// SPDX-License-Identifier: MIT
#include "Board.hpp"
#include "LiveView.hpp"
#include "RadWait.hpp"
#include "Steps.hpp"
#include "config/RadStore.hpp"
#include "device/Resets.hpp"
#include "node/PerNode.hpp"
#include "rad/ERadHwapi.h"
#include "rad/ERadHwapiState.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

using namespace dorn::demonstration;
namespace testkit = dorn::testkit;

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

constexpr const char* hint =
    "From a second terminal: ./dorn service list    ./dorn rad set HWA/ClimateS 1\n"
    "  ./dorn tag set board.climate.ambient --u32 90    ./dorn alarm list    ./dorn redundancy switch active\n"
    "  ./dorn board sfp plug 1    ./dorn board link break cpri0    ./dorn board clock lose-reference\n"
    "  echo > build/release/board/var/run/doorbell    ./dorn msg watch    ./dorn log -f\n"
    "  ./dorn board reset 'to see it'    ./dorn rpram list\n";

void startServices(Board& board)
{
    for (const char* name : {"FaultManager", "RedundancyManager", "LedS", "ComfortS", "DoorbellS", "MountS",
                             "DownloadS", "ResetS", "SupervisorS", "PostS"}) {
        board.start(name);
    }
    for (const char* name : {"SfpS", "LinkS", "ClockS", "FirmwareS"}) {
        board.start(name, {"-v"});
    }
    // ClimateS registers with the redundancy manager, and would wait ten seconds for one that is not there yet.
    const bool isManaged = testkit::waitForRad(ERadHwapiState_HwCtrlSState, 2, std::chrono::seconds(5));
    board.start("ClimateS",
                isManaged ? std::vector<std::string>{"-v", "--redundancy"} : std::vector<std::string>{"-v"});
}

/// What the board's start does after its watchdog has reset it.
/// @param resets how often that was so far
/// @return false when the services have ended for another reason
bool restartAfterReset(Board& board, std::uint32_t& resets)
{
    if (dorn::board::resetCount() == resets) {
        return false;
    }
    resets = dorn::board::resetCount();
    dorn::host::PerNode<dorn::host::RadStore>::get().set(ERadHwapiState_HwCtrlSState, 0); // a dead manager's state
    startServices(board);
    return true;
}

/// Starts the board where the environment says and shows it until it is told to end.
int showLive()
{
    listenTo(SIGINT);
    listenTo(SIGTERM);
    setenv("DORN_ROOT", Board::makeRoot().c_str(), 0);
    setenv("DORN_BOARD", Board::description().c_str(), 0);
    setenv("DORN_LOG", "file", 0);
    Board board;
    startServices(board);
    {
        LiveView view({ERadHwapi_LED, ERadHwapi_ClimateS, ERadHwapi_ALRM, ERadHwapi_SFP, ERadHwapi_CPR,
                       ERadHwapi_CLOCKS, ERadHwapi_RESET},
                      hint);
        std::uint32_t resets = dorn::board::resetCount();
        while (!isToEnd.load() && (!board.running().empty() || restartAfterReset(board, resets))) {
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
