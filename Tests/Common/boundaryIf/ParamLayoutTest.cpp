// SPDX-License-Identifier: MIT
// The fields of links, callback parameters and records, and their order.
#include "Drivers.hpp"

#include "Common/ClassLayout.hpp"

#include <gmock/gmock.h>

#include <type_traits>
#include <vector>

namespace {

using vel::hwapi::common::bif::baseband::EBasebandLinkType;
using namespace dorn::test;
using u32 = std::uint32_t;
using Link = const AbstractBasebandLink*;
using Monitor = phaselock::AbstractPhaseLockStatusMonitorBif::AbstractPhaseLockStatusMonitor;
using Monitors = std::vector<Monitor*>;

} // namespace

DORN_EXPOSE(LinkTypeTag, AbstractBasebandLink, EBasebandLinkType, m_linkType)
DORN_EXPOSE(LinkIdTag, AbstractBasebandLink, std::int32_t, m_linkIdentifier)
DORN_EXPOSE(LinkUniqueIdTag, AbstractBasebandLink, std::int32_t, m_linkUniqueIdentifier)
DORN_EXPOSE(LinkNameTag, AbstractBasebandLink, std::string, m_linkHumanName)
DORN_EXPOSE(TimingSetTag, ObsaiTimingSet, u32, m_timingSetId)
DORN_EXPOSE(ObsaiRxStateTag, obsai::LinkSyncCallbackParam, obsai::ERxLinkState, m_rxLinkSynchronizationState)
DORN_EXPOSE(ObsaiTxStateTag, obsai::LinkSyncCallbackParam, obsai::ETxLinkState, m_txLinkSynchronizationState)
DORN_EXPOSE(ObsaiPiResultTag, obsai::LinkSyncCallbackParam, u32, m_piMeasurementResult)
DORN_EXPOSE(ObsaiLinkTag, obsai::LinkSyncCallbackParam, AbstractObsaiLink, m_link)
DORN_EXPOSE(CpriRxStateTag, cpri::LinkSyncCallbackParam, cpri::ERxLinkState, m_rxLinkSynchronizationState)
DORN_EXPOSE(CpriFrameResultTag, cpri::LinkSyncCallbackParam, std::int32_t, m_masterFrameMeasResult)
DORN_EXPOSE(CpriLinkTag, cpri::LinkSyncCallbackParam, CpriLink, m_link)
DORN_EXPOSE(MaintenanceActiveTag, cpri::LinkMaintenanceCallbackParam, bool, m_active)
DORN_EXPOSE(MaintenanceLinkTag, cpri::LinkMaintenanceCallbackParam, CpriLink, m_link)
DORN_EXPOSE(NodeLinkTag, cpri::LinkRemoteNodeCallbackParam, CpriLink, m_link)
DORN_EXPOSE(NodeActiveTag, cpri::LinkRemoteNodeCallbackParam, bool, m_active)
DORN_EXPOSE(NodeSubchannelTag, cpri::LinkRemoteNodeCallbackParam, u32, m_ethernetSubchannelPointer)
DORN_EXPOSE(NodeProtocolTag, cpri::LinkRemoteNodeCallbackParam, u32, m_protocolVersion)
DORN_EXPOSE(VsbRegionTag, cpri::VsbCallbackParam, u32, m_regionId)
DORN_EXPOSE(VsbBytesTag, cpri::VsbCallbackParam, cpri::VsbDataBytes, m_dataBytes)
DORN_EXPOSE(VsbLinkTag, cpri::VsbCallbackParam, CpriLink, m_link)
DORN_EXPOSE(StatsRouteTag, router::RouteStatsCallbackParam, u32, m_routeId)
DORN_EXPOSE(StatsTag, router::RouteStatsCallbackParam, router::BifRouteStats, m_routeStats)
DORN_EXPOSE(SfpDetectedTag, sfp::SfpCallbackParam, bool, m_detected)
DORN_EXPOSE(SfpLinkTag, sfp::SfpCallbackParam, u32, m_physicalLinkId)
DORN_EXPOSE(LatencyTag, router::BifRouteStats, u32, m_msgLatency)
DORN_EXPOSE(MinFillTag, router::BifRouteStats, u32, m_minBufferFillLevel)
DORN_EXPOSE(MaxFillTag, router::BifRouteStats, u32, m_maxBufferFillLevel)
DORN_EXPOSE(InputLinkTag, router::BifRouteStats, Link, m_inputLink)
DORN_EXPOSE(LatencySetTag, router::BifRouteStats, bool, m_msgLatency_set)
DORN_EXPOSE(MinFillSetTag, router::BifRouteStats, bool, m_minBufferFillLevel_set)
DORN_EXPOSE(MaxFillSetTag, router::BifRouteStats, bool, m_maxBufferFillLevel_set)
DORN_EXPOSE(InputLinkSetTag, router::BifRouteStats, bool, m_inputLink_set)
DORN_EXPOSE(AirTag, router::AxcMapBif, router::EAirStandard, m_airStandard)
DORN_EXPOSE(TimestampTag, router::AxcMapBif, u32, m_initialTimestamp)
DORN_EXPOSE(PriorityTag, router::AxcMapBif, u32, m_carrierPriority)
DORN_EXPOSE(FrameTag, router::AxcMapBif, u32, m_frameNumber)
DORN_EXPOSE(HyperFrameTag, router::AxcMapBif, u32, m_hyperFrameNumber)
DORN_EXPOSE(FormatTag, router::AxcMapBif, router::EIqSampleFormat, m_iqSampleFormat)
DORN_EXPOSE(StartBitTag, router::AxcMapBif, u32, m_axcContainerStartBit)
DORN_EXPOSE(StartWordTag, router::AxcMapBif, u32, m_axcContainerStartWord)
DORN_EXPOSE(AirSetTag, router::AxcMapBif, bool, m_airStandard_set)
DORN_EXPOSE(TimestampSetTag, router::AxcMapBif, bool, m_initialTimestamp_set)
DORN_EXPOSE(PrioritySetTag, router::AxcMapBif, bool, m_carrierPriority_set)
DORN_EXPOSE(FrameSetTag, router::AxcMapBif, bool, m_frameNumber_set)
DORN_EXPOSE(HyperFrameSetTag, router::AxcMapBif, bool, m_hyperFrameNumber_set)
DORN_EXPOSE(FormatSetTag, router::AxcMapBif, bool, m_iqSampleFormat_set)
DORN_EXPOSE(StartBitSetTag, router::AxcMapBif, bool, m_axcContainerStartBit_set)
DORN_EXPOSE(StartWordSetTag, router::AxcMapBif, bool, m_axcContainerStartWord_set)
DORN_EXPOSE(ModuloTag, router::SchedulingBif, u32, m_modulo)
DORN_EXPOSE(IndexTag, router::SchedulingBif, u32, m_index)
DORN_EXPOSE(SlotTag, router::SchedulingBif, router::EMessageSlot, m_destSlot)
DORN_EXPOSE(TimeStampTag, router::SchedulingBif, u32, m_timeStamp)
DORN_EXPOSE(ChannelTag, router::SchedulingBif, u32, m_channel)
DORN_EXPOSE(BitMapTag, router::SchedulingBif, u32, m_dualBitMapId)
DORN_EXPOSE(ModuloSetTag, router::SchedulingBif, bool, m_modulo_set)
DORN_EXPOSE(IndexSetTag, router::SchedulingBif, bool, m_index_set)
DORN_EXPOSE(SlotSetTag, router::SchedulingBif, bool, m_destSlot_set)
DORN_EXPOSE(TimeStampSetTag, router::SchedulingBif, bool, m_timeStamp_set)
DORN_EXPOSE(ChannelSetTag, router::SchedulingBif, bool, m_channel_set)
DORN_EXPOSE(BitMapSetTag, router::SchedulingBif, bool, m_dualBitMapId_set)
DORN_EXPOSE(TimerStateTag, systemtimer::TimerSyncCallbackParam, systemtimer::ETimerSyncState, m_synchronizationState)
DORN_EXPOSE(PllStateTag, swpll::SwPllStateMonitorCallbackParam, swpll::ESwPllState, m_state)
DORN_EXPOSE(PllErrorTag, swpll::SwPllStateMonitorCallbackParam, double, m_phaseError)
DORN_EXPOSE(PllChangedTag, swpll::SwPllStateMonitorCallbackParam, swpll::EChangedParam, m_changedParam)
DORN_EXPOSE(PllCalibrationTag, swpll::SwPllStateMonitorCallbackParam, swpll::EClockCalibrationStatus,
            m_clockCalibrationStatus)
