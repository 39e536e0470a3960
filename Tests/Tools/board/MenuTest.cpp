// SPDX-License-Identifier: MIT
#include "board/Menu.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

TEST(MenuTest, EachItemHasALetter)
{
    std::string chosen;
    const Menu menu("Which?", {{"one", [&chosen] { chosen = "one"; }}, {"two", [&chosen] { chosen = "two"; }}});

    EXPECT_EQ(menu.title(), "Which?");
    EXPECT_EQ(Menu::keyOf(1), 'b');
    ASSERT_NE(menu.chosenBy('b'), nullptr);
    menu.chosenBy('b')->choose();
    EXPECT_EQ(chosen, "two");
    EXPECT_EQ(menu.chosenBy('c'), nullptr);
    EXPECT_EQ(menu.chosenBy(escapeKey), nullptr);
}

TEST(MenuTest, GreatLettersFollowTheSmallOnes)
{
    const Menu menu("Which?", std::vector<Menu::Item>(60, {"item", [] {}}));

    EXPECT_EQ(menu.items().size(), 52U);
    EXPECT_EQ(Menu::keyOf(26), 'A');
    EXPECT_EQ(menu.chosenBy('Z'), &menu.items().back());
}

} // namespace
} // namespace dorn::tool
