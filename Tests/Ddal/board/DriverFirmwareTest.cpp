// SPDX-License-Identifier: MIT
// Flashing the boot loader and FPGAs: what is in flash, and from when on it is in use.
#include "BoardTest.hpp"
#include "FailingFilePort.hpp"
#include "ddal_boot.h"
#include "ddal_fpga.h"
#include "description/DescribedBoard.hpp"
#include "device/BootLoader.hpp"
#include "device/Fpga.hpp"
#include "device/Resets.hpp"
#include "node/PerNode.hpp"
#include "state/StateFile.hpp"

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>

namespace dorn::board {
namespace {

constexpr std::uint32_t fpga = 0x10002;
constexpr std::size_t flashSize = 0x10000; // of every area of the small board
constexpr const char* image = "/tmp/image";

class DriverFirmwareTest : public BoardTest {
protected:
    static std::uint32_t fpgaVersion()
    {
        std::uint32_t version = 0;
        EXPECT_EQ(ddal_fpga_get_active_version(fpga, &version), DDAL_OK);
        return version;
    }
    static std::string bootVersion()
    {
        std::array<char, DDAL_BOOT_VERSION_SIZE> text{};
        EXPECT_EQ(ddal_boot_get_uboot_version(text.data()), DDAL_OK);
        return text.data();
    }
    /// What a slot of the FPGA holds.
    static std::optional<FlashedImage> flashed(std::uint32_t slot = DDAL_FPGA_SLOT_PRIMARY)
    {
        return Fpga(DescribedBoard::get().part("fpgas", fpga)).slots().at(slot - 1).area.flashed();
    }
    std::size_t stateFiles() const
    {
        const std::filesystem::directory_iterator entries(m_node.boardPath("/var/lib/dorn/board"));
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }
    /// The board loses its power while an image is flashed.
    void losePower(std::uint32_t version, std::uint32_t slot = DDAL_FPGA_SLOT_PRIMARY) const
    {
        writeImage(m_node, image, version);
        Fpga(DescribedBoard::get().part("fpgas", fpga)).update(slot, image, FlashExtent::Half);
        countReset();
    }
    std::int32_t flashFpga(std::uint32_t version, std::uint32_t slot = DDAL_FPGA_SLOT_PRIMARY) const
    {
        writeImage(m_node, image, version);
        return ddal_fpga_update_mod(fpga, slot, image);
    }
};

TEST_F(DriverFirmwareTest, StartLocationIsAsDescribed)
{
    m_board.cells("boot-loader", "dorn,start-location", {DDAL_BOOT_UIMAGE});
    std::int32_t location = -1;

    EXPECT_EQ(ddal_boot_get_uboot_id(&location), DDAL_OK);
    EXPECT_EQ(location, DDAL_BOOT_UIMAGE);
}

TEST_F(DriverFirmwareTest, VersionsAreAsDescribedUntilSomethingIsFlashed)
{
    EXPECT_EQ(bootVersion(), "20480");
    EXPECT_EQ(fpgaVersion(), 0x20010U);
}

TEST_F(DriverFirmwareTest, FlashedFpgaImageIsInUseFromTheNextResetOn)
{
    EXPECT_EQ(flashFpga(0x30000), DDAL_OK);
    EXPECT_EQ(fpgaVersion(), 0x20010U);

    countReset();

    EXPECT_EQ(fpgaVersion(), 0x30000U);
}

TEST_F(DriverFirmwareTest, FlashedBootLoaderIsInUseFromTheNextResetOn)
{
    writeImage(m_node, image, 20481);
    EXPECT_EQ(ddal_boot_update_uboot(image), DDAL_OK);
    EXPECT_EQ(bootVersion(), "20480");

    countReset();

    EXPECT_EQ(bootVersion(), "20481");
}

TEST_F(DriverFirmwareTest, LatestImageCounts)
{
    flashFpga(1);
    countReset();
    flashFpga(2);
    flashFpga(3);

    EXPECT_EQ(fpgaVersion(), 1U);
    countReset();
    EXPECT_EQ(fpgaVersion(), 3U);
    countReset();
    EXPECT_EQ(fpgaVersion(), 3U);
}

TEST_F(DriverFirmwareTest, SecondarySlotIsUsedWhenThePrimaryOneHoldsNothingUsable)
{
    EXPECT_EQ(flashFpga(5, DDAL_FPGA_SLOT_SECONDARY), DDAL_OK);
    countReset();
    EXPECT_EQ(fpgaVersion(), 5U);

    flashFpga(6, DDAL_FPGA_SLOT_PRIMARY);
    countReset();
    EXPECT_EQ(fpgaVersion(), 6U);

    m_node.writeBoardFile(image, "abc"); // too short for a version
    EXPECT_EQ(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, image), DDAL_OK);
    EXPECT_EQ(fpgaVersion(), 6U);
    countReset();
    EXPECT_EQ(fpgaVersion(), 5U);
}

TEST_F(DriverFirmwareTest, FpgasAreFlashedEachForItself)
{
    flashFpga(7);
    countReset();
    std::uint32_t bmu = 0;

    EXPECT_EQ(ddal_fpga_get_active_version(1, &bmu), DDAL_OK);
    EXPECT_EQ(bmu, 0x107U);
}

TEST_F(DriverFirmwareTest, ImagesThatDoNotTellTheirVersionChangeNone)
{
    m_board.remove("fpgas/fpga@10002/dorn,version-offset");

    EXPECT_EQ(flashFpga(7), DDAL_OK);
    countReset();

    EXPECT_EQ(fpgaVersion(), 0x20010U);
}

TEST_F(DriverFirmwareTest, VersionMayStandFurtherBack)
{
    m_board.cells("fpgas/fpga@10002", "dorn,version-offset", {3});
    m_node.writeBoardFile(image, std::string("abc\x01\x02\x03\x04", 7));

    EXPECT_EQ(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, image), DDAL_OK);
    countReset();

