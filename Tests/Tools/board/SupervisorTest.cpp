// SPDX-License-Identifier: MIT
// Supervision on a clock that stands still, with processes that are none.
#include "board/Supervisor.hpp"

#include "ManualClock.hpp"
#include "rad/ERadHwapiState.h"

#include <algorithm>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <system_error>

namespace dorn::tool {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr std::uint32_t waiting = 2;
constexpr std::uint32_t handling = 3;

/// What there is to know and to do about a process that is none.
struct FakeState {
    std::string name;
    pid_t pid = 0;
    std::optional<int> status = std::nullopt;
    bool isStopped = false;
    bool isDeaf = false; ///< to SIGTERM
    std::vector<int> signals = {};
    std::vector<std::string> lines = {};
};

class FakeProcess : public ServiceProcess {
public:
    explicit FakeProcess(std::shared_ptr<FakeState> state) : m_state(std::move(state)) {}

    pid_t pid() const override { return m_state->pid; }
    void signal(int number) override
    {
        m_state->signals.push_back(number);
        if (number == SIGKILL) {
            m_state->status = -SIGKILL;
        } else if (number == SIGTERM && !m_state->isDeaf) {
            m_state->status = 1;
        }
    }
    std::optional<int> status() override { return m_state->status; }
    bool isStopped() const override { return m_state->isStopped; }
    std::vector<std::string> takeLines() override { return std::exchange(m_state->lines, {}); }
    std::vector<int> descriptors() const override { return {}; }

private:
    std::shared_ptr<FakeState> m_state;
};

/// A node with processes that are none; its test says what becomes of them.
class FakeNode : public ServiceLauncher {
public:
    std::unique_ptr<ServiceProcess> launch(const ServiceDescription& service) override
    {
        if (m_isBroken) {
            throw std::system_error(ENOEXEC, std::generic_category(), service.program);
        }
        starts.push_back(service.name);
        auto state = std::make_shared<FakeState>(FakeState{service.name, ++m_lastPid});
        m_processes[service.name] = state;
        return std::make_unique<FakeProcess>(state);
    }
    NodeSight sight()
    {
        return {[this] { return infos; }, [this] { return resets; }};
    }

    /// The latest process of a service.
    FakeState& of(const std::string& name) { return *m_processes.at(name); }
    /// A service publishes a state.
    void publish(const std::string& name, std::uint32_t value)
    {
        std::erase_if(infos, [&name](const host::EeInfo& info) { return info.name == name; });
        host::EeInfo info{name, of(name).pid, true, 0, 0, {}, {}};
        info.published.push_back({ERadHwapiState_CpriState, value, host::Clock::get().wall().count()});
        infos.push_back(info);
    }
    void breakStarts() { m_isBroken = true; }
    void mendStarts() { m_isBroken = false; }

    std::vector<std::string> starts;
    std::vector<host::EeInfo> infos;
    std::uint32_t resets = 0;

private:
    std::map<std::string, std::shared_ptr<FakeState>> m_processes;
    pid_t m_lastPid = 1000;
    bool m_isBroken = false;
};

class SupervisorTest : public ::testing::Test {
protected:
    static ServiceDescription serviceOf(const std::string& name, std::vector<std::size_t> after = {})
    {
        ServiceDescription service{name, "/bin/" + name};
        service.after = std::move(after);
        return service;
    }
    void supervise(std::vector<ServiceDescription> services)
    {
        const BoardDescription board{"test", "", "", "", {}, std::move(services)};
        m_supervisor =
            std::make_unique<Supervisor>(board, m_node, m_node.sight(), [this](const SupervisorEvent& event) {
                m_events.push_back(event.service + ": " + event.text);
            });
        m_supervisor->step();
    }
    void pass(host::Nanoseconds time)
    {
        m_clock.advance(time);
        m_supervisor->step();
    }
    /// Has services come up.
    void bringUp(const std::vector<std::string>& names)
    {
        for (const std::string& name : names) {
            m_node.publish(name, waiting);
        }
        pass(1s);
    }
    void endProcess(const std::string& name, int status)
    {
        m_node.of(name).status = status;
        m_supervisor->step();
    }
    const SupervisedService& service(std::size_t place) const { return m_supervisor->services()[place]; }

