// SPDX-License-Identifier: MIT
// The order of virtual functions: what drivers and clients that are built apart rely on.
#include "Drivers.hpp"

#include "Common/ClassLayout.hpp"

#include <gmock/gmock.h>

#include <numeric>
#include <vector>

namespace {

using namespace dorn::test;

/// The call...Callback() of an interface.
template <class Parameter>
using Raise = void(Parameter&);

} // namespace

DORN_EXPOSE(ObsaiRxTag, obsai::AbstractObsaiLinkSynchronizerBif, Raise<obsai::LinkSyncCallbackParam>,
            callRxLinkSynchronizationCallback)
DORN_EXPOSE(ObsaiTxTag, obsai::AbstractObsaiLinkSynchronizerBif, Raise<obsai::LinkSyncCallbackParam>,
            callTxLinkSynchronizationCallback)
DORN_EXPOSE(ObsaiPiTag, obsai::AbstractObsaiLinkSynchronizerBif, Raise<obsai::LinkSyncCallbackParam>,
            callPiMeasurementResultCallback)
DORN_EXPOSE(CpriRxTag, cpri::AbstractCpriLinkSynchronizerBif, Raise<cpri::LinkSyncCallbackParam>,
            callRxLinkSynchronizationCallback)
DORN_EXPOSE(CpriFrameTag, cpri::AbstractCpriLinkSynchronizerBif, Raise<cpri::LinkSyncCallbackParam>,
            callMasterFrameMeasCallback)
DORN_EXPOSE(LosTag, cpri::AbstractCpriLinkMaintenanceBif, Raise<cpri::LinkMaintenanceCallbackParam>,
            callLosEventCallback)
DORN_EXPOSE(LofTag, cpri::AbstractCpriLinkMaintenanceBif, Raise<cpri::LinkMaintenanceCallbackParam>,
            callLofEventCallback)
DORN_EXPOSE(NodeVersionTag, cpri::AbstractCpriLinkRemoteNodeBif, Raise<cpri::LinkRemoteNodeCallbackParam>,
            callProtocolVersionChangeEventCallback)
DORN_EXPOSE(NodePointerTag, cpri::AbstractCpriLinkRemoteNodeBif, Raise<cpri::LinkRemoteNodeCallbackParam>,
            callEthernetSubchannelPointerChangeEventCallback)
DORN_EXPOSE(NodeResetTag, cpri::AbstractCpriLinkRemoteNodeBif, Raise<cpri::LinkRemoteNodeCallbackParam>,
            callResetEventCallback)
DORN_EXPOSE(NodeLosTag, cpri::AbstractCpriLinkRemoteNodeBif, Raise<cpri::LinkRemoteNodeCallbackParam>,
            callLosEventCallback)
DORN_EXPOSE(NodeRaiTag, cpri::AbstractCpriLinkRemoteNodeBif, Raise<cpri::LinkRemoteNodeCallbackParam>,
            callRaiEventCallback)
DORN_EXPOSE(NodeSdiTag, cpri::AbstractCpriLinkRemoteNodeBif, Raise<cpri::LinkRemoteNodeCallbackParam>,
            callSdiEventCallback)
DORN_EXPOSE(NodeLofTag, cpri::AbstractCpriLinkRemoteNodeBif, Raise<cpri::LinkRemoteNodeCallbackParam>,
            callLofEventCallback)
DORN_EXPOSE(VsbReceivedTag, cpri::AbstractCpriLinkVsbControllerBif, Raise<cpri::VsbCallbackParam>,
            callCpriVsbBytesReceivedCallback)
DORN_EXPOSE(VsbTransmittedTag, cpri::AbstractCpriLinkVsbControllerBif, Raise<cpri::VsbCallbackParam>,
            callCpriVsbBytesTransmittedCallback)
DORN_EXPOSE(RouteStatsTag, router::AbstractRouterRouteBif, Raise<router::RouteStatsCallbackParam>,
            callRouteStatsCallback)
DORN_EXPOSE(SfpTag, sfp::AbstractSfpBif, Raise<sfp::SfpCallbackParam>, callSfpCallback)
DORN_EXPOSE(SystemTimerTag, systemtimer::AbstractSystemTimerBif, Raise<systemtimer::TimerSyncCallbackParam>,
            callSystemTimerSynchronizationCallback)
