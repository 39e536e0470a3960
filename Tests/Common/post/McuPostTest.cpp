// SPDX-License-Identifier: MIT
#include "post/PostTest.hpp"

#include "FailingFilePort.hpp"

#include <gmock/gmock.h>

namespace dorn::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testkit::FailEvery;
using testkit::FailNth;
using testkit::FullDisk;

constexpr std::string_view markerLine = "f1baca5e f1baca5e f1baca5e f1baca5e f1baca5e f1baca5e f1baca5e "
                                        "f1baca5e f1baca5e f1baca5e f1baca5e f1baca5e f1baca5e f1baca5e\n";

/// A result whose fields count up from @p first.
SMcuPostResult resultFrom(EPostState first)
{
    return {first,     first + 1, first + 2, first + 3,  first + 4,  first + 5,  first + 6,
            first + 7, first + 8, first + 9, first + 10, first + 11, first + 12, first + 13};
}

constexpr std::string_view onesLine = "ffffffff ffffffff ffffffff ffffffff ffffffff ffffffff ffffffff "
                                      "ffffffff ffffffff ffffffff ffffffff ffffffff ffffffff ffffffff\n";
constexpr std::string_view lineFrom1 = "1 2 3 4 5 6 7 8 9 a b c d e\n";
constexpr std::string_view lineFrom16 = "10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d\n";

std::string operator+(std::string_view left, std::string_view right)
{
    return std::string(left).append(right);
}

class McuPostTest : public PostTest {
protected:
    ~McuPostTest() override { AaMemUnRefDbg(m_results, __FILE__, __LINE__); }

    EStatus update(EPostState first) const
    {
        const SMcuPostResult result = resultFrom(first);
        return UpdateMcuPost(path, &result);
    }
    EStatus query()
    {
        AaMemUnRefDbg(m_results, __FILE__, __LINE__);
        m_results = reinterpret_cast<SMcuPostResult*>(this);
        m_count = 99;
        return QueryMcuPost(path, &m_results, &m_count);
    }
    std::vector<std::uint32_t> words(std::size_t index) const { return wordsOf(m_results + index, 14); }

    SMcuPostResult* m_results = nullptr;
    std::uint32_t m_count = 0;
};

TEST_F(McuPostTest, FirstResultStandsBeforeALineOfMarkers)
{
    EXPECT_EQ(update(1), EStatus_NoError);

    EXPECT_EQ(content(), lineFrom1 + markerLine);
}

TEST_F(McuPostTest, FieldsAreWrittenInTheirOrder)
{
    SMcuPostResult result{};
    result.PostRam = 0x1;
    result.PostBootImage = 0x2;
    result.PostRuntimeSW = 0x3;
    result.PostFpgaImage = 0x4;
    result.PostCrtmFlash = 0x5;
    result.PostBootFlash = 0x6;
    result.PostMount3gFm = 0x7;
    result.PostMountLtFm = 0x8;
    result.PostMountVendorFm = 0x9;
    result.PostMountDb = 0xA;
    result.PostMount3gSdmN = 0xB;
    result.PostMount3gSdmE = 0xC;
    result.PostMountLtSdmA = 0xD;
    result.PostMountLtSdmB = 0xE;

    EXPECT_EQ(UpdateMcuPost(path, &result), EStatus_NoError);

    EXPECT_EQ(content(), lineFrom1 + markerLine);
}

TEST_F(McuPostTest, GreatestNumbersAreWrittenWhole)
{
    EXPECT_EQ(update(0xFFFFFFF2), EStatus_NoError);

    EXPECT_EQ(content(), "fffffff2 fffffff3 fffffff4 fffffff5 fffffff6 fffffff7 fffffff8 fffffff9 fffffffa fffffffb "
                         "fffffffc fffffffd fffffffe ffffffff\n" +
                             markerLine);
}

TEST_F(McuPostTest, ThirdResultHasTheSecondBehindItAndNotTheFirst)
{
    EXPECT_EQ(update(0x100), EStatus_NoError);
    EXPECT_EQ(update(0x10), EStatus_NoError);
    EXPECT_EQ(update(0x1), EStatus_NoError);

    EXPECT_EQ(content(), lineFrom1 + lineFrom16);
}

