// SPDX-License-Identifier: MIT
// Identity of units: id, HW/SW id, type, version, production code, serial number.
#include "AutodetTest.hpp"

extern "C" TBoolean isTarnUnitInC();

namespace dorn::test {
namespace {

using testing::ElementsAre;

class UnitTest : public AutodetTest {};

TEST_F(UnitTest, IdIsWhatTheDriverGives)
{
    m_drivers.units[7] = {"HOLMA", 0x500123, "", ""};

    EXPECT_EQ(ask([](char* buffer, std::uint32_t length) { return ApiGetUnitId(7, buffer, length); }, 8),
              std::string("HOLMA\0##", 8));
    EXPECT_THAT(m_platform.calls(), ElementsAre("ddal_devicetree_get_unit_id(7, 7)"));
}

TEST_F(UnitTest, BufferOfSevenBytesLetsTheDriverWriteSixCharacters)
{
    m_drivers.units[0].id = "ABCDEFGHIJ";

    EXPECT_EQ(ask([](char* buffer, std::uint32_t length) { return ApiGetUnitId(0, buffer, length); }, 7),
              std::string("ABCDEF\0", 7));
    EXPECT_THAT(driverCalls(), ElementsAre("ddal_devicetree_get_unit_id(0, 6)"));
}

TEST_F(UnitTest, BufferOfOneByteGetsTheEmptyText)
{
    EXPECT_EQ(ask([](char* buffer, std::uint32_t length) { return ApiGetUnitId(0, buffer, length); }, 1),
              std::string("\0", 1));
    EXPECT_THAT(driverCalls(), ElementsAre("ddal_devicetree_get_unit_id(0, 0)"));
}

TEST_F(UnitTest, BufferWithoutBytesIsAFailureThatNoDriverSees)
{
    char untouched = '#';
    EXPECT_EQ(ApiGetUnitId(0, &untouched, 0), 0U);
    EXPECT_EQ(untouched, '#');
    EXPECT_THAT(m_platform.calls(),
                ElementsAre("Warning 0x20063 ApiGetUnitId(): ddal_devicetree_get_unit_id() returned '0x2' "
                            "(not DDAL_OK)"));
}

TEST_F(UnitTest, OwnIdIsReadOnceWithSixCharacters)
{
    m_drivers.units[0].id = "ABCDEFGHIJ";
    EXPECT_EQ(ask(ApiGetLocalUnitId, 10), inBuffer("ABCDEF", 10));

    m_drivers.units[0].id = "OTHER";
    EXPECT_EQ(ask(ApiGetLocalUnitId, 10), inBuffer("ABCDEF", 10));

    EXPECT_THAT(driverCalls(), ElementsAre("ddal_devicetree_get_unit_id(0, 6)"));
}

TEST_F(UnitTest, EmptyOwnIdIsNotKept)
{
    m_drivers.units[0].id = "";
    EXPECT_EQ(ask(ApiGetLocalUnitId, 5), inBuffer("", 5));

    m_drivers.units[0].id = "TARN";
    EXPECT_EQ(ask(ApiGetLocalUnitId, 5), inBuffer("TARN", 5));
    m_drivers.units[0].id = "OTHER";
    EXPECT_EQ(ask(ApiGetLocalUnitId, 5), inBuffer("TARN", 5));
}

TEST_F(UnitTest, HwSwIdIsWhatTheDriverGives)
{
    m_drivers.units[3].hwSwId = 0xFEDCBA98;

    EXPECT_EQ(ApiGetUnitHwSwId(3), 0xFEDCBA98U);
    EXPECT_THAT(m_platform.calls(), ElementsAre("ddal_devicetree_get_hw_sw_id(3)"));
}

TEST_F(UnitTest, OwnHwSwIdIsReadOnce)
{
    EXPECT_EQ(ApiGetLocalUnitHwSwId(), 0xA00123U);
    m_drivers.units[0].hwSwId = 0x500000;
    EXPECT_EQ(ApiGetLocalUnitHwSwId(), 0xA00123U);

    EXPECT_THAT(driverCalls(), ElementsAre("ddal_devicetree_get_hw_sw_id(0)"));
}

TEST_F(UnitTest, OwnHwSwIdOfZeroIsReadAgain)
{
    m_drivers.units[0].hwSwId = 0;
    EXPECT_EQ(ApiGetLocalUnitHwSwId(), 0U);
    m_drivers.units[0].hwSwId = 0x500000;
    EXPECT_EQ(ApiGetLocalUnitHwSwId(), 0x500000U);
}

TEST_F(UnitTest, HwIdIsBitsTwelveToTwentyThree)
{
    m_drivers.units[3].hwSwId = 0xFEDCBA98;
    EXPECT_EQ(ApiGetUnitHwId(3), 0xDCBU);
    m_drivers.units[3].hwSwId = 0xFF000FFF;
    EXPECT_EQ(ApiGetUnitHwId(3), 0U);
}

TEST_F(UnitTest, OwnHwIdIsReadOnce)
{
    m_drivers.units[0].hwSwId = 0x507001;
    EXPECT_EQ(ApiGetLocalUnitHwId(), 0x507U);
    m_drivers.units[0].hwSwId = 0xA00123;
    EXPECT_EQ(ApiGetLocalUnitHwId(), 0x507U);

    EXPECT_THAT(driverCalls(), ElementsAre("ddal_devicetree_get_hw_sw_id(0)"));
}

TEST_F(UnitTest, OwnHwIdOfZeroIsReadAgain)
{
    m_drivers.units[0].hwSwId = 0x000123;
    EXPECT_EQ(ApiGetLocalUnitHwId(), 0U);
    m_drivers.units[0].hwSwId = 0x507001;
    EXPECT_EQ(ApiGetLocalUnitHwId(), 0x507U);
}

struct TypeRow {
    std::uint32_t hwSwId;
    int type;
    const char* name;
};

void PrintTo(const TypeRow& row, std::ostream* stream)
{
    *stream << std::hex << row.hwSwId;
}

class UnitTypeTest : public AutodetTest, public testing::WithParamInterface<TypeRow> {};

TEST_P(UnitTypeTest, IsFoundByBitsTwentyToTwentyThree)
{
    const auto [hwSwId, type, name] = GetParam();

    EXPECT_EQ(ApiGetUnitTypeFromHwSwId(hwSwId), type);

    EXPECT_THAT(
        m_platform.calls(),
        ElementsAre(formatted("Debug 0x20063 ApiGetUnitType: hwswid = 0x%x, unit type = %d (%s)", hwSwId, type, name)));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UnitTypeTest,
    testing::Values(TypeRow{0x200000, 6, "EUnitType_Firth"}, TypeRow{0x500000, 9, "EUnitType_Holm"},
                    TypeRow{0x600000, 10, "EUnitType_Howe"}, TypeRow{0x700000, 11, "EUnitType_Knott"},
                    TypeRow{0xA00000, 19, "EUnitType_Tarn"}, TypeRow{0xFF2FFFFF, 6, "EUnitType_Firth"}));

class UnknownUnitTypeTest : public AutodetTest, public testing::WithParamInterface<std::uint32_t> {};

TEST_P(UnknownUnitTypeTest, IsTraced)
{
    EXPECT_EQ(ApiGetUnitTypeFromHwSwId(GetParam()), EUnitType_Unknown);

    EXPECT_THAT(
        m_platform.calls(),
        ElementsAre(formatted("Debug 0x20063 ApiGetUnitType: returning EUnitType_Unknown (hwswid:0x%x)", GetParam())));
}

INSTANTIATE_TEST_SUITE_P(Keys, UnknownUnitTypeTest,
                         testing::Values(0U, 0x0FFFFFU, 0x100000U, 0x300000U, 0x400000U, 0x800000U, 0x900000U,
                                         0xB00000U, 0xC00000U, 0xD00000U, 0xE00000U, 0xF00000U, 0x02000000U));

TEST_F(UnitTest, TypeIsThatOfTheHwSwId)
{
    m_drivers.units[4].hwSwId = 0x602111;

    EXPECT_EQ(ApiGetUnitType(4), EUnitType_Howe);
    EXPECT_THAT(m_platform.calls(),
                ElementsAre("ddal_devicetree_get_hw_sw_id(4)",
                            "Debug 0x20063 ApiGetUnitType: hwswid = 0x602111, unit type = 10 (EUnitType_Howe)"));
}

TEST_F(UnitTest, OwnTypeIsReadOnce)
{
    EXPECT_EQ(ApiGetLocalUnitType(), EUnitType_Tarn);
    m_drivers.units[0].hwSwId = 0x500000;
    EXPECT_EQ(ApiGetLocalUnitType(), EUnitType_Tarn);

    EXPECT_THAT(driverCalls(), ElementsAre("ddal_devicetree_get_hw_sw_id(0)"));
}

TEST_F(UnitTest, UnknownOwnTypeIsReadFromTheDriverOnEveryCall)
{
    m_drivers.units[0].hwSwId = 0x100000;
    EXPECT_EQ(ApiGetLocalUnitHwSwId(), 0x100000U);
    EXPECT_EQ(ApiGetLocalUnitType(), EUnitType_Unknown);
    EXPECT_EQ(ApiGetLocalUnitType(), EUnitType_Unknown);
    m_drivers.units[0].hwSwId = 0x500000;
    EXPECT_EQ(ApiGetLocalUnitType(), EUnitType_Holm);

    EXPECT_EQ(driverCalls().size(), 4U);
}

struct VersionRow {
    std::uint32_t hwSwId;
    int type;
    const char* typeName;
    int version;
    const char* name;
};

void PrintTo(const VersionRow& row, std::ostream* stream)
{
    *stream << std::hex << row.hwSwId;
}

class UnitVersionTest : public AutodetTest, public testing::WithParamInterface<VersionRow> {};

TEST_P(UnitVersionTest, IsTracedAfterTheType)
{
    const auto [hwSwId, type, typeName, version, name] = GetParam();

    EXPECT_EQ(ApiGetUnitVersionFromHwSwId(hwSwId), version);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre(formatted("Debug 0x20063 ApiGetUnitType: hwswid = 0x%x, unit type = %d (%s)", hwSwId, type,
                                      typeName),
                            formatted("Debug 0x20063 ApiGetUnitVersion: hwswid = 0x%x, unit version = %d (%s)", hwSwId,
                                      version, name)));
}

INSTANTIATE_TEST_SUITE_P(Rows, UnitVersionTest,
                         testing::Values(VersionRow{0x203000, 6, "EUnitType_Firth", 10, "EUnitVersion_Firth_1"},
                                         VersionRow{0x204000, 6, "EUnitType_Firth", 11, "EUnitVersion_Firth_2"},
                                         VersionRow{0x205000, 6, "EUnitType_Firth", 12, "EUnitVersion_Firth_3"},
                                         VersionRow{0x206000, 6, "EUnitType_Firth", 13, "EUnitVersion_Firth_4"},
                                         VersionRow{0x207000, 6, "EUnitType_Firth", 14, "EUnitVersion_Firth_5"},
                                         VersionRow{0x208000, 6, "EUnitType_Firth", 15, "EUnitVersion_Firth_6"},
                                         VersionRow{0x20A000, 6, "EUnitType_Firth", 16, "EUnitVersion_Firth_7"},
                                         VersionRow{0x20B000, 6, "EUnitType_Firth", 17, "EUnitVersion_Firth_8"},
                                         VersionRow{0x20C000, 6, "EUnitType_Firth", 18, "EUnitVersion_Firth_9"},
                                         VersionRow{0x20E000, 6, "EUnitType_Firth", 19, "EUnitVersion_Firth_10"},
                                         VersionRow{0x20F000, 6, "EUnitType_Firth", 34, "EUnitVersion_Firth_AN"},
                                         VersionRow{0x210000, 6, "EUnitType_Firth", 35, "EUnitVersion_Firth_BN"},
                                         VersionRow{0x216000, 6, "EUnitType_Firth", 22, "EUnitVersion_Firth_13"},
                                         VersionRow{0x212000, 6, "EUnitType_Firth", 20, "EUnitVersion_Firth_11"},
                                         VersionRow{0x214000, 6, "EUnitType_Firth", 21, "EUnitVersion_Firth_12"},
                                         VersionRow{0x500000, 9, "EUnitType_Holm", 23, "EUnitVersion_Holm_1"},
                                         VersionRow{0x501000, 9, "EUnitType_Holm", 24, "EUnitVersion_Holm_2"},
                                         VersionRow{0x502000, 9, "EUnitType_Holm", 25, "EUnitVersion_Holm_3"},
                                         VersionRow{0x503000, 9, "EUnitType_Holm", 26, "EUnitVersion_Holm_4"},
                                         VersionRow{0x504000, 9, "EUnitType_Holm", 27, "EUnitVersion_Holm_5"},
                                         VersionRow{0x505000, 9, "EUnitType_Holm", 28, "EUnitVersion_Holm_6"},
                                         VersionRow{0x506000, 9, "EUnitType_Holm", 29, "EUnitVersion_Holm_7"},
                                         VersionRow{0x507000, 9, "EUnitType_Holm", 33, "EUnitVersion_Holm_N"},
                                         VersionRow{0x508000, 9, "EUnitType_Holm", 30, "EUnitVersion_Holm_8"},
                                         VersionRow{0x509000, 9, "EUnitType_Holm", 31, "EUnitVersion_Holm_9"},
                                         VersionRow{0x600000, 10, "EUnitType_Howe", 36, "EUnitVersion_Howe_1"},
                                         VersionRow{0x601000, 10, "EUnitType_Howe", 37, "EUnitVersion_Howe_2"},
                                         VersionRow{0x602000, 10, "EUnitType_Howe", 38, "EUnitVersion_Howe_3"},
                                         VersionRow{0x603000, 10, "EUnitType_Howe", 39, "EUnitVersion_Howe_4"},
                                         VersionRow{0x701000, 11, "EUnitType_Knott", 40, "EUnitVersion_Knott_1"},
                                         VersionRow{0x702000, 11, "EUnitType_Knott", 41, "EUnitVersion_Knott_2"},
                                         VersionRow{0x703000, 11, "EUnitType_Knott", 42, "EUnitVersion_Knott_3"},
                                         VersionRow{0xA00000, 19, "EUnitType_Tarn", 51, "EUnitVersion_Tarn"}));

INSTANTIATE_TEST_SUITE_P(OtherBits, UnitVersionTest,
                         testing::Values(VersionRow{0x203FFF, 6, "EUnitType_Firth", 10, "EUnitVersion_Firth_1"},
                                         VersionRow{0xFF216001, 6, "EUnitType_Firth", 22, "EUnitVersion_Firth_13"},
                                         VersionRow{0xA00123, 19, "EUnitType_Tarn", 51, "EUnitVersion_Tarn"},
                                         VersionRow{0xAFFFFF, 19, "EUnitType_Tarn", 51, "EUnitVersion_Tarn"}));

struct UnknownVersionRow {
    std::uint32_t hwSwId;
    int type;
    const char* typeName; ///< null when the type is unknown too
};

void PrintTo(const UnknownVersionRow& row, std::ostream* stream)
{
    *stream << std::hex << row.hwSwId;
}

class UnknownUnitVersionTest : public AutodetTest, public testing::WithParamInterface<UnknownVersionRow> {
protected:
    static std::string typeLine()
    {
        const auto [hwSwId, type, typeName] = GetParam();
        return typeName ? formatted("Debug 0x20063 ApiGetUnitType: hwswid = 0x%x, unit type = %d (%s)", hwSwId, type,
                                    typeName)
                        : formatted("Debug 0x20063 ApiGetUnitType: returning EUnitType_Unknown (hwswid:0x%x)", hwSwId);
    }
};

TEST_P(UnknownUnitVersionTest, IsTracedAfterTheType)
{
    EXPECT_EQ(ApiGetUnitVersionFromHwSwId(GetParam().hwSwId), EUnitVersion_Unknown);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre(typeLine(),
                            formatted("Debug 0x20063 ApiGetUnitVersion: returning EUnitVersion_Unknown (hwswid:0x%x)",
                                      GetParam().hwSwId)));
}

