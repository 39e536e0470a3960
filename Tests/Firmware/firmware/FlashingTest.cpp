// SPDX-License-Identifier: MIT
// Flashing, and what it leaves behind.
#include "UpdateTest.hpp"

#include "AaFile.h"
#include "FailingFilePort.hpp"
#include "binary.h"
#include "ddal_boot.h"
#include "ddal_devicetree.h"
#include "ddal_fpga.h"
#include "description/DescribedBoard.hpp"
#include "device/BootLoader.hpp"
#include "device/Fpga.hpp"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>

extern "C" std::int32_t updateFpgaInC(void);

namespace dorn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testkit::CountCalls;
using testkit::FailNth;

class FlashingTest : public UpdateTest {
protected:
    /// What lies in a slot of an FPGA, if anything was flashed.
    static std::optional<board::FlashedImage> flashed(std::uint32_t fpga, std::uint32_t slot)
    {
        for (const auto& one : board::Fpga(board::DescribedBoard::get().part("fpgas", fpga)).slots()) {
            if (one.number == slot) {
                return one.area.flashed();
            }
        }
        return std::nullopt;
    }
    /// Its version; 0 when nothing was flashed.
    static std::uint32_t flashedVersion(std::uint32_t fpga, std::uint32_t slot)
    {
        const auto found = flashed(fpga, slot);
        return found ? found->version.value_or(0) : 0;
    }
    static std::optional<board::FlashedImage> flashedBootLoader()
    {
        return board::BootLoader(board::DescribedBoard::get().part("boot-loader")).flash().flashed();
    }
    /// Every byte that was flashed.
    std::string bytesOf(const std::optional<board::FlashedImage>& flashed) const
    {
        return flashed && flashed->isWhole ? m_node.readBoardFile(flashed->path) : "nothing";
    }

    /// Gives the board an FPGA with two slots. Before anything asks a driver.
    void addFpga(std::uint32_t id)
    {
        std::array<char, 32> node{};
        std::snprintf(node.data(), node.size(), "fpgas/fpga@%x", id);
        m_board.cells(node.data(), "reg", {id});
        m_board.cells(node.data(), "dorn,version", {1});
        m_board.cells(node.data(), "dorn,version-offset", {0});
        for (const std::uint32_t slot : {1U, 2U}) {
            const std::string part = std::string(node.data()) + "/slot@" + std::to_string(slot);
            m_board.cells(part, "reg", {slot});
            m_board.cells(part, "dorn,size", {0x10000});
        }
    }

    std::vector<std::string> temporaryFiles() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_node.boardPath("/tmp"))) {
            names.push_back(entry.path().filename());
        }
        return names;
    }

    static constexpr const char* image = "/ffs/run/boot/image.bin";
};

