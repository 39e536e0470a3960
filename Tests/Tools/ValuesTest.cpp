// SPDX-License-Identifier: MIT
#include "text/Values.hpp"

#include "Outcome.hpp"

#include <gmock/gmock.h>
#include <limits>

namespace dorn::tool {
namespace {

using ::testing::ThrowsMessage;

std::string wrongNumber(const std::string& text, std::uint64_t greatest)
{
    try {
        return std::to_string(parseNumber("VALUE", text, greatest));
    } catch (const UsageError& error) {
        return error.what();
    }
}

TEST(ValuesTest, NumbersAreDecimalOrHexadecimal)
{
    EXPECT_EQ(readNumber("131156"), 131156U);
    EXPECT_EQ(readNumber("0x20054"), 0x20054U);
    EXPECT_EQ(readNumber("0XfF"), 0xFFU);
    EXPECT_EQ(readNumber("18446744073709551615"), std::numeric_limits<std::uint64_t>::max());
}

TEST(ValuesTest, LeadingZeroesDoNotMakeANumberOctal)
{
    EXPECT_EQ(readNumber("010"), 10U);
}

TEST(ValuesTest, WhatIsNoNumberIsNotRead)
{
    for (const char* const text :
         {"", "0x", "x", "1x", " 1", "1 ", "-1", "+1", "0x-1", "1.5", "18446744073709551616"}) {
        EXPECT_FALSE(readNumber(text)) << "'" << text << "'";
    }
}

TEST(ValuesTest, WrongNumberIsNamed)
{
    EXPECT_EQ(wrongNumber("12a", 100), "VALUE: '12a' is not a number (decimal, or hexadecimal behind 0x)");
    EXPECT_EQ(wrongNumber("101", 100), "VALUE: 101 is too great; the greatest is 100");
    EXPECT_EQ(wrongNumber("100", 100), "100");
}

TEST(ValuesTest, SizesMayHaveAUnit)
{
    EXPECT_EQ(parseSize("--limit", "0"), 0U);
    EXPECT_EQ(parseSize("--limit", "1000"), 1000U);
    EXPECT_EQ(parseSize("--limit", "3K"), 3072U);
    EXPECT_EQ(parseSize("--limit", "256M"), 268435456U);
    EXPECT_EQ(parseSize("--limit", "1024G"), std::uint64_t{1} << 40U);
}

TEST(ValuesTest, WrongSizeIsNamed)
{
    for (const std::string text : {"", "K", "1T", "1k", "1.5M", "-1", "1025G", "1099511627777"}) {
        EXPECT_THAT([&text] { parseSize("--limit", text); },
                    ThrowsMessage<UsageError>("--limit: '" + text +
                                              "' is not a size (a number of bytes, or of K, M, G, up to 1024G)"));
    }
}

TEST(ValuesTest, SizesAreShownInTheUnitThatFits)
{
    EXPECT_EQ(sizeText(0), "0 B");
    EXPECT_EQ(sizeText(1023), "1023 B");
    EXPECT_EQ(sizeText(1024), "1.0 KiB");
    EXPECT_EQ(sizeText(10 * 1024), "10 KiB");
    EXPECT_EQ(sizeText(256U << 20U), "256 MiB");
    EXPECT_EQ(sizeText(std::uint64_t{3} << 50U), "3072 TiB");
}

TEST(ValuesTest, SecondsMayHaveDecimals)
{
    EXPECT_EQ(parseSeconds("--timeout", "2"), std::chrono::seconds(2));
    EXPECT_EQ(parseSeconds("--timeout", "0.25"), std::chrono::milliseconds(250));
    EXPECT_EQ(parseSeconds("--timeout", "0"), std::chrono::seconds(0));
    EXPECT_EQ(parseSeconds("--timeout", "1000000"), std::chrono::seconds(1'000'000));
}

TEST(ValuesTest, WrongSecondsAreNamed)
{
    for (const std::string text : {"", "-1", "1000001", "1s", "nan", "inf", "1e3"}) {
        EXPECT_THAT([&text] { parseSeconds("--timeout", text); },
                    ThrowsMessage<UsageError>("--timeout: '" + text +
                                              "' is not a number of seconds (0 to 1000000, decimals allowed)"));
    }
}

TEST(ValuesTest, BytesAreReadInPairsOfDigits)
{
    const Bytes expected{std::byte{0x01}, std::byte{0xAB}, std::byte{0xFF}};

    EXPECT_EQ(parseHex("--hex", "01abFF"), expected);
    EXPECT_EQ(parseHex("--hex", "0x01ABff"), expected);
    EXPECT_EQ(parseHex("--hex", "01 ab:FF"), expected);
    EXPECT_EQ(parseHex("--hex", ""), Bytes());
}

TEST(ValuesTest, WrongByteIsNamedWithItsPlace)
{
    EXPECT_THAT([] { parseHex("--hex", "01 g2"); },
                ThrowsMessage<UsageError>("--hex: 'g2' at position 4 is not a byte in two hexadecimal digits"));
    EXPECT_THAT([] { parseHex("--hex", "012"); },
                ThrowsMessage<UsageError>("--hex: '2' at position 3 is not a byte in two hexadecimal digits"));
    EXPECT_THAT([] { parseHex("--hex", "0 1"); },
                ThrowsMessage<UsageError>("--hex: '0 ' at position 1 is not a byte in two hexadecimal digits"));
}

TEST(ValuesTest, HexNumbersHaveAtLeastTheirDigits)
{
    EXPECT_EQ(hexNumber(0x200, 4), "0x0200");
    EXPECT_EQ(hexNumber(0x20054, 4), "0x20054");
    EXPECT_EQ(hexNumber(0, 1), "0x0");
}

TEST(ValuesTest, DumpShowsPlaceBytesAndCharacters)
{
    EXPECT_EQ(hexDump(bytesOf("Hello, world! \x01\x7f~"), "  "),
              "  0000  48 65 6c 6c 6f 2c 20 77  6f 72 6c 64 21 20 01 7f  Hello, world! ..\n"
              "  0010  7e                                                ~\n");
}

TEST(ValuesTest, NothingHasAnEmptyDump)
{
    EXPECT_EQ(hexDump({}, "  "), "");
}

TEST(ValuesTest, ControlCharactersAreWrittenOut)
{
    EXPECT_EQ(printable("a\nb\033[31m"), "a\\nb\\x1b[31m");
    EXPECT_EQ(printable("h\u00e9"), "h\u00e9");
}

TEST(ValuesTest, TimesReadAsInTheLog)
{
    constexpr host::Nanoseconds time = std::chrono::seconds(1'735'689'600) + std::chrono::microseconds(123'456);

    EXPECT_EQ(timeText(time), "2025-01-01T00:00:00.123456Z");
    EXPECT_EQ(shortTimeText(time), "2025-01-01T00:00:00Z");
    EXPECT_EQ(shortTimeText(host::Nanoseconds(0)), "-");
}

} // namespace
} // namespace dorn::tool
