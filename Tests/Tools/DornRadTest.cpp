// SPDX-License-Identifier: MIT
#include "DornCommand.hpp"

#include "NodeTest.hpp"
#include "Sanitizers.hpp"
#include "config/RadStore.hpp"
#include "init/ApiStartup.h"
#include "rad/ERadHwapi.h"

#include <csignal>
#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

/// A node with the domain "HWA", which this process has registered.
class DornRadTest : public testkit::NodeTest {
protected:
    DornRadTest()
    {
        EXPECT_EQ(AaConfigRadRegisterDomain(RAD_HWAPI_DOMAIN, "HWA", ApiStartupInitializeRadParameters), 0);
    }

    /// Moves a parameter that no test asks for until the command prints it.
    static bool isWatching(DornCommand& watch)
    {
        std::uint32_t value = 0;
        return watch.waitForOutputOf([&value] { AaConfigRadSetValue(ERadHwapi_dummy2, ++value); }, "dummy2");
    }

    /// The lines of an answer without those of the parameter above, and without times.
    static std::string linesOf(const DornCommand& watch)
    {
        std::istringstream answer(withoutTimes(watch.standardOutput()));
        std::string lines;
        for (std::string line; std::getline(answer, line);) {
            lines += line.find("dummy2") == std::string::npos ? line + "\n" : "";
        }
        return lines;
    }
};

TEST_F(DornRadTest, ParameterIsReadByNumberAndByName)
{
    AaConfigRadSetValue(ERadHwapi_PrintFirmware, 7);

    EXPECT_EQ(dorn({"rad", "get", "0x20054"}), (CommandResult{0, "7\n", ""}));
    EXPECT_EQ(dorn({"rad", "get", "131156"}), (CommandResult{0, "7\n", ""}));
    EXPECT_EQ(dorn({"rad", "get", "HWA/FIRM"}), (CommandResult{0, "7\n", ""}));
    EXPECT_EQ(dorn({"rad", "get", "FIRM"}), (CommandResult{0, "7\n", ""}));
    EXPECT_EQ(dorn({"rad", "get", "CTC_ADDR", "--hex"}), (CommandResult{0, "0xC0A8FF7E\n", ""}));
}

TEST_F(DornRadTest, NameOfTwoParametersNamesBoth)
{
    EXPECT_EQ(dorn({"rad", "get", "EAC"}),
              (CommandResult{1, "",
                             "dorn: 'EAC' is the name of 2 R&D parameters: 0x20038 (HWA) and 0x200B0 (HWA); give the "
                             "number of one\n"}));
}

TEST_F(DornRadTest, SetIsSeenByOtherProcessesAndToldWithWhatWasThere)
{
    EXPECT_EQ(dorn({"rad", "set", "HWA/FIRM", "0x10"}), (CommandResult{0, "HWA/FIRM 0x20054: 0 -> 16\n", ""}));

    EXPECT_EQ(AaConfigRadGetValue(ERadHwapi_PrintFirmware), 16U);
}

TEST_F(DornRadTest, SetCanBeToldAsJson)
{
    EXPECT_EQ(dorn({"rad", "set", "HWA/FIRM", "1", "--json"}), (CommandResult{0, R"({
  "id": 131156,
  "domain": "HWA",
  "name": "FIRM",
  "old": 0,
  "new": 1
}
)",
                                                                              ""}));
}

TEST_F(DornRadTest, ListShowsWhatIsNotTheDefault)
{
    AaConfigRadSetValue(ERadHwapi_PrintFirmware, 7);

    EXPECT_EQ(dorn({"rad", "list", "HWA", "--changed"}),
              (CommandResult{0,
                             "ID       DOMAIN  NAME  VALUE  DEFAULT\n"
                             "0x20054  HWA     FIRM  7      0        changed\n",
                             ""}));
    EXPECT_EQ(dorn({"rad", "list", "--changed", "--json"}), (CommandResult{0, R"([
  {
    "id": 131156,
    "domain": "HWA",
    "name": "FIRM",
    "value": 7,
    "default": 0,
    "changed": true
  }
]
)",
                                                                           ""}));
}

TEST_F(DornRadTest, NothingChangedIsANo)
{
    EXPECT_EQ(dorn({"rad", "list", "--changed"}),
              (CommandResult{1, "", "dorn: every R&D parameter has its default\n"}));
}

TEST_F(DornRadTest, ListShowsAllOfADomain)
{
    const CommandResult result = dorn({"rad", "list", "2"});

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(std::count(result.answer.begin(), result.answer.end(), '\n'), 1 + 205);
}

TEST_F(DornRadTest, WatchPrintsEachChange)
{
    if (test::hasThreadSanitizer) {
        GTEST_SKIP() << test::signalIsKeptBack;
    }
    DornCommand watch({"rad", "watch"});
    ASSERT_TRUE(isWatching(watch));

    dorn({"rad", "set", "HWA/FIRM", "1"});
    ASSERT_TRUE(watch.waitForOutput("0 -> 1\n"));
    dorn({"rad", "set", "HWA/LED", "5"});
    ASSERT_TRUE(watch.waitForOutput("0 -> 5\n"));
    watch.signal(SIGINT);

    EXPECT_EQ(watch.waitForEnd(), 0);
    EXPECT_EQ(linesOf(watch), "TIME HWA/FIRM 0x20054: 0 -> 1\nTIME HWA/LED 0x2002A: 0 -> 5\n");
    EXPECT_EQ(watch.standardError(), "");
}

TEST_F(DornRadTest, WatchOfOneParameterEndsWithItsCount)
{
    DornCommand watch({"rad", "watch", "HWA/dummy2", "--count", "1", "--json"});
    ASSERT_TRUE(isWatching(watch));

    EXPECT_EQ(watch.waitForEnd(), 0);
    const std::string answer = watch.standardOutput();
    EXPECT_EQ(withoutTimes(answer).find(R"({"time":"TIME","id":)" + std::to_string(ERadHwapi_dummy2) +
                                        R"(,"domain":"HWA","name":"dummy2","old":)"),
              0U);
    EXPECT_EQ(std::count(answer.begin(), answer.end(), '\n'), 1);
}

TEST_F(DornRadTest, WatchThatSeesTooLittleInItsTimeIsANo)
{
    EXPECT_EQ(dorn({"rad", "watch", "HWA/FIRM", "--count", "1", "--timeout", "0.05"}), (CommandResult{1, "", ""}));
    EXPECT_EQ(dorn({"rad", "watch", "HWA/FIRM", "--timeout", "0.05"}), (CommandResult{0, "", ""}));
}

TEST_F(DornRadTest, WatchEndsWithSigtermToo)
{
    if (test::hasThreadSanitizer) {
        GTEST_SKIP() << test::signalIsKeptBack;
    }
    DornCommand watch({"rad", "watch"});
    ASSERT_TRUE(isWatching(watch));

    watch.signal(SIGTERM);

    EXPECT_EQ(watch.waitForEnd(), 0);
}

} // namespace
} // namespace dorn::tool
