// SPDX-License-Identifier: MIT
// What must hold of any hardware catalogue: one that breaks a rule does not compile.
#include "new/HardwareCatalogue.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace vel::hwapi::adet {
namespace {

// Values that the library, its users and other boards know by number.
static_assert(EUnitType_Unallocated == 0 && EUnitType_Tarn == 19 && EUnitType_Unknown == 22);
static_assert(EUnitVersion_Unallocated == 0 && EUnitVersion_Tarn == 51 && EUnitVersion_Unknown == 62);
static_assert(EModuleVersion_Unallocated == 0 && EModuleVersion_Unknown == 49);
static_assert(EModuleVersion_Tarn == 34 && EModuleVersion_Tarn_Master == 35 && EModuleVersion_Tarn_Slave == 36);
static_assert(EModuleVersion_Vesper_4X4 == 42);

// Tools read the two tables of units as records of these sizes.
static_assert(sizeof(UnitTypeRow) == 28 && offsetof(UnitTypeRow, key) == 4 && offsetof(UnitTypeRow, name) == 8);
static_assert(sizeof(UnitVersionRow) == 36 && offsetof(UnitVersionRow, key) == 4 &&
              offsetof(UnitVersionRow, name) == 8);

constexpr bool isOf(std::string_view text, std::size_t least, std::size_t most)
{
    return text.size() >= least && text.size() <= most;
}

static_assert(std::ranges::all_of(UnitTypeList, [](const UnitTypeRow& row) {
    return (row.key & ~0xF00000U) == 0 && row.type > EUnitType_Unallocated && row.type < EUnitType_Unknown &&
           std::string_view(row.name).starts_with("EUnitType_");
}));
static_assert(std::ranges::all_of(UnitVersionList, [](const UnitVersionRow& row) {
    return (row.key & ~0xFFF000U) == 0 && row.version > EUnitVersion_Unallocated &&
           row.version < EUnitVersion_Unknown && std::string_view(row.name).starts_with("EUnitVersion_");
}));
static_assert(std::ranges::all_of(ModuleList, [](const ModuleRow& row) {
    return isOf(row.id, 4, 5) && row.version > EModuleVersion_Unallocated && row.version < EModuleVersion_Unknown;
}));

static_assert(std::ranges::all_of(MacroUnitList, [](const MacroUnitRow& row) {
    const std::string_view macroId = row.macroId;
    return isOf(row.id, 4, 4) && isOf(macroId, 5, 5) && macroId.starts_with(row.id) && macroId.ends_with('N') &&
           isOf(row.productionCode, 7, 7);
}));
static_assert(MacroUnitList[0].hwSwId == 0x507001 && MacroUnitList[0].version == 33);
static_assert(MacroUnitList[1].hwSwId == 0x20F001 && MacroUnitList[1].version == 34);
static_assert(MacroUnitList[2].hwSwId == 0x210001 && MacroUnitList[2].version == 35);

static_assert(std::ranges::all_of(MacroModuleList, [](const MacroModuleRow& row) {
    return isOf(row.id, 4, 4) && isOf(row.macroId, 4, 4) && isOf(row.productionCode, 7, 7);
}));
static_assert(MacroModuleList[0].version == 25 && MacroModuleList[1].version == 26);

} // namespace
} // namespace vel::hwapi::adet
