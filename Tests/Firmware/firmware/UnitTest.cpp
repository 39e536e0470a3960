// SPDX-License-Identifier: MIT
// Who the unit is, and what it has.
#include "LongDriverText.hpp"
#include "UpdateTest.hpp"

#include "AaFile.h"
#include "FailingFilePort.hpp"
#include "ddal_devicetree.h"

#include <filesystem>

namespace dorn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testkit::CountCalls;
using testkit::FailEvery;
using testkit::FailNth;

class UnitTest : public UpdateTest {};

/// What get_fpga() gives.
struct Fpga {
    std::int32_t result;
    std::string name;
    std::string chipIdentifier;
    std::uint32_t id;

    bool operator==(const Fpga&) const = default;
};

void PrintTo(const Fpga& fpga, std::ostream* stream)
{
    *stream << fpga.result << " " << fpga.name << " " << fpga.chipIdentifier << " " << fpga.id;
}

Fpga fpga()
{
    const char* name = nullptr;
    const char* chipIdentifier = nullptr;
    std::uint32_t id = 0xDEADBEEF;
    const std::int32_t result = get_fpga(&name, &chipIdentifier, &id);
    return {result, name, chipIdentifier, id};
}

TEST_F(UnitTest, TypeIsTheFirstThreeCharacters)
{
    useUnit("NAXE");

    EXPECT_STREQ(unit_version(), "NAXE");
    EXPECT_STREQ(unit_type(), "NAX");
}

TEST_F(UnitTest, ShortAndLongIdsAreCut)
{
    useUnit("NA");
    EXPECT_STREQ(unit_version(), "NA");
    EXPECT_STREQ(unit_type(), "NA");
}

TEST_F(UnitTest, IdHasAtMost31Characters)
{
    useUnit(std::string(40, 'N'));

    EXPECT_EQ(unit_version(), std::string(31, 'N'));
    EXPECT_STREQ(unit_type(), "NNN");
}

TEST_F(UnitTest, IdIsReadOnce)
{
    useUnit("NAXE");
    const CountCalls<ddal_devicetree_get_unit_id> calls;

    unit_version();
    unit_type();
    EXPECT_EQ(calls.count(), 0U);
    EXPECT_EQ(unit_init(), 0);
    EXPECT_EQ(calls.count(), 1U);
}

TEST_F(UnitTest, IdThatCannotBeReadIsEmptyAndTriedAgain)
{
    useUnit("NAXE");
    {
        const FailEvery<ddal_devicetree_get_unit_id> failure;
        EXPECT_EQ(unit_init(), -1);
        EXPECT_THAT(linesOf("unit_init"), ElementsAre(driverFailure("unit_init", "ddal_devicetree_get_unit_id")));
        EXPECT_STREQ(unit_version(), "");
        EXPECT_STREQ(unit_type(), "");
        EXPECT_EQ(failure.count(), 3U);
    }
    EXPECT_STREQ(unit_type(), "NAX");
    EXPECT_STREQ(unit_version(), "NAXE");
}

TEST_F(UnitTest, DriverTextIsCutAt63Characters)
{
    useUnit("NAXE");
    const FailNth<ddal_devicetree_get_unit_id> failure(1, talkativeCode);

    EXPECT_EQ(unit_init(), -1);
    EXPECT_THAT(linesOf("unit_init"),
                ElementsAre("info unit_init(): ddal_devicetree_get_unit_id() failed with error 12345 '" +
                            talkativeText().substr(0, 63) + "'"));
}

TEST_F(UnitTest, UnitWithoutIdHasNothing)
{
    useUnit("NAXE");
    const FailEvery<ddal_devicetree_get_unit_id> failure;
    EXPECT_EQ(unit_init(), -1); // forgets the unit

    EXPECT_EQ(fpga(), (Fpga{-1, "unknown", "unknown", 0}));
    EXPECT_EQ(fpga_id_local(), 0);
    EXPECT_STREQ(unit_version(), "");
    EXPECT_STREQ(unit_type(), "");
}

