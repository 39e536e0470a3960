// SPDX-License-Identifier: MIT
#include "ScriptedDrivers.hpp"

#include "RecordingPlatform.hpp"
#include "ddal_rio.h"
#include "ddal_unit.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace dorn::test {
namespace {

ScriptedDrivers* instance = nullptr;

} // namespace

ScriptedDrivers::ScriptedDrivers()
{
    if (instance) {
        throw std::logic_error("two driver layers at once");
    }
    instance = this;
}

ScriptedDrivers::~ScriptedDrivers()
{
    instance = nullptr;
}

ScriptedDrivers& ScriptedDrivers::get()
{
    return *instance;
}

} // namespace dorn::test

using dorn::test::formatted;
using dorn::test::ModuleDescription;
using dorn::test::ScriptedDrivers;
using dorn::test::UnitDescription;

namespace {

std::int32_t note(const std::string& call)
{
    return dorn::test::RecordingPlatform::get().note(call, call.substr(0, call.find('(')));
}

/// Answers with a text, cut to @p most characters and terminated.
std::int32_t answer(const std::string& text, std::uint64_t most, char* buffer)
{
    if (most > std::numeric_limits<std::int32_t>::max()) {
        return DDAL_ERROR_INVALID_ARGUMENT;
    }
    *std::copy_n(text.data(), std::min<std::uint64_t>(text.size(), most), buffer) = '\0';
    return DDAL_OK;
}

/// The same into a buffer of @p size bytes: 0 minus 1 is the greatest number of all.
std::int32_t answerInBuffer(const std::string& text, std::uint32_t size, char* buffer)
{
    return answer(text, std::uint64_t{size} - 1, buffer);
}

/// Fails with @p result.
std::int32_t fail(std::int32_t result, std::uint64_t most, char* buffer)
{
    if (ScriptedDrivers::get().writesAlthoughItFails) {
        answer("rubbish", most, buffer);
    }
    return result;
}

std::int32_t answerOfUnit(const std::string& call, std::uint32_t unit, std::string UnitDescription::*text,
                          std::uint32_t size, char* buffer)
{
    if (const std::int32_t result = note(call); result != DDAL_OK) {
        return fail(result, size - 1, buffer);
    }
    const auto& units = ScriptedDrivers::get().units;
    const auto found = units.find(unit);
    return found == units.end() ? DDAL_ERROR_NOT_FOUND : answerInBuffer(found->second.*text, size, buffer);
}

std::int32_t answerOfModule(const std::string& call, std::string ModuleDescription::*text, std::uint32_t size,
                            char* buffer)
{
    const std::int32_t result = note(call);
    return result != DDAL_OK ? fail(result, size - 1, buffer)
                             : answerInBuffer(ScriptedDrivers::get().module.*text, size, buffer);
}

std::int32_t answerOfExtModule(const std::string& call, std::uint32_t port, std::string ModuleDescription::*text,
                               std::uint32_t size, char* buffer)
{
    if (const std::int32_t result = note(call); result != DDAL_OK) {
        return result;
    }
    const auto& modules = ScriptedDrivers::get().extModules;
    const auto found = modules.find(port);
    return found == modules.end() ? DDAL_ERROR_NOT_FOUND : answerInBuffer(found->second.*text, size, buffer);
}

} // namespace

std::int32_t ddal_devicetree_get_unit_id(std::uint32_t unit, std::uint32_t maxLength, char* buffer)
{
    if (const std::int32_t result = note(formatted("ddal_devicetree_get_unit_id(%u, %u)", unit, maxLength));
        result != DDAL_OK) {
        return fail(result, maxLength, buffer);
    }
    const auto& units = ScriptedDrivers::get().units;
    const auto found = units.find(unit);
    return found == units.end() ? DDAL_ERROR_NOT_FOUND : answer(found->second.id, maxLength, buffer);
}

std::int32_t ddal_devicetree_get_hw_sw_id(std::uint32_t unit, std::uint32_t* hwSwId)
{
    if (const std::int32_t result = note(formatted("ddal_devicetree_get_hw_sw_id(%u)", unit)); result != DDAL_OK) {
        return result;
    }
    const auto& units = ScriptedDrivers::get().units;
    const auto found = units.find(unit);
    if (found == units.end()) {
        return DDAL_ERROR_NOT_FOUND;
    }
    *hwSwId = found->second.hwSwId;
    return DDAL_OK;
}

