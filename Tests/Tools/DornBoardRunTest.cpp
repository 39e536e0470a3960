// SPDX-License-Identifier: MIT
// `dorn board run` with services as processes.
#include "RunningBoard.hpp"

#include "NodeTest.hpp"
#include "text/Json.hpp"

#include <csignal>
#include <gtest/gtest.h>
#include <set>

namespace dorn::tool {
namespace {

class DornBoardRunTest : public testkit::NodeTest {
protected:
    CommandResult runOnce(const std::string& services, std::vector<std::string> more = {})
    {
        std::vector<std::string> arguments{"board", "run", boardFile(m_node, services), "--once"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return dorn(arguments);
    }
    std::vector<std::string> runArguments(const std::string& services)
    {
        return {"board", "run", boardFile(m_node, services)};
    }
};

TEST_F(DornBoardRunTest, OnceShowsThatAllRunAndEndsThem)
{
    const CommandResult result = runOnce(echoElement());

    EXPECT_EQ(result.status, 0) << result.remarks;
    EXPECT_EQ(result.answer.find("SERVICE"), 0U) << result.answer;
    EXPECT_NE(result.answer.find("EchoS"), std::string::npos);
    EXPECT_NE(result.answer.find("waiting"), std::string::npos);
    EXPECT_EQ(result.remarks, "");
    EXPECT_EQ(waitingProcess("EchoS"), std::nullopt);
}

TEST_F(DornBoardRunTest, OnceAnswersInJson)
{
    const CommandResult result = runOnce(echoElement(), {"--json"});

    const Json services = Json::parse(result.answer);
    ASSERT_EQ(services.size(), 1U);
    EXPECT_EQ(services[0]["name"], "EchoS");
    EXPECT_EQ(services[0]["phase"], "running");
    EXPECT_EQ(services[0]["state"], 2);
    EXPECT_EQ(services[0]["restarts"], 0);
    EXPECT_TRUE(services[0]["lastStatus"].is_null());
}

TEST_F(DornBoardRunTest, OnceSaysThatOneDoesNotRun)
{
    const CommandResult result =
        runOnce(echoElement() + scriptElement("Frail", "exit 7", R"(<restart when="never"/>)") +
                scriptElement("Late", "exec sleep 1000", R"(<end within="5"/>)"));

    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.answer.find("failed 7"), std::string::npos) << result.answer;
    EXPECT_NE(result.remarks.find("dorn: Frail: ended with status 7\n"), std::string::npos) << result.remarks;
    EXPECT_NE(result.remarks.find("dorn: not every service runs\n"), std::string::npos) << result.remarks;
}

TEST_F(DornBoardRunTest, OnceTellsWhatAServiceThatFailedSaidLast)
{
    const CommandResult result =
        runOnce(scriptElement("Frail", "echo on the way; echo no table; exit 7", R"(<restart when="never"/>)") +
                "<service name=\"Never\" program=\"/bin/sleep\"><argument>1000</argument></service>\n");

    EXPECT_NE(result.remarks.find("dorn: Frail: says: no table\ndorn: Frail: ended with status 7\n"), std::string::npos)
        << result.remarks;
    EXPECT_EQ(result.remarks.find("on the way"), std::string::npos) << result.remarks;
}

TEST_F(DornBoardRunTest, OnceGivesUpAfterItsTime)
{
    const std::string never = "<service name=\"Never\" program=\"/bin/sleep\"><argument>1000</argument></service>\n";

    const CommandResult result = runOnce(never, {"--timeout", "0.2"});

    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.answer.find("starting"), std::string::npos) << result.answer;
}

TEST_F(DornBoardRunTest, BadDescriptionIsExplainedAndNothingStarted)
{
    const std::string path = boardFile(m_node, echoElement() + "<service/>\n");

    const CommandResult result = dorn({"board", "run", path});

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.answer, "");
    EXPECT_EQ(result.remarks.find("dorn: " + path + ":3: <service> needs the attribute 'name'\n"), 0U)
        << result.remarks;
}

TEST_F(DornBoardRunTest, ServiceThatIsKilledStartsAgain)
{
    DornCommand command(runArguments(echoElement()));
    const pid_t first = awaitWaiting("EchoS");
    ASSERT_NE(first, 0);
    ASSERT_TRUE(command.waitForOutput("EchoS: runs"));

    kill(first, SIGKILL);

    EXPECT_NE(awaitWaiting("EchoS", first), 0);
    EXPECT_TRUE(command.waitForOutput("EchoS: killed by signal 9 (Killed); starts again in 10 ms"));
    command.signal(SIGTERM);
    const CommandResult result = command.result();
    EXPECT_EQ(result.status, 0) << result.remarks;
    EXPECT_NE(result.answer.find("EchoS: ended with status 0"), std::string::npos) << result.answer;
}

TEST_F(DornBoardRunTest, EventsAreLinesOnAPipe)
{
    DornCommand command(runArguments(scriptElement("Talker", "echo hello; exec sleep 1000", R"(<end status="0"/>)")));
    ASSERT_TRUE(command.waitForOutput("Talker: says: hello"));
    command.signal(SIGTERM);
    const std::string text = withoutTimes(command.result().answer);
    EXPECT_EQ(text.find("TIME Talker: started, pid "), 0U) << text;
    EXPECT_NE(text.find("\nTIME Talker: runs\n"), std::string::npos) << text;
    EXPECT_EQ(text.find('\033'), std::string::npos);
}

