// SPDX-License-Identifier: MIT
// Files to and from the memory of a device on a small board.
#include "rioDio.h"

#include "AaFile.h"
#include "AaMem.h"
#include "FailNth.hpp"
#include "FailingFilePort.hpp"
#include "LogCapture.hpp"
#include "TestBoard.hpp"
#include "TestNode.hpp"
#include "ddal_rio.h"

#include <gmock/gmock.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

extern "C" std::int32_t loadInC(std::uint16_t device, std::uint64_t address, const char* filename);
extern "C" std::int32_t dumpInC(char* name);

namespace {

using dorn::testkit::CountCalls;
using dorn::testkit::FailEvery;
using dorn::testkit::FailNth;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr std::uint16_t device = 0x10;
constexpr std::uint64_t address = 0x80000100;
constexpr const char* path = "/ffs/run/dsp.bin";
constexpr std::size_t blockSize = 0x10000;

const std::string debug = "Debug 0x20003 ";
const std::string info = "Info 0x20003 ";
const std::string warning = "Warning 0x20003 ";

std::string pattern(std::size_t size)
{
    std::string content(size, '\0');
    for (std::size_t index = 0; index < size; ++index) {
        content[index] = static_cast<char>(index * 31 + index / blockSize);
    }
    return content;
}

class RioTest : public testing::Test {
protected:
    void writeFile(std::size_t size) const { m_node.writeBoardFile(path, pattern(size)); }

    /// What the device holds from the address on.
    static std::string memory(std::size_t size)
    {
        std::string content(size, '#');
        std::int32_t handle = -1;
        EXPECT_EQ(ddal_rio_copy_open_fd(0, device, DDAL_RIO_READ, &handle), DDAL_OK);
        EXPECT_EQ(ddal_rio_copy_from_fd(handle, address, content.data(), static_cast<std::uint32_t>(size)), DDAL_OK);
        EXPECT_EQ(ddal_rio_copy_close_fd(handle), DDAL_OK);
        return content;
    }
    /// Spoils bytes of the device's memory.
    static void spoil(const std::vector<std::size_t>& offsets)
    {
        std::int32_t handle = -1;
        EXPECT_EQ(ddal_rio_copy_open_fd(0, device, DDAL_RIO_READ_WRITE, &handle), DDAL_OK);
        for (const std::size_t offset : offsets) {
            char byte = 0;
            EXPECT_EQ(ddal_rio_copy_from_fd(handle, address + offset, &byte, 1), DDAL_OK);
            byte = static_cast<char>(byte + 1);
            EXPECT_EQ(ddal_rio_copy_to_fd(handle, address + offset, &byte, 1), DDAL_OK);
        }
        EXPECT_EQ(ddal_rio_copy_close_fd(handle), DDAL_OK);
    }

    /// Gives the board a device whose number is written in letters, with memory at 0x80000000.
    void describeDeviceAb()
    {
        m_board.cells("rapidio/port@0/device@ab", "reg", {0xAB});
        m_board.cells("rapidio/port@0/device@ab/memory@80000000", "reg", {0, 0x80000000, 0, 0x100000});
    }

    /// The log, with the one thing in it that differs from run to run written as POINTER.
    std::vector<std::string> lines() const
    {
        constexpr std::string_view allocated = "Allocated data 0x";
        std::vector<std::string> lines = m_log.texts();
        for (std::string& line : lines) {
            if (const auto at = line.find(allocated); at != std::string::npos) {
                line = line.substr(0, at) + "Allocated data POINTER";
            }
        }
        return lines;
    }

