// SPDX-License-Identifier: MIT
// Units and modules that are shown as their macro counterparts.
#include "AutodetTest.hpp"

#include "rad/ERadHwapi.h"

namespace dorn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MacroTest : public AutodetTest {
protected:
    MacroTest() { m_platform.parameters[ERadHwapi_SimulateMacroREC] = 1; }

    static std::string unitId(std::uint32_t size)
    {
        return ask([](char* buffer, std::uint32_t length) { return ApiGetUnitId(2, buffer, length); }, size);
    }

    static std::string extCode(std::uint32_t size)
    {
        return ask([](char* buffer, std::uint32_t length) { return ApiGetExtModuleProductionCode(6, buffer, length); },
                   size);
    }

    static std::string unitCode(std::uint32_t size)
    {
        return ask([](char* buffer, std::uint32_t length) { return ApiGetUnitProductionCode(2, buffer, length); },
                   size);
    }
};

struct MacroUnit {
    const char* id;
    const char* macroId;
    std::uint32_t hwSwId;
    int type;
    int version;
    const char* code;
};

void PrintTo(const MacroUnit& row, std::ostream* stream)
{
    *stream << row.id;
}

class MacroUnitTest : public MacroTest, public testing::WithParamInterface<MacroUnit> {
protected:
    MacroUnitTest()
    {
        m_drivers.units[2] = {GetParam().id, 0x204007, "900001A.101", "L1200000001"};
        m_drivers.units[0] = m_drivers.units[2];
    }
};

TEST_P(MacroUnitTest, HasTheMacroUnitsId)
{
    EXPECT_EQ(unitId(8), inBuffer(GetParam().macroId, 8));
    EXPECT_EQ(ask(ApiGetLocalUnitId, 8), inBuffer(GetParam().macroId, 8));
}

TEST_P(MacroUnitTest, IsRecognisedByTheBeginningOfItsId)
{
    m_drivers.units[2].id += "XY";
    EXPECT_EQ(unitId(8), inBuffer(GetParam().macroId, 8));
}

TEST_P(MacroUnitTest, IdFillsABufferOfFiveBytesAndIsNotTerminated)
{
    EXPECT_EQ(unitId(5), GetParam().macroId);
}

TEST_P(MacroUnitTest, IdThatIsCutIsNotRecognised)
{
    EXPECT_EQ(unitId(4), inBuffer(std::string(GetParam().id).substr(0, 3), 4));
    EXPECT_EQ(unitId(1), std::string("\0", 1));
}

TEST_P(MacroUnitTest, HasTheMacroUnitsHwSwIdAndWhatFollowsFromIt)
{
    EXPECT_EQ(ApiGetUnitHwSwId(2), GetParam().hwSwId);
    EXPECT_THAT(m_platform.calls(), ElementsAre("ddal_devicetree_get_unit_id(2, 9)"));

    EXPECT_EQ(ApiGetUnitHwId(2), GetParam().hwSwId >> 12);
    EXPECT_EQ(ApiGetUnitVersion(2), GetParam().version);
    EXPECT_EQ(ApiGetLocalUnitHwSwId(), GetParam().hwSwId);
    EXPECT_EQ(ApiGetLocalUnitVersion(), GetParam().version);
}

TEST_P(MacroUnitTest, HasTheMacroUnitsType)
{
    m_drivers.units[2].hwSwId = 0xA00123;
    m_drivers.units[0].hwSwId = 0xA00123;

    EXPECT_EQ(ApiGetUnitType(2), GetParam().type);
    EXPECT_EQ(ApiGetLocalUnitType(), GetParam().type);
}

TEST_P(MacroUnitTest, MayHaveTheMacroUnitsIdAlready)
{
    m_drivers.units[2].id = GetParam().macroId;

    EXPECT_EQ(unitId(8), inBuffer(GetParam().macroId, 8));
    EXPECT_EQ(ApiGetUnitHwSwId(2), GetParam().hwSwId);
    EXPECT_EQ(unitCode(13), GetParam().code + std::string(".101\0#", 6));
}

TEST_P(MacroUnitTest, ProductionCodeBeginsWithTheMacroUnits)
{
    EXPECT_EQ(unitCode(13), GetParam().code + std::string(".101\0#", 6));
    EXPECT_EQ(ask(ApiGetLocalUnitProductionCode, 13), inBuffer(GetParam().code + std::string(".101"), 13));
}

