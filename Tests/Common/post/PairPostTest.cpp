// SPDX-License-Identifier: MIT
/// @file PairPostTest.cpp
/// POST files of DSPs, and second POST data, which differ in the beginning of a line.
#include "post/PostTest.hpp"

#include "FailingFilePort.hpp"

#include <gmock/gmock.h>

namespace dorn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::FailNth;
using testkit::FullDisk;

constexpr std::uint32_t none = 0xFFFFFFFF;
constexpr std::size_t recordWords = 4 + 2 * POST_FILE_PAIRS_MAX;

/// Header words and pairs, and all ones behind them up to the end of a record.
std::vector<std::uint32_t> record(std::vector<std::uint32_t> words)
{
    words.resize(recordWords, none);
    return words;
}

/// "1 2 3 ..." : pairs that count up.
std::string pairText(unsigned count, unsigned first = 1)
{
    std::array<char, 20> number{};
    std::string text;
    for (unsigned value = first; value < first + 2 * count; ++value) {
        std::snprintf(number.data(), number.size(), "%x ", value);
        text += number.data();
    }
    return text;
}

void addPairs(std::vector<std::uint32_t>& words, unsigned count)
{
    for (unsigned value = 1; value <= 2 * count; ++value) {
        words.push_back(value);
    }
}

struct Dsp {
    using Record = DspReadyInd;
    static constexpr auto update = UpdateDspPost;
    static constexpr auto query = QueryDspPost;
    /// What a line begins with.
    static std::string header(const std::string& count) { return "a b c " + count + " : "; }
    /// The header words that are read from it.
    static std::vector<std::uint32_t> words(std::uint32_t count) { return {10, 11, 12, count}; }
};

struct Data2 {
    using Record = SApi2PostDataResp;
    static constexpr auto update = UpdatePostData2;
    static constexpr auto query = QueryPostData2;
    static std::string header(const std::string& count) { return count + " : "; }
    static std::vector<std::uint32_t> words(std::uint32_t count) { return {none, none, none, count}; }
};

template <class Kind>
class PairPostTest : public PostTest {
protected:
    using Record = typename Kind::Record;

    /// Records a result with @p count tests that are announced and there.
    static EStatus update(std::uint32_t count)
    {
        RecordBuffer<Record> buffer{10, 11, 12, count};
        for (std::uint32_t pair = 0; pair < count; ++pair) {
            buffer.addPair(2 * pair + 1, 2 * pair + 2);
        }
        return Kind::update(path, buffer.get());
    }
    static void query(Queried<Record>& answer)
    {
        answer.results = reinterpret_cast<Record**>(&answer);
        answer.count = 99;
        answer.status = Kind::query(path, &answer.results, &answer.count);
    }
    /// What is read of a line.
    std::vector<std::uint32_t> readLine(const std::string& line) const
    {
        write(line);
        Queried<Record> answer;
        query(answer);
        EXPECT_EQ(answer.status, EStatus_NoError);
        EXPECT_EQ(answer.count, 1U);
        return answer.count == 1 ? wordsOf(answer.results[0], recordWords) : std::vector<std::uint32_t>();
    }
};
using Kinds = testing::Types<Dsp, Data2>;
TYPED_TEST_SUITE(PairPostTest, Kinds);

TYPED_TEST(PairPostTest, FirstResultIsOneLine)
{
    EXPECT_EQ(this->update(2), EStatus_NoError);

    EXPECT_EQ(this->content(), TypeParam::header("2") + "1 2 3 4 \n");
}

TYPED_TEST(PairPostTest, GreatestNumbersAreWrittenWhole)
{
    RecordBuffer<typename TypeParam::Record> buffer{10, 11, 12, 1};
    buffer.addPair(0xFFFFFFFF, 0xFEDCBA98);

    EXPECT_EQ(TypeParam::update(this->path, buffer.get()), EStatus_NoError);

    EXPECT_EQ(this->content(), TypeParam::header("1") + "ffffffff fedcba98 \n");
}

