// SPDX-License-Identifier: MIT
// Whenever memory is out, a function gives one of its results, throws nothing and leaves nothing behind.
#include "binary.h"

#include "../TestKit/OpenDescriptors.hpp"
#include "FailingNew.hpp"
#include "Image.hpp"
#include "TestNode.hpp"

#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sys/resource.h>

namespace dorn::test {
namespace {

using ::testing::IsSubsetOf;

class BinaryMemoryTest : public ::testing::Test {
protected:
    BinaryMemoryTest() { m_node.writeBoardFile(path, goodImage()); }

    /// Has each allocation of a call fail once. @return what the failing calls gave.
    static std::set<std::int32_t> resultsOf(const std::function<std::int32_t()>& call)
    {
        EXPECT_EQ(call(), 0);
        const std::ptrdiff_t descriptors = testkit::openDescriptors();
        std::set<std::int32_t> results;
        for (std::size_t nth = 1;; ++nth) {
            std::int32_t result = 0;
            if (!fails(call, nth, result)) {
                EXPECT_EQ(result, 0);
                EXPECT_GT(nth, 2U);
                EXPECT_EQ(testkit::openDescriptors(), descriptors);
                return results;
            }
            results.insert(result);
        }
    }

    /// @return whether allocation @p nth of a call has come, and so failed.
    static bool fails(const std::function<std::int32_t()>& call, std::size_t nth, std::int32_t& result)
    {
        const FailingNew noMemory(nth);
        result = call();
        return noMemory.hasFailed();
    }

    /// What this process had in memory at most so far.
    static long greatestResidentKib()
    {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    }

    static constexpr const char* path = "/image.bin";

    testkit::TestNode m_node;
};

TEST_F(BinaryMemoryTest, Validation)
{
    EXPECT_THAT(resultsOf([] { return binary_validate(path, 0x3A01); }), IsSubsetOf({70401, 70406, 70413}));
}

TEST_F(BinaryMemoryTest, CheckOfTheCrc)
{
    EXPECT_THAT(resultsOf([] { return binary_crc(path); }), IsSubsetOf({70401, 70406, 70413}));
}

TEST_F(BinaryMemoryTest, Version)
{
    const auto version = [] {
        std::uint32_t number = 0;
        const std::int32_t result = binary_version(path, 0x3A01, 0, &number);
        EXPECT_EQ(number, result == 0 ? 0x20AU : 0U);
        return result;
    };

    EXPECT_THAT(resultsOf(version), IsSubsetOf({-1, -2}));
}

TEST_F(BinaryMemoryTest, Copy)
{
    EXPECT_THAT(resultsOf([] { return binary_copy_without_trailer(path, "/payload"); }), IsSubsetOf({-1, -8}));
}

TEST_F(BinaryMemoryTest, LargeImageTakesNoMoreThanASmallOne)
{
    constexpr std::uint32_t size = 256U << 20;
    constexpr long most = 4096; // KiB
    m_node.writeBoardFile(path, "");
    std::filesystem::resize_file(m_node.boardPath(path), size);
    std::ofstream(m_node.boardPath(path), std::ios::binary | std::ios::app) << trailerOf("") << wordOf(size);
    const long before = greatestResidentKib();

    EXPECT_EQ(binary_crc(path), 70413);

    EXPECT_LT(greatestResidentKib() - before, most);
}

} // namespace
} // namespace dorn::test
