// SPDX-License-Identifier: MIT
// The CPRI drivers tell what their links do.
#include "CallbackTo.hpp"
#include "SimulatedCpriMaintenance.hpp"
#include "SimulatedCpriRemoteNode.hpp"
#include "SimulatedCpriSynchronizer.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common::bif::baseband::cpri;
using testing::ElementsAre;
using testing::IsEmpty;
using vel::hwapi::common::InvalidParameterException;
using vel::hwapi::common::Worker;

const CpriLink cpri0(20, "cpri0");
const CpriLink cpri1(21, "cpri1");
const CpriLink absent(22, "cpri2");

using SyncCallback = CallbackTo<AbstractCpriLinkSynchronizerBif::AbstractLinkSyncCallback, LinkSyncCallbackParam>;
using MaintenanceCallback =
    CallbackTo<AbstractCpriLinkMaintenanceBif::AbstractLinkMaintenanceCallback, LinkMaintenanceCallbackParam>;
using RemoteCallback =
    CallbackTo<AbstractCpriLinkRemoteNodeBif::AbstractLinkRemoteNodeCallback, LinkRemoteNodeCallbackParam>;

/// The worker is not set up: events come at once.
class SimulatedCpriTest : public ::testing::Test {
protected:
    void step()
    {
        m_links.step();
        m_synchronizer.tell();
        m_maintenance.tell();
        m_remote.tell();
    }
    void steps(int count)
    {
        for (int done = 0; done < count; ++done) {
            step();
        }
    }
    RemoteCallback noting(const std::string& what)
    {
        return RemoteCallback([this, what](const LinkRemoteNodeCallbackParam& event) {
            m_heard.push_back(event.getLink()->getLinkHumanName() + " " + what + (event.getActive() ? "" : " over"));
        });
    }

    Worker m_worker;
    CpriLinks m_links;
    SimulatedCpriSynchronizer m_synchronizer{m_links, m_worker};
    SimulatedCpriMaintenance m_maintenance{m_links, m_worker};
    SimulatedCpriRemoteNode m_remote{m_links, m_worker};
    std::vector<LinkSyncCallbackParam> m_rx;
    std::vector<LinkSyncCallbackParam> m_measured;
    std::vector<LinkMaintenanceCallbackParam> m_los;
    std::vector<LinkMaintenanceCallbackParam> m_lof;
    std::vector<std::string> m_heard;
};

TEST_F(SimulatedCpriTest, LinkIsEnabledAndDisabled)
{
    EXPECT_FALSE(m_synchronizer.isLinkEnabled(cpri0));
    m_synchronizer.enableLink(cpri0);
    EXPECT_TRUE(m_synchronizer.isLinkEnabled(cpri0));
    EXPECT_FALSE(m_synchronizer.isLinkEnabled(cpri1));
    steps(4);
    EXPECT_EQ(m_synchronizer.getRxLinkSynchronizationState(cpri0), ERxLinkState_HFNSYNC);
    EXPECT_EQ(m_synchronizer.getRxLinkSynchronizationState(cpri1), ERxLinkState_XACQ1);

    m_synchronizer.disableLink(cpri0);

    step();
    EXPECT_FALSE(m_synchronizer.isLinkEnabled(cpri0));
    EXPECT_EQ(m_synchronizer.getRxLinkSynchronizationState(cpri0), ERxLinkState_XACQ1);
}

TEST_F(SimulatedCpriTest, LinksMoveAtTheSameTime)
{
    m_synchronizer.enableLink(cpri0);
    m_synchronizer.enableLink(cpri1);
    steps(4);

    EXPECT_EQ(m_synchronizer.getRxLinkSynchronizationState(cpri0), ERxLinkState_HFNSYNC);
    EXPECT_EQ(m_synchronizer.getRxLinkSynchronizationState(cpri1), ERxLinkState_HFNSYNC);
}

TEST_F(SimulatedCpriTest, LinkThatTheBoardDoesNotHaveIsRefused)
{
    EXPECT_THROW(m_synchronizer.enableLink(absent), InvalidParameterException);
    EXPECT_THROW(m_maintenance.isLosSendingEnabled(absent), InvalidParameterException);
    EXPECT_THROW(m_remote.getProtocolVersion(absent), InvalidParameterException);
}

