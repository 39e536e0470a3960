// SPDX-License-Identifier: MIT
/// @file UnitIdentity.hpp
/// Who the unit is.
#pragma once

#include "firmware/FirmwareCatalogue.hpp"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace vel::hwapi::firmware {

/// Characters of a unit id that are read.
constexpr std::size_t unitIdLength = 31;
/// Characters of a unit id that say which type it is.
constexpr std::size_t unitTypeLength = 3;

using UnitIdText = std::array<char, unitIdLength + 1>;

/// Reads the unit id anew. Logs a failure as @p function's. @return whether it could be read.
bool readUnitId(UnitIdText& id, const char* function);

/// Whether a row of the catalogue applies to this unit.
bool isThisUnit(UnitKey key, std::string_view unit);

/// The unit type in small letters, as marker files have it.
std::string smallUnitType();

} // namespace vel::hwapi::firmware
