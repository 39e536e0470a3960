// SPDX-License-Identifier: MIT
// Each call of the driver failing: what is logged, what is returned, and that the next call asks again.
#include "AutodetTest.hpp"

#include <functional>

namespace dorn::test {
namespace {

constexpr std::uint32_t port = 0x1B;

struct FailingCall {
    std::string name;
    std::function<std::string()> ask; ///< the result as text; that of the functions with buffer is what they wrote
    std::string driver;               ///< the function that fails
    std::string message;
    std::string unknown; ///< what is returned then
    std::string known;   ///< what is returned when the driver works again
    bool isKept;
};

void PrintTo(const FailingCall& call, std::ostream* stream)
{
    *stream << call.name;
}

std::string number(std::int64_t value)
{
    return std::to_string(value);
}

template <typename Function>
std::string text(Function function)
{
    std::string buffer(20, '#');
    if (function(buffer.data(), 20U) == 0) {
        return "0, " + buffer;
    }
    return buffer.c_str();
}

const std::string nothingWritten = "0, ####################";

class DriverFailureTest : public AutodetTest, public testing::WithParamInterface<FailingCall> {
protected:
    DriverFailureTest()
    {
        m_drivers.units[0] = {"HOLM", 0x501123, "900001A.101", "L1200000001"};
        m_drivers.module = {"VIGC", "900201A.101", "M1200000002"};
        m_drivers.extModules[port] = {"TRCDN", "900305A.101", "M1200000005"};
        m_drivers.dieId = "0123456789ABCDEF";
        m_drivers.dieIdQuality = "B7";
        m_drivers.rioId = 0x21;
        m_platform.boards[0x210000] = 0x13;
        m_platform.cpus[0x210000] = 0x31;
    }

