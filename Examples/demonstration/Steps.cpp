// SPDX-License-Identifier: MIT
#include "Steps.hpp"

#include "AaConfigTag.h"
#include "Board.hpp"
#include "ClimateMessages.hpp"
#include "LedMessages.hpp"
#include "Peer.hpp"
#include "RadWait.hpp"
#include "TestNode.hpp"
#include "config/RadStore.hpp"
#include "log/LogReader.hpp"
#include "node/EeTable.hpp"
#include "node/PerNode.hpp"
#include "rad/ERadHwapi.h"
#include "rad/ERadHwapiState.h"
#include "syscom/MessageTap.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <deque>
#include <exception>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>

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

void require(bool condition, const std::string& otherwise)
{
    if (!condition) {
        throw std::runtime_error(otherwise);
    }
}

/// A board of its own, and what there is to be seen of it.
class Demonstration {
public:
    Demonstration()
    {
        m_node.writeBoardFile("/opt/dorn/dorn.xml", contentOf(Board::files() / "opt/dorn/dorn.xml"));
        require(AaConfigEarlyStartup() == 0, "the board's tags cannot be opened");
    }

    bool run();

private:
    void step(const char* text, const std::function<void()>& action);
    void awaitLine(const std::string& ending);
    std::optional<host::EeInfo> find(const std::string& name) const;
    void setSwitch(TAaConfigRadId id, std::uint32_t value);

    void startServices();
    void switchPrintsOn();
    void askClimate();
    void warmUp();
    void watchMessages();
    void sendNonsense();
    void killAndRestart();
    void refuseSecond();
    void endAll();

    testkit::TestNode m_node{{.nodeId = std::nullopt, .log = "file", .logLevel = std::nullopt}};
    Board m_board;
    host::LogReader m_log;
    std::deque<host::LogLine> m_unread;
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

/// Waits for a log line whose text ends so, among those that came after the last one that was awaited.
void Demonstration::awaitLine(const std::string& ending)
{
    const auto until = host::Clock::get().monotonic() + stepBound;
    do {
        while (!m_unread.empty()) {
            const host::LogLine line = std::move(m_unread.front());
            m_unread.pop_front();
            if (line.text.ends_with(ending)) {
                std::printf("                  | %s %s\n", line.eeName.c_str(), line.text.c_str());
                return;
            }
        }
        std::ranges::move(m_log.next(until), std::back_inserter(m_unread));
    } while (!m_unread.empty());
    throw std::runtime_error("no log line ends with \"" + ending + "\"");
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

void Demonstration::startServices()
{
    m_board.start("LedS");
    require(testkit::waitForRad(ERadHwapiState_LedState, waiting, stepBound), "LedS does not get to state 2");
    m_board.start("ClimateS");
    require(testkit::waitForRad(ERadHwapiState_ClimateState, waiting, stepBound), "ClimateS does not get to state 2");
    const auto led = find("LedS");
    require(led && led->alive && led->pid == m_board.service("LedS").pid(), "LedS is not listed as alive");
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

void Demonstration::killAndRestart()
{
    m_board.service("ClimateS").signal(SIGKILL);
    require(m_board.service("ClimateS").waitForEnd() == -SIGKILL, "ClimateS does not die");
    const auto dead = find("ClimateS");
    require(dead && !dead->alive, "a dead service is listed as alive");
    const int firstPid = dead->pid;
    m_board.start("ClimateS");
    require(testkit::waitForRadChange(
                [&] {
                    const auto again = find("ClimateS");
                    return again && again->alive && again->pid != firstPid && !again->published.empty() &&
                           again->published.front().value == waiting;
                },
                stepBound),
            "ClimateS does not come back");
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
    step("LedS and ClimateS start as processes of their own and wait for messages", [this] { startServices(); });
    step("an operator switches prints on, and off again, while the services run", [this] { switchPrintsOn(); });
    step("a message to ClimateS is answered", [this] { askClimate(); });
    step("a configuration tag warms the air: ClimateS has LedS show amber", [this] { warmUp(); });
    step("messages of every process are watched as they pass", [this] { watchMessages(); });
    step("what LedS does not know is logged and refused; it goes on", [this] { sendNonsense(); });
    step("ClimateS is killed, listed as dead, started again and finds its cpid free", [this] { killAndRestart(); });
    step("a second LedS is refused while the first lives", [this] { refuseSecond(); });
    step("both services are asked to end, and end in state 4", [this] { endAll(); });
    std::printf("%s\n", m_isAllWell ? "Every step was seen." : "Not every step was seen.");
    return m_isAllWell;
}

} // namespace

bool goThroughSteps()
{
    return Demonstration().run();
}

} // namespace dorn::demonstration
