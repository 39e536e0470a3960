// SPDX-License-Identifier: MIT
#include "answers/ClockText.hpp"

#include "ClockNames.hpp"
#include "text/Table.hpp"
#include "text/Values.hpp"

#include <array>
#include <cstdio>

namespace dorn::tool {
namespace {

using namespace examples;

std::string decimal(double value, int digits, const char* unit)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f %s", digits, value, unit);
    return text.data();
}

std::string phaseLockText(const SClockShowResp& clock)
{
    return nameOrNumber(phaseLockStatusName(clock.phaseLockStatus), clock.phaseLockStatus);
}

std::string calibrationText(const SClockShowResp& clock)
{
    return nameOrNumber(nameIn(calibrationStatusNames, clock.calibrationStatus), clock.calibrationStatus);
}

std::string dacText(const SClockShowResp& clock)
{
    return nameOrNumber(nameIn(dacStatusNames, clock.dacStatus), clock.dacStatus);
}

double degrees(std::int32_t thousandths)
{
    return static_cast<double>(thousandths) / 1000;
}

Cell goodOrBad(bool isGood, const std::string& text)
{
    return {text, isGood ? Colour::Green : Colour::Red};
}

} // namespace

std::string clockPllText(const SClockShowResp& clock)
{
    return nameOrNumber(nameIn(swPllStateNames, clock.pllState), clock.pllState);
}

std::string clockTimerText(const SClockShowResp& clock)
{
    return nameOrNumber(nameIn(timerSyncStateNames, clock.timerState), clock.timerState);
}

std::string clockTable(const SClockShowResp& clock, const Console& console)
{
    const bool isTracking = clockPllText(clock).starts_with("track");
    Table table({"CLOCK", "VALUE"});
    table.add({"reference", goodOrBad(clock.hasReference != 0, clock.hasReference != 0 ? "present" : "lost")});
    table.add({"PLL", goodOrBad(isTracking, clockPllText(clock))});
    table.add({"system timer", goodOrBad(clockTimerText(clock) == "in-sync", clockTimerText(clock))});
    table.add({"phase lock", goodOrBad(phaseLockText(clock) == "ok", phaseLockText(clock))});
    table.add({"phase error", decimal(clock.phaseError, 1, "ns at the PLL's latest change")});
    table.add({"time error", decimal(clock.timeError, 1, "ns")});
    table.add({"frequency error", decimal(clock.frequencyError, 3, "ppb")});
    table.add({"DAC", goodOrBad(dacText(clock) == "ok", dacText(clock) + ", " + std::to_string(clock.controlValue))});
    table.add({"calibration", calibrationText(clock)});
    table.add({"sensors", goodOrBad(clock.areSensorsOk != 0, clock.areSensorsOk != 0 ? "ok" : "not ok")});
    table.add({"oven", decimal(degrees(clock.ocxoTemperature), 1, "C")});
    table.add({"outer oven", decimal(degrees(clock.outerTemperature), 1, "C")});
    table.add({"oven current", std::to_string(clock.ovenCurrent) + " mA"});
    return table.text(console);
}

Json clockJson(const SClockShowResp& clock)
{
    return {{"reference", clock.hasReference != 0},
            {"pll", clockPllText(clock)},
            {"timer", clockTimerText(clock)},
            {"phaseLock", phaseLockText(clock)},
            {"phaseError", clock.phaseError},
            {"timeError", clock.timeError},
            {"frequencyError", clock.frequencyError},
            {"dac", {{"status", dacText(clock)}, {"value", clock.controlValue}}},
            {"calibration", calibrationText(clock)},
            {"sensors", clock.areSensorsOk != 0},
            {"ovenTemperature", degrees(clock.ocxoTemperature)},
            {"outerOvenTemperature", degrees(clock.outerTemperature)},
            {"ovenCurrent", clock.ovenCurrent}};
}

} // namespace dorn::tool
