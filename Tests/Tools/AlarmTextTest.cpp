// SPDX-License-Identifier: MIT
#include "answers/AlarmText.hpp"

#include "AaFault.h"
#include "TestConsole.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

using namespace examples;

constexpr std::uint64_t newYear = 1'735'689'600'000'000;
constexpr std::uint64_t second = 1'000'000;

/// ClimateS holds 0x0211.
const Names names{0x0F01, [](TAaSysComCpid cpid) -> std::string { return cpid == 0x0211 ? "ClimateS" : ""; },
                  [](std::int32_t) -> std::string { return ""; }};

SAlarm active()
{
    SAlarm alarm{};
    alarm.number = 3;
    alarm.state = EAlarmState_Active;
    alarm.faultId = EFaultId_BoardOverheated;
    alarm.boardNumber = 16;
    alarm.sender = 0x0F010211;
    alarm.count = 2;
    alarm.raised = newYear;
    alarm.reported = newYear + second;
    alarm.detailSize = 4;
    alarm.details[0] = 0x4B;
    return alarm;
}

SAlarm cleared()
{
    SAlarm alarm = active();
    alarm.number = 12;
    alarm.state = EAlarmState_Cleared;
    alarm.faultId = 4711;
    alarm.sender = 0x0F020211;
    alarm.ended = newYear + 2 * second;
    alarm.detailSize = 0;
    return alarm;
}

TEST(AlarmTextTest, AlarmsAreATable)
{
    TestConsole console;

    EXPECT_EQ(
        alarmsTable({active(), cleared()}, names, console),
        "ALARM  STATE    FAULT             BOARD  FROM             COUNT  RAISED                REPORTED              "
        "ENDED                 DETAILS\n"
        "3      active   board-overheated  16     ClimateS 0x0211  2      2025-01-01T00:00:00Z  "
        "2025-01-01T00:00:01Z  -                     4b000000\n"
        "12     cleared  fault 4711        16     0x0F02:0x0211    2      2025-01-01T00:00:00Z  "
        "2025-01-01T00:00:01Z  2025-01-01T00:00:02Z  -\n");
}

TEST(AlarmTextTest, ActiveAlarmIsRed)
{
    TestConsole console(true);

    EXPECT_NE(alarmsTable({active()}, names, console).find(console.console().paint(Colour::Red, "active")),
              std::string::npos);
}

TEST(AlarmTextTest, AlarmsAreJson)
{
    EXPECT_EQ(alarmsJson({active()}, names).dump(),
              R"([{"number":3,"state":"active","fault":1,"name":"board-overheated","board":16,)"
              R"("sender":{"name":"ClimateS","node":3841,"cpid":529},"count":2,)"
              R"("raised":"2025-01-01T00:00:00.000000Z","reported":"2025-01-01T00:00:01.000000Z","ended":null,)"
              R"("detailSize":4,"details":"4b000000"}])");
}

TEST(AlarmTextTest, DetailsThatWereCutAreCounted)
{
    SAlarmEventInd event{EAlarmEvent_Repeated, 0, active()};
    event.alarm.detailSize = 70;

    const std::string text = alarmEventText(event, names);

    EXPECT_TRUE(text.ends_with(" details 4b" + std::string(126, '0') + "... 6 more")) << text;
}

TEST(AlarmTextTest, EventIsALine)
{
    EXPECT_EQ(
        alarmEventText({EAlarmEvent_Raised, 0, active()}, names),
        "2025-01-01T00:00:01.000000Z raised 3 board-overheated board 16 ClimateS 0x0211 count 2 details 4b000000");
    EXPECT_EQ(alarmEventText({EAlarmEvent_Ended, 0, cleared()}, names),
              "2025-01-01T00:00:02.000000Z cleared 12 fault 4711 board 16 0x0F02:0x0211 count 2");
}

TEST(AlarmTextTest, EventIsJson)
{
    const Json json = alarmEventJson({EAlarmEvent_Ended, 0, cleared()}, names);

    EXPECT_EQ(json["time"], "2025-01-01T00:00:02.000000Z");
    EXPECT_EQ(json["event"], "ended");
    EXPECT_EQ(json["alarm"]["state"], "cleared");
    EXPECT_EQ(json["alarm"]["ended"], "2025-01-01T00:00:02.000000Z");
}

TEST(AlarmTextTest, NumbersThatMeanNothingAreShownAsTheyAre)
{
    SAlarmEventInd event{77, 0, active()};
    event.alarm.state = 88;
    event.alarm.reported = 0xFFFFFFFFFFFFFFFF;

    TestConsole console;
    EXPECT_NE(alarmsTable({event.alarm}, names, console).find("  88 "), std::string::npos);
    EXPECT_NE(alarmEventText(event, names).find("Z 77 3 "), std::string::npos);
}

} // namespace
} // namespace dorn::tool
