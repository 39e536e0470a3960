// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaCpu.h"
#include "AaFile.h"
#include "FirmwareTest.hpp"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>

extern "C" std::uint32_t trailerLengthInC(const char* path, std::uint32_t size);

namespace dorn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using testkit::FailNth;

/// What get_trailer() gives.
struct Answer {
    std::uint32_t result;
    std::uint32_t beginning;
    std::string trailer; ///< "none" when there is none

    bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* stream)
{
    *stream << answer.result << " from " << answer.beginning << ": " << answer.trailer;
}

class GetTrailerTest : public FirmwareTest {
protected:
    /// @param length of the trailer region, so that bytes behind a NUL are looked at too
    Answer read(std::size_t length = 0) const
    {
        char anything = 'x';
        Answer answer{0, 0xDEADBEEF, "none"};
        char* trailer = &anything;
        answer.result = get_trailer(path, &answer.beginning, &trailer);
        if (trailer) {
            EXPECT_EQ(trailer[length], '\0');
            answer.trailer.assign(trailer, length);
        }
        std::free(trailer);
        return answer;
    }

    static constexpr const char* opened = "info get_trailer(): File '/ffs/run/boot/image.bin' opened";
    static constexpr const char* notOpened = "info get_trailer(): Could not open file: /ffs/run/boot/image.bin";
    static constexpr const char* notPositioned = "info get_trailer(): Could not read file: /ffs/run/boot/image.bin";
    static constexpr const char* notRead = "info get_trailer(): Error in reading file: /ffs/run/boot/image.bin";
    static constexpr const char* invalidLength =
        "info get_trailer(): Invalid File length '/ffs/run/boot/image.bin': trailer length does not match";
};

TEST_F(GetTrailerTest, TrailerIsReadWithTheWordBehindIt)
{
    const std::string image = imageOf("payload", "<trailer/>");
    write(image);

    EXPECT_EQ(read(14), (Answer{0, 7, std::string("<trailer/>\7\0\0\0", 14)}));
    EXPECT_THAT(m_syslog.texts(), ElementsAre(opened, "info get_trailer(): FileSize: 21, 0x15",
                                              "info get_trailer(): Trailer begins from offset: 7, 0x7",
                                              "info get_trailer(): Trailer length: 14, 0xe"));
    EXPECT_THAT(m_syslog.texts(), ElementsAreArray(trailerLines(image)));
}

TEST_F(GetTrailerTest, TrailerMayBeTheWordAlone)
{
    write("payload" + wordOf(7));

    EXPECT_EQ(read(4), (Answer{0, 7, wordOf(7)}));
}

TEST_F(GetTrailerTest, OffsetMayLieInTheWord)
{
    write("payload" + wordOf(10));

    EXPECT_EQ(read(1), (Answer{0, 10, std::string(1, '\0')}));
}

TEST_F(GetTrailerTest, FileThatIsMissingIsAFailure)
{
    EXPECT_EQ(read(), (Answer{70406, 0, "none"}));
    EXPECT_THAT(m_syslog.texts(), ElementsAre(notOpened));
}

TEST_F(GetTrailerTest, FileThatIsShorterThanTheWordIsAFailure)
{
    for (std::size_t size = 0; size < 4; ++size) {
        const SyslogCapture* const lines = &m_syslog;
        const std::size_t before = lines->texts().size();
        write(std::string(size, 'x'));

        EXPECT_EQ(read(), (Answer{70406, 0, "none"}));

        const std::string length = std::to_string(size);
        const std::vector<std::string> all = lines->texts();
        EXPECT_THAT(std::vector(all.begin() + static_cast<std::ptrdiff_t>(before), all.end()),
                    ElementsAre(opened, "info get_trailer(): FileSize: " + length + ", 0x" + length, notPositioned));
    }
}

TEST_F(GetTrailerTest, WordThatIsReadInPartIsAFailure)
{
    write(goodImage());
    const FailNth<AaFileRead> shortRead(1, 3);

    EXPECT_EQ(read(), (Answer{70406, 0, "none"}));
    EXPECT_THAT(m_syslog.texts(), ElementsAre(opened, trailerLines(goodImage())[1], notRead));
}

TEST_F(GetTrailerTest, WordThatCannotBeReadIsAFailure)
{
    write(goodImage());
    const FailNth<AaFileRead> failure(1);

    EXPECT_EQ(read(), (Answer{70406, 0, "none"}));
    EXPECT_EQ(m_syslog.texts().back(), notRead);
}

TEST_F(GetTrailerTest, PositionThatCannotBeMovedToTheWordIsAFailure)
{
    write(goodImage());
    const FailNth<AaFileSetPosition> failure(1);

    EXPECT_EQ(read(), (Answer{70406, 0, "none"}));
    EXPECT_EQ(m_syslog.texts().back(), notPositioned);
}

TEST_F(GetTrailerTest, WordGoesThroughThePlatformsByteOrder)
{
    write(goodImage());
    const testkit::CountCalls<AaCpuBitSwapByteOrder32> calls;

    EXPECT_EQ(read(goodImage().size() - 1000).result, 0U);
    EXPECT_EQ(calls.count(), 1U);
}

TEST_F(GetTrailerTest, OffsetZeroIsInvalidAndStored)
{
    write("payload<trailer/>" + wordOf(0));

    EXPECT_EQ(read(), (Answer{70407, 0, "none"}));
    EXPECT_THAT(m_syslog.texts(), ElementsAre(opened, "info get_trailer(): FileSize: 21, 0x15",
                                              "info get_trailer(): Trailer begins from offset: 0, 0x0",
                                              "info get_trailer(): Trailer length: 21, 0x15", invalidLength));
}

