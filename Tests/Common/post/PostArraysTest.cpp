// SPDX-License-Identifier: MIT
#include "post/PostArrays.hpp"

#include "post/PostTest.hpp"

#include <gmock/gmock.h>

extern "C" {
EStatus recordPostInC(const char* filename);
std::uint32_t postRecordSizeInC(void);
}

namespace dorn::test {
namespace {

using testing::Each;
using testkit::CountCalls;
using testkit::FailNth;

void release(void* block)
{
    AaMemUnRefDbg(block, __FILE__, __LINE__);
}

class PostArraysTest : public PostTest {};

TEST_F(PostArraysTest, McuArrayKeepsItsFirstResultsAndFillsTheOthers)
{
    SMcuPostResult* results = increaseMcuPostResultArray(nullptr, 0, 2);
    results[0].PostRam = 1;
    results[1].PostMountLtSdmB = 2;

    {
        const CountCalls<AaMemUnRefDbg> released;
        results = increaseMcuPostResultArray(results, 2, 3);
        EXPECT_EQ(released.count(), 1U);
    }

    EXPECT_EQ(results[0].PostRam, 1U);
    EXPECT_EQ(results[1].PostMountLtSdmB, 2U);
    for (std::size_t index = 2; index < 5; ++index) {
        EXPECT_THAT(wordsOf(results + index, 14), Each(0xFFFFFFFFU));
    }
    release(results);
}

TEST_F(PostArraysTest, McuArrayForWhichThereIsNoMemoryStays)
{
    SMcuPostResult* const results = increaseMcuPostResultArray(nullptr, 0, 1);
    results[0].PostRam = 1;

    {
        const FailNth<AaMemMallocDbg> memory(1);
        EXPECT_EQ(increaseMcuPostResultArray(results, 1, 1), nullptr);
    }
    EXPECT_EQ(increaseMcuPostResultArray(results, 1, 0xFFFFFFFF), nullptr); // more than 32 bits can say

    EXPECT_EQ(results[0].PostRam, 1U);
    release(results);
}

template <class Record, auto Increase>
void expectRecordsAreKeptAndMade()
{
    Record** results = Increase(nullptr, 0, 1);
    Record* const first = results[0];
    EXPECT_THAT(wordsOf(first, 38), Each(0xFFFFFFFFU));

    {
        const CountCalls<AaMemUnRefDbg> released;
        results = Increase(results, 1, 2);
        EXPECT_EQ(released.count(), 1U);
    }

    EXPECT_EQ(results[0], first);
    EXPECT_THAT(wordsOf(results[1], 38), Each(0xFFFFFFFFU));
    EXPECT_THAT(wordsOf(results[2], 38), Each(0xFFFFFFFFU));
    for (void* const block : {static_cast<void*>(results[0]), static_cast<void*>(results[1]),
                              static_cast<void*>(results[2]), static_cast<void*>(results)}) {
        release(block);
    }
}

TEST_F(PostArraysTest, PointerArraysKeepTheirRecordsAndMakeTheOthers)
{
    expectRecordsAreKeptAndMade<DspReadyInd, increaseDspPostResultArray>();
    expectRecordsAreKeptAndMade<SApi2PostDataResp, increasePostData2ResultArray>();
}

TEST_F(PostArraysTest, PointerArrayForWhichThereIsNoMemoryStays)
{
    DspReadyInd** const results = increaseDspPostResultArray(nullptr, 0, 1);

    for (unsigned nth = 1; nth <= 3; ++nth) {
        const FailNth<AaMemMallocDbg> memory(nth);
        EXPECT_EQ(increaseDspPostResultArray(results, 1, 2), nullptr);
        EXPECT_TRUE(memory.hasFailed());
    }

    EXPECT_THAT(wordsOf(results[0], 38), Each(0xFFFFFFFFU));
    release(results[0]);
    release(results);
}

TEST_F(PostArraysTest, FunctionsAreCalledFromC)
{
    EXPECT_EQ(recordPostInC(path), EStatus_NoError);

    EXPECT_EQ(content(), "0 0 0 1 : 5 6 \n");
    EXPECT_EQ(postRecordSizeInC(), sizeof(DspReadyInd));
}

} // namespace
} // namespace dorn::test