    dorn::testkit::TestNode m_node{{.logLevel = "debug"}};
    dorn::testkit::TestBoard m_board;
    dorn::testkit::LogCapture m_log;
};

class RioWriteTest : public RioTest {
protected:
    static std::int32_t write(const char* filename = path) { return writeBinaryFileToSrio(device, address, filename); }
    static std::string writingLine(const std::string& at, std::size_t size)
    {
        return debug + "Writing file '/ffs/run/dsp.bin' to SRIO device 0x10, address " + at + ", size " +
               std::to_string(size);
    }
    static std::string failedLine(const std::string& current, const std::string& total)
    {
        return warning + "Writing file '/ffs/run/dsp.bin' to SRIO device 0x10 failed! current " + current + ", total " +
               total;
    }
    /// What is logged before the first block.
    static std::vector<std::string> openingLines(std::size_t size)
    {
        return {debug + "writeBinaryFileToSrio()", debug + "Opening file '/ffs/run/dsp.bin'",
                debug + "File '/ffs/run/dsp.bin' open successful, size " + std::to_string(size) + " bytes",
                debug + "Allocated data POINTER"};
    }
    void expectLines(std::size_t size, const std::vector<std::string>& behind) const
    {
        std::vector<std::string> expected = openingLines(size);
        expected.insert(expected.end(), behind.begin(), behind.end());
        EXPECT_EQ(lines(), expected);
    }
};

TEST_F(RioWriteTest, FileOfTwoBlocksIsWrittenInTwo)
{
    writeFile(0x20000);

    EXPECT_EQ(write(), 0);

    expectLines(0x20000, {writingLine("0x80000100", blockSize), writingLine("0x80010100", blockSize)});
    EXPECT_EQ(memory(0x20000), pattern(0x20000));
}

TEST_F(RioWriteTest, LastBlockIsWhatIsLeft)
{
    writeFile(0x10001);

    EXPECT_EQ(write(), 0);

    expectLines(0x10001, {writingLine("0x80000100", blockSize), writingLine("0x80010100", 1)});
    EXPECT_EQ(memory(0x10002), pattern(0x10001) + '\0');
}

TEST_F(RioWriteTest, SmallFileNeedsABufferOfItsOwnSizeOnly)
{
    writeFile(100);
    const CountCalls<AaMemMalloc> allocations;

    EXPECT_EQ(write(), 0);

    EXPECT_EQ(allocations.count(), 1U);
    expectLines(100, {writingLine("0x80000100", 100)});
    EXPECT_EQ(memory(100), pattern(100));
}

TEST_F(RioWriteTest, OneHandleAndOneBufferServeAllBlocks)
{
    writeFile(0x50000);
    const CountCalls<ddal_rio_copy_open_fd> opened;
    const CountCalls<ddal_rio_copy_close_fd> closed;
    const CountCalls<AaMemMalloc> allocated;
    const CountCalls<AaMemUnRef> freed;
    const CountCalls<AaFileClose> filesClosed;

    EXPECT_EQ(write(), 0);

    EXPECT_EQ(opened.count(), 1U);
    EXPECT_EQ(closed.count(), 1U);
    EXPECT_EQ(allocated.count(), 1U);
    EXPECT_EQ(freed.count(), 1U);
    EXPECT_EQ(filesClosed.count(), 1U);
}

TEST_F(RioWriteTest, AddressMayLieAbove32Bits)
{
    m_board.cells("rapidio/port@0/device@10/memory@80000000", "reg", {0x8, 0, 0, 0x100000});
    writeFile(1);

    EXPECT_EQ(writeBinaryFileToSrio(device, 0x80000FFFF, path), 0);

    EXPECT_THAT(lines(), Contains(writingLine("0x80000ffff", 1)));
}

TEST_F(RioWriteTest, FileMayLieAcrossTheEndOf32Bits)
{
    m_board.cells("rapidio/port@0/device@10/memory@80000000", "reg", {0, 0xFFFF0000, 0, 0x100000});
    writeFile(0x10001);

    EXPECT_EQ(writeBinaryFileToSrio(device, 0xFFFFFF00, path), 0);

    expectLines(0x10001, {writingLine("0xffffff00", blockSize), writingLine("0x10000ff00", 1)});
}

TEST_F(RioWriteTest, DevicesNumberIsInUpperCase)
{
    describeDeviceAb();
    writeFile(1);

    EXPECT_EQ(writeBinaryFileToSrio(0xAB, 0x80000000, path), 0);
    EXPECT_EQ(writeBinaryFileToSrio(0xAB, 0, path), 2);

    EXPECT_THAT(lines(), Contains(debug + "Writing file '/ffs/run/dsp.bin' to SRIO device 0xAB, address 0x80000000, "
                                          "size 1"));
    EXPECT_EQ(lines().back(),
              warning + "Writing file '/ffs/run/dsp.bin' to SRIO device 0xAB failed! current 0x0, total 0x1");
}

TEST_F(RioWriteTest, EmptyFileIsAFailure)
{
    writeFile(0);

    EXPECT_EQ(write(), 2);

    expectLines(0, {});
}

TEST_F(RioWriteTest, FileThatIsNotThereIsAFailure)
{
    EXPECT_EQ(write(), 2);
    EXPECT_THAT(lines(), ElementsAre(debug + "writeBinaryFileToSrio()", debug + "Opening file '/ffs/run/dsp.bin'",
                                     warning + "File '/ffs/run/dsp.bin' open failed"));
}

TEST_F(RioWriteTest, FileWithoutNameIsNotThere)
{
    EXPECT_EQ(write(nullptr), 2);
    EXPECT_THAT(lines(), ElementsAre(debug + "writeBinaryFileToSrio()", debug + "Opening file '(null)'",
                                     warning + "File '(null)' open failed"));
}

TEST_F(RioWriteTest, FileOfUnknownSizeIsAFailure)
{
    writeFile(100);
    const FailNth<AaFileGetSize> noSize(1);
    const CountCalls<ddal_rio_copy_to_fd> copies;

    EXPECT_EQ(write(), 2);

    EXPECT_EQ(copies.count(), 0U);
    EXPECT_THAT(lines(), Contains(debug + "File '/ffs/run/dsp.bin' open successful, size -1 bytes"));
    EXPECT_TRUE(lines().back().starts_with(failedLine("0x0", "0xffffffff")));
}

TEST_F(RioWriteTest, WithoutMemoryNothingIsWritten)
{
    writeFile(0x20000);
    const FailNth<AaMemMalloc> noMemory(1);
    const CountCalls<ddal_rio_copy_open_fd> opened;
    const CountCalls<AaFileClose> filesClosed;

    EXPECT_EQ(write(), 2);

    EXPECT_THAT(lines(), ElementsAre(debug + "writeBinaryFileToSrio()", debug + "Opening file '/ffs/run/dsp.bin'",
                                     debug + "File '/ffs/run/dsp.bin' open successful, size 131072 bytes",
                                     debug + "Allocated data (nil)", warning + "Failed to allocate memory 65536"));
    EXPECT_EQ(opened.count(), 0U);
    EXPECT_EQ(filesClosed.count(), 1U);
}

TEST_F(RioWriteTest, SmallFileThatFindsNoMemoryIsNotWritten)
{
    writeFile(100);
    const FailNth<AaMemMalloc> noMemory(1);

    EXPECT_EQ(write(), 2);

    EXPECT_EQ(lines().back(), warning + "Failed to allocate memory 100");
}

TEST_F(RioWriteTest, HandleThatCannotBeOpenedIsClosedAllTheSame)
{
    writeFile(10);
    const FailNth<ddal_rio_copy_open_fd> noHandle(1);
    const CountCalls<AaMemUnRef> freed;
    const CountCalls<AaFileClose> filesClosed;

    EXPECT_EQ(write(), 2);

    EXPECT_EQ(freed.count(), 1U);
    EXPECT_EQ(filesClosed.count(), 1U);
    expectLines(10, {warning + "Failed to open handle for rio transfer (write)",
                     "Error 0x0 ddal_rio_copy_close_fd(): copy handle -1 is not open",
                     warning + "Failed to close transfer handle", failedLine("0x0", "0xa")});
}

TEST_F(RioWriteTest, CloseThatFailsIsOnlySaid)
{
    writeFile(10);
    const FailNth<ddal_rio_copy_close_fd> noClose(1);

    EXPECT_EQ(write(), 0);

    expectLines(10, {writingLine("0x80000100", 10), warning + "Failed to close transfer handle"});
}

TEST_F(RioWriteTest, CopyAndCloseThatFailAreBothSaid)
{
    writeFile(10);
    const FailNth<ddal_rio_copy_to_fd> noCopy(1);
    const FailNth<ddal_rio_copy_close_fd> noClose(1);

    EXPECT_EQ(write(), 2);

    expectLines(10, {warning + "Failed to close transfer handle", failedLine("0x0", "0xa")});
}

class RioWriteFailureTest : public RioWriteTest, public testing::WithParamInterface<unsigned> {
protected:
    RioWriteFailureTest() { writeFile(0x28000); }

