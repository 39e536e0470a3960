// SPDX-License-Identifier: MIT
// `dorn alarm` with the fault manager as a process of its own.
#include "DornCommand.hpp"

#include "AaFault.h"
#include "AlarmMessages.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"

#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <thread>

namespace dorn::tool {
namespace {

using namespace examples;

class DornAlarmTest : public testkit::NodeTest {
protected:
    DornAlarmTest() { startManager(); }

    void startManager()
    {
        m_manager = std::make_unique<testkit::Process>(DORN_FAULT_MANAGER);
        const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
        while (!answers()) {
            if (!m_manager->isRunning() || std::chrono::steady_clock::now() > end) {
                throw std::runtime_error("the fault manager does not start: " + m_manager->standardError());
            }
            std::this_thread::yield();
        }
    }
    bool answers()
    {
        try {
            m_service.send<AlarmListReqMsg>(faultManagerCpid, {1});
        } catch (const std::runtime_error&) {
            return false; // it does not have its cpid yet
        }
        m_service.expect<AlarmListRespMsg>();
        return true;
    }
    void killManager()
    {
        m_manager->signal(SIGKILL);
        m_manager->waitForEnd();
    }
    /// Reports a fault as a service does, and waits until the manager has taken it: no order is promised between what
    /// this and the command send.
    void report(std::uint32_t faultId)
    {
        struct {
            vel::hwapi::common::SHwapiFaultInd head;
            std::uint32_t details[2];
        } fault{{faultId, 16, 4}, {0x4B, 0}};
        m_service.send(FaultIndMsg::ID, faultManagerCpid, std::as_bytes(std::span(&fault, 1)));
        EXPECT_TRUE(answers());
    }

