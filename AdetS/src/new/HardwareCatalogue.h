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
    EUnitType_Unallocated = 0, ///< none yet
    EUnitType_Beck = 1,        ///< no HW/SW id leads to it
    EUnitType_Carr = 2,        ///< no HW/SW id leads to it
    EUnitType_Combe = 3,       ///< no HW/SW id leads to it
    EUnitType_Dene = 4,        ///< no HW/SW id leads to it
    EUnitType_Fell = 5,        ///< no HW/SW id leads to it
    EUnitType_Firth = 6,       ///< HW/SW ids 0x2xxxxx
    EUnitType_Garth = 7,       ///< no HW/SW id leads to it
    EUnitType_Ghyll = 8,       ///< no HW/SW id leads to it
    EUnitType_Holm = 9,        ///< HW/SW ids 0x5xxxxx
    EUnitType_Howe = 10,       ///< HW/SW ids 0x6xxxxx
    EUnitType_Knott = 11,      ///< HW/SW ids 0x7xxxxx
    EUnitType_Mere = 12,       ///< no HW/SW id leads to it
    EUnitType_Rigg = 13,       ///< no HW/SW id leads to it
    EUnitType_Scar = 14,       ///< no HW/SW id leads to it
    EUnitType_Skerry = 15,     ///< no HW/SW id leads to it
    EUnitType_Strath = 16,     ///< no HW/SW id leads to it
    EUnitType_Thwaite = 17,    ///< no HW/SW id leads to it
    EUnitType_Voe = 18,        ///< no HW/SW id leads to it
    EUnitType_Tarn = 19,       ///< HW/SW ids 0xAxxxxx
    EUnitType_Wath = 20,       ///< no HW/SW id leads to it
    EUnitType_Wold = 21,       ///< no HW/SW id leads to it
    EUnitType_Unknown = 22,    ///< the unit has no HW/SW id, or one that the catalogue does not have
};
ADETS_INT32_TYPE(EUnitType);

