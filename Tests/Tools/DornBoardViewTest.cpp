// SPDX-License-Identifier: MIT
// `dorn board run` in a terminal.
#include "PseudoTerminal.hpp"
#include "RunningBoard.hpp"

#include "NodeTest.hpp"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

class DornBoardViewTest : public testkit::NodeTest {
protected:
    DornBoardViewTest()
    {
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
    }
    std::vector<std::string> arguments(const std::string& services)
    {
        return {"board", "run", boardFile(m_node, services)};
    }
    static void expectGivenBack(const PseudoTerminal& terminal)
    {
        EXPECT_TRUE(terminal.isOwnPageShown());
        EXPECT_TRUE(terminal.isCursorShown());
        EXPECT_TRUE(terminal.isCooked());
    }
};

TEST_F(DornBoardViewTest, BoardLivesInTheTerminalUntilQ)
{
    PseudoTerminal terminal(DORN_COMMAND, arguments(echoElement()), 24, 80);
    EXPECT_TRUE(terminal.comesToShow("Dorn board test  1 of 1 runs")) << terminal.text();
    EXPECT_TRUE(terminal.comesToShow("waiting")) << terminal.text();
    EXPECT_FALSE(terminal.isOwnPageShown());
    EXPECT_FALSE(terminal.isCooked());

    terminal.type("q");

    EXPECT_EQ(terminal.waitForEnd(), 0);
    EXPECT_TRUE(terminal.comesToShow("Dorn board test has ended, 1 of 1 well")) << terminal.text();
    expectGivenBack(terminal);
}

TEST_F(DornBoardViewTest, InterruptKeyEndsItAndPassesTheServicesBy)
{
    PseudoTerminal terminal(DORN_COMMAND, arguments(echoElement()), 24, 80);
    ASSERT_TRUE(terminal.comesToShow("1 of 1 runs"));
    terminal.type("\003");
    EXPECT_EQ(terminal.waitForEnd(), 0);
    EXPECT_TRUE(terminal.comesToShow("Dorn board test has ended, 1 of 1 well")) << terminal.text();
    expectGivenBack(terminal);
}

TEST_F(DornBoardViewTest, TerminationGivesTheTerminalBack)
{
    PseudoTerminal terminal(DORN_COMMAND, arguments(echoElement()), 24, 80);
    ASSERT_TRUE(terminal.comesToShow("1 of 1 runs"));
    kill(terminal.pid(), SIGTERM);
    EXPECT_EQ(terminal.waitForEnd(), 0);
    expectGivenBack(terminal);
}

TEST_F(DornBoardViewTest, EndIsShownAndAKeyHastensIt)
{
    const std::string deaf =
        scriptElement("Deaf", "trap '' TERM; echo ready; while :; do sleep 1; done", R"(<end within="100000"/>)");
    PseudoTerminal terminal(DORN_COMMAND, arguments(deaf), 60, 80);
    ASSERT_TRUE(terminal.comesToShow("says: ready")) << terminal.text();
    kill(terminal.pid(), SIGTERM);
    ASSERT_TRUE(terminal.comesToShow("Dorn board test  ending")) << terminal.text();
    EXPECT_TRUE(terminal.comesToShow("q once more kills")) << terminal.text();

    terminal.type("q");

    EXPECT_EQ(terminal.waitForEnd(), 1);
    EXPECT_TRUE(terminal.comesToShow("Deaf killed by signal 9 (Killed)")) << terminal.text();
    EXPECT_TRUE(terminal.comesToShow("Dorn board test has ended, 0 of 1 well")) << terminal.text();
    expectGivenBack(terminal);
}

TEST_F(DornBoardViewTest, TerminalIsGivenBackAfterSuddenDeathToo)
{
    PseudoTerminal terminal(DORN_COMMAND, arguments(echoElement()), 24, 80);
    ASSERT_TRUE(terminal.comesToShow("1 of 1 runs"));
    const pid_t echo = awaitWaiting("EchoS");
    kill(terminal.pid(), SIGKILL);
    EXPECT_EQ(terminal.waitForEnd(), 128 + SIGKILL);
    EXPECT_TRUE(terminal.comesToHide("EchoS"));
    EXPECT_TRUE(comesTrue([&terminal] { return terminal.isCooked(); }));
    expectGivenBack(terminal);
    EXPECT_TRUE(comesTrue([echo] { return hasEnded(echo); }));
}