TEST_F(UnitTest, FpgaOutputsMayBeNull)
{
    useUnit("NAXE");
    const char* name = nullptr;
    const char* chipIdentifier = nullptr;
    std::uint32_t id = 0;

    EXPECT_EQ(get_fpga(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(get_fpga(&name, nullptr, nullptr), 0);
    EXPECT_STREQ(name, "brindle");
    EXPECT_EQ(get_fpga(nullptr, &chipIdentifier, nullptr), 0);
    EXPECT_STREQ(chipIdentifier, "BRINDLE");
    EXPECT_EQ(get_fpga(nullptr, nullptr, &id), 0);
    EXPECT_EQ(id, 0x10002U);
}

struct UnitRow {
    const char* unit;
    Fpga fpga;
    std::int32_t localId;
};

void PrintTo(const UnitRow& row, std::ostream* stream)
{
    *stream << row.unit;
}

class UnitTableTest : public UnitTest, public ::testing::WithParamInterface<UnitRow> {};

TEST_P(UnitTableTest, FpgaIsTheUnits)
{
    useUnit(GetParam().unit);

    EXPECT_EQ(fpga(), GetParam().fpga);
    EXPECT_EQ(fpga_id_local(), GetParam().localId);
}

const Fpga unknown{-1, "unknown", "unknown", 0};

INSTANTIATE_TEST_SUITE_P(AllRows, UnitTableTest,
                         ::testing::Values(UnitRow{"NAXE", {0, "brindle", "BRINDLE", 0x10002}, 0x10002},
                                           UnitRow{"NAXF", {0, "marlow", "MARLOW", 0x10001}, 0x10002},
                                           UnitRow{"NAXA", {0, "fenwick", "FENWICK", 0x10001}, 0x10001},
                                           UnitRow{"NAX", {0, "fenwick", "FENWICK", 0x10001}, 0x10001},
                                           UnitRow{"NAXEE", {0, "fenwick", "FENWICK", 0x10001}, 0x10001},
                                           UnitRow{"RUDA", {0, "sorrel", "SORREL", 0x60001}, 0x60001},
                                           UnitRow{"RUEA", {0, "sorrel", "SORREL", 0x60001}, 0},
                                           UnitRow{"RUGA", {0, "hollis", "HOLLIS", 0x70001}, 0x70001},
                                           UnitRow{"RUFA", {0, "hollis", "HOLLIS", 0x70001}, 0},
                                           UnitRow{"KIVN", unknown, 0}, UnitRow{"naxe", unknown, 0},
                                           UnitRow{"NA", unknown, 0}),
                         [](const auto& row) { return std::string(row.param.unit); });

class BmuResetTest : public UnitTest {
protected:
    void SetUp() override
    {
        m_node.writeBoardFile(direct, "0\n");
        m_node.writeBoardFile(platform, "0\n");
    }

    static constexpr const char* direct = "/sys/bus/i2c/devices/0-0031/fpga_reconfig";
    static constexpr const char* platform = "/sys/devices/platform/i2c-octeon.0/i2c-0/0-0031/fpga_reconfig";
};

TEST_F(BmuResetTest, AttributeIsTheUnits)
{
    useUnit("KIVN");

    EXPECT_EQ(ddal_bmu_reset(), 0);
    EXPECT_EQ(m_node.readBoardFile(direct), "1");
    EXPECT_EQ(m_node.readBoardFile(platform), "0\n");
    EXPECT_THAT(m_syslog.texts(), IsEmpty());
}

class BmuResetPlatformTest : public BmuResetTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(BmuResetPlatformTest, AttributeIsThePlatforms)
{
    useUnit(GetParam());

    EXPECT_EQ(ddal_bmu_reset(), 0);
    EXPECT_EQ(m_node.readBoardFile(direct), "0\n");
    EXPECT_EQ(m_node.readBoardFile(platform), "1");
}

INSTANTIATE_TEST_SUITE_P(AllUnits, BmuResetPlatformTest, ::testing::Values("KIVD", "KIVE", "KIVR", "KIVS"));

TEST_F(BmuResetTest, OtherUnitsHaveNone)
{
    useUnit("KIVX");

    EXPECT_EQ(ddal_bmu_reset(), 0);
    EXPECT_EQ(m_node.readBoardFile(direct), "0\n");
    EXPECT_EQ(m_node.readBoardFile(platform), "0\n");
}

/// The unit id is read anew, whatever unit this process has known.
TEST_F(BmuResetTest, UnitIsTheOneThatTheDriverNamesNow)
{
    useUnit("KIVX");
    {
        const testkit::TestNode other;
        testkit::TestBoard board;
        board.text("units/unit@0", "dorn,unit-id", "KIVN");
        other.writeBoardFile(direct, "0\n");

        EXPECT_STREQ(unit_version(), "KIVX");
        EXPECT_EQ(ddal_bmu_reset(), 0);
        EXPECT_EQ(other.readBoardFile(direct), "1");
    }
    unit_init(); // drivers open again what the end of a node closes
}

TEST_F(BmuResetTest, UnitIdThatCannotBeReadIsAFailure)
{
    useUnit("KIVN");
    const FailNth<ddal_devicetree_get_unit_id> failure(1);

    EXPECT_EQ(ddal_bmu_reset(), -1);
    EXPECT_THAT(m_syslog.texts(), ElementsAre(driverFailure("ddal_bmu_reset", "ddal_devicetree_get_unit_id")));
}

TEST_F(BmuResetTest, AttributeThatCannotBeOpenedIsLogged)
{
    std::filesystem::remove_all(m_node.boardPath("/sys"));
    useUnit("KIVN");
    EXPECT_EQ(ddal_bmu_reset(), 0);
    EXPECT_THAT(linesOf("ddal_bmu_reset"),
                ElementsAre("info ddal_bmu_reset(): fopen(/sys/bus/i2c/devices/0-0031/fpga_reconfig, w) failed"));
}

TEST_F(BmuResetTest, PlatformsAttributeThatCannotBeOpenedIsLogged)
{
    std::filesystem::remove_all(m_node.boardPath("/sys"));
    useUnit("KIVE");
    EXPECT_EQ(ddal_bmu_reset(), 0);
    EXPECT_THAT(linesOf("ddal_bmu_reset"),
                ElementsAre("info ddal_bmu_reset(): "
                            "fopen(/sys/devices/platform/i2c-octeon.0/i2c-0/0-0031/fpga_reconfig, w) failed"));
}

TEST_F(BmuResetTest, AttributeThatCannotBeWrittenIsLogged)
{
    useUnit("KIVN");
    const FailNth<AaFileWrite> failure(1);

    EXPECT_EQ(ddal_bmu_reset(), 0);
    EXPECT_THAT(linesOf("ddal_bmu_reset"), ElementsAre("info ddal_bmu_reset(): fwrite(1, 1, 1, file) failed with 0"));
}

TEST_F(BmuResetTest, PlatformsAttributeThatCannotBeWrittenIsLogged)
{
    useUnit("KIVS");
    const testkit::FullDisk disk;

    EXPECT_EQ(ddal_bmu_reset(), 0);
    EXPECT_THAT(linesOf("ddal_bmu_reset"), ElementsAre("info ddal_bmu_reset(): fwrite(1, 1, 1, file) failed with 0"));
}

} // namespace
} // namespace dorn::test