/// Versions of units: the kind and, for most kinds, how it was equipped when it was made.
enum ADETS_INT32_ENUM(EUnitVersion) {
    EUnitVersion_Unallocated = 0, ///< none yet
    EUnitVersion_Beck_1 = 1,      ///< no HW/SW id leads to it
    EUnitVersion_Beck_2 = 2,      ///< no HW/SW id leads to it
    EUnitVersion_Carr_1 = 3,      ///< no HW/SW id leads to it
    EUnitVersion_Carr_2 = 4,      ///< no HW/SW id leads to it
    EUnitVersion_Combe_1 = 5,     ///< no HW/SW id leads to it
    EUnitVersion_Combe_2 = 6,     ///< no HW/SW id leads to it
    EUnitVersion_Dene_1 = 7,      ///< no HW/SW id leads to it
    EUnitVersion_Fell_1 = 8,      ///< no HW/SW id leads to it
    EUnitVersion_Fell_2 = 9,      ///< no HW/SW id leads to it
    EUnitVersion_Firth_1 = 10,    ///< HW/SW ids 0x203xxx
    EUnitVersion_Firth_2 = 11,    ///< HW/SW ids 0x204xxx
    EUnitVersion_Firth_3 = 12,    ///< HW/SW ids 0x205xxx
    EUnitVersion_Firth_4 = 13,    ///< HW/SW ids 0x206xxx
    EUnitVersion_Firth_5 = 14,    ///< HW/SW ids 0x207xxx
    EUnitVersion_Firth_6 = 15,    ///< HW/SW ids 0x208xxx
    EUnitVersion_Firth_7 = 16,    ///< HW/SW ids 0x20Axxx
    EUnitVersion_Firth_8 = 17,    ///< HW/SW ids 0x20Bxxx
    EUnitVersion_Firth_9 = 18,    ///< HW/SW ids 0x20Cxxx
    EUnitVersion_Firth_10 = 19,   ///< HW/SW ids 0x20Exxx
    EUnitVersion_Firth_11 = 20,   ///< HW/SW ids 0x212xxx
    EUnitVersion_Firth_12 = 21,   ///< HW/SW ids 0x214xxx
    EUnitVersion_Firth_13 = 22,   ///< HW/SW ids 0x216xxx
    EUnitVersion_Holm_1 = 23,     ///< HW/SW ids 0x500xxx
    EUnitVersion_Holm_2 = 24,     ///< HW/SW ids 0x501xxx
    EUnitVersion_Holm_3 = 25,     ///< HW/SW ids 0x502xxx
    EUnitVersion_Holm_4 = 26,     ///< HW/SW ids 0x503xxx
    EUnitVersion_Holm_5 = 27,     ///< HW/SW ids 0x504xxx
    EUnitVersion_Holm_6 = 28,     ///< HW/SW ids 0x505xxx
    EUnitVersion_Holm_7 = 29,     ///< HW/SW ids 0x506xxx
    EUnitVersion_Holm_8 = 30,     ///< HW/SW ids 0x508xxx
    EUnitVersion_Holm_9 = 31,     ///< HW/SW ids 0x509xxx
    EUnitVersion_Garth_1 = 32,    ///< no HW/SW id leads to it
    EUnitVersion_Holm_N = 33,     ///< the macro unit that a Holm micro unit is shown as
    EUnitVersion_Firth_AN = 34,   ///< the macro unit that a Firth A unit is shown as
    EUnitVersion_Firth_BN = 35,   ///< the macro unit that a Firth B unit is shown as
    EUnitVersion_Howe_1 = 36,     ///< HW/SW ids 0x600xxx
    EUnitVersion_Howe_2 = 37,     ///< HW/SW ids 0x601xxx
    EUnitVersion_Howe_3 = 38,     ///< HW/SW ids 0x602xxx
    EUnitVersion_Howe_4 = 39,     ///< HW/SW ids 0x603xxx
    EUnitVersion_Knott_1 = 40,    ///< HW/SW ids 0x701xxx
    EUnitVersion_Knott_2 = 41,    ///< HW/SW ids 0x702xxx
    EUnitVersion_Knott_3 = 42,    ///< HW/SW ids 0x703xxx
    EUnitVersion_Ghyll_1 = 43,    ///< no HW/SW id leads to it
    EUnitVersion_Mere_1 = 44,     ///< no HW/SW id leads to it
    EUnitVersion_Mere_2 = 45,     ///< no HW/SW id leads to it
    EUnitVersion_Rigg_1 = 46,     ///< no HW/SW id leads to it
    EUnitVersion_Rigg_2 = 47,     ///< no HW/SW id leads to it
    EUnitVersion_Scar_1 = 48,     ///< no HW/SW id leads to it
    EUnitVersion_Skerry_1 = 49,   ///< no HW/SW id leads to it
    EUnitVersion_Strath_1 = 50,   ///< no HW/SW id leads to it
    EUnitVersion_Tarn = 51,       ///< HW/SW ids 0xA00xxx
    EUnitVersion_Strath_2 = 52,   ///< no HW/SW id leads to it
    EUnitVersion_Thwaite_1 = 53,  ///< no HW/SW id leads to it
    EUnitVersion_Thwaite_2 = 54,  ///< no HW/SW id leads to it
    EUnitVersion_Voe_1 = 55,      ///< no HW/SW id leads to it
    EUnitVersion_Voe_2 = 56,      ///< no HW/SW id leads to it
    EUnitVersion_Wath_1 = 57,     ///< no HW/SW id leads to it
    EUnitVersion_Wath_2 = 58,     ///< no HW/SW id leads to it
    EUnitVersion_Wold_1 = 59,     ///< no HW/SW id leads to it
    EUnitVersion_Wold_2 = 60,     ///< no HW/SW id leads to it
    EUnitVersion_Wold_3 = 61,     ///< no HW/SW id leads to it
    EUnitVersion_Unknown = 62,    ///< the unit has no HW/SW id, or one that the catalogue does not have
};
ADETS_INT32_TYPE(EUnitVersion);

