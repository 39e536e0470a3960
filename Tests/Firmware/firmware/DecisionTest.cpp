// SPDX-License-Identifier: MIT
// Whether an update is needed.
#include "UpdateTest.hpp"

#include "ddal_boot.h"
#include "ddal_devicetree.h"
#include "ddal_fpga.h"

#include <filesystem>

namespace dorn::test {
namespace {

using ::testing::ElementsAre;
using testkit::FailEvery;
using testkit::FailNth;

class UbootDecisionTest : public UpdateTest {
protected:
    void startFrom(std::uint32_t location)
    {
        m_board.cells("boot-loader", "dorn,start-location", {location});
        m_board.text("boot-loader", "dorn,version", "522");
        useUnit("NAXE");
    }

    std::int32_t ask(std::int32_t force = 0) { return is_uboot_update_needed(m_name.data(), m_name.size(), force); }

    std::vector<std::string> lines() { return linesOf("is_uboot_update_needed"); }

    static constexpr const char* asked = "info is_uboot_update_needed(): ?";
    static constexpr const char* fromRam = "info is_uboot_update_needed(): uboot is started from 'uImage' (2)";
    static constexpr const char* active = "info is_uboot_update_needed(): active uboot version '522'";

    NameBuffer m_name;
};

TEST_F(UbootDecisionTest, NewerImageIsTaken)
{
    startFrom(2);
    putImage("NAX-THISTLE.bin", 523, 0x3A02);

    EXPECT_EQ(ask(), 1);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/NAX-THISTLE.bin");
    EXPECT_THAT(lines(), ElementsAre(asked, fromRam,
                                     "info is_uboot_update_needed(): uboot file '/ffs/run/boot/NAX-THISTLE.bin' "
                                     "version 0x20B (523)",
                                     active, "info is_uboot_update_needed(): yes"));
}

TEST_F(UbootDecisionTest, EqualImageIsTaken)
{
    startFrom(2);
    putImage("NAX-THISTLE.bin", 522);

    EXPECT_EQ(ask(), 1);
}

TEST_F(UbootDecisionTest, OlderImageIsNotTaken)
{
    startFrom(2);
    putImage("NAX-THISTLE.bin", 521);

    EXPECT_EQ(ask(), 0);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/NAX-THISTLE.bin");
    EXPECT_THAT(lines(), ElementsAre(asked, fromRam,
                                     "info is_uboot_update_needed(): uboot file '/ffs/run/boot/NAX-THISTLE.bin' "
                                     "version 0x209 (521)",
                                     active,
                                     "info is_uboot_update_needed(): uboot binary version is older than active, do "
                                     "not update wrong one!",
                                     "info is_uboot_update_needed(): no"));
}

TEST_F(UbootDecisionTest, NothingIsTakenWhenStartedFromFlash)
{
    startFrom(0);
    putImage("NAX-THISTLE.bin", 523);

    EXPECT_EQ(ask(), 0);
    EXPECT_THAT(lines(), ElementsAre(asked, "info is_uboot_update_needed(): uboot is started from 'primary' (0)",
                                     "info is_uboot_update_needed(): no"));
}

TEST_F(UbootDecisionTest, OnlyOneForces)
{
    startFrom(1);
    putImage("NAX-THISTLE.bin", 523);

    EXPECT_EQ(ask(2), 0);
    EXPECT_EQ(ask(-1), 0);
    EXPECT_EQ(lines()[1], "info is_uboot_update_needed(): uboot is started from 'backup' (1)");
    EXPECT_EQ(ask(1), 1);
}

TEST_F(UbootDecisionTest, OtherLocationIsUnknown)
{
    startFrom(3);

    EXPECT_EQ(ask(), 0);
    EXPECT_EQ(lines()[1], "info is_uboot_update_needed(): uboot is started from 'unknown' (3)");
}

TEST_F(UbootDecisionTest, UnknownLocationMayBeForcedToo)
{
    startFrom(3);
    putImage("NAX-THISTLE.bin", 523);

    EXPECT_EQ(ask(1), 1);
}

TEST_F(UbootDecisionTest, LocationMayBeNegative)
{
    startFrom(0xFFFFFFFF);

    EXPECT_EQ(ask(), 0);
    EXPECT_EQ(lines()[1], "info is_uboot_update_needed(): uboot is started from 'unknown' (-1)");
}

TEST_F(UbootDecisionTest, NameStaysWhenNothingIsLookedFor)
{
    startFrom(0);
    putImage("NAX-THISTLE.bin", 523);
    const std::string before = m_name.name();

    EXPECT_EQ(ask(), 0);
    EXPECT_EQ(m_name.name(), before);
}

TEST_F(UbootDecisionTest, NameIsCutToTheBuffer)
{
    startFrom(2);
    putImage("NAX-THISTLE.bin", 523);

    EXPECT_EQ(is_uboot_update_needed(m_name.data(), 5, 0), 1);
    EXPECT_EQ(m_name.name(), "/ffs");
    m_name = NameBuffer();
    EXPECT_EQ(is_uboot_update_needed(m_name.data(), 0, 0), 1);
    EXPECT_EQ(m_name.text.front(), 'x');
}

TEST_F(UbootDecisionTest, ElevenImagesAreTooMany)
{
    startFrom(2);
    for (int number = 0; number < 11; ++number) {
        putImage("NAX-THISTLE-" + std::to_string(number) + ".bin", 1);
    }

    EXPECT_EQ(ask(), -5);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(lines(), ElementsAre(asked, fromRam));
}

TEST_F(UbootDecisionTest, OwnHwSwIdThatCannotBeReadIsAFailure)
{
    startFrom(2);
    putImage("NAX-THISTLE.bin", 523);
    const FailNth<ddal_devicetree_get_hw_sw_id> failure(1);

    EXPECT_EQ(ask(), -6);
    EXPECT_EQ(m_name.name(), "");
}

TEST_F(UbootDecisionTest, UnitIdThatCannotBeReadIsAFailure)
{
    startFrom(2);
    putImage("NAX-THISTLE.bin", 523);
    const FailEvery<ddal_devicetree_get_unit_id> failure;

    EXPECT_EQ(ask(), -1);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(lines(), ElementsAre(asked, fromRam));
}

/// An active version, and the oldest image that is as new.
struct ActiveVersion {
    const char* text;
    std::uint32_t number;
};
void PrintTo(const ActiveVersion& version, std::ostream* stream)
{
    *stream << "'" << version.text << "'";
}

class ActiveVersionTest : public UbootDecisionTest, public ::testing::WithParamInterface<ActiveVersion> {};

INSTANTIATE_TEST_SUITE_P(Texts, ActiveVersionTest,
                         ::testing::Values(ActiveVersion{"0522", 522}, ActiveVersion{"0x20A", 0},
                                           ActiveVersion{"522-rc1", 522}, ActiveVersion{"", 0}, ActiveVersion{"rc1", 0},
                                           ActiveVersion{"2147483648", 0x80000000},
                                           ActiveVersion{"99999999999", 0xFFFFFFFF}));

TEST_P(ActiveVersionTest, IsADecimalNumberOf32Bits)
{
    m_board.text("boot-loader", "dorn,version", GetParam().text);
    m_board.cells("boot-loader", "dorn,start-location", {2});
    useUnit("NAXE");
    putImage("NAX-THISTLE.bin", GetParam().number);

    EXPECT_EQ(ask(), 1);
    EXPECT_EQ(lines()[3], "info is_uboot_update_needed(): active uboot version '" + std::string(GetParam().text) + "'");
    if (GetParam().number != 0) {
        putImage("NAX-THISTLE.bin", GetParam().number - 1);
        EXPECT_EQ(ask(), 0);
    }
}

TEST_F(UbootDecisionTest, VersionHasNoSign)
{
    startFrom(2);
    putImage("NAX-THISTLE.bin", 0x80000000);

    EXPECT_EQ(ask(), 1);
    EXPECT_EQ(lines()[2], "info is_uboot_update_needed(): uboot file '/ffs/run/boot/NAX-THISTLE.bin' version "
                          "0x80000000 (-2147483648)");
}

TEST_F(UbootDecisionTest, LocationThatCannotBeReadIsAFailure)
{
    startFrom(2);
    const FailNth<ddal_boot_get_uboot_id> failure(1);

    EXPECT_EQ(ask(), -10);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(lines(), ElementsAre(asked, driverFailure("is_uboot_update_needed", "ddal_boot_get_uboot_id")));
}

TEST_F(UbootDecisionTest, WithoutImageNothingIsToBeFlashed)
{
    startFrom(2);

    EXPECT_EQ(ask(), -7);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(lines(), ElementsAre(asked, fromRam, "info is_uboot_update_needed(): no uboot binary"));
}

TEST_F(UbootDecisionTest, SeveralImagesAreAFailure)
{
    startFrom(2);
    putImage("NAX-THISTLE-1.bin", 1);
    putImage("NAX-THISTLE-2.bin", 2);

    EXPECT_EQ(ask(), -8);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(lines(), ElementsAre(asked, fromRam));
}

TEST_F(UbootDecisionTest, FailureOfTheSearchIsPassedOn)
{
    startFrom(2);
    std::filesystem::remove(m_node.boardPath(directory));

    EXPECT_EQ(ask(), -4);
    EXPECT_EQ(m_name.name(), "");
}

TEST_F(UbootDecisionTest, ActiveVersionThatCannotBeReadIsAFailure)
{
    startFrom(2);
    putImage("NAX-THISTLE.bin", 523);
    const FailNth<ddal_boot_get_uboot_version> failure(1);

    EXPECT_EQ(ask(), -9);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_EQ(lines().back(), driverFailure("is_uboot_update_needed", "ddal_boot_get_uboot_version"));
}

TEST_F(UbootDecisionTest, StartFromRamIsTold)
{
    startFrom(2);

    EXPECT_EQ(is_uboot_booted_from_ram(), 1);
    EXPECT_THAT(linesOf("is_uboot_booted_from_ram"),
                ElementsAre("info is_uboot_booted_from_ram(): uboot is started from RAM (2)"));
}

TEST_F(UbootDecisionTest, StartFromFlashIsTold)
{
    startFrom(1);

    EXPECT_EQ(is_uboot_booted_from_ram(), 0);
    EXPECT_THAT(linesOf("is_uboot_booted_from_ram"),
                ElementsAre("info is_uboot_booted_from_ram(): uboot is NOT started from RAM, uboot update is not "
                            "needed (1)"));
}

TEST_F(UbootDecisionTest, StartFromThePrimaryCopyIsTold)
{
    startFrom(0);

    EXPECT_EQ(is_uboot_booted_from_ram(), 0);
    EXPECT_THAT(linesOf("is_uboot_booted_from_ram"),
                ElementsAre("info is_uboot_booted_from_ram(): uboot is NOT started from RAM, uboot update is not "
                            "needed (0)"));
}

TEST_F(UbootDecisionTest, StartFromElsewhereIsNotFromRam)
{
    startFrom(0xFFFFFFFF);

    EXPECT_EQ(is_uboot_booted_from_ram(), 0);
    EXPECT_THAT(linesOf("is_uboot_booted_from_ram"),
                ElementsAre("info is_uboot_booted_from_ram(): uboot is NOT started from RAM, uboot update is not "
                            "needed (-1)"));
}

TEST_F(UbootDecisionTest, StartThatCannotBeReadIsTold)
{
    startFrom(2);
    const FailNth<ddal_boot_get_uboot_id> failure(1);

    EXPECT_EQ(is_uboot_booted_from_ram(), -1);
    EXPECT_THAT(linesOf("is_uboot_booted_from_ram"),
                ElementsAre("info is_uboot_booted_from_ram(): uboot start location read failed (9)"));
}

class BmuDecisionTest : public UpdateTest {
protected:
    std::int32_t ask() { return is_bmu_update_needed(m_name.data(), m_name.size()); }
    std::int32_t askWithoutMcu(std::uint32_t board)
    {
        return is_bmu_update_needed_no_mcu(m_name.data(), m_name.size(), board, 0x3B01);
    }