INSTANTIATE_TEST_SUITE_P(
    Keys, UnknownUnitVersionTest,
    testing::Values(UnknownVersionRow{0, 22, nullptr}, UnknownVersionRow{0x201000, 6, "EUnitType_Firth"},
                    UnknownVersionRow{0x202FFF, 6, "EUnitType_Firth"},
                    UnknownVersionRow{0x217000, 6, "EUnitType_Firth"}, UnknownVersionRow{0x50A000, 9, "EUnitType_Holm"},
                    UnknownVersionRow{0x604000, 10, "EUnitType_Howe"},
                    UnknownVersionRow{0x700FFF, 11, "EUnitType_Knott"},
                    UnknownVersionRow{0x704000, 11, "EUnitType_Knott"}, UnknownVersionRow{0x900000, 22, nullptr},
                    UnknownVersionRow{0xB00000, 22, nullptr}));

TEST_F(UnitTest, VersionIsThatOfTheHwSwId)
{
    m_drivers.units[4].hwSwId = 0x602111;

    EXPECT_EQ(ApiGetUnitVersion(4), EUnitVersion_Howe_3);
    EXPECT_THAT(driverCalls(), ElementsAre("ddal_devicetree_get_hw_sw_id(4)"));
}

TEST_F(UnitTest, OwnVersionIsReadOnce)
{
    EXPECT_EQ(ApiGetLocalUnitVersion(), EUnitVersion_Tarn);
    m_drivers.units[0].hwSwId = 0x500000;
    EXPECT_EQ(ApiGetLocalUnitVersion(), EUnitVersion_Tarn);

    EXPECT_THAT(driverCalls(), ElementsAre("ddal_devicetree_get_hw_sw_id(0)"));
}

