// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaFile.h"
#include "FirmwareTest.hpp"

#include <algorithm>

namespace dorn::test {
namespace {

using ::testing::ElementsAre;
using testkit::CountCalls;
using testkit::FailEvery;
using testkit::FailNth;

constexpr std::size_t itemSize = 4;
/// What is read at once; sizes around it are where an error would be.
constexpr std::size_t block = 32 * 1024;

/// The CRC-32 of a loop that reads a file item by item into one and the same item and adds it each time, whether or not
/// it has been read.
std::uint32_t crcOfLoop(const std::string& file, std::size_t payloadLength)
{
    std::string fed;
    std::string item(itemSize, '\0');
    std::size_t at = 0;
    for (std::size_t count = 0; count < payloadLength / itemSize; ++count) {
        if (file.size() - at >= itemSize) {
            item = file.substr(at, itemSize);
            at += itemSize;
        } else {
            at = file.size();
        }
        fed += item;
    }
    std::string rest = file.substr(at, payloadLength % itemSize);
    rest.resize(payloadLength % itemSize, '\0');
    return crcOf(fed + rest);
}

class CrcTest : public FirmwareTest {
protected:
    std::uint32_t crcOfFirst(std::size_t payloadLength) const
    {
        std::uint32_t crc = 0xDEADBEEF;
        EXPECT_EQ(calculate_crc(path, static_cast<std::uint32_t>(payloadLength), &crc), 0U);
        return crc;
    }

    void expectFailure() const
    {
        std::uint32_t crc = 0xDEADBEEF;
        EXPECT_EQ(calculate_crc(path, 8, &crc), 70406U);
        EXPECT_EQ(crc, 0U);
    }
};

/// Some reads fail, one after the other.
class ReadsFail : public CountCalls<AaFileRead> {
public:
    /// @param first the number of the first, from 1
    ReadsFail(unsigned first, unsigned howMany)
    {
        testkit::seamCall<AaFileRead>().fail(m_before + first - 1, howMany - 1);
    }
    ~ReadsFail() { testkit::seamCall<AaFileRead>().stopFailing(); }
    ReadsFail(const ReadsFail&) = delete;
    ReadsFail& operator=(const ReadsFail&) = delete;
};

TEST_F(CrcTest, KnownTextHasItsKnownCrc)
{
    write("123456789");

    EXPECT_EQ(crcOfFirst(9), 0xCBF43926U);
    EXPECT_THAT(m_syslog.texts(),
                ElementsAre("info calculate_crc(): bytes remaining: 1 (0x1)",
                            "info calculate_crc(): remaining data: 57 (0x39)",
                            "info calculate_crc(): CRC32 calculated from file: -873187034 (0xcbf43926)"));
}

TEST_F(CrcTest, NothingHasTheCrcZero)
{
    write("123456789");

    EXPECT_EQ(crcOfFirst(0), 0U);
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info calculate_crc(): CRC32 calculated from file: 0 (0x0)"));
}

TEST_F(CrcTest, WholeItemsHaveNoRemainder)
{
    write("12345678");

    EXPECT_EQ(crcOfFirst(8), crcOf("12345678"));
    EXPECT_THAT(m_syslog.texts(), ElementsAre(crcLine(crcOf("12345678"))));
}

TEST_F(CrcTest, RemainderIsLoggedAsANumber)
{
    write("\x01\x02\x03\x04\x81\x82\x83\x84");

    EXPECT_EQ(crcOfFirst(7), crcOf("\x01\x02\x03\x04\x81\x82\x83"));
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info calculate_crc(): bytes remaining: 3 (0x3)",
                                              "info calculate_crc(): remaining data: 8618625 (0x838281)",
                                              crcLine(crcOf("\x01\x02\x03\x04\x81\x82\x83"))));
}

