// SPDX-License-Identifier: MIT
// Reset-persistent fields when there is no memory.
#include "OutOfMemory.hpp"
#include "RpramShared.h"
#include "TestNode.hpp"

#include <gtest/gtest.h>

namespace {

TEST(RpramMemoryTest, FieldIsNeitherWrittenNorReadWithoutMemory)
{
    const dorn::testkit::TestNode node;
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

} // namespace