TEST_P(MacroUnitTest, ProductionCodeInAShortBufferIsThatMuchOfTheMacroUnits)
{
    for (std::uint32_t length = 1; length <= 7; ++length) {
        EXPECT_EQ(unitCode(length), std::string(GetParam().code).substr(0, length));
    }
    EXPECT_EQ(unitCode(8), inBuffer(GetParam().code, 8));
}

TEST_P(MacroUnitTest, ProductionCodeThatIsShorterThanTheMacroUnitsIsTerminated)
{
    m_drivers.units[2].productionCode = "900";
    EXPECT_EQ(unitCode(13), GetParam().code + std::string("\0#####", 6));
    m_drivers.units[2].productionCode = "9000011";
    EXPECT_EQ(unitCode(13), GetParam().code + std::string("\0#####", 6));
}

TEST_P(MacroUnitTest, SerialNumberIsItsOwn)
{
    EXPECT_EQ(ask(ApiGetLocalUnitSerialNumber, 12), inBuffer("L1200000001", 12));
}

TEST_P(MacroUnitTest, WithoutSimulationAllIsItsOwn)
{
    m_platform.parameters[ERadHwapi_SimulateMacroREC] = 0;

    EXPECT_EQ(unitId(5), inBuffer(GetParam().id, 5));
    EXPECT_EQ(ApiGetUnitHwSwId(2), 0x204007U);
    m_drivers.units[2].hwSwId = GetParam().hwSwId;
    EXPECT_EQ(ApiGetUnitVersion(2), GetParam().version);
    EXPECT_EQ(unitCode(13), std::string("900001A.101\0#", 13));
}

TEST_P(MacroUnitTest, WhatHasBeenKeptStaysWhenSimulationBegins)
{
    m_drivers.units[0].hwSwId = 0xA00123;
    m_platform.parameters[ERadHwapi_SimulateMacroREC] = 0;
    for (const std::uint32_t parameter : {0U, 7U}) {
        m_platform.parameters[ERadHwapi_SimulateMacroREC] = parameter;
        EXPECT_EQ(ask(ApiGetLocalUnitId, 6), inBuffer(GetParam().id, 6));
        EXPECT_EQ(ApiGetLocalUnitHwSwId(), 0xA00123U);
        EXPECT_EQ(ApiGetLocalUnitHwId(), 0xA00U);
        EXPECT_EQ(ApiGetLocalUnitType(), EUnitType_Tarn);
        EXPECT_EQ(ApiGetLocalUnitVersion(), EUnitVersion_Tarn);
        EXPECT_EQ(ask(ApiGetLocalUnitProductionCode, 13), inBuffer("900001A.101", 13));
    }
}

TEST_P(MacroUnitTest, WhatHasBeenKeptStaysWhenSimulationEnds)
{
    m_drivers.units[0].hwSwId = 0xA00123;
    for (const std::uint32_t parameter : {1U, 0U}) {
        m_platform.parameters[ERadHwapi_SimulateMacroREC] = parameter;
        EXPECT_EQ(ask(ApiGetLocalUnitId, 6), inBuffer(GetParam().macroId, 6));
        EXPECT_EQ(ApiGetLocalUnitHwSwId(), GetParam().hwSwId);
        EXPECT_EQ(ApiGetLocalUnitHwId(), GetParam().hwSwId >> 12);
        EXPECT_EQ(ApiGetLocalUnitType(), GetParam().type);
        EXPECT_EQ(ApiGetLocalUnitVersion(), GetParam().version);
        EXPECT_EQ(ask(ApiGetLocalUnitProductionCode, 13), inBuffer(GetParam().code + std::string(".101"), 13));
    }
}

TEST_P(MacroUnitTest, IdThatCannotBeReadIsAFailure)
{
    m_platform.setResult("ddal_devicetree_get_unit_id", 0x9);

    EXPECT_EQ(unitId(8), "");
    EXPECT_EQ(ask(ApiGetLocalUnitId, 8), "");
    const std::string failure = "Warning 0x20063 ApiGetUnitId(): ddal_devicetree_get_unit_id() returned '0x9' "
                                "(not DDAL_OK)";
    EXPECT_THAT(log(), ElementsAre(failure, failure));

    m_platform.setResult("ddal_devicetree_get_unit_id", DDAL_OK);
    EXPECT_EQ(ask(ApiGetLocalUnitId, 8), inBuffer(GetParam().macroId, 8));
}