TYPED_TEST(PairPostTest, ThirdResultHasTheSecondBehindItAndNotTheFirst)
{
    EXPECT_EQ(this->update(1), EStatus_NoError);
    EXPECT_EQ(this->update(2), EStatus_NoError);
    EXPECT_EQ(this->content(), TypeParam::header("2") + "1 2 3 4 \n" + TypeParam::header("1") + "1 2 \n");

    EXPECT_EQ(this->update(3), EStatus_NoError);

    EXPECT_EQ(this->content(), TypeParam::header("3") + "1 2 3 4 5 6 \n" + TypeParam::header("2") + "1 2 3 4 \n");
}

TYPED_TEST(PairPostTest, ResultWithoutTestsLeavesTheFileAsItIs)
{
    EXPECT_EQ(this->update(0), EStatus_NoError);
    EXPECT_FALSE(this->isThere());

    this->update(1);
    EXPECT_EQ(this->update(0), EStatus_NoError);
    EXPECT_EQ(TypeParam::update(this->path, nullptr), EStatus_NoError);

    EXPECT_EQ(this->content(), TypeParam::header("1") + "1 2 \n");
}

TYPED_TEST(PairPostTest, ResultsAreReadBack)
{
    this->update(16);
    this->update(2);

    Queried<typename TypeParam::Record> answer;
    this->query(answer);

    EXPECT_EQ(answer.status, EStatus_NoError);
    ASSERT_EQ(answer.count, 2U);
    auto newest = TypeParam::words(2);
    addPairs(newest, 2);
    EXPECT_EQ(wordsOf(answer.results[0], recordWords), record(newest));
    auto older = TypeParam::words(16);
    addPairs(older, 16);
    EXPECT_EQ(wordsOf(answer.results[1], recordWords), record(older));
}

TYPED_TEST(PairPostTest, NoMoreThanTwoLinesAreRead)
{
    const std::string line = TypeParam::header("1") + "7 8 \n";
    this->write(line + line + line);

    Queried<typename TypeParam::Record> answer;
    this->query(answer);

    EXPECT_EQ(answer.status, EStatus_NoError);
    EXPECT_EQ(answer.count, 2U);
}

TYPED_TEST(PairPostTest, LineOf20TestsYieldsNoMoreThan16)
{
    auto words = TypeParam::words(20);
    addPairs(words, 16);

    EXPECT_EQ(this->readLine(TypeParam::header("14") + pairText(20) + "\n"), record(words));
}

TYPED_TEST(PairPostTest, ResultOf20TestsIsWrittenWholeAndWith17OnceItIsTheOlder)
{
    EXPECT_EQ(this->update(20), EStatus_NoError);
    EXPECT_EQ(this->content(), TypeParam::header("14") + pairText(20) + "\n");

    EXPECT_EQ(this->update(1), EStatus_NoError);

    EXPECT_EQ(this->content(),
              TypeParam::header("1") + "1 2 \n" + TypeParam::header("14") + pairText(16) + "ffffffff ffffffff \n");
}

TYPED_TEST(PairPostTest, ResultOf17TestsIsWrittenAgainWithAllOnesInTheLast)
{
    this->update(17);
    this->update(1);

    EXPECT_EQ(this->content(),
              TypeParam::header("1") + "1 2 \n" + TypeParam::header("11") + pairText(16) + "ffffffff ffffffff \n");
}

TYPED_TEST(PairPostTest, LineOfManyTestsIsReadInPiecesOf1023)
{
    EXPECT_EQ(this->update(300), EStatus_NoError);
    const std::string line = this->content();
    ASSERT_EQ(line, TypeParam::header("12c") + pairText(300) + "\n");

    Queried<typename TypeParam::Record> answer;
    this->query(answer);

    EXPECT_EQ(answer.status, EStatus_NoError);
    EXPECT_EQ(answer.count, 2U); // the first two pieces
    EXPECT_EQ(wordsOf(answer.results[0], 4), TypeParam::words(300));
}