TEST_F(SimulatedCpriTest, EachStateIsToldOnceAndTheMasterFrameWhenTheLinkIsUp)
{
    SyncCallback rx([this](const LinkSyncCallbackParam& event) { m_rx.push_back(event); });
    SyncCallback measured([this](const LinkSyncCallbackParam& event) { m_measured.push_back(event); });
    m_synchronizer.setRxLinkSynchronizationCallback(&rx);
    m_synchronizer.setMasterFrameMeasCallback(&measured);

    m_synchronizer.enableLink(cpri0);
    EXPECT_EQ(m_synchronizer.getMasterFrameMeasResult(cpri0), 0);
    steps(6);

    EXPECT_THAT(m_rx, ElementsAre(LinkSyncCallbackParam(ERxLinkState_XACQ2, 0, cpri0),
                                  LinkSyncCallbackParam(ERxLinkState_XSYNC1, 0, cpri0),
                                  LinkSyncCallbackParam(ERxLinkState_XSYNC2, 0, cpri0),
                                  LinkSyncCallbackParam(ERxLinkState_HFNSYNC, 614, cpri0)));
    EXPECT_THAT(m_measured, ElementsAre(LinkSyncCallbackParam(ERxLinkState_HFNSYNC, 614, cpri0)));
    EXPECT_EQ(m_synchronizer.getMasterFrameMeasResult(cpri0), 614);
    EXPECT_EQ(m_rx.back().getLink()->getLinkHumanName(), "cpri0");
}

TEST_F(SimulatedCpriTest, LossesAreToldWhenTheyComeAndWhenTheyGo)
{
    m_synchronizer.enableLink(cpri0);
    steps(4);
    MaintenanceCallback los([this](const LinkMaintenanceCallbackParam& event) { m_los.push_back(event); });
    MaintenanceCallback lof([this](const LinkMaintenanceCallbackParam& event) { m_lof.push_back(event); });
    m_maintenance.setLosEventCallback(&los);
    m_maintenance.setLofEventCallback(&lof);

    m_links.model(cpri0).setBrokenParts(ELinkPart_Receive);
    steps(3);
    EXPECT_THAT(m_los, ElementsAre(LinkMaintenanceCallbackParam(true, cpri0)));
    EXPECT_THAT(m_lof, ElementsAre(LinkMaintenanceCallbackParam(true, cpri0)));

    m_links.model(cpri0).setBrokenParts(0);
    step();
    EXPECT_THAT(m_los,
                ElementsAre(LinkMaintenanceCallbackParam(true, cpri0), LinkMaintenanceCallbackParam(false, cpri0)));
    EXPECT_EQ(m_lof.size(), 1U) << "the frame takes longer";
    step();
    EXPECT_THAT(m_lof,
                ElementsAre(LinkMaintenanceCallbackParam(true, cpri0), LinkMaintenanceCallbackParam(false, cpri0)));
}

TEST_F(SimulatedCpriTest, LossOfFrameComesWithoutLossOfSignal)
{
    m_synchronizer.enableLink(cpri1);
    steps(4);
    MaintenanceCallback los([this](const LinkMaintenanceCallbackParam& event) { m_los.push_back(event); });
    MaintenanceCallback lof([this](const LinkMaintenanceCallbackParam& event) { m_lof.push_back(event); });
    m_maintenance.setLosEventCallback(&los);
    m_maintenance.setLofEventCallback(&lof);

    m_links.model(cpri1).setBrokenParts(ELinkPart_Framing);
    steps(4);

    EXPECT_THAT(m_los, IsEmpty());
    EXPECT_THAT(m_lof, ElementsAre(LinkMaintenanceCallbackParam(true, cpri1)));
}

TEST_F(SimulatedCpriTest, LinkThatIsSwitchedOffHasLostNothing)
{
    MaintenanceCallback los([this](const LinkMaintenanceCallbackParam& event) { m_los.push_back(event); });
    m_maintenance.setLosEventCallback(&los);

    steps(3);

    EXPECT_THAT(m_los, IsEmpty());
}

