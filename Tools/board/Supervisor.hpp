// SPDX-License-Identifier: MIT
/// @file Supervisor.hpp
/// Keeps the services of a board running.
#pragma once

#include "board/BoardDescription.hpp"
#include "board/EventText.hpp"
#include "board/ServiceProcess.hpp"
#include "node/EeTable.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace dorn::tool {

/// What a service is doing, as its supervisor sees it.
enum class ServicePhase {
    Held,     ///< waits for the services behind which it comes
    Starting, ///< has a process that does not count as running yet
    Running,
    BackOff, ///< has ended, and waits for its restart
    Ending,  ///< has been asked to end
    Ended,   ///< has ended well, for good
    Failed,  ///< has ended badly, and is not to be started again
    GivenUp  ///< has been started again too often
};
/// "held", "starting", ...
const char* phaseWord(ServicePhase phase);

/// Whether the process of a service does its work.
enum class ServiceHealth {
    Fine,
    Stopped, ///< a signal has stopped it
    Hangs,   ///< it has been handling one message for too long
    Late,    ///< it has been starting for too long
    Lingers  ///< it has published its end a while ago, and has not ended
};

/// A service under supervision.
struct SupervisedService {
    explicit SupervisedService(const ServiceDescription& what) : description(what), record(what.restart) {}

    const ServiceDescription& description; ///< the supervisor's own copy
    ServicePhase phase = ServicePhase::Held;
    ServiceHealth health = ServiceHealth::Fine;
    std::unique_ptr<ServiceProcess> process; ///< while there is one
    std::optional<host::EeInfo> info;        ///< what the process has published
    RestartRecord record;
    host::Nanoseconds since{};     ///< when the phase began, monotonic
    host::Deadline due{};          ///< of BackOff the restart, of Ending the kill
    std::uint32_t restarts = 0;    ///< starts but for the first
    std::optional<int> lastStatus; ///< with which its latest process ended, since the board was reset
    bool isStarted = false;        ///< whether it ever was
};

/// What the supervisor asks about its node.
struct NodeSight {
    std::function<std::vector<host::EeInfo>()> services; ///< the node's list
    std::function<std::uint32_t()> resets;               ///< how often the board has been reset
};

/// 1. step() does what is due, and never waits.
/// 2. wait() until nextStep() or until one of descriptors() is readable, and step again.
/// 3. end() asks all services to end, in the reverse order; go on until hasEnded().
///
/// A service starts when those behind which it comes are running; the others do not wait for each other. When it has
/// ended its restart policy decides. A reset of the board, which kills all services, has all of them start again from
/// the beginning, and counts against nobody. For one thread, from which the children are started.
class Supervisor {
public:
    Supervisor(const BoardDescription& board, ServiceLauncher& launcher, NodeSight sight, EventSink tell);
    ~Supervisor();
    Supervisor(const Supervisor&) = delete;
    Supervisor& operator=(const Supervisor&) = delete;

    void step();
    host::Deadline nextStep() const;
    std::vector<int> descriptors() const;
    /// Waits until it is time to step, @p until has come, or something is so on one of @p others, which are entries as
    /// for Clock::waitDescriptors().
    void wait(std::vector<pollfd> others, host::Deadline until) const;

    /// Asks all services to end.
    void end();
    /// Kills what still runs.
    void endNow();
    /// Whether all have been asked to end.
    bool isEnding() const { return m_isEnding; }
    /// Sends a signal to a service. @return false when it has no process.
    bool signal(std::size_t service, int number);

    /// Whether every service runs.
    bool areAllRunning() const;
    /// Whether there is a service that is not to be started any more, although nobody asked it to end.
    bool isAnyLost() const;
    /// Whether every service has ended, and none of them badly: with its good status, by the SIGTERM that end() sends,
    /// or before it was started.
    bool haveAllEndedWell() const;
    /// Whether no service has a process, and none will get one.
    bool hasEnded() const;

    const std::vector<SupervisedService>& services() const { return m_services; }
    const BoardDescription& board() const { return m_board; }

private:
    void reap();
    void onEnd(SupervisedService& service, int status);
    void restartOrLeave(SupervisedService& service, int status);
    void look();
    void lookAt(SupervisedService& service);
    void setHealth(SupervisedService& service, ServiceHealth health);
    bool hasBoardBeenReset();
    void beginReset();
    void goOnWithReset();
    void startWhatIsDue();
    void start(SupervisedService& service);
    bool mayStart(const SupervisedService& service) const;
    void goOnWithEnd();
    bool mayEnd(std::size_t place) const;
    void enter(SupervisedService& service, ServicePhase phase);
    void tell(const SupervisedService* service, const std::string& text, News news);

    BoardDescription m_board;
    ServiceLauncher& m_launcher;
    NodeSight m_sight;
    EventSink m_tell;
    std::vector<SupervisedService> m_services;
    host::Nanoseconds m_now{};
    host::Deadline m_nextLook{};
    std::uint32_t m_resets;
    std::optional<host::Deadline> m_resetUntil; ///< while a reset kills the services
    bool m_isEnding = false;
};

} // namespace dorn::tool
