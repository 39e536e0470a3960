// SPDX-License-Identifier: MIT
#include "SimulatedOcxo.hpp"

#include "CallbackTo.hpp"

#include <gmock/gmock.h>

#include <vector>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::clocks::bif::ocxo;
using testing::IsEmpty;
using testing::SizeIs;

/// The worker is not set up: events come at once.
class SimulatedOcxoTest : public ::testing::Test {
protected:
    using Callback = CallbackTo<AbstractOcxoBif::AbstractOcxoCallback, OcxoCallbackParam>;

    SimulatedOcxoTest() { m_ocxo.setOcxoCallback(&m_callback); }

    std::vector<OcxoCallbackParam> m_events;
    Callback m_callback{[this](const OcxoCallbackParam& event) { m_events.push_back(event); }};
    vel::hwapi::common::Worker m_worker;
    BoardClock m_clock;
    SimulatedOcxo m_ocxo{m_clock, m_worker};
};

TEST_F(SimulatedOcxoTest, SensorsAreRead)
{
    SClkOcxoStatuses cold{};
    EXPECT_TRUE(m_ocxo.getSensorsStatus(ESensorType_all, &cold));
    EXPECT_EQ(cold.curr_ocxo.state, EClkOcxoStatusSensorState_Ok);
    EXPECT_EQ(cold.curr_ocxo.curr_val, 400U);
    EXPECT_EQ(cold.curr_ocxo.max_val, 400U);
    EXPECT_EQ(cold.curr_ocxo.min_val, 0U);
    EXPECT_EQ(cold.temp_ooven.millicelsius, 25000);
    EXPECT_EQ(cold.temp_ooven.alarm_state, 1);
    EXPECT_EQ(cold.temp_ocxo.millicelsius, 25000);
    EXPECT_EQ(cold.temp_ocxo.no_alarm, 0);

    m_clock.step(200, 25);

    SClkOcxoStatuses warm{};
    EXPECT_TRUE(m_ocxo.getSensorsStatus(ESensorType_all, &warm));
    EXPECT_EQ(warm.curr_ocxo.curr_val, 120U);
    EXPECT_EQ(warm.temp_ooven.millicelsius, 60000);
    EXPECT_EQ(warm.temp_ooven.alarm_state, 0);
    EXPECT_EQ(warm.temp_ocxo.millicelsius, 85000);
    EXPECT_EQ(warm.temp_ocxo.no_alarm, 1);
}

TEST_F(SimulatedOcxoTest, OnlyTheSensorThatIsAskedForIsRead)
{
    constexpr int untouched = -7;
    for (const ESensorType type :
         {ESensorType_oven_current, ESensorType_oven_temp_ocxo, ESensorType_oven_temp_outer_oven}) {
        SClkOcxoStatuses statuses{};
        statuses.curr_ocxo.curr_val = 7777;
        statuses.temp_ooven.millicelsius = untouched;
        statuses.temp_ocxo.millicelsius = untouched;

        EXPECT_TRUE(m_ocxo.getSensorsStatus(type, &statuses));

        EXPECT_EQ(statuses.curr_ocxo.curr_val == 400, type == ESensorType_oven_current);
        EXPECT_EQ(statuses.temp_ocxo.millicelsius == 25000, type == ESensorType_oven_temp_ocxo);
        EXPECT_EQ(statuses.temp_ooven.millicelsius == 25000, type == ESensorType_oven_temp_outer_oven);
    }
}

TEST_F(SimulatedOcxoTest, SensorsThatDoNotAnswerAreAFailure)
{
    m_clock.setSensors(false);
    SClkOcxoStatuses statuses{};

    EXPECT_FALSE(m_ocxo.getSensorsStatus(ESensorType_all, &statuses));

    EXPECT_EQ(statuses.curr_ocxo.state, EClkOcxoStatusSensorState_Fail);
    EXPECT_EQ(statuses.temp_ooven.state, EClkOcxoStatusSensorState_Fail);
    EXPECT_EQ(statuses.temp_ocxo.state, EClkOcxoStatusSensorState_Fail);
}

TEST_F(SimulatedOcxoTest, SensorsAreReadToAPlaceAndByATypeOnly)
{
    SClkOcxoStatuses statuses{};
    EXPECT_FALSE(m_ocxo.getSensorsStatus(ESensorType_all, nullptr));
    EXPECT_FALSE(m_ocxo.getSensorsStatus(static_cast<ESensorType>(4), &statuses));
}

TEST_F(SimulatedOcxoTest, SensorsAreToldWhenTheyHaveChanged)
{
    m_ocxo.checkSensors();
    m_ocxo.checkSensors();
    ASSERT_THAT(m_events, SizeIs(1));
    EXPECT_TRUE(m_events.back().isSensorsStatusModified());
    EXPECT_TRUE(m_events.back().isSensorsStatusOk());

    m_clock.setSensors(false);
    m_ocxo.checkSensors();
    ASSERT_THAT(m_events, SizeIs(2));
    EXPECT_TRUE(m_events.back().isSensorsStatusModified());
    EXPECT_FALSE(m_events.back().isSensorsStatusOk());

    m_clock.setSensors(true);
    m_ocxo.checkSensors();
    ASSERT_THAT(m_events, SizeIs(3));
    EXPECT_TRUE(m_events.back().isSensorsStatusOk());
}

TEST_F(SimulatedOcxoTest, ControlValueSetsTheDac)
{
    EXPECT_TRUE(m_ocxo.setOcxoControlValue(30000));
    EXPECT_TRUE(m_ocxo.setOcxoControlValue(30001));

    EXPECT_EQ(m_clock.ocxo().controlValue(), 30001);
    ASSERT_THAT(m_events, SizeIs(1)) << "its status has not changed";
    EXPECT_TRUE(m_events[0].isDacSettingStatusModified());
    EXPECT_EQ(m_events[0].getDacSettingStatus(), 1);
}

