// SPDX-License-Identifier: MIT
#include "FaultText.hpp"

#include "Table.hpp"
#include "ddal_error.h"
#include "driver/ResultText.hpp"

namespace dorn::tool {
namespace {

bool isForAlways(const board::DriverFault& fault)
{
    return fault.left == board::FaultStore::always;
}

std::string leftText(const board::DriverFault& fault)
{
    return isForAlways(fault) ? "always" : std::to_string(fault.left);
}

std::string callsText(const board::DriverFault& fault)
{
    if (isForAlways(fault)) {
        return "every call fails";
    }
    return fault.left == 1 ? "the next call fails" : "the next " + std::to_string(fault.left) + " calls fail";
}

} // namespace

std::string faultsTable(const std::vector<board::DriverFault>& faults, const Console& console)
{
    Table table({"FUNCTION", "CODE", "MEANING", "LEFT", "GIVEN"});
    for (const board::DriverFault& fault : faults) {
        table.add({std::string(fault.function.name()),
                   std::to_string(fault.code),
                   board::resultText(fault.code),
                   {leftText(fault), fault.left == 0 ? Colour::Faint : Colour::Red},
                   std::to_string(fault.given)});
    }
    return table.text(console);
}

std::string codesTable(const Console& console)
{
    Table table({"CODE", "MEANING"});
    for (std::int32_t code = DDAL_OK + 1; code <= DDAL_ERROR_NOT_SUPPORTED; ++code) {
        table.add({std::to_string(code), board::resultText(code)});
    }
    return table.text(console);
}

std::string faultText(const board::DriverFault& fault)
{
    return std::string(fault.function.name()) + ": " + callsText(fault) + " with " + std::to_string(fault.code) + " (" +
           board::resultText(fault.code) + ")";
}

Json faultJson(const board::DriverFault& fault)
{
    return {{"function", fault.function.name()},
            {"code", fault.code},
            {"meaning", board::resultText(fault.code)},
            {"left", isForAlways(fault) ? Json(nullptr) : Json(fault.left)},
            {"given", fault.given}};
}

} // namespace dorn::tool
