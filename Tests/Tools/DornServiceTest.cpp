// SPDX-License-Identifier: MIT
#include "DornCommand.hpp"

#include "NodeTest.hpp"
#include "Peer.hpp"

#include <csignal>
#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

/// `dorn service list`, with times and the service's process id replaced by words as long.
class DornServiceTest : public testkit::NodeTest {
protected:
    static std::string listed(const testkit::Process& service)
    {
        const CommandResult result = dorn({"service", "list"});
        EXPECT_EQ(result.status, 0) << result.remarks;
        EXPECT_EQ(result.remarks, "");
        return oneBlank(replaced(withoutTimes(result.answer), std::to_string(service.pid()), "PID"));
    }

    /// Columns are as wide as a process id happens to be.
    static std::string oneBlank(std::string text)
    {
        for (std::size_t at = text.find("  "); at != std::string::npos; at = text.find("  ")) {
            text.erase(at, 1);
        }
        return text;
    }
};

constexpr const char* heading = "SERVICE PID CPID STATE STARTED STATE MOVED\n";

TEST_F(DornServiceTest, LivingServiceIsListed)
{
    const EchoService echo;

    EXPECT_EQ(listed(echo), heading + std::string("EchoS PID 0x0300 2 waiting TIME TIME\n"));
}

TEST_F(DornServiceTest, KilledServiceIsDead)
{
    EchoService echo;
    echo.signal(SIGKILL);
    ASSERT_EQ(echo.waitForEnd(), -SIGKILL);

    EXPECT_EQ(listed(echo), heading + std::string("EchoS PID 0x0300 2 dead (was waiting) TIME TIME\n"));
}

TEST_F(DornServiceTest, ServiceThatWasAskedToEndHasEnded)
{
    EchoService echo;
    echo.signal(SIGTERM);
    ASSERT_EQ(echo.waitForEnd(), 0);

    EXPECT_EQ(listed(echo), heading + std::string("EchoS PID 0x0300 4 ended TIME TIME\n"));
}

TEST_F(DornServiceTest, ServiceThatFailedHasFailed)
{
    EchoService echo;
    ASSERT_EQ(dorn({"msg", "send", "EchoS", "--id", "0x3003", "--payload", "0000000000000000"}),
              (CommandResult{0, "", ""}));
    ASSERT_EQ(echo.waitForEnd(), 1);

    EXPECT_EQ(listed(echo), heading + std::string("EchoS PID 0x0300 5 failed TIME TIME\n"));
    EXPECT_EQ(dorn({"rad", "get", "HWAState/BasebandState"}), (CommandResult{0, "4\n", ""}));
}

TEST_F(DornServiceTest, ServiceThatWasRefusedItsCpidHasNoneAndHasFailed)
{
    const EchoService echo;
    testkit::Process second(DORN_ECHO_SERVICE);
    ASSERT_EQ(second.waitForEnd(), 1);

    EXPECT_EQ(replaced(listed(echo), std::to_string(second.pid()), "OTHER"),
              heading + std::string("EchoS PID 0x0300 2 waiting TIME TIME\n"
                                    "EchoS OTHER - 5 failed TIME TIME\n"));
}

TEST_F(DornServiceTest, OneServiceCanBeAskedFor)
{
    const EchoService echo;

    EXPECT_EQ(dorn({"service", "list", "EchoS", "--names"}), (CommandResult{0, "EchoS\n", ""}));
    EXPECT_EQ(dorn({"service", "list", "Other"}),
              (CommandResult{1, "",
                             "dorn: no service 'Other' has run on node 0x0F01; 'dorn service list' shows all that "
                             "have\n"}));
    EXPECT_EQ(dorn({"service", "list", "Other", "--json"}).answer, "[]\n");
}

TEST_F(DornServiceTest, JsonTellsAllThatIsKnown)
{
    const EchoService echo;
    const CommandResult result = dorn({"service", "list", "--json"});

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(replaced(withoutTimes(result.answer), std::to_string(echo.pid()), "PID"), R"json([
  {
    "name": "EchoS",
    "pid": PID,
    "cpid": 768,
    "alive": true,
    "state": 2,
    "condition": "waiting",
    "started": "TIME",
    "moved": "TIME",
    "published": [
      {
        "id": 2228259,
        "value": 2,
        "moved": "TIME"
      }
    ],
    "cpids": [
      {
        "cpid": 768,
        "eu": "EchoSMain"
      }
    ]
  }
]
)json");
}

} // namespace
} // namespace dorn::tool
