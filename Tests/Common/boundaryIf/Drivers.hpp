// SPDX-License-Identifier: MIT
/// @file Drivers.hpp
/// Drivers whose operations are the test's, one for each boundary interface. They let a test raise events.
#pragma once

#include "boundaryIf/baseband/cpri/AbstractCpriLinkConfiguratorBif.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkMaintenanceBif.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkRemoteNodeBif.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkSynchronizerBif.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkVsbControllerBif.hpp"
#include "boundaryIf/baseband/obsai/AbstractObsaiLinkConfiguratorBif.hpp"
#include "boundaryIf/baseband/obsai/AbstractObsaiLinkSynchronizerBif.hpp"
#include "boundaryIf/baseband/router/AbstractRouterDualBitMapBif.hpp"
#include "boundaryIf/baseband/router/AbstractRouterRouteBif.hpp"
#include "boundaryIf/baseband/sfp/AbstractSfpBif.hpp"
#include "boundaryIf/ocxo/AbstractOcxoBif.hpp"
#include "boundaryIf/phaselockstatusmonitor/AbstractPhaseLockStatusMonitorBif.hpp"
#include "boundaryIf/swpllstatemonitor/AbstractSwPllStateMonitorBif.hpp"
#include "boundaryIf/systemtimer/AbstractSystemTimerBif.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace dorn::test {

using vel::hwapi::common::AbstractWorker;
namespace bif = vel::hwapi::common::bif;
namespace obsai = bif::baseband::obsai;
namespace cpri = bif::baseband::cpri;
namespace router = bif::baseband::router;
namespace sfp = bif::baseband::sfp;
namespace systemtimer = bif::systemtimer;
namespace swpll = bif::swpllstatemonitor;
namespace phaselock = bif::phaselockstatusmonitor;
namespace ocxo = vel::hwapi::clocks::bif::ocxo;

using bif::baseband::AbstractBasebandLink;
using cpri::CpriLink;
using obsai::AbstractObsaiLink;
using obsai::ObsaiTimingSet;

// Reaches the constructors, which are a driver's, and the raising of events.
#define DORN_DRIVER(Driver, Interface)                                                                                 \
    Driver() = default;                                                                                                \
    explicit Driver(AbstractWorker& worker) : Interface(worker) {}

class ObsaiConfigurator : public obsai::AbstractObsaiLinkConfiguratorBif {
public:
    DORN_DRIVER(ObsaiConfigurator, AbstractObsaiLinkConfiguratorBif)
    MOCK_METHOD(void, getObsaiLinks, (obsai::EObsaiLinkType, std::vector<AbstractObsaiLink*>&), (override));
    MOCK_METHOD(void, getTimingSets, (std::vector<ObsaiTimingSet*>&), (override));
    MOCK_METHOD(obsai::EObsaiLinkRate, getLinkRate, (const AbstractObsaiLink&), (override));
    MOCK_METHOD(void, getSupportedLinkRates, (const AbstractObsaiLink&, std::vector<obsai::EObsaiLinkRate>&),
                (override));
    MOCK_METHOD(void, setLinkRate, (const AbstractObsaiLink&, obsai::EObsaiLinkRate), (override));
    MOCK_METHOD(std::uint32_t, getPhysicalLinkId, (const AbstractObsaiLink&), (override));
    MOCK_METHOD(std::int32_t, getLinkRxMaxOffset, (const AbstractObsaiLink&), (override));
    MOCK_METHOD(void, setLinkTimingSet, (const AbstractObsaiLink&, const ObsaiTimingSet&), (override));
    MOCK_METHOD(void, setTimingSetRxPi, (const ObsaiTimingSet&, std::int32_t), (override));
    MOCK_METHOD(void, setTimingSetTxPi, (const ObsaiTimingSet&, std::int32_t), (override));
    MOCK_METHOD(std::int32_t, getTimingSetRxPi, (const ObsaiTimingSet&), (override));
    MOCK_METHOD(std::int32_t, getTimingSetTxPi, (const ObsaiTimingSet&), (override));
};

