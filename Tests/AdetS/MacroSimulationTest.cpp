// SPDX-License-Identifier: MIT
// Units and modules that are shown as their macro counterparts.
#include "AutodetTest.hpp"

#include "rad/ERadHwapi.h"

namespace dorn::test {
namespace {

using testing::ElementsAre;

class MacroTest : public AutodetTest {
protected:
    MacroTest() { m_platform.parameters[ERadHwapi_SimulateMacroREC] = 1; }

    static std::string unitId(std::uint32_t size)
    {
        return ask([](char* buffer, std::uint32_t length) { return ApiGetUnitId(2, buffer, length); }, size);
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

TEST_P(MacroUnitTest, WhatHasBeenKeptStays)
{
    m_platform.parameters[ERadHwapi_SimulateMacroREC] = 0;
    EXPECT_EQ(ask(ApiGetLocalUnitId, 6), inBuffer(GetParam().id, 6));

    m_platform.parameters[ERadHwapi_SimulateMacroREC] = 7;
    EXPECT_EQ(ask(ApiGetLocalUnitId, 6), inBuffer(GetParam().id, 6));
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
                         testing::Values(MacroUnit{"HOLM", "HOLMN", 0x507001, 33, "900133A"},
                                         MacroUnit{"FRTA", "FRTAN", 0x20F001, 34, "900134A"},
                                         MacroUnit{"FRTB", "FRTBN", 0x210001, 35, "900135A"}));

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
    static TBoolean extCode(char* buffer, std::uint32_t length)
    {
        return ApiGetExtModuleProductionCode(6, buffer, length);
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
    EXPECT_EQ(ask(extCode, 13), inBuffer(GetParam().code + std::string(".101"), 13));
}

TEST_P(MacroModuleTest, ProductionCodeThatIsShorterThanTheMacroModulesIsTerminated)
{
    m_drivers.module.productionCode = "";
    m_drivers.extModules[6].productionCode = "12";
    EXPECT_EQ(ask(ApiGetModuleProductionCode, 13), inBuffer(GetParam().code, 13));
    EXPECT_EQ(ask(extCode, 13), inBuffer(GetParam().code, 13));
}

TEST_P(MacroModuleTest, SerialNumberIsItsOwn)
{
    EXPECT_EQ(ask(ApiGetModuleSerialNumber, 12), inBuffer("M1200000002", 12));
}

TEST_P(MacroModuleTest, WithoutSimulationAllIsItsOwn)
{
    m_platform.parameters[ERadHwapi_SimulateMacroREC] = 0;

    EXPECT_EQ(ask(ApiGetModuleId, 8), inBuffer(GetParam().id, 8));
    EXPECT_EQ(ask(extId, 8), inBuffer(GetParam().id, 8));
    EXPECT_EQ(ask(ApiGetModuleProductionCode, 13), inBuffer("900201A.101", 13));
    EXPECT_EQ(ask(extCode, 13), inBuffer("900201A.101", 13));
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
    EXPECT_EQ(
        ask([](char* buffer, std::uint32_t length) { return ApiGetExtModuleProductionCode(6, buffer, length); }, 12),
        inBuffer("900201A.101", 12));
}

TEST_F(OtherUnitTest, ModuleThatIsAMacroModuleHasTheCode)
{
    m_drivers.extModules[6] = {"VIGB", "900201A.101", ""};
    EXPECT_EQ(
        ask([](char* buffer, std::uint32_t length) { return ApiGetExtModuleProductionCode(6, buffer, length); }, 12),
        inBuffer("900226A.101", 12));
}

} // namespace
} // namespace dorn::test
