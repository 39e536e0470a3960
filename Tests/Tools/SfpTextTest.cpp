// SPDX-License-Identifier: MIT
#include "answers/SfpText.hpp"

#include "TestConsole.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

using namespace examples;

const std::vector<SSfpCage> cages{{0, 0, ESfpModule_Empty, 0, 2},
                                  {1, 7, ESfpModule_Ready, 1, 1},
                                  {2, 0xFF, ESfpModule_Starting, 0, 0},
                                  {3, 3, 99, 1, 12}};

TEST(SfpTextTest, CagesAreATable)
{
    TestConsole console;

    EXPECT_EQ(sfpTable(cages, console), "CAGE  LINK  MODULE    DETECTED  EVENTS\n"
                                        "0     0     empty     no        2\n"
                                        "1     7     ready     yes       1\n"
                                        "2     -     starting  no        0\n"
                                        "3     3     99        yes       12\n");
}

TEST(SfpTextTest, ModuleThatIsReadyIsGreen)
{
    TestConsole console(true);

    EXPECT_NE(sfpTable(cages, console).find(console.console().paint(Colour::Green, "ready")), std::string::npos);
}

TEST(SfpTextTest, CagesAreJson)
{
    EXPECT_EQ(sfpJson({cages[1], cages[2]}).dump(),
              R"([{"cage":1,"link":7,"module":"ready","detected":true,"events":1},)"
              R"({"cage":2,"link":null,"module":"starting","detected":false,"events":0}])");
}

TEST(SfpTextTest, NumbersAreLines)
{
    EXPECT_EQ(sfpCageNumbers(cages), "0\n1\n2\n3\n");
    EXPECT_EQ(sfpCageNumbers({}), "");
}

} // namespace
} // namespace dorn::tool