    void addFpga(const std::string& address, std::uint32_t id, std::uint32_t version)
    {
        m_board.cells("fpgas/fpga@" + address, "reg", {id});
        m_board.cells("fpgas/fpga@" + address, "dorn,version", {version});
    }

    NameBuffer m_name;
};

TEST_F(BmuDecisionTest, NewerImageIsTaken)
{
    useUnit("KIVD");
    putImage("KIV-BMU.bin", 0x108);

    EXPECT_EQ(ask(), 1);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/KIV-BMU.bin");
    EXPECT_THAT(linesOf("is_bmu_update_needed"),
                ElementsAre("info is_bmu_update_needed(): bmu file '/ffs/run/boot/KIV-BMU.bin' version 0x108 (264)",
                            "info is_bmu_update_needed(): active bmu version 0x107 (263)",
                            "info is_bmu_update_needed(): yes"));
}

TEST_F(BmuDecisionTest, EqualAndOlderImagesAreNotTaken)
{
    useUnit("KIVD");
    putImage("KIV-BMU.bin", 0x107);
    EXPECT_EQ(ask(), 0);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/KIV-BMU.bin");
    EXPECT_EQ(linesOf("is_bmu_update_needed").back(), "info is_bmu_update_needed(): no");

    putImage("KIV-BMU.bin", 0x106);
    EXPECT_EQ(ask(), 0);
}

TEST_F(BmuDecisionTest, UnitWithTheSmallBmuHasItsOwnImage)
{
    useUnit("KIVN");
    putImage("KIV-uBMU.bin", 0x108);
    putImage("KIV-BMU.bin", 0x109);

    EXPECT_EQ(ask(), 1);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/KIV-uBMU.bin");
}

TEST_F(BmuDecisionTest, MinorDifferenceIsNotAllowed)
{
    useUnit("KIVD");
    putImage("KIV-BMU.bin", 0x108, 0x3A02);

    EXPECT_EQ(ask(), -7);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(linesOf("is_bmu_update_needed"), ElementsAre("debug is_bmu_update_needed(): no bmu binary"));
}

TEST_F(BmuDecisionTest, SeveralImagesAreAFailure)
{
    useUnit("KIVD");
    putImage("KIV-BMU-1.bin", 1);
    putImage("KIV-BMU-2.bin", 2);

    EXPECT_EQ(ask(), -8);
    EXPECT_EQ(m_name.name(), "");
}

TEST_F(BmuDecisionTest, ActiveVersionThatCannotBeReadIsAFailure)
{
    useUnit("KIVD");
    putImage("KIV-BMU.bin", 0x108);
    const FailNth<ddal_fpga_get_active_version> failure(1);

    EXPECT_EQ(ask(), -9);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_EQ(linesOf("is_bmu_update_needed").back(),
              driverFailure("is_bmu_update_needed", "ddal_fpga_get_active_version"));
}

TEST_F(BmuDecisionTest, FailureOfTheSearchIsPassedOn)
{
    useUnit("KIVD");
    putImage("KIV-BMU.bin", 0x108);
    const FailNth<ddal_devicetree_get_hw_sw_id> failure(1);

    EXPECT_EQ(ask(), -6);
    EXPECT_EQ(m_name.name(), "");
}

TEST_F(BmuDecisionTest, VersionHasNoSign)
{
    m_board.cells("fpgas/fpga@1", "dorn,version", {0x80000001});
    useUnit("KIVD");
    putImage("KIV-BMU.bin", 0x80000002);
    EXPECT_EQ(ask(), 1);
    EXPECT_THAT(linesOf("is_bmu_update_needed"),
                ElementsAre("info is_bmu_update_needed(): bmu file '/ffs/run/boot/KIV-BMU.bin' version 0x80000002 "
                            "(-2147483646)",
                            "info is_bmu_update_needed(): active bmu version 0x80000001 (-2147483647)",
                            "info is_bmu_update_needed(): yes"));
    putImage("KIV-BMU.bin", 1);
    EXPECT_EQ(ask(), 0);
}

TEST_F(BmuDecisionTest, UnitIdThatCannotBeReadIsAFailure)
{
    useUnit("KIVD");
    putImage("KIV-BMU.bin", 0x108);
    const FailEvery<ddal_devicetree_get_unit_id> failure;
    unit_init(); // forgets the unit

    EXPECT_EQ(ask(), -1);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(linesOf("is_bmu_update_needed"), ::testing::IsEmpty());
}

TEST_F(BmuDecisionTest, DirectoryThatIsMissingIsAFailure)
{
    useUnit("KIVD");
    std::filesystem::remove(m_node.boardPath(directory));

    EXPECT_EQ(ask(), -4);
    EXPECT_EQ(m_name.name(), "");
    m_name = NameBuffer();
    EXPECT_EQ(askWithoutMcu(2), -4);
    EXPECT_EQ(m_name.name(), "");
}

TEST_F(BmuDecisionTest, ElevenImagesAreTooMany)
{
    useUnit("KIVD");
    for (int number = 0; number < 11; ++number) {
        putImage("KIV-BMU-" + std::to_string(number) + ".bin", 1);
    }

    EXPECT_EQ(ask(), -5);
    EXPECT_EQ(m_name.name(), "");
    m_name = NameBuffer();
    EXPECT_EQ(askWithoutMcu(2), -5);
    EXPECT_EQ(m_name.name(), "");
}

TEST_F(BmuDecisionTest, NameIsCutToTheBuffer)
{
    addFpga("20001", 0x20001, 2);
    useUnit("KIVD");
    putImage("KIV-BMU.bin", 0x108);

    EXPECT_EQ(is_bmu_update_needed(m_name.data(), 5), 1);
    EXPECT_EQ(m_name.name(), "/ffs");
    m_name = NameBuffer();
    EXPECT_EQ(is_bmu_update_needed_no_mcu(m_name.data(), 9, 2, boardHwSwId), 1);
    EXPECT_EQ(m_name.name(), "/ffs/run");
    m_name = NameBuffer();
    EXPECT_EQ(is_bmu_update_needed(m_name.data(), 0), 1);
    EXPECT_EQ(m_name.text.front(), 'x');
}

TEST_F(BmuDecisionTest, WithoutMcuTheBoardTextIsGiven)
{
    addFpga("20001", 0x20001, 2);
    useUnit("NAXE");
    putImage("NAX-BMU.bin", 9, 0x3B01);
    putImage("KIV-BMU.bin", 3, 0x3B01);

    EXPECT_EQ(askWithoutMcu(2), 1);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/KIV-BMU.bin");
    const FailEvery<ddal_devicetree_get_unit_id> failure; // the unit does not matter
    unit_init();
    EXPECT_EQ(askWithoutMcu(2), 1);
}

TEST_F(BmuDecisionTest, WithoutMcuTheSmallBmuIsNotMeant)
{
    addFpga("20001", 0x20001, 2);
    useUnit("KIVN");
    putImage("KIV-uBMU.bin", 9, 0x3B01);
    putImage("KIV-BMU.bin", 3, 0x3B01);

    EXPECT_EQ(askWithoutMcu(2), 1);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/KIV-BMU.bin");
}

TEST_F(BmuDecisionTest, WithoutMcuOlderAndEqualImagesAreNotTaken)
{
    addFpga("20001", 0x20001, 0x80000002);
    useUnit("NAXE");
    for (const std::uint32_t version : {1U, 0x80000001U, 0x80000002U}) {
        putImage("KIV-BMU.bin", version, 0x3B01);
        EXPECT_EQ(askWithoutMcu(2), 0) << version;
        EXPECT_EQ(linesOf("is_bmu_update_needed_no_mcu").back(), "info is_bmu_update_needed_no_mcu(): no");
    }
    putImage("KIV-BMU.bin", 0x80000003, 0x3B01);
    EXPECT_EQ(askWithoutMcu(2), 1);
}

TEST_F(BmuDecisionTest, WithoutMcuSeveralImagesAreAFailure)
{
    useUnit("NAXE");
    putImage("KIV-BMU-1.bin", 1, 0x3B01);
    putImage("KIV-BMU-2.bin", 2, 0x3B01);

    EXPECT_EQ(askWithoutMcu(2), -8);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(linesOf("is_bmu_update_needed_no_mcu"), ::testing::IsEmpty());
}

TEST_F(BmuDecisionTest, WithoutMcuActiveVersionThatCannotBeReadIsAFailure)
{
    useUnit("NAXE");
    putImage("KIV-BMU.bin", 3, 0x3B01);
    const FailNth<ddal_fpga_get_active_version> failure(1);

    EXPECT_EQ(askWithoutMcu(2), -9);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_EQ(linesOf("is_bmu_update_needed_no_mcu").back(),
              driverFailure("is_bmu_update_needed_no_mcu", "ddal_fpga_get_active_version"));
}

TEST_F(BmuDecisionTest, WithoutMcuHwSwIdZeroIsTheBoards)
{
    addFpga("20001", 0x20001, 2);
    useUnit("NAXE");
    putImage("KIV-BMU.bin", 3, boardHwSwId);

    EXPECT_EQ(askWithoutMcu(2), -7);
    EXPECT_EQ(is_bmu_update_needed_no_mcu(m_name.data(), m_name.size(), 2, 0), 1);
    const FailNth<ddal_devicetree_get_hw_sw_id> failure(1);
    EXPECT_EQ(is_bmu_update_needed_no_mcu(m_name.data(), m_name.size(), 2, 0), -6);
    EXPECT_EQ(m_name.name(), "");
}

TEST_F(BmuDecisionTest, BoardCodeSaysWhichBmuIsAsked)
{
    addFpga("20001", 0x20001, 2);
    addFpga("30001", 0x30001, 3);
    addFpga("40001", 0x40001, 4);
    useUnit("NAXE");
    putImage("KIV-BMU.bin", 4, 0x3B01);

    EXPECT_EQ(askWithoutMcu(2), 1);
    EXPECT_THAT(linesOf("is_bmu_update_needed_no_mcu"),
                ElementsAre("info is_bmu_update_needed_no_mcu(): bmu file '/ffs/run/boot/KIV-BMU.bin' version 0x4 (4)",
                            "info is_bmu_update_needed_no_mcu(): active bmu version 0x2 (2)",
                            "info is_bmu_update_needed_no_mcu(): yes"));
    EXPECT_EQ(askWithoutMcu(3), 1);
    EXPECT_EQ(linesOf("is_bmu_update_needed_no_mcu")[1],
              "info is_bmu_update_needed_no_mcu(): active bmu version 0x3 (3)");
    EXPECT_EQ(askWithoutMcu(4), 0);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/KIV-BMU.bin");
}

TEST_F(BmuDecisionTest, OtherBoardCodesAreNotSupported)
{
    useUnit("NAXE");
    for (const std::uint32_t board : {0U, 1U, 5U, 0xFFFFFFFFU}) {
        EXPECT_EQ(askWithoutMcu(board), -10);
        EXPECT_EQ(m_name.name(), "");
    }
    EXPECT_EQ(linesOf("is_bmu_update_needed_no_mcu").back(),
              "debug is_bmu_update_needed_no_mcu(): no support ddal board 0xFFFFFFFF");
}

TEST_F(BmuDecisionTest, WithoutMcuMinorDifferenceIsNotAllowedEither)
{
    useUnit("NAXE");
    putImage("KIV-BMU.bin", 4, 0x3B02);

    EXPECT_EQ(askWithoutMcu(2), -7);
    EXPECT_THAT(linesOf("is_bmu_update_needed_no_mcu"),
                ElementsAre("debug is_bmu_update_needed_no_mcu(): no bmu binary"));
}

class FpgaDecisionTest : public UpdateTest {
protected:
    std::int32_t ask() { return is_fpga_update_needed(m_name.data(), m_name.size()); }

