// SPDX-License-Identifier: MIT
// What is known of Tarn units alone: variant of the board, module version, radio access technology.
#include "AutodetTest.hpp"

#include "rad/ERadHwapi.h"

#include <type_traits>

namespace dorn::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

struct BoardRow {
    std::uint32_t code;
    int type;
    const char* name;
    int moduleVersion;
};

void PrintTo(const BoardRow& row, std::ostream* stream)
{
    *stream << row.code;
}

class TarnBoardTest : public AutodetTest, public testing::WithParamInterface<BoardRow> {};

TEST_P(TarnBoardTest, IsFoundByTheDriversCode)
{
    const BoardRow& row = GetParam();
    m_drivers.boardCode = row.code;

    EXPECT_EQ(ApiGetTarnBoardType(), row.type);
    EXPECT_THAT(m_platform.calls(),
                ElementsAre("ddal_unit_get_board()",
                            formatted("Debug 0x20063 ApiGetTarnBoardType: boardType = 0x%x, tarn board type = %d (%s)",
                                      row.code, row.type, row.name)));
}

TEST_P(TarnBoardTest, IsFoundByTheParameterBeforeTheDriversCode)
{
    const BoardRow& row = GetParam();
    m_platform.parameters[ERadHwapi_BoardType] = row.code;
    m_drivers.boardCode = row.code == 1 ? 2 : 1;

    EXPECT_EQ(ApiGetTarnBoardType(), row.type);
    EXPECT_THAT(driverCalls(), IsEmpty());
}

TEST_P(TarnBoardTest, HasItsModuleVersion)
{
    m_drivers.boardCode = GetParam().code;

    EXPECT_EQ(ApiGetTarnModuleVersion(), GetParam().moduleVersion);
}

TEST_P(TarnBoardTest, HasItsModuleVersionByTheParameterBeforeTheDriversCode)
{
    m_platform.parameters[ERadHwapi_BoardType] = GetParam().code;
    m_drivers.boardCode = GetParam().moduleVersion == 35 ? 3 : 2; // one with another module version

    EXPECT_EQ(ApiGetTarnModuleVersion(), GetParam().moduleVersion);
    EXPECT_THAT(driverCalls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TarnBoardTest,
    testing::Values(BoardRow{1, 0, "ETarnBoardType_Single", 34}, BoardRow{2, 1, "ETarnBoardType_Master", 35},
                    BoardRow{3, 2, "ETarnBoardType_Slave", 36}, BoardRow{4, 3, "ETarnBoardType_Pico", 34},
                    BoardRow{5, 4, "ETarnBoardType_VESPER_4x4", 42}, BoardRow{6, 5, "ETarnBoardType_Pico_DB", 34},
                    BoardRow{7, 0, "ETarnBoardType_Single", 34}, BoardRow{8, 5, "ETarnBoardType_Pico_DB", 34},
                    BoardRow{9, 5, "ETarnBoardType_Pico_DB", 34}));

class UnknownTarnBoardTest : public AutodetTest, public testing::WithParamInterface<std::uint32_t> {};

TEST_P(UnknownTarnBoardTest, IsTraced)
{
    m_drivers.boardCode = GetParam();

    EXPECT_EQ(ApiGetTarnBoardType(), ETarnBoardType_Unknown);
    EXPECT_THAT(
        m_platform.calls(),
        ElementsAre("ddal_unit_get_board()",
                    formatted("Debug 0x20063 ApiGetTarnBoardType: returning ETarnBoardType_Unknown (boardType:0x%x)",
                              GetParam())));
    EXPECT_EQ(ApiGetTarnModuleVersion(), EModuleVersion_Unknown);
}

TEST_P(UnknownTarnBoardTest, HasNoModuleVersionByTheParameter)
{
    m_platform.parameters[ERadHwapi_BoardType] = GetParam();
    m_drivers.boardCode = GetParam() == 0 ? 0 : 2;

    EXPECT_EQ(ApiGetTarnModuleVersion(), EModuleVersion_Unknown);
}

INSTANTIATE_TEST_SUITE_P(Codes, UnknownTarnBoardTest, testing::Values(0U, 10U, 0x101U, 0xFFFFFFFFU));

class TarnUnitTest : public AutodetTest {
protected:
    void SetUp() override { m_drivers.boardCode = 1; }
};

TEST_F(TarnUnitTest, EnumeratorsHaveTheirNumbers)
{
    EXPECT_THAT(
        (std::vector<int>{ETarnBoardType_Single, ETarnBoardType_Master, ETarnBoardType_Slave, ETarnBoardType_Pico,
                          ETarnBoardType_Vesper_4x4, ETarnBoardType_Pico_DB, ETarnBoardType_Unknown}),
        ElementsAre(0, 1, 2, 3, 4, 5, 6));
    EXPECT_THAT((std::vector<int>{ETarnRatType_FDLte, ETarnRatType_TDLte, ETarnRatType_Wcdma, ETarnRatType_Unknown}),
                ElementsAre(0, 1, 2, 3));
}

TEST_F(TarnUnitTest, EnumerationsAreSignedAndHave32Bits)
{
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<ETarnBoardType>, std::int32_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<ETarnRatType>, std::int32_t>));
}

