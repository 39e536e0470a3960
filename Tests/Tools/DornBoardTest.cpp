// SPDX-License-Identifier: MIT
// `dorn board sfp`, `link` and `clock` with their services as processes of their own.
#include "DornCommand.hpp"

#include "ClockMessages.hpp"
#include "LinkMessages.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "RadWait.hpp"
#include "SfpMessages.hpp"
#include "rad/ERadHwapiState.h"
#include "text/Json.hpp"

#include <chrono>
#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>

namespace dorn::tool {
namespace {

using namespace examples;

class DornBoardTest : public testkit::NodeTest {
protected:
    DornBoardTest(const char* service, ERadHwapiState state) : m_service(service)
    {
        if (!testkit::waitForRad(state, 2)) {
            throw std::runtime_error("the service does not start: " + m_service.standardError());
        }
    }

    /// Runs a command until its answer, JSON, is as it is to be. The hardware takes its time.
    static bool comesToShow(const std::vector<std::string>& command, const std::function<bool(const Json&)>& isMet)
    {
        const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
        while (std::chrono::steady_clock::now() < end) {
            const CommandResult result = dorn(command);
            if (result.status == 0 && isMet(Json::parse(result.answer))) {
                return true;
            }
        }
        return false;
    }
    void expectHangingServiceIsGivenUp(const std::vector<std::string>& command, const std::string& name)
    {
        m_service.signal(SIGSTOP);
        EXPECT_EQ(dorn(command), (CommandResult{1, "", "dorn: " + name + " on node 0x0F01 does not answer\n"}));
        m_service.signal(SIGCONT);
    }
    void killService()
    {
        m_service.signal(SIGKILL);
        m_service.waitForEnd();
    }

