// SPDX-License-Identifier: MIT
#include "text/Table.hpp"

#include "TestConsole.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

TEST(TableTest, ColumnsAreAsWideAsTheirWidestCell)
{
    Table table({"NAME", "VALUE"});
    table.add({"a", "1"});
    table.add({"longer", "22"});
    TestConsole console;

    EXPECT_EQ(table.text(console), "NAME    VALUE\n"
                                   "a       1\n"
                                   "longer  22\n");
}

TEST(TableTest, EmptyCellsLeaveNoBlanksAtTheEnd)
{
    Table table({"NAME", "VALUE", ""});
    table.add({"a", "", ""});
    table.add({"b", "", "changed"});
    TestConsole console;

    EXPECT_EQ(table.text(console), "NAME  VALUE\n"
                                   "a\n"
                                   "b            changed\n");
}

TEST(TableTest, CharactersOfSeveralBytesTakeOneColumn)
{
    Table table({"NAME", "VALUE"});
    table.add({"h\u00e9", "1"});
    table.add({"abcde", "2"});
    TestConsole console;

    EXPECT_EQ(table.text(console), "NAME   VALUE\n"
                                   "h\u00e9     1\n"
                                   "abcde  2\n");
}

TEST(TableTest, ColourDoesNotMoveColumns)
{
    Table table({"A", "B"});
    table.add({Cell("x", Colour::Red), "1"});
    TestConsole console(true);

    EXPECT_EQ(table.text(console), "\033[2mA\033[0m  \033[2mB\033[0m\n"
                                   "\033[31mx\033[0m  1\n");
}

} // namespace
} // namespace dorn::tool
