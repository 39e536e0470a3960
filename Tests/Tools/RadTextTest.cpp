// SPDX-License-Identifier: MIT
#include "answers/RadText.hpp"

#include "TestConsole.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

const RadEntry firm{{0x20054, "FIRM", 0, 1}, "HWA"};
const RadEntry address{{0x20027, "CTC_ADDR", 0xC0A8FF7E, 0xC0A8FF7E}, "HWA"};
const RadEntry unnamed{{0x220020, "", 0, 3}, "HWAState"};

TEST(RadTextTest, TableMarksWhatIsNotTheDefault)
{
    TestConsole console;

    EXPECT_EQ(radTable({address, firm}, RadBase::Decimal, console),
              "ID       DOMAIN  NAME      VALUE       DEFAULT\n"
              "0x20027  HWA     CTC_ADDR  3232300926  3232300926\n"
              "0x20054  HWA     FIRM      1           0           changed\n");
}

TEST(RadTextTest, ValuesCanBeHexadecimal)
{
    TestConsole console;

    EXPECT_EQ(radTable({address}, RadBase::Hexadecimal, console),
              "ID       DOMAIN  NAME      VALUE       DEFAULT\n"
              "0x20027  HWA     CTC_ADDR  0xC0A8FF7E  0xC0A8FF7E\n");
}

TEST(RadTextTest, ChangedValueIsColoured)
{
    TestConsole console(true);

    EXPECT_NE(radTable({firm}, RadBase::Decimal, console).find("\033[33m1\033[0m"), std::string::npos);
}

TEST(RadTextTest, JsonHasNumbers)
{
    EXPECT_EQ(jsonLine(radJson(std::vector{firm, address})),
              R"([{"id":131156,"domain":"HWA","name":"FIRM","value":1,"default":0,"changed":true},)"
              R"({"id":131111,"domain":"HWA","name":"CTC_ADDR","value":3232300926,"default":3232300926,)"
              R"("changed":false}])");
}

TEST(RadTextTest, AddressesOfOneNameAreNumbers)
{
    const RadEntry first{{0x20038, "EAC", 0, 0}, "HWA"};
    const RadEntry second{{0x200B0, "EAC", 0, 0}, "HWA"};
    const RadEntry elsewhere{{0x220038, "EAC", 0, 0}, "HWAState"};

    EXPECT_EQ(radAddresses({firm, first, second, elsewhere}), "HWA/FIRM\n0x20038\n0x200B0\nHWAState/EAC\n");
}

TEST(RadTextTest, ChangeIsToldWithOldAndNew)
{
    EXPECT_EQ(radChangeText({firm, 0}, RadBase::Decimal), "HWA/FIRM 0x20054: 0 -> 1");
    EXPECT_EQ(radChangeText({address, 0}, RadBase::Hexadecimal), "HWA/CTC_ADDR 0x20027: 0x0 -> 0xC0A8FF7E");
    EXPECT_EQ(radChangeText({unnamed, 2}, RadBase::Decimal), "0x220020: 2 -> 3");
    EXPECT_EQ(jsonLine(radChangeJson({firm, 0})), R"({"id":131156,"domain":"HWA","name":"FIRM","old":0,"new":1})");
}

TEST(RadTextTest, MemoryTellsOnlyOtherValues)
{
    RadMemory memory({firm});
    RadEntry changed = firm;
    changed.parameter.value = 5;

    EXPECT_FALSE(memory.note(firm));
    const auto change = memory.note(changed);
    ASSERT_TRUE(change);
    EXPECT_EQ(change->before, 1U);
    EXPECT_EQ(change->entry.parameter.value, 5U);
    EXPECT_FALSE(memory.note(changed));
}

TEST(RadTextTest, NewParameterHasHadItsDefaultBefore)
{
    RadMemory memory({});

    EXPECT_FALSE(memory.note(address));
    const auto change = memory.note(firm);
    ASSERT_TRUE(change);
    EXPECT_EQ(change->before, 0U);
}

} // namespace
} // namespace dorn::tool