TEST_P(MacroUnitTest, ProductionCodeThatCannotBeReadIsAFailure)
{
    m_platform.setResult("ddal_devicetree_get_production_code", 0x9);

    EXPECT_EQ(unitCode(13), "");
    EXPECT_THAT(m_platform.calls(),
                ElementsAre("ddal_devicetree_get_production_code(2, 13)",
                            "Warning 0x20063 ApiGetUnitProductionCode(): ddal_devicetree_get_production_code() "
                            "returned '0x9' (not DDAL_OK)"));
    EXPECT_EQ(ask(ApiGetLocalUnitProductionCode, 13), "");

    m_platform.setResult("ddal_devicetree_get_production_code", DDAL_OK);
    EXPECT_EQ(ask(ApiGetLocalUnitProductionCode, 13), inBuffer(GetParam().code + std::string(".101"), 13));
}

TEST_P(MacroUnitTest, HwSwIdThatTheDriverCannotReadIsNotMissed)
{
    m_platform.setResult("ddal_devicetree_get_hw_sw_id", 0x9);

    EXPECT_EQ(ApiGetUnitHwSwId(2), GetParam().hwSwId);
    EXPECT_THAT(log(), IsEmpty());
}

TEST_P(MacroUnitTest, IdThatCannotBeReadLeavesTheDriversHwSwId)
{
    m_platform.setResult("ddal_devicetree_get_unit_id", 0x9);

    EXPECT_EQ(ApiGetUnitHwSwId(2), 0x204007U);
    EXPECT_THAT(m_platform.calls(),
                ElementsAre("ddal_devicetree_get_unit_id(2, 9)",
                            "Warning 0x20063 ApiGetUnitId(): ddal_devicetree_get_unit_id() returned '0x9' "
                            "(not DDAL_OK)",
                            "ddal_devicetree_get_hw_sw_id(2)"));
}

INSTANTIATE_TEST_SUITE_P(Rows, MacroUnitTest,
                         testing::Values(MacroUnit{"HOLM", "HOLMN", 0x507001, 9, 33, "900133A"},
                                         MacroUnit{"FRTA", "FRTAN", 0x20F001, 6, 34, "900134A"},
                                         MacroUnit{"FRTB", "FRTBN", 0x210001, 6, 35, "900135A"}));

struct MacroModule {
    const char* id;
    const char* macroId;
    int version;
    const char* code;
};

void PrintTo(const MacroModule& row, std::ostream* stream)
{
    *stream << row.id;
}

class MacroModuleTest : public MacroTest, public testing::WithParamInterface<MacroModule> {
protected:
    MacroModuleTest()
    {
        m_drivers.module = {GetParam().id, "900201A.101", "M1200000002"};
        m_drivers.extModules[6] = m_drivers.module;
    }

    static TBoolean extId(char* buffer, std::uint32_t length) { return ApiGetExtModuleId(6, buffer, length); }
    static TBoolean extNumber(char* buffer, std::uint32_t length)
    {
        return ApiGetExtModuleSerialNumber(6, buffer, length);
    }
};

TEST_P(MacroModuleTest, HasTheMacroModulesIdAndVersion)
{
    EXPECT_EQ(ask(ApiGetModuleId, 8), inBuffer(GetParam().macroId, 8));
    EXPECT_EQ(ask(extId, 8), inBuffer(GetParam().macroId, 8));
    EXPECT_EQ(ApiGetModuleVersion(), GetParam().version);
    EXPECT_EQ(ApiGetExtModuleVersion(6), GetParam().version);
}

TEST_P(MacroModuleTest, IsRecognisedByTheBeginningOfItsId)
{
    m_drivers.module.id += "XYZ";
    m_drivers.extModules[6].id += "XYZ";
    EXPECT_EQ(ask(ApiGetModuleId, 8), inBuffer(GetParam().macroId, 8));
    EXPECT_EQ(ask(extId, 8), inBuffer(GetParam().macroId, 8));
}

TEST_P(MacroModuleTest, ProductionCodeBeginsWithTheMacroModules)
{
    EXPECT_EQ(ask(ApiGetModuleProductionCode, 13), inBuffer(GetParam().code + std::string(".101"), 13));
    EXPECT_EQ(extCode(13), inBuffer(GetParam().code + std::string(".101"), 13));
}

TEST_P(MacroModuleTest, ProductionCodeThatIsShorterThanTheMacroModulesIsTerminated)
{
    m_drivers.module.productionCode = "";
    m_drivers.extModules[6].productionCode = "12";
    EXPECT_EQ(ask(ApiGetModuleProductionCode, 13), inBuffer(GetParam().code, 13));
    EXPECT_EQ(extCode(13), inBuffer(GetParam().code, 13));
}

