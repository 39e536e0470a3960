// SPDX-License-Identifier: MIT
#include "EventNames.hpp"

#include "Drivers.hpp"

std::vector<std::pair<std::string, std::string>> dorn::test::eventNames()
{
    using Node = cpri::AbstractCpriLinkRemoteNodeBif;
    return {
        {obsai::AbstractObsaiLinkSynchronizerBif::RX_LINK_SYNCHRONIZATION_EVENT_NAME, "RxLinkSynchronizationEvent"},
        {obsai::AbstractObsaiLinkSynchronizerBif::TX_LINK_SYNCHRONIZATION_EVENT_NAME, "TxLinkSynchronizationEvent"},
        {obsai::AbstractObsaiLinkSynchronizerBif::PI_MEASUREMENT_RESULT_EVENT_NAME, "PiMeasurementResultEvent"},
        {cpri::AbstractCpriLinkSynchronizerBif::RX_LINK_SYNCHRONIZATION_EVENT_NAME, "CpriRxLinkSynchronizationEvent"},
        {cpri::AbstractCpriLinkSynchronizerBif::MASTER_FRAME_MEASUREMENT_EVENT_NAME, "CpriMasterFrameMeasurementEvent"},
        {cpri::AbstractCpriLinkMaintenanceBif::LINK_MAINTENANCE_LOS_ACTIVITY_EVENT_NAME, "CpriLinkMaintenanceLosEvent"},
        {cpri::AbstractCpriLinkMaintenanceBif::LINK_MAINTENANCE_LOF_ACTIVITY_EVENT_NAME, "CpriLinkMaintenanceLofEvent"},
        {Node::REMOTE_PROTOCOL_VERSION_CHANGE_EVENT_NAME, "RemoteNodeProtocolVersionEvent"},
        {Node::REMOTE_ETHERNET_SUBCHANNEL_POINTER_CHANGE_EVENT_NAME, "RemoteNodeEthSubchPointerEvent"},
        {Node::REMOTE_RESET_EVENT_NAME, "RemoteNodeResetEvent"},
        {Node::REMOTE_LOS_EVENT_NAME, "RemoteNodeLosEvent"},
        {Node::REMOTE_RAI_EVENT_NAME, "RemoteNodeRaiEvent"},
        {Node::REMOTE_SDI_EVENT_NAME, "RemoteNodeSdiEvent"},
        {Node::REMOTE_LOF_EVENT_NAME, "RemoteNodeLofEvent"},
        {cpri::AbstractCpriLinkVsbControllerBif::CPRI_VSB_BYTES_RECEIVED_EVENT_NAME, "CpriVsbBytesReceivedEvent"},
        {cpri::AbstractCpriLinkVsbControllerBif::CPRI_VSB_BYTES_TRANSMITTED_EVENT_NAME, "CpriVsbBytesTransmittedEvent"},
        {router::AbstractRouterRouteBif::ROUTE_MEAS_READY_EVENT_NAME, "RouteMeasurementReadyEvent"},
        {sfp::AbstractSfpBif::SFP_EVENT_NAME, "SfpEvent"},
        {systemtimer::AbstractSystemTimerBif::SYSTEM_TIMER_SYNCHRONIZATION_EVENT_NAME, "SystemTimerSyncEvent"},
        {swpll::AbstractSwPllStateMonitorBif::SWPLL_STATE_MONITOR_EVENT_NAME, "SwPllStateChangeEvent"},
        {phaselock::AbstractPhaseLockStatusMonitorBif::PHASE_LOCK_STATUS_MONITOR_EVENT_NAME,
         "PhaseLockStatusMonitorEvent"},
        {ocxo::AbstractOcxoBif::OCXO_EVENT_NAME, "OcxoEvent"},
    };
}
