// SPDX-License-Identifier: MIT
// The catalogue of this tree: every enumerator and every row.
#include "new/HardwareCatalogue.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vel::hwapi::adet {
namespace {

using testing::ElementsAre;

struct Named {
    std::int32_t value;
    std::string name;
};

#define NAMED(enumerator)                                                                                              \
    Named                                                                                                              \
    {                                                                                                                  \
        enumerator, #enumerator                                                                                        \
    }

const std::vector<Named> unitTypes = {
    NAMED(EUnitType_Unallocated), NAMED(EUnitType_Beck),    NAMED(EUnitType_Carr),   NAMED(EUnitType_Combe),
    NAMED(EUnitType_Dene),        NAMED(EUnitType_Fell),    NAMED(EUnitType_Firth),  NAMED(EUnitType_Garth),
    NAMED(EUnitType_Ghyll),       NAMED(EUnitType_Holm),    NAMED(EUnitType_Howe),   NAMED(EUnitType_Knott),
    NAMED(EUnitType_Mere),        NAMED(EUnitType_Rigg),    NAMED(EUnitType_Scar),   NAMED(EUnitType_Skerry),
    NAMED(EUnitType_Strath),      NAMED(EUnitType_Thwaite), NAMED(EUnitType_Voe),    NAMED(EUnitType_Tarn),
    NAMED(EUnitType_Wath),        NAMED(EUnitType_Wold),    NAMED(EUnitType_Unknown)};

const std::vector<Named> unitVersions = {
    NAMED(EUnitVersion_Unallocated), NAMED(EUnitVersion_Beck_1),   NAMED(EUnitVersion_Beck_2),
    NAMED(EUnitVersion_Carr_1),      NAMED(EUnitVersion_Carr_2),   NAMED(EUnitVersion_Combe_1),
    NAMED(EUnitVersion_Combe_2),     NAMED(EUnitVersion_Dene_1),   NAMED(EUnitVersion_Fell_1),
    NAMED(EUnitVersion_Fell_2),      NAMED(EUnitVersion_Firth_1),  NAMED(EUnitVersion_Firth_2),
    NAMED(EUnitVersion_Firth_3),     NAMED(EUnitVersion_Firth_4),  NAMED(EUnitVersion_Firth_5),
    NAMED(EUnitVersion_Firth_6),     NAMED(EUnitVersion_Firth_7),  NAMED(EUnitVersion_Firth_8),
    NAMED(EUnitVersion_Firth_9),     NAMED(EUnitVersion_Firth_10), NAMED(EUnitVersion_Firth_11),
    NAMED(EUnitVersion_Firth_12),    NAMED(EUnitVersion_Firth_13), NAMED(EUnitVersion_Holm_1),
    NAMED(EUnitVersion_Holm_2),      NAMED(EUnitVersion_Holm_3),   NAMED(EUnitVersion_Holm_4),
    NAMED(EUnitVersion_Holm_5),      NAMED(EUnitVersion_Holm_6),   NAMED(EUnitVersion_Holm_7),
    NAMED(EUnitVersion_Holm_8),      NAMED(EUnitVersion_Holm_9),   NAMED(EUnitVersion_Garth_1),
    NAMED(EUnitVersion_Holm_N),      NAMED(EUnitVersion_Firth_AN), NAMED(EUnitVersion_Firth_BN),
    NAMED(EUnitVersion_Howe_1),      NAMED(EUnitVersion_Howe_2),   NAMED(EUnitVersion_Howe_3),
    NAMED(EUnitVersion_Howe_4),      NAMED(EUnitVersion_Knott_1),  NAMED(EUnitVersion_Knott_2),
    NAMED(EUnitVersion_Knott_3),     NAMED(EUnitVersion_Ghyll_1),  NAMED(EUnitVersion_Mere_1),
    NAMED(EUnitVersion_Mere_2),      NAMED(EUnitVersion_Rigg_1),   NAMED(EUnitVersion_Rigg_2),
    NAMED(EUnitVersion_Scar_1),      NAMED(EUnitVersion_Skerry_1), NAMED(EUnitVersion_Strath_1),
    NAMED(EUnitVersion_Tarn),        NAMED(EUnitVersion_Strath_2), NAMED(EUnitVersion_Thwaite_1),
    NAMED(EUnitVersion_Thwaite_2),   NAMED(EUnitVersion_Voe_1),    NAMED(EUnitVersion_Voe_2),
    NAMED(EUnitVersion_Wath_1),      NAMED(EUnitVersion_Wath_2),   NAMED(EUnitVersion_Wold_1),
    NAMED(EUnitVersion_Wold_2),      NAMED(EUnitVersion_Wold_3),   NAMED(EUnitVersion_Unknown)};

const std::vector<Named> moduleVersions = {
    NAMED(EModuleVersion_Unallocated), NAMED(EModuleVersion_Matin_1),    NAMED(EModuleVersion_Matin_2),
    NAMED(EModuleVersion_Matin_3),     NAMED(EModuleVersion_Matin_4),    NAMED(EModuleVersion_Matin_5),
    NAMED(EModuleVersion_Matin_6),     NAMED(EModuleVersion_Lauds_1),    NAMED(EModuleVersion_Lauds_2),
    NAMED(EModuleVersion_Lauds_3),     NAMED(EModuleVersion_Lauds_4),    NAMED(EModuleVersion_Lauds_5),
    NAMED(EModuleVersion_Lauds_6),     NAMED(EModuleVersion_Terce_1),    NAMED(EModuleVersion_Terce_2),
    NAMED(EModuleVersion_Terce_3),     NAMED(EModuleVersion_Terce_4),    NAMED(EModuleVersion_Terce_5),
    NAMED(EModuleVersion_Terce_6),     NAMED(EModuleVersion_Nones_1),    NAMED(EModuleVersion_Nones_2),
    NAMED(EModuleVersion_Nones_3),     NAMED(EModuleVersion_Nones_4),    NAMED(EModuleVersion_Nones_5),
    NAMED(EModuleVersion_Nones_6),     NAMED(EModuleVersion_Vigil_1),    NAMED(EModuleVersion_Vigil_2),
    NAMED(EModuleVersion_Vigil_3),     NAMED(EModuleVersion_Vigil_4),    NAMED(EModuleVersion_Vigil_5),
    NAMED(EModuleVersion_Vigil_6),     NAMED(EModuleVersion_Compline_1), NAMED(EModuleVersion_Compline_2),
    NAMED(EModuleVersion_Compline_3),  NAMED(EModuleVersion_Tarn),       NAMED(EModuleVersion_Tarn_Master),
    NAMED(EModuleVersion_Tarn_Slave),  NAMED(EModuleVersion_Undern_1),   NAMED(EModuleVersion_Undern_2),
    NAMED(EModuleVersion_Undern_3),    NAMED(EModuleVersion_Undern_4),   NAMED(EModuleVersion_Undern_5),
    NAMED(EModuleVersion_Vesper_4X4),  NAMED(EModuleVersion_Gloam_1),    NAMED(EModuleVersion_Gloam_2),
    NAMED(EModuleVersion_Gloam_3),     NAMED(EModuleVersion_Gloam_4),    NAMED(EModuleVersion_Gloam_5),
    NAMED(EModuleVersion_Gloam_6),     NAMED(EModuleVersion_Unknown)};

void expectDense(const std::vector<Named>& enumerators)
{
    std::int32_t value = 0;
    for (const Named& each : enumerators) {
        EXPECT_EQ(each.value, value++) << each.name;
    }
}

TEST(HardwareCatalogueTest, EnumerationsHaveTheirCounts)
{
    EXPECT_EQ(unitTypes.size(), 23U);
    EXPECT_EQ(unitVersions.size(), 63U);
    EXPECT_EQ(moduleVersions.size(), 50U);
}

TEST(HardwareCatalogueTest, EnumeratorsAreDense)
{
    expectDense(unitTypes);
    expectDense(unitVersions);
    expectDense(moduleVersions);
}

TEST(HardwareCatalogueTest, EnumerationsAreSignedAndHave32Bits)
{
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<EUnitType>, std::int32_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<EUnitVersion>, std::int32_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<EModuleVersion>, std::int32_t>));
}

