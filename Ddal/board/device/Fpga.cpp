// SPDX-License-Identifier: MIT
#include "device/Fpga.hpp"

#include <algorithm>
#include <charconv>

namespace dorn::board {

std::uint32_t Fpga::version() const
{
    const std::uint32_t described = m_node.cell("dorn,version");
    std::vector<FlashArea> areas;
    for (const Slot& slot : slots()) {
        areas.push_back(slot.area);
    }
    const std::string inUse = versionInUse(areas, std::to_string(described));
    std::uint32_t version = described;
    std::from_chars(inUse.data(), inUse.data() + inUse.size(), version);
    return version;
}

std::vector<Fpga::Slot> Fpga::slots() const
{
    const auto versionOffset = m_node.cellIfAny("dorn,version-offset");
    const std::string name = "fpga-" + std::to_string(id()) + "-slot-";
    std::vector<Slot> slots;
    for (const BoardNode& node : m_node.numberedChildren()) {
        const std::uint32_t number = node.number();
        slots.push_back({number, {name + std::to_string(number), node.cell("dorn,size"), versionOffset}});
    }
    return slots;
}

void Fpga::update(std::uint32_t slot, const std::string& path, FlashExtent extent) const
{
    const std::vector<Slot> all = slots();
    const auto found = std::find_if(all.begin(), all.end(), [slot](const Slot& one) { return one.number == slot; });
    if (found == all.end()) {
        m_node.fail(DDAL_ERROR_INVALID_ARGUMENT, "has no slot " + std::to_string(slot));
    }
    found->area.flash(path, std::to_string(version()), extent);
}

} // namespace dorn::board
