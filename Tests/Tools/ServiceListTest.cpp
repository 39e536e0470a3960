// SPDX-License-Identifier: MIT
#include "answers/ServiceList.hpp"

#include "TestConsole.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

constexpr std::int64_t newYear = 1'735'689'600'000'000'000;
constexpr std::int64_t second = 1'000'000'000;
constexpr std::uint32_t stateId = 0x22000B;

host::EeInfo service(bool isAlive, std::vector<host::EeInfo::Published> published)
{
    return {"ClimateS", 4711, isAlive, 0x0211, newYear, std::move(published), {}};
}

host::EeInfo inState(std::uint32_t state, bool isAlive)
{
    return service(isAlive, {{stateId, state, newYear + second}});
}

/// The cell STATE of a service's row.
std::string shownState(const host::EeInfo& info)
{
    TestConsole console;
    const std::string table = servicesTable({info}, console);
    const std::size_t row = table.find("0x0211") + 8;
    return table.substr(row, table.find("  ", row) - row);
}

struct StateCase {
    std::uint32_t state;
    const char* alive;
    const char* gone;
};

class ServiceStateTest : public ::testing::TestWithParam<StateCase> {};

TEST_P(ServiceStateTest, LivingServiceIsShownWithNumberAndWord)
{
    EXPECT_EQ(shownState(inState(GetParam().state, true)), GetParam().alive);
}

TEST_P(ServiceStateTest, ServiceThatIsGoneIsToldFromALivingOne)
{
    EXPECT_EQ(shownState(inState(GetParam().state, false)), GetParam().gone);
}

INSTANTIATE_TEST_SUITE_P(States, ServiceStateTest,
                         ::testing::Values(StateCase{0, "0", "0 dead"},
                                           StateCase{1, "1 starting", "1 dead (was starting)"},
                                           StateCase{2, "2 waiting", "2 dead (was waiting)"},
                                           StateCase{3, "3 handling", "3 dead (was handling)"},
                                           StateCase{4, "4 ended", "4 ended"}, StateCase{5, "5 failed", "5 failed"},
                                           StateCase{6, "6", "6 dead"}, StateCase{4096, "4096", "4096 dead"}));

TEST(ServiceListTest, ServiceWithoutStateIsAliveOrDead)
{
    EXPECT_EQ(shownState(service(true, {})), "-");
    EXPECT_EQ(shownState(service(false, {})), "dead");
}

TEST(ServiceListTest, ServiceThatFailedStaysFailedWhenItsObjectHasEnded)
{
    host::EeInfo info = service(false, {{stateId, 4, newYear + second, 5}});
    EXPECT_EQ(shownState(info), "5 failed");
    EXPECT_EQ(jsonLine(servicesJson({info})),
              R"json([{"name":"ClimateS","pid":4711,"cpid":529,"alive":false,"state":5,"condition":"failed",)json"
              R"("started":"2025-01-01T00:00:00.000000Z","moved":"2025-01-01T00:00:01.000000Z",)"
              R"("published":[{"id":2228235,"value":4,"moved":"2025-01-01T00:00:01.000000Z"}],"cpids":[]}])");
    info.published[0].before = 2;
    EXPECT_EQ(shownState(info), "4 ended");
    info.published[0] = {stateId, 1, newYear, 5};
    EXPECT_EQ(shownState(info), "1 dead (was starting)");
}

TEST(ServiceListTest, CpidThatWasNotGrantedIsNotShown)
{
    TestConsole console;
    host::EeInfo info = inState(5, false);
    info.isGranted = false;

    EXPECT_EQ(servicesTable({info}, console),
              "SERVICE   PID   CPID  STATE     STARTED               STATE MOVED\n"
              "ClimateS  4711  -     5 failed  2025-01-01T00:00:00Z  2025-01-01T00:00:01Z\n");
    EXPECT_EQ(servicesJson({info})[0]["cpid"], nullptr);
}