DORN_EXPOSE(PllHpfTag, swpll::SwPllStateMonitorCallbackParam, swpll::ETunerHpfUpdateAllowed, m_hpfUpdateAllowed)
DORN_EXPOSE(PhaseStatusTag, phaselock::PhaseLockStatusCallbackParam, phaselock::EPhaseLockStatus, m_phaseLockStatus)
DORN_EXPOSE(PhaseIdTag, phaselock::PhaseLockStatusCallbackParam, std::string, m_identifier)
DORN_EXPOSE(MonitorIdTag, Monitor, std::string, m_identifier)
DORN_EXPOSE(MonitorLimitTag, Monitor, float, m_phaseErrorLimit)
DORN_EXPOSE(MonitorSetTag, Monitor, u32, m_setErrorThreshold)
DORN_EXPOSE(MonitorUnsetTag, Monitor, u32, m_unsetErrorThreshold)
DORN_EXPOSE(MonitorStatusTag, Monitor, phaselock::EPhaseLockStatus, m_status)
DORN_EXPOSE(MonitorsTag, phaselock::AbstractPhaseLockStatusMonitorBif, Monitors, m_phaseLockStatusMonitors)
DORN_EXPOSE(SensorTag, ocxo::OcxoCallbackParam, bool, m_sensor_status)
DORN_EXPOSE(DacTag, ocxo::OcxoCallbackParam, std::uint8_t, m_dac_settingstatus)
DORN_EXPOSE(SensorModifiedTag, ocxo::OcxoCallbackParam, bool, m_sensor_status_modified)
DORN_EXPOSE(DacModifiedTag, ocxo::OcxoCallbackParam, bool, m_dac_settingstatus_modified)
DORN_EXPOSE(CalibrationTag, ocxo::OcxoCallbackParam, bool, m_calibration_data_status)
DORN_EXPOSE(CalibrationModifiedTag, ocxo::OcxoCallbackParam, bool, m_calibration_data_status_modified)
DORN_EXPOSE(ControlUpdateTag, ocxo::OcxoCallbackParam, bool, m_ocxo_control_value_update)
DORN_EXPOSE(ControlValueTag, ocxo::OcxoCallbackParam, std::int32_t, m_ocxo_control_value)

