/* SPDX-License-Identifier: MIT */
/// @file HardwareCatalogue.h
/// The hardware that autodetection knows: kinds of units and modules with their numbers, keys and ids.
///
/// This one file is all that a maker of boards replaces to have his own hardware recognised. The enumerations are C,
/// for the users of ApiAutodetInfo.h, which includes this file; the tables are C++, for the library alone.
///
/// What every catalogue must keep is checked when HardwareCatalogueRules.cpp is compiled: the width of rows, the form
/// of keys and ids, and the values that the library itself knows (those of Tarn and Vesper, `Unallocated` and
/// `Unknown`, and what macro simulation shows). Rows are searched in their order and the first that fits is taken.
#ifndef NEW_HARDWARE_CATALOGUE_H
#define NEW_HARDWARE_CATALOGUE_H

#include "new/Int32Enum.h"

#include <stdint.h>
#ifdef __cplusplus
#include <iterator>
#include <string_view>
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// Kinds of units.
enum ADETS_INT32_ENUM(EUnitType) {
    EUnitType_Unallocated = 0,
    EUnitType_Beck = 1,
    EUnitType_Carr = 2,
    EUnitType_Combe = 3,
    EUnitType_Dene = 4,
    EUnitType_Fell = 5,
    EUnitType_Firth = 6,
    EUnitType_Garth = 7,
    EUnitType_Ghyll = 8,
    EUnitType_Holm = 9,
    EUnitType_Howe = 10,
    EUnitType_Knott = 11,
    EUnitType_Mere = 12,
    EUnitType_Rigg = 13,
    EUnitType_Scar = 14,
    EUnitType_Skerry = 15,
    EUnitType_Strath = 16,
    EUnitType_Thwaite = 17,
    EUnitType_Voe = 18,
    EUnitType_Tarn = 19,
    EUnitType_Wath = 20,
    EUnitType_Wold = 21,
    EUnitType_Unknown = 22, ///< the unit has no HW/SW id, or one that the catalogue does not have
};
ADETS_INT32_TYPE(EUnitType);

/// Versions of units: the kind and, for most kinds, how it was equipped when it was made.
enum ADETS_INT32_ENUM(EUnitVersion) {
    EUnitVersion_Unallocated = 0,
    EUnitVersion_Beck_1 = 1,
    EUnitVersion_Beck_2 = 2,
    EUnitVersion_Carr_1 = 3,
    EUnitVersion_Carr_2 = 4,
    EUnitVersion_Combe_1 = 5,
    EUnitVersion_Combe_2 = 6,
    EUnitVersion_Dene_1 = 7,
    EUnitVersion_Fell_1 = 8,
    EUnitVersion_Fell_2 = 9,
    EUnitVersion_Firth_1 = 10,
    EUnitVersion_Firth_2 = 11,
    EUnitVersion_Firth_3 = 12,
    EUnitVersion_Firth_4 = 13,
    EUnitVersion_Firth_5 = 14,
    EUnitVersion_Firth_6 = 15,
    EUnitVersion_Firth_7 = 16,
    EUnitVersion_Firth_8 = 17,
    EUnitVersion_Firth_9 = 18,
    EUnitVersion_Firth_10 = 19,
    EUnitVersion_Firth_11 = 20,
    EUnitVersion_Firth_12 = 21,
    EUnitVersion_Firth_13 = 22,
    EUnitVersion_Holm_1 = 23,
    EUnitVersion_Holm_2 = 24,
    EUnitVersion_Holm_3 = 25,
    EUnitVersion_Holm_4 = 26,
    EUnitVersion_Holm_5 = 27,
    EUnitVersion_Holm_6 = 28,
    EUnitVersion_Holm_7 = 29,
    EUnitVersion_Holm_8 = 30,
    EUnitVersion_Holm_9 = 31,
    EUnitVersion_Garth_1 = 32,
    EUnitVersion_Holm_N = 33,   ///< the macro unit that a Holm micro unit is shown as
    EUnitVersion_Firth_AN = 34, ///< the macro unit that a Firth A unit is shown as
    EUnitVersion_Firth_BN = 35, ///< the macro unit that a Firth B unit is shown as
    EUnitVersion_Howe_1 = 36,
    EUnitVersion_Howe_2 = 37,
    EUnitVersion_Howe_3 = 38,
    EUnitVersion_Howe_4 = 39,
    EUnitVersion_Knott_1 = 40,
    EUnitVersion_Knott_2 = 41,
    EUnitVersion_Knott_3 = 42,
    EUnitVersion_Ghyll_1 = 43,
    EUnitVersion_Mere_1 = 44,
    EUnitVersion_Mere_2 = 45,
    EUnitVersion_Rigg_1 = 46,
    EUnitVersion_Rigg_2 = 47,
    EUnitVersion_Scar_1 = 48,
    EUnitVersion_Skerry_1 = 49,
    EUnitVersion_Strath_1 = 50,
    EUnitVersion_Tarn = 51,
    EUnitVersion_Strath_2 = 52,
    EUnitVersion_Thwaite_1 = 53,
    EUnitVersion_Thwaite_2 = 54,
    EUnitVersion_Voe_1 = 55,
    EUnitVersion_Voe_2 = 56,
    EUnitVersion_Wath_1 = 57,
    EUnitVersion_Wath_2 = 58,
    EUnitVersion_Wold_1 = 59,
    EUnitVersion_Wold_2 = 60,
    EUnitVersion_Wold_3 = 61,
    EUnitVersion_Unknown = 62, ///< the unit has no HW/SW id, or one that the catalogue does not have
};
ADETS_INT32_TYPE(EUnitVersion);