TEST(HardwareCatalogueTest, RowsHaveTheLayoutThatToolsReadThemBy)
{
    EXPECT_EQ(sizeof(UnitTypeRow), 28U);
    EXPECT_EQ(offsetof(UnitTypeRow, type), 0U);
    EXPECT_EQ(offsetof(UnitTypeRow, key), 4U);
    EXPECT_EQ(offsetof(UnitTypeRow, name), 8U);
    EXPECT_EQ(sizeof(UnitVersionRow), 36U);
    EXPECT_EQ(offsetof(UnitVersionRow, version), 0U);
    EXPECT_EQ(offsetof(UnitVersionRow, key), 4U);
    EXPECT_EQ(offsetof(UnitVersionRow, name), 8U);
    EXPECT_EQ(sizeof(ModuleRow), 2 * sizeof(const char*));
    EXPECT_EQ(offsetof(ModuleRow, version), 0U);
    EXPECT_EQ(offsetof(ModuleRow, id), sizeof(const char*));
}

TEST(HardwareCatalogueTest, ColumnsOfRowsHaveTheirTypes)
{
    EXPECT_TRUE((std::is_same_v<decltype(UnitTypeRow::type), std::int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(UnitTypeRow::key), std::uint32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(UnitTypeRow::name), char[20]>));
    EXPECT_TRUE((std::is_same_v<decltype(UnitVersionRow::version), std::int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(UnitVersionRow::key), std::uint32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(UnitVersionRow::name), char[28]>));
    EXPECT_TRUE((std::is_same_v<decltype(ModuleRow::version), std::int32_t>));
}

