// SPDX-License-Identifier: MIT
// Slots, and the numbers of board and CPU.
#include "AutodetTest.hpp"

#include <map>

namespace dorn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SlotTest, EveryBoardIdHasItsSlotOrNone)
{
    const std::map<std::uint32_t, int> slots = {
        {0x10, 0}, {0x20, 0}, {0x30, 0}, {0x40, 0}, {0x50, 0}, {0x60, 0}, //
        {0x12, 1}, {0x22, 1}, {0x32, 1}, {0x42, 1}, {0x52, 1}, {0x62, 1}, //
        {0x13, 2}, {0x23, 2}, {0x33, 2}, {0x43, 2}, {0x53, 2}, {0x63, 2}, //
        {0x14, 3}, {0x24, 3}, {0x34, 3}, {0x44, 3}, {0x54, 3}, {0x64, 3},
    };
    for (std::uint32_t boardId = 0; boardId < 0x200; ++boardId) {
        const auto slot = slots.find(boardId);
        EXPECT_EQ(ApiGetSlotIdFromBoardId(boardId), slot == slots.end() ? 255 : slot->second) << std::hex << boardId;
    }
    EXPECT_EQ(ApiGetSlotIdFromBoardId(0xFFFFFF10), 255);
}

struct NumberFunction {
    std::string name;
    std::uint8_t (*function)();
    std::map<TAaSysComSicad, std::uint32_t> RecordingPlatform::*map;
};

void PrintTo(const NumberFunction& function, std::ostream* stream)
{
    *stream << function.name;
}

/// Board and CPU, which are found in the same way.
class CurrentNumberTest : public AutodetTest, public testing::WithParamInterface<NumberFunction> {
protected:
    CurrentNumberTest()
    {
        m_platform.nid = 0x0F01;
        m_drivers.rioId = 0x21;
        m_platform.*GetParam().map = {{0x0F010000, 0x1A}, {0x00210000, 0x2B}};
    }

    void beUnit(const std::string& id, std::uint32_t hwSwId)
    {
        m_drivers.units[0].id = id;
        m_drivers.units[0].hwSwId = hwSwId;
    }

    std::string failure(const std::string& driver, int code) const
    {
        return formatted("Warning 0x20063 %s(): %s() returned '0x%x' (not DDAL_OK)", GetParam().name.c_str(),
                         driver.c_str(), static_cast<unsigned>(code));
    }

    std::uint8_t ask() const { return GetParam().function(); }
};

TEST_P(CurrentNumberTest, IsThatOfTheOwnNodeIdOnTarnUnits)
{
    EXPECT_EQ(ask(), 0x1A);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("ddal_devicetree_get_hw_sw_id(0)",
                            "Debug 0x20063 ApiGetUnitType: hwswid = 0xa00123, unit type = 19 (EUnitType_Tarn)",
                            "AaSysComSicadGet(0x0, 0xF01)", "ddal_devicetree_get_unit_id(0, 7)"));
}

TEST_P(CurrentNumberTest, IsThatOfTheRapidIoIdOnOtherUnits)
{
    beUnit("HOLM", 0x501000);

    EXPECT_EQ(ask(), 0x2B);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("ddal_devicetree_get_hw_sw_id(0)",
                            "Debug 0x20063 ApiGetUnitType: hwswid = 0x501000, unit type = 9 (EUnitType_Holm)",
                            "ddal_rio_get_own_id()", "AaSysComSicadGet(0x0, 0x21)",
                            "ddal_devicetree_get_unit_id(0, 7)"));
}

TEST_P(CurrentNumberTest, IsThatOfTheRapidIoIdOnUnknownUnits)
{
    beUnit("XYZZ", 0x100000);
    EXPECT_EQ(ask(), 0x2B);
}

TEST_P(CurrentNumberTest, IsThatOfTheOwnNodeIdOnTwoOtherUnits)
{
    for (const char* id : {"FELA", "FELB"}) {
        std::construct_at(&vel::hwapi::adet::identityCaches());
        m_platform.clearCalls();
        beUnit(id, 0x501000);

        EXPECT_EQ(ask(), 0x1A) << id;

        EXPECT_THAT(m_platform.calls("AaSysComSicadGet"),
                    ElementsAre("AaSysComSicadGet(0x0, 0x21)", "AaSysComSicadGet(0x0, 0xF01)"));
        EXPECT_EQ(m_platform.calls().back(), "AaSysComSicadGet(0x0, 0xF01)");
    }
}