DORN_EXPOSE(SwPllTag, swpll::AbstractSwPllStateMonitorBif, Raise<swpll::SwPllStateMonitorCallbackParam>,
            callSwPllStateChangeCallback)
DORN_EXPOSE(PhaseLockTag, phaselock::AbstractPhaseLockStatusMonitorBif, Raise<phaselock::PhaseLockStatusCallbackParam>,
            callPhaseLockStatusCallback)
DORN_EXPOSE(OcxoTag, ocxo::AbstractOcxoBif, Raise<ocxo::OcxoCallbackParam>, callOcxoCallback)

namespace {

using namespace dorn::test;

constexpr int behindRoot = 2;        // the destructor's two
constexpr int behindAbstractBif = 5; // the same, and the three of AbstractBif

/// Expects the functions one behind the other.
template <class... Functions>
void expectSlots(int first, Functions... functions)
{
    std::vector<int> expected(sizeof...(functions));
    std::iota(expected.begin(), expected.end(), first);
    EXPECT_EQ((std::vector<int>{slotOf(functions)...}), expected);
}

TEST(BifSlotsTest, FunctionsOfTheObsaiLinkConfiguratorKeepTheirOrder)
{
    using Bif = obsai::AbstractObsaiLinkConfiguratorBif;
    expectSlots(behindRoot, &Bif::getObsaiLinks, &Bif::getTimingSets, &Bif::getLinkRate, &Bif::getSupportedLinkRates,
                &Bif::setLinkRate, &Bif::getPhysicalLinkId, &Bif::getLinkRxMaxOffset, &Bif::setLinkTimingSet,
                &Bif::setTimingSetRxPi, &Bif::setTimingSetTxPi, &Bif::getTimingSetRxPi, &Bif::getTimingSetTxPi);
}

TEST(BifSlotsTest, FunctionsOfTheObsaiLinkSynchronizerKeepTheirOrder)
{
    using Bif = obsai::AbstractObsaiLinkSynchronizerBif;
    expectSlots(behindAbstractBif, &Bif::setAutoSynchronizationMode, &Bif::getAutoSynchronizationMode, &Bif::enableLink,
                &Bif::disableLink, &Bif::isLinkEnabled, &Bif::getRxLinkSynchronizationState,
                &Bif::getTxLinkSynchronizationState, &Bif::setRxLinkSynchronizationState,
                &Bif::setTxLinkSynchronizationState, exposed(ObsaiRxTag{}), exposed(ObsaiTxTag{}),
                exposed(ObsaiPiTag{}));
    EXPECT_EQ(slotOf(&Bif::setRxLinkSynchronizationCallback), -1);
    EXPECT_EQ(slotOf(&Bif::setTxLinkSynchronizationCallback), -1);
    EXPECT_EQ(slotOf(&Bif::setPiMeasurementResultCallback), -1);
}

TEST(BifSlotsTest, FunctionsOfTheCpriLinkConfiguratorKeepTheirOrder)
{
    using Bif = cpri::AbstractCpriLinkConfiguratorBif;
    expectSlots(behindRoot, &Bif::getCpriLinks, &Bif::getPhysicalLinkId, &Bif::reserveForCpriUse, &Bif::freeFromCpriUse,
                &Bif::isReservedForCpriUse, &Bif::getLinkRate, &Bif::setLinkRate, &Bif::getSupportedLinkRates,
                &Bif::getProtocolVersion, &Bif::setProtocolVersion, &Bif::getSupportedProtocolVersions,
                &Bif::getTxScramblingSeed, &Bif::setTxScramblingSeed, &Bif::getCompensationFifoLevel,
                &Bif::getCompensationFifoLevelMax, &Bif::getCompensationFifoLevelMin,
                &Bif::getCompensationFifoLevelStepSize, &Bif::setCompensationFifoThreshold,
                &Bif::getCompensationFifoThreshold, &Bif::enableEthernet, &Bif::disableEthernet,
                &Bif::isEthernetEnabled, &Bif::getEthernetSubchannelPointer, &Bif::setEthernetSubchannelPointer,
                &Bif::setTimingSetTxDelta, &Bif::getTimingSetTxDelta);
}

TEST(BifSlotsTest, FunctionsOfTheCpriLinkSynchronizerKeepTheirOrder)
{
    using Bif = cpri::AbstractCpriLinkSynchronizerBif;
    expectSlots(behindAbstractBif, &Bif::enableLink, &Bif::disableLink, &Bif::isLinkEnabled,
                &Bif::getMasterFrameMeasResult, &Bif::getRxLinkSynchronizationState, exposed(CpriRxTag{}),
                exposed(CpriFrameTag{}));
}

TEST(BifSlotsTest, FunctionsOfCpriLinkMaintenanceKeepTheirOrder)
{
    using Bif = cpri::AbstractCpriLinkMaintenanceBif;
    expectSlots(behindAbstractBif, &Bif::enableResetSending, &Bif::disableResetSending, &Bif::isResetSendingEnabled,
                &Bif::enableLofSending, &Bif::disableLofSending, &Bif::isLofSendingEnabled, &Bif::enableLosSending,
                &Bif::disableLosSending, &Bif::isLosSendingEnabled, &Bif::enableRaiSending, &Bif::disableRaiSending,
                &Bif::isRaiSendingEnabled, &Bif::enableSdiSending, &Bif::disableSdiSending, &Bif::isSdiSendingEnabled,
                exposed(LosTag{}), exposed(LofTag{}));
}

TEST(BifSlotsTest, FunctionsOfTheCpriLinkRemoteNodeKeepTheirOrder)
{
    using Bif = cpri::AbstractCpriLinkRemoteNodeBif;
    expectSlots(behindAbstractBif, &Bif::getEthernetSubchannelPointer, &Bif::getHdlcBitRate, &Bif::getProtocolVersion,
                exposed(NodeVersionTag{}), exposed(NodePointerTag{}), exposed(NodeResetTag{}), exposed(NodeLosTag{}),
                exposed(NodeRaiTag{}), exposed(NodeSdiTag{}), exposed(NodeLofTag{}));
}

TEST(BifSlotsTest, FunctionsOfTheCpriLinkVsbControllerKeepTheirOrder)
{
    using Bif = cpri::AbstractCpriLinkVsbControllerBif;
    expectSlots(behindAbstractBif, &Bif::createIngressRegion, &Bif::createEgressRegion, exposed(VsbReceivedTag{}),
                exposed(VsbTransmittedTag{}));
}

TEST(BifSlotsTest, FunctionsOfCpriLinkVsbRegionsKeepTheirOrder)
{
    using Bif = cpri::AbstractCpriLinkVsbRegionBif;
    expectSlots(behindRoot, &Bif::getRegionId, &Bif::getLink, &Bif::setControlWords, &Bif::getControlWords,
                &Bif::enableRegion, &Bif::disableRegion, &Bif::isRegionEnabled);
    EXPECT_EQ(slotOf(&cpri::AbstractCpriLinkVsbIngressRegionBif::readBytes), 9);
    EXPECT_EQ(slotOf(&cpri::AbstractCpriLinkVsbEgressRegionBif::writeBytes), 9);
}

TEST(BifSlotsTest, FunctionsOfTheRoutersDualBitMapKeepTheirOrder)
{
    using Bif = router::AbstractRouterDualBitMapBif;
    using Number = const std::uint32_t&;
    using Text = const std::string&;
    expectSlots(behindRoot, static_cast<std::uint32_t (Bif::*)(Number, Number, Text, Text)>(&Bif::createDualBitMap),
                static_cast<std::uint32_t (Bif::*)()>(&Bif::createDualBitMap), &Bif::deleteDualBitMap,
                &Bif::setVirtualChannels, &Bif::getVirtualChannels, &Bif::setBitMap1Repeat, &Bif::getBitMap1Repeat,
                &Bif::setBitMap1, &Bif::getBitMap1, &Bif::setBitMap2, &Bif::getBitMap2);
}

TEST(BifSlotsTest, FunctionsOfTheRoutersRoutesKeepTheirOrder)
{
    using Bif = router::AbstractRouterRouteBif;
    using Create = std::uint32_t (Bif::*)(const std::string&, const router::EMessageType&, const router::ERouteMode&);
    expectSlots(behindAbstractBif, static_cast<Create>(&Bif::createRoute),
                static_cast<std::uint32_t (Bif::*)()>(&Bif::createRoute), &Bif::deleteRoute, &Bif::enableRoute,
                &Bif::disableRoute, &Bif::isRouteEnabled, &Bif::setRouteAddress, &Bif::getRouteAddress,
                &Bif::setRouteMsgType, &Bif::getRouteMsgType, &Bif::setRouteMode, &Bif::getRouteMode,
                &Bif::addRouteInputLink, &Bif::remRouteInputLink, &Bif::getRouteInputLinks, &Bif::setRouteOutputLink,
                &Bif::getRouteOutputLink, &Bif::setRouteInputAxcMap, &Bif::getRouteInputAxcMap,
                &Bif::setRouteOutputAxcMap, &Bif::getRouteOutputAxcMap, &Bif::setRouteOutputScheduling,
                &Bif::getRouteOutputScheduling, &Bif::triggerBufferFillLevelMeasurement,
                &Bif::triggerMsgLatencyMeasurement, exposed(RouteStatsTag{}));
}

TEST(BifSlotsTest, FunctionsOfSfpModulesKeepTheirOrder)
{
    using Bif = sfp::AbstractSfpBif;
    expectSlots(behindAbstractBif, &Bif::setSfpCallback, &Bif::getPhysicalLinkId, &Bif::getSfpModuleIds,
                exposed(SfpTag{}));
}

TEST(BifSlotsTest, FunctionsOfTheSystemTimerKeepTheirOrder)
{
    using Bif = systemtimer::AbstractSystemTimerBif;
    expectSlots(behindAbstractBif, &Bif::setSystemTimerSourceToRp1, &Bif::setSystemTimerSourceToFreeRunning,
                &Bif::getSystemTimerSynchronizationState, &Bif::synchronizeSystemTimerAgainstSource,
                exposed(SystemTimerTag{}));
    EXPECT_EQ(slotOf(&Bif::setSystemTimerSynchronizationCallback), -1);
}

TEST(BifSlotsTest, FunctionsOfTheSwPllStateMonitorKeepTheirOrder)
{
    using Bif = swpll::AbstractSwPllStateMonitorBif;
    expectSlots(behindAbstractBif, &Bif::swPllStateChanged, &Bif::suspendSwPll, &Bif::resumeSwPll,
                &Bif::isSwPllSuspended, &Bif::setClockCalibrationStatusOngoing, &Bif::setClockCalibrationStatusFinished,
                &Bif::setClockCalibrationStatusNotStarted, &Bif::setHpfUpdateAllowed, exposed(SwPllTag{}));
}

TEST(BifSlotsTest, FunctionsOfThePhaseLockStatusMonitorKeepTheirOrder)
{
    using Bif = phaselock::AbstractPhaseLockStatusMonitorBif;
    using Monitor = Bif::AbstractPhaseLockStatusMonitor;
    expectSlots(behindAbstractBif, &Bif::addPhaseLockStatusMonitor, &Bif::doPhaseLockStatusMonitoring,
                exposed(PhaseLockTag{}));
    EXPECT_EQ(slotOf(&Bif::findPhaseLockStatusMonitor), -1);
    EXPECT_EQ(slotOf(&Monitor::isPhaseLockStatusChanged), 2);
    EXPECT_EQ(slotOf(&Monitor::getIdentifier), -1);
    EXPECT_EQ(slotOf(&Monitor::getStatus), -1);
}

TEST(BifSlotsTest, FunctionsOfTheOcxoKeepTheirOrder)
{
    using Bif = ocxo::AbstractOcxoBif;
    expectSlots(behindAbstractBif, &Bif::setOcxoCallback, &Bif::getSensorsStatus, &Bif::setOcxoControlValue,
                &Bif::getOcxoCalibrationValue, &Bif::sensorsNotAvailable, &Bif::calibrationDataStatusOk,
                &Bif::calibrationDataStatusFailed, &Bif::setOcxoControlValueToMo, &Bif::getThermalCoefficient,
                &Bif::storeCalibrationData, exposed(OcxoTag{}));
}

TEST(BifSlotsTest, CallbacksHaveTheCallBehindTheDestructor)
{
    EXPECT_EQ(slotOf(&sfp::AbstractSfpBif::AbstractSfpCallback::operator()), 2);
    EXPECT_EQ(slotOf(&systemtimer::AbstractSystemTimerBif::AbstractTimerSyncCallback::operator()), 2);
    EXPECT_EQ(slotOf(&ocxo::AbstractOcxoBif::AbstractOcxoCallback::operator()), 2);
}

} // namespace