/// Versions of modules, the housings that units stand in.
enum ADETS_INT32_ENUM(EModuleVersion) {
    EModuleVersion_Unallocated = 0,
    EModuleVersion_Matin_1 = 1,
    EModuleVersion_Matin_2 = 2,
    EModuleVersion_Matin_3 = 3,
    EModuleVersion_Matin_4 = 4,
    EModuleVersion_Matin_5 = 5,
    EModuleVersion_Matin_6 = 6,
    EModuleVersion_Lauds_1 = 7,
    EModuleVersion_Lauds_2 = 8,
    EModuleVersion_Lauds_3 = 9,
    EModuleVersion_Lauds_4 = 10,
    EModuleVersion_Lauds_5 = 11,
    EModuleVersion_Lauds_6 = 12,
    EModuleVersion_Terce_1 = 13,
    EModuleVersion_Terce_2 = 14, ///< what an external module that is not recognised is taken for
    EModuleVersion_Terce_3 = 15,
    EModuleVersion_Terce_4 = 16,
    EModuleVersion_Terce_5 = 17,
    EModuleVersion_Terce_6 = 18,
    EModuleVersion_Nones_1 = 19,
    EModuleVersion_Nones_2 = 20,
    EModuleVersion_Nones_3 = 21,
    EModuleVersion_Nones_4 = 22,
    EModuleVersion_Nones_5 = 23,
    EModuleVersion_Nones_6 = 24,
    EModuleVersion_Vigil_1 = 25, ///< the macro module that a Lauds 1 module is shown as
    EModuleVersion_Vigil_2 = 26, ///< the macro module that a Lauds 2 module is shown as
    EModuleVersion_Vigil_3 = 27,
    EModuleVersion_Vigil_4 = 28,
    EModuleVersion_Vigil_5 = 29,
    EModuleVersion_Vigil_6 = 30,
    EModuleVersion_Compline_1 = 31,
    EModuleVersion_Compline_2 = 32,
    EModuleVersion_Compline_3 = 33,
    EModuleVersion_Tarn = 34,
    EModuleVersion_Tarn_Master = 35,
    EModuleVersion_Tarn_Slave = 36,
    EModuleVersion_Undern_1 = 37,
    EModuleVersion_Undern_2 = 38,
    EModuleVersion_Undern_3 = 39,
    EModuleVersion_Undern_4 = 40,
    EModuleVersion_Undern_5 = 41,
    EModuleVersion_Vesper_4X4 = 42,
    EModuleVersion_Gloam_1 = 43,
    EModuleVersion_Gloam_2 = 44,
    EModuleVersion_Gloam_3 = 45,
    EModuleVersion_Gloam_4 = 46,
    EModuleVersion_Gloam_5 = 47,
    EModuleVersion_Gloam_6 = 48,
    EModuleVersion_Unknown = 49, ///< the module has no id, or one that the catalogue does not have
};
ADETS_INT32_TYPE(EModuleVersion);

