// SPDX-License-Identifier: MIT
#include "OcxoModel.hpp"

#include <gtest/gtest.h>

namespace dorn::examples {
namespace {

constexpr double air = 25;
constexpr double hour = 3600;
constexpr double day = 24 * hour;

TEST(OcxoModelTest, OscillatorIsColdAtPowerOn)
{
    const OcxoModel ocxo(air);

    EXPECT_EQ(ocxo.ovenTemperature(), air);
    EXPECT_EQ(ocxo.outerOvenTemperature(), air);
    EXPECT_EQ(ocxo.ovenCurrent(), 400) << "it heats as much as it can";
    EXPECT_FALSE(ocxo.isWarm());
}

TEST(OcxoModelTest, OvensReachTheirSetPoints)
{
    OcxoModel ocxo(air);

    ocxo.step(20, air);
    EXPECT_FALSE(ocxo.isWarm());
    EXPECT_NEAR(ocxo.ovenTemperature(), 80.1, 0.1);
    ocxo.step(20, air);
    EXPECT_TRUE(ocxo.isWarm());
    ocxo.step(100, air);

    EXPECT_NEAR(ocxo.ovenTemperature(), 85, 0.001);
    EXPECT_NEAR(ocxo.outerOvenTemperature(), 60, 0.001);
    EXPECT_NEAR(ocxo.ovenCurrent(), 120, 0.01);
}

TEST(OcxoModelTest, OvenDrawsLessInWarmAir)
{
    OcxoModel ocxo(air);

    ocxo.step(hour, 60);

    EXPECT_NEAR(ocxo.ovenCurrent(), 50, 0.01);
}

TEST(OcxoModelTest, ColdOscillatorIsSlow)
{
    OcxoModel ocxo(air);
    EXPECT_NEAR(ocxo.frequencyError(), 40 + 20 - 30, 0.001); // aged, warming up, 60 degrees too cold

    ocxo.step(60, air);

    EXPECT_NEAR(ocxo.frequencyError(), 40 + 18.1, 0.05);
}

TEST(OcxoModelTest, WarmUpDiesAwayAndAgingGoesOn)
{
    OcxoModel ocxo(air);

    ocxo.step(day, air);
    EXPECT_NEAR(ocxo.frequencyError(), 40.5, 0.001);
    ocxo.step(10 * day, air);
    EXPECT_NEAR(ocxo.frequencyError(), 45.5, 0.001);
}

TEST(OcxoModelTest, ControlValuePullsTheFrequency)
{
    OcxoModel ocxo(air);
    EXPECT_EQ(ocxo.controlValue(), OcxoModel::factoryControlValue);
    ocxo.step(day, air);

    ocxo.setControlValue(OcxoModel::factoryControlValue - 4050);

    EXPECT_NEAR(ocxo.frequencyError(), 0, 0.001);
}

TEST(OcxoModelTest, JumpStays)
{
    OcxoModel ocxo(air);
    const double before = ocxo.frequencyError();

    ocxo.jump(-12.5);

    EXPECT_NEAR(ocxo.frequencyError(), before - 12.5, 1e-9);
}

TEST(OcxoModelTest, AirIsFeltSlowly)
{
    OcxoModel warm(air);
    OcxoModel same(air);
    warm.step(day, air);
    same.step(day, air);

    warm.step(1, 45);
    same.step(1, air);
    EXPECT_NEAR(warm.frequencyError() - same.frequencyError(), 0.016, 0.001);
    warm.step(hour, 45);
    same.step(hour, air);

    EXPECT_NEAR(warm.frequencyError() - same.frequencyError(), 1 - 0.16 + 0.016, 0.001); // the polynomial at 20 degrees
}

TEST(OcxoModelTest, LengthOfStepsDoesNotMatter)
{
    OcxoModel often(air);
    OcxoModel once(air);
    for (int second = 0; second < 30; ++second) {
        often.step(1, 40);
    }
    once.step(30, 40);

    EXPECT_NEAR(often.frequencyError(), once.frequencyError(), 1e-9);
    EXPECT_NEAR(often.ovenTemperature(), once.ovenTemperature(), 1e-9);
}

} // namespace
} // namespace dorn::examples