TEST_F(DornBoardRunTest, WhatDoesNotEndIsKilledAndItIsSaid)
{
    DornCommand command(runArguments(
        scriptElement("Deaf", "trap '' TERM; echo ready; while :; do sleep 1; done", R"(<end within="0.2"/>)")));
    ASSERT_TRUE(command.waitForOutput("Deaf: says: ready"));
    command.signal(SIGTERM);
    const CommandResult result = command.result();
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.answer.find("Deaf: has not ended within 200 ms: killed"), std::string::npos) << result.answer;
}

TEST_F(DornBoardRunTest, EndsWhenNothingRunsAnyMore)
{
    const CommandResult result = dorn(runArguments(scriptElement("Short", "exit 0", R"(<end status="0"/>)")));
    EXPECT_EQ(result.status, 0) << result.answer << result.remarks;
}

TEST_F(DornBoardRunTest, SecondForTheSameNodeIsRefused)
{
    DornCommand first(runArguments(echoElement()));
    ASSERT_NE(awaitWaiting("EchoS"), 0);

    const CommandResult second = dorn(runArguments(echoElement()));

    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.answer, "");
    EXPECT_NE(second.remarks.find("run already, by process " + std::to_string(first.pid())), std::string::npos)
        << second.remarks;
    first.signal(SIGTERM);
    EXPECT_EQ(first.waitForEnd(), 0);
}

TEST_F(DornBoardRunTest, SecondForTheSameNodeLeavesTheFilesOfTheFirstAlone)
{
    m_node.writeBoardFile("/delivered/greeting", "hello");
    m_node.writeBoardFile("/board.xml", "<board name=\"test\" files=\"delivered\">\n" + echoElement() + "</board>\n");
    const std::vector<std::string> arguments{"board", "run", m_node.boardPath("/board.xml")};
    DornCommand first(arguments);
    ASSERT_NE(awaitWaiting("EchoS"), 0);
    EXPECT_EQ(m_node.readBoardFile("/greeting"), "hello");
    m_node.writeBoardFile("/greeting", "changed while it ran");

    EXPECT_EQ(dorn(arguments).status, 1);

    EXPECT_EQ(m_node.readBoardFile("/greeting"), "changed while it ran");
    first.signal(SIGTERM);
    EXPECT_EQ(first.waitForEnd(), 0);
}

TEST_F(DornBoardRunTest, ServicesDoNotSurviveTheSupervisorAndTheNextOneSaysSo)
{
    DornCommand first(runArguments(echoElement()));
    const pid_t echo = awaitWaiting("EchoS");
    ASSERT_NE(echo, 0);

    first.signal(SIGKILL);

    EXPECT_TRUE(comesTrue([echo] { return hasEnded(echo); }));
    first.waitForEnd();
    DornCommand next(runArguments(echoElement()));
    EXPECT_TRUE(next.waitForOutput("board: process " + std::to_string(first.pid()) +
                                   ", which ran it before, died without ending it"));
    EXPECT_TRUE(next.waitForOutput("EchoS: runs"));
    next.signal(SIGTERM);
    EXPECT_EQ(next.waitForEnd(), 0);
}

TEST_F(DornBoardRunTest, StoppedServiceShowsAsSuchAndStillEndsWell)
{
    DornCommand command(runArguments(echoElement()));
    const pid_t echo = awaitWaiting("EchoS");
    ASSERT_NE(echo, 0);
    kill(echo, SIGSTOP);
    EXPECT_TRUE(command.waitForOutput("EchoS: has been stopped by a signal", std::chrono::seconds(2)));
    command.signal(SIGTERM);
    EXPECT_EQ(command.waitForEnd(), 0);
}

TEST_F(DornBoardRunTest, ResetOfTheBoardStartsItsServicesAgain)
{
    setenv("DORN_BOARD", DORN_TARN_SINGLE, 1);
    const std::string reset = std::string("<service name=\"ResetS\" program=\"") + DORN_RESET_SERVICE + "\"/>\n";
    DornCommand command(runArguments(reset + echoElement()));
    const pid_t echo = awaitWaiting("EchoS");
    ASSERT_NE(awaitWaiting("ResetS"), 0);

    EXPECT_EQ(dorn({"board", "reset", "to see it"}).status, 0);

    EXPECT_NE(awaitWaiting("EchoS", echo), 0);
    EXPECT_TRUE(command.waitForOutput("board: reset; all services start again"));
    ASSERT_NE(awaitWaiting("ResetS"), 0);
    command.signal(SIGTERM);
    EXPECT_EQ(command.waitForEnd(), 0) << command.standardOutput();
    unsetenv("DORN_BOARD");
}

TEST_F(DornBoardRunTest, DemonstrationBoardRuns)
{
    const CommandResult result = dorn({"board", "run", DORN_DEMONSTRATION, "--once", "--json"});

    EXPECT_EQ(result.status, 0) << result.answer << result.remarks;
    std::set<std::string> names;
    for (const Json& service : Json::parse(result.answer)) {
        EXPECT_EQ(service["phase"], "running") << service["name"];
        names.insert(service["name"]);
    }
    EXPECT_EQ(names.size(), 15U);
    EXPECT_TRUE(names.contains("ClimateS"));
}

} // namespace
} // namespace dorn::tool
