// SPDX-License-Identifier: MIT
#include "binary/Unsigned32.hpp"

#include <gtest/gtest.h>

namespace vel::hwapi::firmware {
namespace {

TEST(Unsigned32Test, DigitsAreReadAsFarAsTheyGo)
{
    EXPECT_EQ(toUnsigned32("6699", 10), 6699U);
    EXPECT_EQ(toUnsigned32("12ab", 10), 12U);
    EXPECT_EQ(toUnsigned32("12ab", 16), 0x12ABU);
    EXPECT_EQ(toUnsigned32("12xy", 16), 0x12U);
    EXPECT_EQ(toUnsigned32("1.5", 10), 1U);
    EXPECT_EQ(toUnsigned32("0x1F", 16), 0x1FU);
    EXPECT_EQ(toUnsigned32("0X1f", 16), 0x1FU);
    EXPECT_EQ(toUnsigned32("0x1F", 10), 0U);
}

TEST(Unsigned32Test, TextWithoutDigitsIsZero)
{
    for (const char* const text : {"", " ", "x", "-", "+", "0x", "none"}) {
        EXPECT_EQ(toUnsigned32(text, 10), 0U) << text;
    }
    EXPECT_EQ(toUnsigned32("0xg", 16), 0U);
}

TEST(Unsigned32Test, LeadingWhiteSpaceAndSignAreRead)
{
    EXPECT_EQ(toUnsigned32(" \t\r\n\v\f12", 10), 12U);
    EXPECT_EQ(toUnsigned32("+12", 10), 12U);
    EXPECT_EQ(toUnsigned32("- 12", 10), 0U);
}

TEST(Unsigned32Test, GreatestNumbersFit)
{
    EXPECT_EQ(toUnsigned32("4294967295", 10), 0xFFFFFFFFU);
    EXPECT_EQ(toUnsigned32("FFFFFFFF", 16), 0xFFFFFFFFU);
    EXPECT_EQ(toUnsigned32("4294967294", 10), 0xFFFFFFFEU);
}

TEST(Unsigned32Test, NumberBeyond32BitsIsTheGreatest)
{
    EXPECT_EQ(toUnsigned32("4294967296", 10), 0xFFFFFFFFU);
    EXPECT_EQ(toUnsigned32("100000001", 16), 0xFFFFFFFFU);
    EXPECT_EQ(toUnsigned32("18446744073709551615", 10), 0xFFFFFFFFU);
    EXPECT_EQ(toUnsigned32("18446744073709551617", 10), 0xFFFFFFFFU);
    EXPECT_EQ(toUnsigned32("99999999999999999999999999", 10), 0xFFFFFFFFU);
}

TEST(Unsigned32Test, NegativeNumberIsTakenOffTheRange)
{
    EXPECT_EQ(toUnsigned32("-1", 10), 0xFFFFFFFFU);
    EXPECT_EQ(toUnsigned32(" -5", 10), 0xFFFFFFFBU);
    EXPECT_EQ(toUnsigned32("-0", 10), 0U);
    EXPECT_EQ(toUnsigned32("-4294967295", 10), 1U);
    EXPECT_EQ(toUnsigned32("-4294967296", 10), 0xFFFFFFFFU);
    EXPECT_EQ(toUnsigned32("-18446744073709551615", 10), 0xFFFFFFFFU);
    EXPECT_EQ(toUnsigned32("-99999999999999999999999999", 10), 0xFFFFFFFFU);
}

TEST(Unsigned32Test, NumberIsHexadecimalWithAPrefixAnywhere)
{
    EXPECT_EQ(numberOf("6699"), 6699U);
    EXPECT_EQ(numberOf("0x1a2b"), 0x1A2BU);
    EXPECT_EQ(numberOf("0X1A2B"), 0x1A2BU);
    EXPECT_EQ(numberOf(" 0x10"), 0x10U);
    EXPECT_EQ(numberOf("12 0x"), 0x12U);
    EXPECT_EQ(numberOf("10(0X10)"), 0x10U);
    EXPECT_EQ(numberOf("1a2b"), 1U);
    EXPECT_EQ(numberOf(""), 0U);
}

TEST(Unsigned32Test, SoftwareVersionIsHexadecimalBehindASmallPrefixOnly)
{
    EXPECT_EQ(softwareVersionOf("0x10"), 16U);
    EXPECT_EQ(softwareVersionOf("0X10"), 0U);
    EXPECT_EQ(softwareVersionOf(" 0x10"), 0U);
    EXPECT_EQ(softwareVersionOf("10"), 10U);
    EXPECT_EQ(softwareVersionOf("12 0x"), 12U);
    EXPECT_EQ(softwareVersionOf(""), 0U);
}

} // namespace
} // namespace vel::hwapi::firmware