    NameBuffer m_name;
};

TEST_F(FpgaDecisionTest, AnotherVersionIsTaken)
{
    useUnit("NAXE");
    putImage("NAX-BRINDLE.bin", 0x20011, 0x3A02);

    EXPECT_EQ(ask(), 1);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/NAX-BRINDLE.bin");
    EXPECT_THAT(linesOf("is_fpga_update_needed"),
                ElementsAre("info is_fpga_update_needed(): brindle file '/ffs/run/boot/NAX-BRINDLE.bin' version "
                            "0x20011 (131089)",
                            "info is_fpga_update_needed(): active brindle version 0x20010 (131088)",
                            "info is_fpga_update_needed(): yes"));
}

TEST_F(FpgaDecisionTest, OlderVersionIsTakenToo)
{
    useUnit("NAXE");
    putImage("NAX-BRINDLE.bin", 1);

    EXPECT_EQ(ask(), 1);
}

TEST_F(FpgaDecisionTest, SameVersionIsNotTaken)
{
    useUnit("NAXE");
    putImage("NAX-BRINDLE.bin", 0x20010);

    EXPECT_EQ(ask(), 0);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/NAX-BRINDLE.bin");
    EXPECT_EQ(linesOf("is_fpga_update_needed").back(), "info is_fpga_update_needed(): no");
}

TEST_F(FpgaDecisionTest, UnitWithoutFpgaIsNotSupported)
{
    useUnit("KIVN");

    EXPECT_EQ(ask(), -10);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(linesOf("is_fpga_update_needed"),
                ElementsAre("debug is_fpga_update_needed(): no fpga specified for unit 'KIVN'"));
}

TEST_F(FpgaDecisionTest, WithoutImageNothingIsToBeFlashed)
{
    useUnit("NAXE");

    EXPECT_EQ(ask(), -7);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(linesOf("is_fpga_update_needed"), ElementsAre("debug is_fpga_update_needed(): no brindle binary"));
}

TEST_F(FpgaDecisionTest, SeveralImagesAreAFailure)
{
    useUnit("NAXE");
    putImage("NAX-BRINDLE-1.bin", 1);
    putImage("NAX-BRINDLE-2.bin", 2);

    EXPECT_EQ(ask(), -8);
    EXPECT_EQ(m_name.name(), "");
}

TEST_F(FpgaDecisionTest, ActiveVersionThatCannotBeReadIsAFailure)
{
    useUnit("NAXE");
    putImage("NAX-BRINDLE.bin", 1);
    const FailNth<ddal_fpga_get_active_version> failure(1);

    EXPECT_EQ(ask(), -9);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_EQ(linesOf("is_fpga_update_needed").back(),
              driverFailure("is_fpga_update_needed", "ddal_fpga_get_active_version"));
}

TEST_F(FpgaDecisionTest, VersionHasNoSign)
{
    m_board.cells("fpgas/fpga@10002", "dorn,version", {0x80000000});
    useUnit("NAXE");
    putImage("NAX-BRINDLE.bin", 0x80000000);
    EXPECT_EQ(ask(), 0);
    EXPECT_THAT(linesOf("is_fpga_update_needed"),
                ElementsAre("info is_fpga_update_needed(): brindle file '/ffs/run/boot/NAX-BRINDLE.bin' version "
                            "0x80000000 (-2147483648)",
                            "info is_fpga_update_needed(): active brindle version 0x80000000 (-2147483648)",
                            "info is_fpga_update_needed(): no"));
    putImage("NAX-BRINDLE.bin", 0xFFFFFFFF);
    EXPECT_EQ(ask(), 1);
}

TEST_F(FpgaDecisionTest, FpgaIsThatOfTheUnitsRowAlsoWhereTheLocalOneIsAnother)
{
    m_board.cells("fpgas/fpga@10001", "reg", {0x10001});
    m_board.cells("fpgas/fpga@10001", "dorn,version", {77});
    useUnit("NAXF");
    putImage("NAX-MARLOW.bin", 77);

    EXPECT_EQ(ask(), 0);
    EXPECT_EQ(linesOf("is_fpga_update_needed")[1], "info is_fpga_update_needed(): active marlow version 0x4D (77)");
}

TEST_F(FpgaDecisionTest, UnitIdThatCannotBeReadIsAFailure)
{
    useUnit("NAXE");
    putImage("NAX-BRINDLE.bin", 1);
    {
        const FailNth<ddal_devicetree_get_unit_id> failure(1); // the finder's: the identity is known
        EXPECT_EQ(ask(), -1);
        EXPECT_EQ(m_name.name(), "");
    }
    const FailEvery<ddal_devicetree_get_unit_id> failure;
    EXPECT_EQ(unit_init(), -1);
    EXPECT_EQ(ask(), -10);
    EXPECT_EQ(linesOf("is_fpga_update_needed").back(), "debug is_fpga_update_needed(): no fpga specified for unit ''");
}

TEST_F(FpgaDecisionTest, OwnHwSwIdThatCannotBeReadIsAFailure)
{
    useUnit("NAXE");
    putImage("NAX-BRINDLE.bin", 1);
    const FailNth<ddal_devicetree_get_hw_sw_id> failure(1);

    EXPECT_EQ(ask(), -6);
    EXPECT_EQ(m_name.name(), "");
}

TEST_F(FpgaDecisionTest, ElevenImagesAreTooMany)
{
    useUnit("NAXE");
    for (int number = 0; number < 11; ++number) {
        putImage("NAX-BRINDLE-" + std::to_string(number) + ".bin", 1, number == 0 ? boardHwSwId : 0x3B01);
    }

    EXPECT_EQ(ask(), -5);
    EXPECT_EQ(m_name.name(), "");
}

TEST_F(FpgaDecisionTest, NameIsCutToTheBuffer)
{
    useUnit("NAXE");
    putImage("NAX-BRINDLE.bin", 1);
    std::array<char, 8> name{};

    EXPECT_EQ(is_fpga_update_needed(name.data(), 5), 1);
    EXPECT_STREQ(name.data(), "/ffs");
    name.fill('x');
    EXPECT_EQ(is_fpga_update_needed(name.data(), 0), 1);
    EXPECT_EQ(name.front(), 'x');
}

} // namespace
} // namespace dorn::test