TEST_F(McuPostTest, UpdateOfALongerFileLeavesTwoLines)
{
    write(lineFrom16 + lineFrom1 + std::string(lineFrom1));

    EXPECT_EQ(update(1), EStatus_NoError);

    EXPECT_EQ(content(), lineFrom1 + lineFrom16);
}

TEST_F(McuPostTest, EmptyFileIsOneWithoutPreviousResult)
{
    write("");

    EXPECT_EQ(update(1), EStatus_NoError);

    EXPECT_EQ(content(), lineFrom1 + markerLine);
}

TEST_F(McuPostTest, MalformedFirstLineIsThePreviousResultWithAllOnes)
{
    write("1 2 3\n" + std::string(lineFrom16));

    EXPECT_EQ(update(1), EStatus_NoError);

    EXPECT_EQ(content(), lineFrom1 + onesLine);
}

TEST_F(McuPostTest, ResultsAreReadBack)
{
    update(0xF1000000);
    update(0x20);

    ASSERT_EQ(query(), EStatus_NoError);

    ASSERT_EQ(m_count, 2U);
    const SMcuPostResult newest = resultFrom(0x20);
    const SMcuPostResult older = resultFrom(0xF1000000);
    EXPECT_EQ(words(0), wordsOf(&newest, 14));
    EXPECT_EQ(words(1), wordsOf(&older, 14));
}

TEST_F(McuPostTest, EveryLineOfAFileIsRead)
{
    std::string lines;
    for (int line = 0; line < 100; ++line) {
        lines += line % 2 == 0 ? lineFrom1 : lineFrom16;
    }
    write(lines);

    ASSERT_EQ(query(), EStatus_NoError);

    ASSERT_EQ(m_count, 100U);
    for (std::size_t index = 0; index < m_count; ++index) {
        EXPECT_EQ(m_results[index].PostRam, index % 2 == 0 ? 1U : 0x10U);
        EXPECT_EQ(m_results[index].PostMountLtSdmB, index % 2 == 0 ? 0xEU : 0x1DU);
    }
}

TEST_F(McuPostTest, EmptyFileHasNoResults)
{
    write("");

    EXPECT_EQ(query(), EStatus_NoError);

    EXPECT_EQ(m_count, 0U);
    EXPECT_EQ(m_results, nullptr);
}

TEST_F(McuPostTest, LineWithoutFourteenNumbersCountsWithAllOnes)
{
    write("1 2 3 4 5 6 7 8 9 a b c d\n\n: 1 2\n" + std::string(lineFrom1) + "1 2 3 4 5 6 7 g 9 a b c d e\n");

    ASSERT_EQ(query(), EStatus_NoError);

    ASSERT_EQ(m_count, 5U);
    EXPECT_THAT(words(0), Each(0xFFFFFFFFU));
    EXPECT_THAT(words(1), Each(0xFFFFFFFFU));
    EXPECT_THAT(words(2), Each(0xFFFFFFFFU));
    EXPECT_THAT(words(3), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14));
    EXPECT_THAT(words(4), Each(0xFFFFFFFFU));
}

TEST_F(McuPostTest, NumbersBeyondTheFourteenthAreNotLookedAt)
{
    write("1 2 3 4 5 6 7 8 9 a b c d e f rest\n1 2 3 4 5 6 7 8 9 a b c d e, then");

    ASSERT_EQ(query(), EStatus_NoError);

    ASSERT_EQ(m_count, 2U);
    EXPECT_EQ(m_results[0].PostMountLtSdmB, 14U);
    EXPECT_EQ(m_results[1].PostMountLtSdmB, 14U);
}

TEST_F(McuPostTest, NumbersAreReadAsScanfDoesWith32Bits)
{
    write(" \t0x1F 0XaB +7 -1 -0x10 ffffffff 100000000 -100000000 00000000000000001 123456789abcdef01 A\v\fB\r C 0\n");

    ASSERT_EQ(query(), EStatus_NoError);

    ASSERT_EQ(m_count, 1U);
    EXPECT_THAT(words(0), ElementsAre(0x1F, 0xAB, 7, 0xFFFFFFFF, 0xFFFFFFF0, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 1,
                                      0xFFFFFFFF, 0xA, 0xB, 0xC, 0));
}

