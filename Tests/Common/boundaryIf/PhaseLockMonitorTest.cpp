// SPDX-License-Identifier: MIT
// Monitors of the phase lock, and how they are found.
#include "Drivers.hpp"

#include <gmock/gmock.h>

#include <type_traits>

namespace {

using namespace dorn::test;

/// Exceeds as soon as a sample is above the limit.
class Strict : public PhaseLockStatusMonitor::AbstractPhaseLockStatusMonitor {
public:
    using AbstractPhaseLockStatusMonitor::AbstractPhaseLockStatusMonitor;
    bool isPhaseLockStatusChanged(float phaseError, std::uint64_t /*time*/) override
    {
        const auto before = m_status;
        m_status = phaseError > m_phaseErrorLimit ? phaselock::EPhaseLockStatus_Exceed : phaselock::EPhaseLockStatus_Ok;
        return m_status != before;
    }
};

TEST(PhaseLockMonitorTest, MonitorIsFoundByItsExactName)
{
    Strict fast("fast", 1, 2, 3);
    Strict slow("slow", 1, 2, 3);
    PhaseLockStatusMonitor driver;
    driver.addPhaseLockStatusMonitor(&fast);
    driver.addPhaseLockStatusMonitor(&slow);

    EXPECT_EQ(driver.findPhaseLockStatusMonitor("fast"), &fast);
    EXPECT_EQ(driver.findPhaseLockStatusMonitor("slow"), &slow);
}

TEST(PhaseLockMonitorTest, UnknownNameGivesNull)
{
    Strict fast("fast", 1, 2, 3);
    PhaseLockStatusMonitor driver;
    EXPECT_EQ(driver.findPhaseLockStatusMonitor("fast"), nullptr);
    driver.addPhaseLockStatusMonitor(&fast);

    EXPECT_EQ(driver.findPhaseLockStatusMonitor("Fast"), nullptr);
    EXPECT_EQ(driver.findPhaseLockStatusMonitor("fas"), nullptr);
    EXPECT_EQ(driver.findPhaseLockStatusMonitor("faster"), nullptr);
    EXPECT_EQ(driver.findPhaseLockStatusMonitor(""), nullptr);
}

TEST(PhaseLockMonitorTest, OfTwoWithTheSameNameTheFirstIsFound)
{
    Strict first("fast", 1, 2, 3);
    Strict second("fast", 1, 2, 3);
    PhaseLockStatusMonitor driver;
    driver.addPhaseLockStatusMonitor(&first);
    driver.addPhaseLockStatusMonitor(&second);

    EXPECT_EQ(driver.findPhaseLockStatusMonitor("fast"), &first);
}

TEST(PhaseLockMonitorTest, InterfaceDoesNotDeleteMonitors)
{
    Strict monitor("fast", 1, 2, 3); // deleted twice otherwise
    {
        PhaseLockStatusMonitor driver;
        driver.addPhaseLockStatusMonitor(&monitor);
    }

    EXPECT_EQ(monitor.getIdentifier(), "fast");
}

TEST(PhaseLockMonitorTest, StatusIsUndefinedUntilAMonitorHasJudged)
{
    Strict monitor("fast", 1.5F, 2, 3);
    EXPECT_EQ(monitor.getStatus(), phaselock::EPhaseLockStatus_Undefined);

    EXPECT_TRUE(monitor.isPhaseLockStatusChanged(1.0F, 1));
    EXPECT_FALSE(monitor.isPhaseLockStatusChanged(1.0F, 2));

    EXPECT_EQ(monitor.getStatus(), phaselock::EPhaseLockStatus_Ok);
}

TEST(PhaseLockMonitorTest, MonitorJudgesByNewParameters)
{
    Strict monitor("fast", 1.5F, 2, 3);
    monitor.isPhaseLockStatusChanged(1.0F, 1);

    monitor.setParameters(0.5F, 2, 3);

    EXPECT_TRUE(monitor.isPhaseLockStatusChanged(1.0F, 2));
    EXPECT_EQ(monitor.getStatus(), phaselock::EPhaseLockStatus_Exceed);
}

TEST(PhaseLockMonitorTest, MonitorIsAbstract)
{
    using Monitor = PhaseLockStatusMonitor::AbstractPhaseLockStatusMonitor;
    static_assert(std::is_abstract_v<Monitor> && std::has_virtual_destructor_v<Monitor>);
    SUCCEED();
}

} // namespace
