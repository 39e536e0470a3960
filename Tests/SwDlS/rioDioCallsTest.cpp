// SPDX-License-Identifier: MIT
// What transfers ask of files, memory and devices, and in which order: see LoggedCalls.cpp.
#include "rioDio.h"

#include "LogCapture.hpp"
#include "TestBoard.hpp"
#include "TestNode.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;

constexpr std::uint16_t device = 0x10;
constexpr std::uint64_t address = 0x80000100;
constexpr std::uint64_t addressBehindTheMemory = 0x80100000;
constexpr const char* path = "/ffs/run/dsp.bin";

const std::string call = "Vip 0x0 ";
const std::string info = "Info 0x20003 ";
const std::string warning = "Warning 0x20003 ";

class RioCallsTest : public testing::Test {
protected:
    void writeFile(std::size_t size, char byte = 0) const { m_node.writeBoardFile(path, std::string(size, byte)); }

    /// Calls and lines of the transfer. What the drivers say of their own failures is left out.
    std::vector<std::string> sequence() const
    {
        std::vector<std::string> lines = m_log.texts();
        std::erase_if(lines, [](const std::string& line) {
            return line.starts_with("Error 0x0 ") || line.starts_with("Warning 0x0 ");
        });
        return lines;
    }

    dorn::testkit::TestNode m_node{{.logLevel = "info"}};
    dorn::testkit::TestBoard m_board;
    dorn::testkit::LogCapture m_log;
};

TEST_F(RioCallsTest, WritingReadsTheFileBlockByBlockThroughOneHandle)
{
    writeFile(0x10001);

    EXPECT_EQ(writeBinaryFileToSrio(device, address, path), 0);

    EXPECT_THAT(sequence(),
                ElementsAre(call + "open /ffs/run/dsp.bin r", call + "take block 1 0x10000",
                            call + "open handle 0x0 0x10 0x2", call + "read 0x10000",
                            call + "copy to 0x80000100 0x10000", call + "read 0x10000", call + "copy to 0x80010100 0x1",
                            call + "close handle", call + "give back block 1", call + "close"));
}

TEST_F(RioCallsTest, WritingThatFailsIsSaidBeforeBufferAndFileAreGivenBack)
{
    writeFile(10);

    EXPECT_EQ(writeBinaryFileToSrio(device, addressBehindTheMemory, path), 2);

    EXPECT_THAT(sequence(),
                ElementsAre(call + "open /ffs/run/dsp.bin r", call + "take block 1 0xa",
                            call + "open handle 0x0 0x10 0x2", call + "read 0xa", call + "copy to 0x80100000 0xa",
                            call + "close handle",
                            warning + "Writing file '/ffs/run/dsp.bin' to SRIO device 0x10 failed! current 0x0, "
                                      "total 0xa",
                            call + "give back block 1", call + "close"));
}

TEST_F(RioCallsTest, VerificationTakesAndGivesBackEverythingForEachBlock)
{
    writeFile(0x10001); // zeros, as the device holds

    EXPECT_EQ(validateSrioWrite(device, address, path), 0);

    EXPECT_THAT(sequence(),
                ElementsAre(call + "open /ffs/run/dsp.bin r", //
                            call + "take block 1 0x10000", call + "read 0x10000", call + "open handle 0x0 0x10 0x2",
                            call + "take block 2 0x10000", call + "copy from 0x80000100 0x10000",
                            call + "give back block 2", call + "close handle", call + "give back block 1", //
                            call + "take block 1 0x1", call + "read 0x1", call + "open handle 0x0 0x10 0x2",
                            call + "take block 2 0x1", call + "copy from 0x80010100 0x1", call + "give back block 2",
                            call + "close handle", call + "give back block 1", //
                            call + "close"));
}

TEST_F(RioCallsTest, DifferencesAreSaidWhenTheFileIsClosed)
{
    writeFile(3, '#');

    EXPECT_EQ(validateSrioWrite(device, address, path), 3);

    EXPECT_THAT(sequence(), ElementsAre(call + "open /ffs/run/dsp.bin r", call + "take block 1 0x3", call + "read 0x3",
                                        call + "open handle 0x0 0x10 0x2", call + "take block 2 0x3",
                                        call + "copy from 0x80000100 0x3", call + "give back block 2",
                                        call + "close handle", call + "give back block 1", call + "close",
                                        info + "validateSrioWrite, [0x10] SRIO write failed, corrupted 3 bytes"));
}

TEST_F(RioCallsTest, DeviceThatCannotBeReadLeavesTheOrderAsItIs)
{
    writeFile(3);

    EXPECT_EQ(validateSrioWrite(device, addressBehindTheMemory, path), 100);

    EXPECT_THAT(sequence(),
                ElementsAre(call + "open /ffs/run/dsp.bin r", call + "take block 1 0x3", call + "read 0x3",
                            call + "open handle 0x0 0x10 0x2", call + "take block 2 0x3",
                            call + "copy from 0x80100000 0x3",
                            warning + "validateSrioWrite, [0x10] ddal_rio_copy_from() failed",
                            call + "give back block 2", call + "close handle", call + "give back block 1",
                            call + "close", info + "validateSrioWrite, [0x10] SRIO write failed, corrupted 100 bytes"));
}

TEST_F(RioCallsTest, HandleThatCannotBeOpenedIsNotClosedInVerification)
{
    writeFile(3);

    EXPECT_EQ(validateSrioWrite(0x77, address, path), 100);

    EXPECT_THAT(sequence(), ElementsAre(call + "open /ffs/run/dsp.bin r", call + "take block 1 0x3", call + "read 0x3",
                                        call + "open handle 0x0 0x77 0x2",
                                        warning + "validateSrioWrite, Failed to open handle for rio transfer (read)",
                                        call + "give back block 1", call + "close",
                                        info + "validateSrioWrite, [0x77] SRIO write failed, corrupted 100 bytes"));
}

TEST_F(RioCallsTest, EmptyFileIsSaidBeforeItIsClosed)
{
    writeFile(0);

    EXPECT_EQ(validateSrioWrite(device, address, path), 0);

    EXPECT_THAT(sequence(),
                ElementsAre(call + "open /ffs/run/dsp.bin r",
                            warning + "validateSrioWrite, /ffs/run/dsp.bin file zero length", call + "close"));
}

TEST_F(RioCallsTest, DumpIsWrittenInOneCallAndSaidBeforeItIsClosed)
{
    char name[RIO_DUMP_FILE_NAME_SIZE];

    EXPECT_EQ(DumpDataToFile("12345", 5, device, "p", name), 1);

    EXPECT_THAT(sequence(), ElementsAre(call + "exists /ram/dsp_parameters", call + "create /ram/dsp_parameters",
                                        call + "open /ram/dsp_parameters/p_0x10 w", call + "write 0x5",
                                        info + "DumpDataToFile: [0x10] p data dumped to /ram/dsp_parameters/p_0x10",
                                        call + "close"));
}

} // namespace