TEST_F(McuPostTest, PrefixAloneIsZero)
{
    write("0x 1 0X 2 -0x 3 +0x 4 5 6 7 8 9 0x\n"
          "0xg 2 3 4 5 6 7 8 9 a b c d e\n"
          "00x 2 3 4 5 6 7 8 9 a b c d e\n"
          "x 2 3 4 5 6 7 8 9 a b c d e f\n");

    ASSERT_EQ(query(), EStatus_NoError);

    ASSERT_EQ(m_count, 4U);
    EXPECT_THAT(words(0), ElementsAre(0, 1, 0, 2, 0, 3, 0, 4, 5, 6, 7, 8, 9, 0));
    EXPECT_THAT(words(1), Each(0xFFFFFFFFU)); // no number behind the prefix
    EXPECT_THAT(words(2), Each(0xFFFFFFFFU)); // "00x" begins with none
    EXPECT_THAT(words(3), Each(0xFFFFFFFFU));
}

TEST_F(McuPostTest, LastLineNeedsNoLineFeed)
{
    write("1 2 3 4 5 6 7 8 9 a b c d e");

    ASSERT_EQ(query(), EStatus_NoError);

    ASSERT_EQ(m_count, 1U);
    EXPECT_THAT(words(0), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14));
}

TEST_F(McuPostTest, LineOf1023BytesIsOneResultAndOneOf1024IsTwo)
{
    const std::string numbers = "1 2 3 4 5 6 7 8 9 a b c d e";
    write(numbers + std::string(1022 - numbers.size(), ' ') + "\n");
    ASSERT_EQ(query(), EStatus_NoError);
    EXPECT_EQ(m_count, 1U);

    write(numbers + std::string(1023 - numbers.size(), ' ') + "\n");
    ASSERT_EQ(query(), EStatus_NoError);
    ASSERT_EQ(m_count, 2U);
    EXPECT_EQ(m_results[0].PostRam, 1U);
    EXPECT_THAT(words(1), Each(0xFFFFFFFFU));
}

