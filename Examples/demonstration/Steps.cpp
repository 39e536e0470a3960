// SPDX-License-Identifier: MIT
#include "Steps.hpp"

#include "AaConfigTag.h"
#include "ClimateMessages.hpp"
#include "ComfortMessages.hpp"
#include "DoorbellMessages.hpp"
#include "FirmwareSteps.hpp"
#include "HardwareSteps.hpp"
#include "LedMessages.hpp"
#include "Peer.hpp"
#include "PostMessages.hpp"
#include "Process.hpp"
#include "RedundancyMessages.hpp"
#include "Require.hpp"
#include "ResetMessages.hpp"
#include "ServiceState.hpp"
#include "StepReport.hpp"
#include "ddal_ffs.h"
#include "device/Resets.hpp"
#include "node/PerNode.hpp"
#include "rad/ERadHwapi.h"
#include "syscom/MessageTap.hpp"

#include <csignal>
#include <cstdio>
#include <fstream>
#include <functional>
#include <set>
#include <sys/wait.h>

namespace dorn::demonstration {
namespace {

using namespace dorn::examples;
using vel::hwapi::common::EServiceState_Ended;

constexpr int endedWell = 1; // what Startup() returns

/// The demonstration, step by step.
class Demonstration {
public:
    bool run();

private:
    void step(const char* text, const std::function<void()>& action);
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
    void runSelfTests();
    void takeSnapshot();
    void switchOver();
    void resetBoard();
    void killAndRestart();
    void refuseSecond();
    void endAll();

    Stage m_stage;
    testkit::TestNode& m_node{m_stage.node()};
    Board& m_board{m_stage.board()};
    AwaitedLog m_startLog; ///< once more, for what services have told while all were waited for
    StepReport m_report;
};

void Demonstration::step(const char* text, const std::function<void()>& action)
{
    const std::string trouble = m_report.run(text, action);
    if (!trouble.empty()) {
        std::printf("                  %s\n", trouble.c_str());
    }
    std::fflush(stdout);
}

/// Before the other services start: a reset of the board kills whatever runs on it.
void Demonstration::updateFirmware()
{
    FirmwareSteps firmware(m_stage);
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
    m_stage.start("FaultManager");
    m_stage.start("RedundancyManager");
    m_stage.start("LedS");
    m_stage.start("ClimateS", {"--redundancy"}); // the redundancy manager is there already
    m_stage.start("ComfortS");
    m_stage.start("DoorbellS");
    m_stage.start("SfpS");
    m_stage.start("LinkS");
    m_stage.start("ClockS");
    m_stage.start("MountS");
    m_stage.start("DownloadS");
    m_stage.start("ResetS");
    m_stage.start("SupervisorS");
    m_stage.start("PostS");
    const auto led = m_stage.find("LedS");
    require(led && led->alive, "LedS is not listed as alive");
    awaitUnits();
}

/// Waits until every service has told the unit that it runs on.
void Demonstration::awaitUnits()
{
    const std::string unit = "Runs on unit NAXE DN264700001: HW/SW id 0xA00100, type 19, version 51";
    std::set<std::string> tellers;
    while (tellers.size() < m_board.running().size()) {
        tellers.insert(m_stage.log().nextLine(unit).eeName);
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
    m_stage.setSwitch(ERadHwapi_LED, 1);
    m_stage.setSwitch(ERadHwapi_ClimateS, 1);
    m_stage.awaitLine(" %");
    m_stage.setSwitch(ERadHwapi_ClimateS, 0);
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
    m_stage.setSwitch(ERadHwapi_ClimateS, 1);
    require(AaConfigTagSetU32(ambientTag, 60) == 0, "the tag cannot be set");
    m_stage.awaitLine("LED climate: green -> amber");
    m_stage.awaitLine("Climate LED changed from 1 to 2");
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
    m_stage.awaitLine(sender);
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
    m_stage.awaitLine("count 1, active");
    require(AaConfigTagSetU32(ambientTag, 25) == 0, "the tag cannot be set");
}

void Demonstration::runSelfTests()
{
    m_stage.setSwitch(ERadHwapi_STARTUP, 1);
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
    m_stage.awaitLine("Supervisor is told: POST: 0 of 14 tests failed");
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
    m_stage.start("FirmwareS");
    startServices();
    peer.send<ResetShowReqMsg>(resetServiceCpid, {.transactionId = 17});
    const auto last = peer.expect<ResetShowRespMsg>(stepBound);
    require(last->isKnown == 1 && last->reason == 7, "the reason did not survive");
    std::printf("                  | start %u, last reset because of %u: %s\n", last->startCount, last->reason,
                last->text.data());
    require(mountModeOf(1) == DDAL_FFS_READ_ONLY, "the file system is not mounted as each start mounts it");
}

void Demonstration::killAndRestart()
{
    m_board.service("ClimateS").signal(SIGKILL);
    require(m_board.service("ClimateS").waitForEnd() == -SIGKILL, "ClimateS does not die");
    const auto dead = m_stage.find("ClimateS");
    require(dead && !dead->alive, "a dead service is listed as alive");
    m_stage.start("ClimateS", {"--redundancy"});
    askClimate();
}

void Demonstration::refuseSecond()
{
    testkit::Process second(Board::program("LedS"));
    require(second.waitForEnd(stepBound) == 0, "a second LedS is not refused");
    const auto first = m_stage.find("LedS");
    require(first && first->alive, "the first LedS did not survive the second");
}

void Demonstration::endAll()
{
    for (const auto& [name, status] : m_board.end()) {
        require(status == endedWell, name + " ended with status " + std::to_string(status));
        const auto ended = m_stage.find(name);
        require(ended && !ended->alive && ended->published.front().value == EServiceState_Ended,
                name + " did not end in state 4");
    }
}

bool Demonstration::run()
{
    HardwareSteps hardware(m_stage);
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
    step("an SFP module is plugged and pulled: its driver's events reach the service", [&] { hardware.plugModule(); });
    step("a CPRI and an OBSAI link lose their light, and synchronise again step by step",
         [&] { hardware.breakLink(); });
    step("the clock reference is lost: the PLL goes into holdover, the oscillator drifts",
         [&] { hardware.loseReference(); });
    step("self-tests run twice: both results are kept, the supervisor is told", [this] { runSelfTests(); });
    step("a snapshot of the board is taken and opened: ring buffer, services, log, alarms", [this] { takeSnapshot(); });
    step("the redundancy manager drives ClimateS through a switch-over and back", [this] { switchOver(); });
    step("drivers tell what the board is, flash an FPGA, and fail when they are told to",
         [&] { hardware.useDrivers(); });
    step("a DSP is loaded over RapidIO and verified, the file systems are mounted read-write",
         [&] { hardware.loadDsp(); });
    step("the watchdog resets the board; all services start again, and the reason has survived",
         [this] { resetBoard(); });
    step("ClimateS is killed, listed as dead, started again and finds its cpid free", [this] { killAndRestart(); });
    step("a second LedS is refused while the first lives", [this] { refuseSecond(); });
    step("all services are asked to end, and end in state 4", [this] { endAll(); });
    std::printf("%s\n", m_report.isAllWell() ? "Every step was seen." : "Not every step was seen.");
    return m_report.isAllWell();
}

} // namespace

bool goThroughSteps()
{
    return Demonstration().run();
}

} // namespace dorn::demonstration