class ObsaiSynchronizer : public obsai::AbstractObsaiLinkSynchronizerBif {
public:
    DORN_DRIVER(ObsaiSynchronizer, AbstractObsaiLinkSynchronizerBif)
    MOCK_METHOD(void, setAutoSynchronizationMode, (const AbstractObsaiLink&, obsai::ELinkAutoSynchronizationMode),
                (override));
    MOCK_METHOD(obsai::ELinkAutoSynchronizationMode, getAutoSynchronizationMode, (const AbstractObsaiLink&),
                (override));
    MOCK_METHOD(void, enableLink, (const AbstractObsaiLink&), (override));
    MOCK_METHOD(void, disableLink, (const AbstractObsaiLink&), (override));
    MOCK_METHOD(bool, isLinkEnabled, (const AbstractObsaiLink&), (override));
    MOCK_METHOD(obsai::ERxLinkState, getRxLinkSynchronizationState, (const AbstractObsaiLink&), (override));
    MOCK_METHOD(obsai::ETxLinkState, getTxLinkSynchronizationState, (const AbstractObsaiLink&), (override));
    MOCK_METHOD(void, setRxLinkSynchronizationState, (const AbstractObsaiLink&, obsai::ERxLinkState), (override));
    MOCK_METHOD(void, setTxLinkSynchronizationState, (const AbstractObsaiLink&, obsai::ETxLinkState), (override));
    using AbstractBif::callCallback;
    using AbstractObsaiLinkSynchronizerBif::callPiMeasurementResultCallback;
    using AbstractObsaiLinkSynchronizerBif::callRxLinkSynchronizationCallback;
    using AbstractObsaiLinkSynchronizerBif::callTxLinkSynchronizationCallback;
};

class CpriConfigurator : public cpri::AbstractCpriLinkConfiguratorBif {
public:
    DORN_DRIVER(CpriConfigurator, AbstractCpriLinkConfiguratorBif)
    MOCK_METHOD(void, getCpriLinks, (std::vector<CpriLink*>&), (override));
    MOCK_METHOD(std::uint32_t, getPhysicalLinkId, (const CpriLink&), (override));
    MOCK_METHOD(void, reserveForCpriUse, (const CpriLink&), (override));
    MOCK_METHOD(void, freeFromCpriUse, (const CpriLink&), (override));
    MOCK_METHOD(bool, isReservedForCpriUse, (const CpriLink&), (override));
    MOCK_METHOD(cpri::ECpriLinkRate, getLinkRate, (const CpriLink&), (override));
    MOCK_METHOD(void, setLinkRate, (const CpriLink&, cpri::ECpriLinkRate), (override));
    MOCK_METHOD(void, getSupportedLinkRates, (const CpriLink&, std::vector<cpri::ECpriLinkRate>&), (override));
    MOCK_METHOD(cpri::ECpriProtocolVersion, getProtocolVersion, (const CpriLink&), (override));
    MOCK_METHOD(void, setProtocolVersion, (const CpriLink&, cpri::ECpriProtocolVersion), (override));
    MOCK_METHOD(void, getSupportedProtocolVersions, (const CpriLink&, std::vector<cpri::ECpriProtocolVersion>&),
                (override));
    MOCK_METHOD(std::uint32_t, getTxScramblingSeed, (const CpriLink&), (override));
    MOCK_METHOD(void, setTxScramblingSeed, (const CpriLink&, std::uint32_t), (override));
    MOCK_METHOD(std::uint32_t, getCompensationFifoLevel, (const CpriLink&), (override));
    MOCK_METHOD(std::uint32_t, getCompensationFifoLevelMax, (const CpriLink&), (override));
    MOCK_METHOD(std::uint32_t, getCompensationFifoLevelMin, (const CpriLink&), (override));
    MOCK_METHOD(std::uint32_t, getCompensationFifoLevelStepSize, (const CpriLink&), (override));
    MOCK_METHOD(void, setCompensationFifoThreshold, (const CpriLink&, std::uint32_t), (override));
    MOCK_METHOD(std::uint32_t, getCompensationFifoThreshold, (const CpriLink&), (override));
    MOCK_METHOD(void, enableEthernet, (const CpriLink&), (override));
    MOCK_METHOD(void, disableEthernet, (const CpriLink&), (override));
    MOCK_METHOD(bool, isEthernetEnabled, (const CpriLink&), (override));
    MOCK_METHOD(std::uint32_t, getEthernetSubchannelPointer, (const CpriLink&), (override));
    MOCK_METHOD(void, setEthernetSubchannelPointer, (const CpriLink&, std::uint32_t), (override));
    MOCK_METHOD(void, setTimingSetTxDelta, (const CpriLink&, std::uint32_t), (override));
    MOCK_METHOD(std::uint32_t, getTimingSetTxDelta, (const CpriLink&), (override));
};

