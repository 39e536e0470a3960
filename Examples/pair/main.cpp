// SPDX-License-Identifier: MIT
// Two halves of a redundant pair on this machine, and what happens when the active one dies.
#include "Half.hpp"
#include "LoopbackPorts.hpp"
#include "PairDirectory.hpp"
#include "StepReport.hpp"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <exception>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>

using namespace dorn::pair;

namespace {

using Seconds = std::chrono::duration<double>;
using WallClock = std::chrono::system_clock;

constexpr std::size_t keyLength = 40;
/// Three times what it takes: a machine with other work wakes everybody late.
constexpr Seconds longestSwitchOver{1.5};

void show(const std::string& text)
{
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::printf("                  | %s\n", line.c_str());
    }
}

/// The time at the begin of a log line: "2026-11-21T12:46:54.155770Z".
WallClock::time_point timeOf(const std::string& line)
{
    std::tm date{};
    unsigned microseconds = 0;
    if (std::sscanf(line.c_str(), "%d-%d-%dT%d:%d:%d.%6uZ", &date.tm_year, &date.tm_mon, &date.tm_mday, &date.tm_hour,
                    &date.tm_min, &date.tm_sec, &microseconds) != 7) {
        throw std::runtime_error("a log line without time: " + line);
    }
    date.tm_year -= 1900;
    date.tm_mon -= 1;
    return WallClock::from_time_t(timegm(&date)) + std::chrono::microseconds(microseconds);
}

/// Both halves, step by step.
class Pair {
public:
    bool run();

private:
    void step(const char* text, const std::function<void()>& action);
    void shareKeys();
    void connect();
    void startServices(Half& half, const Half& mate);
    void startBoth();
    void makeActive();
    void askBothHalves();
    void sendAcross();
    void loseActiveHalf();
    void bringBack();

    PairDirectory m_directory;
    Half m_a{"A", 0x0F01, m_directory.path() / "a"};
    Half m_b{"B", 0x0F02, m_directory.path() / "b"};
    dorn::examples::StepReport m_report;
};

/// Each step goes on where the one before has ended: after the first one that fails there are no more.
void Pair::step(const char* text, const std::function<void()>& action)
{
    if (!m_report.isAllWell()) {
        return;
    }
    show(m_report.run(text, action));
    std::fflush(stdout);
}

void Pair::shareKeys()
{
    const std::vector<std::uint16_t> ports = freeLoopbackPorts(2);
    std::string table = "# node host port public-key\n";
    std::size_t index = 0;
    for (const Half* const half : {&m_a, &m_b}) {
        const std::string key = half->ask({"gateway", "keys"}).substr(0, keyLength);
        table += half->nodeText() + " 127.0.0.1 " + std::to_string(ports[index++]) + " " + key + "\n";
    }
    for (const Half* const half : {&m_a, &m_b}) {
        std::ofstream(half->boardFile("/opt/dorn/gateway.table")) << table;
    }
    m_b.ask({"gateway", "check"});
    show(m_a.ask({"gateway", "check"}));
}

void Pair::connect()
{
    m_a.startGateway();
    m_b.startGateway();
    m_b.askUntil({"gateway", "status", "--up"}, "up");
    show(m_a.askUntil({"gateway", "status", "--up"}, "up"));
}

void Pair::startServices(Half& half, const Half& mate)
{
    half.startService("RedundancyManager", {"-v", "--mate=" + mate.nodeText()});
    half.askUntil({"redundancy", "show"}, "unit: "); // a service waits for its manager no longer than it must
    half.followLog();
    half.startService("ClimateS", {"--redundancy"});
    show(half.awaitLine("registers for 4 all: status 0"));
}

void Pair::startBoth()
{
    startServices(m_a, m_b);
    startServices(m_b, m_a);
    show(m_a.awaitLine("Mate 0x0F02 is there: standby"));
    show(m_b.awaitLine("Mate 0x0F01 is there: standby"));
}

void Pair::makeActive()
{
    m_a.passLog();
    m_a.ask({"redundancy", "switch", "active"});
    show(m_a.awaitLine("Switch to active done"));
}

void Pair::askBothHalves()
{
    show(m_a.askUntil({"redundancy", "show"}, "0x0F02:0x0211    all   self-standby"));
}

void Pair::sendAcross()
{
    show(m_a.ask({"msg", "send", "0x0211", "--node", m_b.nodeText(), "--id", "0x2111", "--payload", "07000000",
                  "--wait-reply", "1"}));
}

void Pair::loseActiveHalf()
{
    m_b.passLog(); // the switch-over is told from what comes from now on
    const WallClock::time_point death = WallClock::now();
    m_a.die();
    for (const char* const text :
         {"Mate 0x0F01 is silent", "Taking over from mate 0x0F01", "after prepare-active: 1 ready",
          "after take-hw-latch: 1 ready", "after enable-active: 1 ready", "Switch to active done"}) {
        show(m_b.awaitLine(text));
    }
    const Seconds silence = timeOf(m_b.awaitLine("Mate 0x0F01 is silent")) - death;
    const Seconds whole = timeOf(m_b.awaitLine("Switch to active done")) - death;
    std::printf(
        "                  | half B is the active one %.4f s after half A has died: %.4f s until it was missed, "
        "%.4f s for the services\n",
        whole.count(), silence.count(), (whole - silence).count());
    show(m_b.askUntil({"redundancy", "show"}, "unit: active"));
    if (whole > longestSwitchOver) {
        throw std::runtime_error("the switch-over takes too long");
    }
}

void Pair::bringBack()
{
    m_a.passLog();
    m_a.startGateway();
    m_a.startService("RedundancyManager", {"-v", "--mate=" + m_b.nodeText()});
    show(m_a.awaitLine("yields"));
    show(m_a.awaitLine("Switch to standby done"));
    m_a.startService("ClimateS", {"--redundancy"});
    show(m_b.askUntil({"redundancy", "show"}, "0x0F01:0x0211    all   self-standby"));
    show(m_b.askUntil({"gateway", "status", "--up"}, "up"));
}

bool Pair::run()
{
    step("each half makes its keys, and both get the same table of nodes", [this] { shareKeys(); });
    step("their gateways find each other", [this] { connect(); });
    step("the redundancy managers of both halves hear each other", [this] { startBoth(); });
    step("half A becomes the active one", [this] { makeActive(); });
    step("its manager asks the services of both halves for their states", [this] { askBothHalves(); });
    step("a climate service on half B is asked from half A by its address alone", [this] { sendAcross(); });
    step("half A dies: half B takes over", [this] { loseActiveHalf(); });
    step("half A comes back, and is the standby one", [this] { bringBack(); });
    step("half A ends", [this] { m_a.end(); });
    step("half B ends", [this] { m_b.end(); });
    std::printf("%s\n", m_report.isAllWell() ? "every step was seen" : "not every step was seen");
    return m_report.isAllWell();
}

} // namespace

int main(int argc, char**)
{
    if (argc > 1) {
        std::fprintf(stderr, "Usage: dorn-pair\n");
        return 2;
    }
    try {
        return Pair().run() ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "dorn-pair: %s\n", error.what());
        return 1;
    }
}
