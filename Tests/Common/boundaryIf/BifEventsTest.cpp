// SPDX-License-Identifier: MIT
// Each event of each interface reaches the callback that is registered for it, and no other.
#include "Drivers.hpp"

#include "Interface/boundaryIf/QueueingWorker.hpp"
#include "InvalidParameterException.hpp"

#include <gmock/gmock.h>

#include <memory>
#include <type_traits>
#include <vector>

namespace {

using namespace dorn::test;
using testing::ElementsAre;
using testing::IsEmpty;
using vel::hwapi::common::InvalidParameterException;

/// Notes the parameter objects that it is given.
template <class Callback, class Parameter>
class Noting : public Callback {
public:
    void operator()(Parameter& parameter) override { taken.push_back(&parameter); }
    std::vector<const Parameter*> taken;
};

/// An event: how it is registered, raised and named.
template <class Driver, class Interface, class Callback, class Parameter>
struct Event {
    void (Interface::*set)(Callback*);
    void (Driver::*raise)(Parameter&);
    const std::string& name;
};

/// Raises every event in both ways and expects it with its own callback.
template <class Driver, class Interface, class Callback, class Parameter>
void expectEvents(const std::vector<Event<Driver, Interface, Callback, Parameter>>& events)
{
    QueueingWorker worker;
    testing::NiceMock<Driver> driver(worker);
    std::vector<Noting<Callback, Parameter>> callbacks(events.size());
    for (std::size_t number = 0; number < events.size(); ++number) {
        (driver.*events[number].set)(&callbacks[number]);
        EXPECT_THROW((driver.*events[number].set)(nullptr), InvalidParameterException);
    }
    const auto expectOnly = [&](std::size_t number, const auto& matcher) {
        for (std::size_t other = 0; other < callbacks.size(); ++other) {
            if (other == number) {
                EXPECT_THAT(callbacks[other].taken, matcher) << events[number].name;
            } else {
                EXPECT_THAT(callbacks[other].taken, IsEmpty()) << events[number].name;
            }
        }
        callbacks[number].taken.clear();
    };
    Parameter parameter;
    for (std::size_t number = 0; number < events.size(); ++number) {
        (driver.*events[number].raise)(parameter);
        expectOnly(number, ElementsAre(&parameter));
        driver.callCallback(events[number].name, parameter);
        expectOnly(number, ElementsAre(&parameter));
    }
    driver.initialize();
    for (std::size_t number = 0; number < events.size(); ++number) {
        (driver.*events[number].raise)(parameter);
        EXPECT_THAT(callbacks[number].taken, IsEmpty());
        worker.work();
        expectOnly(number, ElementsAre(testing::Ne(&parameter)));
    }
}

TEST(BifEventsTest, EventsOfTheObsaiSynchronizerReachTheirCallbacks)
{
    using Bif = obsai::AbstractObsaiLinkSynchronizerBif;
    using E = Event<ObsaiSynchronizer, Bif, Bif::AbstractLinkSyncCallback, obsai::LinkSyncCallbackParam>;
    expectEvents<ObsaiSynchronizer>(std::vector<E>{
        {&Bif::setRxLinkSynchronizationCallback, &ObsaiSynchronizer::callRxLinkSynchronizationCallback,
         Bif::RX_LINK_SYNCHRONIZATION_EVENT_NAME},
        {&Bif::setTxLinkSynchronizationCallback, &ObsaiSynchronizer::callTxLinkSynchronizationCallback,
         Bif::TX_LINK_SYNCHRONIZATION_EVENT_NAME},
        {&Bif::setPiMeasurementResultCallback, &ObsaiSynchronizer::callPiMeasurementResultCallback,
         Bif::PI_MEASUREMENT_RESULT_EVENT_NAME},
    });
}

TEST(BifEventsTest, EventsOfTheCpriSynchronizerReachTheirCallbacks)
{
    using Bif = cpri::AbstractCpriLinkSynchronizerBif;
    using E = Event<CpriSynchronizer, Bif, Bif::AbstractLinkSyncCallback, cpri::LinkSyncCallbackParam>;
    expectEvents<CpriSynchronizer>(std::vector<E>{
        {&Bif::setRxLinkSynchronizationCallback, &CpriSynchronizer::callRxLinkSynchronizationCallback,
         Bif::RX_LINK_SYNCHRONIZATION_EVENT_NAME},
        {&Bif::setMasterFrameMeasCallback, &CpriSynchronizer::callMasterFrameMeasCallback,
         Bif::MASTER_FRAME_MEASUREMENT_EVENT_NAME},
    });
}

TEST(BifEventsTest, EventsOfCpriMaintenanceReachTheirCallbacks)
{
    using Bif = cpri::AbstractCpriLinkMaintenanceBif;
    using E = Event<CpriMaintenance, Bif, Bif::AbstractLinkMaintenanceCallback, cpri::LinkMaintenanceCallbackParam>;
    expectEvents<CpriMaintenance>(std::vector<E>{
        {&Bif::setLosEventCallback, &CpriMaintenance::callLosEventCallback,
         Bif::LINK_MAINTENANCE_LOS_ACTIVITY_EVENT_NAME},
        {&Bif::setLofEventCallback, &CpriMaintenance::callLofEventCallback,
         Bif::LINK_MAINTENANCE_LOF_ACTIVITY_EVENT_NAME},
    });
}

TEST(BifEventsTest, EventsOfTheCpriRemoteNodeReachTheirCallbacks)
{
    using Bif = cpri::AbstractCpriLinkRemoteNodeBif;
    using E = Event<CpriRemoteNode, Bif, Bif::AbstractLinkRemoteNodeCallback, cpri::LinkRemoteNodeCallbackParam>;
    expectEvents<CpriRemoteNode>(std::vector<E>{
        {&Bif::setProtocolVersionChangeEventCallback, &CpriRemoteNode::callProtocolVersionChangeEventCallback,
         Bif::REMOTE_PROTOCOL_VERSION_CHANGE_EVENT_NAME},
        {&Bif::setEthernetSubchannelPointerChangeEventCallback,
         &CpriRemoteNode::callEthernetSubchannelPointerChangeEventCallback,
         Bif::REMOTE_ETHERNET_SUBCHANNEL_POINTER_CHANGE_EVENT_NAME},
        {&Bif::setResetEventCallback, &CpriRemoteNode::callResetEventCallback, Bif::REMOTE_RESET_EVENT_NAME},
        {&Bif::setLosEventCallback, &CpriRemoteNode::callLosEventCallback, Bif::REMOTE_LOS_EVENT_NAME},
        {&Bif::setRaiEventCallback, &CpriRemoteNode::callRaiEventCallback, Bif::REMOTE_RAI_EVENT_NAME},
        {&Bif::setSdiEventCallback, &CpriRemoteNode::callSdiEventCallback, Bif::REMOTE_SDI_EVENT_NAME},
        {&Bif::setLofEventCallback, &CpriRemoteNode::callLofEventCallback, Bif::REMOTE_LOF_EVENT_NAME},
    });
}

TEST(BifEventsTest, EventsOfTheCpriVsbControllerReachTheirCallbacks)
{
    using Bif = cpri::AbstractCpriLinkVsbControllerBif;
    using E = Event<CpriVsbController, Bif, Bif::AbstractCpriVsbCallback, cpri::VsbCallbackParam>;
    expectEvents<CpriVsbController>(std::vector<E>{
        {&Bif::setCpriVsbBytesReceivedCallback, &CpriVsbController::callCpriVsbBytesReceivedCallback,
         Bif::CPRI_VSB_BYTES_RECEIVED_EVENT_NAME},
        {&Bif::setCpriVsbBytesTransmittedCallback, &CpriVsbController::callCpriVsbBytesTransmittedCallback,
         Bif::CPRI_VSB_BYTES_TRANSMITTED_EVENT_NAME},
    });
}

TEST(BifEventsTest, EventsOfTheRoutersRoutesReachTheirCallbacks)
{
    using Bif = router::AbstractRouterRouteBif;
    using E = Event<RouterRoute, Bif, Bif::AbstractRouteStatsCallback, router::RouteStatsCallbackParam>;
    expectEvents<RouterRoute>(std::vector<E>{
        {&Bif::setRouteStatsCallback, &RouterRoute::callRouteStatsCallback, Bif::ROUTE_MEAS_READY_EVENT_NAME}});
}

TEST(BifEventsTest, EventsOfSfpModulesReachTheirCallbacks)
{
    using Bif = sfp::AbstractSfpBif;
    using E = Event<Sfp, Bif, Bif::AbstractSfpCallback, sfp::SfpCallbackParam>;
    expectEvents<Sfp>(std::vector<E>{{&Bif::setSfpCallback, &Sfp::callSfpCallback, Bif::SFP_EVENT_NAME}});
}

TEST(BifEventsTest, EventsOfTheSystemTimerReachTheirCallbacks)
{
    using Bif = systemtimer::AbstractSystemTimerBif;
    using E = Event<SystemTimer, Bif, Bif::AbstractTimerSyncCallback, systemtimer::TimerSyncCallbackParam>;
    expectEvents<SystemTimer>(std::vector<E>{{&Bif::setSystemTimerSynchronizationCallback,
                                              &SystemTimer::callSystemTimerSynchronizationCallback,
                                              Bif::SYSTEM_TIMER_SYNCHRONIZATION_EVENT_NAME}});
}

TEST(BifEventsTest, EventsOfTheSwPllStateMonitorReachTheirCallbacks)
{
    using Bif = swpll::AbstractSwPllStateMonitorBif;
    using E =
        Event<SwPllStateMonitor, Bif, Bif::AbstractSwPllStateMonitorCallback, swpll::SwPllStateMonitorCallbackParam>;
    expectEvents<SwPllStateMonitor>(
        std::vector<E>{{&Bif::setSwPllStateMonitorCallback, &SwPllStateMonitor::callSwPllStateChangeCallback,
                        Bif::SWPLL_STATE_MONITOR_EVENT_NAME}});
}

TEST(BifEventsTest, EventsOfThePhaseLockStatusMonitorReachTheirCallbacks)
{
    using Bif = phaselock::AbstractPhaseLockStatusMonitorBif;
    using E = Event<PhaseLockStatusMonitor, Bif, Bif::AbstractPhaseLockStatusCallback,
                    phaselock::PhaseLockStatusCallbackParam>;
    expectEvents<PhaseLockStatusMonitor>(
        std::vector<E>{{&Bif::setPhaseLockStatusCallback, &PhaseLockStatusMonitor::callPhaseLockStatusCallback,
                        Bif::PHASE_LOCK_STATUS_MONITOR_EVENT_NAME}});
}

TEST(BifEventsTest, EventsOfTheOcxoReachTheirCallbacks)
{
    using Bif = ocxo::AbstractOcxoBif;
    using E = Event<Ocxo, Bif, Bif::AbstractOcxoCallback, ocxo::OcxoCallbackParam>;
    expectEvents<Ocxo>(std::vector<E>{{&Bif::setOcxoCallback, &Ocxo::callOcxoCallback, Bif::OCXO_EVENT_NAME}});
}

/// Can be made in both ways by a driver and in none by anybody else, and is destroyed as what it is.
template <class Interface, class Driver>
constexpr bool isInterface =
    std::is_abstract_v<Interface>&& std::has_virtual_destructor_v<Interface>&&
        std::is_base_of_v<bif::AbstractBaseBif, Interface>&& std::is_default_constructible_v<Driver>&&
            std::is_constructible_v<Driver, AbstractWorker&> &&
    !std::is_copy_constructible_v<Driver>;

TEST(BifEventsTest, InterfacesAreMadeWithAndWithoutAWorker)
{
    static_assert(isInterface<obsai::AbstractObsaiLinkConfiguratorBif, ObsaiConfigurator>);
    static_assert(isInterface<obsai::AbstractObsaiLinkSynchronizerBif, ObsaiSynchronizer>);
    static_assert(isInterface<cpri::AbstractCpriLinkConfiguratorBif, CpriConfigurator>);
    static_assert(isInterface<cpri::AbstractCpriLinkSynchronizerBif, CpriSynchronizer>);
    static_assert(isInterface<cpri::AbstractCpriLinkMaintenanceBif, CpriMaintenance>);
    static_assert(isInterface<cpri::AbstractCpriLinkRemoteNodeBif, CpriRemoteNode>);
    static_assert(isInterface<cpri::AbstractCpriLinkVsbControllerBif, CpriVsbController>);
    static_assert(isInterface<router::AbstractRouterDualBitMapBif, RouterDualBitMap>);
    static_assert(isInterface<router::AbstractRouterRouteBif, RouterRoute>);
    static_assert(isInterface<sfp::AbstractSfpBif, Sfp>);
    static_assert(isInterface<systemtimer::AbstractSystemTimerBif, SystemTimer>);
    static_assert(isInterface<swpll::AbstractSwPllStateMonitorBif, SwPllStateMonitor>);
    static_assert(isInterface<phaselock::AbstractPhaseLockStatusMonitorBif, PhaseLockStatusMonitor>);
    static_assert(isInterface<ocxo::AbstractOcxoBif, Ocxo>);
    std::vector<std::unique_ptr<bif::AbstractBaseBif>> all; // held and destroyed as one type
    all.push_back(std::make_unique<RouterDualBitMap>());
    all.push_back(std::make_unique<Sfp>());
    all.push_back(std::make_unique<Ocxo>());
    EXPECT_EQ(all.size(), 3U);
}

} // namespace