    testkit::ManualClock m_clock;
    FakeNode m_node;
    std::vector<std::string> m_events;
    std::unique_ptr<Supervisor> m_supervisor;
};

TEST_F(SupervisorTest, ServicesStartInTheirOrder)
{
    supervise({serviceOf("A"), serviceOf("B"), serviceOf("C")});

    EXPECT_THAT(m_node.starts, ElementsAre("A", "B", "C"));
    EXPECT_EQ(service(0).phase, ServicePhase::Starting);
    EXPECT_THAT(m_events, ElementsAre("A: started, pid 1001", "B: started, pid 1002", "C: started, pid 1003"));
}

TEST_F(SupervisorTest, ServiceWaitsUntilThoseBeforeItRun)
{
    supervise({serviceOf("A"), serviceOf("B", {0}), serviceOf("C")});
    EXPECT_THAT(m_node.starts, ElementsAre("A", "C"));
    EXPECT_EQ(service(1).phase, ServicePhase::Held);

    bringUp({"A"});

    EXPECT_THAT(m_node.starts, ElementsAre("A", "C", "B"));
}

TEST_F(SupervisorTest, ServiceRunsWhenItPublishesThatItWaits)
{
    supervise({serviceOf("A")});
    m_node.publish("A", 1);
    pass(1s);
    EXPECT_EQ(service(0).phase, ServicePhase::Starting);
    EXPECT_FALSE(m_supervisor->areAllRunning());

    bringUp({"A"});

    EXPECT_EQ(service(0).phase, ServicePhase::Running);
    EXPECT_TRUE(m_supervisor->areAllRunning());
    EXPECT_EQ(m_events.back(), "A: runs");
}

TEST_F(SupervisorTest, StateOfAnEarlierProcessDoesNotCount)
{
    supervise({serviceOf("A")});
    m_node.publish("A", waiting);
    m_node.infos.front().pid = 999;
    pass(1s);
    EXPECT_EQ(service(0).phase, ServicePhase::Starting);
}

TEST_F(SupervisorTest, StateOfADeadProcessDoesNotCount)
{
    supervise({serviceOf("A")});
    m_node.publish("A", waiting);
    m_node.infos.front().alive = false;
    pass(1s);
    EXPECT_EQ(service(0).phase, ServicePhase::Starting);
}

TEST_F(SupervisorTest, EndedAndFailedAreNoRunningStates)
{
    for (const std::uint32_t state : {4U, 5U}) {
        supervise({serviceOf("A")});
        m_node.publish("A", state);
        pass(1s);
        EXPECT_EQ(service(0).phase, ServicePhase::Starting) << state;
    }
}

TEST_F(SupervisorTest, ProgramWithoutStatesRunsWhenItHasStarted)
{
    ServiceDescription program = serviceOf("A");
    program.ready = Readiness::Start;
    supervise({program});
    pass(1s);
    EXPECT_EQ(service(0).phase, ServicePhase::Running);
}

TEST_F(SupervisorTest, StartThatFailsIsAnEnd)
{
    m_node.breakStarts();
    supervise({serviceOf("A")});
    EXPECT_EQ(service(0).phase, ServicePhase::BackOff);
    EXPECT_THAT(m_events.front(), HasSubstr("A: cannot be started: /bin/A: "));

    m_node.mendStarts();
    pass(200ms);

    EXPECT_EQ(service(0).phase, ServicePhase::Starting);
}

TEST_F(SupervisorTest, ServiceThatDiesStartsAgainAfterItsDelay)
{
    supervise({serviceOf("A")});
    bringUp({"A"});

    endProcess("A", -SIGSEGV);

    EXPECT_EQ(service(0).phase, ServicePhase::BackOff);
    EXPECT_EQ(m_events.back(), "A: killed by signal 11 (Segmentation fault); starts again in 200 ms");
    EXPECT_EQ(m_supervisor->nextStep(), std::min(service(0).due, m_supervisor->nextStep()));
    pass(199ms);
    EXPECT_EQ(m_node.starts.size(), 1U);
    pass(1ms);
    EXPECT_EQ(m_node.starts.size(), 2U);
    EXPECT_EQ(service(0).restarts, 1U);
}

/// 1 is what Service::Startup() returns at a good end, 0 what it returns when it failed.
TEST_F(SupervisorTest, StatusOneIsAGoodEndAndStatusNoneIsNot)
{
    supervise({serviceOf("A"), serviceOf("B")});
    bringUp({"A", "B"});

    endProcess("A", 1);
    endProcess("B", 0);

    EXPECT_EQ(service(0).phase, ServicePhase::Ended);
    EXPECT_EQ(service(1).phase, ServicePhase::BackOff);
    EXPECT_TRUE(m_supervisor->isAnyLost());
}

TEST_F(SupervisorTest, DescriptionSaysWhichStatusIsGood)
{
    ServiceDescription program = serviceOf("A");
    program.goodStatus = 0;
    supervise({program});
    endProcess("A", 0);
    EXPECT_EQ(service(0).phase, ServicePhase::Ended);
}

TEST_F(SupervisorTest, ServiceThatIsNeverRestartedHasFailed)
{
    ServiceDescription once = serviceOf("A");
    once.restart.when = RestartWhen::Never;
    supervise({once});
    endProcess("A", 3);
    EXPECT_EQ(service(0).phase, ServicePhase::Failed);
    EXPECT_EQ(m_events.back(), "A: ended with status 3");
    EXPECT_TRUE(m_supervisor->hasEnded());
}

TEST_F(SupervisorTest, ServiceThatDiesAgainAndAgainIsGivenUp)
{
    ServiceDescription frail = serviceOf("A");
    frail.restart = {RestartWhen::OnFailure, 1ms, 1ms, 2, 60s};
    supervise({frail, serviceOf("B", {0})});
    for (int restart = 0; restart < 2; ++restart) {
        endProcess("A", -SIGKILL);
        pass(1ms);
    }
    endProcess("A", -SIGKILL);

    EXPECT_EQ(service(0).phase, ServicePhase::GivenUp);
    EXPECT_EQ(m_events.back(), "A: killed by signal 9 (Killed); given up after 2 restarts within 60 s");
    EXPECT_TRUE(m_supervisor->isAnyLost());
    EXPECT_TRUE(m_supervisor->hasEnded()) << "B can never start";
}

TEST_F(SupervisorTest, RestartWaitsForThoseBeforeIt)
{
    supervise({serviceOf("A"), serviceOf("B", {0})});
    bringUp({"A"});
    bringUp({"B"});
    endProcess("B", -SIGKILL);
    endProcess("A", -SIGKILL);
    pass(200ms);
    EXPECT_EQ(m_node.starts, (std::vector<std::string>{"A", "B", "A"}));
    EXPECT_EQ(service(1).phase, ServicePhase::Held);

    bringUp({"A"});

    EXPECT_EQ(m_node.starts.back(), "B");
}

TEST_F(SupervisorTest, StartThatTakesLongIsToldOnce)
{
    supervise({serviceOf("A")});
    m_node.publish("A", 1);
    pass(10s);
    EXPECT_EQ(service(0).health, ServiceHealth::Fine);

    pass(1s);
    pass(1s);

    EXPECT_EQ(service(0).health, ServiceHealth::Late);
    EXPECT_EQ(service(0).phase, ServicePhase::Starting);
    EXPECT_EQ(std::count(m_events.begin(), m_events.end(), "A: has been starting for longer than 10 s"), 1);
    bringUp({"A"});
    EXPECT_EQ(service(0).health, ServiceHealth::Fine);
    EXPECT_EQ(m_events.back(), "A: runs");
}

TEST_F(SupervisorTest, ServiceThatHasSaidItsEndAndStaysIsTold)
{
    for (const std::uint32_t state : {4U, 5U}) {
        supervise({serviceOf("A")});
        bringUp({"A"});
        m_node.publish("A", state);
        pass(1500ms);
        EXPECT_EQ(service(0).health, ServiceHealth::Fine) << state;

        pass(250ms);

        EXPECT_EQ(service(0).health, ServiceHealth::Lingers) << state;
        EXPECT_EQ(m_events.back(), "A: says that it has ended, but its process stays");
    }
}

TEST_F(SupervisorTest, StoppedProcessIsToldWithinTwoSeconds)
{
    supervise({serviceOf("A")});
    bringUp({"A"});
    m_node.of("A").isStopped = true;

    pass(250ms);

    EXPECT_EQ(service(0).health, ServiceHealth::Stopped);
    EXPECT_EQ(m_events.back(), "A: has been stopped by a signal, and does nothing");
    m_node.of("A").isStopped = false;
    pass(250ms);
    EXPECT_EQ(service(0).health, ServiceHealth::Fine);
    EXPECT_EQ(m_events.back(), "A: goes on");
}

TEST_F(SupervisorTest, MessageThatIsHandledForTooLongIsToldWithinTwoSeconds)
{
    supervise({serviceOf("A")});
    bringUp({"A"});
    m_node.publish("A", handling);
    pass(1500ms);
    EXPECT_EQ(service(0).health, ServiceHealth::Fine);

    pass(250ms);

    EXPECT_EQ(service(0).health, ServiceHealth::Hangs);
    EXPECT_EQ(m_events.back(), "A: hangs: it has been handling a message for longer than 1.5 s");
}

TEST_F(SupervisorTest, LongWaitIsNoHang)
{
    supervise({serviceOf("A")});
    bringUp({"A"});
    pass(1h);
    EXPECT_EQ(service(0).health, ServiceHealth::Fine);
}

TEST_F(SupervisorTest, LooksOftenWhileAServiceStarts)
{
    supervise({serviceOf("A")});
    EXPECT_LE(m_supervisor->nextStep() - m_clock.monotonic(), 20ms);
    bringUp({"A"});
    EXPECT_EQ(m_supervisor->nextStep() - m_clock.monotonic(), 250ms);
}

TEST_F(SupervisorTest, WhatAServicePrintsIsAnEvent)
{
    supervise({serviceOf("A")});
    m_node.of("A").lines = {"good morning"};
    m_supervisor->step();
    EXPECT_EQ(m_events.back(), "A: says: good morning");
}

TEST_F(SupervisorTest, ResetOfTheBoardStartsAllServicesAgain)
{
    supervise({serviceOf("A"), serviceOf("B", {0})});
    bringUp({"A"});
    bringUp({"B"});
    m_node.resets = 1;
    endProcess("B", -SIGKILL);
    EXPECT_EQ(m_node.starts.size(), 2U) << "A has not died yet";
    endProcess("A", -SIGKILL);
    EXPECT_THAT(m_node.starts, ElementsAre("A", "B", "A"));
    bringUp({"A"});
    EXPECT_THAT(m_node.starts, ElementsAre("A", "B", "A", "B"));
    EXPECT_EQ(std::count(m_events.begin(), m_events.end(), ": reset; all services start again"), 1);
}

TEST_F(SupervisorTest, ResetCountsAgainstNobody)
{
    ServiceDescription frail = serviceOf("A");
    frail.restart = {RestartWhen::OnFailure, 1ms, 1ms, 1, 60s};
    supervise({frail});
    endProcess("A", -SIGKILL);
    pass(1ms);
    m_node.resets = 1;
    endProcess("A", -SIGKILL);
    m_supervisor->step();

    endProcess("A", -SIGKILL);

    EXPECT_EQ(service(0).phase, ServicePhase::BackOff);
}

TEST_F(SupervisorTest, ProcessThatAResetHasPassedByIsKilled)
{
    supervise({serviceOf("A"), serviceOf("B")});
    m_node.resets = 1;
    endProcess("A", -SIGKILL);
    EXPECT_TRUE(m_node.of("B").signals.empty());

    pass(500ms);

    EXPECT_THAT(m_node.of("B").signals, ElementsAre(SIGKILL));
    m_supervisor->step();
    EXPECT_THAT(m_node.starts, ElementsAre("A", "B", "A", "B"));
}

TEST_F(SupervisorTest, ResetGivesThoseThatWereGivenUpAnotherChance)
{
    ServiceDescription frail = serviceOf("A");
    frail.restart.limit = 0;
    supervise({frail, serviceOf("B")});
    endProcess("A", 7);
    EXPECT_EQ(service(0).phase, ServicePhase::GivenUp);
    m_node.resets = 1;
    endProcess("B", -SIGKILL);
    EXPECT_THAT(m_node.starts, ElementsAre("A", "B", "A", "B"));
}

TEST_F(SupervisorTest, ResetIsSeenAlsoWhenNobodyDiesOfIt)
{
    supervise({serviceOf("A")});
    bringUp({"A"});
    m_node.resets = 1;
    pass(250ms);
    EXPECT_EQ(m_events.back(), ": reset; all services start again");
}

TEST_F(SupervisorTest, ServicesAreAskedToEndInTheReverseOrder)
{
    supervise({serviceOf("A"), serviceOf("B", {0}), serviceOf("C")});
    bringUp({"A"});
    bringUp({"B", "C"});
    m_node.of("B").isDeaf = true;

    m_supervisor->end();
    m_supervisor->step();

    EXPECT_THAT(m_node.of("C").signals, ElementsAre(SIGTERM, SIGCONT));
    EXPECT_THAT(m_node.of("B").signals, ElementsAre(SIGTERM, SIGCONT));
    EXPECT_TRUE(m_node.of("A").signals.empty()) << "B, which comes behind it, still runs";
    endProcess("B", 1);
    m_supervisor->step();
    EXPECT_THAT(m_node.of("A").signals, ElementsAre(SIGTERM, SIGCONT));
    m_supervisor->step();
    EXPECT_TRUE(m_supervisor->hasEnded());
    EXPECT_EQ(service(0).phase, ServicePhase::Ended);
    EXPECT_EQ(service(0).lastStatus, 1);
}

TEST_F(SupervisorTest, WhoDoesNotEndInTimeIsKilledAndItIsSaid)
{
    supervise({serviceOf("A")});
    bringUp({"A"});
    m_node.of("A").isDeaf = true;
    m_supervisor->end();
    m_supervisor->step();
    pass(2999ms);
    EXPECT_FALSE(m_supervisor->hasEnded());

    pass(1ms);

    EXPECT_THAT(m_node.of("A").signals, ElementsAre(SIGTERM, SIGCONT, SIGKILL));
    EXPECT_THAT(m_events, Contains("A: has not ended within 3 s: killed"));
    m_supervisor->step();
    EXPECT_TRUE(m_supervisor->hasEnded());
    EXPECT_EQ(service(0).phase, ServicePhase::Failed);
    EXPECT_EQ(service(0).lastStatus, -SIGKILL);
}

TEST_F(SupervisorTest, WhoDiesWhileAllEndIsNotStartedAgain)
{
    supervise({serviceOf("A"), serviceOf("B")});
    bringUp({"A", "B"});
    endProcess("A", 5);
    m_supervisor->end();
    pass(10s);
    m_supervisor->step();
    EXPECT_TRUE(m_supervisor->hasEnded());
    EXPECT_EQ(m_node.starts.size(), 2U);
}

TEST_F(SupervisorTest, SigtermIsAGoodEndOnceAllAreToEnd)
{
    supervise({serviceOf("A"), serviceOf("B", {0})});
    m_node.of("A").isDeaf = true;
    m_supervisor->end();
    m_supervisor->step();
    EXPECT_FALSE(m_supervisor->haveAllEndedWell());

    endProcess("A", -SIGTERM);

    EXPECT_TRUE(m_supervisor->haveAllEndedWell()) << "B has never run";
}

TEST_F(SupervisorTest, WhoFailedBeforeAllWereToEndHasNotEndedWell)
{
    supervise({serviceOf("A")});
    endProcess("A", -SIGTERM);
    m_supervisor->end();
    EXPECT_TRUE(m_supervisor->hasEnded());
    EXPECT_EQ(service(0).phase, ServicePhase::Failed);
    EXPECT_FALSE(m_supervisor->haveAllEndedWell());
}

TEST_F(SupervisorTest, WhoFailedAndWaitsForAnotherHasNotEndedWell)
{
    supervise({serviceOf("A"), serviceOf("B", {0})});
    bringUp({"A"});
    bringUp({"B"});
    endProcess("A", -SIGSEGV);
    endProcess("B", -SIGSEGV);
    pass(200ms);
    ASSERT_EQ(service(1).phase, ServicePhase::Held);

    m_supervisor->end();
    m_supervisor->step();
    m_supervisor->step();

    ASSERT_TRUE(m_supervisor->hasEnded());
    EXPECT_EQ(service(0).phase, ServicePhase::Ended);
    EXPECT_EQ(service(1).phase, ServicePhase::Failed);
    EXPECT_FALSE(m_supervisor->haveAllEndedWell());
}

TEST_F(SupervisorTest, WhoWasKilledByAResetAndIsNotStartedAgainYetHasEndedWell)
{
    supervise({serviceOf("A"), serviceOf("B", {0})});
    bringUp({"A"});
    bringUp({"B"});
    m_node.resets = 1;
    endProcess("A", -SIGKILL);
    endProcess("B", -SIGKILL);
    ASSERT_EQ(service(1).phase, ServicePhase::Held);

    m_supervisor->end();
    m_supervisor->step();
    m_supervisor->step();

    EXPECT_TRUE(m_supervisor->haveAllEndedWell());
}

TEST_F(SupervisorTest, WhoIsLateDoesNotGoOnWhenItIsToEnd)
{
    supervise({serviceOf("A")});
    pass(11s);
    ASSERT_EQ(service(0).health, ServiceHealth::Late);
    m_node.of("A").isDeaf = true;
    m_supervisor->end();
    m_supervisor->step();
    pass(250ms);
    EXPECT_EQ(service(0).health, ServiceHealth::Fine);
    EXPECT_EQ(m_events.back(), "A: has been starting for longer than 10 s");
}

TEST_F(SupervisorTest, KnowsWhetherAllAreToEnd)
{
    supervise({serviceOf("A")});
    EXPECT_FALSE(m_supervisor->isEnding());
    m_supervisor->end();
    EXPECT_TRUE(m_supervisor->isEnding());
}

TEST_F(SupervisorTest, EndAtOnceKillsAll)
{
    supervise({serviceOf("A"), serviceOf("B", {0})});
    m_supervisor->endNow();
    m_supervisor->step();
    EXPECT_THAT(m_node.of("A").signals, ElementsAre(SIGKILL));
    EXPECT_TRUE(m_supervisor->hasEnded());
}

TEST_F(SupervisorTest, SignalReachesTheProcessIfThereIsOne)
{
    supervise({serviceOf("A"), serviceOf("B", {0})});
    EXPECT_TRUE(m_supervisor->signal(0, SIGSTOP));
    EXPECT_THAT(m_node.of("A").signals, ElementsAre(SIGSTOP));
    EXPECT_FALSE(m_supervisor->signal(1, SIGSTOP));
}

TEST_F(SupervisorTest, EveryPhaseHasAWord)
{
    EXPECT_STREQ(phaseWord(ServicePhase::Held), "held");
    EXPECT_STREQ(phaseWord(ServicePhase::Starting), "starting");
    EXPECT_STREQ(phaseWord(ServicePhase::Running), "running");
    EXPECT_STREQ(phaseWord(ServicePhase::BackOff), "back-off");
    EXPECT_STREQ(phaseWord(ServicePhase::Ending), "ending");
    EXPECT_STREQ(phaseWord(ServicePhase::Ended), "ended");
    EXPECT_STREQ(phaseWord(ServicePhase::Failed), "failed");
    EXPECT_STREQ(phaseWord(ServicePhase::GivenUp), "given up");
}

} // namespace
} // namespace dorn::tool
