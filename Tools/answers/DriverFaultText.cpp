// SPDX-License-Identifier: MIT
#include "answers/DriverFaultText.hpp"

#include "ddal_error.h"
#include "driver/ResultText.hpp"
#include "text/Table.hpp"

namespace dorn::tool {
namespace {

bool isForAlways(const board::DriverFault& fault)
{
    return fault.left == board::FaultStore::always;
}

bool losesPower(const board::DriverFault& fault)
{
    return fault.code == board::FaultStore::powerLoss;
}

std::string meaningOf(const board::DriverFault& fault)
{
    return losesPower(fault) ? "the board loses its power" : board::resultText(fault.code);
}

/// "always", "2", "2 after 1"
std::string leftText(const board::DriverFault& fault)
{
    const std::string left = isForAlways(fault) ? "always" : std::to_string(fault.left);
    return fault.after == 0 ? left : left + " after " + std::to_string(fault.after);
}

std::string callsText(const board::DriverFault& fault)
{
    if (isForAlways(fault)) {
        return "every call fails";
    }
    return fault.left == 1 ? "the next call fails" : "the next " + std::to_string(fault.left) + " calls fail";
}

std::string afterText(const board::DriverFault& fault)
{
    return fault.after == 0
               ? ""
               : ", after " + std::to_string(fault.after) + (fault.after == 1 ? " that works" : " that work");
}

} // namespace

std::string driverFaultsTable(const std::vector<board::DriverFault>& faults, const Console& console)
{
    Table table({"FUNCTION", "CODE", "MEANING", "LEFT", "GIVEN"});
    for (const board::DriverFault& fault : faults) {
        table.add({std::string(fault.function.name()),
                   losesPower(fault) ? "-" : std::to_string(fault.code),
                   meaningOf(fault),
                   {leftText(fault), fault.left == 0 ? Colour::Faint : Colour::Red},
                   std::to_string(fault.given)});
    }
    return table.text(console);
}

std::string driverResultsTable(const Console& console)
{
    Table table({"CODE", "MEANING"});
    for (std::int32_t code = DDAL_OK + 1; code <= DDAL_ERROR_NOT_SUPPORTED; ++code) {
        table.add({std::to_string(code), board::resultText(code)});
    }
    return table.text(console);
}

std::string driverFaultText(const board::DriverFault& fault)
{
    const std::string name(fault.function.name());
    if (losesPower(fault)) {
        return name + ": in the next call the board loses its power" + afterText(fault);
    }
    return name + ": " + callsText(fault) + " with " + std::to_string(fault.code) + " (" + meaningOf(fault) + ")" +
           afterText(fault);
}

Json driverFaultJson(const board::DriverFault& fault)
{
    return {{"function", fault.function.name()},
            {"code", losesPower(fault) ? Json(nullptr) : Json(fault.code)},
            {"meaning", meaningOf(fault)},
            {"after", fault.after},
            {"left", isForAlways(fault) ? Json(nullptr) : Json(fault.left)},
            {"given", fault.given}};
}

} // namespace dorn::tool
