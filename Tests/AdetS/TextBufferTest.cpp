// SPDX-License-Identifier: MIT
// The functions that copy a text as strncpy() does, each into buffers of every kind of length.
#include "AutodetTest.hpp"

namespace dorn::test {
namespace {

struct TextFunction {
    std::string name;
    TBoolean (*function)(char* buffer, std::uint32_t length);
    std::string text;       ///< what the drivers below give
    std::string driverCall; ///< how that function of the driver is called
    bool isKept;
};

void PrintTo(const TextFunction& function, std::ostream* stream)
{
    *stream << function.name;
}

class TextBufferTest : public AutodetTest, public testing::WithParamInterface<TextFunction> {
protected:
    TextBufferTest()
    {
        m_drivers.units[0] = {"TARN", 0xA00123, "900001A.101", "L1200000001"};
        m_drivers.module = {"VIGA", "900201A.101", "M1200000002"};
        m_drivers.extModules[5] = {"TRCDN", "900305A.101", "M1200000005"};
        m_drivers.dieId = "0123456789ABCDEF";
        m_drivers.dieIdQuality = "B7";
    }

    std::string ask(std::uint32_t length) { return AutodetTest::ask(GetParam().function, length); }
    const std::string& text() const { return GetParam().text; }
    std::uint32_t exact() const { return static_cast<std::uint32_t>(text().size()); }
};

TEST_P(TextBufferTest, RestOfTheBufferIsFilledWithZeros)
{
    EXPECT_EQ(ask(200), inBuffer(text(), 200));
    EXPECT_EQ(ask(exact() + 1), inBuffer(text(), exact() + 1));
}

TEST_P(TextBufferTest, TextThatFillsTheBufferIsNotTerminated)
{
    EXPECT_EQ(ask(exact()), text());
}

TEST_P(TextBufferTest, TextThatDoesNotFitIsCutAndNotTerminated)
{
    EXPECT_EQ(ask(exact() - 1), text().substr(0, exact() - 1));
    EXPECT_EQ(ask(1), text().substr(0, 1));
}

TEST_P(TextBufferTest, BufferWithoutBytesIsNoFailure)
{
    char untouched = '#';
    EXPECT_EQ(GetParam().function(&untouched, 0), 1U);
    EXPECT_EQ(untouched, '#');
    EXPECT_EQ(GetParam().function(nullptr, 0), 1U);
}

TEST_P(TextBufferTest, BufferThatIsTooShortDoesNotShortenWhatIsKept)
{
    ask(1);
    EXPECT_EQ(ask(exact()), text());
}

TEST_P(TextBufferTest, DriverIsCalledWithTheLengthOfOurOwnBuffer)
{
    ask(3);
    ask(300);

    const auto& [name, function, text, driverCall, isKept] = GetParam();
    EXPECT_EQ(m_platform.calls(), std::vector<std::string>(isKept ? 1 : 2, driverCall));
}

INSTANTIATE_TEST_SUITE_P(
    Functions, TextBufferTest,
    testing::Values(
        TextFunction{"LocalUnitId", ApiGetLocalUnitId, "TARN", "ddal_devicetree_get_unit_id(0, 6)", true},
        TextFunction{"LocalUnitProductionCode", ApiGetLocalUnitProductionCode, "900001A.101",
                     "ddal_devicetree_get_production_code(0, 13)", true},
        TextFunction{"LocalUnitSerialNumber", ApiGetLocalUnitSerialNumber, "L1200000001",
                     "ddal_devicetree_get_serial_number(0, 17)", true},
        TextFunction{"ModuleId", ApiGetModuleId, "VIGA", "ddal_devicetree_get_module_unit_id(7)", true},
        TextFunction{"ModuleProductionCode", ApiGetModuleProductionCode, "900201A.101",
                     "ddal_devicetree_get_module_production_code(13)", true},
        TextFunction{"ModuleSerialNumber", ApiGetModuleSerialNumber, "M1200000002",
                     "ddal_devicetree_get_module_serial_number(17)", true},
        TextFunction{"ExtModuleId",
                     [](char* buffer, std::uint32_t length) { return ApiGetExtModuleId(5, buffer, length); }, "TRCDN",
                     "ddal_devicetree_get_ext_module_unit_id(5, 7)", false},
        TextFunction{
            "ExtModuleProductionCode",
            [](char* buffer, std::uint32_t length) { return ApiGetExtModuleProductionCode(5, buffer, length); },
            "900305A.101", "ddal_devicetree_get_ext_module_production_code(5, 13)", false},
        TextFunction{"ExtModuleSerialNumber",
                     [](char* buffer, std::uint32_t length) { return ApiGetExtModuleSerialNumber(5, buffer, length); },
                     "M1200000005", "ddal_devicetree_get_ext_module_serial_number(5, 17)", false},
        TextFunction{"DieId", ApiGetDieId, "0123456789ABCDEF", "ddal_devicetree_get_die_id(129)", false},
        TextFunction{"DieIdQuality", ApiGetDieIdQuality, "B7", "ddal_devicetree_get_die_id_quality(9)", false}));

class LongTextTest : public AutodetTest {};

TEST_F(LongTextTest, DieIdHasUpTo128Digits)
{
    m_drivers.dieId = std::string(130, 'F');
    EXPECT_EQ(ask(ApiGetDieId, 130), inBuffer(std::string(128, 'F'), 130));
}

TEST_F(LongTextTest, DieIdQualityHasUpToEightCharacters)
{
    m_drivers.dieIdQuality = "ABCDEFGHIJ";
    EXPECT_EQ(ask(ApiGetDieIdQuality, 10), inBuffer("ABCDEFGH", 10));
}

TEST_F(LongTextTest, IdentityOfModulesHasItsGreatestLengths)
{
    m_drivers.module = {"ABCDEFGHIJ", "ABCDEFGHIJKLMN", "ABCDEFGHIJKLMNOPQRST"};
    m_drivers.extModules[0] = m_drivers.module;

    EXPECT_EQ(ask(ApiGetModuleId, 10), inBuffer("ABCDEFG", 10));
    EXPECT_EQ(ask(ApiGetModuleProductionCode, 14), inBuffer("ABCDEFGHIJKL", 14));
    EXPECT_EQ(ask(ApiGetModuleSerialNumber, 20), inBuffer("ABCDEFGHIJKLMNOP", 20));
    EXPECT_EQ(ask([](char* buffer, std::uint32_t length) { return ApiGetExtModuleId(0, buffer, length); }, 10),
              inBuffer("ABCDEFG", 10));
    EXPECT_EQ(
        ask([](char* buffer, std::uint32_t length) { return ApiGetExtModuleProductionCode(0, buffer, length); }, 14),
        inBuffer("ABCDEFGHIJKL", 14));
    EXPECT_EQ(
        ask([](char* buffer, std::uint32_t length) { return ApiGetExtModuleSerialNumber(0, buffer, length); }, 20),
        inBuffer("ABCDEFGHIJKLMNOP", 20));
}

} // namespace
} // namespace dorn::test
