// SPDX-License-Identifier: MIT
#include "AlarmTable.hpp"

#include <gmock/gmock.h>

#include <array>
#include <numeric>

namespace dorn::examples {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AlarmTableTest : public testing::Test {
protected:
    void report(std::uint32_t fault, std::uint64_t now, std::span<const std::uint8_t> details = {})
    {
        m_table.report({fault, 16, 0x0F010211, details}, now);
    }

    std::vector<std::pair<EAlarmEvent, std::uint32_t>> m_changes; ///< and the alarm's number
    AlarmTable m_table{[this](EAlarmEvent event, const SAlarm& alarm) { m_changes.emplace_back(event, alarm.number); }};
};

TEST_F(AlarmTableTest, ReportedFaultIsAnActiveAlarm)
{
    constexpr std::array<std::uint8_t, 2> details{7, 8};

    m_table.report({4, 16, 0x0F010211, details}, 100);

    ASSERT_THAT(m_table.active(), SizeIs(1));
    const SAlarm& alarm = m_table.active()[0];
    EXPECT_EQ(alarm.number, 1U);
    EXPECT_EQ(alarm.state, EAlarmState_Active);
    EXPECT_EQ(alarm.faultId, 4U);
    EXPECT_EQ(alarm.boardNumber, 16U);
    EXPECT_EQ(alarm.sender, 0x0F010211U);
    EXPECT_EQ(alarm.count, 1U);
    EXPECT_EQ(alarm.raised, 100U);
    EXPECT_EQ(alarm.reported, 100U);
    EXPECT_EQ(alarm.ended, 0U);
    EXPECT_EQ(alarm.detailSize, 2U);
    EXPECT_EQ(alarm.details[0], 7);
    EXPECT_EQ(alarm.details[1], 8);
    EXPECT_THAT(m_changes, ElementsAre(std::pair(EAlarmEvent_Raised, 1U)));
    EXPECT_THAT(m_table.past(), IsEmpty());
}

TEST_F(AlarmTableTest, FaultThatIsReportedAgainIsTheSameAlarm)
{
    constexpr std::array<std::uint8_t, 3> before{1, 2, 3};
    constexpr std::array<std::uint8_t, 1> after{9};
    report(4, 100, before);

    report(4, 250, after);

    ASSERT_THAT(m_table.active(), SizeIs(1));
    const SAlarm& alarm = m_table.active()[0];
    EXPECT_EQ(alarm.count, 2U);
    EXPECT_EQ(alarm.raised, 100U);
    EXPECT_EQ(alarm.reported, 250U);
    EXPECT_EQ(alarm.detailSize, 1U);
    EXPECT_EQ(alarm.details[0], 9);
    EXPECT_EQ(alarm.details[1], 0);
    EXPECT_THAT(m_changes, ElementsAre(std::pair(EAlarmEvent_Raised, 1U), std::pair(EAlarmEvent_Repeated, 1U)));
}

TEST_F(AlarmTableTest, OtherFaultBoardOrSenderIsAnotherAlarm)
{
    m_table.report({4, 16, 0x211, {}}, 1);
    m_table.report({5, 16, 0x211, {}}, 1);
    m_table.report({4, 17, 0x211, {}}, 1);
    m_table.report({4, 16, 0x212, {}}, 1);

    EXPECT_THAT(m_table.active(), SizeIs(4));
}

TEST_F(AlarmTableTest, DetailsThatDoNotFitAreCutAndTheirSizeIsKept)
{
    std::array<std::uint8_t, 65> details{};
    std::iota(details.begin(), details.end(), std::uint8_t{1});

    report(4, 1, details);

    const SAlarm& alarm = m_table.active()[0];
    EXPECT_EQ(alarm.detailSize, 65U);
    EXPECT_EQ(alarm.detailsHere(), 64U);
    EXPECT_EQ(alarm.details[63], 64);
}

TEST_F(AlarmTableTest, ClearedAlarmIsPast)
{
    report(4, 100);
    report(5, 110);

    EXPECT_EQ(m_table.clear(1, 300), 1U);

    ASSERT_THAT(m_table.active(), SizeIs(1));
    EXPECT_EQ(m_table.active()[0].number, 2U);
    ASSERT_THAT(m_table.past(), SizeIs(1));
    EXPECT_EQ(m_table.past()[0].number, 1U);
    EXPECT_EQ(m_table.past()[0].state, EAlarmState_Cleared);
    EXPECT_EQ(m_table.past()[0].ended, 300U);
    EXPECT_EQ(m_changes.back(), std::pair(EAlarmEvent_Ended, 1U));
}

TEST_F(AlarmTableTest, AlarmThatIsNotActiveCannotBeCleared)
{
    report(4, 100);
    m_table.clear(1, 200);

    EXPECT_EQ(m_table.clear(1, 300), 0U);
    EXPECT_EQ(m_table.clear(2, 300), 0U);

    EXPECT_THAT(m_table.past(), SizeIs(1));
}

TEST_F(AlarmTableTest, AllAlarmsCanBeClearedAtOnce)
{
    report(4, 100);
    report(5, 100);
    report(6, 100);

    EXPECT_EQ(m_table.clear(0, 300), 3U);

    EXPECT_THAT(m_table.active(), IsEmpty());
    EXPECT_THAT(m_table.past(), SizeIs(3));
}

TEST_F(AlarmTableTest, FaultThatComesBackIsANewAlarm)
{
    report(4, 100);
    m_table.clear(1, 200);

    report(4, 300);

    ASSERT_THAT(m_table.active(), SizeIs(1));
    EXPECT_EQ(m_table.active()[0].number, 2U);
    EXPECT_EQ(m_table.active()[0].count, 1U);
}

TEST_F(AlarmTableTest, TooManyAlarmsDisplaceTheOneLongestUnseen)
{
    for (std::uint32_t fault = 1; fault <= maxActiveAlarms; ++fault) {
        report(fault, fault);
    }
    report(1, 1000); // seen again: the second is the longest unseen now

    report(999, 1001);

    EXPECT_THAT(m_table.active(), SizeIs(maxActiveAlarms));
    ASSERT_THAT(m_table.past(), SizeIs(1));
    EXPECT_EQ(m_table.past()[0].faultId, 2U);
    EXPECT_EQ(m_table.past()[0].state, EAlarmState_Displaced);
    EXPECT_EQ(m_table.past()[0].ended, 1001U);
    EXPECT_EQ(m_table.active().back().faultId, 999U);
}

TEST_F(AlarmTableTest, PastAlarmsAreKeptUpToALimit)
{
    for (std::uint32_t fault = 1; fault <= maxPastAlarms + 2; ++fault) {
        report(fault, fault);
        m_table.clear(0, fault);
    }

    ASSERT_THAT(m_table.past(), SizeIs(maxPastAlarms));
    EXPECT_EQ(m_table.past().front().number, 3U);
    EXPECT_EQ(m_table.past().back().number, maxPastAlarms + 2);
}

} // namespace
} // namespace dorn::examples