TEST_F(GetTrailerTest, OffsetThatIsTheSizeIsInvalidAndStored)
{
    write("payload" + wordOf(11));

    EXPECT_EQ(read(), (Answer{70407, 11, "none"}));
    EXPECT_THAT(m_syslog.texts(), ElementsAre(opened, "info get_trailer(): FileSize: 11, 0xb",
                                              "info get_trailer(): Trailer begins from offset: 11, 0xb",
                                              "info get_trailer(): Trailer length: 0, 0x0", invalidLength));
}

TEST_F(GetTrailerTest, OffsetBehindTheEndIsInvalidAndStored)
{
    write("payload" + wordOf(0xFFFFFFFE));

    EXPECT_EQ(read(), (Answer{70407, 0xFFFFFFFE, "none"}));
    EXPECT_THAT(m_syslog.texts(), ElementsAre(opened, "info get_trailer(): FileSize: 11, 0xb",
                                              "info get_trailer(): Trailer begins from offset: -2, 0xfffffffe",
                                              "info get_trailer(): Trailer length: 13, 0xd", invalidLength));
}

TEST_F(GetTrailerTest, FileWhoseSizeIsNotKnownHasNoValidOffset)
{
    write("payload" + wordOf(7));
    const FailNth<AaFileGetSize> failure(1);

    EXPECT_EQ(read(), (Answer{70407, 7, "none"}));
    EXPECT_THAT(m_syslog.texts(), ElementsAre(opened, "info get_trailer(): FileSize: -1, 0xffffffff",
                                              "info get_trailer(): Trailer begins from offset: 7, 0x7",
                                              "info get_trailer(): Trailer length: -8, 0xfffffff8", invalidLength));
}

TEST_F(GetTrailerTest, FileOfTwoGibibytesHasNoValidOffset)
{
    write("");
    std::filesystem::resize_file(m_node.boardPath(path), std::uintmax_t{1} << 31);

    EXPECT_EQ(read(), (Answer{70407, 0, "none"}));
    EXPECT_EQ(m_syslog.texts()[1], "info get_trailer(): FileSize: -1, 0xffffffff");
}

TEST_F(GetTrailerTest, PositionThatCannotBeMovedToTheTrailerIsAFailure)
{
    write(goodImage());
    const FailNth<AaFileSetPosition> failure(2);

    EXPECT_EQ(read(), (Answer{70406, 1000, "none"}));
    EXPECT_THAT(m_syslog.texts(), ElementsAreArray(joined({trailerLines(goodImage()), {notPositioned}})));
}

TEST_F(GetTrailerTest, NoMemoryForTheTrailerIsNotLogged)
{
    const std::string image = imageOf("payload", std::string(100'000, ' '));
    write(image);
    const LargeAllocationsFail noMemory(100'000);

    EXPECT_EQ(read(), (Answer{70406, 7, "none"}));
    EXPECT_THAT(m_syslog.texts(), ElementsAreArray(trailerLines(image)));
}

TEST_F(GetTrailerTest, TrailerThatIsNotReadWhole)
{
    write(goodImage());
    const FailNth<AaFileRead> shortRead(2, 20);

    EXPECT_EQ(read(), (Answer{70406, 1000, "none"}));
    EXPECT_THAT(m_syslog.texts(), ElementsAreArray(joined({trailerLines(goodImage()), {notRead}})));
}

TEST_F(GetTrailerTest, TrailerThatCannotBeReadIsAFailure)
{
    write(goodImage());
    const FailNth<AaFileRead> failure(2);

    EXPECT_EQ(read(), (Answer{70406, 1000, "none"}));
    EXPECT_EQ(m_syslog.texts().back(), notRead);
}

TEST_F(GetTrailerTest, GreatestTrailerIsRead)
{
    const std::string text(BINARY_TRAILER_LENGTH_MAX - 4, ' ');
    write(imageOf("payload", text));

    EXPECT_EQ(read(BINARY_TRAILER_LENGTH_MAX), (Answer{0, 7, text + wordOf(7)}));
}

TEST_F(GetTrailerTest, TrailerThatADamagedWordMakesTooLongIsNotRead)
{
    const std::string image = imageOf("payload", std::string(BINARY_TRAILER_LENGTH_MAX - 3, ' '));
    write(image);
    const LargeAllocationsFail noMemory(BINARY_TRAILER_LENGTH_MAX);
    const testkit::CountCalls<AaFileRead> reads;

    EXPECT_EQ(read(), (Answer{70406, 7, "none"}));
    EXPECT_EQ(reads.count(), 1U);
    EXPECT_THAT(m_syslog.texts(), ElementsAreArray(trailerLines(image)));
}

TEST_F(GetTrailerTest, DirectoryIsNoImage)
{
    std::filesystem::create_directories(m_node.boardPath(path));

    EXPECT_EQ(read(), (Answer{70406, 0, "none"}));
    EXPECT_EQ(m_syslog.texts().front(), opened);
}

TEST_F(GetTrailerTest, PipeIsNoImageAndHoldsNobodyUp)
{
    std::filesystem::create_directories(std::filesystem::path(m_node.boardPath(path)).parent_path());
    ASSERT_EQ(mkfifo(m_node.boardPath(path).c_str(), 0600), 0);

    EXPECT_EQ(read(), (Answer{70406, 0, "none"}));
    EXPECT_THAT(m_syslog.texts(), ElementsAre(opened, "info get_trailer(): FileSize: -1, 0xffffffff", notPositioned));
}

TEST_F(GetTrailerTest, WorksInC)
{
    const std::string image = goodImage();
    write(image);

    EXPECT_EQ(trailerLengthInC(path, static_cast<std::uint32_t>(image.size())), image.size() - 1000);
    EXPECT_EQ(trailerLengthInC("/missing", 1), 0U);
}

} // namespace
} // namespace dorn::test
