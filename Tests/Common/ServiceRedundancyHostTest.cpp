// SPDX-License-Identifier: MIT
// Redundancy on the host's platform, with the test as the redundancy manager.
#include "ScriptedService.hpp"

#include "AaConfigTag.h"
#include "FailNth.hpp"
#include "ManualClock.hpp"
#include "NodeTest.hpp"
#include "OutputCapture.hpp"
#include "Peer.hpp"
#include "ServiceUnderTest.hpp"

#include <gmock/gmock.h>

#include <chrono>

namespace vel::hwapi::common {
namespace {

using dorn::test::ScriptedDelegate;
using dorn::test::ScriptedService;
using dorn::testkit::FailNth;
using dorn::testkit::ManualClock;
using dorn::testkit::Message;
using dorn::testkit::NodeTest;
using dorn::testkit::OutputCapture;
using dorn::testkit::Peer;
using dorn::testkit::ServiceUnderTest;
using testing::Contains;
using testing::ElementsAre;

using RegisterReqMsg = Service::HwapiRedundancyRegisterReqMsg;
using RegisterRespMsg = Service::HwapiRedundancyRegisterRespMsg;
using StateReqMsg = Service::HwapiRedundancyStateReqMsg;
using StateRespMsg = Service::HwapiRedundancyStateRespMsg;
using IndMsg = Service::ApiRedundancyIndMsg;

class ServiceRedundancyHostTest : public NodeTest {
protected:
    ServiceRedundancyHostTest()
    {
        m_service.SetVerbose(1); // has its lines of information kept
        m_service.init = [this] {
            m_service.AddRedundancyHandler();
            m_service.RegisterRedundancyService(ERedundancyMode_All);
        };
    }

    OutputCapture m_output;
    ScriptedService m_service;
};

TEST_F(ServiceRedundancyHostTest, ServiceRegistersAndRuns)
{
    Peer manager(0x4E4);
    ServiceUnderTest running(m_service);

    const auto request = manager.expect<RegisterReqMsg>();
    EXPECT_EQ(request.payload().size(), 12U);
    EXPECT_EQ(request->transactionId, 0U);
    EXPECT_EQ(request->redundancyMode, ERedundancyMode_All);
    EXPECT_EQ(request->clientAddress, 0U);
    EXPECT_EQ(request.sender(), running.address());
    manager.send<RegisterRespMsg>(request.sender(), {0, ERedundancyMode_All, request.sender(), 0});

    ASSERT_TRUE(running.waitUntilReady());
    EXPECT_THAT(m_log.texts(), Contains("Info 0x20075 Redundancy service registered successfully. "));
}

TEST_F(ServiceRedundancyHostTest, MessagesThatComeMeanwhileAreHandledAfterwardsInTheirOrder)
{
    std::vector<TAaSysComMsgId> handled;
    for (const TAaSysComMsgId id : {TAaSysComMsgId{0x10}, TAaSysComMsgId{0x11}}) {
        m_service.AddMsgDelegate(new ScriptedDelegate(id, [&handled, id](void*) { handled.push_back(id); }));
    }
    Peer manager(0x4E4);
    ServiceUnderTest running(m_service);
    const auto request = manager.expect<RegisterReqMsg>();

    manager.send(0x10, request.sender());
    manager.send(0x11, request.sender());
    manager.send<RegisterRespMsg>(request.sender(), {0, ERedundancyMode_All, 0, 0});
    ASSERT_TRUE(running.waitUntilReady());
    running.sync();

    EXPECT_THAT(handled, ElementsAre(0x10U, 0x11U));
}

TEST_F(ServiceRedundancyHostTest, AnswerIsAwaitedForTenSeconds)
{
    ManualClock clock;
    Peer manager(0x4E4);
    ServiceUnderTest running(m_service);
    manager.expect<RegisterReqMsg>();
    ASSERT_TRUE(clock.waitForSleepers());

    clock.advance(std::chrono::microseconds(9'999'999));
    EXPECT_EQ(m_log.count("Error 0x20075 Timeout waiting for HWAPI_REDUNDANCY_REGISTER_RESP_MSG"), 0U);
    EXPECT_TRUE(clock.nextDeadline());
    clock.advance(std::chrono::microseconds(1));

    ASSERT_TRUE(running.waitUntilReady());
    EXPECT_EQ(m_log.count("Error 0x20075 Timeout waiting for HWAPI_REDUNDANCY_REGISTER_RESP_MSG"), 1U);
}

TEST_F(ServiceRedundancyHostTest, AbsentManagerLeavesTheServiceUnregistered)
{
    ManualClock clock;
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(clock.waitForSleepers());
    clock.advance(std::chrono::seconds(10));

    ASSERT_TRUE(running.waitUntilReady());
    EXPECT_THAT(
        m_log.texts(),
        Contains("Warning 0x0 Message not sent: nobody holds the receiver's cpid (id=0x0FB1 receiver=0x0F0104E4 "
                 "sender=0x0F010456)"));
    EXPECT_THAT(m_log.texts(), Contains("Error 0x20075 Timeout waiting for HWAPI_REDUNDANCY_REGISTER_RESP_MSG"));
    EXPECT_EQ(running.terminate(), 1U);
}

TEST_F(ServiceRedundancyHostTest, RequestToEndWhileTheAnswerIsAwaitedEndsTheService)
{
    Peer manager(0x4E4);
    ServiceUnderTest running(m_service);
    manager.expect<RegisterReqMsg>();

    EXPECT_EQ(running.terminate(), 1U);

    EXPECT_EQ(m_service.GetServiceStateRad(), 4U);
}

TEST_F(ServiceRedundancyHostTest, RefusedRegistrationIsLoggedAndTheServiceRuns)
{
    Peer manager(0x4E4);
    ServiceUnderTest running(m_service);
    const auto request = manager.expect<RegisterReqMsg>();
    manager.send<RegisterRespMsg>(request.sender(), {0, ERedundancyMode_All, 0, 3});

    ASSERT_TRUE(running.waitUntilReady());
    EXPECT_THAT(m_log.texts(), Contains("Error 0x20075 Redundancy service registration failed: status = 3 "));
}

TEST_F(ServiceRedundancyHostTest, ShortRegistrationAnswerIsLoggedAndTheServiceRuns)
{
    Peer manager(0x4E4);
    ServiceUnderTest running(m_service);
    const auto request = manager.expect<RegisterReqMsg>();
    manager.send(4018, request.sender(), "short");

    ASSERT_TRUE(running.waitUntilReady());
    EXPECT_THAT(m_log.texts(), Contains("Error 0x20075 HandleRedundancyStateReqMsg() NULL pointer received. "));
}

/// The service runs; there was nobody to register with.
class RedundancyCommandHostTest : public ServiceRedundancyHostTest {
protected:
    RedundancyCommandHostTest()
    {
        m_service.init = [this] { m_service.AddRedundancyHandler(); };
    }
};

TEST_F(RedundancyCommandHostTest, CommandIsAcknowledgedThenTheStateIsTold)
{
    Peer manager(0x4E4);
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());