    EXPECT_EQ(fpgaVersion(), 0x01020304U);
}

TEST_F(DriverFirmwareTest, FlashHoldsTheImageByteForByte)
{
    writeImage(m_node, image, 1, flashSize);

    EXPECT_EQ(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_SECONDARY, image), DDAL_OK);

    EXPECT_EQ(m_node.readBoardFile(flashed(DDAL_FPGA_SLOT_SECONDARY)->path), m_node.readBoardFile(image));
}

TEST_F(DriverFirmwareTest, ImageThatIsTooLargeIsRefused)
{
    writeImage(m_node, image, 1, flashSize + 1);

    EXPECT_EQ(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, image), DDAL_ERROR_NO_RESOURCE);
    EXPECT_EQ(ddal_boot_update_uboot(image), DDAL_ERROR_NO_RESOURCE);
    EXPECT_EQ(m_log.texts(), (std::vector<std::string>{
                                 "Error 0x0 ddal_fpga_update_mod(): image '/tmp/image' has 65537 bytes; there is "
                                 "room for 65536",
                                 "Error 0x0 ddal_boot_update_uboot(): image '/tmp/image' has 65537 bytes; there "
                                 "is room for 65536"}));
}

TEST_F(DriverFirmwareTest, FileThatIsNoImageIsRefused)
{
    m_node.writeBoardFile("/tmp/empty", "");

    for (const char* const path : {"/tmp/missing", "/tmp/empty", "/tmp", "tmp/relative", ""}) {
        EXPECT_EQ(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, path), DDAL_ERROR_BAD_FILE) << path;
        EXPECT_EQ(ddal_boot_update_uboot(path), DDAL_ERROR_BAD_FILE) << path;
    }
    EXPECT_EQ(m_log.count("Error 0x0 ddal_fpga_update_mod(): image '/tmp/missing' cannot be read: No such file or "
                          "directory"),
              1U);
    EXPECT_EQ(m_log.count("Error 0x0 ddal_fpga_update_mod(): image '/tmp/empty' is empty"), 1U);
    EXPECT_EQ(m_log.count("Error 0x0 ddal_fpga_update_mod(): image '/tmp' is no file"), 1U);
    EXPECT_EQ(m_log.count("Error 0x0 ddal_fpga_update_mod(): image 'tmp/relative' cannot be read: not an absolute "
                          "path"),
              1U);
}

