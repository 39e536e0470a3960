// SPDX-License-Identifier: MIT
/// @file ScriptedDrivers.hpp
/// A stand-in for the driver layer that answers as a test says.
///
/// While one lives, it answers, and a RecordingPlatform must live as long: the calls stand among that one's, as
/// `ddal_devicetree_get_unit_id(0, 6)`, and `setResult("ddal_devicetree_get_unit_id", 5)` makes one fail.
#pragma once

#include "ddal_devicetree.h"

#include <cstdint>
#include <map>
#include <string>

namespace dorn::test {

struct UnitDescription {
    std::string id;
    std::uint32_t hwSwId = 0;
    std::string productionCode;
    std::string serialNumber;
};

struct ModuleDescription {
    std::string id;
    std::string productionCode;
    std::string serialNumber;
};

class ScriptedDrivers {
public:
    ScriptedDrivers();
    ~ScriptedDrivers();
    ScriptedDrivers(const ScriptedDrivers&) = delete;
    ScriptedDrivers& operator=(const ScriptedDrivers&) = delete;
    static ScriptedDrivers& get();

    std::map<std::uint32_t, UnitDescription> units; ///< by number; 0 is the own one
    ModuleDescription module;
    std::map<std::uint32_t, ModuleDescription> extModules; ///< by port
    std::string dieId;
    std::string dieIdQuality;
    ddal_xcvr_hw_capability capability{};
    std::uint32_t boardCode = 0;
    std::uint16_t rioId = 0;
    bool writesAlthoughItFails = false; ///< the texts of units and modules, although the seam forbids it
};

} // namespace dorn::test
