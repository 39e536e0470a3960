// SPDX-License-Identifier: MIT
// Reset-persistent fields when there is no memory.
#include "OutOfMemory.hpp"
#include "RpramShared.h"
#include "TestNode.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using dorn::test::blocksBeforeFailure;

class RpramMemoryTest : public testing::Test {
protected:
    static constexpr const char* file = "/var/tmp/hwapi/RP_RAM_field_user1.txt";

    /// Lines that need memory of their own: none is as short as a string object can hold in itself.
    static std::string lines(unsigned count, const std::string& between = "")
    {
        std::string lines;
        for (unsigned number = 0; number < count; ++number) {
            lines += between + "0x5 :what was remembered, " + std::to_string(number);
        }
        return lines;
    }

    /// Does something with memory that is out at one allocation: at the first, then at the second and so on, until it
    /// gets by without that one. @return how many there were
    template <class Call>
    static long runOutInTurn(Call call)
    {
        long blocks = 0;
        bool wasOut = true;
        while (wasOut) {
            SCOPED_TRACE("blocks before memory is out: " + std::to_string(blocks));
            call([&](auto action) {
                blocksBeforeFailure = blocks;
                const auto result = action();
                wasOut = blocksBeforeFailure < 0;
                blocksBeforeFailure = -1;
                return result;
            });
            ++blocks;
        }
        return blocks - 1;
    }

    dorn::testkit::TestNode m_node;
};

TEST_F(RpramMemoryTest, FieldIsNeitherWrittenNorReadWithoutMemory)
{
    ASSERT_EQ(ApiResetRpramSet(ERP_RAM_field_user1, 5, "before"), 0);
    std::uint32_t value = 7;
    char text[RPRAM_TEXT_SIZE] = "untouched";

    dorn::test::memoryIsOut = true;
    const std::int32_t written = ApiResetRpramSet(ERP_RAM_field_user1, 6, "without memory");
    const std::int32_t read = ApiResetRpramGet(ERP_RAM_field_user1, &value, text);
    dorn::test::memoryIsOut = false;

    EXPECT_EQ(written, 1);
    EXPECT_EQ(read, 1);
    EXPECT_EQ(value, 7U);
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(ApiResetRpramGet(ERP_RAM_field_user1, &value, text), 0);
    EXPECT_EQ(value, 5U);
    EXPECT_STREQ(text, "before");
}

TEST_F(RpramMemoryTest, FieldIsWrittenWholeOrStaysAsItIs)
{
    const std::string before = lines(10, "\n").substr(1);
    std::int32_t result = 1;

    const long allocations = runOutInTurn([&](auto withMemoryOut) {
        m_node.writeBoardFile(file, before);

        result = withMemoryOut([] { return ApiResetRpramSet(ERP_RAM_field_user1, 6, "what is remembered now"); });

        EXPECT_EQ(m_node.readBoardFile(file), result == 0 ? "0x6 :what is remembered now\n" + before : before);
    });

    EXPECT_EQ(result, 0) << "with all the memory that it needs";
    EXPECT_GT(allocations, 10) << "the history alone has as many lines";
}

TEST_F(RpramMemoryTest, FieldIsReadWholeOrNotAtAll)
{
    m_node.writeBoardFile(file, "0x00000000000000000000000000000005 :what was remembered, whatever it costs");
    std::int32_t result = 1;

    const long allocations = runOutInTurn([&](auto withMemoryOut) {
        std::uint32_t value = 7;
        char text[RPRAM_TEXT_SIZE] = "untouched";

        result = withMemoryOut([&] { return ApiResetRpramGet(ERP_RAM_field_user1, &value, text); });

        EXPECT_EQ(value, result == 0 ? 5U : 7U);
        EXPECT_STREQ(text, result == 0 ? "what was remembered, whatever it costs" : "untouched");
    });

    EXPECT_EQ(result, 0) << "with all the memory that it needs";
    EXPECT_GT(allocations, 1);
}

} // namespace