TEST_F(FlashingTest, BootLoaderIsFlashed)
{
    useUnit("NAXE");
    putImage("image.bin", 523);

    EXPECT_EQ(update_uboot(image), 0);
    EXPECT_EQ(bytesOf(flashedBootLoader()), payloadWith(523));
    EXPECT_THAT(linesOf("update_uboot"), ElementsAre("info update_uboot(): start uboot update",
                                                     "info update_uboot(): binary '/ffs/run/boot/image.bin' is ok",
                                                     "info update_uboot(): uboot update is ok"));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(FlashingTest, BootLoaderThatCannotBeFlashedIsAFailure)
{
    useUnit("NAXE");
    putImage("image.bin", 523);
    const FailNth<ddal_boot_update_uboot> failure(1);

    EXPECT_EQ(update_uboot(image), -3);
    EXPECT_THAT(linesOf("update_uboot"), ElementsAre("info update_uboot(): start uboot update",
                                                     "info update_uboot(): binary '/ffs/run/boot/image.bin' is ok",
                                                     driverFailure("update_uboot", "ddal_boot_update_uboot")));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(FlashingTest, DamagedImageIsNotFlashed)
{
    useUnit("NAXE");
    putImage("image.bin", 523);
    std::string content = m_node.readBoardFile(image);
    content[10] = static_cast<char>(content[10] ^ 1);
    m_node.writeBoardFile(image, content);
    const CountCalls<ddal_boot_update_uboot> boots;
    const CountCalls<ddal_fpga_update_mod> fpgas;

    EXPECT_EQ(update_uboot(image), -1);
    EXPECT_EQ(update_bmu(image, 0), -1);
    EXPECT_EQ(update_fpga(image), -1);
    EXPECT_EQ(boots.count() + fpgas.count(), 0U);
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(FlashingTest, ImageThatIsMissingIsAFailure)
{
    useUnit("NAXE");

    EXPECT_EQ(update_uboot(image), -1);
    EXPECT_THAT(linesOf("update_uboot"), ElementsAre("info update_uboot(): start uboot update",
                                                     "info update_uboot(): binary_crc() failed 70406"));
}

TEST_F(FlashingTest, PayloadThatCannotBeCopiedIsAFailure)
{
    useUnit("NAXE");
    putImage("image.bin", 523);
    std::filesystem::remove(m_node.boardPath("/tmp"));
    const CountCalls<ddal_boot_update_uboot> boots;
    const CountCalls<ddal_fpga_update_mod> fpgas;

    EXPECT_EQ(update_uboot(image), -2);
    EXPECT_EQ(update_bmu(image, 0), -2);
    EXPECT_EQ(update_fpga(image), -2);
    EXPECT_EQ(boots.count() + fpgas.count(), 0U);
}

/// What an update of each kind of firmware needs.
struct Update {
    const char* name;
    const char* part; ///< in its first line
    std::int32_t (*flash)(const char* image);
    const char* driver;    ///< function that it calls
    unsigned steps;        ///< how often
    const char* temporary; ///< file
};
void PrintTo(const Update& update, std::ostream* stream)
{
    *stream << update.name;
}

class AnyUpdateTest : public FlashingTest, public ::testing::WithParamInterface<Update> {
protected:
    AnyUpdateTest()
    {
        useUnit("NAXE");
        putImage("image.bin", 523);
    }
    std::int32_t update() const { return GetParam().flash(image); }
    /// A line of the update.
    std::string line(const std::string& text) const { return "info " + m_function + "(): " + text; }

    const std::string m_function = GetParam().name;
    const std::string m_start = line("start " + std::string(GetParam().part) + " update");
    const std::string m_isOk = line("binary '/ffs/run/boot/image.bin' is ok");
};

INSTANTIATE_TEST_SUITE_P(
    All, AnyUpdateTest,
    ::testing::Values(Update{"update_uboot", "uboot", update_uboot, "ddal_boot_update_uboot", 1, "/tmp/u-boot.uim"},
                      Update{"update_bmu", "bmu", [](const char* name) { return update_bmu(name, 0); },
                             "ddal_fpga_update_mod", 1, "/tmp/bmufile"},
                      Update{"update_fpga", "fpga", update_fpga, "ddal_fpga_update_mod", 2, "/tmp/fpgafile"}),
    [](const auto& update) { return std::string(update.param.name); });

TEST_P(AnyUpdateTest, DamagedImageIsTold)
{
    std::string content = m_node.readBoardFile(image);
    content[10] = static_cast<char>(content[10] ^ 1);
    m_node.writeBoardFile(image, content);

    EXPECT_EQ(update(), -1);
    EXPECT_THAT(linesOf(m_function), ElementsAre(m_start, line("binary_crc() failed 70413")));
}

TEST_P(AnyUpdateTest, TemporaryFileThatCannotBeMadeIsTold)
{
    std::filesystem::remove(m_node.boardPath("/tmp"));

    EXPECT_EQ(update(), -2);
    EXPECT_THAT(linesOf(m_function), ElementsAre(m_start, m_isOk, line("binary_copy_without_trailer() failed -8")));
}

TEST_P(AnyUpdateTest, TemporaryFileHoldsThePayloadAndNothingElse)
{
    m_node.writeBoardFile(GetParam().temporary, std::string(20'000, 'x')); // what an earlier one has left
    const FailNth<AaFileRemove> failure(2);                                // the first one clears the place

    EXPECT_EQ(update(), 0);
    EXPECT_EQ(linesOf(m_function).back(), line("remove '" + std::string(GetParam().temporary) + "' failed 5"));
    EXPECT_THAT(temporaryFiles(), ElementsAre(std::string(GetParam().temporary).substr(5)));
    EXPECT_EQ(m_node.readBoardFile(GetParam().temporary), payloadWith(523));
}

TEST_P(AnyUpdateTest, FailureToRemoveDoesNotHideThatOfTheDriver)
{
    for (unsigned step = 0; step < GetParam().steps; ++step) {
        m_board.fail(GetParam().driver, DDAL_ERROR_IO, 1, step);
        const FailNth<AaFileRemove> failure(2);
        EXPECT_EQ(update(), -3 - static_cast<std::int32_t>(step));
        const std::vector<std::string> lines = linesOf(m_function);
        EXPECT_EQ(lines[lines.size() - 2], driverFailure(m_function, GetParam().driver));
        EXPECT_EQ(lines.back(), line("remove '" + std::string(GetParam().temporary) + "' failed 5"));
    }
}

/// What could not be opened is not the update's, and stays.
TEST_P(AnyUpdateTest, WhatCouldNotBeOpenedIsNotRemoved)
{
    std::filesystem::create_symlink("/missing", m_node.boardRoot() + GetParam().temporary);
    const FailNth<AaFileRemove> failure(1);

    EXPECT_EQ(update(), -2);
    EXPECT_EQ(failure.count(), 1U);
    EXPECT_TRUE(std::filesystem::is_symlink(m_node.boardRoot() + GetParam().temporary));
    EXPECT_EQ(linesOf(m_function).back(), line("binary_copy_without_trailer() failed -8"));
}

TEST_P(AnyUpdateTest, FullDiskEndsItBeforeFlashing)
{
    const CountCalls<ddal_boot_update_uboot> boots;
    const CountCalls<ddal_fpga_update_mod> fpgas;
    for (const std::uint64_t room : {0U, 1U, 1024U, 4999U}) {
        const testkit::FullDisk disk(room);
        EXPECT_EQ(update(), -2) << room;
        EXPECT_THAT(temporaryFiles(), IsEmpty()) << room;
    }
    EXPECT_EQ(boots.count() + fpgas.count(), 0U);
    EXPECT_EQ(linesOf(m_function).back(), "info " + m_function + "(): binary_copy_without_trailer() failed -10");
}

TEST_P(AnyUpdateTest, ImageThatDisappearsAfterItsCheckIsNotCopied)
{
    unsigned opened = 0;
    {
        const CountCalls<AaFileOpen> opens;
        ASSERT_EQ(binary_crc(image), BINARY_OK);
        opened = opens.count();
    }
    linesOf(m_function);
    const FailNth<AaFileOpen> failure(opened + 1);

    EXPECT_EQ(update(), -2);
    EXPECT_EQ(linesOf(m_function).back(), "info " + m_function + "(): binary_copy_without_trailer() failed -1");
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

/// Whichever call of the platform fails: a result that the header names, nothing left in /tmp. The fixture looks at the
/// descriptors.
TEST_P(AnyUpdateTest, FailureOfAnyReadOrWriteLeavesNothingBehind)
{
    const auto check = [this](std::int32_t result, unsigned nth) {
        EXPECT_TRUE(result == 0 || result == -1 || result == -2) << result << " at call " << nth;
        EXPECT_THAT(temporaryFiles(), IsEmpty()) << "at call " << nth;
    };

    for (unsigned nth = 1; nth <= 12; ++nth) {
        {
            const FailNth<AaFileOpen> failure(nth);
            check(update(), nth);
        }
        {
            const FailNth<AaFileRead> failure(nth);
            check(update(), nth);
        }
        {
            const FailNth<AaFileWrite> failure(nth);
            check(update(), nth);
        }
        {
            const FailNth<AaFileSetPosition> failure(nth);
            check(update(), nth);
        }
        {
            const FailNth<AaFileClose> failure(nth);
            check(update(), nth);
        }
    }
}

TEST_P(AnyUpdateTest, DriverThatFailsAtAnyStepLeavesNothingBehind)
{
    const char* const driver = GetParam().driver;
    for (unsigned step = 0; step < GetParam().steps; ++step) {
        m_board.fail(driver, DDAL_ERROR_IO, 1, step);
        EXPECT_EQ(update(), -3 - static_cast<std::int32_t>(step));
        EXPECT_EQ(linesOf(m_function).back(), driverFailure(m_function, driver));
        EXPECT_THAT(temporaryFiles(), IsEmpty());
    }
    EXPECT_EQ(update(), 0);
}

TEST_P(AnyUpdateTest, ImageWithoutPayloadIsRefused)
{
    m_node.writeBoardFile(image, trailerOf("") + wordOf(0));
    EXPECT_EQ(update(), -1);
    EXPECT_EQ(linesOf(m_function).back(), "info " + m_function + "(): binary_crc() failed 70407");
}

TEST_P(AnyUpdateTest, DirectoryInTheWayIsATemporaryFileThatCannotBeMade)
{
    for (const char* const name : {"/tmp/u-boot.uim", "/tmp/bmufile", "/tmp/fpgafile"}) {
        m_node.writeBoardFile(std::string(name) + "/something", "");
    }
    EXPECT_EQ(update(), -2);
    EXPECT_EQ(linesOf(m_function).back(), "info " + m_function + "(): binary_copy_without_trailer() failed -8");
}

TEST_F(FlashingTest, TemporaryFileIsNotWrittenThroughALink)
{
    useUnit("NAXE");
    putImage("image.bin", 523);
    m_node.writeBoardFile("/etc/important", "untouched");
    for (const char* const name : {"/tmp/u-boot.uim", "/tmp/bmufile", "/tmp/fpgafile"}) {
        std::filesystem::create_symlink("/etc/important", m_node.boardRoot() + name);
    }

    EXPECT_EQ(update_uboot(image), 0);
    EXPECT_EQ(update_bmu(image, 0), 0);
    EXPECT_EQ(update_fpga(image), 0);
    EXPECT_EQ(m_node.readBoardFile("/etc/important"), "untouched");
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(FlashingTest, BmuIsFlashed)
{
    useUnit("KIVD");
    putImage("image.bin", 0x108);

    EXPECT_EQ(update_bmu(image, 0), 0);
    EXPECT_EQ(bytesOf(flashed(1, 1)), payloadWith(0x108));
    EXPECT_THAT(linesOf("update_bmu"),
                ElementsAre("info update_bmu(): start bmu update",
                            "info update_bmu(): binary '/ffs/run/boot/image.bin' is ok",
                            "info update_bmu(): call ddal_fpga_update_mod(0x1, 0x1, /tmp/bmufile)",
                            "info update_bmu(): bmu update is ok"));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(FlashingTest, BmuMayBeAnother)
{
    useUnit("KIVD");
    putImage("image.bin", 0x108);

    EXPECT_EQ(update_bmu(image, 0x10002), 0);
    EXPECT_EQ(flashedVersion(0x10002, 1), 0x108U);
    EXPECT_EQ(flashedVersion(0x10002, 2), 0U);
    EXPECT_EQ(linesOf("update_bmu")[2], "info update_bmu(): call ddal_fpga_update_mod(0x10002, 0x1, /tmp/bmufile)");
}

TEST_F(FlashingTest, SmallBmuHasNumberZero)
{
    useUnit("KIVN"); // the board has no such FPGA
    putImage("image.bin", 0x108);

    EXPECT_EQ(update_bmu(image, 0), -3);
    EXPECT_EQ(linesOf("update_bmu")[2], "info update_bmu(): call ddal_fpga_update_mod(0x0, 0x1, /tmp/bmufile)");
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(FlashingTest, GivenBmuIsFlashedOnTheUnitWithTheSmallOneToo)
{
    useUnit("KIVN");
    putImage("image.bin", 0x108);

    EXPECT_EQ(update_bmu(image, 1), 0);
    EXPECT_EQ(bytesOf(flashed(1, 1)), payloadWith(0x108));
    EXPECT_EQ(linesOf("update_bmu")[2], "info update_bmu(): call ddal_fpga_update_mod(0x1, 0x1, /tmp/bmufile)");
}

TEST_F(FlashingTest, GivenBmuIsFlashedWithoutAskingForTheUnit)
{
    useUnit("KIVN");
    putImage("image.bin", 0x108);
    const testkit::FailEvery<ddal_devicetree_get_unit_id> failure;
    unit_init(); // forgets the unit
    const unsigned before = failure.count();

    EXPECT_EQ(update_bmu(image, 0x10002), 0);
    EXPECT_EQ(failure.count(), before);
}

TEST_F(FlashingTest, BmuOfAUnitWithoutIdHasNumberOne)
{
    useUnit("KIVN");
    putImage("image.bin", 0x108);
    const testkit::FailEvery<ddal_devicetree_get_unit_id> failure;
    unit_init(); // forgets the unit

    EXPECT_EQ(update_bmu(image, 0), 0);
    EXPECT_EQ(flashedVersion(1, 1), 0x108U);
}

TEST_F(FlashingTest, BmuThatCannotBeFlashedIsAFailure)
{
    useUnit("KIVD");
    putImage("image.bin", 0x108);
    const FailNth<ddal_fpga_update_mod> failure(1);

    EXPECT_EQ(update_bmu(image, 0), -3);
    EXPECT_EQ(linesOf("update_bmu").back(), driverFailure("update_bmu", "ddal_fpga_update_mod"));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(FlashingTest, BothSlotsOfTheFpgaAreFlashed)
{
    useUnit("NAXE");
    putImage("image.bin", 0x20011);

    EXPECT_EQ(update_fpga(image), 0);
    EXPECT_EQ(bytesOf(flashed(0x10002, 1)), payloadWith(0x20011));
    EXPECT_EQ(bytesOf(flashed(0x10002, 2)), payloadWith(0x20011));
    EXPECT_THAT(linesOf("update_fpga"), ElementsAre("info update_fpga(): start fpga update",
                                                    "info update_fpga(): binary '/ffs/run/boot/image.bin' is ok",
                                                    "info update_fpga(): brindle primary slot update is ok",
                                                    "info update_fpga(): brindle secondary slot update is ok"));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

/// A unit whose fpga_id_local() is another.
struct OtherLocalFpga {
    const char* unit;
    std::uint32_t id;
};
void PrintTo(const OtherLocalFpga& row, std::ostream* stream)
{
    *stream << row.unit;
}

class OtherLocalFpgaTest : public FlashingTest, public ::testing::WithParamInterface<OtherLocalFpga> {};

INSTANTIATE_TEST_SUITE_P(Units, OtherLocalFpgaTest,
                         ::testing::Values(OtherLocalFpga{"NAXF", 0x10001}, OtherLocalFpga{"RUEA", 0x60001},
                                           OtherLocalFpga{"RUFA", 0x70001}),
                         [](const auto& row) { return std::string(row.param.unit); });

TEST_P(OtherLocalFpgaTest, TheOneOfTheUnitsRowIsFlashed)
{
    addFpga(GetParam().id);
    useUnit(GetParam().unit);
    putImage("image.bin", 0x20011);

    EXPECT_EQ(update_fpga(image), 0);
    EXPECT_EQ(flashedVersion(GetParam().id, 1), 0x20011U);
    EXPECT_EQ(flashedVersion(GetParam().id, 2), 0x20011U);
    EXPECT_EQ(flashedVersion(0x10002, 1), 0U);
}

TEST_F(FlashingTest, SecondarySlotIsLeftWhenThePrimaryOneFails)
{
    useUnit("NAXE");
    putImage("image.bin", 0x20011);
    const FailNth<ddal_fpga_update_mod> failure(1);

    EXPECT_EQ(update_fpga(image), -3);
    EXPECT_EQ(failure.count(), 1U);
    EXPECT_EQ(flashedVersion(0x10002, 2), 0U);
    EXPECT_EQ(linesOf("update_fpga").back(), driverFailure("update_fpga", "ddal_fpga_update_mod"));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(FlashingTest, SecondarySlotThatFailsIsTold)
{
    useUnit("NAXE");
    putImage("image.bin", 0x20011);
    const FailNth<ddal_fpga_update_mod> failure(2);

    EXPECT_EQ(update_fpga(image), -4);
    EXPECT_EQ(flashedVersion(0x10002, 1), 0x20011U);
    EXPECT_THAT(linesOf("update_fpga"), ElementsAre("info update_fpga(): start fpga update",
                                                    "info update_fpga(): binary '/ffs/run/boot/image.bin' is ok",
                                                    "info update_fpga(): brindle primary slot update is ok",
                                                    driverFailure("update_fpga", "ddal_fpga_update_mod")));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(FlashingTest, WorksInC)
{
    useUnit("NAXE");
    EXPECT_EQ(updateFpgaInC(), -7);
    putImage("NAX-BRINDLE.bin", 0x20011);
    EXPECT_EQ(updateFpgaInC(), 0);
    EXPECT_EQ(flashedVersion(0x10002, 2), 0x20011U);
}

TEST_F(FlashingTest, UnitWithoutFpgaIsNotSupported)
{
    useUnit("KIVN");
    putImage("image.bin", 1);

    EXPECT_EQ(update_fpga(image), -10);
    EXPECT_THAT(linesOf("update_fpga"), ElementsAre("debug update_fpga(): no fpga specified for unit 'KIVN'"));
}

TEST_F(FlashingTest, UnitWithoutIdHasNoFpga)
{
    useUnit("NAXE");
    putImage("image.bin", 1);
    const testkit::FailEvery<ddal_devicetree_get_unit_id> failure;
    unit_init(); // forgets the unit

    EXPECT_EQ(update_fpga(image), -10);
    EXPECT_THAT(linesOf("update_fpga"), ElementsAre("debug update_fpga(): no fpga specified for unit ''"));
    EXPECT_EQ(update_uboot(image), 0) << "no matter which unit it is";
}

} // namespace
} // namespace dorn::test