TEST_F(McuPostTest, LineOf100000BytesIsReadInPiecesOf1023)
{
    write(std::string(99'999, '7') + "\n");

    ASSERT_EQ(query(), EStatus_NoError);

    EXPECT_EQ(m_count, 98U);
    EXPECT_THAT(words(97), Each(0xFFFFFFFFU));
}

TEST_F(McuPostTest, TextThatIsNoneIsRead)
{
    write(std::string("1 2 3\0 4 5 6 7 8 9 a b c d e\n\xE4\xF6: 1\n\xFF\xFE", 38));

    ASSERT_EQ(query(), EStatus_NoError);

    ASSERT_EQ(m_count, 3U);
    EXPECT_THAT(words(0), Each(0xFFFFFFFFU));
    EXPECT_THAT(words(2), Each(0xFFFFFFFFU));
}

TEST_F(McuPostTest, MissingFileIsAnErrorOfTheQueryWithoutResults)
{
    EXPECT_EQ(query(), EStatus_UndefinedError);

    EXPECT_EQ(m_count, 0U);
    EXPECT_EQ(m_results, nullptr);
}

TEST_F(McuPostTest, FailingCloseOfAQueryIsAnErrorWithResults)
{
    update(1);

    {
        const FailNth<AaFileClose> close(1);
        EXPECT_EQ(query(), EStatus_UndefinedError);
    }

    EXPECT_EQ(m_count, 2U);
    EXPECT_EQ(m_results[0].PostRam, 1U);
}

TEST_F(McuPostTest, FailingReadEndsTheResults)
{
    update(1);

    {
        const FailNth<AaFileReadLine> read(2);
        EXPECT_EQ(query(), EStatus_NoError);
    }

    EXPECT_EQ(m_count, 1U);
}

TEST_F(McuPostTest, QueryWithoutMemoryGivesNoResults)
{
    write(lineFrom1 + lineFrom16 + std::string(lineFrom1));

    for (const unsigned nth : {1U, 2U}) {
        const FailNth<AaMemMallocDbg> memory(nth);
        EXPECT_EQ(query(), EStatus_UndefinedError);
        EXPECT_TRUE(memory.hasFailed());
        EXPECT_EQ(m_count, 0U);
        EXPECT_EQ(m_results, nullptr);
    }
}

TEST_F(McuPostTest, QueryWithoutPlaceForResultsIsAnError)
{
    update(1);

    EXPECT_EQ(QueryMcuPost(path, nullptr, &m_count), EStatus_UndefinedError);
    EXPECT_EQ(QueryMcuPost(path, &m_results, nullptr), EStatus_UndefinedError);
    EXPECT_EQ(QueryMcuPost(nullptr, &m_results, &m_count), EStatus_UndefinedError);
}

TEST_F(McuPostTest, UpdateWithoutResultOrNameIsAnError)
{
    update(1);

    EXPECT_EQ(UpdateMcuPost(path, nullptr), EStatus_UndefinedError);
    const SMcuPostResult result = resultFrom(2);
    EXPECT_EQ(UpdateMcuPost(nullptr, &result), EStatus_UndefinedError);
    EXPECT_EQ(content(), lineFrom1 + markerLine);
}

TEST_F(McuPostTest, FileThatCannotBeOpenedForWritingStaysAsItWas)
{
    update(0x10);

    {
        const FailNth<AaFileOpen> open(2); // the first one reads
        EXPECT_EQ(update(1), EStatus_UndefinedError);
        EXPECT_TRUE(open.hasFailed());
    }

    EXPECT_EQ(content(), lineFrom16 + markerLine);
}

TEST_F(McuPostTest, FileThatCannotBeReadIsWrittenAnew)
{
    update(0x10);

    {
        const FailNth<AaFileOpen> open(1);
        EXPECT_EQ(update(1), EStatus_NoError);
    }

    EXPECT_EQ(content(), lineFrom1 + markerLine);
}

TEST_F(McuPostTest, UpdateOfAFileWhoseReadingEndsBadlyKeepsWhatWasRead)
{
    update(0x10);

    {
        const FailNth<AaFileClose> close(1);
        EXPECT_EQ(update(1), EStatus_NoError);
    }

    EXPECT_EQ(content(), lineFrom1 + lineFrom16);
}

TEST_F(McuPostTest, UpdateOfAFileWhoseReadingFailsPartWayKeepsWhatWasRead)
{
    struct Row {
        unsigned failingRead;
        std::string_view secondLine;
    };
    for (const Row& row : {Row{1, markerLine}, Row{2, lineFrom16}}) {
        write(lineFrom16 + lineFrom16);
        const FailNth<AaFileReadLine> read(row.failingRead);

        EXPECT_EQ(update(1), EStatus_NoError);

        EXPECT_TRUE(read.hasFailed());
        EXPECT_EQ(content(), lineFrom1 + row.secondLine);
    }
}

TEST_F(McuPostTest, ShortWriteStopsWritingAtOnce)
{
    const FailNth<AaFileWrite> write(1, static_cast<std::int32_t>(lineFrom1.size()) - 1);

    EXPECT_EQ(update(1), EStatus_UndefinedError);

    EXPECT_EQ(write.count(), 1U);
    EXPECT_EQ(content(), "");
}

TEST_F(McuPostTest, FailingSecondWriteLeavesTheFirstLine)
{
    update(0x10);

    {
        const FailNth<AaFileWrite> write(2);
        EXPECT_EQ(update(1), EStatus_UndefinedError);
        EXPECT_EQ(write.count(), 2U);
    }

    EXPECT_EQ(content(), lineFrom1);
}

TEST_F(McuPostTest, FullDiskLeavesWhatFits)
{
    update(0x10);

    {
        const FullDisk disk(lineFrom1.size() + 5);
        EXPECT_EQ(update(1), EStatus_UndefinedError);
    }

    EXPECT_EQ(content(), lineFrom1 + "10 11");
}

TEST_F(McuPostTest, FailingCloseOfAnUpdateIsAnError)
{
    const FailNth<AaFileClose> close(1); // there is no file to be read

    EXPECT_EQ(update(1), EStatus_UndefinedError);

    EXPECT_EQ(content(), lineFrom1 + markerLine);
}

TEST_F(McuPostTest, UpdateWithoutMemoryLeavesTheFileAsItWas)
{
    update(0x10);

    for (unsigned nth = 1; nth <= 3; ++nth) {
        const FailNth<AaMemMallocDbg> memory(nth);
        EXPECT_EQ(update(1), EStatus_UndefinedError);
        EXPECT_TRUE(memory.hasFailed());
        EXPECT_EQ(content(), lineFrom16 + markerLine);
    }
}

TEST_F(McuPostTest, NothingIsLogged)
{
    const FailEvery<AaFileOpen> open;

    update(1);
    query();

    EXPECT_THAT(m_log.texts(), testing::IsEmpty());
}

} // namespace
} // namespace dorn::test
