// SPDX-License-Identifier: MIT
/// @file FirmwareCatalogue.hpp
/// Which firmware goes where. A maker of boards replaces this file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vel::hwapi::firmware {

/// What a row applies to.
enum class UnitKey {
    Version, ///< the whole unit id
    Type     ///< its first three characters
};

/// An FPGA of a unit.
struct FpgaRow {
    /// How much of the unit's name counts.
    UnitKey key;
    /// The unit's name, or how it begins.
    std::string_view unit;
    const char* name;           ///< for people
    const char* chipIdentifier; ///< in the names of image files
    std::uint32_t id;           ///< the driver's number
};

/// Searched in this order.
inline constexpr std::array<FpgaRow, 7> fpgaRows{{{UnitKey::Version, "NAXE", "brindle", "BRINDLE", 0x10002},
                                                  {UnitKey::Version, "NAXF", "marlow", "MARLOW", 0x10001},
                                                  {UnitKey::Type, "NAX", "fenwick", "FENWICK", 0x10001},
                                                  {UnitKey::Type, "RUD", "sorrel", "SORREL", 0x60001},
                                                  {UnitKey::Type, "RUE", "sorrel", "SORREL", 0x60001},
                                                  {UnitKey::Type, "RUG", "hollis", "HOLLIS", 0x70001},
                                                  {UnitKey::Type, "RUF", "hollis", "HOLLIS", 0x70001}}};
static_assert(fpgaRows.size() == 7);

/// The FPGA on a unit itself. Not the same table: "NAXF", "RUE" and "RUF" differ.
struct LocalFpgaRow {
    /// How much of the unit's name counts.
    UnitKey key;
    /// The unit's name, or how it begins.
    std::string_view unit;
    /// The FPGA's id.
    std::uint32_t id;
};

/// Searched in this order.
inline constexpr std::array<LocalFpgaRow, 5> localFpgaRows{{{UnitKey::Version, "NAXE", 0x10002},
                                                            {UnitKey::Version, "NAXF", 0x10002},
                                                            {UnitKey::Type, "NAX", 0x10001},
                                                            {UnitKey::Type, "RUD", 0x60001},
                                                            {UnitKey::Type, "RUG", 0x70001}}};
static_assert(localFpgaRows.size() == 5);

/// The BMU of a board without microcontroller.
struct BmuRow {
    std::uint32_t board; ///< the driver's board code
    /// The BMU's id.
    std::uint32_t id;
};
/// By the driver's board code.
inline constexpr std::array<BmuRow, 3> bmuRows{{{2, 0x20001}, {3, 0x30001}, {4, 0x40001}}};
static_assert(bmuRows.size() == 3);

/// In the names of image files of the boot loader.
inline constexpr const char* bootLoaderChipIdentifier = "THISTLE";

/// In the names of image files of the BMU.
inline constexpr const char* bmuChipIdentifier = "BMU";
/// Same, of the small BMU.
inline constexpr const char* microBmuChipIdentifier = "uBMU";

/// The unit that has the small BMU.
inline constexpr std::string_view microBmuUnit = "KIVN";

/// Whether neither text stands within the other one.
consteval bool areApart(std::string_view one, std::string_view other)
{
    return one.find(other) == one.npos && other.find(one) == other.npos;
}

/// Whether no chip identifier stands within another one, so that none finds the other's images. Left out are the two of
/// the BMU: only what stands before them in file names, unit and dash, keeps "BMU" and "uBMU" apart.
consteval bool areChipIdentifiersApart()
{
    for (const FpgaRow& row : fpgaRows) {
        const std::string_view identifier = row.chipIdentifier;
        for (const FpgaRow& other : fpgaRows) {
            if (identifier != other.chipIdentifier && !areApart(identifier, other.chipIdentifier)) {
                return false;
            }
        }
        for (const char* const other : {bootLoaderChipIdentifier, bmuChipIdentifier, microBmuChipIdentifier}) {
            if (!areApart(identifier, other)) {
                return false;
            }
        }
    }
    return areApart(bootLoaderChipIdentifier, bmuChipIdentifier) &&
           areApart(bootLoaderChipIdentifier, microBmuChipIdentifier);
}
static_assert(areChipIdentifiersApart());

} // namespace vel::hwapi::firmware