#ifdef __cplusplus
}

namespace vel::hwapi::adet {

/// A kind of units, found by bits 20 to 23 of the HW/SW id.
struct UnitTypeRow {
    int32_t type;  ///< an #EUnitType
    uint32_t key;  ///< HW/SW id and 0xF00000
    char name[20]; ///< the enumerator's name, for traces
};

inline constexpr UnitTypeRow UnitTypeList[] = {
    {EUnitType_Firth, 0x200000, "EUnitType_Firth"}, {EUnitType_Holm, 0x500000, "EUnitType_Holm"},
    {EUnitType_Howe, 0x600000, "EUnitType_Howe"},   {EUnitType_Knott, 0x700000, "EUnitType_Knott"},
    {EUnitType_Tarn, 0xA00000, "EUnitType_Tarn"},
};
static_assert(std::size(UnitTypeList) == 5);

/// A version of units, found by bits 12 to 23 of the HW/SW id; that of Tarn by bits 20 to 23.
struct UnitVersionRow {
    int32_t version; ///< an #EUnitVersion
    uint32_t key;    ///< HW/SW id and 0xFFF000
    char name[28];   ///< the enumerator's name, for traces
};

inline constexpr UnitVersionRow UnitVersionList[] = {
    {EUnitVersion_Firth_1, 0x203000, "EUnitVersion_Firth_1"},
    {EUnitVersion_Firth_2, 0x204000, "EUnitVersion_Firth_2"},
    {EUnitVersion_Firth_3, 0x205000, "EUnitVersion_Firth_3"},
    {EUnitVersion_Firth_4, 0x206000, "EUnitVersion_Firth_4"},
    {EUnitVersion_Firth_5, 0x207000, "EUnitVersion_Firth_5"},
    {EUnitVersion_Firth_6, 0x208000, "EUnitVersion_Firth_6"},
    {EUnitVersion_Firth_7, 0x20A000, "EUnitVersion_Firth_7"},
    {EUnitVersion_Firth_8, 0x20B000, "EUnitVersion_Firth_8"},
    {EUnitVersion_Firth_9, 0x20C000, "EUnitVersion_Firth_9"},
    {EUnitVersion_Firth_10, 0x20E000, "EUnitVersion_Firth_10"},
    {EUnitVersion_Firth_AN, 0x20F000, "EUnitVersion_Firth_AN"},
    {EUnitVersion_Firth_BN, 0x210000, "EUnitVersion_Firth_BN"},
    {EUnitVersion_Firth_13, 0x216000, "EUnitVersion_Firth_13"},
    {EUnitVersion_Firth_11, 0x212000, "EUnitVersion_Firth_11"},
    {EUnitVersion_Firth_12, 0x214000, "EUnitVersion_Firth_12"},
    {EUnitVersion_Holm_1, 0x500000, "EUnitVersion_Holm_1"},
    {EUnitVersion_Holm_2, 0x501000, "EUnitVersion_Holm_2"},
    {EUnitVersion_Holm_3, 0x502000, "EUnitVersion_Holm_3"},
    {EUnitVersion_Holm_4, 0x503000, "EUnitVersion_Holm_4"},
    {EUnitVersion_Holm_5, 0x504000, "EUnitVersion_Holm_5"},
    {EUnitVersion_Holm_6, 0x505000, "EUnitVersion_Holm_6"},
    {EUnitVersion_Holm_7, 0x506000, "EUnitVersion_Holm_7"},
    {EUnitVersion_Holm_N, 0x507000, "EUnitVersion_Holm_N"},
    {EUnitVersion_Holm_8, 0x508000, "EUnitVersion_Holm_8"},
    {EUnitVersion_Holm_9, 0x509000, "EUnitVersion_Holm_9"},
    {EUnitVersion_Howe_1, 0x600000, "EUnitVersion_Howe_1"},
    {EUnitVersion_Howe_2, 0x601000, "EUnitVersion_Howe_2"},
    {EUnitVersion_Howe_3, 0x602000, "EUnitVersion_Howe_3"},
    {EUnitVersion_Howe_4, 0x603000, "EUnitVersion_Howe_4"},
    {EUnitVersion_Knott_1, 0x701000, "EUnitVersion_Knott_1"},
    {EUnitVersion_Knott_2, 0x702000, "EUnitVersion_Knott_2"},
    {EUnitVersion_Knott_3, 0x703000, "EUnitVersion_Knott_3"},
    {EUnitVersion_Tarn, 0xA00000, "EUnitVersion_Tarn"},
};
static_assert(std::size(UnitVersionList) == 33);

/// A version of modules, found by the module's id.
struct ModuleRow {
    int32_t version; ///< an #EModuleVersion
    const char* id;  ///< four or five characters
};

inline constexpr ModuleRow ModuleList[] = {
    {EModuleVersion_Matin_1, "MATA"},  {EModuleVersion_Matin_2, "MATB"},     {EModuleVersion_Matin_3, "MATC"},
    {EModuleVersion_Matin_4, "MATD"},  {EModuleVersion_Lauds_1, "LAUA"},     {EModuleVersion_Lauds_2, "LAUB"},
    {EModuleVersion_Lauds_3, "LAUC"},  {EModuleVersion_Lauds_4, "LAUD"},     {EModuleVersion_Terce_1, "TRCA"},
    {EModuleVersion_Terce_2, "TRCB"},  {EModuleVersion_Terce_3, "TRCC"},     {EModuleVersion_Terce_4, "TRCD"},
    {EModuleVersion_Terce_5, "TRCDN"}, {EModuleVersion_Nones_1, "NONA"},     {EModuleVersion_Nones_2, "NONB"},
    {EModuleVersion_Nones_3, "NONC"},  {EModuleVersion_Nones_4, "NOND"},     {EModuleVersion_Vigil_1, "VIGA"},
    {EModuleVersion_Vigil_2, "VIGB"},  {EModuleVersion_Vigil_3, "VIGC"},     {EModuleVersion_Vigil_4, "VIGD"},
    {EModuleVersion_Vigil_5, "VIGDN"}, {EModuleVersion_Compline_1, "CMPA"},  {EModuleVersion_Compline_2, "CMPB"},
    {EModuleVersion_Tarn, "TARN"},     {EModuleVersion_Tarn_Master, "TARM"}, {EModuleVersion_Tarn_Slave, "TARS"},
    {EModuleVersion_Undern_1, "UNDA"}, {EModuleVersion_Vesper_4X4, "VESP"},  {EModuleVersion_Gloam_1, "GLMA"},
};
static_assert(std::size(ModuleList) == 30);

/// A unit that is shown as its macro counterpart while the R&D parameter `ERadHwapi_SimulateMacroREC` is set.
struct MacroUnitRow {
    char id[5];             ///< how the ids of the unit begin
    char macroId[6];        ///< the id that is shown: #id and "N"
    uint32_t hwSwId;        ///< the HW/SW id that is shown
    int32_t version;        ///< the #EUnitVersion that goes with #productionCode
    char productionCode[8]; ///< how the production code that is shown begins
};

inline constexpr MacroUnitRow MacroUnitList[] = {
    {"HOLM", "HOLMN", 0x507001, EUnitVersion_Holm_N, "900133A"},
    {"FRTA", "FRTAN", 0x20F001, EUnitVersion_Firth_AN, "900134A"},
    {"FRTB", "FRTBN", 0x210001, EUnitVersion_Firth_BN, "900135A"},
};
static_assert(std::size(MacroUnitList) == 3);

/// A module that is shown as its macro counterpart while `ERadHwapi_SimulateMacroREC` is set.
struct MacroModuleRow {
    char id[5];             ///< how the ids of the module begin
    char macroId[5];        ///< the id that is shown
    int32_t version;        ///< the #EModuleVersion that goes with #productionCode
    char productionCode[8]; ///< how the production code that is shown begins
};

inline constexpr MacroModuleRow MacroModuleList[] = {
    {"LAUA", "VIGA", EModuleVersion_Vigil_1, "900225A"},
    {"LAUB", "VIGB", EModuleVersion_Vigil_2, "900226A"},
};
static_assert(std::size(MacroModuleList) == 2);

/// Ids of the units whose RapidIO id is not their node id, so that board and CPU are those of the own node id.
inline constexpr std::string_view OwnNodeIdUnitList[] = {"FELA", "FELB"};
static_assert(std::size(OwnNodeIdUnitList) == 2);

} // namespace vel::hwapi::adet
#endif

#endif
