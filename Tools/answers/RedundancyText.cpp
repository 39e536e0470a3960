// SPDX-License-Identifier: MIT
#include "answers/RedundancyText.hpp"

#include "RedundancyNames.hpp"
#include "text/Table.hpp"

namespace dorn::tool {
namespace {

using namespace examples;
using namespace vel::hwapi::common;

/// The name of a number, the number where there is none; "-" for 0, which stands for nothing yet.
std::string nameOrDash(const char* name, std::uint32_t number)
{
    return number == 0 ? "-" : nameOrNumber(name, number);
}

std::string stateText(const SRedundantService& service)
{
    return nameOrDash(redundancyStateName(service.state), service.state);
}

std::string commandText(const SRedundantService& service)
{
    return nameOrDash(nameIn(redundancyCommandNames, service.command), service.command);
}

std::string modeText(const SRedundantService& service)
{
    return nameOrDash(nameIn(redundancyModeNames, service.mode), service.mode);
}

Colour colourOf(const SRedundantService& service)
{
    switch (service.state) {
    case ERedundancyState_HwapiFailure:
    case ERedundancyState_TesselFailure:
    case ERedundancyState_NoMateCard:
    case ERedundancyState_Timeout:
        return Colour::Red;
    case ERedundancyState_Unfinished:
    case 0:
        return Colour::Yellow;
    default:
        return Colour::Green;
    }
}

} // namespace

std::string roleText(std::uint32_t role)
{
    return nameOrNumber(nameIn(unitRoleNames, role), role);
}

std::string redundancyText(std::uint32_t role, const std::vector<SRedundantService>& services, const Names& names,
                           const Console& console)
{
    std::string text = "unit: " + roleText(role) + "\n";
    if (services.empty()) {
        return text;
    }
    Table table({"SERVICE", "MODE", "STATE", "AFTER"});
    for (const SRedundantService& service : services) {
        table.add({partyText(partyAt(service.address, names), names.ownNode),
                   modeText(service),
                   {stateText(service), colourOf(service)},
                   commandText(service)});
    }
    return text + table.text(console);
}

Json redundancyJson(std::uint32_t role, const std::vector<SRedundantService>& services, const Names& names)
{
    Json list = Json::array();
    for (const SRedundantService& service : services) {
        Json json = partyJson(partyAt(service.address, names));
        json["mode"] = modeText(service);
        json["state"] = service.state == 0 ? Json(nullptr) : Json(stateText(service));
        json["command"] = service.command == 0 ? Json(nullptr) : Json(commandText(service));
        list.push_back(std::move(json));
    }
    return {{"unit", roleText(role)}, {"services", list}};
}

std::string failureText(const SRedundantService& service, const Names& names)
{
    const std::string state = service.state == 0 ? "no state" : stateText(service);
    return partyText(partyAt(service.address, names), names.ownNode) + " after " + commandText(service) + ": " + state;
}

} // namespace dorn::tool
