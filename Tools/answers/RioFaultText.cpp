// SPDX-License-Identifier: MIT
#include "answers/RioFaultText.hpp"

#include "text/Table.hpp"
#include "text/Values.hpp"

namespace dorn::tool {
namespace {

bool isForAlways(const board::RioFault& fault)
{
    return fault.corruptLeft == board::RioFaultStore::always;
}

} // namespace

std::string rioFaultsTable(const std::vector<board::RioFault>& faults, const Console& console)
{
    Table table({"PORT", "DEVICE", "COPIES TO SPOIL", "SPOILT", "DELAY"});
    for (const board::RioFault& fault : faults) {
        const std::string left = isForAlways(fault) ? "always" : std::to_string(fault.corruptLeft);
        table.add({std::to_string(fault.device.port), hexNumber(fault.device.device, 1),
                   Cell(left, fault.corruptLeft == 0 ? Colour::Faint : Colour::Red), std::to_string(fault.corrupted),
                   std::to_string(fault.delay.count()) + " ms"});
    }
    return table.text(console);
}

Json rioFaultsJson(const std::vector<board::RioFault>& faults)
{
    Json json = Json::array();
    for (const board::RioFault& fault : faults) {
        json.push_back({{"port", fault.device.port},
                        {"device", fault.device.device},
                        {"corruptLeft", isForAlways(fault) ? Json(nullptr) : Json(fault.corruptLeft)},
                        {"corrupted", fault.corrupted},
                        {"delayMilliseconds", fault.delay.count()}});
    }
    return json;
}

} // namespace dorn::tool