TEST_P(MacroModuleTest, SerialNumberIsItsOwn)
{
    EXPECT_EQ(ask(ApiGetModuleSerialNumber, 12), inBuffer("M1200000002", 12));
    EXPECT_EQ(ask(extNumber, 12), inBuffer("M1200000002", 12));
}

TEST_P(MacroModuleTest, WhatHasBeenKeptStaysWhenSimulationBegins)
{
    m_drivers.module.productionCode = "900201A.101";
    const int version = GetParam().version == 25 ? 7 : 8; // that of the module without simulation
    for (const std::uint32_t parameter : {0U, 7U}) {
        m_platform.parameters[ERadHwapi_SimulateMacroREC] = parameter;
        EXPECT_EQ(ask(ApiGetModuleId, 8), inBuffer(GetParam().id, 8));
        EXPECT_EQ(ApiGetModuleVersion(), version);
        EXPECT_EQ(ask(ApiGetModuleProductionCode, 13), inBuffer("900201A.101", 13));
    }
}

TEST_P(MacroModuleTest, WhatHasBeenKeptStaysWhenSimulationEnds)
{
    for (const std::uint32_t parameter : {1U, 0U}) {
        m_platform.parameters[ERadHwapi_SimulateMacroREC] = parameter;
        EXPECT_EQ(ask(ApiGetModuleId, 8), inBuffer(GetParam().macroId, 8));
        EXPECT_EQ(ApiGetModuleVersion(), GetParam().version);
        EXPECT_EQ(ask(ApiGetModuleProductionCode, 13), inBuffer(GetParam().code + std::string(".101"), 13));
    }
}

TEST_P(MacroModuleTest, IdThatCannotBeReadIsAFailure)
{
    m_platform.setResult("ddal_devicetree_get_module_unit_id", 0x9);
    m_platform.setResult("ddal_devicetree_get_ext_module_unit_id", 0xA);

    EXPECT_EQ(ask(ApiGetModuleId, 8), "");
    EXPECT_EQ(ask(extId, 8), "");
    EXPECT_THAT(log(), ElementsAre("Warning 0x20063 ApiGetModuleId(): ddal_devicetree_get_module_unit_id() returned "
                                   "'0x9' (not DDAL_OK)",
                                   "Warning 0x20063 ApiGetExtModuleId(): ddal_devicetree_get_ext_module_unit_id("
                                   "port_id=0x6) returned '0xa' (not DDAL_OK)"));

    m_platform.setResult("ddal_devicetree_get_module_unit_id", DDAL_OK);
    EXPECT_EQ(ask(ApiGetModuleId, 8), inBuffer(GetParam().macroId, 8));
}

TEST_P(MacroModuleTest, ProductionCodeThatCannotBeReadIsAFailureAndTheVersionIsNotAskedFor)
{
    m_platform.setResult("ddal_devicetree_get_module_production_code", 0x9);
    m_platform.setResult("ddal_devicetree_get_ext_module_production_code", 0xA);

    EXPECT_EQ(ask(ApiGetModuleProductionCode, 13), "");
    EXPECT_EQ(extCode(13), "");
    EXPECT_THAT(m_platform.calls(),
                ElementsAre("ddal_devicetree_get_module_production_code(13)",
                            "Warning 0x20063 ApiGetModuleProductionCode(): "
                            "ddal_devicetree_get_module_production_code() returned '0x9' (not DDAL_OK)",
                            "ddal_devicetree_get_ext_module_production_code(6, 13)",
                            "Warning 0x20063 ApiGetExtModuleProductionCode(): "
                            "ddal_devicetree_get_ext_module_production_code(port_id=0x6) returned '0xa' "
                            "(not DDAL_OK)"));

    m_platform.setResult("ddal_devicetree_get_module_production_code", DDAL_OK);
    EXPECT_EQ(ask(ApiGetModuleProductionCode, 13), inBuffer(GetParam().code + std::string(".101"), 13));
}

TEST_P(MacroModuleTest, SerialNumberThatCannotBeReadIsAFailure)
{
    m_platform.setResult("ddal_devicetree_get_ext_module_serial_number", 0x9);

    EXPECT_EQ(ask(extNumber, 12), "");
    EXPECT_THAT(log(), ElementsAre("Warning 0x20063 ApiGetExtModuleSerialNumber(): "
                                   "ddal_devicetree_get_ext_module_serial_number(port_id=0x6) returned '0x9' "
                                   "(not DDAL_OK)"));
}

