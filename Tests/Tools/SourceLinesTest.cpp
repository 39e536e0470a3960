// SPDX-License-Identifier: MIT
#include "text/SourceLines.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

TEST(SourceLinesTest, LineIsShownWithACaretBelowTheColumn)
{
    SourceLines lines("one\ntwo words\nthree");
    EXPECT_EQ(lines.excerpt(2, 5), "  2 | two words\n    |     ^\n");
    EXPECT_EQ(lines.excerpt(3, 1), "  3 | three\n    | ^\n");
}

TEST(SourceLinesTest, PlacesMayBeAskedForInAnyOrder)
{
    SourceLines lines("a\nb\nc\n");
    EXPECT_EQ(lines.excerpt(3, 1), "  3 | c\n    | ^\n");
    EXPECT_EQ(lines.excerpt(1, 1), "  1 | a\n    | ^\n");
    EXPECT_EQ(lines.excerpt(2, 2), "  2 | b\n    |  ^\n");
}

TEST(SourceLinesTest, EveryKindOfLineEndCounts)
{
    SourceLines lines("a\r\nb\rc\nd");
    EXPECT_EQ(lines.excerpt(2, 1), "  2 | b\n    | ^\n");
    EXPECT_EQ(lines.excerpt(3, 1), "  3 | c\n    | ^\n");
    EXPECT_EQ(lines.excerpt(4, 1), "  4 | d\n    | ^\n");
}

TEST(SourceLinesTest, PlaceBehindTheTextIsTheEndOrNothing)
{
    SourceLines lines("ab\n");
    EXPECT_EQ(lines.excerpt(1, 99), "  1 | ab\n    |   ^\n");
    EXPECT_EQ(lines.excerpt(2, 1), "  2 | \n    | ^\n");
    EXPECT_EQ(lines.excerpt(3, 1), "");
}

TEST(SourceLinesTest, TabulatorsAndControlCharactersAreHarmless)
{
    SourceLines lines("\ta\033[31m<p>");
    EXPECT_EQ(lines.excerpt(1, 8), "  1 |  a\\x1b[31m<p>\n    |           ^\n");
}

TEST(SourceLinesTest, CharactersBeyondAsciiCountOnce)
{
    SourceLines lines("<a b=\"\xC3\xA4\xC3\xB6\"><q/>");
    EXPECT_EQ(lines.excerpt(1, 13), "  1 | <a b=\"\xC3\xA4\xC3\xB6\"><q/>\n    |           ^\n");
}

TEST(SourceLinesTest, BytesThatAreNoCharactersAreShownAsNumbers)
{
    SourceLines lines("\xFF<\xC3(\x80\xE2\x82");
    EXPECT_EQ(lines.excerpt(1, 3), "  1 | \\xff<\\xc3(\\x80\\xe2\\x82\n    |      ^\n");
}

TEST(SourceLinesTest, OfALongLineThePartAroundTheColumnIsShown)
{
    const std::string text = std::string(5000, 'a') + "<p>" + std::string(5000, 'b');
    SourceLines lines(text);
    EXPECT_EQ(lines.excerpt(1, 5001), "  1 | " + std::string(40, 'a') + "<p>" + std::string(57, 'b') + "\n    | " +
                                          std::string(40, ' ') + "^\n");
}

TEST(SourceLinesTest, LongLineIsNotCutInACharacter)
{
    std::string text;
    while (text.size() < 200) {
        text += "\xC3\xA4";
    }
    SourceLines lines(text);
    const std::string excerpt = lines.excerpt(1, 102);
    EXPECT_TRUE(excerpt.starts_with("  1 | \xC3\xA4")) << excerpt;
}

} // namespace
} // namespace dorn::tool
