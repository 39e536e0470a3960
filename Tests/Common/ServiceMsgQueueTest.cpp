// SPDX-License-Identifier: MIT
// When the service uses its message queue's functions. Those that do nothing on this platform are called all the same:
// another one fills them.
#include "RecordingPlatform.hpp"
#include "ScriptedService.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>

namespace vel::hwapi::common {
namespace {

using dorn::test::RecordingPlatform;
using dorn::test::ScriptedService;
using testing::ElementsAre;
using testing::IsEmpty;

class ServiceMsgQueueTest : public testing::Test {
protected:
    ServiceMsgQueueTest()
    {
        m_platform.whenIdle = [this] { m_platform.wakeUp(); };
        m_service->init = [this] {
            m_platform.note("Init()", "");
            m_service->Terminate();
        };
        m_platform.clearCalls();
    }

    unsigned int start()
    {
        testing::internal::CaptureStdout();
        unsigned int result = 0;
        try {
            result = m_service->start();
        } catch (const Service::InitFailedException&) {
            result = 2;
        }
        testing::internal::GetCapturedStdout();
        return result;
    }

    /// The calls from the one that begins with @p first to the one that begins with @p last.
    std::vector<std::string> calls(const std::string& first, const std::string& last) const
    {
        const auto all = m_platform.calls();
        const auto find = [&all](auto from, const std::string& beginning) {
            return std::find_if(from, all.end(),
                                [&beginning](const std::string& call) { return call.starts_with(beginning); });
        };
        const auto begin = find(all.begin(), first);
        const auto end = find(begin, last);
        return {begin, end == all.end() ? end : end + 1};
    }

    RecordingPlatform m_platform;
    std::unique_ptr<ScriptedService> m_service = std::make_unique<ScriptedService>();
};

TEST_F(ServiceMsgQueueTest, AccessMutexIsCreatedOnceWhenTheDomainsAreRegistered)
{
    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(calls("AaConfigRadRegisterDomain(34", "AaConfigRadSetValue("),
                testing::Contains("hwapiMsgQueueCreateAccessMutex()"));
    EXPECT_EQ(m_platform.calls("hwapiMsgQueueCreateAccessMutex()").size(), 1U);
}

TEST_F(ServiceMsgQueueTest, AccessMutexIsCreatedAlthoughTheFirstDomainFails)
{
    m_platform.setResult("AaConfigRadRegisterDomain", 3);

    EXPECT_EQ(start(), 2U);

    const auto all = m_platform.calls();
    ASSERT_GE(all.size(), 2U);
    EXPECT_EQ(all[all.size() - 2], "Warning 0x0 Dorn, R&D domain register failed 3");
    EXPECT_EQ(all.back(), "hwapiMsgQueueCreateAccessMutex()");
}

TEST_F(ServiceMsgQueueTest, AccessMutexIsCreatedAlthoughTheSecondDomainFails)
{
    m_platform.onCall = [this](const std::string& call) {
        if (call == "AaConfigRadRegisterDomain(34, \"HWAState\")") {
            m_platform.setResult("AaConfigRadRegisterDomain", 2);
        }
    };

    EXPECT_EQ(start(), 2U);

    const auto all = m_platform.calls();
    ASSERT_GE(all.size(), 2U);
    EXPECT_EQ(all[all.size() - 2], "Warning 0x0 HWAState, R&D domain register failed 2");
    EXPECT_EQ(all.back(), "hwapiMsgQueueCreateAccessMutex()");
}

TEST_F(ServiceMsgQueueTest, AccessMutexIsNotCreatedWhenTheEeDoesNotStart)
{
    m_platform.setResult("AaStartupEeStartup", 9);
    EXPECT_EQ(start(), 2U);
    m_platform.setResult("AaConfigEarlyStartup", 9);
    EXPECT_EQ(start(), 2U);

    EXPECT_THAT(m_platform.calls("hwapiMsgQueue"), IsEmpty());
}

TEST_F(ServiceMsgQueueTest, QueueIsInitialisedBetweenTheRegistrationAndInit)
{
    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(calls("AaSysComUserRegister", "Init()"),
                ElementsAre("AaSysComUserRegister(0x456, 7)", "hwapiMsgQueueInit()", "Init()"));
}

TEST_F(ServiceMsgQueueTest, ServiceThatIsNotConnectedDoesNotInitialiseItsQueue)
{
    m_platform.grantCpid = [](TAaSysComCpid) { return TAaSysComCpid{0}; };

    EXPECT_EQ(start(), 0U);

    EXPECT_THAT(m_platform.calls("hwapiMsgQueueInit()"), IsEmpty());
}

TEST_F(ServiceMsgQueueTest, MessagesAreReceivedThroughTheQueue)
{
    m_platform.queueMessage(0xABC);

    m_service->Run();

    EXPECT_THAT(calls("hwapiMsgQueueReceive", "AaSysComMsgReceive"),
                ElementsAre("hwapiMsgQueueReceive(-1)", "AaSysComMsgReceive(-1)"));
}

TEST_F(ServiceMsgQueueTest, ExitDestroysTheQueueAndGivesTheCpidUp)
{
    m_service->Exit();

    EXPECT_THAT(m_platform.calls(), ElementsAre("hwapiMsgQueueDestroy()", "AaSysComUserDeregister(0x456)"));
}

TEST_F(ServiceMsgQueueTest, QueueIsDestroyedWithTheService)
{
    m_service.reset();

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaConfigRadSetValue(0x22000B, 4)", "AaSemReMutexDestroy()",
                                                "hwapiMsgQueueDestroy()", "AaSysComUserDeregister(0x456)"));
}

} // namespace
} // namespace vel::hwapi::common
