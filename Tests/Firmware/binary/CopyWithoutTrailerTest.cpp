// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaCpu.h"
#include "AaFile.h"
#include "FailingFilePort.hpp"
#include "FirmwareTest.hpp"

#include <filesystem>
#include <sys/stat.h>

namespace dorn::test {
namespace {

using ::testing::IsEmpty;
using testkit::CountCalls;
using testkit::FailNth;

class CopyWithoutTrailerTest : public FirmwareTest {
protected:
    std::int32_t copy() const { return binary_copy_without_trailer(path, destination); }

    std::int32_t copy(const std::string& image) const
    {
        write(image);
        return copy();
    }

    std::string copied() const { return m_node.readBoardFile(destination); }
    bool isCopyThere() const { return std::filesystem::exists(m_node.boardPath(destination)); }

    static constexpr const char* destination = "/payload";
};

TEST_F(CopyWithoutTrailerTest, PayloadIsCopied)
{
    EXPECT_EQ(copy(goodImage()), 0);
    EXPECT_EQ(copied(), payloadOf(1000));
    EXPECT_THAT(m_syslog.texts(), IsEmpty());
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(CopyWithoutTrailerTest, PayloadOfAnySizeIsCopied)
{
    for (const std::size_t size : {1U, 1023U, 1024U, 1025U, 2048U, 100'000U}) {
        EXPECT_EQ(copy(imageOf(payloadOf(size), "<trailer/>")), 0);
        EXPECT_EQ(copied(), payloadOf(size));
    }
}

TEST_F(CopyWithoutTrailerTest, PayloadIsCopiedInPiecesOf1024Bytes)
{
    write(imageOf(payloadOf(2049), ""));
    const CountCalls<AaFileRead> reads;
    const CountCalls<AaFileWrite> writes;

    EXPECT_EQ(copy(), 0);
    EXPECT_EQ(reads.count(), 4U); // with the word's
    EXPECT_EQ(writes.count(), 3U);
}

TEST_F(CopyWithoutTrailerTest, WordIsTakenAsItIs)
{
    write(goodImage());
    const CountCalls<AaCpuBitSwapByteOrder32> calls;

    EXPECT_EQ(copy(), 0);
    EXPECT_EQ(calls.count(), 0U);
}

TEST_F(CopyWithoutTrailerTest, TrailerIsNotLookedAt)
{
    EXPECT_EQ(copy("payload and nonsense" + wordOf(7)), 0);
    EXPECT_EQ(copied(), "payload");
}

TEST_F(CopyWithoutTrailerTest, OldContentOfTheCopyIsGone)
{
    m_node.writeBoardFile(destination, payloadOf(5000));

    EXPECT_EQ(copy(goodImage()), 0);
    EXPECT_EQ(copied(), payloadOf(1000));
}

TEST_F(CopyWithoutTrailerTest, OffsetZeroCopiesNothing)
{
    m_node.writeBoardFile(destination, "old");

    EXPECT_EQ(copy("payload" + wordOf(0)), 0);
    EXPECT_EQ(copied(), "");
}

TEST_F(CopyWithoutTrailerTest, FileMayBeTheWordAlone)
{
    EXPECT_EQ(copy(wordOf(0)), 0);
    EXPECT_EQ(copied(), "");
}

TEST_F(CopyWithoutTrailerTest, SourceThatIsMissingIsAFailure)
{
    EXPECT_EQ(copy(), -1);
    EXPECT_FALSE(isCopyThere());
}

TEST_F(CopyWithoutTrailerTest, EndThatIsNotReached)
{
    write(goodImage());
    const FailNth<AaFileSetPosition> failure(1);

    EXPECT_EQ(copy(), -2);
    EXPECT_FALSE(isCopyThere());
}

TEST_F(CopyWithoutTrailerTest, PipeHasNoEndAndHoldsNobodyUp)
{
    ASSERT_EQ(mkfifo(m_node.boardPath("/fifo").c_str(), 0600), 0);

    EXPECT_EQ(binary_copy_without_trailer("/fifo", destination), -2);
}

TEST_F(CopyWithoutTrailerTest, SizeThatIsNotKnownIsAFailure)
{
    write(goodImage());
    const FailNth<AaFileGetPosition> failure(1);

    EXPECT_EQ(copy(), -3);
    EXPECT_FALSE(isCopyThere());
}

TEST_F(CopyWithoutTrailerTest, SizeThatDoesNotFit)
{
    write("");
    std::filesystem::resize_file(m_node.boardPath(path), std::uintmax_t{1} << 31);

    EXPECT_EQ(copy(), -3);
}

TEST_F(CopyWithoutTrailerTest, FileThatIsShorterThanTheWordIsAFailure)
{
    for (std::size_t size = 0; size < 4; ++size) {
        EXPECT_EQ(copy(std::string(size, 'x')), -4);
    }
    EXPECT_FALSE(isCopyThere());
}

TEST_F(CopyWithoutTrailerTest, WordThatIsReadInPartIsAFailure)
{
    write(goodImage());
    const FailNth<AaFileRead> shortRead(1, 3);

    EXPECT_EQ(copy(), -5);
    EXPECT_FALSE(isCopyThere());
}

TEST_F(CopyWithoutTrailerTest, WordThatCannotBeReadIsAFailure)
{
    write(goodImage());
    const FailNth<AaFileRead> failure(1);

    EXPECT_EQ(copy(), -5);
}

TEST_F(CopyWithoutTrailerTest, OffsetThatIsNotBelowTheSizeIsAFailure)
{
    EXPECT_EQ(copy("payload" + wordOf(11)), -6);
    EXPECT_EQ(copy("payload" + wordOf(12)), -6);
    EXPECT_EQ(copy("payload" + wordOf(0xFFFFFFFF)), -6);
    EXPECT_FALSE(isCopyThere());
    EXPECT_EQ(copy("payload" + wordOf(10)), 0);
}

TEST_F(CopyWithoutTrailerTest, BeginThatIsNotReached)
{
    write(goodImage());
    const FailNth<AaFileSetPosition> failure(3);

    EXPECT_EQ(copy(), -7);
    EXPECT_FALSE(isCopyThere());
}

TEST_F(CopyWithoutTrailerTest, DestinationThatCannotBeOpenedIsAFailure)
{
    write(goodImage());

    EXPECT_EQ(binary_copy_without_trailer(path, "/missing/payload"), -8);
}

TEST_F(CopyWithoutTrailerTest, ReadThatGivesNothing)
{
    write(goodImage());
    const FailNth<AaFileRead> end(2, 0);

    EXPECT_EQ(copy(), -9);
    EXPECT_EQ(copied(), "");
}

TEST_F(CopyWithoutTrailerTest, LaterReadThatGivesNothing)
{
    write(imageOf(payloadOf(1500), ""));
    const FailNth<AaFileRead> end(3, 0);

    EXPECT_EQ(copy(), -9);
    EXPECT_EQ(copied(), payloadOf(1500).substr(0, 1024));
}

/// Its room is for 1024 bytes, but fewer were asked for.
TEST_F(CopyWithoutTrailerTest, LastReadThatGivesMoreThanAskedFor)
{
    write(imageOf(payloadOf(1500), ""));
    const FailNth<AaFileRead> tooMuch(3, 477);

    EXPECT_EQ(copy(), -9);
    EXPECT_EQ(copied(), payloadOf(1500).substr(0, 1024));
}

TEST_F(CopyWithoutTrailerTest, ReadThatFailsOrGivesTooMuch)
{
    write(imageOf(payloadOf(1500), ""));
    {
        const FailNth<AaFileRead> failure(3);
        EXPECT_EQ(copy(), -9);
    }
    {
        const FailNth<AaFileRead> tooMuch(2, 1025);
        EXPECT_EQ(copy(), -9);
    }
    EXPECT_EQ(copied(), "");
}

TEST_F(CopyWithoutTrailerTest, PiecesThatAreReadInPartAreCopied)
{
    write(imageOf(std::string(1024, '\0'), ""));
    const FailNth<AaFileRead> shortRead(2, 1000); // of an untouched buffer
    const CountCalls<AaFileWrite> writes;

    EXPECT_EQ(copy(), 0);
    EXPECT_EQ(copied().size(), 1024U);
    EXPECT_EQ(writes.count(), 2U);
}

TEST_F(CopyWithoutTrailerTest, WriteThatFallsShort)
{
    write(goodImage());
    {
        const FailNth<AaFileWrite> shortWrite(1, 999);
        EXPECT_EQ(copy(), -10);
    }
    {
        const FailNth<AaFileWrite> failure(1);
        EXPECT_EQ(copy(), -10);
    }
}

TEST_F(CopyWithoutTrailerTest, DiskThatFillsUpIsAFailure)
{
    write(imageOf(payloadOf(5000), ""));
    const testkit::FullDisk disk(3000);

    EXPECT_EQ(copy(), -10);
    EXPECT_EQ(copied(), payloadOf(5000).substr(0, 3000));
}

TEST_F(CopyWithoutTrailerTest, WhatIsNotStoredIsNotWritten)
{
    write(goodImage());
    const FailNth<AaFileClose> failure(1);

    EXPECT_EQ(copy(), -10);
}

TEST_F(CopyWithoutTrailerTest, SourceThatIsTheDestinationIsEmptied)
{
    write(goodImage());

    EXPECT_EQ(binary_copy_without_trailer(path, path), -9);
}

TEST_F(CopyWithoutTrailerTest, BothReadersFindTheSameTrailer)
{
    for (const std::size_t size : {1U, 255U, 256U, 65'537U}) {
        write(imageOf(payloadOf(size), trailerOf(contentFor(payloadOf(size)))));

        EXPECT_EQ(binary_crc(path), 0);
        EXPECT_EQ(copy(), 0);
        EXPECT_EQ(copied(), payloadOf(size));
    }
}

} // namespace
} // namespace dorn::test
