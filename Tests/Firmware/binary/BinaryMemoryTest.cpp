// SPDX-License-Identifier: MIT
// Whenever memory is out, a function gives one of its results, throws nothing and leaves nothing behind.
#include "binary.h"

#include "../TestKit/OpenDescriptors.hpp"
#include "FailingNew.hpp"
#include "Image.hpp"
#include "LiveBlocks.hpp"
#include "LogCapture.hpp"
#include "SyslogCapture.hpp"
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

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// More than anything else that is allocated meanwhile has; the block in which a file is read for its CRC is larger.
constexpr std::size_t large = 16 * 1024;

class BinaryMemoryTest : public ::testing::Test {
protected:
    BinaryMemoryTest() { m_node.writeBoardFile(path, goodImage()); }

    /// Has each allocation of a call fail once. @return what the failing calls gave.
    static std::set<std::int32_t> resultsOf(const std::function<std::int32_t()>& call)
    {
        EXPECT_EQ(call(), 0);
        callFailing(call, 1); // what the first line of the log makes is there from now on
        const std::ptrdiff_t descriptors = testkit::openDescriptors();
        std::set<std::int32_t> results;
        for (std::size_t nth = 1;; ++nth) {
            const std::ptrdiff_t blocks = liveBlocks();
            const Outcome outcome = callFailing(call, nth);
            EXPECT_EQ(liveBlocks(), blocks) << "allocation " << nth;
            if (!outcome.hasFailed) {
                EXPECT_EQ(outcome.result, 0);
                EXPECT_GT(nth, 2U);
                EXPECT_EQ(testkit::openDescriptors(), descriptors);
                return results;
            }
            results.insert(outcome.result);
        }
    }

    struct Outcome {
        bool hasFailed; ///< whether the allocation has come
        std::int32_t result;
    };

    /// Has allocation @p nth of a call fail.
    static Outcome callFailing(const std::function<std::int32_t()>& call, std::size_t nth)
    {
        const FailingNew noMemory(nth);
        const std::int32_t result = call();
        return {noMemory.hasFailed(), result};
    }

    /// Makes an image whose trailer fits no small allocation.
    void writeLongTrailer() const
    {
        const std::string payload = payloadOf(1000);
        const std::string filling = "<!--" + std::string(large, ' ') + "-->";
        m_node.writeBoardFile(path, imageOf(payload, trailerOf(contentFor(payload) + filling)));
    }

