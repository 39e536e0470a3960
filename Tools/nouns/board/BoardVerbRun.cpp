// SPDX-License-Identifier: MIT
#include "nouns/board/BoardVerbs.hpp"

#include "Program.hpp"
#include "board/BoardPlace.hpp"
#include "board/ChildServiceProcess.hpp"
#include "board/LiveView.hpp"
#include "board/RunLock.hpp"
#include "board/ServiceLine.hpp"
#include "board/Supervisor.hpp"
#include "board/WakeUp.hpp"
#include "device/Resets.hpp"
#include "node/PerNode.hpp"
#include "text/Values.hpp"
#include "waiting/Watch.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

namespace dorn::tool {
namespace {

struct RunOptions {
    std::string board;
    bool isOnce = false;
    bool asLines = false;
    bool asJson = false;
    std::string timeout = "30";
};

/// What the environment says, but not that of this command itself, which has no log.
std::vector<Variable> serviceEnvironment()
{
    const char* const log = std::getenv("DORN_LOG");
    return {{"DORN_LOG", log && std::string_view(log) != "none" ? log : "file"}};
}

/// How often the board has been reset. A count that cannot be read is one that has not changed.
std::uint32_t resetsOr(std::uint32_t otherwise)
{
    try {
        return board::resetCount();
    } catch (const std::exception&) {
        return otherwise;
    }
}

NodeSight nodeSight()
{
    return {[] { return host::PerNode<host::EeTable>::get().list(); },
            [last = std::uint32_t{0}]() mutable { return last = resetsOr(last); }};
}

/// A board that is run, from its start to its end.
class BoardRun {
public:
    BoardRun(const BoardDescription& board, Console& console, const RunOptions& options);

    /// Until somebody asks for the end, or nothing runs any more.
    Outcome runLive();
    Outcome runOnce();

private:
    void tell(const SupervisorEvent& event);
    void tellBadNews(const SupervisorEvent& event);
    void waitAndStep(host::Deadline until);
    void runUntil(const std::function<bool()>& isDone, host::Deadline until);
    void endAll();
    void sumUp();

