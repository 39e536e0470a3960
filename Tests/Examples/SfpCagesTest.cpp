// SPDX-License-Identifier: MIT
#include "SfpCages.hpp"

#include <gtest/gtest.h>

namespace dorn::examples {
namespace {

TEST(SfpCagesTest, CagesAreEmptyAtFirstAndNothingMoves)
{
    SfpCages cages;

    EXPECT_FALSE(cages.step());
    for (std::uint32_t cage = 0; cage < SfpCages::count; ++cage) {
        EXPECT_EQ(cages.at(cage).module, ESfpModule_Empty);
    }
}

TEST(SfpCagesTest, ModuleCanBeReadThreeStepsAfterItsPlugging)
{
    SfpCages cages;

    EXPECT_TRUE(cages.plug(2));
    EXPECT_EQ(cages.at(2).module, ESfpModule_Starting);
    EXPECT_TRUE(cages.step());
    EXPECT_TRUE(cages.step());
    EXPECT_EQ(cages.at(2).module, ESfpModule_Starting);
    EXPECT_FALSE(cages.step());

    EXPECT_EQ(cages.at(2).module, ESfpModule_Ready);
    EXPECT_EQ(cages.at(1).module, ESfpModule_Empty);
}

TEST(SfpCagesTest, EachModuleStartsByItself)
{
    SfpCages cages;
    cages.plug(0);
    cages.step();
    cages.plug(1);

    EXPECT_TRUE(cages.step());
    EXPECT_TRUE(cages.step());
    EXPECT_EQ(cages.at(0).module, ESfpModule_Ready);
    EXPECT_EQ(cages.at(1).module, ESfpModule_Starting);
    EXPECT_FALSE(cages.step());
    EXPECT_EQ(cages.at(1).module, ESfpModule_Ready);
}

TEST(SfpCagesTest, CageTakesOneModule)
{
    SfpCages cages;

    EXPECT_TRUE(cages.plug(0));
    EXPECT_FALSE(cages.plug(0));
    EXPECT_TRUE(cages.pull(0));
    EXPECT_FALSE(cages.pull(0));
}

TEST(SfpCagesTest, ModuleThatIsPluggedAgainStartsAnew)
{
    SfpCages cages;
    cages.plug(0);
    cages.step();
    cages.step();
    cages.pull(0);
    EXPECT_FALSE(cages.step());

    cages.plug(0);

    EXPECT_TRUE(cages.step());
    EXPECT_TRUE(cages.step());
    EXPECT_FALSE(cages.step());
    EXPECT_EQ(cages.at(0).module, ESfpModule_Ready);
}

} // namespace
} // namespace dorn::examples