TEST_F(DornBoardViewTest, KeyKillsAServiceAndItComesBack)
{
    PseudoTerminal terminal(DORN_COMMAND, arguments(echoElement()), 24, 80);
    ASSERT_TRUE(terminal.comesToShow("1 of 1 runs"));
    const pid_t first = awaitWaiting("EchoS");
    terminal.type("k");
    ASSERT_TRUE(terminal.comesToShow("a  EchoS")) << terminal.text();

    terminal.type("a");

    EXPECT_TRUE(terminal.comesToShow("killed by signal 9 (Killed); starts again in 10 ms")) << terminal.text();
    EXPECT_NE(awaitWaiting("EchoS", first), 0);
    EXPECT_TRUE(terminal.comesToShow("1 of 1 runs"));
}

TEST_F(DornBoardViewTest, EscapeLeavesAChoiceWithoutHarm)
{
    PseudoTerminal terminal(DORN_COMMAND, arguments(echoElement()), 24, 80);
    const pid_t first = awaitWaiting("EchoS");
    terminal.type("k");
    ASSERT_TRUE(terminal.comesToShow("Which service is to be killed?"));
    terminal.type("\033");
    EXPECT_TRUE(terminal.comesToHide("Which service is to be killed?"));
    EXPECT_EQ(waitingProcess("EchoS"), first);
}

TEST_F(DornBoardViewTest, HelpComesAndGoes)
{
    PseudoTerminal terminal(DORN_COMMAND, arguments(echoElement()), 24, 80);
    ASSERT_TRUE(terminal.comesToShow("1 of 1 runs"));
    terminal.type("h");
    EXPECT_TRUE(terminal.comesToShow("any key goes back"));
    terminal.type("x");
    EXPECT_TRUE(terminal.comesToHide("any key goes back"));
}

TEST_F(DornBoardViewTest, TerminalOfAnotherSizeIsDrawnAnew)
{
    PseudoTerminal terminal(DORN_COMMAND, arguments(echoElement()), 24, 80);
    ASSERT_TRUE(terminal.comesToShow("1 of 1 runs"));
    terminal.resize(40, 120);
    EXPECT_TRUE(terminal.comesToShow("q quit"));
    EXPECT_TRUE(terminal.comesToShow("1 of 1 runs"));
    const std::string text = terminal.text();
    EXPECT_EQ(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(text.find("q quit")), '\n'), 39);
}

TEST_F(DornBoardViewTest, StoppedServiceDoesNotFreezeThePicture)
{
    PseudoTerminal terminal(DORN_COMMAND, arguments(echoElement()), 24, 80);
    ASSERT_TRUE(terminal.comesToShow("1 of 1 runs"));
    kill(awaitWaiting("EchoS"), SIGSTOP);
    EXPECT_TRUE(terminal.comesToShow("stopped"));
    EXPECT_TRUE(terminal.comesToShow("0 of 1 run"));
    terminal.type("h");
    EXPECT_TRUE(terminal.comesToShow("any key goes back"));
    terminal.type("xq");
    EXPECT_EQ(terminal.waitForEnd(), 0);
}

TEST_F(DornBoardViewTest, TerminalThatTakesNothingDoesNotHoldUpTheSupervision)
{
    PseudoTerminal terminal(DORN_COMMAND, arguments(echoElement()), 200, 300);
    pid_t process = awaitWaiting("EchoS");
    for (int restart = 0; restart < 5; ++restart) { // each changes the picture, and nobody reads it
        ASSERT_NE(process, 0);
        kill(process, SIGKILL);
        process = awaitWaiting("EchoS", process);
    }
    EXPECT_NE(process, 0);
    terminal.type("q");
    EXPECT_EQ(terminal.waitForEnd(), 0);
    expectGivenBack(terminal);
}

TEST_F(DornBoardViewTest, DumbTerminalGetsLines)
{
    setenv("TERM", "dumb", 1);
    PseudoTerminal terminal(DORN_COMMAND, arguments(echoElement()), 24, 80);
    EXPECT_TRUE(terminal.comesToShow("EchoS: runs")) << terminal.text();
    EXPECT_TRUE(terminal.isOwnPageShown());
}

} // namespace
} // namespace dorn::tool