    /// Makes an image of zeros that needs no room on the disk, and looks that a call takes little memory for it.
    void expectLittleMemory(std::uint32_t size, const std::function<void()>& call) const
    {
        constexpr long most = 4096; // KiB
        m_node.writeBoardFile(path, "");
        std::filesystem::resize_file(m_node.boardPath(path), size);
        std::ofstream(m_node.boardPath(path), std::ios::binary | std::ios::app) << trailerOf("") << wordOf(size);
        const long before = greatestResidentKib();

        call();

        EXPECT_LT(greatestResidentKib() - before, most);
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

TEST_F(BinaryMemoryTest, ValidationFailsCleanlyWithoutMemory)
{
    EXPECT_THAT(resultsOf([] { return binary_validate(path, 0x3A01); }), UnorderedElementsAre(70401, 70406, 70413));
}

TEST_F(BinaryMemoryTest, CheckOfTheCrcFailsCleanlyWithoutMemory)
{
    EXPECT_THAT(resultsOf([] { return binary_crc(path); }), UnorderedElementsAre(70401, 70406, 70413));
}

TEST_F(BinaryMemoryTest, VersionFailsCleanlyWithoutMemory)
{
    const auto version = [] {
        std::uint32_t number = 0;
        const std::int32_t result = binary_version(path, 0x3A01, 0, &number);
        EXPECT_EQ(number, result == 0 ? 0x20AU : 0U);
        return result;
    };

    EXPECT_THAT(resultsOf(version), UnorderedElementsAre(-1, -2));
}

TEST_F(BinaryMemoryTest, CopyFailsCleanlyWithoutMemory)
{
    EXPECT_THAT(resultsOf([] { return binary_copy_without_trailer(path, "/payload"); }), UnorderedElementsAre(-1, -8));
}

TEST_F(BinaryMemoryTest, CrcFailsCleanlyWithoutMemory)
{
    const std::uint32_t whole = crcOf(payloadOf(1000));
    const auto calculate = [whole] {
        std::uint32_t crc = 0xDEADBEEF;
        const std::uint32_t result = calculate_crc(path, 1000, &crc);
        EXPECT_EQ(crc, result == 0 ? whole : 0U);
        return static_cast<std::int32_t>(result);
    };

    EXPECT_THAT(resultsOf(calculate), UnorderedElementsAre(70406));
}

TEST_F(BinaryMemoryTest, NoMemoryForTheCrcIsNotLogged)
{
    const SyslogCapture syslog;
    const FailingLargeNew noMemory(large);
    std::uint32_t crc = 0xDEADBEEF;

    EXPECT_EQ(calculate_crc(path, 1000, &crc), 70406U);

    EXPECT_EQ(crc, 0U);
    EXPECT_THAT(syslog.texts(), IsEmpty());
}

TEST_F(BinaryMemoryTest, ValidationTellsThatTheTrailerIsNotParsedForWantOfMemory)
{
    writeLongTrailer();
    ASSERT_EQ(binary_validate(path, 0x3A01), 0);
    const testkit::LogCapture log;
    const FailingLargeNew noMemory(large);

    EXPECT_EQ(binary_validate(path, 0x3A01), 70401);

    EXPECT_THAT(log.texts(), ElementsAre("Error 0x20003 Trailer data parsing failed (code: 3)"));
}

TEST_F(BinaryMemoryTest, CheckOfTheCrcTellsThatTheTrailerIsNotParsedForWantOfMemory)
{
    writeLongTrailer();
    ASSERT_EQ(binary_crc(path), 0);
    const SyslogCapture syslog;
    const FailingLargeNew noMemory(large);

    EXPECT_EQ(binary_crc(path), 70401);

    EXPECT_EQ(syslog.texts().back(), "info binary_crc(): XML parsing failed 3");
}

TEST_F(BinaryMemoryTest, VersionTellsThatTheTrailerIsNotParsedForWantOfMemory)
{
    writeLongTrailer();
    std::uint32_t version = 0;
    ASSERT_EQ(binary_version(path, 0x3A01, 0, &version), 0);
    const SyslogCapture syslog;
    const FailingLargeNew noMemory(large);

    EXPECT_EQ(binary_version(path, 0x3A01, 0, &version), -2);

    EXPECT_EQ(version, 0U);
    EXPECT_EQ(syslog.texts().back(), "info binary_version(): XML parsing failed 3");
}

TEST_F(BinaryMemoryTest, LargeImageTakesNoMoreThanASmallOneToCheck)
{
    expectLittleMemory(256U << 20, [] { EXPECT_EQ(binary_crc(path), 70413); });
}

TEST_F(BinaryMemoryTest, LargeImageTakesNoMoreThanASmallOneToValidate)
{
    expectLittleMemory(256U << 20, [] { EXPECT_EQ(binary_validate(path, 0x3A01), 70413); });
}

/// Smaller than the others: the copy needs its room on the disk.
TEST_F(BinaryMemoryTest, LargeImageTakesNoMoreThanASmallOneToCopy)
{
    constexpr std::uint32_t size = 96U << 20;

    expectLittleMemory(size, [] { EXPECT_EQ(binary_copy_without_trailer(path, "/payload"), 0); });

    EXPECT_EQ(std::filesystem::file_size(m_node.boardPath("/payload")), size);
}

} // namespace
} // namespace dorn::test