TEST_F(UnitTest, UnknownOwnVersionIsReadFromTheDriverOnEveryCall)
{
    m_drivers.units[0].hwSwId = 0x201000;
    EXPECT_EQ(ApiGetLocalUnitHwSwId(), 0x201000U);
    EXPECT_EQ(ApiGetLocalUnitVersion(), EUnitVersion_Unknown);
    EXPECT_EQ(ApiGetLocalUnitVersion(), EUnitVersion_Unknown);
    m_drivers.units[0].hwSwId = 0x500000;
    EXPECT_EQ(ApiGetLocalUnitVersion(), EUnitVersion_Holm_1);

    EXPECT_EQ(driverCalls().size(), 4U);
}

TEST_F(UnitTest, ProductionCodeIsWhatTheDriverGives)
{
    m_drivers.units[2].productionCode = "900500B.203";

    EXPECT_EQ(ask([](char* buffer, std::uint32_t length) { return ApiGetUnitProductionCode(2, buffer, length); }, 13),
              std::string("900500B.203\0#", 13));
    EXPECT_THAT(m_platform.calls(), ElementsAre("ddal_devicetree_get_production_code(2, 13)"));
}

TEST_F(UnitTest, ProductionCodeIsCutByTheDriverThatTerminatesIt)
{
    m_drivers.units[2].productionCode = "900500B.203";

    EXPECT_EQ(ask([](char* buffer, std::uint32_t length) { return ApiGetUnitProductionCode(2, buffer, length); }, 5),
              std::string("9005\0", 5));
    EXPECT_THAT(m_platform.calls(), ElementsAre("ddal_devicetree_get_production_code(2, 5)"));
}