TEST_F(SimulatedCpriTest, SignalsAreSentOneByOne)
{
    struct Operations {
        void (SimulatedCpriMaintenance::*enable)(const CpriLink&);
        void (SimulatedCpriMaintenance::*disable)(const CpriLink&);
        bool (SimulatedCpriMaintenance::*isEnabled)(const CpriLink&);
        std::uint32_t signal;
    };
    using Driver = SimulatedCpriMaintenance;
    const Operations all[] = {
        {&Driver::enableResetSending, &Driver::disableResetSending, &Driver::isResetSendingEnabled, ECpriSignal_Reset},
        {&Driver::enableLofSending, &Driver::disableLofSending, &Driver::isLofSendingEnabled, ECpriSignal_Lof},
        {&Driver::enableLosSending, &Driver::disableLosSending, &Driver::isLosSendingEnabled, ECpriSignal_Los},
        {&Driver::enableRaiSending, &Driver::disableRaiSending, &Driver::isRaiSendingEnabled, ECpriSignal_Rai},
        {&Driver::enableSdiSending, &Driver::disableSdiSending, &Driver::isSdiSendingEnabled, ECpriSignal_Sdi},
    };

    for (const Operations& one : all) {
        (m_maintenance.*one.enable)(cpri0);
        for (const Operations& other : all) {
            EXPECT_EQ((m_maintenance.*other.isEnabled)(cpri0), one.signal == other.signal);
            EXPECT_EQ(m_links.model(cpri0).isSending(other.signal), one.signal == other.signal);
            EXPECT_FALSE((m_maintenance.*other.isEnabled)(cpri1));
        }
        (m_maintenance.*one.disable)(cpri0);
        EXPECT_FALSE((m_maintenance.*one.isEnabled)(cpri0));
    }
}

TEST_F(SimulatedCpriTest, FarEndTellsItsValuesOnceItIsHeard)
{
    RemoteCallback version = noting("version");
    RemoteCallback pointer = noting("pointer");
    m_remote.setProtocolVersionChangeEventCallback(&version);
    m_remote.setEthernetSubchannelPointerChangeEventCallback(&pointer);
    m_synchronizer.enableLink(cpri0);
    steps(3);
    EXPECT_EQ(m_remote.getProtocolVersion(cpri0), 0U);
    EXPECT_EQ(m_remote.getEthernetSubchannelPointer(cpri0), 0U);
    EXPECT_EQ(m_remote.getHdlcBitRate(cpri0), 0U);
    EXPECT_THAT(m_heard, IsEmpty());

    step();

    EXPECT_EQ(m_remote.getProtocolVersion(cpri0), 1U);
    EXPECT_EQ(m_remote.getEthernetSubchannelPointer(cpri0), 20U);
    EXPECT_EQ(m_remote.getHdlcBitRate(cpri0), 1U);
    EXPECT_THAT(m_heard, ElementsAre("cpri0 version", "cpri0 pointer"));
    m_links.model(cpri0).setBrokenParts(ELinkPart_Receive);
    steps(2);
    m_links.model(cpri0).setBrokenParts(0);
    steps(6);
    EXPECT_EQ(m_heard.size(), 2U) << "they have not changed";
}

TEST_F(SimulatedCpriTest, FarEndTellsWhatItHasLost)
{
    RemoteCallback los = noting("LOS");
    RemoteCallback lof = noting("LOF");
    RemoteCallback rai = noting("RAI");
    m_remote.setLosEventCallback(&los);
    m_remote.setLofEventCallback(&lof);
    m_remote.setRaiEventCallback(&rai);
    m_synchronizer.enableLink(cpri1);
    steps(5);
    m_links.model(cpri1).setBrokenParts(ELinkPart_Transmit);
    steps(3);
    EXPECT_THAT(m_heard, ElementsAre("cpri1 LOS", "cpri1 LOF", "cpri1 RAI"));

    m_heard.clear();
    m_links.model(cpri1).setBrokenParts(0);
    steps(4);

    EXPECT_THAT(m_heard, ElementsAre("cpri1 LOS over", "cpri1 LOF over", "cpri1 RAI over"));
}

TEST_F(SimulatedCpriTest, FarEndAcknowledgesAReset)
{
    RemoteCallback reset = noting("reset");
    RemoteCallback sdi = noting("SDI");
    m_remote.setResetEventCallback(&reset);
    m_remote.setSdiEventCallback(&sdi);
    m_synchronizer.enableLink(cpri0);
    steps(5);

    m_maintenance.enableResetSending(cpri0);
    steps(2);
    EXPECT_THAT(m_heard, ElementsAre("cpri0 reset", "cpri0 SDI"));
    m_maintenance.disableResetSending(cpri0);
    steps(2);

    EXPECT_THAT(m_heard, ElementsAre("cpri0 reset", "cpri0 SDI", "cpri0 reset over", "cpri0 SDI over"));
}

} // namespace
} // namespace dorn::examples
