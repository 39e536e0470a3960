// SPDX-License-Identifier: MIT
#include "AaMem.h"

#include "Sanitizers.hpp"
#include "TestNode.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

TEST(AaMemTest, BlockHoldsItsBytes)
{
    void* const block = AaMemMalloc(1000);
    ASSERT_NE(block, nullptr);
    std::memset(block, 0xA5, 1000);
    AaMemUnRef(block);
}

TEST(AaMemTest, BlockIsAlignedForAnyType)
{
    for (const std::uint32_t size : {0U, 1U, 3U, 17U, 4096U}) {
        void* const block = AaMemMalloc(size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0U) << size;
        AaMemUnRef(block);
    }
}

TEST(AaMemTest, SizeZeroGivesABlockOfItsOwn)
{
    void* const first = AaMemMalloc(0);
    void* const second = AaMemMalloc(0);
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, nullptr);
    EXPECT_NE(first, second);
    AaMemUnRef(first);
    AaMemUnRef(second);
}

TEST(AaMemTest, DbgFunctionsAllocateAndReleaseLikeTheOthers)
{
    void* const block = AaMemMallocDbg(8, __FILE__, __LINE__);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(AaMemRef(block), block);
    AaMemUnRefDbg(block, __FILE__, __LINE__);
    std::memset(block, 0, 8); // still there: one reference is left
    AaMemUnRefDbg(block, __FILE__, __LINE__);
}

TEST(AaMemTest, BlockLivesUntilTheLastReferenceIsGivenUp)
{
    auto* const block = static_cast<char*>(AaMemMalloc(4));
    AaMemRef(block);
    AaMemRef(block);
    AaMemUnRef(block);
    AaMemUnRef(block);
    std::strcpy(block, "yes");
    EXPECT_STREQ(block, "yes");
    AaMemUnRef(block);
}

TEST(AaMemTest, NullIsPassedOver)
{
    EXPECT_EQ(AaMemRef(nullptr), nullptr);
    AaMemUnRef(nullptr);
    AaMemUnRefDbg(nullptr, __FILE__, __LINE__);
}

TEST(AaMemTest, ReferencesOfSeveralThreadsAreCounted)
{
    constexpr int rounds = 20'000;
    auto* const block = static_cast<char*>(AaMemMalloc(1));

    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([block] {
            for (int round = 0; round < rounds; ++round) {
                AaMemUnRef(AaMemRef(block));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    *block = 'x';
    EXPECT_EQ(*block, 'x');
    AaMemUnRef(block);
}

TEST(AaMemDeathTest, NoMemoryGivesNull)
{
    if (dorn::test::hasAddressSanitizer || dorn::test::hasThreadSanitizer) {
        GTEST_SKIP() << "a sanitizer needs the address space that this test takes away";
    }
    const auto allocate = [] {
        const rlimit limit{1U << 30U, 1U << 30U};
        setrlimit(RLIMIT_AS, &limit);
        std::exit(AaMemMalloc(std::numeric_limits<std::uint32_t>::max()) ? 1 : 0);
    };
    EXPECT_EXIT(allocate(), testing::ExitedWithCode(0), "");
}

TEST(AaMemDeathTest, ReleasingWhatIsNoBlockEndsTheProcess)
{
    const dorn::testkit::TestNode node({.log = "stderr"});
    alignas(std::max_align_t) char notABlock[64] = {};
    EXPECT_EXIT(AaMemUnRef(notABlock + 32), testing::KilledBySignal(SIGABRT),
                "Assertion failed: header.mark == liveMark");
}

} // namespace
