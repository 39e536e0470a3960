// SPDX-License-Identifier: MIT
#include "answers/RedundancyText.hpp"

#include "TestConsole.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

using namespace examples;
using namespace vel::hwapi::common;

/// ClimateS holds 0x0211.
const Names names{0x0F01, [](TAaSysComCpid cpid) -> std::string { return cpid == 0x0211 ? "ClimateS" : ""; },
                  [](std::int32_t) -> std::string { return ""; }};

const SRedundantService ready{0x0F010211, ERedundancyMode_All, ERedundancyCommand_CardState,
                              ERedundancyState_SelfActive};
const SRedundantService late{0x0F010212, ERedundancyMode_Switchover, ERedundancyCommand_TakeHwLatch,
                             ERedundancyState_Timeout};
const SRedundantService fresh{0x0F010213, ERedundancyMode_RealTime, 0, 0};
const SRedundantService strange{0x0F020211, 77, 88, 99};

TEST(RedundancyTextTest, ServicesAreATable)
{
    TestConsole console;

    EXPECT_EQ(redundancyText(EUnitRole_Active, {ready, late, fresh, strange}, names, console),
              "unit: active\n"
              "SERVICE          MODE        STATE        AFTER\n"
              "ClimateS 0x0211  all         self-active  card-state\n"
              "0x0212           switchover  timeout      take-hw-latch\n"
              "0x0213           real-time   -            -\n"
              "0x0F02:0x0211    77          99           88\n");
}

TEST(RedundancyTextTest, UnitWithoutServicesIsALine)
{
    TestConsole console;

    EXPECT_EQ(redundancyText(EUnitRole_Between, {}, names, console), "unit: between\n");
    EXPECT_EQ(redundancyText(7, {}, names, console), "unit: 7\n");
}

TEST(RedundancyTextTest, FailuresAreRed)
{
    TestConsole console(true);

    const std::string text = redundancyText(EUnitRole_Active, {ready, late}, names, console);

    EXPECT_NE(text.find(console.console().paint(Colour::Red, "timeout")), std::string::npos);
    EXPECT_NE(text.find(console.console().paint(Colour::Green, "self-active")), std::string::npos);
}

TEST(RedundancyTextTest, ServicesAreJson)
{
    EXPECT_EQ(redundancyJson(EUnitRole_Standby, {ready, fresh}, names).dump(),
              R"({"unit":"standby","services":[)"
              R"({"name":"ClimateS","node":3841,"cpid":529,"mode":"all","state":"self-active","command":"card-state"},)"
              R"({"name":"","node":3841,"cpid":531,"mode":"real-time","state":null,"command":null}]})");
}

TEST(RedundancyTextTest, FailureSaysWhoAndWhen)
{
    EXPECT_EQ(failureText(late, names), "0x0212 after take-hw-latch: timeout");
    EXPECT_EQ(failureText(fresh, names), "0x0213 after -: no state");
}

} // namespace
} // namespace dorn::tool
