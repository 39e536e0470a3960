// SPDX-License-Identifier: MIT
#include "answers/ClockText.hpp"

#include "TestConsole.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

using namespace examples;

const SClockShowResp good{1, 6, 2, 0, 2, 1, 26814, 1, 120, 85000, 60000, 1, -8.25, 3.14159, 0.0625};
const SClockShowResp bad{1, 7, 0, 1, 0, 2, 9, 0, 0, 0, -500, 0, 0, -1234.5, -2.5};

TEST(ClockTextTest, ClocksAreATable)
{
    TestConsole console;

    EXPECT_EQ(clockTable(good, console), "CLOCK            VALUE\n"
                                         "reference        present\n"
                                         "PLL              track-max\n"
                                         "system timer     in-sync\n"
                                         "phase lock       ok\n"
                                         "phase error      -8.2 ns at the PLL's latest change\n"
                                         "time error       3.1 ns\n"
                                         "frequency error  0.062 ppb\n"
                                         "DAC              ok, 26814\n"
                                         "calibration      finished\n"
                                         "sensors          ok\n"
                                         "oven             85.0 C\n"
                                         "outer oven       60.0 C\n"
                                         "oven current     120 mA\n");
}

TEST(ClockTextTest, TroubleIsRed)
{
    TestConsole console(true);

    const std::string text = clockTable(bad, console);

    for (const char* const trouble : {"lost", "holdover", "out-of-sync", "exceed", "near-limit, 9", "not ok"}) {
        EXPECT_NE(text.find(console.console().paint(Colour::Red, trouble)), std::string::npos) << trouble;
    }
    EXPECT_NE(clockTable(good, console).find(console.console().paint(Colour::Green, "track-max")), std::string::npos);
}

TEST(ClockTextTest, ClocksAreJson)
{
    EXPECT_EQ(clockJson(good).dump(),
              R"({"reference":true,"pll":"track-max","timer":"in-sync","phaseLock":"ok","phaseError":-8.25,)"
              R"("timeError":3.14159,"frequencyError":0.0625,"dac":{"status":"ok","value":26814},)"
              R"("calibration":"finished","sensors":true,"ovenTemperature":85.0,"outerOvenTemperature":60.0,)"
              R"("ovenCurrent":120})");
}

TEST(ClockTextTest, WhatHasNoNameIsANumber)
{
    const SClockShowResp strange{1, 70, 71, 72, 73, 74, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    const Json json = clockJson(strange);

    EXPECT_EQ(json["pll"], "70");
    EXPECT_EQ(json["timer"], "71");
    EXPECT_EQ(json["phaseLock"], "72");
    EXPECT_EQ(json["calibration"], "73");
    EXPECT_EQ(json["dac"]["status"], "74");
}

} // namespace
} // namespace dorn::tool