TYPED_TEST(PairPostTest, NoMorePairsAreReadThanAreAnnouncedOrThere)
{
    auto words = TypeParam::words(1);
    addPairs(words, 1);
    EXPECT_EQ(this->readLine(TypeParam::header("1") + "1 2 3 4 \n"), record(words));

    words = TypeParam::words(3);
    addPairs(words, 2);
    EXPECT_EQ(this->readLine(TypeParam::header("3") + "1 2 3 4 \n"), record(words));

    EXPECT_EQ(this->readLine(TypeParam::header("0") + "1 2 \n"), record(TypeParam::words(0)));
}

TYPED_TEST(PairPostTest, HalfAPairIsRead)
{
    auto words = TypeParam::words(2);
    words.insert(words.end(), {1, 2, 3});

    EXPECT_EQ(this->readLine(TypeParam::header("2") + "1 2 3 x\n"), record(words));
}

TYPED_TEST(PairPostTest, PrefixAloneIsZero)
{
    auto words = TypeParam::words(2);
    words.insert(words.end(), {0, 5, 0});

    EXPECT_EQ(this->readLine(TypeParam::header("2") + "0x 5 0xg 6 \n"), record(words));
}

TYPED_TEST(PairPostTest, GreatestCountYieldsNoMoreThan16)
{
    auto words = TypeParam::words(none);
    addPairs(words, 16);

    EXPECT_EQ(this->readLine(TypeParam::header("ffffffff") + pairText(30) + "\n"), record(words));
}

TYPED_TEST(PairPostTest, BlanksAreAsScanfTakesThem)
{
    auto words = TypeParam::words(1);
    addPairs(words, 1);
    std::string header = TypeParam::header("1");

    EXPECT_EQ(this->readLine(header.substr(0, header.size() - 3) + ":1 2\n"), record(words));
    EXPECT_EQ(this->readLine("\t " + header + "\t 0x1  2\n"), record(words));
    EXPECT_EQ(this->readLine(header + "1 2"), record(words)); // and no line feed
}

TYPED_TEST(PairPostTest, LineWithoutColonHasNoPairs)
{
    const std::string header = TypeParam::header("2");

    EXPECT_EQ(this->readLine(header.substr(0, header.size() - 2) + "1 2 3 4 \n"), record(TypeParam::words(2)));
    EXPECT_EQ(this->readLine(header.substr(0, header.size() - 2) + ";1 2 3 4 \n"), record(TypeParam::words(2)));
}

TYPED_TEST(PairPostTest, MalformedLineCountsWithAllOnes)
{
    EXPECT_EQ(this->readLine("\n"), record({}));
    EXPECT_EQ(this->readLine("x\n"), record({}));
    EXPECT_EQ(this->readLine(" : 1 2 \n"), record({}));
    EXPECT_EQ(this->readLine("\xE4\xF6\xFC\n"), record({}));
    EXPECT_EQ(this->readLine(std::string("\0 1 2\n", 6)), record({}));
    EXPECT_EQ(this->readLine(std::string(1000, ':') + "\n"), record({}));
}

TYPED_TEST(PairPostTest, MalformedLineIsWrittenAgainAsTheRecordItIs)
{
    this->write("x\n");

    EXPECT_EQ(this->update(1), EStatus_NoError);

    std::string ones;
    for (unsigned number = 0; number < 34; ++number) {
        ones += "ffffffff ";
    }
    const auto words = TypeParam::words(0);
    const std::string header = words[0] == none ? "ffffffff : " : "ffffffff ffffffff ffffffff ffffffff : ";
    EXPECT_EQ(this->content(), TypeParam::header("1") + "1 2 \n" + header + ones + "\n");
}