std::int32_t ddal_devicetree_get_production_code(std::uint32_t unit, std::uint32_t bufferSize, char* buffer)
{
    return answerOfUnit(formatted("ddal_devicetree_get_production_code(%u, %u)", unit, bufferSize), unit,
                        &UnitDescription::productionCode, bufferSize, buffer);
}

std::int32_t ddal_devicetree_get_serial_number(std::uint32_t unit, std::uint32_t bufferSize, char* buffer)
{
    return answerOfUnit(formatted("ddal_devicetree_get_serial_number(%u, %u)", unit, bufferSize), unit,
                        &UnitDescription::serialNumber, bufferSize, buffer);
}

std::int32_t ddal_devicetree_get_module_unit_id(std::uint32_t maxLength, char* buffer)
{
    return answerOfModule(formatted("ddal_devicetree_get_module_unit_id(%u)", maxLength), &ModuleDescription::id,
                          maxLength + 1, buffer);
}

std::int32_t ddal_devicetree_get_ext_module_unit_id(std::uint32_t portId, std::uint32_t maxLength, char* buffer)
{
    return answerOfExtModule(formatted("ddal_devicetree_get_ext_module_unit_id(%u, %u)", portId, maxLength), portId,
                             &ModuleDescription::id, maxLength + 1, buffer);
}

std::int32_t ddal_devicetree_get_module_production_code(std::uint32_t bufferSize, char* buffer)
{
    return answerOfModule(formatted("ddal_devicetree_get_module_production_code(%u)", bufferSize),
                          &ModuleDescription::productionCode, bufferSize, buffer);
}

std::int32_t ddal_devicetree_get_ext_module_production_code(std::uint32_t portId, std::uint32_t bufferSize,
                                                            char* buffer)
{
    return answerOfExtModule(formatted("ddal_devicetree_get_ext_module_production_code(%u, %u)", portId, bufferSize),
                             portId, &ModuleDescription::productionCode, bufferSize, buffer);
}

std::int32_t ddal_devicetree_get_module_serial_number(std::uint32_t bufferSize, char* buffer)
{
    return answerOfModule(formatted("ddal_devicetree_get_module_serial_number(%u)", bufferSize),
                          &ModuleDescription::serialNumber, bufferSize, buffer);
}

std::int32_t ddal_devicetree_get_ext_module_serial_number(std::uint32_t portId, std::uint32_t bufferSize, char* buffer)
{
    return answerOfExtModule(formatted("ddal_devicetree_get_ext_module_serial_number(%u, %u)", portId, bufferSize),
                             portId, &ModuleDescription::serialNumber, bufferSize, buffer);
}

std::int32_t ddal_devicetree_get_die_id(std::uint32_t bufferSize, char* buffer)
{
    const std::int32_t result = note(formatted("ddal_devicetree_get_die_id(%u)", bufferSize));
    return result != DDAL_OK ? result : answerInBuffer(ScriptedDrivers::get().dieId, bufferSize, buffer);
}

std::int32_t ddal_devicetree_get_die_id_quality(std::uint32_t bufferSize, char* buffer)
{
    const std::int32_t result = note(formatted("ddal_devicetree_get_die_id_quality(%u)", bufferSize));
    return result != DDAL_OK ? result : answerInBuffer(ScriptedDrivers::get().dieIdQuality, bufferSize, buffer);
}

std::int32_t ddal_devicetree_get_xcvr_hw_capability(ddal_xcvr_hw_capability* capability)
{
    const std::uint32_t* const words = capability->words;
    const std::int32_t result =
        note(formatted("ddal_devicetree_get_xcvr_hw_capability({0x%X, 0x%X, 0x%X})", words[0], words[1], words[2]));
    if (result == DDAL_OK) {
        *capability = ScriptedDrivers::get().capability;
    }
    return result;
}

std::int32_t ddal_rio_get_own_id(std::uint16_t* id)
{
    const std::int32_t result = note("ddal_rio_get_own_id()");
    if (result == DDAL_OK) {
        *id = ScriptedDrivers::get().rioId;
    }
    return result;
}

std::uint32_t ddal_unit_get_board()
{
    note("ddal_unit_get_board()");
    return ScriptedDrivers::get().boardCode;
}
