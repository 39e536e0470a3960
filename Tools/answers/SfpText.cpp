// SPDX-License-Identifier: MIT
#include "answers/SfpText.hpp"

#include "SfpNames.hpp"
#include "text/Table.hpp"
#include "text/Values.hpp"

namespace dorn::tool {
namespace {

using namespace examples;

constexpr std::uint32_t noLink = 0xFF;

} // namespace

std::string sfpModuleText(const SSfpCage& cage)
{
    return nameOrNumber(nameIn(sfpModuleNames, cage.module), cage.module);
}

std::string sfpTable(const std::vector<SSfpCage>& cages, const Console& console)
{
    Table table({"CAGE", "LINK", "MODULE", "DETECTED", "EVENTS"});
    for (const SSfpCage& cage : cages) {
        const Colour colour = cage.module == ESfpModule_Ready ? Colour::Green : Colour::None;
        table.add({std::to_string(cage.cage),
                   cage.physicalLinkId == noLink ? "-" : std::to_string(cage.physicalLinkId),
                   {sfpModuleText(cage), colour},
                   cage.isDetected != 0 ? "yes" : "no",
                   std::to_string(cage.eventCount)});
    }
    return table.text(console);
}

Json sfpJson(const std::vector<SSfpCage>& cages)
{
    Json list = Json::array();
    for (const SSfpCage& cage : cages) {
        list.push_back({{"cage", cage.cage},
                        {"link", cage.physicalLinkId == noLink ? Json(nullptr) : Json(cage.physicalLinkId)},
                        {"module", sfpModuleText(cage)},
                        {"detected", cage.isDetected != 0},
                        {"events", cage.eventCount}});
    }
    return list;
}

std::string sfpCageNumbers(const std::vector<SSfpCage>& cages)
{
    std::string text;
    for (const SSfpCage& cage : cages) {
        text += std::to_string(cage.cage) + "\n";
    }
    return text;
}

} // namespace dorn::tool
