// SPDX-License-Identifier: MIT
// The router's records of optional fields.
#include "Drivers.hpp"

#include <gmock/gmock.h>

#include <type_traits>

namespace {

using namespace dorn::test;

/// An optional field of a record: its accessors.
template <class Record, class Value>
struct Field {
    void (Record::*set)(Value);
    Value (Record::*get)() const;
    bool (Record::*isSet)() const;
};

/// Expects a field to be clear in a fresh record, to keep what it is given, and to count then, also when that is the
/// value that it had.
template <class Record, class Value>
void expectOptional(const Field<Record, Value>& field, std::type_identity_t<Value> value)
{
    Record record;
    EXPECT_EQ((record.*field.get)(), Value());
    EXPECT_FALSE((record.*field.isSet)());

    (record.*field.set)(value);
    EXPECT_EQ((record.*field.get)(), value);
    EXPECT_TRUE((record.*field.isSet)());

    (record.*field.set)(Value());
    EXPECT_EQ((record.*field.get)(), Value());
    EXPECT_TRUE((record.*field.isSet)());
}

using Stats = router::BifRouteStats;
using Map = router::AxcMapBif;
using Scheduling = router::SchedulingBif;
using u32 = std::uint32_t;
using Link = const AbstractBasebandLink*;

TEST(RouterRecordsTest, StatisticsAreOptional)
{
    const CpriLink link;
    expectOptional(Field<Stats, u32>{&Stats::SetMsgLatency, &Stats::GetMsgLatency, &Stats::IsSetMsgLatency}, 1);
    expectOptional(Field<Stats, u32>{&Stats::SetMinBufferFillLevel, &Stats::GetMinBufferFillLevel,
                                     &Stats::IsSetMinBufferFillLevel},
                   2);
    expectOptional(Field<Stats, u32>{&Stats::SetMaxBufferFillLevel, &Stats::GetMaxBufferFillLevel,
                                     &Stats::IsSetMaxBufferFillLevel},
                   3);
    expectOptional(Field<Stats, Link>{&Stats::SetInputLink, &Stats::GetInputLink, &Stats::IsSetInputLink}, &link);
}

TEST(RouterRecordsTest, AxcMapDoesNotMixUpItsFields)
{
    Map map;
    map.SetInitialTimestamp(1);
    map.SetAirframeStartBasicFrameNumber(2);
    map.SetAirframeStartHyperFrameNumber(3);
    map.SetAxcContainerStartBit(4);
    map.SetAxcContainerStartWord(5);

    EXPECT_EQ(map.GetInitialTimestamp(), 1U);
    EXPECT_EQ(map.GetAirframeStartBasicFrameNumber(), 2U);
    EXPECT_EQ(map.GetAirframeStartHyperFrameNumber(), 3U);
    EXPECT_EQ(map.GetAxcContainerStartBit(), 4U);
    EXPECT_EQ(map.GetAxcContainerStartWord(), 5U);
    EXPECT_FALSE(map.IsSetAirStandard());
    EXPECT_FALSE(map.IsSetIqSampleFormat());
}

TEST(RouterRecordsTest, StatisticsDoNotMixUpTheirFields)
{
    Stats stats;
    stats.SetMinBufferFillLevel(2);

    EXPECT_EQ(stats.GetMaxBufferFillLevel(), 0U);
    EXPECT_FALSE(stats.IsSetMaxBufferFillLevel());
    EXPECT_EQ(stats.GetMsgLatency(), 0U);
    EXPECT_FALSE(stats.IsSetMsgLatency());
    EXPECT_FALSE(stats.IsSetInputLink());
}

TEST(RouterRecordsTest, StatisticsWithEqualValuesAndDifferentFlagsAreUnequal)
{
    const auto isUnequalAfter = [](auto&& set) {
        Stats stats;
        set(stats); // to the value that it has
        return !(stats == Stats());
    };
    EXPECT_TRUE(isUnequalAfter([](Stats& stats) { stats.SetMsgLatency(0); }));
    EXPECT_TRUE(isUnequalAfter([](Stats& stats) { stats.SetMinBufferFillLevel(0); }));
    EXPECT_TRUE(isUnequalAfter([](Stats& stats) { stats.SetMaxBufferFillLevel(0); }));
    EXPECT_TRUE(isUnequalAfter([](Stats& stats) { stats.SetInputLink(nullptr); }));
    EXPECT_EQ(Stats(), Stats());
}

TEST(RouterRecordsTest, StatisticsAreEqualByValuesAndByTheObjectOfTheLink)
{
    const CpriLink link(1);
    const CpriLink sameLink(1);
    Stats one;
    one.SetMsgLatency(1);
    one.SetMinBufferFillLevel(2);
    one.SetMaxBufferFillLevel(3);
    one.SetInputLink(&link);
    Stats other(one);
    EXPECT_EQ(one, other);

    other.SetInputLink(&sameLink);
    EXPECT_NE(one, other);
    other.SetInputLink(&link);
    other.SetMsgLatency(2);
    EXPECT_NE(one, other);
    other.SetMsgLatency(1);
    other.SetMinBufferFillLevel(3);
    EXPECT_NE(one, other);
    other.SetMinBufferFillLevel(2);
    other.SetMaxBufferFillLevel(4);
    EXPECT_NE(one, other);
}

TEST(RouterRecordsTest, PlaceOfAContainerIsOptional)
{
    expectOptional(Field<Map, router::EAirStandard>{&Map::SetAirStandard, &Map::GetAirStandard, &Map::IsSetAirStandard},
                   router::EAirStandard_LTE10);
    expectOptional(Field<Map, u32>{&Map::SetInitialTimestamp, &Map::GetInitialTimestamp, &Map::IsSetInitialTimestamp},
                   1);
    expectOptional(Field<Map, u32>{&Map::SetAirframeStartBasicFrameNumber, &Map::GetAirframeStartBasicFrameNumber,
                                   &Map::IsSetAirframeStartBasicFrameNumber},
                   2);
    expectOptional(Field<Map, u32>{&Map::SetAirframeStartHyperFrameNumber, &Map::GetAirframeStartHyperFrameNumber,
                                   &Map::IsSetAirframeStartHyperFrameNumber},
                   3);
    expectOptional(Field<Map, router::EIqSampleFormat>{&Map::SetIqSampleFormat, &Map::GetIqSampleFormat,
                                                       &Map::IsSetIqSampleFormat},
                   router::EIqSampleFormat_2x16);
    expectOptional(
        Field<Map, u32>{&Map::SetAxcContainerStartBit, &Map::GetAxcContainerStartBit, &Map::IsSetAxcContainerStartBit},
        4);
    expectOptional(Field<Map, u32>{&Map::SetAxcContainerStartWord, &Map::GetAxcContainerStartWord,
                                   &Map::IsSetAxcContainerStartWord},
                   5);
}

TEST(RouterRecordsTest, ResetClearsValuesAndFlags)
{
    Map map;
    map.SetAirStandard(router::EAirStandard_LTE20);
    map.SetInitialTimestamp(1);
    map.SetAirframeStartBasicFrameNumber(2);
    map.SetAirframeStartHyperFrameNumber(3);
    map.SetIqSampleFormat(router::EIqSampleFormat_4x8);
    map.SetAxcContainerStartBit(4);
    map.SetAxcContainerStartWord(5);
    EXPECT_EQ(map.GetAirframeStartBasicFrameNumber(), 2U);
    EXPECT_EQ(map.GetAirframeStartHyperFrameNumber(), 3U);

    map.resetData();

    EXPECT_EQ(map.GetAirStandard(), router::EAirStandard_Wcdma);
    EXPECT_FALSE(map.IsSetAirStandard());
    EXPECT_EQ(map.GetInitialTimestamp(), 0U);
    EXPECT_FALSE(map.IsSetInitialTimestamp());
    EXPECT_EQ(map.GetAirframeStartBasicFrameNumber(), 0U);
    EXPECT_FALSE(map.IsSetAirframeStartBasicFrameNumber());
    EXPECT_EQ(map.GetAirframeStartHyperFrameNumber(), 0U);
    EXPECT_FALSE(map.IsSetAirframeStartHyperFrameNumber());
    EXPECT_EQ(map.GetIqSampleFormat(), router::EIqSampleFormat_4x7_1);
    EXPECT_FALSE(map.IsSetIqSampleFormat());
    EXPECT_EQ(map.GetAxcContainerStartBit(), 0U);
    EXPECT_FALSE(map.IsSetAxcContainerStartBit());
    EXPECT_EQ(map.GetAxcContainerStartWord(), 0U);
    EXPECT_FALSE(map.IsSetAxcContainerStartWord());
}

TEST(RouterRecordsTest, SchedulingIsOptional)
{
    expectOptional(Field<Scheduling, u32>{&Scheduling::SetModulo, &Scheduling::GetModulo, &Scheduling::IsSetModulo}, 1);
    expectOptional(Field<Scheduling, u32>{&Scheduling::SetIndex, &Scheduling::GetIndex, &Scheduling::IsSetIndex}, 2);
    expectOptional(Field<Scheduling, router::EMessageSlot>{&Scheduling::SetDestSlot, &Scheduling::GetDestSlot,
                                                           &Scheduling::IsSetDestSlot},
                   router::EMessageSlot_Control);
    expectOptional(
        Field<Scheduling, u32>{&Scheduling::SetTimeStamp, &Scheduling::GetTimeStamp, &Scheduling::IsSetTimeStamp}, 3);
    expectOptional(Field<Scheduling, u32>{&Scheduling::SetChannel, &Scheduling::GetChannel, &Scheduling::IsSetChannel},
                   4);
    expectOptional(Field<Scheduling, u32>{&Scheduling::SetDualBitMapId, &Scheduling::GetDualBitMapId,
                                          &Scheduling::IsSetDualBitMapId},
                   5);
}

TEST(RouterRecordsTest, SchedulingDoesNotMixUpItsFields)
{
    Scheduling scheduling;
    scheduling.SetModulo(1);
    scheduling.SetIndex(2);
    scheduling.SetTimeStamp(3);
    scheduling.SetChannel(4);
    scheduling.SetDualBitMapId(5);

    EXPECT_EQ(scheduling.GetModulo(), 1U);
    EXPECT_EQ(scheduling.GetIndex(), 2U);
    EXPECT_EQ(scheduling.GetTimeStamp(), 3U);
    EXPECT_EQ(scheduling.GetChannel(), 4U);
    EXPECT_EQ(scheduling.GetDualBitMapId(), 5U);
    EXPECT_FALSE(scheduling.IsSetDestSlot());
}

} // namespace
