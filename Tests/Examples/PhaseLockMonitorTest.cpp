// SPDX-License-Identifier: MIT
#include "PhaseLockMonitor.hpp"

#include "CallbackTo.hpp"
#include "InvalidParameterException.hpp"
#include "PhaseLockMonitoring.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <span>
#include <string>
#include <vector>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common::bif::phaselockstatusmonitor;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto Ok = EPhaseLockStatus_Ok;
constexpr auto Exceed = EPhaseLockStatus_Exceed;
constexpr auto Undefined = EPhaseLockStatus_Undefined;

/// A sample, nanoseconds, and the status with it.
struct Step {
    float phaseError;
    EPhaseLockStatus status;
};

/// Gives a series to a monitor, a sample a second.
void expectSeries(PhaseLockMonitor& monitor, std::span<const Step> series)
{
    EPhaseLockStatus before = monitor.getStatus();
    for (std::size_t second = 0; second < series.size(); ++second) {
        const Step& step = series[second];
        EXPECT_EQ(monitor.isPhaseLockStatusChanged(step.phaseError, second * 1000), step.status != before)
            << "second " << second;
        EXPECT_EQ(monitor.getStatus(), step.status) << "second " << second;
        before = step.status;
    }
}

TEST(PhaseLockMonitorTest, MonitorKnowsNothingAtFirst)
{
    const PhaseLockMonitor monitor("rp1", 50, 3, 5);

    EXPECT_EQ(monitor.getIdentifier(), "rp1");
    EXPECT_EQ(monitor.getStatus(), Undefined);
}

/// Locking, a glitch, a loss of lock with its overshoot, and the way back. Limit 50 ns, 3 samples, 5 samples.
constexpr Step lockAndLoss[] = {
    {612.4F, Undefined}, {303.9F, Undefined}, {151.2F, Exceed}, {70.8F, Exceed},  {28.3F, Exceed},  {-6.1F, Exceed},
    {-18.7F, Exceed},    {-12.2F, Exceed},    {-4.0F, Ok},      {2.6F, Ok},       {-1.9F, Ok},      {0.4F, Ok},
    {183.0F, Ok},        {1.1F, Ok},          {-2.3F, Ok},      {17.5F, Ok},      {36.8F, Ok},      {49.9F, Ok},
    {58.4F, Ok},         {66.2F, Ok},         {73.7F, Exceed},  {80.9F, Exceed},  {64.1F, Exceed},  {41.0F, Exceed},
    {22.7F, Exceed},     {9.4F, Exceed},      {-1.0F, Exceed},  {-52.6F, Exceed}, {-31.8F, Exceed}, {-14.9F, Exceed},
    {-6.6F, Exceed},     {-3.1F, Exceed},     {-0.8F, Ok},      {1.7F, Ok},
};

TEST(PhaseLockMonitorTest, StatusFollowsARecordedSeries)
{
    PhaseLockMonitor monitor("rp1", 50, 3, 5);
    expectSeries(monitor, lockAndLoss);
}

/// A phase error that wanders about the limit: two beyond, two or more within, and so on. Limit 50 ns, 3 samples each.
constexpr Step wander[] = {
    {10.2F, Undefined}, {12.9F, Undefined}, {11.4F, Ok},  {48.0F, Ok},  {51.3F, Ok},
    {53.0F, Ok},        {49.7F, Ok},        {-50.4F, Ok}, {-55.1F, Ok}, {-47.2F, Ok},
    {50.8F, Ok},        {46.5F, Ok},        {52.2F, Ok},  {54.9F, Ok},  {45.1F, Ok},
};

TEST(PhaseLockMonitorTest, WanderAboutTheLimitDoesNotMakeItChatter)
{
    PhaseLockMonitor monitor("rp1", 50, 3, 3);
    expectSeries(monitor, wander);
}

/// Both signs count alike, and in one row. Limit 20 ns, 4 samples, 2 samples.
constexpr Step bothSigns[] = {
    {-20.1F, Undefined}, {25.0F, Undefined}, {-31.0F, Undefined}, {22.2F, Exceed}, {-19.9F, Exceed}, {20.0F, Ok},
};

TEST(PhaseLockMonitorTest, MagnitudeCountsAndTheLimitItselfIsWithin)
{
    PhaseLockMonitor monitor("rp1", 20, 4, 2);
    expectSeries(monitor, bothSigns);
}