    std::vector<std::string> warnings() const { return m_platform.calls("Warning"); }
};

TEST_P(DriverFailureTest, IsLoggedAndTheNextCallAsksAgain)
{
    const FailingCall& call = GetParam();

    for (const std::int32_t code : {0x5, -1}) {
        m_platform.clearCalls();
        m_platform.setResult(call.driver, code);
        EXPECT_EQ(call.ask(), call.unknown);
        ASSERT_FALSE(warnings().empty());
        EXPECT_EQ(warnings().front(), "Warning 0x20063 " + formatted(call.message.c_str(), code));
        EXPECT_EQ(m_platform.calls(call.driver + "(").size(), 1U);
    }

    m_platform.clearCalls();
    m_platform.setResult(call.driver, DDAL_OK);
    EXPECT_EQ(call.ask(), call.known);
    EXPECT_EQ(warnings(), std::vector<std::string>());
    EXPECT_EQ(m_platform.calls(call.driver + "(").size(), 1U);

    m_platform.clearCalls();
    m_platform.setResult(call.driver, call.isKept ? 5 : DDAL_OK);
    EXPECT_EQ(call.ask(), call.known);
    EXPECT_EQ(m_platform.calls(call.driver + "(").size(), call.isKept ? 0U : 1U);
}

/// A text that is kept, and the driver's function that gives it.
struct KeptText {
    TBoolean (*function)(char* buffer, std::uint32_t length);
    const char* driver;
    const char* known;
};

void PrintTo(const KeptText& text, std::ostream* stream)
{
    *stream << text.driver;
}

class KeptTextTest : public AutodetTest, public testing::WithParamInterface<KeptText> {};

TEST_P(KeptTextTest, WhatADriverWritesAlthoughItFailsIsNeitherCopiedNorKept)
{
    const auto& [function, driver, known] = GetParam();
    m_drivers.module = {"VIGC", "900201A.101", "M1200000002"};
    m_drivers.writesAlthoughItFails = true;
    m_platform.setResult(driver, 9);
    EXPECT_EQ(text(function), nothingWritten);

    m_platform.setResult(driver, DDAL_OK);
    EXPECT_EQ(text(function), known);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, KeptTextTest,
    testing::Values(KeptText{ApiGetLocalUnitId, "ddal_devicetree_get_unit_id", "TARN"},
                    KeptText{ApiGetLocalUnitProductionCode, "ddal_devicetree_get_production_code", "900001A.101"},
                    KeptText{ApiGetLocalUnitSerialNumber, "ddal_devicetree_get_serial_number", "L1200000001"},
                    KeptText{ApiGetModuleId, "ddal_devicetree_get_module_unit_id", "VIGC"},
                    KeptText{ApiGetModuleProductionCode, "ddal_devicetree_get_module_production_code", "900201A.101"},
                    KeptText{ApiGetModuleSerialNumber, "ddal_devicetree_get_module_serial_number", "M1200000002"}));

const std::string unitIdFailed = "ApiGetUnitId(): ddal_devicetree_get_unit_id() returned '0x%x' (not DDAL_OK)";
const std::string hwSwIdFailed = "ApiGetUnitHwSwId(): ddal_devicetree_get_hw_sw_id() returned '0x%x' (not DDAL_OK)";
const std::string productionCodeFailed =
    "ApiGetUnitProductionCode(): ddal_devicetree_get_production_code() returned '0x%x' (not DDAL_OK)";
const std::string serialNumberFailed =
    "ApiGetUnitSerialNumber(): ddal_devicetree_get_serial_number() returned '0x%x' (not DDAL_OK)";

INSTANTIATE_TEST_SUITE_P(
    Units, DriverFailureTest,
    testing::Values(
        FailingCall{"UnitId", [] { return text([](char* b, std::uint32_t l) { return ApiGetUnitId(0, b, l); }); },
                    "ddal_devicetree_get_unit_id", unitIdFailed, nothingWritten, "HOLM", false},
        FailingCall{"LocalUnitId", [] { return text(ApiGetLocalUnitId); }, "ddal_devicetree_get_unit_id", unitIdFailed,
                    nothingWritten, "HOLM", true},
        FailingCall{"UnitHwSwId", [] { return number(ApiGetUnitHwSwId(0)); }, "ddal_devicetree_get_hw_sw_id",
                    hwSwIdFailed, "0", number(0x501123), false},
        FailingCall{"LocalUnitHwSwId", [] { return number(ApiGetLocalUnitHwSwId()); }, "ddal_devicetree_get_hw_sw_id",
                    hwSwIdFailed, "0", number(0x501123), true},
        FailingCall{"UnitHwId", [] { return number(ApiGetUnitHwId(0)); }, "ddal_devicetree_get_hw_sw_id", hwSwIdFailed,
                    "0", number(0x501), false},
        FailingCall{"LocalUnitHwId", [] { return number(ApiGetLocalUnitHwId()); }, "ddal_devicetree_get_hw_sw_id",
                    hwSwIdFailed, "0", number(0x501), true},
        FailingCall{"UnitType", [] { return number(ApiGetUnitType(0)); }, "ddal_devicetree_get_hw_sw_id", hwSwIdFailed,
                    "22", "9", false},
        FailingCall{"LocalUnitType", [] { return number(ApiGetLocalUnitType()); }, "ddal_devicetree_get_hw_sw_id",
                    hwSwIdFailed, "22", "9", true},
        FailingCall{"UnitVersion", [] { return number(ApiGetUnitVersion(0)); }, "ddal_devicetree_get_hw_sw_id",
                    hwSwIdFailed, "62", "24", false},
        FailingCall{"LocalUnitVersion", [] { return number(ApiGetLocalUnitVersion()); }, "ddal_devicetree_get_hw_sw_id",
                    hwSwIdFailed, "62", "24", true},
        FailingCall{"UnitProductionCode",
                    [] { return text([](char* b, std::uint32_t l) { return ApiGetUnitProductionCode(0, b, l); }); },
                    "ddal_devicetree_get_production_code", productionCodeFailed, nothingWritten, "900001A.101", false},
        FailingCall{"LocalUnitProductionCode", [] { return text(ApiGetLocalUnitProductionCode); },
                    "ddal_devicetree_get_production_code", productionCodeFailed, nothingWritten, "900001A.101", true},
        FailingCall{"UnitSerialNumber",
                    [] { return text([](char* b, std::uint32_t l) { return ApiGetUnitSerialNumber(0, b, l); }); },
                    "ddal_devicetree_get_serial_number", serialNumberFailed, nothingWritten, "L1200000001", false},
        FailingCall{"LocalUnitSerialNumber", [] { return text(ApiGetLocalUnitSerialNumber); },
                    "ddal_devicetree_get_serial_number", serialNumberFailed, nothingWritten, "L1200000001", true},
        FailingCall{"CurrentBoard", [] { return number(ApiGetCurrentBoard()); }, "ddal_rio_get_own_id",
                    "ApiGetCurrentBoard(): ddal_rio_get_own_id() returned '0x%x' (not DDAL_OK)", "0", "19", true},
        FailingCall{"CurrentCpu", [] { return number(ApiGetCurrentCpu()); }, "ddal_rio_get_own_id",
                    "ApiGetCurrentCpu(): ddal_rio_get_own_id() returned '0x%x' (not DDAL_OK)", "0", "49", true}));

INSTANTIATE_TEST_SUITE_P(
    Modules, DriverFailureTest,
    testing::Values(
        FailingCall{"ModuleId", [] { return text(ApiGetModuleId); }, "ddal_devicetree_get_module_unit_id",
                    "ApiGetModuleId(): ddal_devicetree_get_module_unit_id() returned '0x%x' (not DDAL_OK)",
                    nothingWritten, "VIGC", true},
        FailingCall{"ExtModuleId",
                    [] { return text([](char* b, std::uint32_t l) { return ApiGetExtModuleId(port, b, l); }); },
                    "ddal_devicetree_get_ext_module_unit_id",
                    "ApiGetExtModuleId(): ddal_devicetree_get_ext_module_unit_id(port_id=0x1b) returned '0x%x' "
                    "(not DDAL_OK)",
                    nothingWritten, "TRCDN", false},
        FailingCall{"ModuleVersion", [] { return number(ApiGetModuleVersion()); }, "ddal_devicetree_get_module_unit_id",
                    "ApiGetModuleId(): ddal_devicetree_get_module_unit_id() returned '0x%x' (not DDAL_OK)", "49", "27",
                    true},
        FailingCall{"ExtModuleVersion", [] { return number(ApiGetExtModuleVersion(port)); },
                    "ddal_devicetree_get_ext_module_unit_id",
                    "ApiGetExtModuleId(): ddal_devicetree_get_ext_module_unit_id(port_id=0x1b) returned '0x%x' "
                    "(not DDAL_OK)",
                    "14", "17", false},
        FailingCall{"ModuleProductionCode", [] { return text(ApiGetModuleProductionCode); },
                    "ddal_devicetree_get_module_production_code",
                    "ApiGetModuleProductionCode(): ddal_devicetree_get_module_production_code() returned '0x%x' "
                    "(not DDAL_OK)",
                    nothingWritten, "900201A.101", true},
        FailingCall{
            "ExtModuleProductionCode",
            [] { return text([](char* b, std::uint32_t l) { return ApiGetExtModuleProductionCode(port, b, l); }); },
            "ddal_devicetree_get_ext_module_production_code",
            "ApiGetExtModuleProductionCode(): ddal_devicetree_get_ext_module_production_code(port_id=0x1b) returned "
            "'0x%x' (not DDAL_OK)",
            nothingWritten, "900305A.101", false},
        FailingCall{"ModuleSerialNumber", [] { return text(ApiGetModuleSerialNumber); },
                    "ddal_devicetree_get_module_serial_number",
                    "ApiGetModuleSerialNumber(): ddal_devicetree_get_module_serial_number() returned '0x%x' "
                    "(not DDAL_OK)",
                    nothingWritten, "M1200000002", true},
        FailingCall{
            "ExtModuleSerialNumber",
            [] { return text([](char* b, std::uint32_t l) { return ApiGetExtModuleSerialNumber(port, b, l); }); },
            "ddal_devicetree_get_ext_module_serial_number",
            "ApiGetExtModuleSerialNumber(): ddal_devicetree_get_ext_module_serial_number(port_id=0x1b) returned "
            "'0x%x' (not DDAL_OK)",
            nothingWritten, "M1200000005", false},
        FailingCall{"DieId", [] { return text(ApiGetDieId); }, "ddal_devicetree_get_die_id",
                    "ApiGetDieId(): ddal_devicetree_get_die_id() returned '0x%x' (not DDAL_OK)", nothingWritten,
                    "0123456789ABCDEF", false},
        FailingCall{"DieIdQuality", [] { return text(ApiGetDieIdQuality); }, "ddal_devicetree_get_die_id_quality",
                    "ApiGetDieIdQuality(): ddal_devicetree_get_die_id_quality() returned '0x%x' (not DDAL_OK)",
                    nothingWritten, "B7", false}));

} // namespace
} // namespace dorn::test
