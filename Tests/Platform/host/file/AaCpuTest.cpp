// SPDX-License-Identifier: MIT
#include "AaCpu.h"

#include "file/ByteOrder.hpp"

#include <array>
#include <bit>
#include <cstring>
#include <gtest/gtest.h>

namespace {

TEST(AaCpuTest, LittleEndianBytesBecomeTheirValue)
{
    constexpr std::array<unsigned char, 4> bytes{0x78, 0x56, 0x34, 0x12};
    std::uint32_t word = 0;
    std::memcpy(&word, bytes.data(), bytes.size());
    AaCpuBitSwapByteOrder32(&word);
    EXPECT_EQ(word, 0x12345678U);
}

TEST(AaCpuTest, NullIsPassedOver)
{
    AaCpuBitSwapByteOrder32(nullptr);
}

TEST(AaCpuTest, NothingHappensOnALittleEndianProcessor)
{
    static_assert(dorn::host::fromLittleEndian<std::endian::little>(0x12345678U) == 0x12345678U);
}

TEST(AaCpuTest, BytesAreTurnedRoundOnABigEndianProcessor)
{
    static_assert(dorn::host::fromLittleEndian<std::endian::big>(0x12345678U) == 0x78563412U);
}

} // namespace