    testkit::Process m_service;
};

class DornBoardSfpTest : public DornBoardTest {
protected:
    DornBoardSfpTest() : DornBoardTest(DORN_SFP_SERVICE, ERadHwapiState_SfpServiceState) {}
};

TEST_F(DornBoardSfpTest, CagesAreShown)
{
    EXPECT_EQ(dorn({"board", "sfp", "show"}), (CommandResult{0,
                                                             "CAGE  LINK  MODULE  DETECTED  EVENTS\n"
                                                             "0     0     empty   no        0\n"
                                                             "1     1     empty   no        0\n"
                                                             "2     2     empty   no        0\n"
                                                             "3     -     empty   no        0\n",
                                                             ""}));
    EXPECT_EQ(dorn({"board", "sfp", "show", "--names"}), (CommandResult{0, "0\n1\n2\n3\n", ""}));
}

TEST_F(DornBoardSfpTest, ModuleIsPluggedAndPulled)
{
    const std::vector<std::string> show{"board", "sfp", "show", "--json"};

    EXPECT_EQ(dorn({"board", "sfp", "plug", "1"}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(comesToShow(show, [](const Json& cages) { return cages[1]["detected"] == true; }));
    EXPECT_EQ(dorn({"board", "sfp", "plug", "1"}), (CommandResult{1, "", "dorn: cage 1 has a module already\n"}));

    EXPECT_EQ(dorn({"board", "sfp", "pull", "1"}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(comesToShow(show, [](const Json& cages) { return cages[1]["events"] == 2; }));
    EXPECT_EQ(dorn({"board", "sfp", "pull", "1"}), (CommandResult{1, "", "dorn: cage 1 is empty already\n"}));
}

TEST_F(DornBoardSfpTest, CageThatIsNotThereIsANo)
{
    EXPECT_EQ(dorn({"board", "sfp", "plug", "4"}),
              (CommandResult{1, "", "dorn: the board has no cage 4; 'dorn board sfp show' lists those that it has\n"}));
}

TEST_F(DornBoardSfpTest, WrongUseIsExplained)
{
    EXPECT_EQ(dorn({"board", "sfp", "plug"}),
              (CommandResult{2, "", "dorn: 'dorn board sfp plug' needs CAGE\nTry 'dorn board sfp plug --help'\n"}));
    EXPECT_EQ(dorn({"board", "sfp", "plug", "one"}).status, 2);
    EXPECT_EQ(dorn({"board", "sfp", "show", "--names", "--json"}).status, 2);
    EXPECT_EQ(dorn({"board", "sfp", "push", "1"}).status, 2);
    EXPECT_EQ(
        dorn({"board", "sfp"}),
        (CommandResult{2, "", "dorn: 'dorn board sfp' needs a verb: plug, pull, show\nTry 'dorn board sfp --help'\n"}));
    EXPECT_EQ(dorn({"board"}).status, 2);
}

TEST_F(DornBoardSfpTest, ServiceThatHangsIsGivenUp)
{
    expectHangingServiceIsGivenUp({"board", "sfp", "show"}, "the SFP service");
}

TEST_F(DornBoardSfpTest, AbsentServiceIsNamed)
{
    killService();

    const CommandResult absent{1, "", "dorn: the SFP service does not run on node 0x0F01; start DornSfpSExe\n"};
    EXPECT_EQ(dorn({"board", "sfp", "show"}), absent);
    EXPECT_EQ(dorn({"board", "sfp", "pull", "0"}), absent);
}

TEST_F(DornBoardSfpTest, CutAnswerIsNotBelieved)
{
    killService();
    testkit::Peer impostor(sfpServiceCpid);
    DornCommand show({"board", "sfp", "show"});
    const auto request = impostor.expect<SfpShowReqMsg>();

    impostor.send<SfpShowRespMsg>(request.sender(), {request->transactionId, 4});

    EXPECT_EQ(show.result(), (CommandResult{1, "", "dorn: the answer is cut off: 0 of 4 records are there\n"}));
}

class DornBoardLinkTest : public DornBoardTest {
protected:
    DornBoardLinkTest() : DornBoardTest(DORN_LINK_SERVICE, ERadHwapiState_CpriState) {}

    /// Whether the link in this place comes to be in this state.
    static bool receives(std::size_t place, const std::string& state)
    {
        return comesToShow({"board", "link", "show", "--json"},
                           [&](const Json& links) { return links[place]["rx"] == state; });
    }
};

TEST_F(DornBoardLinkTest, LinksComeUpAndAreShown)
{
    EXPECT_TRUE(receives(0, "HFNSYNC"));
    EXPECT_TRUE(receives(3, "FRAME"));

    EXPECT_TRUE(dorn({"board", "link", "show"}).answer.starts_with("LINK    ID  RX       TX "));
    EXPECT_EQ(dorn({"board", "link", "show", "--names"}), (CommandResult{0, "cpri0\ncpri1\nobsai0\nobsai1\n", ""}));
}

TEST_F(DornBoardLinkTest, LinkIsBrokenAndRestored)
{
    ASSERT_TRUE(receives(0, "HFNSYNC"));

    EXPECT_EQ(dorn({"board", "link", "break", "cpri0"}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(receives(0, "XACQ1"));
    EXPECT_EQ(dorn({"board", "link", "break", "cpri0"}),
              (CommandResult{1, "", "dorn: link 'cpri0' is broken like this already\n"}));
    EXPECT_EQ(dorn({"board", "link", "restore", "cpri0"}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(receives(0, "HFNSYNC"));
    EXPECT_EQ(dorn({"board", "link", "restore", "cpri0"}),
              (CommandResult{1, "", "dorn: nothing of link 'cpri0' is broken\n"}));
}

TEST_F(DornBoardLinkTest, PartOfALinkIsBroken)
{
    ASSERT_TRUE(receives(1, "HFNSYNC"));

    EXPECT_EQ(dorn({"board", "link", "break", "cpri1", "--only", "transmit"}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(comesToShow({"board", "link", "show", "--json"}, [](const Json& links) {
        return links[1]["conditions"] == Json({"remote LOS", "remote LOF", "remote RAI"});
    }));
    EXPECT_EQ(dorn({"board", "link", "break", "cpri1", "--only", "framing"}).status, 0);
    EXPECT_TRUE(comesToShow({"board", "link", "show", "--json"}, [](const Json& links) {
        return links[1]["conditions"] == Json({"LOF"}) && links[1]["broken"] == Json({"framing"});
    }));
    EXPECT_EQ(dorn({"board", "link", "break", "obsai0", "--only", "receive"}).status, 0);
    EXPECT_TRUE(receives(2, "UNSYNC"));
}

TEST_F(DornBoardLinkTest, LinkThatIsNotThereIsANo)
{
    const CommandResult no{1, "",
                           "dorn: the board has no link 'cpri7'; 'dorn board link show' lists those that it has\n"};
    EXPECT_EQ(dorn({"board", "link", "break", "cpri7"}), no);
    EXPECT_EQ(dorn({"board", "link", "restore", "cpri7"}), no);
    EXPECT_EQ(dorn({"board", "link", "break", "a-name-of-any-length"}).status, 1);
}

TEST_F(DornBoardLinkTest, PartThatIsNoneIsWrongUse)
{
    EXPECT_EQ(dorn({"board", "link", "break", "cpri0", "--only", "both"}),
              (CommandResult{2, "",
                             "dorn: 'both' is no part of a link: give 'receive', 'transmit' or 'framing'\n"
                             "Try 'dorn board link break --help'\n"}));
    EXPECT_EQ(dorn({"board", "link", "break"}).status, 2);
    EXPECT_EQ(dorn({"board", "link", "restore"}).status, 2);
}

TEST_F(DornBoardLinkTest, ServiceThatHangsIsGivenUp)
{
    expectHangingServiceIsGivenUp({"board", "link", "break", "cpri0"}, "the link service");
}

TEST_F(DornBoardLinkTest, AbsentServiceIsNamed)
{
    killService();

    EXPECT_EQ(dorn({"board", "link", "show"}),
              (CommandResult{1, "", "dorn: the link service does not run on node 0x0F01; start DornLinkSExe\n"}));
}

TEST_F(DornBoardLinkTest, RefusalThatIsNotKnownIsANo)
{
    killService();
    testkit::Peer impostor(linkServiceCpid);
    DornCommand broken({"board", "link", "break", "cpri0"});
    const auto request = impostor.expect<LinkBreakReqMsg>();

    impostor.send<LinkBreakRespMsg>(request.sender(), {request->transactionId, ELinkBreakStatus_BadParts});

    EXPECT_EQ(broken.result(),
              (CommandResult{1, "", "dorn: the link service does not know how to break link 'cpri0' like this\n"}));
}

class DornBoardClockTest : public DornBoardTest {
protected:
    DornBoardClockTest() : DornBoardTest(DORN_CLOCK_SERVICE, ERadHwapiState_ClockOCXOOvenState) {}

    static bool shows(const std::function<bool(const Json&)>& isMet)
    {
        return comesToShow({"board", "clock", "show", "--json"}, isMet);
    }
};

TEST_F(DornBoardClockTest, ClocksAreShown)
{
    const CommandResult shown = dorn({"board", "clock", "show"});

    EXPECT_EQ(shown.status, 0);
    EXPECT_TRUE(shown.answer.starts_with("CLOCK            VALUE\nreference        present\nPLL              acquire"))
        << shown.answer;
    EXPECT_EQ(shown.remarks, "");
}

TEST_F(DornBoardClockTest, LostReferenceIsHeldOver)
{
    ASSERT_TRUE(shows([](const Json& clock) { return clock["pll"] == "track-max"; }));

    EXPECT_EQ(dorn({"board", "clock", "lose-reference"}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(shows([](const Json& clock) { return clock["pll"] == "holdover" && clock["reference"] == false; }));
    EXPECT_EQ(dorn({"board", "clock", "lose-reference"}),
              (CommandResult{1, "", "dorn: the reference is lost already\n"}));
    EXPECT_EQ(dorn({"board", "clock", "restore-reference"}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(shows([](const Json& clock) { return clock["pll"] != "holdover" && clock["reference"] == true; }));
    EXPECT_EQ(dorn({"board", "clock", "restore-reference"}), (CommandResult{1, "", "dorn: the reference is there\n"}));
}

TEST_F(DornBoardClockTest, SensorsAreLostAndRestored)
{
    EXPECT_EQ(dorn({"board", "clock", "restore-sensors"}), (CommandResult{1, "", "dorn: the sensors answer\n"}));
    EXPECT_EQ(dorn({"board", "clock", "lose-sensors"}), (CommandResult{0, "", ""}));
    EXPECT_EQ(dorn({"board", "clock", "lose-sensors"}), (CommandResult{1, "", "dorn: the sensors are lost already\n"}));
    EXPECT_TRUE(shows([](const Json& clock) { return clock["sensors"] == false; }));
    EXPECT_EQ(dorn({"board", "clock", "restore-sensors"}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(shows([](const Json& clock) { return clock["sensors"] == true; }));
}

TEST_F(DornBoardClockTest, FrequencyJumps)
{
    EXPECT_EQ(dorn({"board", "clock", "lose-reference"}).status, 0); // nobody corrects it
    ASSERT_TRUE(shows([](const Json& clock) { return clock["ovenTemperature"] > 84.9; }));

    EXPECT_EQ(dorn({"board", "clock", "jump", "500.5"}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(shows([](const Json& clock) { return clock["frequencyError"] > 500; }));
    EXPECT_EQ(dorn({"board", "clock", "jump", "-1000"}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(shows([](const Json& clock) { return clock["frequencyError"] < -400; }));
    EXPECT_EQ(dorn({"board", "clock", "jump", "+400"}), (CommandResult{0, "", ""}));
}

TEST_F(DornBoardClockTest, JumpThatIsNoneIsWrongUse)
{
    for (const char* const amount : {"1000.1", "-2000", "much", "1e2", "nan", "+-5", "5 "}) {
        EXPECT_EQ(dorn({"board", "clock", "jump", amount}),
                  (CommandResult{2, "",
                                 "dorn: PPB: '" + std::string(amount) +
                                     "' is not a number from -1000 to 1000, decimals allowed\n"
                                     "Try 'dorn board clock jump --help'\n"}));
    }
    EXPECT_EQ(dorn({"board", "clock", "jump"}).status, 2);
}

TEST_F(DornBoardClockTest, ServiceThatHangsIsGivenUp)
{
    expectHangingServiceIsGivenUp({"board", "clock", "lose-reference"}, "the clock service");
}

TEST_F(DornBoardClockTest, AbsentServiceIsNamed)
{
    killService();

    const CommandResult absent{1, "", "dorn: the clock service does not run on node 0x0F01; start DornClockSExe\n"};
    EXPECT_EQ(dorn({"board", "clock", "show"}), absent);
    EXPECT_EQ(dorn({"board", "clock", "jump", "1"}), absent);
}

TEST_F(DornBoardClockTest, RefusalIsANo)
{
    killService();
    testkit::Peer impostor(clockServiceCpid);
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"board", "clock", "lose-sensors"}, {"board", "clock", "jump", "1"}}) {
        DornCommand refused(command);
        const auto request = impostor.expect<ClockActReqMsg>();
        impostor.send<ClockActRespMsg>(request.sender(), {request->transactionId, EClockActStatus_NoSuchAction});

        EXPECT_EQ(refused.result(), (CommandResult{1, "", "dorn: the clock service refuses: status 2\n"}));
    }
}

} // namespace
} // namespace dorn::tool