TEST(ServiceListTest, StateIsTheFirstParameterOfItsDomain)
{
    const host::EeInfo info = service(true, {{0x20047, 1, newYear}, {0x220002, 2, newYear}, {0x220003, 5, newYear}});

    EXPECT_EQ(shownState(info), "2 waiting");
}

TEST(ServiceListTest, TableIsAlignedAndByName)
{
    TestConsole console;
    host::EeInfo led = inState(4, false);
    led.name = "Led";
    led.pid = 5;
    led.published[0].when = 0;
    host::EeInfo older = inState(2, false);
    older.since -= second;
    older.pid = 3;

    EXPECT_EQ(servicesTable({led, inState(2, true), older}, console),
              "SERVICE   PID   CPID    STATE                 STARTED               STATE MOVED\n"
              "ClimateS  3     0x0211  2 dead (was waiting)  2024-12-31T23:59:59Z  2025-01-01T00:00:01Z\n"
              "ClimateS  4711  0x0211  2 waiting             2025-01-01T00:00:00Z  2025-01-01T00:00:01Z\n"
              "Led       5     0x0211  4 ended               2025-01-01T00:00:00Z  -\n");
}

TEST(ServiceListTest, ColourTellsWellFromIll)
{
    TestConsole console(true);
    const auto hasColour = [&console](const host::EeInfo& info, const std::string& painted) {
        return servicesTable({info}, console).find(painted) != std::string::npos;
    };

    EXPECT_TRUE(hasColour(inState(2, true), "\033[32m2 waiting\033[0m"));
    EXPECT_TRUE(hasColour(inState(2, false), "\033[31m2 dead (was waiting)\033[0m"));
    EXPECT_TRUE(hasColour(inState(5, true), "\033[31m5 failed\033[0m"));
    EXPECT_TRUE(hasColour(inState(4, false), "\033[2m4 ended\033[0m"));
}

TEST(ServiceListTest, NameSaysNothingToTheTerminal)
{
    TestConsole console;
    host::EeInfo info = inState(2, true);
    info.name = "a\033[2Jb";

    EXPECT_EQ(servicesTable({info}, console).find('\033'), std::string::npos);
    EXPECT_EQ(serviceNames({info}), "a\\x1b[2Jb\n");
}

TEST(ServiceListTest, JsonTellsAll)
{
    host::EeInfo info = service(false, {{0x20047, 1, newYear}, {stateId, 2, newYear + second}});
    info.cpids = {{0x0211, "ClimateSMain"}};

    EXPECT_EQ(jsonLine(servicesJson({info})),
              R"json([{"name":"ClimateS","pid":4711,"cpid":529,"alive":false,"state":2,)json"
              R"json("condition":"dead (was waiting)",)json"
              R"("started":"2025-01-01T00:00:00.000000Z","moved":"2025-01-01T00:00:01.000000Z",)"
              R"("published":[{"id":131143,"value":1,"moved":"2025-01-01T00:00:00.000000Z"},)"
              R"({"id":2228235,"value":2,"moved":"2025-01-01T00:00:01.000000Z"}],)"
              R"("cpids":[{"cpid":529,"eu":"ClimateSMain"}]}])");
}

TEST(ServiceListTest, JsonOfAServiceWithoutStateHasNulls)
{
    EXPECT_EQ(jsonLine(servicesJson({service(true, {})})),
              R"([{"name":"ClimateS","pid":4711,"cpid":529,"alive":true,"state":null,"condition":"",)"
              R"("started":"2025-01-01T00:00:00.000000Z","moved":null,"published":[],"cpids":[]}])");
}

TEST(ServiceListTest, NamesAreListedOnce)
{
    host::EeInfo led = inState(2, true);
    led.name = "Led";

    EXPECT_EQ(serviceNames({led, inState(2, true), inState(2, false)}), "ClimateS\nLed\n");
}

} // namespace
} // namespace dorn::tool
