// SPDX-License-Identifier: MIT
#include "ServiceUnderTest.hpp"

#include "AaStartup.h"
#include "FailNth.hpp"
#include "NodeTest.hpp"
#include "OutputCapture.hpp"
#include "Peer.hpp"
#include "Service.hpp"

#include <gmock/gmock.h>
#include <semaphore>

namespace dorn::testkit {
namespace {

using ::testing::ThrowsMessage;
using vel::hwapi::common::Msg;
using vel::hwapi::common::Service;

struct SNothing {};
using EndReqMsg = Msg<SNothing, 0x1001>;
using FailReqMsg = Msg<SNothing, 0x1002>;
using BlockReqMsg = Msg<SNothing, 0x1003>;

constexpr Bound shortBound(1);
constexpr Bound noBound = std::chrono::hours(24);

class SampleS : public Service {
public:
    SampleS() : Service("Sample", 0x0201, ERadHwapi_GENIO, ERadHwapiState_ClimateState)
    {
        GetArgumentParser().SetArgumentInfo("-x Be exotic");
    }

    void Init() override
    {
        m_isExotic = GetArgumentParser().ReadArgument("x") == "arg on";
        AddMsgHandler(&SampleS::HandleEnd);
        AddMsgHandler(&SampleS::HandleFail);
        AddMsgHandler(&SampleS::HandleBlock);
    }

    void HandleEnd(EndReqMsg) { Terminate(); }
    void HandleFail(FailReqMsg) { throw std::runtime_error("no"); }
    void HandleBlock(BlockReqMsg)
    {
        SetServiceStateRad(7);
        m_goOn.acquire();
        ++m_blocks;
    }

    bool m_isExotic = false;
    int m_blocks = 0;
    std::binary_semaphore m_goOn{0};
};

class ServiceUnderTestTest : public NodeTest {
protected:
    SampleS m_sample;
    Peer m_peer;
};

TEST_F(ServiceUnderTestTest, ServiceRunsUntilItIsAskedToEnd)
{
    ServiceUnderTest service(m_sample);

    EXPECT_TRUE(service.waitUntilReady());
    EXPECT_FALSE(service.hasEnded());
    EXPECT_EQ(service.terminate(), 1U);
    EXPECT_TRUE(service.hasEnded());
    EXPECT_EQ(m_sample.GetServiceStateRad(), 4U);
}

TEST_F(ServiceUnderTestTest, ServiceIsEndedAtTheEnd)
{
    {
        ServiceUnderTest service(m_sample);
        ASSERT_TRUE(service.waitUntilReady());
    }

    EXPECT_EQ(m_sample.GetServiceStateRad(), 4U);
}

TEST_F(ServiceUnderTestTest, ServiceThatHasHardlyBegunCanBeEnded)
{
    EXPECT_EQ(ServiceUnderTest(m_sample).terminate(), 1U);
}

TEST_F(ServiceUnderTestTest, ServiceThatEndsBeforeItCanBeAskedToIsWaitedFor)
{
    const OutputCapture output;

    EXPECT_EQ(ServiceUnderTest(m_sample, {"--help"}).terminate(noBound), 1U);
}

TEST_F(ServiceUnderTestTest, ArgumentsReachTheService)
{
    ServiceUnderTest service(m_sample, {"-x"});

    ASSERT_TRUE(service.waitUntilReady());
    service.terminate();

    EXPECT_TRUE(m_sample.m_isExotic);
}

TEST_F(ServiceUnderTestTest, ProgramIsCalledLikeTheExecutable)
{
    const OutputCapture output;

    ServiceUnderTest(m_sample).terminate();

    EXPECT_EQ(output.standardOutput(), "DornSampleExe: EE Start...\n");
}

TEST_F(ServiceUnderTestTest, ResultOfStartupIsGiven)
{
    const OutputCapture output;
    ServiceUnderTest service(m_sample, {"--unknown"});

    EXPECT_EQ(service.waitForEnd(), 0U);
}

TEST_F(ServiceUnderTestTest, ExceptionOutOfStartupIsGiven)
{
    const OutputCapture output;
    const FailNth<AaStartupEeStartup> failure(1);
    ServiceUnderTest service(m_sample);

    EXPECT_THROW(service.waitForEnd(), Service::InitFailedException);
}

TEST_F(ServiceUnderTestTest, ServiceMayEndByItself)
{
    ServiceUnderTest service(m_sample);
    ASSERT_TRUE(service.waitUntilReady());

    m_peer.send<EndReqMsg>(service.address());

    EXPECT_EQ(service.waitForEnd(), 1U);
    EXPECT_EQ(service.terminate(), 1U);
}

TEST_F(ServiceUnderTestTest, WaitForStateSeesTheEndOfTheService)
{
    ServiceUnderTest service(m_sample);
    ASSERT_TRUE(service.waitUntilReady());

    m_peer.send<FailReqMsg>(service.address());

    EXPECT_TRUE(service.waitForState(5));
    EXPECT_FALSE(service.waitForState(2, noBound)) << "as soon as it has ended";
    EXPECT_EQ(service.waitForEnd(), 0U);
}

TEST_F(ServiceUnderTestTest, WaitForStateIsBounded)
{
    ServiceUnderTest service(m_sample);
    ASSERT_TRUE(service.waitUntilReady());

    EXPECT_FALSE(service.waitForState(7, shortBound));
}

TEST_F(ServiceUnderTestTest, WaitForEndIsBounded)
{
    ServiceUnderTest service(m_sample);

    EXPECT_THAT([&] { service.waitForEnd(shortBound); },
                ThrowsMessage<std::runtime_error>("service 'Sample' still runs"));
}

TEST_F(ServiceUnderTestTest, SyncWaitsUntilEarlierMessagesHaveBeenHandled)
{
    ServiceUnderTest service(m_sample);
    ASSERT_TRUE(service.waitUntilReady());
    m_peer.send<BlockReqMsg>(service.address());
    ASSERT_TRUE(service.waitForState(7));

    EXPECT_THAT([&] { service.sync(shortBound); },
                ThrowsMessage<std::runtime_error>("service 'Sample' does not handle its messages"));
    m_sample.m_goOn.release();
    service.sync();

    EXPECT_EQ(m_sample.m_blocks, 1);
}

TEST_F(ServiceUnderTestTest, SyncLeavesNoTrace)
{
    ServiceUnderTest service(m_sample);
    ASSERT_TRUE(service.waitUntilReady());

    service.sync();

    EXPECT_TRUE(service.waitUntilReady());
    EXPECT_THAT(m_log.texts(), ::testing::IsEmpty());
}

TEST_F(ServiceUnderTestTest, SyncWithAServiceThatDoesNotRunIsAnError)
{
    ServiceUnderTest service(m_sample);
    service.terminate();

    EXPECT_THAT([&] { service.sync(); }, ThrowsMessage<std::runtime_error>("service 'Sample' cannot be reached"));
}

TEST_F(ServiceUnderTestTest, AddressIsKnownBeforeTheServiceIsUp)
{
    const ServiceUnderTest service(m_sample);

    EXPECT_EQ(service.address(), 0x0F010201U);
}

} // namespace
} // namespace dorn::testkit
