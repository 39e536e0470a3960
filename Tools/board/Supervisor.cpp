// SPDX-License-Identifier: MIT
#include "board/Supervisor.hpp"

#include "ServiceState.hpp"
#include "answers/ServiceList.hpp"

#include <algorithm>
#include <array>
#include <csignal>
#include <exception>
#include <utility>

namespace dorn::tool {
namespace {

using namespace vel::hwapi::common;

constexpr auto lookPeriod = std::chrono::milliseconds(250);
constexpr auto startLookPeriod = std::chrono::milliseconds(20); // while somebody waits for a service to run
constexpr auto handlingLimit = std::chrono::milliseconds(1500);
constexpr auto startLimit = std::chrono::seconds(10); // from then on a start is worth a look
/// In which a reset kills the services of the node; those that had not entered its list yet are killed then.
constexpr auto resetTime = std::chrono::milliseconds(500);

constexpr std::array<const char*, 8> phaseWords{"held",   "starting", "running", "back-off",
                                                "ending", "ended",    "failed",  "given up"};
static_assert(phaseWords.size() == static_cast<std::size_t>(ServicePhase::GivenUp) + 1);

/// Whether a service has published its end.
bool isOver(const host::EeInfo::Published& state)
{
    return state.value == EServiceState_Ended || state.value == EServiceState_Failed;
}

bool hasComeUp(const SupervisedService& service)
{
    if (service.description.ready == Readiness::Start) {
        return true;
    }
    const auto state = service.info ? stateOf(*service.info) : std::nullopt;
    return state && state->value > EServiceState_Starting && !isOver(*state);
}

ServiceHealth healthOf(const SupervisedService& service, host::Nanoseconds now)
{
    if (service.process->isStopped()) {
        return ServiceHealth::Stopped;
    }
    if (service.phase == ServicePhase::Starting) {
        return now - service.since > startLimit ? ServiceHealth::Late : ServiceHealth::Fine;
    }
    const auto state = service.info ? stateOf(*service.info) : std::nullopt;
    if (!state || host::Clock::get().wall() - host::Nanoseconds(state->when) <= handlingLimit) {
        return ServiceHealth::Fine;
    }
    if (isOver(*state) && service.phase == ServicePhase::Running) {
        return ServiceHealth::Lingers;
    }
    return state->value == EServiceState_Handling ? ServiceHealth::Hangs : ServiceHealth::Fine;
}

bool hasEndedWell(const SupervisedService& service)
{
    return service.lastStatus == service.description.goodStatus;
}

} // namespace

const char* phaseWord(ServicePhase phase)
{
    return phaseWords[static_cast<std::size_t>(phase)];
}

Supervisor::Supervisor(const BoardDescription& board, ServiceLauncher& launcher, NodeSight sight, EventSink tell)
    : m_board(board),
      m_launcher(launcher),
      m_sight(std::move(sight)),
      m_tell(std::move(tell)),
      m_now(host::Clock::get().monotonic()),
      m_resets(m_sight.resets())
{
    m_services.reserve(m_board.services.size());
    for (const ServiceDescription& service : m_board.services) {
        m_services.emplace_back(service);
        m_services.back().since = m_now;
    }
}

Supervisor::~Supervisor() = default;

void Supervisor::step()
{
    m_now = host::Clock::get().monotonic();
    reap();
    if (m_now >= m_nextLook) {
        look();
    }
    if (m_resetUntil) {
        goOnWithReset();
    }
    if (m_isEnding) {
        goOnWithEnd();
    } else if (!m_resetUntil) {
        startWhatIsDue();
    }
    const bool isAnyStarting = std::any_of(m_services.begin(), m_services.end(), [](const SupervisedService& service) {
        return service.phase == ServicePhase::Starting;
    });
    m_nextLook = std::min(m_nextLook, m_now + (isAnyStarting ? host::Nanoseconds(startLookPeriod) : lookPeriod));
}

host::Deadline Supervisor::nextStep() const
{
    host::Deadline next = m_resetUntil ? std::min(m_nextLook, *m_resetUntil) : m_nextLook;
    for (const SupervisedService& service : m_services) {
        if (service.phase == ServicePhase::BackOff || service.phase == ServicePhase::Ending) {
            next = std::min(next, service.due);
        }
    }
    return next;
}

std::vector<int> Supervisor::descriptors() const
{
    std::vector<int> all;
    for (const SupervisedService& service : m_services) {
        if (service.process) {
            const std::vector<int> some = service.process->descriptors();
            all.insert(all.end(), some.begin(), some.end());
        }
    }
    return all;
}

void Supervisor::wait(std::vector<pollfd> others, host::Deadline until) const
{
    for (const int descriptor : descriptors()) {
        others.push_back({descriptor, POLLIN, 0});
    }
    host::Clock::get().waitDescriptors(others, std::min(until, nextStep()));
}

void Supervisor::reap()
{
    for (SupervisedService& service : m_services) {
        if (!service.process) {
            continue;
        }
        const std::optional<int> status = service.process->status();
        for (const std::string& line : service.process->takeLines()) {
            tell(&service, "says: " + line, News::Said);
        }
        if (status) {
            onEnd(service, *status);
        }
    }
}

void Supervisor::onEnd(SupervisedService& service, int status)
{
    service.process.reset();
    service.info.reset();
    service.health = ServiceHealth::Fine;
    service.lastStatus = status;
    if (m_isEnding) {
        // Asked to end while it started, a service has not taken the signal into its hands yet.
        const bool isWell = hasEndedWell(service) || status == -SIGTERM;
        enter(service, isWell ? ServicePhase::Ended : ServicePhase::Failed);
        tell(&service, endText(status), isWell ? News::Plain : News::Bad);
    } else if (m_resetUntil || (status == -SIGKILL && hasBoardBeenReset())) {
        beginReset();
        enter(service, ServicePhase::Held);
    } else {
        restartOrLeave(service, status);
    }
}

void Supervisor::restartOrLeave(SupervisedService& service, int status)
{
    const bool isWell = hasEndedWell(service);
    const RestartDecision decision = service.record.decide(isWell, m_now);
    switch (decision.what) {
    case RestartDecision::What::Restart:
        enter(service, ServicePhase::BackOff);
        service.due = m_now + decision.delay;
        tell(&service, endText(status) + "; starts again in " + delayText(decision.delay),
             isWell ? News::Plain : News::Bad);
        break;
    case RestartDecision::What::GiveUp:
        enter(service, ServicePhase::GivenUp);
        tell(&service,
             endText(status) + "; given up after " + std::to_string(service.description.restart.limit) +
                 " restarts within " + delayText(service.description.restart.within),
             News::Bad);
        break;
    case RestartDecision::What::Leave:
        enter(service, isWell ? ServicePhase::Ended : ServicePhase::Failed);
        tell(&service, endText(status), isWell ? News::Plain : News::Bad);
        break;
    }
}

void Supervisor::look()
{
    m_nextLook = m_now + lookPeriod;
    for (SupervisedService& service : m_services) {
        service.info.reset();
    }
    for (host::EeInfo& info : m_sight.services()) {
        const auto found =
            std::find_if(m_services.begin(), m_services.end(), [&info](const SupervisedService& service) {
                return service.process && service.process->pid() == info.pid;
            });
        if (found != m_services.end() && info.alive) {
            found->info = std::move(info);
        }
    }
    for (SupervisedService& service : m_services) {
        if (service.process) {
            lookAt(service);
        }
    }
    if (!m_isEnding && !m_resetUntil && hasBoardBeenReset()) {
        beginReset();
    }
}

void Supervisor::lookAt(SupervisedService& service)
{
    if (service.phase == ServicePhase::Starting && hasComeUp(service)) {
        enter(service, ServicePhase::Running);
        service.health = ServiceHealth::Fine;
        tell(&service, "runs", News::Good);
    }
    setHealth(service, healthOf(service, m_now));
}

void Supervisor::setHealth(SupervisedService& service, ServiceHealth health)
{
    if (service.health == health) {
        return;
    }
    service.health = health;
    switch (health) {
    case ServiceHealth::Stopped:
        tell(&service, "has been stopped by a signal, and does nothing", News::Bad);
        break;
    case ServiceHealth::Hangs:
        tell(&service, "hangs: it has been handling a message for longer than " + delayText(handlingLimit), News::Bad);
        break;
    case ServiceHealth::Late:
        tell(&service, "has been starting for longer than " + delayText(startLimit), News::Bad);
        break;
    case ServiceHealth::Lingers:
        tell(&service, "says that it has ended, but its process stays", News::Bad);
        break;
    case ServiceHealth::Fine:
        if (service.phase != ServicePhase::Ending) {
            tell(&service, "goes on", News::Good);
        }
        break;
    }
}

bool Supervisor::hasBoardBeenReset()
{
    const std::uint32_t resets = m_sight.resets();
    return resets != std::exchange(m_resets, resets);
}

void Supervisor::beginReset()
{
    if (!m_resetUntil) {
        m_resetUntil = m_now + resetTime;
        tell(nullptr, "reset; all services start again", News::Bad);
    }
}

/// The hardware is reset at once; its processes take a moment to die.
void Supervisor::goOnWithReset()
{
    const bool isLate = m_now >= *m_resetUntil;
    bool isAnyLeft = false;
    for (SupervisedService& service : m_services) {
        isAnyLeft = isAnyLeft || service.process;
        if (service.process && isLate) {
            service.process->signal(SIGKILL);
        }
    }
    if (isAnyLeft) {
        if (isLate) {
            m_resetUntil = m_now + resetTime;
        }
        return;
    }
    m_resetUntil.reset();
    for (SupervisedService& service : m_services) {
        service.record.clear();
        service.lastStatus.reset();
        enter(service, ServicePhase::Held);
    }
}

bool Supervisor::mayStart(const SupervisedService& service) const
{
    const std::vector<std::size_t>& after = service.description.after;
    return std::all_of(after.begin(), after.end(),
                       [this](std::size_t place) { return m_services[place].phase == ServicePhase::Running; });
}

void Supervisor::startWhatIsDue()
{
    for (SupervisedService& service : m_services) {
        if (service.phase == ServicePhase::BackOff && m_now >= service.due) {
            enter(service, ServicePhase::Held);
        }
        if (service.phase == ServicePhase::Held && mayStart(service)) {
            start(service);
        }
    }
}

void Supervisor::start(SupervisedService& service)
{
    constexpr int notStarted = 127; // as a shell has it
    service.restarts += service.isStarted ? 1 : 0;
    service.isStarted = true;
    try {
        service.process = m_launcher.launch(service.description);
    } catch (const std::exception& error) {
        tell(&service, std::string("cannot be started: ") + error.what(), News::Bad);
        service.lastStatus = notStarted;
        restartOrLeave(service, notStarted);
        return;
    }
    enter(service, ServicePhase::Starting);
    tell(&service, "started, pid " + std::to_string(service.process->pid()), News::Plain);
}

void Supervisor::end()
{
    m_isEnding = true;
    m_resetUntil.reset();
    for (SupervisedService& service : m_services) {
        if (service.phase == ServicePhase::Held || service.phase == ServicePhase::BackOff) {
            const bool isWell = !service.lastStatus || hasEndedWell(service);
            enter(service, isWell ? ServicePhase::Ended : ServicePhase::Failed);
        }
    }
    m_nextLook = m_now;
}

void Supervisor::endNow()
{
    end();
    for (std::size_t place = 0; place < m_services.size(); ++place) {
        signal(place, SIGKILL);
    }
}

bool Supervisor::signal(std::size_t service, int number)
{
    const auto& process = m_services.at(service).process;
    if (process) {
        process->signal(number);
    }
    return process != nullptr;
}

/// Not before those that come behind it have ended.
bool Supervisor::mayEnd(std::size_t place) const
{
    return std::none_of(m_services.begin(), m_services.end(), [place](const SupervisedService& other) {
        const std::vector<std::size_t>& after = other.description.after;
        return other.process && std::find(after.begin(), after.end(), place) != after.end();
    });
}

void Supervisor::goOnWithEnd()
{
    for (std::size_t place = m_services.size(); place-- != 0;) {
        SupervisedService& service = m_services[place];
        if (!service.process) {
            continue;
        }
        if (service.phase == ServicePhase::Ending && m_now >= service.due) {
            tell(&service, "has not ended within " + delayText(service.description.endWithin) + ": killed", News::Bad);
            service.process->signal(SIGKILL);
            service.due = host::noDeadline;
        } else if (service.phase != ServicePhase::Ending && mayEnd(place)) {
            service.process->signal(SIGTERM);
            service.process->signal(SIGCONT); // one that has been stopped has to hear it
            enter(service, ServicePhase::Ending);
            service.due = m_now + service.description.endWithin;
        }
    }
}

bool Supervisor::areAllRunning() const
{
    return std::all_of(m_services.begin(), m_services.end(),
                       [](const SupervisedService& service) { return service.phase == ServicePhase::Running; });
}

bool Supervisor::isAnyLost() const
{
    return std::any_of(m_services.begin(), m_services.end(), [](const SupervisedService& service) {
        return service.phase == ServicePhase::Ended || service.phase == ServicePhase::Failed ||
               service.phase == ServicePhase::GivenUp;
    });
}

bool Supervisor::haveAllEndedWell() const
{
    return std::all_of(m_services.begin(), m_services.end(),
                       [](const SupervisedService& service) { return service.phase == ServicePhase::Ended; });
}

bool Supervisor::hasEnded() const
{
    // A held service whose turn can never come has lost one that comes before it.
    const bool isAnyAtWork = std::any_of(m_services.begin(), m_services.end(), [](const SupervisedService& service) {
        return service.process || service.phase == ServicePhase::BackOff;
    });
    const bool isAnyHeld = std::any_of(m_services.begin(), m_services.end(), [this](const SupervisedService& service) {
        return service.phase == ServicePhase::Held && mayStart(service);
    });
    return !isAnyAtWork && !isAnyHeld && !m_resetUntil;
}

void Supervisor::enter(SupervisedService& service, ServicePhase phase)
{
    service.phase = phase;
    service.since = m_now;
}

void Supervisor::tell(const SupervisedService* service, const std::string& text, News news)
{
    m_tell({host::Clock::get().wall(), service ? service->description.name : "", text, news});
}

} // namespace dorn::tool
