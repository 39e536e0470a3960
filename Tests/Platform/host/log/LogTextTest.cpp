// SPDX-License-Identifier: MIT
#include "log/LogText.hpp"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace dorn::host {
namespace {

using std::chrono::microseconds;
using std::chrono::seconds;

std::string timeText(Nanoseconds wall)
{
    std::array<char, logTimeLength> text{};
    EXPECT_EQ(writeLogTime(text.data(), wall), text.data() + text.size());
    return {text.data(), text.size()};
}

std::string field(std::string_view name, std::size_t room = 80)
{
    std::string text(room + 1, '#');
    text.resize(static_cast<std::size_t>(writeLogName(text.data(), room, name) - text.data()));
    return text;
}

std::string oneLine(std::string_view text)
{
    std::string line(oneLineLength(text), '#');
    EXPECT_EQ(writeOneLine(line.data(), text), line.data() + line.size());
    return line;
}

TEST(LogTimeTest, TimeIsUtcWithMicroseconds)
{
    EXPECT_EQ(timeText(Nanoseconds(0)), "1970-01-01T00:00:00.000000Z");
    EXPECT_EQ(timeText(seconds(1'735'689'599) + microseconds(999'999)), "2024-12-31T23:59:59.999999Z");
    EXPECT_EQ(timeText(seconds(951'827'696)), "2000-02-29T12:34:56.000000Z");
}

TEST(LogTimeTest, NanosecondsAreCutNotRounded)
{
    EXPECT_EQ(timeText(seconds(1) + Nanoseconds(999'999'999)), "1970-01-01T00:00:01.999999Z");
}

TEST(LogTimeTest, RememberedSecondIsNotTakenForAnother)
{
    EXPECT_EQ(timeText(seconds(100)), "1970-01-01T00:01:40.000000Z");
    EXPECT_EQ(timeText(seconds(100) + microseconds(7)), "1970-01-01T00:01:40.000007Z");
    EXPECT_EQ(timeText(seconds(99)), "1970-01-01T00:01:39.000000Z");
}

TEST(LogTimeTest, TimeBeforeTheEpochIsATime)
{
    EXPECT_EQ(timeText(-microseconds(1)), "1969-12-31T23:59:59.999999Z");
}

TEST(LogTimeTest, WrittenTimeReadsBack)
{
    const Nanoseconds wall = seconds(1'735'689'599) + microseconds(123'456);
    EXPECT_EQ(parseLogTime(timeText(wall)), wall);
}

TEST(LogTimeTest, WhatIsNoTimeIsRefused)
{
    EXPECT_TRUE(parseLogTime("2025-11-21T09:18:01.123456Z"));
    for (const char* const text :
         {"", "2025-11-21T09:18:01.12345Z", "2025-11-21T09:18:01.123456", "2025-11-21 09:18:01.123456Z",
          "2025-13-21T09:18:01.123456Z", "2025-02-30T09:18:01.123456Z", "2025-11-21T24:00:00.000000Z",
          "2025-11-21T09:60:01.123456Z", "2025-11-21T09:18:60.123456Z", "2025-11-2aT09:18:01.123456Z",
          "9999-11-21T09:18:01.123456Z", "1969-12-31T09:18:01.123456Z", "2025-11-21T09:18:01.123456ZZ"}) {
        EXPECT_FALSE(parseLogTime(text)) << text;
    }
}

TEST(LogNameTest, PlainNameStandsAsItIs)
{
    EXPECT_EQ(field("ClockMain"), "ClockMain");
    EXPECT_EQ(parseLogName("ClockMain"), "ClockMain");
}

TEST(LogNameTest, EmptyNameIsADash)
{
    EXPECT_EQ(field(""), "-");
    EXPECT_EQ(parseLogName("-"), "");
}

TEST(LogNameTest, NameStaysOneField)
{
    EXPECT_EQ(field("two words"), "two\\x20words");
    EXPECT_EQ(field("line\nfeed"), "line\\x0afeed");
    EXPECT_EQ(field("back\\slash"), "back\\x5cslash");
    EXPECT_EQ(field("-"), "\\x2d");
    EXPECT_EQ(field("a-b"), "a-b");
}

TEST(LogNameTest, WrittenNameReadsBack)
{
    for (const std::string name : {"two words", "\\x41", "-", "tab\tdelete\x7f", "\xC3\xA4"}) {
        EXPECT_EQ(parseLogName(field(name)), name);
    }
}

TEST(LogNameTest, HalfAnEscapeIsText)
{
    EXPECT_EQ(parseLogName("a\\x4"), "a\\x4");
    EXPECT_EQ(parseLogName("a\\xZZ"), "a\\xZZ");
    EXPECT_EQ(parseLogName("\\"), "\\");
}

TEST(LogNameTest, LongNameIsCutAndNoEscapeIsHalved)
{
    EXPECT_EQ(field("abcdef", 4), "abcd");
    EXPECT_EQ(field("ab cd", 5), "ab");
    EXPECT_EQ(field("ab cd", 6), "ab\\x20");
}

TEST(OneLineTest, PlainTextStandsAsItIs)
{
    EXPECT_EQ(oneLine(""), "");
    EXPECT_EQ(oneLine("Service initialized ( 0x207 )"), "Service initialized ( 0x207 )");
    EXPECT_EQ(oneLine("tab\tand gr\xC3\xBC\xC3\x9F \\n"), "tab\tand gr\xC3\xBC\xC3\x9F \\n");
}

TEST(OneLineTest, ControlCharactersAreSpelledOut)
{
    EXPECT_EQ(oneLine("a\nb"), "a\\nb");
    EXPECT_EQ(oneLine("a\r\nb"), "a\\r\\nb");
    EXPECT_EQ(oneLine("\x1b[31mred"), "\\x1b[31mred");
    EXPECT_EQ(oneLine(std::string("a\0b", 3)), "a\\x00b");
    EXPECT_EQ(oneLine("\x7f"), "\\x7f");
}

TEST(OneLineTest, ControlCharacterIsFoundAtEveryPlace)
{
    for (std::size_t place = 0; place < 40; ++place) {
        for (const char control : {'\n', '\0', '\x1f', '\x7f'}) {
            std::string text(40, 'x');
            text[place] = control;
            EXPECT_EQ(oneLineLength(text), control == '\n' ? 41U : 43U) << place;
        }
    }
}

TEST(OneLineTest, CharactersNextToControlCharactersAreNone)
{
    const std::string text = " ~\x80\xff !" + std::string(10, ' ');
    EXPECT_EQ(oneLine(text), text);
}

} // namespace
} // namespace dorn::host