    /// The blocks before the one that fails, and the failure. Everything that was taken has been given back.
    void expectFailure() const
    {
        EXPECT_EQ(m_handlesClosed.count(), 1U);
        EXPECT_EQ(m_freed.count(), 1U);
        EXPECT_EQ(m_filesClosed.count(), 1U);
        const std::array<std::string, 3> addresses{"0x80000100", "0x80010100", "0x80020100"};
        const std::array<std::string, 3> written{"0x0", "0x10000", "0x20000"};
        std::vector<std::string> behind;
        for (unsigned block = 1; block < GetParam(); ++block) {
            behind.push_back(writingLine(addresses.at(block - 1), blockSize));
        }
        behind.push_back(failedLine(written.at(GetParam() - 1), "0x28000"));
        expectLines(0x28000, behind);
    }

    const CountCalls<ddal_rio_copy_close_fd> m_handlesClosed;
    const CountCalls<AaMemUnRef> m_freed;
    const CountCalls<AaFileClose> m_filesClosed;
};

TEST_P(RioWriteFailureTest, ReadThatFailsEndsIt)
{
    const FailNth<AaFileRead> noRead(GetParam());
    EXPECT_EQ(write(), 2);
    expectFailure();
}

TEST_P(RioWriteFailureTest, FileThatEndsEarlyEndsIt)
{
    const FailNth<AaFileRead> noMore(GetParam(), 0);
    EXPECT_EQ(write(), 2);
    expectFailure();
}

TEST_P(RioWriteFailureTest, CopyThatFailsEndsIt)
{
    const FailNth<ddal_rio_copy_to_fd> noCopy(GetParam());
    EXPECT_EQ(write(), 2);
    expectFailure();
}

INSTANTIATE_TEST_SUITE_P(Blocks, RioWriteFailureTest, testing::Values(1U, 2U, 3U));

TEST_F(RioWriteTest, ShortReadsAreWrittenAsTheyCome)
{
    writeFile(1000);
    const FailNth<AaFileRead> shortRead(1, 400); // and leaves the file's position where it was

    EXPECT_EQ(write(), 2) << "1,400 bytes are not 1,000";

    expectLines(1000, {writingLine("0x80000100", 400), writingLine("0x80000290", 1000), failedLine("0x578", "0x3e8")});
}

TEST_F(RioWriteTest, DeviceThatTheBoardDoesNotHaveIsAFailure)
{
    writeFile(10);

    EXPECT_EQ(writeBinaryFileToSrio(0x77, address, path), 2);

    EXPECT_THAT(lines(), Contains(warning + "Failed to open handle for rio transfer (write)"));
    EXPECT_EQ(lines().back(),
              warning + "Writing file '/ffs/run/dsp.bin' to SRIO device 0x77 failed! current 0x0, total 0xa");
}

TEST_F(RioWriteTest, MemoryThatIsTooSmallTakesTheBlocksThatFit)
{
    writeFile(0x20000);

    EXPECT_EQ(writeBinaryFileToSrio(device, 0x800E8000, path), 2);

    EXPECT_EQ(lines().back(), failedLine("0x10000", "0x20000"));
}

TEST_F(RioWriteTest, FullDiskBehindTheDeviceIsAFailure)
{
    writeFile(0x20000);
    memory(0); // the board makes what it needs at the first copy
    const dorn::testkit::FullDisk disk(blockSize + 10);

    EXPECT_EQ(write(), 2);

    EXPECT_EQ(lines().back(), failedLine("0x10000", "0x20000"));
}

class RioValidateTest : public RioTest {
protected:
    /// Has file and device hold the same.
    void load(std::size_t size)
    {
        writeFile(size);
        ASSERT_EQ(writeBinaryFileToSrio(device, address, path), 0);
        m_log.clear();
    }
    static std::int32_t validate(const char* filename = path) { return validateSrioWrite(device, address, filename); }
    static std::string readingLine(unsigned block, const std::string& at, std::size_t size)
    {
        return debug + "validateSrioWrite, Reading " + std::to_string(block) +
               ". block from SRIO device 0x10, address " + at + ", size " + std::to_string(size);
    }
    static std::string corruptedLine(unsigned count)
    {
        return info + "validateSrioWrite, [0x10] SRIO write failed, corrupted " + std::to_string(count) + " bytes";
    }
};

TEST_F(RioValidateTest, FileOfTwoBlocksIsVerifiedInTwo)
{
    load(0x20000);
    EXPECT_EQ(validate(), 0);
    EXPECT_THAT(lines(), ElementsAre(readingLine(1, "0x80000100", blockSize), readingLine(2, "0x80010100", blockSize)));
}

TEST_F(RioValidateTest, LastBlockIsWhatIsLeft)
{
    load(0x10001);
    EXPECT_EQ(validate(), 0);
    EXPECT_THAT(lines(), ElementsAre(readingLine(1, "0x80000100", blockSize), readingLine(2, "0x80010100", 1)));
}

TEST_F(RioValidateTest, EveryBlockHasAHandleAndBuffersOfItsOwn)
{
    load(0x30000);
    const CountCalls<ddal_rio_copy_open_fd> opened;
    const CountCalls<ddal_rio_copy_close_fd> closed;
    const CountCalls<AaMemMalloc> allocated;
    const CountCalls<AaMemUnRef> freed;

    EXPECT_EQ(validate(), 0);

    EXPECT_EQ(opened.count(), 3U);
    EXPECT_EQ(closed.count(), 3U);
    EXPECT_EQ(allocated.count(), 6U);
    EXPECT_EQ(freed.count(), 6U);
}

TEST_F(RioValidateTest, FileMayLieAcrossTheEndOf32Bits)
{
    m_board.cells("rapidio/port@0/device@10/memory@80000000", "reg", {0, 0xFFFF0000, 0, 0x100000});
    m_node.writeBoardFile(path, std::string(0x10001, '\0')); // as the device holds

    EXPECT_EQ(validateSrioWrite(device, 0xFFFFFF00, path), 0);

    EXPECT_THAT(lines(), ElementsAre(readingLine(1, "0xffffff00", blockSize), readingLine(2, "0x10000ff00", 1)));
}

TEST_F(RioValidateTest, DevicesNumberIsInUpperCase)
{
    describeDeviceAb();
    m_node.writeBoardFile(path, "#");
    const std::string name = "validateSrioWrite, [0xAB] ";

    EXPECT_EQ(validateSrioWrite(0xAB, 0x80000000, path), 1);
    EXPECT_EQ(validateSrioWrite(0xAB, 0x80000000, "/missing"), 100);
    {
        const FailNth<AaFileRead> noRead(1);
        EXPECT_EQ(validateSrioWrite(0xAB, 0x80000000, path), 100);
    }
    {
        const FailNth<AaMemMalloc> noMemory(1);
        EXPECT_EQ(validateSrioWrite(0xAB, 0x80000000, path), 100);
    }

    EXPECT_THAT(lines(),
                ElementsAre(debug + "validateSrioWrite, Reading 1. block from SRIO device 0xAB, address 0x80000000, "
                                    "size 1",
                            info + name + "SRIO write failed, corrupted 1 bytes", //
                            warning + name + "AaFileOpen() failed",
                            info + name + "SRIO write failed, corrupted 100 bytes", //
                            info + name + "bytes == size failed",
                            info + name + "SRIO write failed, corrupted 100 bytes", //
                            warning + name + "AaMemMalloc(1) failed",
                            info + name + "SRIO write failed, corrupted 100 bytes"));
}

TEST_F(RioValidateTest, FirstBlockThatDiffersIsTheLast)
{
    load(0x30000);
    spoil({0, 1, 0xFFFF, 0x10000, 0x20000});

    EXPECT_EQ(validate(), 3);

    EXPECT_THAT(lines(), ElementsAre(readingLine(1, "0x80000100", blockSize), corruptedLine(3)));
}

TEST_F(RioValidateTest, DifferenceInTheLastByteIsSeen)
{
    load(0x10001);
    spoil({0x10000});

    EXPECT_EQ(validate(), 1);

    EXPECT_EQ(lines().back(), corruptedLine(1));
}

TEST_F(RioValidateTest, EveryByteMayDiffer)
{
    m_node.writeBoardFile(path, std::string(blockSize, '\1'));

    EXPECT_EQ(validate(), 0x10000) << "the device holds zeros";

    EXPECT_EQ(lines().back(), corruptedLine(0x10000));
}

TEST_F(RioValidateTest, EmptyFileIsVerified)
{
    writeFile(0);
    const CountCalls<AaFileClose> filesClosed;

    EXPECT_EQ(validate(), 0);

    EXPECT_THAT(lines(), ElementsAre(warning + "validateSrioWrite, /ffs/run/dsp.bin file zero length"));
    EXPECT_EQ(filesClosed.count(), 1U);
}

TEST_F(RioValidateTest, FileWithoutNameIsAFailure)
{
    EXPECT_EQ(validate(nullptr), 100);
    EXPECT_THAT(lines(), ElementsAre(warning + "validateSrioWrite, filename == NULL"));
}

TEST_F(RioValidateTest, FileThatIsNotThereIsAFailure)
{
    EXPECT_EQ(validate(), 100);
    EXPECT_THAT(lines(), ElementsAre(warning + "validateSrioWrite, [0x10] AaFileOpen() failed", corruptedLine(100)));
}

TEST_F(RioValidateTest, FileOfUnknownSizeIsAFailure)
{
    writeFile(10);
    const FailNth<AaFileGetSize> noSize(1);
    const CountCalls<AaFileClose> filesClosed;
    EXPECT_EQ(validate(), 100);
    EXPECT_EQ(filesClosed.count(), 1U);
    EXPECT_THAT(lines(), ElementsAre(corruptedLine(100)));
}

/// What goes wrong in the first block and in the second.
class RioValidateFailureTest : public RioValidateTest, public testing::WithParamInterface<unsigned> {
protected:
    RioValidateFailureTest() { load(0x20000); }