TEST_F(CrcTest, AnyLengthGivesTheCrcOfTheWholeRange)
{
    const std::string file = payloadOf(3 * block);
    write(file);
    for (const std::size_t around : {std::size_t{8}, block, 2 * block}) {
        for (std::size_t length = around - 8; length <= around + 8; ++length) {
            EXPECT_EQ(crcOfFirst(length), crcOf(file.substr(0, length))) << length;
        }
    }
}

TEST_F(CrcTest, FileThatIsShorterGivesWhatALoopOfSingleReadsGives)
{
    const std::string file = payloadOf(2 * block);
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{3}, std::size_t{4}, std::size_t{7},
                                   std::size_t{10}, block - 4, block - 1, block, block + 2, block + 4}) {
        write(file.substr(0, size));
        for (const std::size_t length :
             {size + 1, size + 3, size + 4, size + 7, size + 1001, size + block, size + 2 * block + 3}) {
            EXPECT_EQ(crcOfFirst(length), crcOfLoop(file.substr(0, size), length)) << size << " of " << length;
        }
    }
}

TEST_F(CrcTest, ItemThatIsNotThereIsTheOneBeforeIt)
{
    write("abcdefghXY");

    EXPECT_EQ(crcOfFirst(16), crcOf("abcdefghefghefgh"));
    EXPECT_EQ(crcOfFirst(19), crcOf(std::string("abcdefghefghefgh\0\0\0", 19)));
}

TEST_F(CrcTest, RemainderThatIsNotThereIsZero)
{
    write("abcdXY");

    EXPECT_EQ(crcOfFirst(7), crcOf(std::string("abcdXY\0", 7)));
}

TEST_F(CrcTest, EmptyFileIsZeros)
{
    write("");

    EXPECT_EQ(crcOfFirst(11), crcOf(std::string(11, '\0')));
}

TEST_F(CrcTest, FileThatGetsShorterWhileItIsRead)
{
    const std::string file = payloadOf(3 * block);
    write(file);
    const FailNth<AaFileRead> end(2, 0);

    EXPECT_EQ(crcOfFirst(3 * block), crcOfLoop(file.substr(0, block), 3 * block));
}

TEST_F(CrcTest, WhatComesBackAfterTheEndIsNotReadAnyMore)
{
    const std::string file = payloadOf(3 * block);
    write(file);
    const FailNth<AaFileRead> end(2, 0); // the third would give bytes again

    EXPECT_NE(crcOfFirst(3 * block), crcOf(file));
    EXPECT_EQ(end.count(), 2U);
}

TEST_F(CrcTest, BlockThatCannotBeReadIsReadItemByItem)
{
    const std::string file = payloadOf(2 * block + 3);
    write(file);
    const FailNth<AaFileRead> failure(2);

    EXPECT_EQ(crcOfFirst(file.size()), crcOf(file));
    EXPECT_TRUE(failure.hasFailed());
}

TEST_F(CrcTest, ItemThatCannotBeReadIsTheOneBeforeItAndTheFileIsReadOn)
{
    const std::string file = payloadOf(3 * block);
    write(file);
    const ReadsFail secondBlockAndItsFirstItem(2, 2);

    EXPECT_EQ(crcOfFirst(3 * block), crcOf(file.substr(0, block) + file.substr(block - itemSize, itemSize) +
                                           file.substr(block, 2 * block - itemSize)));
    EXPECT_EQ(secondBlockAndItsFirstItem.count(), 1 + 1 + block / itemSize + 1);
}

TEST_F(CrcTest, SeveralItemsThatCannotBeReadAreTheOneBeforeThem)
{
    const std::string file = payloadOf(2 * block);
    write(file);
    const ReadsFail secondBlockAndThreeItems(2, 4);
    const std::string last = file.substr(block - itemSize, itemSize);

    EXPECT_EQ(crcOfFirst(2 * block),
              crcOf(file.substr(0, block) + last + last + last + file.substr(block, block - 3 * itemSize)));
}