class CpriSynchronizer : public cpri::AbstractCpriLinkSynchronizerBif {
public:
    DORN_DRIVER(CpriSynchronizer, AbstractCpriLinkSynchronizerBif)
    MOCK_METHOD(void, enableLink, (const CpriLink&), (override));
    MOCK_METHOD(void, disableLink, (const CpriLink&), (override));
    MOCK_METHOD(bool, isLinkEnabled, (const CpriLink&), (override));
    MOCK_METHOD(std::int32_t, getMasterFrameMeasResult, (const CpriLink&), (override));
    MOCK_METHOD(cpri::ERxLinkState, getRxLinkSynchronizationState, (const CpriLink&), (override));
    using AbstractBif::callCallback;
    using AbstractCpriLinkSynchronizerBif::callMasterFrameMeasCallback;
    using AbstractCpriLinkSynchronizerBif::callRxLinkSynchronizationCallback;
};

class CpriMaintenance : public cpri::AbstractCpriLinkMaintenanceBif {
public:
    DORN_DRIVER(CpriMaintenance, AbstractCpriLinkMaintenanceBif)
    MOCK_METHOD(void, enableResetSending, (const CpriLink&), (override));
    MOCK_METHOD(void, disableResetSending, (const CpriLink&), (override));
    MOCK_METHOD(bool, isResetSendingEnabled, (const CpriLink&), (override));
    MOCK_METHOD(void, enableLofSending, (const CpriLink&), (override));
    MOCK_METHOD(void, disableLofSending, (const CpriLink&), (override));
    MOCK_METHOD(bool, isLofSendingEnabled, (const CpriLink&), (override));
    MOCK_METHOD(void, enableLosSending, (const CpriLink&), (override));
    MOCK_METHOD(void, disableLosSending, (const CpriLink&), (override));
    MOCK_METHOD(bool, isLosSendingEnabled, (const CpriLink&), (override));
    MOCK_METHOD(void, enableRaiSending, (const CpriLink&), (override));
    MOCK_METHOD(void, disableRaiSending, (const CpriLink&), (override));
    MOCK_METHOD(bool, isRaiSendingEnabled, (const CpriLink&), (override));
    MOCK_METHOD(void, enableSdiSending, (const CpriLink&), (override));
    MOCK_METHOD(void, disableSdiSending, (const CpriLink&), (override));
    MOCK_METHOD(bool, isSdiSendingEnabled, (const CpriLink&), (override));
    using AbstractBif::callCallback;
    using AbstractCpriLinkMaintenanceBif::callLofEventCallback;
    using AbstractCpriLinkMaintenanceBif::callLosEventCallback;
};

class CpriRemoteNode : public cpri::AbstractCpriLinkRemoteNodeBif {
public:
    DORN_DRIVER(CpriRemoteNode, AbstractCpriLinkRemoteNodeBif)
    MOCK_METHOD(std::uint32_t, getEthernetSubchannelPointer, (const CpriLink&), (override));
    MOCK_METHOD(std::uint32_t, getHdlcBitRate, (const CpriLink&), (override));
    MOCK_METHOD(std::uint32_t, getProtocolVersion, (const CpriLink&), (override));
    using AbstractBif::callCallback;
    using AbstractCpriLinkRemoteNodeBif::callEthernetSubchannelPointerChangeEventCallback;
    using AbstractCpriLinkRemoteNodeBif::callLofEventCallback;
    using AbstractCpriLinkRemoteNodeBif::callLosEventCallback;
    using AbstractCpriLinkRemoteNodeBif::callProtocolVersionChangeEventCallback;
    using AbstractCpriLinkRemoteNodeBif::callRaiEventCallback;
    using AbstractCpriLinkRemoteNodeBif::callResetEventCallback;
    using AbstractCpriLinkRemoteNodeBif::callSdiEventCallback;
};

class CpriVsbController : public cpri::AbstractCpriLinkVsbControllerBif {
public:
    DORN_DRIVER(CpriVsbController, AbstractCpriLinkVsbControllerBif)
    MOCK_METHOD(cpri::AbstractCpriLinkVsbIngressRegionBif*, createIngressRegion, (const CpriLink&), (override));
    MOCK_METHOD(cpri::AbstractCpriLinkVsbEgressRegionBif*, createEgressRegion, (const CpriLink&), (override));
    using AbstractBif::callCallback;
    using AbstractCpriLinkVsbControllerBif::callCpriVsbBytesReceivedCallback;
    using AbstractCpriLinkVsbControllerBif::callCpriVsbBytesTransmittedCallback;
};

