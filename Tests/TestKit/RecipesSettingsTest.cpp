// SPDX-License-Identifier: MIT
// Recipes: configuration tags, R&D parameters, the log.
#include "AaConfigRad.h"
#include "AaConfigTag.h"
#include "KioskTest.hpp"
#include "RadWait.hpp"
#include "TagWait.hpp"

namespace kiosk {
namespace {

class RecipesSettingsTest : public KioskTest {};

TEST_F(RecipesSettingsTest, PriceIsTheTagsAtTheStart)
{
    AaConfigTagSetU32(priceTag, 250);
    open();

    EXPECT_EQ(priceOf(1), 250U);
}

TEST_F(RecipesSettingsTest, PriceFollowsTheTagWhileTheKioskRuns)
{
    open();

    AaConfigTagSetU32(priceTag, 300);
    ASSERT_TRUE(waitForTag(shownTag, 300U));

    EXPECT_EQ(priceOf(1), 300U);
}

TEST_F(RecipesSettingsTest, DiscountIsAParameter)
{
    open();

    ASSERT_EQ(AaConfigRadSetValue(discountParameter, 25), 0);

    EXPECT_EQ(priceOf(1), 150U);
}

TEST_F(RecipesSettingsTest, StateIsPublished)
{
    open();
    EXPECT_TRUE(waitForRad(ERadHwapiState_ClimateState, 2));

    m_running->terminate();

    EXPECT_TRUE(waitForRad(ERadHwapiState_ClimateState, 4));
}

TEST_F(RecipesSettingsTest, PriceIsLoggedWhenTheFeatureIsOn)
{
    open();
    AaConfigRadSetValue(m_kiosk.GetRadId(), 1);

    priceOf(3);

    EXPECT_EQ(m_log.count("Debug 0x2000a Paper 3 costs 200"), 1U);
}

} // namespace
} // namespace kiosk
