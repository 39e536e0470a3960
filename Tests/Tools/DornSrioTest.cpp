// SPDX-License-Identifier: MIT
// `dorn srio`, `dorn board rio` and `dorn board reset` on the hardware of a board.
#include "DornCommand.hpp"

#include "NodeTest.hpp"
#include "RadWait.hpp"
#include "RpramShared.h"
#include "TestBoard.hpp"
#include "ddal_rio.h"
#include "device/Resets.hpp"
#include "rad/ERadHwapiState.h"
#include "text/Json.hpp"

#include <csignal>
#include <gtest/gtest.h>
#include <string>

namespace dorn::tool {
namespace {

const std::vector<std::string> transfer{"0x10", "0x80000000", "/ram/dsp.bin"};

CommandResult srio(const std::string& verb, const std::vector<std::string>& options = {})
{
    std::vector<std::string> arguments{"srio", verb};
    arguments.insert(arguments.end(), transfer.begin(), transfer.end());
    arguments.insert(arguments.end(), options.begin(), options.end());
    return dorn(arguments);
}

class DornSrioTest : public testkit::NodeTest {
protected:
    void writeFile(const std::string& content) const { m_node.writeBoardFile("/ram/dsp.bin", content); }

    testkit::TestBoard m_board;
};

TEST_F(DornSrioTest, FileIsLoadedAndVerified)
{
    writeFile(std::string(100'000, 'd'));

    EXPECT_EQ(srio("load"), (CommandResult{0, "", ""}));
    EXPECT_EQ(srio("verify"), (CommandResult{0, "", ""}));
    EXPECT_EQ(srio("load", {"--verify"}), (CommandResult{0, "", ""}));
}

TEST_F(DornSrioTest, DifferencesAreANo)
{
    writeFile("dat");
    EXPECT_EQ(srio("verify"),
              (CommandResult{1, "",
                             "dorn: device 0x10 differs from '/ram/dsp.bin' in 3 bytes of the first 64 KiB in which "
                             "they differ\n"}));
}

TEST_F(DornSrioTest, CorruptingDeviceIsSeen)
{
    writeFile("data");
    EXPECT_EQ(dorn({"board", "rio", "corrupt", "0x10"}), (CommandResult{0, "", ""}));

    EXPECT_EQ(srio("load", {"--verify"}),
              (CommandResult{1, "",
                             "dorn: device 0x10 differs from '/ram/dsp.bin' in 1 byte of the first 64 KiB in which "
                             "they differ\n"}));
    EXPECT_EQ(srio("load", {"--verify"}).status, 0);
}

TEST_F(DornSrioTest, FailingDeviceIsNamedInTheLibrarysWords)
{
    writeFile("data");
    m_board.fail("ddal_rio_copy_to_fd", DDAL_ERROR_TIMEOUT);
    EXPECT_EQ(srio("load"), (CommandResult{1, "",
                                           "dorn: Writing file '/ram/dsp.bin' to SRIO device 0x10 failed! current 0x0, "
                                           "total 0x4\n"}));
    m_board.fail("ddal_rio_copy_from_fd", DDAL_ERROR_TIMEOUT);
    EXPECT_EQ(srio("verify"), (CommandResult{1, "", "dorn: validateSrioWrite, [0x10] ddal_rio_copy_from() failed\n"}));
}

TEST_F(DornSrioTest, FilesThatCannotBeLoadedAreNamed)
{
    EXPECT_EQ(srio("load"), (CommandResult{1, "", "dorn: File '/ram/dsp.bin' open failed\n"}));
    writeFile("");
    EXPECT_EQ(srio("load"), (CommandResult{1, "", "dorn: '/ram/dsp.bin' is empty: nothing has been written\n"}));
}

TEST_F(DornSrioTest, WrongArgumentsAreWrongUse)
{
    EXPECT_EQ(dorn({"srio", "load", "0x10", "0", "dsp.bin"}),
              (CommandResult{2, "",
                             "dorn: FILE: 'dsp.bin' is no path on the board, which begins with '/'\n"
                             "Try 'dorn srio load --help'\n"}));
    EXPECT_EQ(dorn({"srio", "load", "0x10000", "0", "/f"}).status, 2);
    EXPECT_EQ(dorn({"srio", "verify", "0x10", "x", "/f"}).status, 2);
    EXPECT_EQ(dorn({"srio", "verify", "0x10", "0"}).status, 2);
}

// rio

TEST_F(DornSrioTest, NothingToldIsARemark)
{
    EXPECT_EQ(dorn({"board", "rio", "show"}),
              (CommandResult{0, "", "dorn: no RapidIO device has been told what goes wrong with it\n"}));
    EXPECT_EQ(dorn({"board", "rio", "show", "--json"}).answer, "[]\n");
}

TEST_F(DornSrioTest, WhatWasToldIsShownUntilHealed)
{
    EXPECT_EQ(dorn({"board", "rio", "corrupt", "0x10", "--copies", "3"}).status, 0);
    EXPECT_EQ(dorn({"board", "rio", "slow", "0x10", "5"}).status, 0);
    EXPECT_EQ(dorn({"board", "rio", "corrupt", "17", "--port", "1", "--always"}).status, 0);
    writeFile("data");
    srio("load");

    EXPECT_EQ(dorn({"board", "rio", "show"}).answer, "PORT  DEVICE  COPIES TO SPOIL  SPOILT  DELAY\n"
                                                     "0     0x10    2                1       5 ms\n"
                                                     "1     0x11    always           0       0 ms\n");
    const Json json = Json::parse(dorn({"board", "rio", "show", "--json"}).answer);
    EXPECT_EQ(json[0],
              (Json{{"port", 0}, {"device", 16}, {"corruptLeft", 2}, {"corrupted", 1}, {"delayMilliseconds", 5}}));
    EXPECT_EQ(json[1]["corruptLeft"], nullptr);

    EXPECT_EQ(dorn({"board", "rio", "heal", "0x10"}).status, 0);
    EXPECT_EQ(dorn({"board", "rio", "heal", "17", "--port", "1"}).status, 0);
    EXPECT_EQ(dorn({"board", "rio", "show"}).answer, "");
}

TEST_F(DornSrioTest, WrongFaultsAreWrongUse)
{
    EXPECT_EQ(dorn({"board", "rio", "corrupt"}).status, 2);
    EXPECT_EQ(dorn({"board", "rio", "corrupt", "0x10000"}).status, 2);
    EXPECT_EQ(dorn({"board", "rio", "corrupt", "1", "--copies", "2", "--always"}).status, 2);
    EXPECT_EQ(dorn({"board", "rio", "slow", "1"}).status, 2);
    EXPECT_EQ(dorn({"board", "rio", "slow", "1", "3600001"}).status, 2);
}

// reset

class DornBoardResetTest : public DornSrioTest {
protected:
    DornBoardResetTest()
    {
        EXPECT_TRUE(testkit::waitForRad(ERadHwapiState_ResetState, 2)) << m_service.standardError();
    }

    testkit::Process m_service{DORN_RESET_SERVICE};
};

TEST_F(DornBoardResetTest, BoardIsResetAndRemembersWhy)
{
    EXPECT_EQ(dorn({"board", "reset", "new software", "--reason", "9"}), (CommandResult{0, "", ""}));

    EXPECT_EQ(m_service.waitForEnd(), -SIGKILL);
    EXPECT_EQ(board::resetCount(), 1U);
    EXPECT_EQ(dorn({"rpram", "get", "ResetType"}).answer, "0x9 new software\n");
}

TEST_F(DornBoardResetTest, LongReasonIsCut)
{
    EXPECT_EQ(dorn({"board", "reset", std::string(500, 'w')}).status, 0);
    EXPECT_EQ(dorn({"rpram", "get", "ResetType"}).answer, "0x1 " + std::string(94, 'w') + "\n");
}

TEST_F(DornBoardResetTest, WatchdogThatFailsIsANo)
{
    m_board.fail("ddal_watchdog_reboot", DDAL_ERROR_IO);

    EXPECT_EQ(dorn({"board", "reset"}),
              (CommandResult{1, "",
                             "dorn: the board is not reset: it has no watchdog, or its storage cannot be "
                             "written\n"}));
    EXPECT_TRUE(m_service.isRunning());
}

TEST_F(DornBoardResetTest, AbsentAndHangingServicesAreNamed)
{
    m_service.signal(SIGSTOP);
    EXPECT_EQ(dorn({"board", "reset"}),
              (CommandResult{1, "",
                             "dorn: gave up: the reset service did not answer in time; a process that has been stopped "
                             "may hold what is needed\n"}));
    m_service.signal(SIGKILL);
    m_service.waitForEnd();
    EXPECT_EQ(dorn({"board", "reset"}),
              (CommandResult{1, "", "dorn: the reset service does not run on node 0x0F01; start DornResetSExe\n"}));
}

} // namespace
} // namespace dorn::tool