namespace {

constexpr std::size_t virtualTable = sizeof(void*);

/// Expects @p fields one behind the other, beginning at @p begin, with no more space than their alignment asks for, and
/// nothing behind them.
template <class Class, class... Fields>
void expectFields(const Class& object, std::size_t begin, Fields Class::*... fields)
{
    std::vector<std::size_t> expected;
    std::size_t offset = begin;
    const auto place = [&](std::size_t size, std::size_t alignment) {
        offset = (offset + alignment - 1) / alignment * alignment;
        expected.push_back(offset);
        offset += size;
    };
    (place(sizeof(Fields), alignof(Fields)), ...);
    EXPECT_EQ(offsetsIn(object, fields...), expected);
    EXPECT_EQ(sizeof object, (offset + alignof(Class) - 1) / alignof(Class) * alignof(Class));
}

TEST(ParamLayoutTest, MembersOfLinksKeepTheirPlaces)
{
    const CpriLink link;
    expectFields<AbstractBasebandLink>(link, virtualTable, exposed(LinkTypeTag{}), exposed(LinkIdTag{}),
                                       exposed(LinkUniqueIdTag{}), exposed(LinkNameTag{}));
    static_assert(sizeof(CpriLink) == sizeof(AbstractBasebandLink));
    static_assert(sizeof(AbstractObsaiLink) == sizeof(AbstractBasebandLink));
    expectFields(ObsaiTimingSet(), virtualTable, exposed(TimingSetTag{}));
}

TEST(ParamLayoutTest, MembersOfLinkParametersKeepTheirPlaces)
{
    expectFields(obsai::LinkSyncCallbackParam(), virtualTable, exposed(ObsaiRxStateTag{}), exposed(ObsaiTxStateTag{}),
                 exposed(ObsaiPiResultTag{}), exposed(ObsaiLinkTag{}));
    expectFields(cpri::LinkSyncCallbackParam(), virtualTable, exposed(CpriRxStateTag{}), exposed(CpriFrameResultTag{}),
                 exposed(CpriLinkTag{}));
    expectFields(cpri::LinkMaintenanceCallbackParam(), virtualTable, exposed(MaintenanceActiveTag{}),
                 exposed(MaintenanceLinkTag{}));
    expectFields(cpri::LinkRemoteNodeCallbackParam(), virtualTable, exposed(NodeLinkTag{}), exposed(NodeActiveTag{}),
                 exposed(NodeSubchannelTag{}), exposed(NodeProtocolTag{}));
    expectFields(cpri::VsbCallbackParam(), virtualTable, exposed(VsbRegionTag{}), exposed(VsbBytesTag{}),
                 exposed(VsbLinkTag{}));
    expectFields(sfp::SfpCallbackParam(), virtualTable, exposed(SfpDetectedTag{}), exposed(SfpLinkTag{}));
}

TEST(ParamLayoutTest, MembersOfRouterRecordsKeepTheirPlaces)
{
    expectFields(router::RouteStatsCallbackParam(), virtualTable, exposed(StatsRouteTag{}), exposed(StatsTag{}));
    expectFields(router::BifRouteStats(), 0, exposed(LatencyTag{}), exposed(MinFillTag{}), exposed(MaxFillTag{}),
                 exposed(InputLinkTag{}), exposed(LatencySetTag{}), exposed(MinFillSetTag{}), exposed(MaxFillSetTag{}),
                 exposed(InputLinkSetTag{}));
    expectFields(router::AxcMapBif(), 0, exposed(AirTag{}), exposed(TimestampTag{}), exposed(PriorityTag{}),
                 exposed(FrameTag{}), exposed(HyperFrameTag{}), exposed(FormatTag{}), exposed(StartBitTag{}),
                 exposed(StartWordTag{}), exposed(AirSetTag{}), exposed(TimestampSetTag{}), exposed(PrioritySetTag{}),
                 exposed(FrameSetTag{}), exposed(HyperFrameSetTag{}), exposed(FormatSetTag{}),
                 exposed(StartBitSetTag{}), exposed(StartWordSetTag{}));
    expectFields(router::SchedulingBif(), 0, exposed(ModuloTag{}), exposed(IndexTag{}), exposed(SlotTag{}),
                 exposed(TimeStampTag{}), exposed(ChannelTag{}), exposed(BitMapTag{}), exposed(ModuloSetTag{}),
                 exposed(IndexSetTag{}), exposed(SlotSetTag{}), exposed(TimeStampSetTag{}), exposed(ChannelSetTag{}),
                 exposed(BitMapSetTag{}));
}

TEST(ParamLayoutTest, ResetClearsTheCarrierPriorityToo)
{
    router::AxcMapBif map;
    map.*exposed(PriorityTag{}) = 5;
    map.*exposed(PrioritySetTag{}) = true;

    map.resetData();

    EXPECT_EQ(map.*exposed(PriorityTag{}), 0U);
    EXPECT_FALSE(map.*exposed(PrioritySetTag{}));
}

TEST(ParamLayoutTest, MembersOfClockParametersKeepTheirPlaces)
{
    expectFields(systemtimer::TimerSyncCallbackParam(), virtualTable, exposed(TimerStateTag{}));
    expectFields(swpll::SwPllStateMonitorCallbackParam(), virtualTable, exposed(PllStateTag{}), exposed(PllErrorTag{}),
                 exposed(PllChangedTag{}), exposed(PllCalibrationTag{}), exposed(PllHpfTag{}));
    expectFields(phaselock::PhaseLockStatusCallbackParam(), virtualTable, exposed(PhaseStatusTag{}),
                 exposed(PhaseIdTag{}));
    expectFields(ocxo::OcxoCallbackParam(), virtualTable, exposed(SensorTag{}), exposed(DacTag{}),
                 exposed(SensorModifiedTag{}), exposed(DacModifiedTag{}), exposed(CalibrationTag{}),
                 exposed(CalibrationModifiedTag{}), exposed(ControlUpdateTag{}), exposed(ControlValueTag{}));
}

TEST(ParamLayoutTest, MembersOfThePhaseLockMonitorKeepTheirPlaces)
{
    class Judge : public Monitor {
    public:
        using Monitor::Monitor;
        bool isPhaseLockStatusChanged(float /*phaseError*/, std::uint64_t /*time*/) override { return false; }
    };
    const Judge judge("judge", 0.5F, 3, 4);

    expectFields<Monitor>(judge, virtualTable, exposed(MonitorIdTag{}), exposed(MonitorLimitTag{}),
                          exposed(MonitorSetTag{}), exposed(MonitorUnsetTag{}), exposed(MonitorStatusTag{}));
    EXPECT_EQ(judge.*exposed(MonitorLimitTag{}), 0.5F);
    EXPECT_EQ(judge.*exposed(MonitorSetTag{}), 3U);
    EXPECT_EQ(judge.*exposed(MonitorUnsetTag{}), 4U);
}

TEST(ParamLayoutTest, PhaseLockInterfaceHasItsMonitorsBehindAbstractBif)
{
    const PhaseLockStatusMonitor driver;
    EXPECT_THAT(offsetsIn<phaselock::AbstractPhaseLockStatusMonitorBif>(driver, exposed(MonitorsTag{})),
                testing::ElementsAre(sizeof(bif::AbstractBif<phaselock::PhaseLockStatusCallbackParam>)));
}

TEST(ParamLayoutTest, MembersOfOcxoRecordsKeepTheirPlaces)
{
    using Current = ocxo::SClkOcxoStatusSensorOvenCurrent;
    using Outer = ocxo::SClkOcxoStatusSensorOvenTempOuterOven;
    using Crystal = ocxo::SClkOcxoStatusSensorOvenTempOcxo;
    using All = ocxo::SClkOcxoStatuses;
    expectFields(Current(), 0, &Current::state, &Current::max_val, &Current::min_val, &Current::curr_val);
    expectFields(Outer(), 0, &Outer::state, &Outer::millicelsius, &Outer::alarm_state);
    expectFields(Crystal(), 0, &Crystal::state, &Crystal::millicelsius, &Crystal::no_alarm);
    expectFields(All(), 0, &All::curr_ocxo, &All::temp_ooven, &All::temp_ocxo);
    static_assert(std::is_trivially_copyable_v<All> && std::is_standard_layout_v<All>);
    static_assert(std::is_same_v<decltype(Current::max_val), unsigned int>);
    static_assert(std::is_same_v<decltype(Outer::millicelsius), int>);
    EXPECT_EQ(sizeof(All), 40U);
}

TEST(ParamLayoutTest, ParametersAreValuesWithAVirtualDestructorOnly)
{
    const auto isValue = []<class Parameter>(std::type_identity<Parameter>) {
        return std::has_virtual_destructor_v<Parameter> && std::is_default_constructible_v<Parameter> &&
               std::is_copy_constructible_v<Parameter> && std::is_copy_assignable_v<Parameter>;
    };
    static_assert(isValue(std::type_identity<obsai::LinkSyncCallbackParam>()));
    static_assert(isValue(std::type_identity<cpri::LinkSyncCallbackParam>()));
    static_assert(isValue(std::type_identity<cpri::LinkMaintenanceCallbackParam>()));
    static_assert(isValue(std::type_identity<cpri::LinkRemoteNodeCallbackParam>()));
    static_assert(isValue(std::type_identity<cpri::VsbCallbackParam>()));
    static_assert(isValue(std::type_identity<router::RouteStatsCallbackParam>()));
    static_assert(isValue(std::type_identity<sfp::SfpCallbackParam>()));
    static_assert(isValue(std::type_identity<systemtimer::TimerSyncCallbackParam>()));
    static_assert(isValue(std::type_identity<swpll::SwPllStateMonitorCallbackParam>()));
    static_assert(isValue(std::type_identity<phaselock::PhaseLockStatusCallbackParam>()));
    static_assert(isValue(std::type_identity<ocxo::OcxoCallbackParam>()));
    EXPECT_EQ(sizeof(bif::CallbackParam), virtualTable);
}

} // namespace