/// Versions of modules, the housings that units stand in.
enum ADETS_INT32_ENUM(EModuleVersion) {
    EModuleVersion_Unallocated = 0,  ///< none yet
    EModuleVersion_Matin_1 = 1,      ///< module id "MATA"
    EModuleVersion_Matin_2 = 2,      ///< module id "MATB"
    EModuleVersion_Matin_3 = 3,      ///< module id "MATC"
    EModuleVersion_Matin_4 = 4,      ///< module id "MATD"
    EModuleVersion_Matin_5 = 5,      ///< no module id leads to it
    EModuleVersion_Matin_6 = 6,      ///< no module id leads to it
    EModuleVersion_Lauds_1 = 7,      ///< module id "LAUA"
    EModuleVersion_Lauds_2 = 8,      ///< module id "LAUB"
    EModuleVersion_Lauds_3 = 9,      ///< module id "LAUC"
    EModuleVersion_Lauds_4 = 10,     ///< module id "LAUD"
    EModuleVersion_Lauds_5 = 11,     ///< no module id leads to it
    EModuleVersion_Lauds_6 = 12,     ///< no module id leads to it
    EModuleVersion_Terce_1 = 13,     ///< module id "TRCA"
    EModuleVersion_Terce_2 = 14,     ///< what an external module that is not recognised is taken for
    EModuleVersion_Terce_3 = 15,     ///< module id "TRCC"
    EModuleVersion_Terce_4 = 16,     ///< module id "TRCD"
    EModuleVersion_Terce_5 = 17,     ///< module id "TRCDN"
    EModuleVersion_Terce_6 = 18,     ///< no module id leads to it
    EModuleVersion_Nones_1 = 19,     ///< module id "NONA"
    EModuleVersion_Nones_2 = 20,     ///< module id "NONB"
    EModuleVersion_Nones_3 = 21,     ///< module id "NONC"
    EModuleVersion_Nones_4 = 22,     ///< module id "NOND"
    EModuleVersion_Nones_5 = 23,     ///< no module id leads to it
    EModuleVersion_Nones_6 = 24,     ///< no module id leads to it
    EModuleVersion_Vigil_1 = 25,     ///< the macro module that a Lauds 1 module is shown as
    EModuleVersion_Vigil_2 = 26,     ///< the macro module that a Lauds 2 module is shown as
    EModuleVersion_Vigil_3 = 27,     ///< module id "VIGC"
    EModuleVersion_Vigil_4 = 28,     ///< module id "VIGD"
    EModuleVersion_Vigil_5 = 29,     ///< module id "VIGDN"
    EModuleVersion_Vigil_6 = 30,     ///< no module id leads to it
    EModuleVersion_Compline_1 = 31,  ///< module id "CMPA"
    EModuleVersion_Compline_2 = 32,  ///< module id "CMPB"
    EModuleVersion_Compline_3 = 33,  ///< no module id leads to it
    EModuleVersion_Tarn = 34,        ///< module id "TARN"
    EModuleVersion_Tarn_Master = 35, ///< module id "TARM"
    EModuleVersion_Tarn_Slave = 36,  ///< module id "TARS"
    EModuleVersion_Undern_1 = 37,    ///< module id "UNDA"
    EModuleVersion_Undern_2 = 38,    ///< no module id leads to it
    EModuleVersion_Undern_3 = 39,    ///< no module id leads to it
    EModuleVersion_Undern_4 = 40,    ///< no module id leads to it
    EModuleVersion_Undern_5 = 41,    ///< no module id leads to it
    EModuleVersion_Vesper_4X4 = 42,  ///< module id "VESP"
    EModuleVersion_Gloam_1 = 43,     ///< module id "GLMA"
    EModuleVersion_Gloam_2 = 44,     ///< no module id leads to it
    EModuleVersion_Gloam_3 = 45,     ///< no module id leads to it
    EModuleVersion_Gloam_4 = 46,     ///< no module id leads to it
    EModuleVersion_Gloam_5 = 47,     ///< no module id leads to it
    EModuleVersion_Gloam_6 = 48,     ///< no module id leads to it
    EModuleVersion_Unknown = 49,     ///< the module has no id, or one that the catalogue does not have
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

/// How HW/SW ids tell kinds of units apart.
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

/// How HW/SW ids tell versions of units apart.
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

/// How module ids tell versions of modules apart.
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

/// The micro units that are shown as macro units.
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

/// The micro modules that are shown as macro modules.
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