TEST_F(CrcTest, FirstItemThatCannotBeReadIsZero)
{
    const std::string file = payloadOf(5 * itemSize);
    write(file);
    const ReadsFail blockAndItsFirstItem(1, 2);

    EXPECT_EQ(crcOfFirst(5 * itemSize), crcOf(std::string(itemSize, '\0') + file.substr(0, 4 * itemSize)));
}

TEST_F(CrcTest, FileThatEndsBehindAFailureIsNotReadOn)
{
    const std::string file = payloadOf(2 * itemSize + 1);
    write(file);
    const ReadsFail wholeBlock(1, 1);
    const std::string last = file.substr(itemSize, itemSize);

    EXPECT_EQ(crcOfFirst(5 * itemSize), crcOf(file.substr(0, 2 * itemSize) + last + last + last));
    EXPECT_EQ(wholeBlock.count(), 4U); // the items that are there, and the one that is there in part
}

TEST_F(CrcTest, FileThatCannotBeReadIsZeros)
{
    write(payloadOf(43));
    const FailEvery<AaFileRead> failure;

    EXPECT_EQ(crcOfFirst(43), crcOf(std::string(43, '\0')));
    EXPECT_EQ(failure.count(), 1U + 10U + 1U);
}

TEST_F(CrcTest, RemainderIsReadAfterAFailureToo)
{
    const std::string file = payloadOf(2 * itemSize + 3);
    write(file);
    const ReadsFail blockAndItsItems(1, 3);

    EXPECT_EQ(crcOfFirst(file.size()), crcOf(std::string(2 * itemSize, '\0') + file.substr(0, 3)));
}

TEST_F(CrcTest, RemainderThatCannotBeReadIsZero)
{
    const std::string file = payloadOf(itemSize + 3);
    write(file);
    const ReadsFail remainder(2, 1);

    EXPECT_EQ(crcOfFirst(file.size()), crcOf(file.substr(0, itemSize) + std::string(3, '\0')));
}

TEST_F(CrcTest, EverythingBehindAFailureThatStaysIsTheItemBeforeIt)
{
    const std::string file = payloadOf(3 * block);
    write(file);
    const ReadsFail secondBlockAndAllBehindIt(2, 1'000'000);

    EXPECT_EQ(crcOfFirst(3 * block + 2), crcOfLoop(file.substr(0, block), 3 * block + 2));
}

TEST_F(CrcTest, BlockWhosePositionIsNotKnownIsReadFromWhereTheFailureHasLeftOff)
{
    const std::string file = payloadOf(40);
    write(file);
    const FailEvery<AaFileGetPosition> noPosition;
    const FailNth<AaFileRead> failure(1);

    EXPECT_EQ(crcOfFirst(40), crcOf(file));
    EXPECT_EQ(failure.count(), 1U + 10U);
}

TEST_F(CrcTest, BlockThatCannotBeGoneBackToIsReadFromWhereTheFailureHasLeftOff)
{
    const std::string file = payloadOf(40);
    write(file);
    const FailNth<AaFileSetPosition> noWayBack(2);
    const FailNth<AaFileRead> failure(1);

    EXPECT_EQ(crcOfFirst(40), crcOf(file));
    EXPECT_TRUE(noWayBack.hasFailed());
}

TEST_F(CrcTest, ItemsAreReadInLargeBlocks)
{
    write(payloadOf(8 * block));
    const CountCalls<AaFileRead> reads;

    crcOfFirst(8 * block);

    EXPECT_EQ(reads.count(), 8U);
}

TEST_F(CrcTest, FileThatIsMissingIsAFailure)
{
    expectFailure();
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info calculate_crc(): Could not open file: /ffs/run/boot/image.bin"));
}

TEST_F(CrcTest, PositionThatCannotBeMovedToTheBeginIsAFailure)
{
    write("12345678");
    const FailNth<AaFileSetPosition> failure(1);

    expectFailure();
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info calculate_crc(): Could not set file ptr position in file"));
}

} // namespace
} // namespace dorn::test