    manager.send<StateReqMsg>(running.address(), {42, ERedundancyCommand_PrepareActive});

    const Message acknowledgement = manager.expectAny();
    ASSERT_EQ(acknowledgement.id(), 4020U);
    EXPECT_EQ(acknowledgement.payload().size(), 12U);
    EXPECT_EQ(acknowledgement.sender(), running.address());
    EXPECT_EQ(acknowledgement.as<SHwapiRedundancyStateResp>().transactionId, 42U);
    EXPECT_EQ(acknowledgement.as<SHwapiRedundancyStateResp>().command, ERedundancyCommand_PrepareActive);
    EXPECT_EQ(acknowledgement.as<SHwapiRedundancyStateResp>().status, 0);
    const Message indication = manager.expectAny();
    ASSERT_EQ(indication.id(), 4016U);
    EXPECT_EQ(indication.payload().size(), 8U);
    EXPECT_EQ(indication.sender(), running.address());
    EXPECT_EQ(indication.as<SApiRedundancyInd>().command, ERedundancyCommand_PrepareActive);
    EXPECT_EQ(indication.as<SApiRedundancyInd>().state, ERedundancyState_Ready);
}

TEST_F(RedundancyCommandHostTest, ShortCommandIsLoggedAndTheServiceGoesOn)
{
    Peer manager(0x4E4);
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());

    manager.send(4019, running.address(), "abc");
    manager.send<StateReqMsg>(running.address(), {43, ERedundancyCommand_CardState});

    EXPECT_EQ(manager.expect<StateRespMsg>()->transactionId, 43U);
    EXPECT_THAT(m_log.texts(), Contains("Error 0x20075 HandleRedundancyStateReqMsg() NULL pointer received. "));
}

TEST_F(RedundancyCommandHostTest, ManagerThatHasGoneDoesNotStopTheService)
{
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());
    void* command = AaSysComMsgCreate(4019, 8, running.address());
    ASSERT_NE(command, nullptr);
    AaSysComMsgSendS(&command, 0x0F0104E4);

    running.sync();

    EXPECT_THAT(
        m_log.texts(),
        Contains("Warning 0x0 Message not sent: nobody holds the receiver's cpid (id=0x0FB4 receiver=0x0F0104E4 "
                 "sender=0x0F010456)"));
    EXPECT_EQ(running.terminate(), 1U);
}

TEST_F(RedundancyCommandHostTest, UnregistrationReachesTheManager)
{
    m_service.init = [this] { m_service.UnRegisterRedundancyService(); };
    Peer manager(0x4E4);
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());

    EXPECT_EQ(manager.expect<RegisterReqMsg>()->redundancyMode, ERedundancyMode_None);
}

TEST_F(RedundancyCommandHostTest, ActiveUnitIsToldByTheTag)
{
    EXPECT_FALSE(m_service.isActiveLcp());
    ASSERT_EQ(AaConfigTagSetU32("sys.unit.state.ne-act", 1), EAaConfigTagStatus_Ok);
    EXPECT_TRUE(m_service.isActiveLcp());
    ASSERT_EQ(AaConfigTagSetU16("sys.unit.state.ne-act", 1), EAaConfigTagStatus_Ok);
    EXPECT_FALSE(m_service.isActiveLcp());
    ASSERT_EQ(AaConfigTagSetU32("sys.unit.state.ne-act", 0), EAaConfigTagStatus_Ok);
    EXPECT_FALSE(m_service.isActiveLcp());
}

} // namespace
} // namespace vel::hwapi::common