TEST_F(TarnUnitTest, BoardTypeIsAskedEachTime)
{
    EXPECT_EQ(ApiGetTarnBoardType(), ETarnBoardType_Single);
    m_drivers.boardCode = 3;
    EXPECT_EQ(ApiGetTarnBoardType(), ETarnBoardType_Slave);
    m_platform.parameters[ERadHwapi_BoardType] = 5;
    EXPECT_EQ(ApiGetTarnBoardType(), ETarnBoardType_Vesper_4x4);
}

TEST_F(TarnUnitTest, ParameterThatIsNoBoardCodeHidesTheDriversCode)
{
    m_platform.parameters[ERadHwapi_BoardType] = 0x55;

    EXPECT_EQ(ApiGetTarnBoardType(), ETarnBoardType_Unknown);
    EXPECT_THAT(m_platform.calls(),
                ElementsAre("Debug 0x20063 ApiGetTarnBoardType: returning ETarnBoardType_Unknown (boardType:0x55)"));
}

class TarnRatTest : public AutodetTest {
protected:
    static constexpr const char* tag = "sys.orv.fpga.technology";

    static constexpr const char* readTag = "AaConfigTagGet(\"sys.orv.fpga.technology\")";
    static constexpr const char* readCapability = "ddal_devicetree_get_xcvr_hw_capability({0x0, 0x0, 0x0})";
};

TEST_F(TarnRatTest, IsWcdmaByTheTagWithoutAskingTheDriver)
{
    m_platform.tags[tag] = "wcdma";
    m_drivers.capability.words[0] = 0x10000000;

    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_Wcdma);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("ddal_devicetree_get_hw_sw_id(0)",
                            "Debug 0x20063 ApiGetUnitType: hwswid = 0xa00123, unit type = 19 (EUnitType_Tarn)", readTag,
                            "AaMemUnRefDbg()"));
    EXPECT_EQ(m_platform.liveTagValues, 0U);
}

TEST_F(TarnRatTest, IsWcdmaByATagThatBeginsSo)
{
    m_platform.tags[tag] = "wcdma_lte";
    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_Wcdma);
}

class OtherTechnologyTest : public TarnRatTest, public testing::WithParamInterface<const char*> {};

TEST_P(OtherTechnologyTest, IsReleasedAndTheDriverIsAsked)
{
    m_platform.tags[tag] = GetParam();
    m_drivers.capability.words[0] = 0x10000000;

    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_TDLte);
    EXPECT_EQ(m_platform.liveTagValues, 0U);
}

