// SPDX-License-Identifier: MIT
#include "xml/XmlPositions.hpp"

#include <gtest/gtest.h>
#include <string>

namespace {

using dorn::host::XmlPosition;
using dorn::host::XmlPositions;

std::string at(const std::string& text, std::size_t offset, XmlPositions::Unit unit = XmlPositions::Unit::Bytes)
{
    const XmlPosition position = XmlPositions(text, unit).at(offset);
    return std::to_string(position.line) + ":" + std::to_string(position.column);
}

TEST(XmlPositionsTest, LinesAndColumnsCountFromOne)
{
    EXPECT_EQ(at("", 0), "1:1");
    EXPECT_EQ(at("abc", 0), "1:1");
    EXPECT_EQ(at("abc", 2), "1:3");
}

TEST(XmlPositionsTest, AllThreeLineEndsCount)
{
    EXPECT_EQ(at("a\nb", 2), "2:1");
    EXPECT_EQ(at("a\r\nb", 3), "2:1");
    EXPECT_EQ(at("a\rb", 2), "2:1");
    EXPECT_EQ(at("a\r\rb", 3), "3:1");
    EXPECT_EQ(at("a\n", 1), "1:2");
}

TEST(XmlPositionsTest, OffsetBehindTheTextIsItsEnd)
{
    EXPECT_EQ(at("a\nbc", 99), "2:3");
}

TEST(XmlPositionsTest, LineEndsThatAreNotInTheTextAnyMoreCount)
{
    const XmlPositions positions("ab\ncd ef\ng", XmlPositions::Unit::Bytes, {5, 0});
    const auto lineAt = [&positions](std::size_t offset) { return positions.at(offset).line; };
    EXPECT_EQ(lineAt(0), 1U);
    EXPECT_EQ(lineAt(1), 2U);
    EXPECT_EQ(lineAt(3), 3U);
    EXPECT_EQ(lineAt(5), 3U);
    EXPECT_EQ(lineAt(6), 4U);
    EXPECT_EQ(positions.at(7).column, 2U);
    EXPECT_EQ(lineAt(9), 5U);
}

TEST(XmlPositionsTest, CharactersCountOnce)
{
    EXPECT_EQ(at("\xC3\xA4\n\xC3\xA4x", 5), "2:3");
    EXPECT_EQ(at("\xC3\xA4\n\xC3\xA4x", 5, XmlPositions::Unit::Characters), "2:2");
}

} // namespace
