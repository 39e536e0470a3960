// SPDX-License-Identifier: MIT
#include "FirmwareSteps.hpp"

#include "Peer.hpp"
#include "Process.hpp"
#include "Require.hpp"
#include "ddal_fpga.h"
#include "description/DescribedBoard.hpp"
#include "device/Fpga.hpp"
#include "fault/FaultStore.hpp"
#include "node/PerNode.hpp"
#include "rad/ERadHwapi.h"

#include <csignal>
#include <cstdio>
#include <filesystem>

namespace dorn::demonstration {
namespace {

using namespace dorn::examples;

constexpr std::uint32_t fpga = 0x10002;
constexpr std::uint32_t oldVersion = 0x20010; // as the board comes
constexpr const char* ownBoard = "A00100";
constexpr const char* image = "/ffs/run/boot/NAX-BRINDLE.bin";
constexpr const char* disabled = "/ffs/run/logs/disable-firmware-update";
constexpr const char* forced = "/ffs/run/logs/force-firmware-update-nax-fpga";

/// An FPGA's configuration, which begins with its version.
std::string payloadOf(std::uint32_t version)
{
    std::string payload;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        payload += static_cast<char>(version >> shift & 0xFFU);
    }
    return payload + std::string(100'000, '#');
}

std::string hexText(std::uint32_t number)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", number);
    return text;
}

board::FlashArea slotOf(std::uint32_t slot)
{
    return board::Fpga(board::DescribedBoard::get().part("fpgas", fpga)).slots().at(slot - 1).area;
}

} // namespace

FirmwareSteps::FirmwareSteps(Stage& stage) : m_stage(stage), m_node(stage.node())
{
    for (const char* const directory : {"/ffs/run/boot", "/ffs/run/logs", "/tmp"}) {
        std::filesystem::create_directories(m_node.boardPath(directory));
    }
}

void FirmwareSteps::startService()
{
    m_stage.start("FirmwareS");
    m_stage.setSwitch(ERadHwapi_SWDL, 1);
}

/// Puts an image in the place where the board looks for it, as a release engineer makes it.
void FirmwareSteps::makeImage(std::uint32_t version, const std::string& hwSwId) const
{
    m_node.writeBoardFile("/ram/payload", payloadOf(version));
    testkit::Process command(Board::command(), {"image", "create", m_node.boardPath("/ram/payload"),
                                                m_node.boardPath("/ffs/run/boot") + "/NAX-BRINDLE.bin", "--sw-version",
                                                hexText(version), "--hwswid", hwSwId, "--target-unit", "NAXE"});
    require(command.waitForEnd(stepBound) == 0, "dorn image create: " + command.standardError());
}

SFirmwareUpdateResp FirmwareSteps::ask() const
{
    testkit::Peer peer;
    peer.send<FirmwareUpdateReqMsg>(firmwareServiceCpid, {.transactionId = 15});
    return *peer.expect<FirmwareUpdateRespMsg>(stepBound);
}

void FirmwareSteps::expect(EFirmwareOutcome outcome, std::uint32_t activeVersion, std::int32_t result) const
{
    const SFirmwareUpdateResp answer = ask();
    require(answer.outcome == outcome && answer.result == result, "FirmwareS answers with outcome " +
                                                                      std::to_string(answer.outcome) + " and result " +
                                                                      std::to_string(answer.result));
    require(answer.activeVersion == activeVersion, "the FPGA runs version " + hexText(answer.activeVersion));
}

/// Whether a slot holds the image of a version byte for byte.
bool FirmwareSteps::holds(std::uint32_t slot, std::uint32_t version) const
{
    const auto flashed = slotOf(slot).flashed();
    return flashed && flashed->isWhole && flashed->version == version &&
           m_node.readBoardFile(flashed->path) == payloadOf(version);
}

/// Waits until FirmwareS was killed with the board, and starts it again.
void FirmwareSteps::awaitReset()
{
    require(m_stage.board().service("FirmwareS").waitForEnd(stepBound) == -SIGKILL, "the board is not reset");
    startService();
}

void FirmwareSteps::flashNewer()
{
    startService();
    makeImage(0x20011, ownBoard);
    expect(EFirmwareOutcome_Flashed, oldVersion);
    m_stage.awaitLine("flashed, in use from the next reset on (0)");
    require(holds(1, 0x20011) && holds(2, 0x20011), "the slots do not hold the new image");
    require(!std::filesystem::exists(m_node.boardPath("/tmp/fpgafile")), "the payload was left in /tmp");
}

void FirmwareSteps::reset()
{
    testkit::Peer peer;
    peer.send<BoardResetReqMsg>(firmwareServiceCpid, {.transactionId = 16});
    awaitReset();
    expect(EFirmwareOutcome_UpToDate, 0x20011);
    m_stage.awaitLine("FPGA version 0x20011, image '" + std::string(image) + "': up to date (0)");
}

void FirmwareSteps::refuseBadImages()
{
    makeImage(0x20012, ownBoard);
    std::string content = m_node.readBoardFile(image);
    content[1000] = static_cast<char>(content[1000] ^ 1);
    m_node.writeBoardFile(image, content);
    expect(EFirmwareOutcome_Refused, 0x20011, 70413);
    m_stage.awaitLine("refused (70413)");

    makeImage(0x20012, "B00100");
    expect(EFirmwareOutcome_Refused, 0x20011, 70411);
    m_stage.awaitLine("Own HwSwId not found from trailer, binary is not compatible with this board!");
    require(holds(1, 0x20011) && holds(2, 0x20011), "an image was flashed that was refused");
}

void FirmwareSteps::heedMarkers()
{
    makeImage(0x20012, ownBoard);
    m_node.writeBoardFile(disabled, "");
    expect(EFirmwareOutcome_Disabled, 0x20011);
    require(holds(1, 0x20011), "an image was flashed although updates are switched off");
    std::filesystem::remove(m_node.boardPath(disabled));

    makeImage(0x20011, ownBoard); // runs already
    m_node.writeBoardFile(forced, "1");
    expect(EFirmwareOutcome_Flashed, 0x20011);
    require(m_node.readBoardFile(forced) == "0", "the forced update was not counted");
    expect(EFirmwareOutcome_UpToDate, 0x20011);
}

void FirmwareSteps::losePower()
{
    makeImage(0x20013, ownBoard);
    host::PerNode<board::FaultStore>::get().set(board::DriverFunction("ddal_fpga_update_mod"),
                                                board::FaultStore::powerLoss, 1);
    testkit::Peer peer;
    peer.send<FirmwareUpdateReqMsg>(firmwareServiceCpid, {.transactionId = 17});
    awaitReset();
    const auto half = slotOf(DDAL_FPGA_SLOT_PRIMARY).flashed();
    require(half && !half->isWhole && holds(2, 0x20011), "the power did not go half way");
    std::printf("                  | slot 1 has %u bytes and is not whole\n", static_cast<unsigned>(half->size));
    expect(EFirmwareOutcome_Flashed, 0x20011);
    require(holds(1, 0x20013) && holds(2, 0x20013), "the slots do not hold the new image");
}

} // namespace dorn::demonstration