TEST(HardwareCatalogueTest, UnitTypesStandInTheirOrder)
{
    std::vector<std::pair<std::uint32_t, std::int32_t>> rows;
    for (const UnitTypeRow& row : UnitTypeList) {
        rows.emplace_back(row.key, row.type);
        EXPECT_EQ(row.name, unitTypes.at(static_cast<std::size_t>(row.type)).name);
    }
    EXPECT_THAT(rows, ElementsAre(std::pair(0x200000U, 6), std::pair(0x500000U, 9), std::pair(0x600000U, 10),
                                  std::pair(0x700000U, 11), std::pair(0xA00000U, 19)));
}

TEST(HardwareCatalogueTest, UnitVersionsStandInTheirOrder)
{
    std::vector<std::uint32_t> keys;
    for (const UnitVersionRow& row : UnitVersionList) {
        keys.push_back(row.key);
        EXPECT_EQ(row.name, unitVersions.at(static_cast<std::size_t>(row.version)).name);
    }
    EXPECT_THAT(keys, ElementsAre(0x203000, 0x204000, 0x205000, 0x206000, 0x207000, 0x208000, 0x20A000, 0x20B000,
                                  0x20C000, 0x20E000, 0x20F000, 0x210000, 0x216000, 0x212000, 0x214000, //
                                  0x500000, 0x501000, 0x502000, 0x503000, 0x504000, 0x505000, 0x506000, 0x507000,
                                  0x508000, 0x509000, //
                                  0x600000, 0x601000, 0x602000, 0x603000, 0x701000, 0x702000, 0x703000, 0xA00000));
    EXPECT_EQ(UnitVersionList[32].version, 51);
}

TEST(HardwareCatalogueTest, NoRowIsHiddenByAnother)
{
    for (const UnitVersionRow& row : UnitVersionList) {
        EXPECT_EQ(std::ranges::count(UnitVersionList, row.key, &UnitVersionRow::key), 1) << row.name;
        EXPECT_EQ(std::ranges::count(UnitVersionList, row.version, &UnitVersionRow::version), 1) << row.name;
    }
    for (const ModuleRow& row : ModuleList) {
        const auto hasId = [&row](const ModuleRow& other) { return std::string(other.id) == row.id; };
        EXPECT_EQ(std::ranges::count_if(ModuleList, hasId), 1) << row.id;
        EXPECT_EQ(std::ranges::count(ModuleList, row.version, &ModuleRow::version), 1) << row.id;
    }
}

TEST(HardwareCatalogueTest, EachUnitVersionIsOneOfItsType)
{
    for (const UnitVersionRow& row : UnitVersionList) {
        const auto type = std::ranges::find(UnitTypeList, row.key & 0xF00000, &UnitTypeRow::key);
        ASSERT_NE(type, std::end(UnitTypeList)) << row.name;
        const std::string family = std::string(type->name).substr(std::string("EUnitType_").size());
        EXPECT_TRUE(std::string(row.name).starts_with("EUnitVersion_" + family)) << row.name;
    }
}

TEST(HardwareCatalogueTest, WhatMacroSimulationShowsIsInTheTables)
{
    for (const MacroUnitRow& macro : MacroUnitList) {
        const auto shown = std::ranges::find(UnitVersionList, macro.hwSwId & 0xFFF000, &UnitVersionRow::key);
        ASSERT_NE(shown, std::end(UnitVersionList)) << macro.macroId;
        EXPECT_EQ(shown->version, macro.version) << macro.macroId;
    }
    for (const MacroModuleRow& macro : MacroModuleList) {
        const auto hasId = [&macro](const ModuleRow& row) { return std::string(row.id) == macro.macroId; };
        const auto shown = std::ranges::find_if(ModuleList, hasId);
        ASSERT_NE(shown, std::end(ModuleList)) << macro.macroId;
        EXPECT_EQ(shown->version, macro.version) << macro.macroId;
    }
}

TEST(HardwareCatalogueTest, VersionThatUnrecognisedModulesAreTakenForIsOneThatModulesHave)
{
    EXPECT_EQ(std::ranges::count(ModuleList, 14, &ModuleRow::version), 1);
}

} // namespace
} // namespace vel::hwapi::adet