TYPED_TEST(PairPostTest, LinesOfAnyLengthAreRead)
{
    this->write(std::string(1022, ' ') + "\n");
    Queried<typename TypeParam::Record> fitting;
    this->query(fitting);
    EXPECT_EQ(fitting.count, 1U);

    this->write(std::string(1023, ' ') + "\n");
    Queried<typename TypeParam::Record> longer;
    this->query(longer);
    EXPECT_EQ(longer.count, 2U);

    this->write(std::string(99'999, '1') + "\n");
    Queried<typename TypeParam::Record> longest;
    this->query(longest);
    EXPECT_EQ(longest.status, EStatus_NoError);
    EXPECT_EQ(longest.count, 2U);
}

TYPED_TEST(PairPostTest, MissingAndEmptyFilesHaveNoResults)
{
    Queried<typename TypeParam::Record> missing;
    this->query(missing);
    EXPECT_EQ(missing.status, EStatus_UndefinedError);
    EXPECT_EQ(missing.count, 0U);
    EXPECT_EQ(missing.results, nullptr);

    this->write("");
    Queried<typename TypeParam::Record> empty;
    this->query(empty);
    EXPECT_EQ(empty.status, EStatus_NoError);
    EXPECT_EQ(empty.count, 0U);
    EXPECT_EQ(empty.results, nullptr);
}

TYPED_TEST(PairPostTest, FailingCloseOfAQueryIsAnErrorWithResults)
{
    this->update(1);

    Queried<typename TypeParam::Record> answer;
    {
        const FailNth<AaFileClose> close(1);
        this->query(answer);
    }

    EXPECT_EQ(answer.status, EStatus_UndefinedError);
    EXPECT_EQ(answer.count, 1U);
}

TYPED_TEST(PairPostTest, FailingReadEndsTheResults)
{
    this->update(1);
    this->update(1);

    Queried<typename TypeParam::Record> answer;
    {
        const FailNth<AaFileReadLine> read(2);
        this->query(answer);
    }

    EXPECT_EQ(answer.status, EStatus_NoError);
    EXPECT_EQ(answer.count, 1U);
}

TYPED_TEST(PairPostTest, QueryWithoutMemoryGivesNoResults)
{
    this->update(1);
    this->update(2);

    for (unsigned nth = 1; nth <= 4; ++nth) { // array and record, twice
        Queried<typename TypeParam::Record> answer;
        const FailNth<AaMemMallocDbg> memory(nth);
        this->query(answer);
        EXPECT_TRUE(memory.hasFailed());
        EXPECT_EQ(answer.status, EStatus_UndefinedError);
        EXPECT_EQ(answer.count, 0U);
        EXPECT_EQ(answer.results, nullptr);
    }
}

TYPED_TEST(PairPostTest, QueryWithoutPlaceForResultsIsAnError)
{
    this->update(1);
    typename TypeParam::Record** results = nullptr;
    std::uint32_t count = 0;

    EXPECT_EQ(TypeParam::query(this->path, nullptr, &count), EStatus_UndefinedError);
    EXPECT_EQ(TypeParam::query(this->path, &results, nullptr), EStatus_UndefinedError);
    EXPECT_EQ(TypeParam::query(nullptr, &results, &count), EStatus_UndefinedError);
}

TYPED_TEST(PairPostTest, UpdateWithoutNameIsAnError)
{
    RecordBuffer<typename TypeParam::Record> buffer{10, 11, 12, 1};
    buffer.addPair(1, 2);

    EXPECT_EQ(TypeParam::update(nullptr, buffer.get()), EStatus_UndefinedError);
}

TYPED_TEST(PairPostTest, UpdateOfAFileWhoseReadingFailsPartWayKeepsWhatWasRead)
{
    const std::string newLine = TypeParam::header("3") + "1 2 3 4 5 6 \n";
    const std::string oldLine = TypeParam::header("1") + "1 2 \n";
    const std::vector<std::string> kept{newLine, newLine + oldLine};
    for (unsigned failingRead = 1; failingRead <= kept.size(); ++failingRead) {
        this->write(oldLine + oldLine);
        const FailNth<AaFileReadLine> read(failingRead);

        EXPECT_EQ(this->update(3), EStatus_NoError);

        EXPECT_TRUE(read.hasFailed());
        EXPECT_EQ(this->content(), kept[failingRead - 1]);
    }
}

TYPED_TEST(PairPostTest, UpdateOfAFileWhoseReadingEndsBadlyKeepsWhatWasRead)
{
    this->update(1);

    {
        const FailNth<AaFileClose> close(1);
        EXPECT_EQ(this->update(2), EStatus_NoError);
        EXPECT_TRUE(close.hasFailed());
    }

    EXPECT_EQ(this->content(), TypeParam::header("2") + "1 2 3 4 \n" + TypeParam::header("1") + "1 2 \n");
}

TYPED_TEST(PairPostTest, FileThatCannotBeReadIsWrittenAnew)
{
    this->update(1);

    {
        const FailNth<AaFileOpen> open(1);
        EXPECT_EQ(this->update(2), EStatus_NoError);
    }

    EXPECT_EQ(this->content(), TypeParam::header("2") + "1 2 3 4 \n");
}

TYPED_TEST(PairPostTest, FileThatCannotBeOpenedForWritingStaysAsItWas)
{
    this->update(1);

    {
        const FailNth<AaFileOpen> open(2); // the first one reads
        EXPECT_EQ(this->update(2), EStatus_UndefinedError);
        EXPECT_TRUE(open.hasFailed());
    }

    EXPECT_EQ(this->content(), TypeParam::header("1") + "1 2 \n");
}

TYPED_TEST(PairPostTest, UpdateWithoutMemoryLeavesTheFileAsItWas)
{
    this->update(1);

    for (unsigned nth = 1; nth <= 4; ++nth) { // array and record, and two lines
        const FailNth<AaMemMallocDbg> memory(nth);
        EXPECT_EQ(this->update(2), EStatus_UndefinedError);
        EXPECT_TRUE(memory.hasFailed());
        EXPECT_EQ(this->content(), TypeParam::header("1") + "1 2 \n");
    }
}

TYPED_TEST(PairPostTest, ShortWriteStopsWritingAtOnce)
{
    this->update(1);

    {
        const FailNth<AaFileWrite> write(1, 3);
        EXPECT_EQ(this->update(2), EStatus_UndefinedError);
        EXPECT_EQ(write.count(), 1U);
    }

    EXPECT_EQ(this->content(), "");
}

TYPED_TEST(PairPostTest, FailingSecondWriteLeavesTheFirstLine)
{
    this->update(1);

    {
        const FailNth<AaFileWrite> write(2);
        EXPECT_EQ(this->update(2), EStatus_UndefinedError);
        EXPECT_EQ(write.count(), 2U);
    }

    EXPECT_EQ(this->content(), TypeParam::header("2") + "1 2 3 4 \n");
}

TYPED_TEST(PairPostTest, FullDiskLeavesWhatFits)
{
    this->update(1);
    const std::string line = TypeParam::header("2") + "1 2 3 4 \n";

    {
        const FullDisk disk(line.size() + 2);
        EXPECT_EQ(this->update(2), EStatus_UndefinedError);
    }

    EXPECT_EQ(this->content(), line + TypeParam::header("1").substr(0, 2));
}

TYPED_TEST(PairPostTest, FailingCloseOfAnUpdateIsAnError)
{
    const FailNth<AaFileClose> close(1); // there is no file to be read

    EXPECT_EQ(this->update(1), EStatus_UndefinedError);

    EXPECT_EQ(this->content(), TypeParam::header("1") + "1 2 \n");
}

TYPED_TEST(PairPostTest, NothingIsLogged)
{
    const testkit::FailEvery<AaFileOpen> open;

    this->update(1);
    Queried<typename TypeParam::Record> answer;
    this->query(answer);

    EXPECT_THAT(this->m_log.texts(), IsEmpty());
}

} // namespace
} // namespace dorn::test
