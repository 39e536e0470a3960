// SPDX-License-Identifier: MIT
#include "BoardSoak.hpp"

#include "board/BoardPlace.hpp"
#include "device/Resets.hpp"
#include "fault/FaultStore.hpp"
#include "node/PerNode.hpp"

#include <algorithm>
#include <csignal>
#include <stdexcept>

namespace dorn::soak {
namespace {

using tool::Answering;
using tool::ServiceHealth;
using tool::ServicePhase;
using tool::SupervisedService;

constexpr auto bound = std::chrono::seconds(20);
constexpr auto lookPeriod = std::chrono::milliseconds(50);
constexpr auto stopTime = std::chrono::milliseconds(700);
constexpr std::size_t keptEvents = 20;

tool::BoardDescription boardThatEndures()
{
    tool::BoardDescription board = tool::readBoardDescription(DORN_DEMONSTRATION, DORN_PROGRAMS);
    for (tool::ServiceDescription& service : board.services) {
        service.restart = {tool::RestartWhen::OnFailure, std::chrono::milliseconds(10), std::chrono::milliseconds(100),
                           1'000'000, std::chrono::seconds(1)};
    }
    return board;
}

} // namespace

BoardSoak::BoardSoak(std::uint32_t seed) : m_chance(seed), m_board(boardThatEndures())
{
    tool::settleBoard(m_board);
    tool::putBoardFiles(m_board);
    const tool::NodeSight sight{[] { return host::PerNode<host::EeTable>::get().list(); }, board::resetCount};
    m_supervisor = std::make_unique<Supervisor>(m_board, m_launcher, sight, [this](const tool::SupervisorEvent& event) {
        m_lastEvents.push_back(tool::eventLine(event));
        if (m_lastEvents.size() > keptEvents) {
            m_lastEvents.erase(m_lastEvents.begin());
        }
    });
    m_observer = std::make_unique<tool::BoardObserver>();
}

void BoardSoak::start()
{
    runUntil([this] { return isWell(); }, "the board does not come up");
    m_first = m_latest = usageOf(processes(), m_node.runDirectory());
}

std::string BoardSoak::suffer()
{
    const host::Nanoseconds begin = host::Clock::get().monotonic();
    const Fault fault = m_chance.fault();
    const std::string what = apply(fault);
    runUntil([this] { return isWell(); }, "the board is not well again after: " + what);
    m_longest = std::max(m_longest, host::Clock::get().monotonic() - begin);
    ++m_counts[static_cast<std::size_t>(fault)];
    checkUsage();
    return what;
}

void BoardSoak::end()
{
    m_supervisor->end();
    runUntil([this] { return m_supervisor->hasEnded(); }, "the board does not end");
    if (!m_supervisor->haveAllEndedWell()) {
        throw std::runtime_error("a service does not end well" + latestEvents());
    }
}

std::string BoardSoak::summary() const
{
    std::string text;
    for (std::size_t kind = 0; kind < faultKinds; ++kind) {
        text += std::string(kind == 0 ? "" : ", ") + faultNames[kind] + " " + std::to_string(m_counts[kind]);
    }
    return text + "; well again after at most " + tool::delayText(m_longest) + "\nat first " + usageText(m_first) +
           "\nat last " + usageText(m_latest);
}

// waits

void BoardSoak::runUntil(const std::function<bool()>& isSo, const std::string& otherwise)
{
    host::Clock& clock = host::Clock::get();
    const host::Deadline until = clock.monotonic() + bound;
    for (m_supervisor->step(); !isSo(); m_supervisor->step()) {
        if (clock.monotonic() >= until) {
            throw std::runtime_error(otherwise + latestEvents());
        }
        m_supervisor->wait({}, clock.monotonic() + lookPeriod);
    }
}

std::string BoardSoak::latestEvents() const
{
    std::string events;
    for (const std::string& event : m_lastEvents) {
        events += "\n  " + event;
    }
    return events;
}

void BoardSoak::runFor(host::Nanoseconds time)
{
    const host::Deadline until = host::Clock::get().monotonic() + time;
    runUntil([until] { return host::Clock::get().monotonic() >= until; }, "time does not pass");
}

/// Every service runs and does its work, and those that are asked answer.
bool BoardSoak::isWell() const
{
    const auto isFine = [](const SupervisedService& service) {
        return service.phase == ServicePhase::Running && service.health == ServiceHealth::Fine;
    };
    const auto& services = m_supervisor->services();
    const tool::BoardPicture picture = m_observer->picture();
    return std::all_of(services.begin(), services.end(), isFine) && picture.links.state == Answering::Yes &&
           picture.cages.state == Answering::Yes && picture.clock.state == Answering::Yes &&
           picture.alarms.state == Answering::Yes;
}

std::vector<pid_t> BoardSoak::processes() const
{
    std::vector<pid_t> all;
    for (const SupervisedService& service : m_supervisor->services()) {
        if (service.process) {
            all.push_back(service.process->pid());
        }
    }
    return all;
}

void BoardSoak::checkUsage()
{
    m_latest = usageOf(processes(), m_node.runDirectory());
    if (const std::string grown = growth(m_first, m_latest); !grown.empty()) {
        throw std::runtime_error("something is left behind: " + grown + usageText(m_latest));
    }
}

// faults

std::string BoardSoak::apply(Fault fault)
{
    const auto& functions = board::driverFunctionNames;
    switch (fault) {
    case Fault::Kill:
        return kill(1);
    case Fault::KillSome:
        return kill(3);
    case Fault::Stop:
        return stop();
    case Fault::Plug:
        return plug();
    case Fault::Link:
        return breakLink();
    case Fault::Reference:
        return act(tool::referenceAction(m_chance.coin()));
    case Fault::Driver:
        return act(tool::faultAction(board::DriverFunction::at(m_chance.oneOf(functions.size()))));
    case Fault::Reset:
        return reset();
    case Fault::Switch:
        return act(tool::switchAction(m_chance.coin()));
    }
    return "";
}

std::string BoardSoak::kill(std::size_t count)
{
    std::string what = "kill";
    std::vector<std::pair<std::size_t, pid_t>> killed;
    for (; count != 0; --count) {
        const std::size_t place = someService();
        const SupervisedService& service = m_supervisor->services()[place];
        killed.emplace_back(place, service.process->pid());
        m_supervisor->signal(place, SIGKILL);
        what += " " + service.description.name;
    }
    runUntil(
        [&] {
            return std::all_of(killed.begin(), killed.end(), [this](const auto& one) {
                const SupervisedService& service = m_supervisor->services()[one.first];
                return service.process && service.process->pid() != one.second;
            });
        },
        "not started again after: " + what);
    return what;
}

std::string BoardSoak::stop()
{
    const std::size_t place = someService();
    m_supervisor->signal(place, SIGSTOP);
    runFor(stopTime);
    if (m_supervisor->services()[place].health != ServiceHealth::Stopped) {
        throw std::runtime_error("a stopped service is not seen");
    }
    m_supervisor->signal(place, SIGCONT);
    return "stop " + m_supervisor->services()[place].description.name;
}

std::string BoardSoak::plug()
{
    const auto cages = m_observer->picture().cages.value;
    const examples::SSfpCage& cage = cages.at(m_chance.oneOf(cages.size()));
    return act(tool::plugAction(cage.cage, cage.module == examples::ESfpModule_Empty));
}

std::string BoardSoak::breakLink()
{
    const auto links = m_observer->picture().links.value;
    const examples::SLink& link = links.at(m_chance.oneOf(links.size()));
    return act(tool::breakAction(link, link.brokenParts != 0 ? 0U : std::uint32_t{examples::ELinkPart_Receive}));
}

std::string BoardSoak::reset()
{
    host::PerNode<board::FaultStore>::get().clear(board::DriverFunction("ddal_watchdog_reboot"));
    const std::uint32_t resets = board::resetCount();
    const std::vector<pid_t> before = processes();
    m_observer->act(tool::resetAction());
    runUntil(
        [&] {
            const std::vector<pid_t> now = processes();
            const bool isAnyLeft = std::any_of(before.begin(), before.end(), [&now](pid_t pid) {
                return std::find(now.begin(), now.end(), pid) != now.end();
            });
            return board::resetCount() == resets + 1 && !isAnyLeft;
        },
        "the board is not reset");
    return "reset";
}

/// Has it done, and waits for what became of it. A refusal is no trouble: what was asked for may be so already.
std::string BoardSoak::act(tool::BoardAction action)
{
    std::string what = action.label;
    m_observer->takeNews();
    m_observer->act(std::move(action));
    runUntil([this] { return !m_observer->takeNews().empty(); }, "nothing has become of: " + what);
    return what;
}

} // namespace dorn::soak