TEST_P(CurrentNumberTest, IsThatOfTheRapidIoIdOnUnitsWithASimilarId)
{
    for (const char* id : {"FELAN", "FEL", "FELC"}) {
        std::construct_at(&vel::hwapi::adet::identityCaches());
        beUnit(id, 0x501000);
        EXPECT_EQ(ask(), 0x2B) << id;
    }
}

TEST_P(CurrentNumberTest, IsFoundOnce)
{
    EXPECT_EQ(ask(), 0x1A);
    m_platform.clearCalls();
    m_platform.*GetParam().map = {{0x0F010000, 0x77}};

    EXPECT_EQ(ask(), 0x1A);
    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

TEST_P(CurrentNumberTest, IsLookedUpAgainWhenTheMapDoesNotKnowTheNode)
{
    (m_platform.*GetParam().map).clear();
    EXPECT_EQ(ask(), 0);

    (m_platform.*GetParam().map)[0x0F010000] = 0x1A;
    EXPECT_EQ(ask(), 0x1A);
}

TEST_P(CurrentNumberTest, HasEightBits)
{
    (m_platform.*GetParam().map)[0x0F010000] = 0x1FF;
    EXPECT_EQ(ask(), 0xFF);
}

TEST_P(CurrentNumberTest, IsUnknownWhenTheRapidIoIdCannotBeRead)
{
    beUnit("HOLM", 0x501000);
    m_platform.setResult("ddal_rio_get_own_id", 0x5);

    EXPECT_EQ(ask(), 0);

    EXPECT_THAT(m_platform.calls("Warning"), ElementsAre(failure("ddal_rio_get_own_id", 0x5)));
    EXPECT_THAT(m_platform.calls("AaSysComSicadGet"), IsEmpty());
    EXPECT_EQ(m_platform.calls().back(), "ddal_devicetree_get_unit_id(0, 7)");
}

TEST_P(CurrentNumberTest, IsThatOfTheOwnNodeIdOnTwoUnitsAlsoWhenTheRapidIoIdCannotBeRead)
{
    beUnit("FELB", 0x501000);
    m_platform.setResult("ddal_rio_get_own_id", 0x5);

    EXPECT_EQ(ask(), 0x1A);
    EXPECT_THAT(m_platform.calls("Warning"), ElementsAre(failure("ddal_rio_get_own_id", 0x5)));
}

TEST_P(CurrentNumberTest, IsKeptWhenTheUnitIdCannotBeRead)
{
    beUnit("FELB", 0x501000);
    m_platform.setResult("ddal_devicetree_get_unit_id", 0x9);
    EXPECT_EQ(ask(), 0x2B);
    EXPECT_THAT(m_platform.calls("Warning"), ElementsAre(failure("ddal_devicetree_get_unit_id", 0x9)));

    m_platform.setResult("ddal_devicetree_get_unit_id", 0);
    EXPECT_EQ(ask(), 0x2B);
}

TEST_P(CurrentNumberTest, IsKeptWhenTheIdOfATarnUnitCannotBeRead)
{
    m_platform.setResult("ddal_devicetree_get_unit_id", 0x9);
    EXPECT_EQ(ask(), 0x1A);
    EXPECT_THAT(m_platform.calls("AaSysComSicadGet"), ElementsAre("AaSysComSicadGet(0x0, 0xF01)"));
    EXPECT_THAT(m_platform.calls("Warning"), ElementsAre(failure("ddal_devicetree_get_unit_id", 0x9)));
    m_platform.clearCalls();

    EXPECT_EQ(ask(), 0x1A);
    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

TEST_P(CurrentNumberTest, IsUnknownWhenNeitherIdCanBeReadAndFoundAtTheNextCall)
{
    beUnit("HOLM", 0x501000);
    m_platform.setResult("ddal_rio_get_own_id", 0x5);
    m_platform.setResult("ddal_devicetree_get_unit_id", 0x9);
    EXPECT_EQ(ask(), 0);
    EXPECT_THAT(m_platform.calls("Warning"),
                ElementsAre(failure("ddal_rio_get_own_id", 0x5), failure("ddal_devicetree_get_unit_id", 0x9)));

    m_platform.setResult("ddal_rio_get_own_id", 0);
    m_platform.setResult("ddal_devicetree_get_unit_id", 0);
    EXPECT_EQ(ask(), 0x2B);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, CurrentNumberTest,
    testing::Values(NumberFunction{"ApiGetCurrentBoard", ApiGetCurrentBoard, &RecordingPlatform::boards},
                    NumberFunction{"ApiGetCurrentCpu", ApiGetCurrentCpu, &RecordingPlatform::cpus}));

} // namespace
} // namespace dorn::test