TEST_F(SimulatedOcxoTest, DacTellsWhenItIsNearTheLimitOfItsAdjustment)
{
    struct Row {
        std::int32_t value;
        std::uint8_t status;
    };
    constexpr Row rows[] = {{6553, 1}, {6552, 2}, {0, 2}, {58982, 1}, {58983, 2}, {65535, 2}};

    m_ocxo.setOcxoControlValue(OcxoModel::middleControlValue);
    std::uint8_t status = 1;
    for (const Row& row : rows) {
        m_events.clear();
        EXPECT_TRUE(m_ocxo.setOcxoControlValue(row.value));
        EXPECT_EQ(m_events.size(), row.status == status ? 0U : 1U) << row.value;
        if (!m_events.empty()) {
            EXPECT_EQ(m_events[0].getDacSettingStatus(), row.status) << row.value;
        }
        status = row.status;
    }
}

TEST_F(SimulatedOcxoTest, ControlValueThatTheDacDoesNotHaveIsRefused)
{
    m_ocxo.setOcxoControlValue(30000);
    m_events.clear();

    EXPECT_FALSE(m_ocxo.setOcxoControlValue(65536));
    EXPECT_FALSE(m_ocxo.setOcxoControlValue(-1));

    EXPECT_EQ(m_clock.ocxo().controlValue(), 30000);
    ASSERT_THAT(m_events, SizeIs(1));
    EXPECT_EQ(m_events[0].getDacSettingStatus(), 0);
}

TEST_F(SimulatedOcxoTest, FactoryHasCalibratedTheOscillator)
{
    std::int32_t value = 0;
    std::int32_t pullPerStep = 0;
    std::int32_t temperature = 0;
    ECalibrationValueSource source = ECalibrationValueSource_Undefined;

    EXPECT_TRUE(m_ocxo.getOcxoCalibrationValue(value, pullPerStep, temperature, source));

    EXPECT_EQ(value, OcxoModel::factoryControlValue);
    EXPECT_EQ(pullPerStep, 10);
    EXPECT_EQ(temperature, 25000);
    EXPECT_EQ(source, ECalibrationValueSource_Factory);
}

TEST_F(SimulatedOcxoTest, CalibrationOfTheFieldTakesItsPlace)
{
    std::uint16_t year = 0;
    std::uint8_t month = 0;
    std::uint8_t day = 0;

    EXPECT_TRUE(m_ocxo.storeCalibrationData(25000, "2026-02-28", year, month, day));

    EXPECT_EQ(year, 2026);
    EXPECT_EQ(month, 2);
    EXPECT_EQ(day, 28);
    std::int32_t value = 0;
    std::int32_t pullPerStep = 0;
    std::int32_t temperature = 0;
    ECalibrationValueSource source{};
    m_ocxo.getOcxoCalibrationValue(value, pullPerStep, temperature, source);
    EXPECT_EQ(value, 25000);
    EXPECT_EQ(source, ECalibrationValueSource_Field);
}

TEST_F(SimulatedOcxoTest, CalibrationThatMakesNoSenseIsRefused)
{
    std::uint16_t year = 1;
    std::uint8_t month = 2;
    std::uint8_t day = 3;
    EXPECT_FALSE(m_ocxo.storeCalibrationData(65536, "2026-02-28", year, month, day));
    for (const char* const date :
         {"", "2026-02-30", "2026-13-01", "2026-2-8", "26-02-2018", "2026-02-28 ", "2026/02/28"}) {
        EXPECT_FALSE(m_ocxo.storeCalibrationData(25000, date, year, month, day)) << date;
    }

    EXPECT_EQ(year, 1);
    EXPECT_EQ(month, 2);
    EXPECT_EQ(day, 3);
    std::int32_t value = 0;
    std::int32_t ignored = 0;
    ECalibrationValueSource source{};
    m_ocxo.getOcxoCalibrationValue(value, ignored, ignored, source);
    EXPECT_EQ(source, ECalibrationValueSource_Factory);
}

TEST_F(SimulatedOcxoTest, WhatOthersFindIsTold)
{
    m_ocxo.calibrationDataStatusOk();
    EXPECT_TRUE(m_events.back().isCalibrationDataStatusModified());
    EXPECT_TRUE(m_events.back().isCalibrationDataStatusOk());
    EXPECT_FALSE(m_events.back().isSensorsStatusModified());

    m_ocxo.calibrationDataStatusFailed();
    EXPECT_FALSE(m_events.back().isCalibrationDataStatusOk());
    EXPECT_TRUE(m_events.back().isSensorsStatusModified());

    m_ocxo.setOcxoControlValueToMo(4711);
    EXPECT_TRUE(m_events.back().isOcxoControlValueModified());
    EXPECT_EQ(m_events.back().getOcxoControlValue(), 4711);

    m_ocxo.sensorsNotAvailable();
    EXPECT_TRUE(m_events.back().isSensorsStatusModified());
    EXPECT_FALSE(m_events.back().isSensorsStatusOk());

    EXPECT_THAT(m_events, SizeIs(4));
}

TEST_F(SimulatedOcxoTest, ThermalCoefficientsAreThoseOfTheModel)
{
    double first = 1;
    double second = 0;
    double third = 0;
    double fourth = 0;

    EXPECT_TRUE(m_ocxo.getThermalCoefficient(first, second, third, fourth));

    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 0.05);
    EXPECT_EQ(third, -0.0004);
    EXPECT_EQ(fourth, 0.000002);
    EXPECT_THAT(m_events, IsEmpty());
}

} // namespace
} // namespace dorn::examples
