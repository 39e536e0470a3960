// SPDX-License-Identifier: MIT
#include "board/Frame.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

TEST(FrameTest, IsBlankAtFirst)
{
    const Frame frame({2, 3});
    EXPECT_EQ(frame.rowText(0), "");
    EXPECT_EQ(frame.at(1, 2), FrameCell());
}

TEST(FrameTest, TextStandsWhereItWasPut)
{
    Frame frame({2, 10});
    EXPECT_EQ(frame.put(1, 2, "abc", Colour::Red), 5U);
    EXPECT_EQ(frame.rowText(0), "");
    EXPECT_EQ(frame.rowText(1), "  abc");
    EXPECT_EQ(frame.at(1, 2).colour, Colour::Red);
    EXPECT_EQ(frame.at(1, 5).colour, Colour::None);
}

TEST(FrameTest, TextThatIsTooLongIsCutVisibly)
{
    Frame frame({2, 5});
    frame.put(0, 1, "abcdefg");
    frame.put(1, 0, "abcdefg", Colour::None, 3);
    EXPECT_EQ(frame.rowText(0), " abc>");
    EXPECT_EQ(frame.rowText(1), "ab>");
}

TEST(FrameTest, TextThatJustFitsIsNotCut)
{
    Frame frame({1, 5});
    frame.put(0, 0, "abcde");
    EXPECT_EQ(frame.rowText(0), "abcde");
}

TEST(FrameTest, WhatIsOutsideIsLeftOut)
{
    Frame frame({1, 2});
    frame.put(1, 0, "x");
    frame.put(0, 2, "x");
    frame.put(0, 99, "x");
    EXPECT_EQ(frame.rowText(0), "");
    Frame nothing({0, 0});
    nothing.put(0, 0, "x");
    EXPECT_EQ(nothing.size(), (FrameSize{0, 0}));
}

TEST(FrameTest, LettersOfOtherAlphabetsTakeOneColumn)
{
    Frame frame({1, 5});
    frame.put(0, 0, "\u00FC\u00B5x");
    EXPECT_EQ(frame.rowText(0), "\u00FC\u00B5x");
    EXPECT_EQ(frame.at(0, 2).character, U'x');
}

TEST(FrameTest, WhatWouldShiftTheRowIsAQuestionMark)
{
    Frame frame({1, 20});
    frame.put(0, 0,
              "a\033b\xFF"
              "c\u0301d\u6F22e\xE6\xBC");
    EXPECT_EQ(frame.rowText(0), "a?b?c?d?e?");
}

} // namespace
} // namespace dorn::tool