    Console& m_console;
    const RunOptions& m_options;
    WakeUp m_wakeUp;
    std::unique_ptr<Terminal> m_terminal; ///< only where the board is drawn
    RunLock m_lock;
    StopRequest m_stop;
    ChildServiceLauncher m_launcher;
    Supervisor m_supervisor;
    std::unique_ptr<BoardObserver> m_observer;
    std::unique_ptr<LiveView> m_view;
    std::map<std::string, SupervisorEvent> m_lastSaid; ///< by service
};

bool isDrawn(const RunOptions& options)
{
    return !options.isOnce && !options.asLines && Terminal::canBeUsed(std::getenv("TERM"));
}

BoardRun::BoardRun(const BoardDescription& board, Console& console, const RunOptions& options)
    : m_console(console),
      m_options(options),
      m_lock(host::PerNode<host::RunDirectory>::get()),
      m_stop([this] { m_wakeUp.wake(); }),
      m_launcher(serviceEnvironment()),
      m_supervisor(board, m_launcher, nodeSight(), [this](const SupervisorEvent& event) { tell(event); })
{
    putBoardFiles(board);
    if (isDrawn(options)) {
        m_terminal = std::make_unique<Terminal>();
        m_observer = std::make_unique<BoardObserver>();
        const bool isColoured = isColourWanted(true, std::getenv("NO_COLOR"), std::getenv("TERM"));
        m_view = std::make_unique<LiveView>(m_supervisor, *m_observer, *m_terminal, isColoured);
    }
    if (const auto dead = m_lock.deadHolder()) {
        tell({host::Clock::get().wall(), "",
              "process " + std::to_string(*dead) + ", which ran it before, died without ending it", News::Bad});
    }
}

void BoardRun::tell(const SupervisorEvent& event)
{
    if (m_view) {
        m_view->note(event);
    } else if (!m_options.isOnce) {
        m_console.printLine(eventLine(event));
    } else if (event.news == News::Said) {
        m_lastSaid.insert_or_assign(event.service, event);
    } else if (event.news == News::Bad) {
        tellBadNews(event);
    }
}

/// What a service said last often tells why.
void BoardRun::tellBadNews(const SupervisorEvent& event)
{
    if (const auto said = m_lastSaid.extract(event.service)) {
        m_console.remark(sentence(said.mapped()));
    }
    m_console.remark(sentence(event));
}

/// Waits for whatever comes first, and does what is due then.
void BoardRun::waitAndStep(host::Deadline until)
{
    std::vector<pollfd> entries{{m_wakeUp.descriptor(), POLLIN, 0}};
    if (m_view && !m_view->isBroken()) { // a terminal that is gone is always ready
        entries.push_back({m_terminal->input(), POLLIN, 0});
        entries.push_back({m_view->isWriting() ? m_terminal->output() : -1, POLLOUT, 0});
        until = std::min(until, m_view->nextUpdate());
    }
    m_supervisor.wait(std::move(entries), until);
    m_wakeUp.clear();
    m_supervisor.step();
    if (m_view) {
        m_view->update();
    }
}

void BoardRun::runUntil(const std::function<bool()>& isDone, host::Deadline until)
{
    m_supervisor.step();
    while (!isDone() && !m_supervisor.hasEnded() && host::Clock::get().monotonic() < until) {
        waitAndStep(until);
    }
}

void BoardRun::endAll()
{
    m_supervisor.end();
    bool isUrgent = false;
    const auto becomesUrgent = [&] {
        if (!isUrgent && m_view && m_view->isEndUrgent()) {
            isUrgent = true;
            m_supervisor.endNow();
        }
        return false;
    };
    runUntil(becomesUrgent, host::noDeadline);
}

/// What stays on the terminal when the picture is gone: who has not ended well, and how many have.
void BoardRun::sumUp()
{
    std::size_t well = 0;
    for (const SupervisedService& service : m_supervisor.services()) {
        if (service.phase == ServicePhase::Ended) {
            ++well;
            continue;
        }
        const std::string what = service.lastStatus ? endText(*service.lastStatus) : "never ran";
        const char* const more = service.phase == ServicePhase::GivenUp ? ", and was given up" : "";
        m_console.print(printable(service.description.name) + " " + what + more + "\n");
    }
    m_console.print("Dorn board " + printable(m_supervisor.board().name) + " has ended, " + std::to_string(well) +
                    " of " + std::to_string(m_supervisor.services().size()) + " well\n");
}

Outcome BoardRun::runLive()
{
    const auto isEndWanted = [this] {
        return m_stop.hasCome() || m_console.isClosed() || (m_view && (m_view->isEndWanted() || m_view->isBroken()));
    };
    runUntil(isEndWanted, host::noDeadline);
    endAll();
    if (m_view) {
        m_view.reset();
        m_observer.reset();
        m_terminal.reset();
        sumUp();
    }
    return m_supervisor.haveAllEndedWell() ? Outcome::Fine : Outcome::No;
}

Outcome BoardRun::runOnce()
{
    const host::Clock& clock = host::Clock::get();
    const host::Deadline until = clock.monotonic() + parseSeconds("--timeout", m_options.timeout);
    const auto isDecided = [this] {
        return m_supervisor.areAllRunning() || m_supervisor.isAnyLost() || m_stop.hasCome();
    };
    runUntil(isDecided, until);
    const bool haveRun = m_supervisor.areAllRunning();
    m_console.print(m_options.asJson ? jsonText(supervisedJson(m_supervisor.services()))
                                     : supervisedTable(m_supervisor.services(), clock.monotonic(), m_console));
    m_console.flush();
    endAll();
    if (!haveRun) {
        m_console.remark("not every service runs");
    }
    return haveRun && m_supervisor.haveAllEndedWell() ? Outcome::Fine : Outcome::No;
}

Outcome run(const RunOptions& options, Console& console)
{
    const std::string programs = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const BoardDescription board = readBoardDescription(options.board, programs);
    settleBoard(board);
    BoardRun run(board, console, options);
    return options.isOnce ? run.runOnce() : run.runLive();
}

} // namespace

void addBoardRun(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<RunOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {.name = "run",
                                      .description = "Runs the services of a board and keeps them running",
                                      .example = "dorn board run board.xml",
                                      .files = everyArgument},
                                     [options](Console& console) { return run(*options, console); });
    verb.add_option("BOARD", options->board, "File that describes the board")->required();
    CLI::Option* const once =
        verb.add_flag("--once", options->isOnce,
                      "Starts all, says in a table whether they run, and ends all; status 1 if they do not");
    verb.add_option("--timeout", options->timeout, "How long they may take until they run; 30 without it")
        ->type_name("S")
        ->needs(once);
    verb.add_flag("--lines", options->asLines, "Prints a line for each event, also on a terminal")->excludes(once);
    verb.add_flag("--json", options->asJson, "Prints the table as JSON")->needs(once);
}

} // namespace dorn::tool
