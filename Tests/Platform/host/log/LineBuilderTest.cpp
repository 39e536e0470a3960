// SPDX-License-Identifier: MIT
#include "log/LineBuilder.hpp"

#include "LogFixture.hpp"

#include <cerrno>
#include <cstdarg>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace dorn::host {
namespace {

class LineBuilderTest : public LogTest {
protected:
    void build(const char* format, ...)
    {
        va_list arguments;
        va_start(arguments, format);
        m_builder.emplace().build(std::chrono::seconds(1), EAaSysLogSeverityLevel_Info, currentLogOrigin(0), format,
                                  arguments);
        va_end(arguments);
    }

    std::string head() const { return "1970-01-01T00:00:01.000000Z info " + process() + " - - "; }
    std::string text() const { return std::string(m_builder->text()); }

    std::optional<LineBuilder> m_builder;
};

TEST_F(LineBuilderTest, LineIsHeadTextAndLineFeed)
{
    build("%s %d", "number", 42);
    EXPECT_EQ(m_builder->line(), head() + "number 42\n");
    EXPECT_EQ(m_builder->text(), "number 42");
}

TEST_F(LineBuilderTest, LineFeedsAtTheEndAreDropped)
{
    build("text\n");
    EXPECT_EQ(m_builder->line(), head() + "text\n");
    build("\n\n");
    EXPECT_EQ(m_builder->line(), head() + "\n");
}

TEST_F(LineBuilderTest, LineFeedInsideIsSpelledOut)
{
    build("one\ntwo\x1b\n");
    EXPECT_EQ(m_builder->line(), head() + "one\\ntwo\\x1b\n");
}

TEST_F(LineBuilderTest, TextOfEveryLengthIsWhole)
{
    for (std::size_t length : {0U, 1U, 500U, 600U, 880U, 920U, 960U, 1000U, 1024U, 2000U, 8191U, 8192U}) {
        const std::string expected(length, 'x');
        build("%s", expected.c_str());
        EXPECT_EQ(text(), expected);
    }
}

TEST_F(LineBuilderTest, TextsAroundTheRoomOnTheStackAreWhole)
{
    for (std::size_t length = 850; length < 1024; ++length) {
        const std::string expected(length, 'x');
        build("%s", expected.c_str());
        ASSERT_EQ(m_builder->line(), head() + expected + "\n");
    }
}

TEST_F(LineBuilderTest, LongerTextIsCutWithAMark)
{
    build("%s", std::string(20'000, 'x').c_str());
    EXPECT_EQ(text(), std::string(8192, 'x') + "... [cut: 20000 bytes]");
    EXPECT_EQ(m_builder->line(), head() + text() + "\n");
}

TEST_F(LineBuilderTest, TextIsCutBetweenCharacters)
{
    const std::string before(8191, 'x');
    build("%s", (before + "\xC3\xA4" + before).c_str());
    EXPECT_EQ(text(), before + "... [cut: 16384 bytes]");
}

TEST_F(LineBuilderTest, TextThatIsNoUtf8IsCutAllTheSame)
{
    build("%s", std::string(9'000, '\x80').c_str());
    EXPECT_EQ(text(), std::string(8192, '\x80') + "... [cut: 9000 bytes]");
}

TEST_F(LineBuilderTest, SpellingOutMayMakeTheTextLonger)
{
    build("%s", std::string(8'192, '\x01').c_str());
    std::string expected;
    for (int count = 0; count < 8'192; ++count) {
        expected += "\\x01";
    }
    EXPECT_EQ(text(), expected);
}

TEST_F(LineBuilderTest, SpellingOutOnTheStackMayNeedTheHeap)
{
    build("%s", std::string(600, '\n').append("x").c_str());
    std::string expected;
    for (int count = 0; count < 600; ++count) {
        expected += "\\n";
    }
    EXPECT_EQ(text(), expected + "x");
}

TEST_F(LineBuilderTest, FormatThatCannotBePrintedIsShown)
{
    build("wide %ls", L"\x1F600"); // the C locale has no such character
    EXPECT_EQ(text(), "wide %ls [not printable]");
}

TEST_F(LineBuilderTest, NullFormatIsNoCrash)
{
    build(nullptr);
    EXPECT_EQ(text(), "(null)");
}

} // namespace
} // namespace dorn::host