    unsigned block() const { return GetParam(); }
    /// Everything that was taken has been given back: so many blocks of memory, and the file.
    void expectFailure(const std::string& message, bool isRead, unsigned freedBlocks)
    {
        const CountCalls<AaMemUnRef> freed;
        const CountCalls<AaFileClose> filesClosed;

        EXPECT_EQ(validate(), 100);

        std::vector<std::string> expected;
        if (block() == 2) {
            expected.push_back(readingLine(1, "0x80000100", blockSize));
        }
        if (isRead) {
            expected.push_back(block() == 1 ? readingLine(1, "0x80000100", blockSize)
                                            : readingLine(2, "0x80010100", blockSize));
        }
        expected.push_back(message);
        expected.push_back(corruptedLine(100));
        EXPECT_EQ(lines(), expected);
        EXPECT_EQ(filesClosed.count(), 1U);
        EXPECT_EQ(freed.count(), freedBlocks);
    }
};

TEST_P(RioValidateFailureTest, NoMemoryForTheFilesBytesIsAFailure)
{
    const FailNth<AaMemMalloc> noMemory(2 * block() - 1);
    expectFailure(warning + "validateSrioWrite, [0x10] AaMemMalloc(1) failed", false, 2 * block() - 2);
}

TEST_P(RioValidateFailureTest, FileThatCannotBeReadIsAFailure)
{
    const FailNth<AaFileRead> noRead(block());
    expectFailure(info + "validateSrioWrite, [0x10] bytes == size failed", false, 2 * block() - 1);
}

TEST_P(RioValidateFailureTest, FileThatIsShorterThanItSaidIsAFailure)
{
    const FailNth<AaFileRead> shortRead(block(), 0xFFFF);
    expectFailure(info + "validateSrioWrite, [0x10] bytes == size failed", false, 2 * block() - 1);
}

TEST_P(RioValidateFailureTest, MissingHandleIsAFailure)
{
    const FailNth<ddal_rio_copy_open_fd> noHandle(block());
    const CountCalls<ddal_rio_copy_close_fd> closed;
    expectFailure(warning + "validateSrioWrite, Failed to open handle for rio transfer (read)", false, 2 * block() - 1);
    EXPECT_EQ(closed.count(), block() - 1);
}

TEST_P(RioValidateFailureTest, NoMemoryForTheDevicesBytesIsAFailure)
{
    const FailNth<AaMemMalloc> noMemory(2 * block());
    const CountCalls<ddal_rio_copy_close_fd> closed;
    expectFailure(warning + "validateSrioWrite, [0x10] AaMemMalloc(2) failed", false, 2 * block() - 1);
    EXPECT_EQ(closed.count(), block());
}

TEST_P(RioValidateFailureTest, DeviceThatCannotBeReadIsAFailure)
{
    const FailNth<ddal_rio_copy_from_fd> noCopy(block());
    const CountCalls<ddal_rio_copy_close_fd> closed;
    expectFailure(warning + "validateSrioWrite, [0x10] ddal_rio_copy_from() failed", true, 2 * block());
    EXPECT_EQ(closed.count(), block());
}

TEST_P(RioValidateFailureTest, HandleThatCannotBeClosedIsAFailure)
{
    const FailNth<ddal_rio_copy_close_fd> noClose(block());
    expectFailure(warning + "validateSrioWrite, Failed to close transfer handle", true, 2 * block());
}

INSTANTIATE_TEST_SUITE_P(Blocks, RioValidateFailureTest, testing::Values(1U, 2U));

TEST_F(RioValidateTest, CloseThatFailsHidesTheDifferences)
{
    load(100);
    spoil({1, 2});
    const FailNth<ddal_rio_copy_close_fd> noClose(1);

    EXPECT_EQ(validate(), 100);

    EXPECT_THAT(lines(),
                ElementsAre(readingLine(1, "0x80000100", 100),
                            warning + "validateSrioWrite, Failed to close transfer handle", corruptedLine(100)));
}

TEST_F(RioValidateTest, CopyAndCloseThatFailAreBothSaid)
{
    load(100);
    const FailNth<ddal_rio_copy_from_fd> noCopy(1);
    const FailNth<ddal_rio_copy_close_fd> noClose(1);

    EXPECT_EQ(validate(), 100);

    EXPECT_THAT(lines(),
                ElementsAre(readingLine(1, "0x80000100", 100),
                            warning + "validateSrioWrite, [0x10] ddal_rio_copy_from() failed",
                            warning + "validateSrioWrite, Failed to close transfer handle", corruptedLine(100)));
}

TEST_F(RioValidateTest, FailureAndAHundredBytesLookTheSame)
{
    load(200);
    std::vector<std::size_t> offsets(100);
    for (std::size_t index = 0; index < offsets.size(); ++index) {
        offsets[index] = 2 * index;
    }
    spoil(offsets);

    EXPECT_EQ(validate(), 100);
}

TEST_F(RioValidateTest, ThreadsLoadDevicesAtOnce)
{
    constexpr std::uint16_t secondDevice = 0x11;
    m_board.cells("rapidio/port@0/device@11", "reg", {secondDevice});
    m_board.cells("rapidio/port@0/device@11/memory@80000000", "reg", {0, 0x80000000, 0, 0x100000});
    writeFile(0x28000);
    std::vector<std::jthread> threads;
    for (const std::uint16_t id : {device, secondDevice}) {
        threads.emplace_back([id] {
            EXPECT_EQ(writeBinaryFileToSrio(id, address, path), 0);
            EXPECT_EQ(validateSrioWrite(id, address, path), 0);
        });
    }
}

TEST_F(RioValidateTest, FunctionsAreCalledFromC)
{
    writeFile(0x10001);
    EXPECT_EQ(loadInC(device, address, path), 0);
    EXPECT_EQ(loadInC(0x77, address, path), -2);
}

class RioDumpTest : public RioTest {
protected:
    static constexpr std::size_t nameSize = 48;

