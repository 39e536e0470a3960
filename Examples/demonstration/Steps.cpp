// SPDX-License-Identifier: MIT
#include "Steps.hpp"

#include "AaConfigTag.h"
#include "Board.hpp"
#include "ClimateMessages.hpp"
#include "ClockMessages.hpp"
#include "ComfortMessages.hpp"
#include "DoorbellMessages.hpp"
#include "DownloadMessages.hpp"
#include "FirmwareSteps.hpp"
#include "LedMessages.hpp"
#include "LinkMessages.hpp"
#include "Peer.hpp"
#include "PostMessages.hpp"
#include "Process.hpp"
#include "RadWait.hpp"
#include "RedundancyMessages.hpp"
#include "Require.hpp"
#include "ResetMessages.hpp"
#include "SfpMessages.hpp"
#include "TestNode.hpp"
#include "boundaryIf/swpllstatemonitor/SwPllTypes.hpp"
#include "config/RadStore.hpp"
#include "ddal_devicetree.h"
#include "ddal_ffs.h"
#include "ddal_fpga.h"
#include "device/Resets.hpp"
#include "fault/FaultStore.hpp"
#include "log/LogReader.hpp"
#include "node/EeTable.hpp"
#include "node/PerNode.hpp"
#include "rad/ERadHwapi.h"
#include "rad/ERadHwapiState.h"
#include "syscom/MessageTap.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <deque>
#include <exception>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>

namespace dorn::demonstration {
namespace {

using namespace dorn::examples;
using Seconds = std::chrono::duration<double>;

constexpr auto stepBound = std::chrono::seconds(5);
constexpr std::uint32_t waiting = 2;
constexpr int endedWell = 1; // what Startup() returns

std::string contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The node's log from now on.
class AwaitedLog {
public:
    /// Waits for a line whose text ends so, among those that came after the last one that was awaited.
    host::LogLine nextLine(const std::string& ending);

private:
    host::LogReader m_log;
    std::deque<host::LogLine> m_unread;
};

host::LogLine AwaitedLog::nextLine(const std::string& ending)
{
    const auto until = host::Clock::get().monotonic() + stepBound;
    do {
        while (!m_unread.empty()) {
            host::LogLine line = std::move(m_unread.front());
            m_unread.pop_front();
            if (line.text.ends_with(ending)) {
                return line;
            }
        }
        std::ranges::move(m_log.next(until), std::back_inserter(m_unread));
    } while (!m_unread.empty());
    throw std::runtime_error("no log line ends with \"" + ending + "\"");
}

void show(const host::LogLine& line)
{
    std::printf("                  | %s %s\n", line.eeName.c_str(), line.text.c_str());
}

/// A board of its own, and what there is to be seen of it.
class Demonstration {
public:
    Demonstration()
    {
        for (const char* const file : {"opt/dorn/dorn.xml", "opt/dorn/plan.xml"}) {
            m_node.writeBoardFile(std::string("/") + file, contentOf(Board::files() / file));
        }
        setenv("DORN_BOARD", Board::description().c_str(), 1);
        require(AaConfigEarlyStartup() == 0, "the board's tags cannot be opened");
    }

    bool run();

private:
    void step(const char* text, const std::function<void()>& action);
    void awaitLine(const std::string& ending);
    std::optional<host::EeInfo> find(const std::string& name) const;
    void setSwitch(TAaConfigRadId id, std::uint32_t value);

    void start(const std::string& name, const std::vector<std::string>& arguments = {});
    bool isWaiting(const std::string& name) const;
    void updateFirmware();
    void startServices();
    void awaitUnits();
    void applyPlan();
    void switchPrintsOn();
    void askClimate();
    void warmUp();
    void watchMessages();
    void sendNonsense();
    void ringTheBell();
    void askForComfort();
    void letForwardingTimeOut();
    void raiseAlarm();
    void plugModule();
    void breakLink();
    void loseReference();
    void runSelfTests();
    void takeSnapshot();
    void switchOver();
    void useDrivers();
    void loadDsp();
    void resetBoard();
    void killAndRestart();
    void refuseSecond();
    void endAll();

