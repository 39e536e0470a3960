// SPDX-License-Identifier: MIT
/// @file MacroSimulation.hpp
/// Three kinds of units and two of modules that are shown as their macro counterparts while the R&D parameter
/// `ERadHwapi_SimulateMacroREC` is set.
///
/// A buffer's length counts its bytes; a text that fills the buffer is not terminated.
#pragma once

#include "new/HardwareCatalogue.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace vel::hwapi::adet {

/// Whether the R&D parameter is set.
bool isMacroSimulated() noexcept;

/// Replaces a unit's id in @p buffer by that of its macro counterpart, if it has one.
void showMacroUnitId(char* buffer, std::uint32_t length) noexcept;

/// Returns the HW/SW id of a macro counterpart, by the id that showMacroUnitId() gives.
std::optional<std::uint32_t> macroHwSwId(std::string_view unitId) noexcept;

/// Overwrites the beginning of a unit's production code, if the unit is a macro counterpart.
void showMacroProductionCode(EUnitVersion version, char* buffer, std::uint32_t length) noexcept;

/// Replaces a module's id in @p buffer by that of its macro counterpart, if it has one.
void showMacroModuleId(char* buffer, std::uint32_t length) noexcept;

/// Overwrites the beginning of a module's production code, if the module is a macro counterpart.
void showMacroProductionCode(EModuleVersion version, char* buffer, std::uint32_t length) noexcept;

} // namespace vel::hwapi::adet