    std::unique_ptr<testkit::Process> m_manager;
    testkit::Peer m_service{0x0301};
};

TEST_F(DornAlarmTest, NoAlarmsAreARemark)
{
    EXPECT_EQ(dorn({"alarm", "list"}), (CommandResult{0, "", "dorn: no alarms on node 0x0F01\n"}));
    EXPECT_EQ(dorn({"alarm", "list", "--past"}), (CommandResult{0, "", "dorn: no such alarms on node 0x0F01\n"}));
    EXPECT_EQ(dorn({"alarm", "list", "--json"}), (CommandResult{0, "[]\n", ""}));
}

TEST_F(DornAlarmTest, AlarmIsListedAndCleared)
{
    report(EFaultId_BoardOverheated);

    const CommandResult listed = dorn({"alarm", "list"});
    EXPECT_EQ(listed.status, 0);
    EXPECT_NE(
        withoutTimes(listed.answer).find("1      active  board-overheated  16     0x0301  1      TIME  TIME  -  "),
        std::string::npos)
        << listed.answer;
    EXPECT_EQ(dorn({"alarm", "list", "--past"}).answer, "");
    EXPECT_EQ(dorn({"alarm", "clear", "1"}), (CommandResult{0, "", ""}));
    EXPECT_EQ(dorn({"alarm", "list", "--active"}).answer, "");
    EXPECT_NE(dorn({"alarm", "list", "--past"}).answer.find("1      cleared  board-overheated"), std::string::npos);
}

TEST_F(DornAlarmTest, AllAlarmsAreCleared)
{
    report(EFaultId_BoardOverheated);
    report(EFaultId_FanFailure);

    EXPECT_EQ(dorn({"alarm", "clear", "--all"}), (CommandResult{0, "", ""}));
    EXPECT_EQ(dorn({"alarm", "list", "--active", "--json"}).answer, "[]\n");
    EXPECT_EQ(dorn({"alarm", "clear", "--all"}), (CommandResult{0, "", ""}));
}

TEST_F(DornAlarmTest, AlarmThatIsNotActiveIsANo)
{
    EXPECT_EQ(dorn({"alarm", "clear", "5"}),
              (CommandResult{1, "", "dorn: no alarm 5 is active; 'dorn alarm list' shows those that are\n"}));
}

TEST_F(DornAlarmTest, ClearNeedsToKnowWhat)
{
    EXPECT_EQ(dorn({"alarm", "clear"}),
              (CommandResult{2, "", "dorn: give the number of an alarm, or --all\nTry 'dorn alarm clear --help'\n"}));
    EXPECT_EQ(dorn({"alarm", "clear", "0"}),
              (CommandResult{2, "", "dorn: no alarm has the number 0\nTry 'dorn alarm clear --help'\n"}));
    EXPECT_EQ(dorn({"alarm", "clear", "x"}).status, 2);
    EXPECT_EQ(dorn({"alarm", "clear", "1", "--all"}).status, 2);
}

TEST_F(DornAlarmTest, AbsentManagerIsNamed)
{
    killManager();
    const CommandResult absent{1, "",
                               "dorn: the fault manager does not run on node 0x0F01; start DornFaultManagerExe\n"};

    EXPECT_EQ(dorn({"alarm", "list"}), absent);
    EXPECT_EQ(dorn({"alarm", "clear", "--all"}), absent);
    EXPECT_EQ(dorn({"alarm", "watch"}), absent);
}

TEST_F(DornAlarmTest, ManagerThatHangsIsGivenUp)
{
    m_manager->signal(SIGSTOP);

    EXPECT_EQ(dorn({"alarm", "list"}),
              (CommandResult{1, "", "dorn: the fault manager on node 0x0F01 does not answer\n"}));

    m_manager->signal(SIGCONT);
}

TEST_F(DornAlarmTest, NodeOnWhichNothingRunsIsNamed)
{
    const testkit::TestNode empty;

    EXPECT_EQ(dorn({"alarm", "list"}).status, 1);
    EXPECT_EQ(dorn({"alarm", "watch"}).status, 1);
}

TEST_F(DornAlarmTest, WatchPrintsWhatHappens)
{
    DornCommand watch({"alarm", "watch"});
    ASSERT_TRUE(watch.waitForOutputOf([this] { report(EFaultId_FanFailure); }, "fan-failure"));
    const std::string line = withoutTimes(watch.standardOutput());
    EXPECT_NE(line.find(" 1 fan-failure board 16 0x0301 count "), std::string::npos) << line;

    EXPECT_EQ(dorn({"alarm", "clear", "1"}).status, 0);

    EXPECT_TRUE(watch.waitForOutput(" cleared 1 fan-failure board 16 0x0301 count "));
    watch.signal(SIGINT);
    EXPECT_EQ(watch.waitForEnd(), 0);
    EXPECT_EQ(watch.standardError(), "");
}

TEST_F(DornAlarmTest, WatchCanBeToldAsJson)
{
    DornCommand watch({"alarm", "watch", "--count", "1", "--json"});
    ASSERT_TRUE(watch.waitForOutputOf([this] { report(EFaultId_FanFailure); }, "\"event\":"));

    EXPECT_EQ(watch.waitForEnd(), 0);
}

TEST_F(DornAlarmTest, WatchThatSeesTooLittleInItsTimeIsANo)
{
    EXPECT_EQ(dorn({"alarm", "watch", "--count", "1", "--timeout", "0.05"}), (CommandResult{1, "", ""}));
}

TEST_F(DornAlarmTest, WatchOutlivesTheManager)
{
    DornCommand watch({"alarm", "watch"});
    ASSERT_TRUE(watch.waitForOutputOf([this] { report(EFaultId_FanFailure); }, "fan-failure"));
    killManager();
    const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
    while (watch.standardError().empty() && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
    }
    startManager();

    EXPECT_TRUE(watch.waitForOutputOf([this] { report(EFaultId_DspFailure); }, "dsp-failure"));
    EXPECT_EQ(watch.standardError(), "dorn: the fault manager has gone; waiting for it\n"
                                     "dorn: the fault manager is back\n");
}

TEST_F(DornAlarmTest, WatchThatWasKilledIsForgotten)
{
    for (int watches = 0; watches < 9; ++watches) { // one more than the manager tells
        DornCommand watch({"alarm", "watch"});
        ASSERT_TRUE(watch.waitForOutputOf([this] { report(EFaultId_FanFailure); }, "fan-failure")) << watches;
        watch.signal(SIGKILL);
        watch.waitForEnd();
    }
}

TEST_F(DornAlarmTest, CutAnswerIsNotBelieved)
{
    killManager();
    testkit::Peer impostor(faultManagerCpid);
    DornCommand list({"alarm", "list"});
    const auto request = impostor.expect<AlarmListReqMsg>();

    impostor.send(0x9999, request.sender(), "something else");
    impostor.send<AlarmListRespMsg>(request.sender(), {request->transactionId + 1, 0, 0, 0});
    impostor.send<AlarmListRespMsg>(request.sender(), {request->transactionId, 0xFFFFFFFF, 3, 0});

    const CommandResult result = list.result();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.remarks.starts_with("dorn: the answer is cut off: 0 of ")) << result.remarks;
}

} // namespace
} // namespace dorn::tool