TEST_F(DriverFirmwareTest, WhatTheBoardDoesNotHaveIsRefused)
{
    writeImage(m_node, image, 1);
    std::uint32_t version = 7;

    EXPECT_EQ(ddal_fpga_get_active_version(0x60001, &version), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(version, 7U);
    EXPECT_EQ(ddal_fpga_update_mod(0x60001, DDAL_FPGA_SLOT_PRIMARY, image), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(ddal_fpga_update_mod(fpga, 0, image), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(ddal_fpga_update_mod(fpga, 3, image), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(ddal_fpga_update_mod(1, DDAL_FPGA_SLOT_SECONDARY, image), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(
        m_log.count("Error 0x0 ddal_fpga_update_mod(): " + m_origin + "node '/board/fpgas/fpga@10002' has no slot 3"),
        1U);
}

TEST_F(DriverFirmwareTest, BoardWithoutABootLoaderSaysSo)
{
    m_board.remove("boot-loader");
    writeImage(m_node, image, 1);
    std::int32_t location = 7;
    std::array<char, DDAL_BOOT_VERSION_SIZE> version{"untouched"};

    EXPECT_EQ(ddal_boot_get_uboot_id(&location), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(ddal_boot_get_uboot_version(version.data()), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(ddal_boot_update_uboot(image), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(location, 7);
    EXPECT_STREQ(version.data(), "untouched");
}

TEST_F(DriverFirmwareTest, LongVersionIsCut)
{
    m_board.text("boot-loader", "dorn,version", std::string(100, '7'));

    EXPECT_EQ(bootVersion(), std::string(DDAL_BOOT_VERSION_SIZE - 1, '7'));
}

TEST_F(DriverFirmwareTest, NullIsRefused)
{
    EXPECT_EQ(ddal_boot_get_uboot_id(nullptr), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(ddal_boot_get_uboot_version(nullptr), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(ddal_boot_update_uboot(nullptr), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(ddal_fpga_get_active_version(1, nullptr), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(ddal_fpga_update_mod(1, DDAL_FPGA_SLOT_PRIMARY, nullptr), DDAL_ERROR_INVALID_ARGUMENT);
}

TEST_F(DriverFirmwareTest, AreaThatIsBeingWrittenIsBusy)
{
    const StateLock writer("fpga-65538-slot-1");

    EXPECT_EQ(flashFpga(1), DDAL_ERROR_BUSY);
    EXPECT_EQ(flashFpga(1, DDAL_FPGA_SLOT_SECONDARY), DDAL_OK);
}

TEST_F(DriverFirmwareTest, FullDiskLeavesTheOldImage)
{
    flashFpga(1);
    countReset();
    const std::string before = m_node.readBoardFile(flashed()->path);
    const std::size_t files = stateFiles();
    writeImage(m_node, image, 2, 4000);
    {
        const testkit::FullDisk disk(2000);
        EXPECT_EQ(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, image), DDAL_ERROR_NO_RESOURCE);
    }
    {
        const testkit::FullDisk disk(4000); // the image fits, the record does not
        EXPECT_EQ(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, image), DDAL_ERROR_NO_RESOURCE);
    }

    EXPECT_EQ(m_node.readBoardFile(flashed()->path), before);
    EXPECT_EQ(stateFiles(), files);
    EXPECT_EQ(fpgaVersion(), 1U);
    countReset();
    EXPECT_EQ(fpgaVersion(), 1U);
}

/// Has each change of a file fail in turn: whatever is left is either the old state or the new one.
TEST_F(DriverFirmwareTest, FailureAtAnyStepLeavesOldOrNew)
{
    using testkit::FileOperation;
    flashFpga(1);
    countReset();

    unsigned failures = 0;
    for (const FileOperation operation :
         {FileOperation::Open, FileOperation::Write, FileOperation::Sync, FileOperation::Rename}) {
        for (unsigned nth = 1; nth < 20; ++nth) {
            writeImage(m_node, image, 100 + nth);
            const testkit::FailingFilePort files(operation, nth, EIO);
            const std::uint32_t before = fpgaVersion();

            const std::int32_t result = ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, image);

            EXPECT_EQ(fpgaVersion(), before);
            if (!files.hasFailed()) {
                EXPECT_EQ(result, DDAL_OK);
                break;
            }
            EXPECT_EQ(result, DDAL_ERROR_IO);
            ++failures;
        }
    }

    EXPECT_GE(failures, 7U);
}

TEST_F(DriverFirmwareTest, StateSurvivesTheProcess)
{
    flashFpga(9);
    countReset();

    host::closeNode(); // as a process that begins

    EXPECT_EQ(fpgaVersion(), 9U);
}

TEST_F(DriverFirmwareTest, VersionIsTheOneInTheRecord)
{
    flashFpga(9);
    countReset();
    const std::string path = flashed()->path;
    std::string content = m_node.readBoardFile(path);
    content[3] = 10; // the version's last byte
    m_node.writeBoardFile(path, content);

    EXPECT_EQ(fpgaVersion(), 9U);
}

TEST_F(DriverFirmwareTest, EachImageTakesThePlaceOfTheOneBefore)
{
    flashFpga(1);
    const std::size_t files = stateFiles();
    for (std::uint32_t version = 2; version < 6; ++version) {
        EXPECT_EQ(flashFpga(version), DDAL_OK);
        EXPECT_EQ(flashed()->version, version);
    }
    EXPECT_EQ(stateFiles(), files);
}

TEST_F(DriverFirmwareTest, SlotThatWasFlashedHalfIsNotUsed)
{
    flashFpga(5, DDAL_FPGA_SLOT_PRIMARY);
    flashFpga(6, DDAL_FPGA_SLOT_SECONDARY);
    countReset();
    EXPECT_EQ(fpgaVersion(), 5U);
    const std::string other = m_node.readBoardFile(flashed(DDAL_FPGA_SLOT_SECONDARY)->path);

    losePower(7);

    EXPECT_FALSE(flashed()->isWhole);
    EXPECT_EQ(flashed()->version, std::nullopt);
    EXPECT_EQ(flashed()->size, m_node.readBoardFile(image).size() / 2);
    EXPECT_TRUE(flashed(DDAL_FPGA_SLOT_SECONDARY)->isWhole);
    EXPECT_EQ(m_node.readBoardFile(flashed(DDAL_FPGA_SLOT_SECONDARY)->path), other);
    EXPECT_EQ(fpgaVersion(), 6U);
}

TEST_F(DriverFirmwareTest, SecondarySlotThatWasFlashedHalfLeavesThePrimaryOne)
{
    flashFpga(7);
    losePower(7, DDAL_FPGA_SLOT_SECONDARY);

    EXPECT_TRUE(flashed()->isWhole);
    EXPECT_FALSE(flashed(DDAL_FPGA_SLOT_SECONDARY)->isWhole);
    EXPECT_EQ(fpgaVersion(), 7U);
}

TEST_F(DriverFirmwareTest, SlotThatWasFlashedHalfIsFlashedAnew)
{
    losePower(7);
    EXPECT_EQ(fpgaVersion(), 0x20010U); // of the other slot, as the board came

    EXPECT_EQ(flashFpga(7), DDAL_OK);
    countReset();

    EXPECT_TRUE(flashed()->isWhole);
    EXPECT_EQ(fpgaVersion(), 7U);
}

TEST_F(DriverFirmwareTest, ImageThatIsGoneIsNotWhole)
{
    flashFpga(7);
    countReset();
    std::filesystem::remove(m_node.boardPath(flashed()->path));

    EXPECT_FALSE(flashed()->isWhole);
    EXPECT_EQ(fpgaVersion(), 0x20010U);
}

TEST_F(DriverFirmwareTest, BoardStartsFromTheBackupWhenTheBootLoaderWasFlashedHalf)
{
    const BootLoader loader(DescribedBoard::get().part("boot-loader"));
    ASSERT_EQ(loader.startLocation(), DDAL_BOOT_PRIMARY);
    writeImage(m_node, image, 20481);

    loader.update(image, FlashExtent::Half);
    EXPECT_EQ(loader.startLocation(), DDAL_BOOT_PRIMARY); // it is started already
    countReset();

    EXPECT_EQ(loader.startLocation(), DDAL_BOOT_BACKUP);
    EXPECT_EQ(bootVersion(), "20480");
    EXPECT_EQ(ddal_boot_update_uboot(image), DDAL_OK);
    countReset();
    EXPECT_EQ(loader.startLocation(), DDAL_BOOT_PRIMARY);
    EXPECT_EQ(bootVersion(), "20481");
}

TEST_F(DriverFirmwareTest, DamagedRecordIsSetAside)
{
    const std::string path = "/var/lib/dorn/board/fpga-65538-slot-1.record";
    for (const char* const record : {"rubbish", "0\n2 4 7 131088\n", "0\n0 4 seven 131088\n", "0\n0 4 7\n"}) {
        flashFpga(9);
        m_node.writeBoardFile(path, record);

        EXPECT_FALSE(flashed()) << record;
        EXPECT_EQ(m_node.readBoardFile(path + ".broken"), record);
    }
    EXPECT_EQ(fpgaVersion(), 0x20010U);
    EXPECT_EQ(
        m_log.count("Warning 0x0 '" + path + "' is no note of the board's state; set aside as '" + path + ".broken'"),
        1U);
    EXPECT_EQ(
        m_log.count("Warning 0x0 '" + path + "' is no record of an image in flash; set aside as '" + path + ".broken'"),
        3U);
}

} // namespace
} // namespace dorn::board