TEST_F(UnitTest, OwnProductionCodeIsReadOnceWithTwelveCharacters)
{
    m_drivers.units[0].productionCode = "ABCDEFGHIJKLMN";
    EXPECT_EQ(ask(ApiGetLocalUnitProductionCode, 14), inBuffer("ABCDEFGHIJKL", 14));
    m_drivers.units[0].productionCode = "OTHER";
    EXPECT_EQ(ask(ApiGetLocalUnitProductionCode, 14), inBuffer("ABCDEFGHIJKL", 14));

    EXPECT_THAT(m_platform.calls(), ElementsAre("ddal_devicetree_get_production_code(0, 13)"));
}

TEST_F(UnitTest, SerialNumberIsWhatTheDriverGives)
{
    m_drivers.units[2].serialNumber = "L1200000077";

    EXPECT_EQ(ask([](char* buffer, std::uint32_t length) { return ApiGetUnitSerialNumber(2, buffer, length); }, 13),
              std::string("L1200000077\0#", 13));
    EXPECT_EQ(ask([](char* buffer, std::uint32_t length) { return ApiGetUnitSerialNumber(2, buffer, length); }, 4),
              std::string("L12\0", 4));
    EXPECT_THAT(m_platform.calls(),
                ElementsAre("ddal_devicetree_get_serial_number(2, 13)", "ddal_devicetree_get_serial_number(2, 4)"));
}

TEST_F(UnitTest, OwnSerialNumberIsReadOnceWithSixteenCharacters)
{
    m_drivers.units[0].serialNumber = "ABCDEFGHIJKLMNOPQRST";
    EXPECT_EQ(ask(ApiGetLocalUnitSerialNumber, 20), inBuffer("ABCDEFGHIJKLMNOP", 20));
    m_drivers.units[0].serialNumber = "OTHER";
    EXPECT_EQ(ask(ApiGetLocalUnitSerialNumber, 20), inBuffer("ABCDEFGHIJKLMNOP", 20));

    EXPECT_THAT(m_platform.calls(), ElementsAre("ddal_devicetree_get_serial_number(0, 17)"));
}

TEST_F(UnitTest, FunctionsAreCalledFromC)
{
    EXPECT_EQ(isTarnUnitInC(), 1U);
    m_drivers.units[0] = {"HOLM", 0x500000, "", ""};
    std::construct_at(&vel::hwapi::adet::identityCaches());
    EXPECT_EQ(isTarnUnitInC(), 0U);
}

} // namespace
} // namespace dorn::test