    testkit::TestNode m_node{{.nodeId = std::nullopt, .log = "file", .logLevel = std::nullopt}};
    Board m_board;
    AwaitedLog m_log;
    AwaitedLog m_startLog; ///< once more, for what services have told while all were waited for
    bool m_isAllWell = true;
    unsigned m_steps = 0;
};

void Demonstration::step(const char* text, const std::function<void()>& action)
{
    const auto begin = std::chrono::steady_clock::now();
    std::string trouble;
    try {
        action();
    } catch (const std::exception& error) {
        trouble = error.what();
        m_isAllWell = false;
    }
    const double seconds = Seconds(std::chrono::steady_clock::now() - begin).count();
    std::printf("%2u  %-4s %5.2f s  %s\n", ++m_steps, trouble.empty() ? "ok" : "FAIL", seconds, text);
    if (!trouble.empty()) {
        std::printf("                  %s\n", trouble.c_str());
    }
    std::fflush(stdout);
}

void Demonstration::awaitLine(const std::string& ending)
{
    show(m_log.nextLine(ending));
}

std::optional<host::EeInfo> Demonstration::find(const std::string& name) const
{
    for (host::EeInfo& info : host::PerNode<host::EeTable>::get().list()) {
        if (info.name == name) {
            return std::move(info);
        }
    }
    return std::nullopt;
}

void Demonstration::setSwitch(TAaConfigRadId id, std::uint32_t value)
{
    require(host::PerNode<host::RadStore>::get().set(id, value), "the R&D parameter is not known");
}

void Demonstration::start(const std::string& name, const std::vector<std::string>& arguments)
{
    m_board.start(name, arguments);
    require(testkit::waitForRadChange([&] { return isWaiting(name); }, stepBound), name + " does not get to state 2");
}

bool Demonstration::isWaiting(const std::string& name) const
{
    const auto info = find(name);
    return info && info->alive && info->pid == m_board.service(name).pid() && !info->published.empty() &&
           info->published.front().value == waiting;
}

/// Before the other services start: a reset of the board kills whatever runs on it.
void Demonstration::updateFirmware()
{
    const auto startFirmware = [this] {
        start("FirmwareS");
        setSwitch(ERadHwapi_SWDL, 1);
    };
    FirmwareSteps firmware(m_node, m_board, startFirmware, [this](const std::string& ending) { awaitLine(ending); });
    step("the board runs an old FPGA image: FirmwareS finds a newer one and flashes both slots",
         [&] { firmware.flashNewer(); });
    step("the board is reset, and runs the new FPGA image", [&] { firmware.reset(); });
    step("a damaged image and one for another board are refused with their reasons",
         [&] { firmware.refuseBadImages(); });
    step("an operator's marker files switch updates off, and force one", [&] { firmware.heedMarkers(); });
    step("the power goes while a slot is flashed: the board runs the other one until it is flashed anew",
         [&] { firmware.losePower(); });
}

void Demonstration::startServices()
{
    start("FaultManager");
    start("RedundancyManager");
    start("LedS");
    start("ClimateS", {"--redundancy"}); // the redundancy manager is there already
    start("ComfortS");
    start("DoorbellS");
    start("SfpS");
    start("LinkS");
    start("ClockS");
    start("MountS");
    start("DownloadS");
    start("ResetS");
    start("SupervisorS");
    start("PostS");
    const auto led = find("LedS");
    require(led && led->alive, "LedS is not listed as alive");
    awaitUnits();
}

/// Waits until every service has told the unit that it runs on.
void Demonstration::awaitUnits()
{
    const std::string unit = "Runs on unit NAXE DN264700001: HW/SW id 0xA00100, type 19, version 51";
    std::set<std::string> tellers;
    while (tellers.size() < m_board.running().size()) {
        tellers.insert(m_log.nextLine(unit).eeName);
    }
    std::printf("                  | %zu services: %s\n", tellers.size(), unit.c_str());
}

void Demonstration::applyPlan()
{
    show(m_startLog.nextLine("applied to Board=1,Climate=1: warmLimit=55 hotLimit=72"));
    show(m_startLog.nextLine("applied to Board=1,Comfort=1: limit=50"));
}

void Demonstration::switchPrintsOn()
{
    setSwitch(ERadHwapi_LED, 1);
    setSwitch(ERadHwapi_ClimateS, 1);
    awaitLine(" %");
    setSwitch(ERadHwapi_ClimateS, 0);
}

void Demonstration::askClimate()
{
    testkit::Peer peer;
    peer.send<ClimateStatusReqMsg>(climateServiceCpid, {.transactionId = 7});
    const auto answer = peer.expect<ClimateStatusRespMsg>(stepBound);
    require(answer->transactionId == 7, "the answer is for another request");
    std::printf("                  | board %d C, fan %u %%\n", answer->temperature, answer->fanPercent);
}

void Demonstration::warmUp()
{
    setSwitch(ERadHwapi_ClimateS, 1);
    require(AaConfigTagSetU32(ambientTag, 60) == 0, "the tag cannot be set");
    awaitLine("LED climate: green -> amber");
    awaitLine("Climate LED changed from 1 to 2");
}

void Demonstration::watchMessages()
{
    testkit::Peer watcher;
    host::MessageTap& tap = host::PerNode<host::MessageTap>::get();
    require(tap.addWatcher(watcher.cpid()), "there are too many watchers");
    testkit::Peer peer;
    peer.send<LedSetReqMsg>(ledServiceCpid, {.led = EFrontLed_Status, .colour = ELedColour_Amber});
    require(peer.expect<LedSetRespMsg>(stepBound)->previousColour == ELedColour_Green, "LedS answers wrongly");
    for (TAaSysComMsgId id = 0; id != LedSetRespMsg::ID;) {
        const auto record = watcher.expect(host::MessageTap::recordId, stepBound);
        const host::FrameHeader& header = record.as<host::TapRecord>().header;
        id = header.id;
        std::printf("                  | 0x%04X  %08X -> %08X  %u bytes\n", header.id, header.sender, header.receiver,
                    header.payloadSize);
    }
    tap.removeWatcher(watcher.cpid());
}

void Demonstration::sendNonsense()
{
    testkit::Peer peer;
    peer.send(0x7777, ledServiceCpid);
    char sender[32];
    std::snprintf(sender, sizeof sender, "sender=0x%08X", AaSysComSicadGet(peer.cpid(), AaSysComGetOwnNid()));
    awaitLine(sender);
    peer.send<LedSetReqMsg>(ledServiceCpid, {.led = 99, .colour = ELedColour_Red});
    require(peer.expect<LedSetRespMsg>(stepBound)->status == 1, "LedS takes an LED that it does not have");
}

/// Asks the comfort service, which has to ask the climate service.
std::uint32_t comfort()
{
    testkit::Peer peer;
    peer.send<ComfortReqMsg>(comfortServiceCpid, {.transactionId = 8});
    return peer.expect<ComfortRespMsg>(stepBound)->comfort;
}

void Demonstration::ringTheBell()
{
    std::ofstream(m_node.boardPath(doorContactPath)) << "rr";
    testkit::Peer peer;
    std::uint32_t visits = 0;
    const auto until = host::Clock::get().monotonic() + stepBound;
    while (visits < 2 && host::Clock::get().monotonic() < until) {
        peer.send<VisitsReqMsg>(doorbellServiceCpid, {.transactionId = 9});
        visits = peer.expect<VisitsRespMsg>(stepBound)->visits;
    }
    require(visits == 2, "the visits are not written to the book");
    require(contentOf(m_node.boardPath(visitorsBookPath)) == "somebody rang\nsomebody rang\n", "the book is wrong");
}

void Demonstration::askForComfort()
{
    for (const auto& [limit, expected] : {std::pair(100U, EComfort_Comfortable), std::pair(10U, EComfort_TooWarm)}) {
        require(AaConfigTagSetU32(comfortLimitTag, limit) == 0, "the tag cannot be set");
        // The service hears of the tag on a thread of its platform.
        const auto until = host::Clock::get().monotonic() + stepBound;
        while (comfort() != expected) {
            require(host::Clock::get().monotonic() < until, "ComfortS does not follow its tag");
        }
    }
}

void Demonstration::letForwardingTimeOut()
{
    m_board.service("ClimateS").signal(SIGSTOP);
    siginfo_t ignored{};
    require(waitid(P_PID, static_cast<id_t>(m_board.service("ClimateS").pid()), &ignored, WSTOPPED | WNOWAIT) == 0,
            "ClimateS does not stop");
    const std::uint32_t answer = comfort();
    m_board.service("ClimateS").signal(SIGCONT);
    require(answer == EComfort_Unknown, "a question is answered that nobody has answered");
}

void Demonstration::raiseAlarm()
{
    require(AaConfigTagSetU32(ambientTag, 90) == 0, "the tag cannot be set");
    awaitLine("count 1, active");
    require(AaConfigTagSetU32(ambientTag, 25) == 0, "the tag cannot be set");
}

void plug(std::uint32_t cage, bool isPlugged)
{
    testkit::Peer hand;
    hand.send<SfpPlugReqMsg>(sfpServiceCpid, {.transactionId = 11, .cage = cage, .isPlugged = isPlugged ? 1U : 0U});
    require(hand.expect<SfpPlugRespMsg>(stepBound)->status == ESfpPlugStatus_Done, "the cage takes no module");
}

void Demonstration::plugModule()
{
    setSwitch(ERadHwapi_SFP, 1);
    plug(1, true);
    awaitLine("SFP module of link 1 plugged");
    plug(1, false);
    awaitLine("SFP module of link 1 pulled");
}

void setBroken(const LinkName& name, std::uint32_t parts)
{
    testkit::Peer hand;
    hand.send<LinkBreakReqMsg>(linkServiceCpid, {.transactionId = 12, .name = name, .brokenParts = parts});
    require(hand.expect<LinkBreakRespMsg>(stepBound)->status == ELinkBreakStatus_Done, "the link stays as it is");
}

void Demonstration::breakLink()
{
    setSwitch(ERadHwapi_CPR, 1);
    setBroken({"cpri0"}, ELinkPart_Receive | ELinkPart_Transmit);
    for (const char* const lost : {"receives: XACQ1", "LOS begins", "LOF begins"}) {
        awaitLine(std::string("Link cpri0 ") + lost);
    }
    setBroken({"cpri0"}, 0);
    for (const char* const found : {"receives: XACQ2", "receives: XSYNC1", "receives: XSYNC2", "receives: HFNSYNC"}) {
        awaitLine(std::string("Link cpri0 ") + found);
    }
    setBroken({"obsai0"}, ELinkPart_Receive);
    awaitLine("Link obsai0 receives: UNSYNC");
    setBroken({"obsai0"}, 0);
    awaitLine("Link obsai0 receives: FRAME");
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

void Demonstration::loseReference()
{
    using namespace vel::hwapi::common::bif::swpllstatemonitor;
    setSwitch(ERadHwapi_CLOCKS, 1);
    clockWhen([](const SClockShowResp& clock) { return clock.pllState == ESwPllState_TrackMax; },
              "the PLL does not lock");
    setReference(false);
    awaitLine("Clock PLL: holdover");
    const double begin = clockWhen([](const SClockShowResp&) { return true; }, "").timeError;
    const SClockShowResp drifted =
        clockWhen([begin](const SClockShowResp& clock) { return std::fabs(clock.timeError - begin) > 20; },
                  "the time does not drift without reference");
    std::printf("                  | %.1f ns off at %.2f ppb\n", drifted.timeError, drifted.frequencyError);
    require(drifted.pllState == ESwPllState_Holdover, "the PLL does not stay in holdover");
    setReference(true);
    awaitLine("Clock PLL: acquire3");
}

void Demonstration::runSelfTests()
{
    setSwitch(ERadHwapi_STARTUP, 1);
    testkit::Peer tester;
    SPostRunResp latest{};
    for (const std::uint32_t failing : {3U, 0U}) {
        tester.send<PostRunReqMsg>(postServiceCpid, {.transactionId = 15, .failing = failing});
        latest = *tester.expect<PostRunRespMsg>(stepBound);
        require(latest.status == 0, "the results are not recorded");
    }
    require(latest.failedLatest == 0 && latest.failedBefore == 3, "the results are not those of the two runs");
    require(contentOf(m_node.boardPath(mcuPostPath)) == "0 0 0 0 0 0 0 0 0 0 0 0 0 0\n1 1 1 0 0 0 0 0 0 0 0 0 0 0\n",
            "the POST file does not hold the two results");
    awaitLine("Supervisor is told: POST: 0 of 14 tests failed");
}

/// A file of an archive.
std::string unpacked(const std::string& archive, const std::string& file)
{
    testkit::Process tar("/bin/tar", {"-xzOf", archive, "--wildcards", "*/" + file});
    require(tar.waitForEnd(stepBound) == 0, file + " is not in the archive: " + tar.standardError());
    return tar.standardOutput();
}

void Demonstration::takeSnapshot()
{
    const std::string archive = m_node.runDirectory() + "/snapshot.tar.gz";
    testkit::Process command(Board::command(), {"snapshot", archive});
    require(command.waitForEnd(stepBound) == 0, command.standardError());
    const std::string lines = unpacked(archive, "files/ram/post.log");
    require(lines.find("POST: 0 of 14 tests failed") != std::string::npos, "the ring buffer is not in the snapshot");
    std::printf("                  | %s", lines.substr(lines.rfind('\n', lines.size() - 2) + 1).c_str());
    for (const auto& [file, content] : {std::pair("services.json", "PostS"), std::pair("parameters.json", "PostState"),
                                        std::pair("tags.json", ambientTag), std::pair("log.txt", "POST: 0 of 14"),
                                        std::pair("alarms.json", "overheated")}) {
        require(unpacked(archive, file).find(content) != std::string::npos, std::string(file) + " lacks " + content);
    }
}

void Demonstration::switchOver()
{
    testkit::Peer peer;
    for (const EUnitRole role : {EUnitRole_Active, EUnitRole_Standby}) {
        peer.send<RedundancySwitchReqMsg>(redundancyManagerCpid, {.transactionId = 10, .role = role});
        const auto answer = peer.expect<RedundancySwitchRespMsg>(stepBound);
        require(answer->status == ERedundancySwitchStatus_Done && answer->role == role,
                "the unit does not switch over");
    }
}

void Demonstration::useDrivers()
{
    constexpr std::uint32_t fpga = 0x10002;
    std::array<char, 8> unitId{};
    std::uint32_t version = 0;
    require(ddal_devicetree_get_unit_id(0, unitId.size() - 1, unitId.data()) == DDAL_OK, "the unit has no id");
    require(ddal_fpga_get_active_version(fpga, &version) == DDAL_OK, "the FPGA has no version");
    std::printf("                  | unit %s, FPGA version 0x%X\n", unitId.data(), version);

    m_node.writeBoardFile("/tmp/fpgafile", "an image");
    host::PerNode<board::FaultStore>::get().set(board::DriverFunction("ddal_fpga_update_mod"), DDAL_ERROR_TIMEOUT, 1);
    require(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, "/tmp/fpgafile") == DDAL_ERROR_TIMEOUT,
            "the FPGA is flashed although it was told to fail");
    require(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, "/tmp/fpgafile") == DDAL_OK, "the FPGA is not flashed");
}

std::uint32_t modeOf(std::uint32_t fileSystem)
{
    std::uint32_t mode = 0;
    require(ddal_ffs_is_mounted(fileSystem, &mode) == DDAL_OK, "the driver does not know the file system");
    return mode;
}

void Demonstration::loadDsp()
{
    m_node.writeBoardFile("/ram/dsp.bin", std::string(300'000, 'd'));
    require(modeOf(1) == DDAL_FFS_READ_ONLY, "the file system is not mounted read-only");
    testkit::Peer peer;
    SDownloadReq request{.transactionId = 15, .device = 0x10, .addressHigh = 0, .addressLow = 0x0C000000, .file = {}};
    std::snprintf(request.file.data(), request.file.size(), "/ram/dsp.bin");
    peer.send<DownloadReqMsg>(downloadServiceCpid, request);
    const auto answer = peer.expect<DownloadRespMsg>(stepBound);
    require(answer->writeResult == 0 && answer->validationResult == 0, "the DSP is not loaded");
    require(answer->isWritable == 1 && modeOf(1) == DDAL_FFS_READ_WRITE && modeOf(2) == DDAL_FFS_READ_WRITE,
            "the file systems are not mounted read-write");
    std::printf("                  | 300000 bytes verified, file systems read-write\n");
}

void Demonstration::resetBoard()
{
    const std::uint32_t resets = board::resetCount();
    testkit::Peer peer;
    SResetReq request{.transactionId = 16, .reason = 7, .text = {}};
    std::snprintf(request.text.data(), request.text.size(), "the demonstration wanted it");
    peer.send<ResetReqMsg>(resetServiceCpid, request);
    for (const auto& [name, status] : m_board.awaitEnd()) {
        require(status == -SIGKILL, name + " does not end with the board");
    }
    require(board::resetCount() == resets + 1, "the board has not counted its reset");
    start("FirmwareS");
    startServices();
    peer.send<ResetShowReqMsg>(resetServiceCpid, {.transactionId = 17});
    const auto last = peer.expect<ResetShowRespMsg>(stepBound);
    require(last->isKnown == 1 && last->reason == 7, "the reason did not survive");
    std::printf("                  | start %u, last reset because of %u: %s\n", last->startCount, last->reason,
                last->text.data());
    require(modeOf(1) == DDAL_FFS_READ_ONLY, "the file system is not mounted as each start mounts it");
}

void Demonstration::killAndRestart()
{
    m_board.service("ClimateS").signal(SIGKILL);
    require(m_board.service("ClimateS").waitForEnd() == -SIGKILL, "ClimateS does not die");
    const auto dead = find("ClimateS");
    require(dead && !dead->alive, "a dead service is listed as alive");
    start("ClimateS", {"--redundancy"});
    askClimate();
}

void Demonstration::refuseSecond()
{
    testkit::Process second(Board::program("LedS"));
    require(second.waitForEnd(stepBound) == 0, "a second LedS is not refused");
    const auto first = find("LedS");
    require(first && first->alive, "the first LedS did not survive the second");
}

void Demonstration::endAll()
{
    for (const auto& [name, status] : m_board.end()) {
        require(status == endedWell, name + " ended with status " + std::to_string(status));
        const auto ended = find(name);
        require(ended && !ended->alive && ended->published.front().value == 4, name + " did not end in state 4");
    }
}

bool Demonstration::run()
{
    updateFirmware();
    step("fourteen services start as processes of their own, tell their unit and wait for messages",
         [this] { startServices(); });
    step("ClimateS and ComfortS have applied the plan, a RAML document on the board", [this] { applyPlan(); });
    step("an operator switches prints on, and off again, while the services run", [this] { switchPrintsOn(); });
    step("a message to ClimateS is answered", [this] { askClimate(); });
    step("a configuration tag warms the air: ClimateS has LedS show amber", [this] { warmUp(); });
    step("messages of every process are watched as they pass", [this] { watchMessages(); });
    step("what LedS does not know is logged and refused; it goes on", [this] { sendNonsense(); });
    step("the doorbell rings: a dispatcher sees it, a worker writes the visitors' book", [this] { ringTheBell(); });
    step("a question is forwarded to ClimateS; its limit follows a configuration tag", [this] { askForComfort(); });
    step("ClimateS hangs: the forwarded question is given up when its time is out", [this] { letForwardingTimeOut(); });
    step("heat raises an alarm, which arrives at the fault manager", [this] { raiseAlarm(); });
    step("an SFP module is plugged and pulled: its driver's events reach the service", [this] { plugModule(); });
    step("a CPRI and an OBSAI link lose their light, and synchronise again step by step", [this] { breakLink(); });
    step("the clock reference is lost: the PLL goes into holdover, the oscillator drifts", [this] { loseReference(); });
    step("self-tests run twice: both results are kept, the supervisor is told", [this] { runSelfTests(); });
    step("a snapshot of the board is taken and opened: ring buffer, services, log, alarms", [this] { takeSnapshot(); });
    step("the redundancy manager drives ClimateS through a switch-over and back", [this] { switchOver(); });
    step("drivers tell what the board is, flash an FPGA, and fail when they are told to", [this] { useDrivers(); });
    step("a DSP is loaded over RapidIO and verified, the file systems are mounted read-write", [this] { loadDsp(); });
    step("the watchdog resets the board; all services start again, and the reason has survived",
         [this] { resetBoard(); });
    step("ClimateS is killed, listed as dead, started again and finds its cpid free", [this] { killAndRestart(); });
    step("a second LedS is refused while the first lives", [this] { refuseSecond(); });
    step("all services are asked to end, and end in state 4", [this] { endAll(); });
    std::printf("%s\n", m_isAllWell ? "Every step was seen." : "Not every step was seen.");
    return m_isAllWell;
}

} // namespace

bool goThroughSteps()
{
    return Demonstration().run();
}

} // namespace dorn::demonstration