class RouterDualBitMap : public router::AbstractRouterDualBitMapBif {
public:
    DORN_DRIVER(RouterDualBitMap, AbstractRouterDualBitMapBif)
    MOCK_METHOD(std::uint32_t, createDualBitMap,
                (const std::uint32_t&, const std::uint32_t&, const std::string&, const std::string&), (override));
    MOCK_METHOD(std::uint32_t, createDualBitMap, (), (override));
    MOCK_METHOD(void, deleteDualBitMap, (std::uint32_t), (override));
    MOCK_METHOD(void, setVirtualChannels, (std::uint32_t, const std::uint32_t&), (override));
    MOCK_METHOD(std::uint32_t, getVirtualChannels, (std::uint32_t), (override));
    MOCK_METHOD(void, setBitMap1Repeat, (std::uint32_t, const std::uint32_t&), (override));
    MOCK_METHOD(std::uint32_t, getBitMap1Repeat, (std::uint32_t), (override));
    MOCK_METHOD(void, setBitMap1, (std::uint32_t, const std::string&), (override));
    MOCK_METHOD(void, getBitMap1, (std::uint32_t, std::string&), (override));
    MOCK_METHOD(void, setBitMap2, (std::uint32_t, const std::string&), (override));
    MOCK_METHOD(void, getBitMap2, (std::uint32_t, std::string&), (override));
};

class RouterRoute : public router::AbstractRouterRouteBif {
public:
    DORN_DRIVER(RouterRoute, AbstractRouterRouteBif)
    using Link = const AbstractBasebandLink*;
    MOCK_METHOD(std::uint32_t, createRoute,
                (const std::string&, const router::EMessageType&, const router::ERouteMode&), (override));
    MOCK_METHOD(std::uint32_t, createRoute, (), (override));
    MOCK_METHOD(void, deleteRoute, (std::uint32_t), (override));
    MOCK_METHOD(void, enableRoute, (std::uint32_t), (override));
    MOCK_METHOD(void, disableRoute, (std::uint32_t), (override));
    MOCK_METHOD(bool, isRouteEnabled, (std::uint32_t), (override));
    MOCK_METHOD(void, setRouteAddress, (std::uint32_t, const std::string&), (override));
    MOCK_METHOD(void, getRouteAddress, (std::uint32_t, std::string&), (override));
    MOCK_METHOD(void, setRouteMsgType, (std::uint32_t, const router::EMessageType&), (override));
    MOCK_METHOD(router::EMessageType, getRouteMsgType, (std::uint32_t), (override));
    MOCK_METHOD(void, setRouteMode, (std::uint32_t, const router::ERouteMode&), (override));
    MOCK_METHOD(router::ERouteMode, getRouteMode, (std::uint32_t), (override));
    MOCK_METHOD(void, addRouteInputLink, (std::uint32_t, Link, router::AxcMapBif*), (override));
    MOCK_METHOD(void, remRouteInputLink, (std::uint32_t, Link), (override));
    MOCK_METHOD(void, getRouteInputLinks, (std::uint32_t, std::vector<Link>&), (override));
    MOCK_METHOD(void, setRouteOutputLink, (std::uint32_t, Link, router::AxcMapBif*), (override));
    MOCK_METHOD(Link, getRouteOutputLink, (std::uint32_t), (override));
    MOCK_METHOD(void, setRouteInputAxcMap, (std::uint32_t, Link, const router::AxcMapBif&), (override));
    MOCK_METHOD(void, getRouteInputAxcMap, (std::uint32_t, Link, router::AxcMapBif&), (override));
    MOCK_METHOD(void, setRouteOutputAxcMap, (std::uint32_t, const router::AxcMapBif&), (override));
    MOCK_METHOD(void, getRouteOutputAxcMap, (std::uint32_t, router::AxcMapBif&), (override));
    MOCK_METHOD(void, setRouteOutputScheduling, (std::uint32_t, const router::SchedulingBif&), (override));
    MOCK_METHOD(void, getRouteOutputScheduling, (std::uint32_t, router::SchedulingBif&), (override));
    MOCK_METHOD(void, triggerBufferFillLevelMeasurement, (std::uint32_t), (override));
    MOCK_METHOD(void, triggerMsgLatencyMeasurement, (std::uint32_t, Link), (override));
    using AbstractBif::callCallback;
    using AbstractRouterRouteBif::callRouteStatsCallback;
};

