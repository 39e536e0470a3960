// SPDX-License-Identifier: MIT
#include "HardwareSteps.hpp"

#include "ClockMessages.hpp"
#include "DownloadMessages.hpp"
#include "LinkMessages.hpp"
#include "Peer.hpp"
#include "Require.hpp"
#include "SfpMessages.hpp"
#include "boundaryIf/swpllstatemonitor/SwPllTypes.hpp"
#include "ddal_devicetree.h"
#include "ddal_ffs.h"
#include "ddal_fpga.h"
#include "fault/FaultStore.hpp"
#include "node/PerNode.hpp"
#include "rad/ERadHwapi.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <thread>

namespace dorn::demonstration {

using namespace dorn::examples;

namespace {

void plug(std::uint32_t cage, bool isPlugged)
{
    testkit::Peer hand;
    hand.send<SfpPlugReqMsg>(sfpServiceCpid, {.transactionId = 11, .cage = cage, .isPlugged = isPlugged ? 1U : 0U});
    require(hand.expect<SfpPlugRespMsg>(stepBound)->status == ESfpPlugStatus_Done, "the cage takes no module");
}

void setBroken(const LinkName& name, std::uint32_t parts)
{
    testkit::Peer hand;
    hand.send<LinkBreakReqMsg>(linkServiceCpid, {.transactionId = 12, .name = name, .brokenParts = parts});
    require(hand.expect<LinkBreakRespMsg>(stepBound)->status == ELinkBreakStatus_Done, "the link stays as it is");
}

/// Asks the clock service again and again until its answer is as it is to be.
SClockShowResp clockWhen(const std::function<bool(const SClockShowResp&)>& isMet, const std::string& otherwise)
{
    testkit::Peer peer;
    const auto until = host::Clock::get().monotonic() + stepBound;
    for (;;) {
        peer.send<ClockShowReqMsg>(clockServiceCpid, {.transactionId = 13});
        const SClockShowResp clock = *peer.expect<ClockShowRespMsg>(stepBound);
        if (isMet(clock)) {
            return clock;
        }
        require(host::Clock::get().monotonic() < until, otherwise);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void setReference(bool isThere)
{
    testkit::Peer hand;
    const std::uint32_t action = isThere ? EClockAction_RestoreReference : EClockAction_LoseReference;
    hand.send<ClockActReqMsg>(clockServiceCpid, {.transactionId = 14, .action = action, .amount = 0});
    require(hand.expect<ClockActRespMsg>(stepBound)->status == EClockActStatus_Done, "the reference stays as it is");
}

} // namespace

std::uint32_t mountModeOf(std::uint32_t fileSystem)
{
    std::uint32_t mode = 0;
    require(ddal_ffs_is_mounted(fileSystem, &mode) == DDAL_OK, "the driver does not know the file system");
    return mode;
}

void HardwareSteps::plugModule()
{
    m_stage.setSwitch(ERadHwapi_SFP, 1);
    plug(1, true);
    m_stage.awaitLine("SFP module of link 1 plugged");
    plug(1, false);
    m_stage.awaitLine("SFP module of link 1 pulled");
}

void HardwareSteps::breakLink()
{
    m_stage.setSwitch(ERadHwapi_CPR, 1);
    setBroken({"cpri0"}, ELinkPart_Receive | ELinkPart_Transmit);
    for (const char* const lost : {"receives: XACQ1", "LOS begins", "LOF begins"}) {
        m_stage.awaitLine(std::string("Link cpri0 ") + lost);
    }
    setBroken({"cpri0"}, 0);
    for (const char* const found : {"receives: XACQ2", "receives: XSYNC1", "receives: XSYNC2", "receives: HFNSYNC"}) {
        m_stage.awaitLine(std::string("Link cpri0 ") + found);
    }
    setBroken({"obsai0"}, ELinkPart_Receive);
    m_stage.awaitLine("Link obsai0 receives: UNSYNC");
    setBroken({"obsai0"}, 0);
    m_stage.awaitLine("Link obsai0 receives: FRAME");
}

void HardwareSteps::loseReference()
{
    using namespace vel::hwapi::common::bif::swpllstatemonitor;
    m_stage.setSwitch(ERadHwapi_CLOCKS, 1);
    clockWhen([](const SClockShowResp& clock) { return clock.pllState == ESwPllState_TrackMax; },
              "the PLL does not lock");
    setReference(false);
    m_stage.awaitLine("Clock PLL: holdover");
    const double begin = clockWhen([](const SClockShowResp&) { return true; }, "").timeError;
    const SClockShowResp drifted =
        clockWhen([begin](const SClockShowResp& clock) { return std::fabs(clock.timeError - begin) > 20; },
                  "the time does not drift without reference");
    std::printf("                  | %.1f ns off at %.2f ppb\n", drifted.timeError, drifted.frequencyError);
    require(drifted.pllState == ESwPllState_Holdover, "the PLL does not stay in holdover");
    setReference(true);
    m_stage.awaitLine("Clock PLL: acquire3");
}

void HardwareSteps::useDrivers()
{
    constexpr std::uint32_t fpga = 0x10002;
    std::array<char, 8> unitId{};
    std::uint32_t version = 0;
    require(ddal_devicetree_get_unit_id(0, unitId.size() - 1, unitId.data()) == DDAL_OK, "the unit has no id");
    require(ddal_fpga_get_active_version(fpga, &version) == DDAL_OK, "the FPGA has no version");
    std::printf("                  | unit %s, FPGA version 0x%X\n", unitId.data(), version);

    m_stage.node().writeBoardFile("/tmp/fpgafile", "an image");
    host::PerNode<board::FaultStore>::get().set(board::DriverFunction("ddal_fpga_update_mod"), DDAL_ERROR_TIMEOUT, 1);
    require(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, "/tmp/fpgafile") == DDAL_ERROR_TIMEOUT,
            "the FPGA is flashed although it was told to fail");
    require(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, "/tmp/fpgafile") == DDAL_OK, "the FPGA is not flashed");
}

void HardwareSteps::loadDsp()
{
    m_stage.node().writeBoardFile("/ram/dsp.bin", std::string(300'000, 'd'));
    require(mountModeOf(1) == DDAL_FFS_READ_ONLY, "the file system is not mounted read-only");
    testkit::Peer peer;
    SDownloadReq request{.transactionId = 15, .device = 0x10, .addressHigh = 0, .addressLow = 0x0C000000, .file = {}};
    std::snprintf(request.file.data(), request.file.size(), "/ram/dsp.bin");
    peer.send<DownloadReqMsg>(downloadServiceCpid, request);
    const auto answer = peer.expect<DownloadRespMsg>(stepBound);
    require(answer->writeResult == 0 && answer->validationResult == 0, "the DSP is not loaded");
    require(answer->isWritable == 1 && mountModeOf(1) == DDAL_FFS_READ_WRITE && mountModeOf(2) == DDAL_FFS_READ_WRITE,
            "the file systems are not mounted read-write");
    std::printf("                  | 300000 bytes verified, file systems read-write\n");
}

} // namespace dorn::demonstration
