// SPDX-License-Identifier: MIT
// What the events of links and clocks tell.
#include "Drivers.hpp"

#include <gmock/gmock.h>

#include <concepts>
#include <functional>
#include <vector>

namespace {

using namespace dorn::test;
using testing::ElementsAre;
using testing::IsEmpty;

/// Expects @p parameter to be equal to its copies, and unequal to a copy after each of @p changes.
template <class Parameter>
void expectEverythingCounts(const Parameter& parameter, const std::vector<std::function<void(Parameter&)>>& changes)
{
    EXPECT_TRUE(parameter == Parameter(parameter));
    Parameter assigned;
    assigned = parameter;
    EXPECT_TRUE(assigned == parameter);
    for (std::size_t number = 0; number < changes.size(); ++number) {
        Parameter changed(parameter);
        changes[number](changed);
        EXPECT_FALSE(changed == parameter) << "change " << number;
        EXPECT_FALSE(parameter == changed) << "change " << number;
    }
}

TEST(CallbackParamTest, ParameterOfObsaiSynchronisationKeepsAndComparesItsFields)
{
    using Param = obsai::LinkSyncCallbackParam;
    const Param empty;
    EXPECT_EQ(empty.getRxLinkSynchronizationState(), obsai::ERxLinkState_Unsync);
    EXPECT_EQ(empty.getTxLinkSynchronizationState(), obsai::ETxLinkState_Off);
    EXPECT_EQ(empty.getPiMeasurementResult(), 0U);
    EXPECT_EQ(*empty.getLink(), AbstractObsaiLink());

    const Param param(obsai::ERxLinkState_Frame, obsai::ETxLinkState_Idle, 7, AbstractObsaiLink(1, 25, "x"));
    EXPECT_EQ(param.getRxLinkSynchronizationState(), obsai::ERxLinkState_Frame);
    EXPECT_EQ(param.getTxLinkSynchronizationState(), obsai::ETxLinkState_Idle);
    EXPECT_EQ(param.getPiMeasurementResult(), 7U);
    EXPECT_EQ(param.getLink()->getLinkHumanName(), "x");
    expectEverythingCounts<Param>(param,
                                  {[](Param& p) { p.setRxLinkSynchronizationState(obsai::ERxLinkState_WaitForAck); },
                                   [](Param& p) { p.setTxLinkSynchronizationState(obsai::ETxLinkState_IdleReq); },
                                   [](Param& p) { p.setPiMeasurementResult(8); },
                                   [](Param& p) { p.setLink(AbstractObsaiLink(1, 26, "x")); }});
    Param sameLink(param);
    sameLink.setLink(AbstractObsaiLink(9, 25, "y")); // links are equal by their unique id
    EXPECT_EQ(sameLink, param);
}

TEST(CallbackParamTest, ParameterOfCpriSynchronisationKeepsAndComparesItsFields)
{
    using Param = cpri::LinkSyncCallbackParam;
    const Param empty;
    EXPECT_EQ(empty.getRxLinkSynchronizationState(), cpri::ERxLinkState_XACQ1);
    EXPECT_EQ(empty.getMasterFrameMeasResult(), 0);
    EXPECT_EQ(*empty.getLink(), CpriLink());

    const Param param(cpri::ERxLinkState_HFNSYNC, -7, CpriLink(1, 25, "x"));
    EXPECT_EQ(param.getRxLinkSynchronizationState(), cpri::ERxLinkState_HFNSYNC);
    EXPECT_EQ(param.getMasterFrameMeasResult(), -7);
    EXPECT_EQ(param.getLink()->getLinkUniqueIdentifier(), 25);
    expectEverythingCounts<Param>(param, {[](Param& p) { p.setRxLinkSynchronizationState(cpri::ERxLinkState_XSYNC2); },
                                          [](Param& p) { p.setMasterFrameMeasResult(7); },
                                          [](Param& p) { p.setLink(CpriLink(2, 25, "x")); }});
}

TEST(CallbackParamTest, ParameterOfCpriMaintenanceKeepsAndComparesItsFields)
{
    using Param = cpri::LinkMaintenanceCallbackParam;
    const Param empty;
    EXPECT_FALSE(empty.getActive());
    EXPECT_EQ(*empty.getLink(), CpriLink());

    const Param param(true, CpriLink(1, 25, "x"));
    EXPECT_TRUE(param.getActive());
    EXPECT_EQ(param.getLink()->getLinkIdentifier(), 1);
    expectEverythingCounts<Param>(
        param, {[](Param& p) { p.setActive(false); }, [](Param& p) { p.setLink(CpriLink(2, 25, "x")); }});
}

TEST(CallbackParamTest, ParameterOfTheCpriRemoteNodeKeepsAndComparesItsFields)
{
    using Param = cpri::LinkRemoteNodeCallbackParam;
    const Param empty;
    EXPECT_EQ(*empty.getLink(), CpriLink());
    EXPECT_FALSE(empty.getActive());
    EXPECT_EQ(empty.getEthernetSubchannelPointer(), 0U);
    EXPECT_EQ(empty.getProtocolVersion(), 0U);

    const Param param(true, CpriLink(1, 25, "x"), 20, 2);
    EXPECT_EQ(param.getLink()->getLinkIdentifier(), 1);
    EXPECT_TRUE(param.getActive());
    EXPECT_EQ(param.getEthernetSubchannelPointer(), 20U);
    EXPECT_EQ(param.getProtocolVersion(), 2U);
    expectEverythingCounts<Param>(
        param, {[](Param& p) { p.setLink(CpriLink(2, 25, "x")); }, [](Param& p) { p.setActive(false); },
                [](Param& p) { p.setEthernetSubchannelPointer(21); }, [](Param& p) { p.setProtocolVersion(1); }});
}

TEST(CallbackParamTest, ParameterOfCpriVendorSpecificBytesKeepsItsFields)
{
    using Param = cpri::VsbCallbackParam;
    const Param empty;
    cpri::VsbDataBytes bytes{1, 2, 3};
    empty.getDataBytes(bytes);
    EXPECT_EQ(empty.getRegionId(), 0U);
    EXPECT_EQ(Param::INVALID_REGION_ID, 0U);
    EXPECT_THAT(bytes, IsEmpty());
    EXPECT_EQ(empty.getLink(), CpriLink());

    Param param(5, {7, 8}, CpriLink(1, 25, "x"));
    EXPECT_EQ(param.getRegionId(), 5U);
    param.getDataBytes(bytes);
    EXPECT_THAT(bytes, ElementsAre(7, 8));
    bytes.clear(); // a copy
    param.getDataBytes(bytes);
    EXPECT_THAT(bytes, ElementsAre(7, 8));
    param.setRegionId(6);
    param.setDataBytes({9});
    param.setLink(CpriLink(2, 26, "y"));
    const Param copy(param);
    EXPECT_EQ(copy.getRegionId(), 6U);
    copy.getDataBytes(bytes);
    EXPECT_THAT(bytes, ElementsAre(9));
    EXPECT_EQ(copy.getLink().getLinkHumanName(), "y");
    static_assert(std::same_as<decltype(copy.getLink()), CpriLink>);
    static_assert(std::same_as<cpri::VsbDataBytes, std::vector<std::uint8_t>>);
    static_assert(!std::equality_comparable<Param>);
}

TEST(CallbackParamTest, ParameterOfRouteStatisticsKeepsAndComparesItsFields)
{
    using Param = router::RouteStatsCallbackParam;
    const Param empty;
    EXPECT_EQ(empty.getRouteId(), 0U);
    EXPECT_EQ(empty.getRouteStats(), router::BifRouteStats());

    router::BifRouteStats stats;
    stats.SetMsgLatency(4);
    const Param param(3, stats);
    EXPECT_EQ(param.getRouteId(), 3U);
    EXPECT_EQ(param.getRouteStats().GetMsgLatency(), 4U);
    expectEverythingCounts<Param>(
        param, {[](Param& p) { p.setRouteId(4); }, [](Param& p) { p.setRouteStats(router::BifRouteStats()); }});
}

TEST(CallbackParamTest, ParameterOfSfpModulesKeepsAndComparesItsFields)
{
    using Param = sfp::SfpCallbackParam;
    const Param empty;
    EXPECT_FALSE(empty.isDetected());
    EXPECT_EQ(empty.getPhysicalLinkId(), 0U);

    const Param param(true, 4);
    EXPECT_TRUE(param.isDetected());
    EXPECT_EQ(param.getPhysicalLinkId(), 4U);
    expectEverythingCounts<Param>(param,
                                  {[](Param& p) { p.setUndetected(); }, [](Param& p) { p.setPhysicalLinkId(5); }});
    Param changed;
    changed.setDetected();
    EXPECT_TRUE(changed.isDetected());
    EXPECT_EQ(sfp::AbstractSfpBif::UNKNOWN_PHYSICAL_LINK_ID, 0xFFU);
    static_assert(std::same_as<sfp::TSfpModuleId, std::uint32_t>);
}

TEST(CallbackParamTest, ParameterOfTheSystemTimerKeepsAndComparesItsFields)
{
    using Param = systemtimer::TimerSyncCallbackParam;
    EXPECT_EQ(Param().getSynchronizationState(), systemtimer::ETimerSyncState_OutOfSync);

    const Param param(systemtimer::ETimerSyncState_InSync);
    EXPECT_EQ(param.getSynchronizationState(), systemtimer::ETimerSyncState_InSync);
    expectEverythingCounts<Param>(
        param, {[](Param& p) { p.setSynchronizationState(systemtimer::ETimerSyncState_Synchronizing); }});
}

void expectSwPll(const swpll::SwPllStateMonitorCallbackParam& param, swpll::ESwPllState state, double phaseError,
                 swpll::EChangedParam changed)
{
    EXPECT_EQ(param.getSwPllState(), state);
    EXPECT_EQ(param.getPhaseError(), phaseError);
    EXPECT_EQ(param.getChangedParam(), changed);
    EXPECT_EQ(param.getClockCalibrationStatus(), swpll::EClockCalibrationStatus_NotStarted);
    EXPECT_EQ(param.getHpfUpdateAllowed(), swpll::ETunerHpfUpdateAllowed_False);
}

TEST(CallbackParamTest, SwPllIsMadeInThreeWays)
{
    using Param = swpll::SwPllStateMonitorCallbackParam;
    expectSwPll(Param(), swpll::ESwPllState_Acquire0, 0, swpll::EChangedParam_SwPllState);
    expectSwPll(Param(swpll::ESwPllState_Holdover, 1.5), swpll::ESwPllState_Holdover, 1.5,
                swpll::EChangedParam_SwPllState);
    expectSwPll(Param(swpll::EChangedParam_HpfUpdateAllowed), swpll::ESwPllState_Acquire0, 0,
                swpll::EChangedParam_HpfUpdateAllowed);
}

TEST(CallbackParamTest, SwPllFieldsAreSetWithoutChangingWhatIsReported)
{
    swpll::SwPllStateMonitorCallbackParam param(swpll::EChangedParam_NotSet);

    param.setSwPllState(swpll::ESwPllState_TrackMax);
    EXPECT_EQ(param.getSwPllState(), swpll::ESwPllState_TrackMax);
    param.setClockCalibrationStatusOngoing();
    EXPECT_EQ(param.getClockCalibrationStatus(), swpll::EClockCalibrationStatus_Ongoing);
    param.setClockCalibrationStatusFinished();
    EXPECT_EQ(param.getClockCalibrationStatus(), swpll::EClockCalibrationStatus_Finished);
    param.setClockCalibrationStatusNotStarted();
    EXPECT_EQ(param.getClockCalibrationStatus(), swpll::EClockCalibrationStatus_NotStarted);
    param.setHpfUpdateAllowed(swpll::ETunerHpfUpdateAllowed_True);
    EXPECT_EQ(param.getHpfUpdateAllowed(), swpll::ETunerHpfUpdateAllowed_True);
    EXPECT_EQ(param.getChangedParam(), swpll::EChangedParam_NotSet);
    EXPECT_EQ(param.getPhaseError(), 0);
}

TEST(CallbackParamTest, SwPllComparesStateErrorAndWhatIsReportedOnly)
{
    using Param = swpll::SwPllStateMonitorCallbackParam;
    const Param param(swpll::ESwPllState_TrackMed, 1.5);
    expectEverythingCounts<Param>(param, {[](Param& p) { p.setSwPllState(swpll::ESwPllState_Holdover); },
                                          [](Param& p) { p = Param(swpll::ESwPllState_TrackMed, 2.5); }});
    Param other(swpll::EChangedParam_ClockCalibrationStatus);
    EXPECT_FALSE(other == Param()); // state and error are the same

    Param same(param);
    same.setClockCalibrationStatusOngoing();
    EXPECT_EQ(same, param);
    same.setHpfUpdateAllowed(swpll::ETunerHpfUpdateAllowed_True);
    EXPECT_EQ(same, param);
}

TEST(CallbackParamTest, ParameterOfPhaseLocksKeepsAndComparesItsFields)
{
    using Param = phaselock::PhaseLockStatusCallbackParam;
    const Param empty;
    EXPECT_EQ(empty.getPhaseLockStatus(), phaselock::EPhaseLockStatus_Undefined);
    EXPECT_EQ(empty.getIdentifier(), "");

    const Param param(phaselock::EPhaseLockStatus_Exceed, "fast");
    EXPECT_EQ(param.getPhaseLockStatus(), phaselock::EPhaseLockStatus_Exceed);
    EXPECT_EQ(param.getIdentifier(), "fast");
    expectEverythingCounts<Param>(param, {[](Param& p) { p.setPhaseLockStatus(phaselock::EPhaseLockStatus_Ok); },
                                          [](Param& p) { p.setIdentifier("slow"); }});
}

/// What is marked as modified.
std::vector<std::string> modifiedIn(const ocxo::OcxoCallbackParam& param)
{
    std::vector<std::string> modified;
    if (param.isSensorsStatusModified()) {
        modified.emplace_back("sensor");
    }
    if (param.isDacSettingStatusModified()) {
        modified.emplace_back("DAC");
    }
    if (param.isCalibrationDataStatusModified()) {
        modified.emplace_back("calibration");
    }
    if (param.isOcxoControlValueModified()) {
        modified.emplace_back("control value");
    }
    return modified;
}

TEST(CallbackParamTest, FreshOcxoParameterHasGoodCalibrationDataAndNothingElse)
{
    const ocxo::OcxoCallbackParam param;

    EXPECT_FALSE(param.isSensorsStatusOk());
    EXPECT_EQ(param.getDacSettingStatus(), 0);
    EXPECT_TRUE(param.isCalibrationDataStatusOk());
    EXPECT_EQ(param.getOcxoControlValue(), 0);
    EXPECT_THAT(modifiedIn(param), IsEmpty());
}

/// Each function is tried on a parameter in which everything is modified by turns, so that flags have to be lowered.
class OcxoSettersTest : public testing::TestWithParam<void (*)(ocxo::OcxoCallbackParam&)> {
protected:
    OcxoSettersTest() { GetParam()(m_param); }
    ocxo::OcxoCallbackParam m_param;
};

INSTANTIATE_TEST_SUITE_P(AfterEachOther, OcxoSettersTest,
                         testing::Values([](ocxo::OcxoCallbackParam& p) { p.setSensorsStatusOk(); },
                                         [](ocxo::OcxoCallbackParam& p) { p.setDacSettingStatusOk(); },
                                         [](ocxo::OcxoCallbackParam& p) { p.setCalibrationDataStatusFailed(); },
                                         [](ocxo::OcxoCallbackParam& p) { p.updateOcxoControlValueToMo(9); }));

TEST_P(OcxoSettersTest, SensorsStatusIsMarkedAlone)
{
    m_param.setSensorsStatusOk();
    EXPECT_TRUE(m_param.isSensorsStatusOk());
    EXPECT_THAT(modifiedIn(m_param), ElementsAre("sensor"));

    m_param.setSensorsStatusNok();
    EXPECT_FALSE(m_param.isSensorsStatusOk());
    EXPECT_THAT(modifiedIn(m_param), ElementsAre("sensor"));
}

TEST_P(OcxoSettersTest, BadSensorsAreMarkedAlone)
{
    m_param.setSensorsStatusNok();
    EXPECT_THAT(modifiedIn(m_param), ElementsAre("sensor"));
}

TEST_P(OcxoSettersTest, GoodDacIsMarkedAlone)
{
    m_param.setDacSettingStatusOk();
    EXPECT_EQ(m_param.getDacSettingStatus(), 1);
    EXPECT_THAT(modifiedIn(m_param), ElementsAre("DAC"));
}

TEST_P(OcxoSettersTest, BadDacIsMarkedAlone)
{
    m_param.setDacSettingStatusNok();
    EXPECT_EQ(m_param.getDacSettingStatus(), 0);
    EXPECT_THAT(modifiedIn(m_param), ElementsAre("DAC"));
}

TEST_P(OcxoSettersTest, DacNearItsLimitIsMarkedAlone)
{
    m_param.setDacSettingStatusNearAdjustmentLimit();
    EXPECT_EQ(m_param.getDacSettingStatus(), 2);
    EXPECT_THAT(modifiedIn(m_param), ElementsAre("DAC"));
}

TEST_P(OcxoSettersTest, GoodCalibrationIsMarkedAlone)
{
    m_param.setCalibrationDataStatusOk();
    EXPECT_TRUE(m_param.isCalibrationDataStatusOk());
    EXPECT_THAT(modifiedIn(m_param), ElementsAre("calibration"));
}

TEST_P(OcxoSettersTest, FailedCalibrationMarksTheSensorsToo)
{
    m_param.setCalibrationDataStatusFailed();
    EXPECT_FALSE(m_param.isCalibrationDataStatusOk());
    EXPECT_THAT(modifiedIn(m_param), ElementsAre("sensor", "calibration"));
}

TEST_P(OcxoSettersTest, ControlValueClearsTheDacsStatusToo)
{
    m_param.updateOcxoControlValueToMo(5);
    EXPECT_EQ(m_param.getOcxoControlValue(), 5);
    EXPECT_EQ(m_param.getDacSettingStatus(), 0);
    EXPECT_THAT(modifiedIn(m_param), ElementsAre("control value"));
}

TEST_P(OcxoSettersTest, OtherValuesStay)
{
    m_param.setSensorsStatusOk();
    m_param.updateOcxoControlValueToMo(-5);
    m_param.setDacSettingStatusNearAdjustmentLimit();
    m_param.setCalibrationDataStatusFailed();

    EXPECT_TRUE(m_param.isSensorsStatusOk());
    EXPECT_EQ(m_param.getOcxoControlValue(), -5);
    EXPECT_EQ(m_param.getDacSettingStatus(), 2);
    EXPECT_FALSE(m_param.isCalibrationDataStatusOk());
}

TEST(CallbackParamTest, OcxoComparesEverything)
{
    using Param = ocxo::OcxoCallbackParam;
    Param param;
    param.updateOcxoControlValueToMo(5);
    expectEverythingCounts<Param>(param, {[](Param& p) { p.updateOcxoControlValueToMo(6); },
                                          [](Param& p) { p.setDacSettingStatusNok(); }, // 0 before and after
                                          [](Param& p) { p.setCalibrationDataStatusOk(); },
                                          [](Param& p) { p.setSensorsStatusNok(); }});
}

} // namespace