class Sfp : public sfp::AbstractSfpBif {
public:
    DORN_DRIVER(Sfp, AbstractSfpBif)
    MOCK_METHOD(std::uint32_t, getPhysicalLinkId, (sfp::TSfpModuleId), (override));
    MOCK_METHOD(void, getSfpModuleIds, (std::vector<std::uint32_t>&), (override));
    using AbstractBif::callCallback;
    using AbstractSfpBif::callSfpCallback;
};

class SystemTimer : public systemtimer::AbstractSystemTimerBif {
public:
    DORN_DRIVER(SystemTimer, AbstractSystemTimerBif)
    MOCK_METHOD(void, setSystemTimerSourceToRp1, (), (override));
    MOCK_METHOD(void, setSystemTimerSourceToFreeRunning, (), (override));
    MOCK_METHOD(systemtimer::ETimerSyncState, getSystemTimerSynchronizationState, (), (override));
    MOCK_METHOD(void, synchronizeSystemTimerAgainstSource, (), (override));
    using AbstractBif::callCallback;
    using AbstractSystemTimerBif::callSystemTimerSynchronizationCallback;
};

class SwPllStateMonitor : public swpll::AbstractSwPllStateMonitorBif {
public:
    DORN_DRIVER(SwPllStateMonitor, AbstractSwPllStateMonitorBif)
    MOCK_METHOD(void, swPllStateChanged, (swpll::ESwPllState, double), (override));
    MOCK_METHOD(void, suspendSwPll, (), (override));
    MOCK_METHOD(void, resumeSwPll, (), (override));
    MOCK_METHOD(bool, isSwPllSuspended, (), (override));
    MOCK_METHOD(void, setClockCalibrationStatusOngoing, (), (override));
    MOCK_METHOD(void, setClockCalibrationStatusFinished, (), (override));
    MOCK_METHOD(void, setClockCalibrationStatusNotStarted, (), (override));
    MOCK_METHOD(void, setHpfUpdateAllowed, (swpll::ETunerHpfUpdateAllowed), (override));
    using AbstractBif::callCallback;
    using AbstractSwPllStateMonitorBif::callSwPllStateChangeCallback;
};

class PhaseLockStatusMonitor : public phaselock::AbstractPhaseLockStatusMonitorBif {
public:
    DORN_DRIVER(PhaseLockStatusMonitor, AbstractPhaseLockStatusMonitorBif)
    void addPhaseLockStatusMonitor(AbstractPhaseLockStatusMonitor* monitor) override
    {
        m_phaseLockStatusMonitors.push_back(monitor);
    }
    MOCK_METHOD(void, doPhaseLockStatusMonitoring, (double, std::uint64_t), (override));
    using AbstractBif::callCallback;
    using AbstractPhaseLockStatusMonitorBif::callPhaseLockStatusCallback;
};

class Ocxo : public ocxo::AbstractOcxoBif {
public:
    DORN_DRIVER(Ocxo, AbstractOcxoBif)
    MOCK_METHOD(bool, getSensorsStatus, (ocxo::ESensorType, ocxo::SClkOcxoStatuses*), (override));
    MOCK_METHOD(bool, setOcxoControlValue, (std::int32_t), (override));
    MOCK_METHOD(bool, getOcxoCalibrationValue,
                (std::int32_t&, std::int32_t&, std::int32_t&, ocxo::ECalibrationValueSource&), (override));
    MOCK_METHOD(void, sensorsNotAvailable, (), (override));
    MOCK_METHOD(void, calibrationDataStatusOk, (), (override));
    MOCK_METHOD(void, calibrationDataStatusFailed, (), (override));
    MOCK_METHOD(void, setOcxoControlValueToMo, (std::int32_t), (override));
    MOCK_METHOD(bool, getThermalCoefficient, (double&, double&, double&, double&), (override));
    MOCK_METHOD(bool, storeCalibrationData, (int, std::string, std::uint16_t&, std::uint8_t&, std::uint8_t&),
                (override));
    using AbstractBif::callCallback;
    using AbstractOcxoBif::callOcxoCallback;
};

#undef DORN_DRIVER

} // namespace dorn::test