TEST_P(MacroModuleTest, WithoutItsIdItKeepsItsProductionCode)
{
    m_platform.setResult("ddal_devicetree_get_module_unit_id", 0x9);
    m_platform.setResult("ddal_devicetree_get_ext_module_unit_id", 0xA);

    EXPECT_EQ(ask(ApiGetModuleProductionCode, 13), inBuffer("900201A.101", 13));
    EXPECT_EQ(extCode(13), inBuffer("900201A.101", 13));
    EXPECT_EQ(log().back(), "Warning 0x20063 ApiGetExtModuleVersion(6): module version not found "
                            "(name from ddal = )");
}

TEST_P(MacroModuleTest, WithoutSimulationAllIsItsOwn)
{
    m_platform.parameters[ERadHwapi_SimulateMacroREC] = 0;

    EXPECT_EQ(ask(ApiGetModuleId, 8), inBuffer(GetParam().id, 8));
    EXPECT_EQ(ask(extId, 8), inBuffer(GetParam().id, 8));
    EXPECT_EQ(ask(ApiGetModuleProductionCode, 13), inBuffer("900201A.101", 13));
    EXPECT_EQ(extCode(13), inBuffer("900201A.101", 13));
}

INSTANTIATE_TEST_SUITE_P(Rows, MacroModuleTest,
                         testing::Values(MacroModule{"LAUA", "VIGA", 25, "900225A"},
                                         MacroModule{"LAUB", "VIGB", 26, "900226A"}));

class OtherUnitTest : public MacroTest {};

TEST_F(OtherUnitTest, IsShownAsItIs)
{
    m_drivers.units[2] = {"FRTC", 0x204007, "900001A.101", ""};

    EXPECT_EQ(unitId(6), std::string("FRTC\0#", 6));
    EXPECT_EQ(ApiGetUnitHwSwId(2), 0x204007U);
    EXPECT_EQ(unitCode(13), std::string("900001A.101\0#", 13));
}

TEST_F(OtherUnitTest, ProductionCodeFollowsTheVersionWhateverTheId)
{
    m_drivers.units[2] = {"FRTC", 0x20F777, "900001A.101", ""};
    EXPECT_EQ(unitCode(13), std::string("900134A.101\0#", 13));
}

TEST_F(OtherUnitTest, UnitWhoseVersionCannotBeReadKeepsItsProductionCode)
{
    m_drivers.units[2] = {"FRTC", 0x20F777, "900001A.101", ""};
    m_platform.setResult("ddal_devicetree_get_hw_sw_id", 0x9);
    EXPECT_EQ(unitCode(13), std::string("900001A.101\0#", 13));
}

TEST_F(OtherUnitTest, ModuleIsShownAsItIs)
{
    m_drivers.module = {"LAUC", "900201A.101", ""};
    m_drivers.extModules[6] = {"LAUC", "900201A.101", ""};

    EXPECT_EQ(ask(ApiGetModuleId, 5), inBuffer("LAUC", 5));
    EXPECT_EQ(ApiGetExtModuleVersion(6), EModuleVersion_Lauds_3);
    EXPECT_EQ(ask(ApiGetModuleProductionCode, 12), inBuffer("900201A.101", 12));
    EXPECT_EQ(extCode(12), inBuffer("900201A.101", 12));
}

TEST_F(OtherUnitTest, ExternalModuleThatIsNotInTheCatalogueKeepsItsProductionCodeAndIsLogged)
{
    m_drivers.extModules[6] = {"XYZZ", "900201A.101", ""};

    EXPECT_EQ(extCode(12), inBuffer("900201A.101", 12));

    EXPECT_THAT(m_platform.calls("Warning"),
                ElementsAre("Warning 0x20063 ApiGetExtModuleVersion(6): module version not found "
                            "(name from ddal = XYZZ)"));
    EXPECT_EQ(static_cast<int>(ApiGetExtModuleVersion(6)), 14);
}

TEST_F(OtherUnitTest, ModuleThatIsAMacroModuleHasTheCode)
{
    m_drivers.extModules[6] = {"VIGB", "900201A.101", ""};
    EXPECT_EQ(extCode(12), inBuffer("900226A.101", 12));
}

} // namespace
} // namespace dorn::test