    std::int32_t dump(const char* prefix = "params", const void* data = "12345", std::uint32_t size = 5)
    {
        return DumpDataToFile(data, size, 0xAB, prefix, m_name.data());
    }
    std::string name() const { return m_name.data(); }

    /// Longer than the name may be, so that a write behind it is seen.
    std::array<char, nameSize + 1> m_name{[] {
        std::array<char, nameSize + 1> name{};
        name.back() = '#';
        return name;
    }()};
};

TEST_F(RioDumpTest, DataAreInTheFile)
{
    EXPECT_EQ(dump(), 1);

    EXPECT_EQ(name(), "/ram/dsp_parameters/params_0xAB");
    EXPECT_EQ(m_node.readBoardFile(name()), "12345");
    EXPECT_THAT(lines(), ElementsAre(info + "DumpDataToFile: [0xAB] params data dumped to "
                                            "/ram/dsp_parameters/params_0xAB"));
}

TEST_F(RioDumpTest, LaterDumpTakesThePlaceOfTheFirst)
{
    EXPECT_EQ(dump("p", "long data", 9), 1);
    EXPECT_EQ(dump("p", "short", 5), 1);
    EXPECT_EQ(m_node.readBoardFile("/ram/dsp_parameters/p_0xAB"), "short");
}

TEST_F(RioDumpTest, NoDataMakeAnEmptyFile)
{
    EXPECT_EQ(dump("p", nullptr, 0), 1);
    EXPECT_EQ(m_node.readBoardFile("/ram/dsp_parameters/p_0xAB"), "");
}

TEST_F(RioDumpTest, LongNameIsUsedAsCut)
{
    EXPECT_EQ(dump("a_prefix_of_more_than_27_characters"), 1);

    EXPECT_EQ(name(), "/ram/dsp_parameters/a_prefix_of_more_than_27_ch");
    EXPECT_EQ(name().size(), 47U);
    EXPECT_EQ(m_name.back(), '#');
    EXPECT_EQ(m_node.readBoardFile(name()), "12345");
}

TEST_F(RioDumpTest, NameNeedsARoom)
{
    EXPECT_EQ(DumpDataToFile("1", 1, 0x10, "p", nullptr), 0);
    EXPECT_THAT(lines(), ElementsAre("Error 0x20003 DumpDataToFile: [0x10] Invalid pointer to filename"));
}

TEST_F(RioDumpTest, NameNeedsAPrefix)
{
    EXPECT_EQ(dump(nullptr), 0);
    EXPECT_THAT(lines(), ElementsAre("Error 0x20003 DumpDataToFile: [0xAB] File name cannot be constructed"));
}

TEST_F(RioDumpTest, DirectoryIsMadeOnce)
{
    const CountCalls<AaFileCreateDir> made;
    EXPECT_EQ(dump(), 1);
    EXPECT_EQ(dump(), 1);
    EXPECT_EQ(made.count(), 1U);
}

TEST_F(RioDumpTest, DirectoryThatCannotBeMadeIsAFailure)
{
    const FailNth<AaFileCreateDir> noDirectory(1, 28);
    const CountCalls<AaFileOpen> opened;

    EXPECT_EQ(dump(), 0);

    EXPECT_THAT(lines(), ElementsAre("Error 0x20003 DumpDataToFile: [0xAB] Could not create /ram/dsp_parameters "
                                     "directory. Error 28"));
    EXPECT_EQ(opened.count(), 0U);
}

TEST_F(RioDumpTest, FileThatCannotBeOpenedIsAFailure)
{
    const FailNth<AaFileOpen> noFile(1);
    EXPECT_EQ(dump(), 0);
    EXPECT_THAT(lines(), ElementsAre("Error 0x20003 DumpDataToFile: [0xAB] Could not open "
                                     "/ram/dsp_parameters/params_0xAB for writing"));
}

class RioDumpWriteTest : public RioDumpTest, public testing::WithParamInterface<std::int32_t> {};

TEST_P(RioDumpWriteTest, ThatFailsIsAFailure)
{
    const FailNth<AaFileWrite> noWrite(1, GetParam());
    const CountCalls<AaFileClose> closed;

    EXPECT_EQ(dump(), 0);

    EXPECT_EQ(closed.count(), 1U);
    EXPECT_THAT(lines(), ElementsAre("Error 0x20003 DumpDataToFile: [0xAB] Failed to write data to "
                                     "/ram/dsp_parameters/params_0xAB"));
}

INSTANTIATE_TEST_SUITE_P(Results, RioDumpWriteTest, testing::Values(-1, 0, 4));

TEST_F(RioDumpTest, FullDiskIsAFailure)
{
    const dorn::testkit::FullDisk disk(3);
    EXPECT_EQ(dump(), 0);
    EXPECT_EQ(m_node.readBoardFile("/ram/dsp_parameters/params_0xAB"), "123");
}

TEST_F(RioDumpTest, FunctionIsCalledFromC)
{
    EXPECT_EQ(dumpInC(m_name.data()), 1);
    EXPECT_EQ(m_node.readBoardFile("/ram/dsp_parameters/c_0x10"), std::string("C\0", 2));
}

} // namespace