INSTANTIATE_TEST_SUITE_P(Tags, OtherTechnologyTest, testing::Values("", "wcdm", "WCDMA", "lte", " wcdma"));

TEST_F(TarnRatTest, IsTDLteByBit28OfTheFirstWord)
{
    m_drivers.capability = {{0x10000000, 0, 0}};

    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_TDLte);
    EXPECT_THAT(m_platform.calls(), Contains(readTag));
    EXPECT_THAT(m_platform.calls(), Contains(readCapability));
}

TEST_F(TarnRatTest, IsFDLteWithoutThatBit)
{
    m_drivers.capability = {{~0x10000000U, 0xFFFFFFFF, 0xFFFFFFFF}};

    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_FDLte);
}

TEST_F(TarnRatTest, RecordOfAbilitiesHasTwelveBytes)
{
    EXPECT_EQ(sizeof(ddal_xcvr_hw_capability), 12U);
}

class KeptRatTest : public TarnRatTest, public testing::WithParamInterface<ETarnRatType> {};

TEST_P(KeptRatTest, IsNotAskedForAgain)
{
    if (GetParam() == ETarnRatType_Wcdma) {
        m_platform.tags[tag] = "wcdma";
    }
    m_drivers.capability.words[0] = GetParam() == ETarnRatType_TDLte ? 0x10000000 : 0;
    EXPECT_EQ(ApiGetLocalTarnRatType(), GetParam());
    m_platform.clearCalls();
    m_platform.tags[tag] = "other";
    m_drivers.capability.words[0] ^= 0x10000000;

    EXPECT_EQ(ApiGetLocalTarnRatType(), GetParam());
    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Rats, KeptRatTest,
                         testing::Values(ETarnRatType_FDLte, ETarnRatType_TDLte, ETarnRatType_Wcdma));

TEST_F(TarnRatTest, IsFDLteWithoutMessageWhenTheDriverFailsAndTheNextCallAsksAgain)
{
    m_drivers.capability.words[0] = 0x10000000;
    m_platform.setResult("ddal_devicetree_get_xcvr_hw_capability", 9);
    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_FDLte);
    EXPECT_THAT(m_platform.calls("Warning"), IsEmpty());

    m_platform.setResult("ddal_devicetree_get_xcvr_hw_capability", 0);
    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_TDLte);
}

TEST_F(TarnRatTest, TagThatCannotBeReadIsAsNone)
{
    m_platform.tags[tag] = "wcdma";
    m_platform.setResult("AaConfigTagGet", 4);

    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_FDLte);
    EXPECT_THAT(m_platform.calls("AaMemUnRef"), IsEmpty());
}

TEST_F(TarnRatTest, TagWithoutValueIsAsNone)
{
    m_platform.tags[tag] = "wcdma";
    m_platform.canHandOutValues = false;

    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_FDLte);
}

TEST_F(TarnRatTest, IsUnknownOnOtherUnitsAndAskedForAgain)
{
    m_platform.tags[tag] = "wcdma";
    m_drivers.units[0].hwSwId = 0x100000;
    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_Unknown);
    EXPECT_THAT(m_platform.calls("AaConfigTagGet"), IsEmpty());

    m_drivers.units[0].hwSwId = 0xA00123;
    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_Wcdma);
}

TEST_F(TarnRatTest, IsUnknownWhenTheUnitCannotBeReadAndAskedForAgain)
{
    m_platform.setResult("ddal_devicetree_get_hw_sw_id", 9);
    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_Unknown);
    EXPECT_THAT(m_platform.calls("Warning"),
                ElementsAre("Warning 0x20063 ApiGetUnitHwSwId(): ddal_devicetree_get_hw_sw_id() returned '0x9' "
                            "(not DDAL_OK)"));

    m_platform.setResult("ddal_devicetree_get_hw_sw_id", 0);
    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_FDLte);
}

} // namespace
} // namespace dorn::test