TEST(PhaseLockMonitorTest, WhatIsNotANumberIsBeyond)
{
    PhaseLockMonitor monitor("rp1", 50, 2, 1);
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr Step series[] = {{nan, Undefined}, {infinity, Exceed}, {0, Ok}};
    expectSeries(monitor, series);
}

TEST(PhaseLockMonitorTest, ThresholdOfZeroActsLikeOne)
{
    PhaseLockMonitor monitor("rp1", 50, 0, 0);
    constexpr Step series[] = {{51, Exceed}, {50, Ok}, {-51, Exceed}};
    expectSeries(monitor, series);
}

TEST(PhaseLockMonitorTest, NewParametersKeepTheStatusAndForgetTheRow)
{
    PhaseLockMonitor monitor("rp1", 50, 3, 2);
    constexpr Step before[] = {{0, Undefined}, {0, Ok}, {60, Ok}, {60, Ok}};
    expectSeries(monitor, before);

    monitor.setParameters(30, 2, 4);

    constexpr Step after[] = {{40, Ok}, {40, Exceed}, {0, Exceed}, {0, Exceed}, {0, Exceed}, {0, Ok}};
    expectSeries(monitor, after);
}

TEST(PhaseLockMonitorTest, TimeOfASampleDoesNotCount)
{
    PhaseLockMonitor monitor("rp1", 50, 2, 2);

    EXPECT_FALSE(monitor.isPhaseLockStatusChanged(1, 5000));
    EXPECT_TRUE(monitor.isPhaseLockStatusChanged(1, 0));
}

/// The interface above the monitors. The worker is not set up: events come at once.
class PhaseLockMonitoringTest : public ::testing::Test {
protected:
    using Callback =
        CallbackTo<AbstractPhaseLockStatusMonitorBif::AbstractPhaseLockStatusCallback, PhaseLockStatusCallbackParam>;

    PhaseLockMonitoringTest() { m_monitoring.setPhaseLockStatusCallback(&m_callback); }

    std::vector<PhaseLockStatusCallbackParam> m_events;
    Callback m_callback{[this](const PhaseLockStatusCallbackParam& event) { m_events.push_back(event); }};
    vel::hwapi::common::Worker m_worker;
    PhaseLockMonitor m_fine{"fine", 10, 1, 1};
    PhaseLockMonitor m_coarse{"coarse", 100, 1, 1};
    PhaseLockMonitoring m_monitoring{m_worker};
};

TEST_F(PhaseLockMonitoringTest, EachMonitorTellsItsOwnChanges)
{
    m_monitoring.addPhaseLockStatusMonitor(&m_coarse);
    m_monitoring.addPhaseLockStatusMonitor(&m_fine);

    m_monitoring.doPhaseLockStatusMonitoring(5, 0);
    m_monitoring.doPhaseLockStatusMonitoring(50, 1000);
    m_monitoring.doPhaseLockStatusMonitoring(50, 2000);
    m_monitoring.doPhaseLockStatusMonitoring(500, 3000);

    EXPECT_THAT(m_events,
                ElementsAre(PhaseLockStatusCallbackParam(Ok, "coarse"), PhaseLockStatusCallbackParam(Ok, "fine"),
                            PhaseLockStatusCallbackParam(Exceed, "fine"),
                            PhaseLockStatusCallbackParam(Exceed, "coarse")));
}

TEST_F(PhaseLockMonitoringTest, MonitorsAreFoundByTheirNames)
{
    m_monitoring.addPhaseLockStatusMonitor(&m_fine);

    EXPECT_EQ(m_monitoring.findPhaseLockStatusMonitor("fine"), &m_fine);
    EXPECT_EQ(m_monitoring.findPhaseLockStatusMonitor("coarse"), nullptr);
}

TEST_F(PhaseLockMonitoringTest, WithoutMonitorsNothingIsTold)
{
    m_monitoring.doPhaseLockStatusMonitoring(500, 0);
    EXPECT_THAT(m_events, IsEmpty());
}

TEST_F(PhaseLockMonitoringTest, NoMonitorIsRefused)
{
    EXPECT_THROW(m_monitoring.addPhaseLockStatusMonitor(nullptr), vel::hwapi::common::InvalidParameterException);
    m_monitoring.doPhaseLockStatusMonitoring(500, 0);
}

} // namespace
} // namespace dorn::examples
