// SPDX-License-Identifier: MIT
#include "RecordingPlatform.hpp"
#include "Sanitizers.hpp"
#include "ScriptedService.hpp"

#include <gmock/gmock.h>

#include <atomic>
#include <pthread.h>
#include <stdexcept>
#include <thread>

namespace vel::hwapi::common {
namespace {

using dorn::test::RecordingPlatform;
using dorn::test::ScriptedDelegate;
using dorn::test::ScriptedService;

using testing::ElementsAre;
using testing::IsEmpty;

class ServiceMainLoopTest : public testing::Test {
protected:
    /// Startup() with what it prints taken away.
    unsigned int start()
    {
        testing::internal::CaptureStdout();
        const unsigned int result = m_service.start();
        testing::internal::GetCapturedStdout();
        return result;
    }

    void addDelegate(unsigned int msgId, std::function<void(void*)> handle)
    {
        m_service.AddMsgDelegate(new ScriptedDelegate(msgId, std::move(handle)));
    }

    /// The calls from the first that begins so.
    std::vector<std::string> callsFrom(const std::string& beginning) const
    {
        const auto calls = m_platform.calls();
        const auto isIt = [&](const std::string& call) { return call.starts_with(beginning); };
        return {std::find_if(calls.begin(), calls.end(), isIt), calls.end()};
    }

    RecordingPlatform m_platform;
    ScriptedService m_service;
};

TEST_F(ServiceMainLoopTest, MessageGoesToItsDelegateAndIsDestroyed)
{
    std::vector<std::string> order;
    addDelegate(0x1234, [&](void* message) {
        EXPECT_EQ(AaSysComMsgGetId(message), 0x1234U);
        order = m_platform.calls();
    });
    m_platform.queueMessage(0x1234);
    m_platform.clearCalls();

    EXPECT_EQ(m_service.Run(), 1U);

    EXPECT_THAT(order, ElementsAre("AaSysComMsgReceive(-1)", "AaConfigRadSetValue(0x22000B, 3)"));
    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSysComMsgReceive(-1)", "AaConfigRadSetValue(0x22000B, 3)", "AaSysComMsgDestroy(4660)"));
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceMainLoopTest, UnknownMessageIsLoggedAndDestroyed)
{
    m_platform.queueMessage(0xABC, "payload", 0x0F0100FE, 0x00010456);
    m_platform.clearCalls();

    EXPECT_EQ(m_service.Run(), 1U);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSysComMsgReceive(-1)",
                            "Error 0x20075 Unknown message received: id=0x0ABC receiver=0x00010456 sender=0x0F0100FE",
                            "AaSysComMsgDestroy(2748)"));
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceMainLoopTest, NoMessageIsNothingToDispatch)
{
    m_platform.wakeUp();
    m_platform.clearCalls();

    EXPECT_EQ(m_service.Run(), 1U);

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComMsgReceive(-1)"));
}

TEST_F(ServiceMainLoopTest, RunReturnsZeroAfterTerminate)
{
    m_service.Terminate();
    m_platform.wakeUp();

    EXPECT_EQ(m_service.Run(), 0U);
}

TEST_F(ServiceMainLoopTest, RunReturnsZeroWhenTheDelegateTerminates)
{
    addDelegate(0x1234, [&](void*) { m_service.Terminate(); });
    m_platform.queueMessage(0x1234);

    EXPECT_EQ(m_service.Run(), 0U);
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceMainLoopTest, TerminateAloneDoesNotCutTheWaitingShort)
{
    bool waited = false;
    m_platform.whenIdle = [&] {
        waited = true;
        m_platform.queueMessage(0xABC);
    };
    m_service.Terminate();

    EXPECT_EQ(m_service.Run(), 0U);
    EXPECT_TRUE(waited);
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceMainLoopTest, StandardExceptionOfADelegateIsLoggedAndBecomesARuntimeException)
{
    addDelegate(0x12, [](void*) { throw std::out_of_range("too far"); });
    m_platform.queueMessage(0x12);
    m_platform.clearCalls();

    try {
        m_service.Run();
        FAIL() << "nothing thrown";
    } catch (const Service::RuntimeException& exception) {
        EXPECT_STREQ(exception.what(), "Runtime error");
        EXPECT_EQ(exception.getDescription(), "std::exception in Run()");
        EXPECT_EQ(exception.getFile(), "Common/src/ServiceMainLoop.cpp");
        EXPECT_GT(exception.getLine(), 0);
    }
    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSysComMsgReceive(-1)", "AaConfigRadSetValue(0x22000B, 3)",
                            "Error 0x20075 Message handling failed 0x  12", "AaSysComMsgDestroy(18)"));
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceMainLoopTest, InitFailedExceptionOfADelegateIsAnExceptionLikeOthers)
{
    addDelegate(0x1234, [](void*) { throw Service::InitFailedException("late", "Late.cpp", 3); });
    m_platform.queueMessage(0x1234);

    EXPECT_THROW(m_service.Run(), Service::RuntimeException);
    EXPECT_THAT(m_platform.calls("Error"), ElementsAre("Error 0x20075 Message handling failed 0x1234"));
}

TEST_F(ServiceMainLoopTest, RuntimeExceptionOfADelegateComesThroughAsACopy)
{
    class OutOfOrder : public Service::RuntimeException {
    public:
        OutOfOrder() : RuntimeException("out of order", "Port.cpp", 77) {}
    };
    addDelegate(0x1234, [](void*) { throw OutOfOrder(); });
    m_platform.queueMessage(0x1234);

    try {
        m_service.Run();
        FAIL() << "nothing thrown";
    } catch (const Service::RuntimeException& exception) {
        EXPECT_EQ(dynamic_cast<const OutOfOrder*>(&exception), nullptr);
        EXPECT_EQ(exception.getDescription(), "out of order");
        EXPECT_EQ(exception.getFile(), "Port.cpp");
        EXPECT_EQ(exception.getLine(), 77);
    }
    EXPECT_THAT(m_platform.calls("Error"), IsEmpty());
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceMainLoopTest, OtherExceptionOfADelegatePassesThrough)
{
    addDelegate(0x1234, [](void*) { throw std::string("neither"); });
    m_platform.queueMessage(0x1234);

    EXPECT_THROW(m_service.Run(), std::string);
    EXPECT_THAT(m_platform.calls("Error"), IsEmpty());
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceMainLoopTest, ExceptionOfADelegateEndsTheServiceWithStateFive)
{
    addDelegate(0x1234, [](void*) { throw std::runtime_error("broken"); });
    m_platform.queueMessage(0x1234);

    EXPECT_EQ(start(), 0U);

    const auto calls = callsFrom("AaConfigRadSetValue(0x22000B, 3)");
    ASSERT_EQ(calls.size(), 7U);
    EXPECT_EQ(calls[1], "Error 0x20075 Message handling failed 0x1234");
    EXPECT_EQ(calls[2], "AaSysComMsgDestroy(4660)");
    EXPECT_THAT(calls[3], testing::MatchesRegex("Error 0x20075 Runtime error : std::exception in Run\\(\\) \\(file: "
                                                "Common/src/ServiceMainLoop.cpp, line: [1-9][0-9]*\\)"));
    EXPECT_EQ(calls[4], "AaConfigRadSetValue(0x22000B, 5)");
    EXPECT_EQ(calls[5], "Error 0x20075 Ping main EU died unexpectedly");
    EXPECT_EQ(calls[6], "AaStartupSetShutdownHandler(null)");
}

TEST_F(ServiceMainLoopTest, OtherExceptionOfADelegateEndsTheServiceWithStateFive)
{
    addDelegate(0x1234, [](void*) { throw 3; });
    m_platform.queueMessage(0x1234);

    EXPECT_EQ(start(), 0U);

    const auto errors = m_platform.calls("Error");
    ASSERT_EQ(errors.size(), 2U);
    EXPECT_THAT(errors[0], testing::MatchesRegex(
                               "Error 0x20075 Unexpected exception in Common/src/ServiceMainLoop.cpp:[1-9][0-9]*"));
    EXPECT_EQ(m_platform.parameters[0x22000B], 5U);
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceMainLoopTest, CancelledMainEuUnwindsAndDestroysTheMessageInHand)
{
    if (dorn::test::hasAddressSanitizer) {
        GTEST_SKIP() << dorn::test::unwindingIsNotKnown;
    }
    addDelegate(0x1234, [](void*) {
        pthread_cancel(pthread_self());
        pthread_testcancel();
    });
    m_platform.queueMessage(0x1234);

    EXPECT_EQ(start(), 0U);

    EXPECT_EQ(m_platform.liveMessages(), 0U);
    EXPECT_THAT(m_platform.calls("Error"), ElementsAre("Error 0x20075 Ping main EU died unexpectedly"));
    EXPECT_EQ(m_platform.parameters[0x22000B], 3U);
}

TEST_F(ServiceMainLoopTest, FamilyExceptionThatIsNotTheServicesOwnIsUnexpected)
{
    m_service.init = [this] { m_service.AddMsgDelegate(nullptr); };

    EXPECT_EQ(start(), 0U);

    EXPECT_THAT(
        m_platform.calls("Error")[0],
        testing::MatchesRegex("Error 0x20075 Unexpected exception in Common/src/ServiceMainLoop.cpp:[1-9][0-9]*"));
    EXPECT_EQ(m_platform.parameters[0x22000B], 5U);
}

TEST_F(ServiceMainLoopTest, StatesArePublishedThroughTheServicesOwnFunction)
{
    m_service.run = [this] { return m_service.handled++ == 0 ? m_service.Service::Run() : 0U; };
    addDelegate(1, [](void*) {});
    m_platform.queueMessage(1);

    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(m_service.states, ElementsAre(1U, 1U, 2U, 3U, 2U, 4U));
}

TEST_F(ServiceMainLoopTest, StatesFollowTheMessages)
{
    addDelegate(1, [](void*) {});
    addDelegate(2, [&](void*) { m_service.Terminate(); });
    m_platform.queueMessage(1);
    m_platform.queueMessage(9);
    m_platform.queueMessage(2);
    m_platform.queueMessage(1);

    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(m_platform.calls("AaConfigRadSetValue(0x22000B, "),
                ElementsAre("AaConfigRadSetValue(0x22000B, 1)",                                     // Startup
                            "AaConfigRadSetValue(0x22000B, 1)",                                     // main EU
                            "AaConfigRadSetValue(0x22000B, 2)", "AaConfigRadSetValue(0x22000B, 3)", // message 1
                            "AaConfigRadSetValue(0x22000B, 2)",                                     // message 9
                            "AaConfigRadSetValue(0x22000B, 2)", "AaConfigRadSetValue(0x22000B, 3)", // message 2
                            "AaConfigRadSetValue(0x22000B, 4)"));
    EXPECT_EQ(m_platform.liveMessages(), 1U); // the last was not waited for
}

TEST_F(ServiceMainLoopTest, LoopGoesOnUntilRunReturnsZero)
{
    unsigned int rounds = 3;
    m_service.run = [&] { return --rounds; };

    EXPECT_EQ(start(), 1U);

    EXPECT_EQ(rounds, 0U);
    EXPECT_EQ(m_platform.parameters[0x22000B], 4U);
}

TEST_F(ServiceMainLoopTest, EntryReturnsNullAndWritesThroughTheCopiedPointer)
{
    m_service.run = [] { return 0U; };
    unsigned int exitCode = 7;
    unsigned int* block = &exitCode;

    EXPECT_EQ(Service::ServiceMainEu(&block), nullptr);
    EXPECT_EQ(exitCode, 1U);

    m_service.run = []() -> unsigned int { throw 3; };
    EXPECT_EQ(Service::ServiceMainEu(&block), nullptr);
    EXPECT_EQ(exitCode, 0U);
}

TEST_F(ServiceMainLoopTest, ExitCodeIsThereWhenTheStateOfTheEndIsPublished)
{
    unsigned int exitCode = 7;
    unsigned int* block = &exitCode;
    std::vector<unsigned int> codes;
    m_platform.onCall = [&](const std::string& call) {
        if (call == "AaConfigRadSetValue(0x22000B, 4)" || call == "AaConfigRadSetValue(0x22000B, 5)") {
            codes.push_back(exitCode);
        }
    };

    m_service.run = [] { return 0U; };
    Service::ServiceMainEu(&block);
    m_service.run = []() -> unsigned int { throw 3; };
    Service::ServiceMainEu(&block);
    exitCode = 7;
    m_service.run = []() -> unsigned int { throw Service::RuntimeException("out of order", "Port.cpp", 77); };
    Service::ServiceMainEu(&block);

    EXPECT_THAT(codes, ElementsAre(1U, 0U, 0U));
    m_platform.onCall = nullptr;
}

TEST_F(ServiceMainLoopTest, InitFailedExceptionOutOfRunEndsTheServiceWithStateFive)
{
    m_service.run = []() -> unsigned int { throw Service::InitFailedException("no sensor", "Sensor.cpp", 77); };

    EXPECT_EQ(start(), 0U);

    EXPECT_THAT(m_platform.calls("Error"),
                ElementsAre("Error 0x20075 Initialization failed : no sensor (file: Sensor.cpp, line: 77)",
                            "Error 0x20075 Ping main EU died unexpectedly"));
    EXPECT_EQ(m_platform.parameters[0x22000B], 5U);
    EXPECT_THAT(m_platform.calls("AaSysComUserDeregister"), IsEmpty()); // only a failed InitEu() gives the cpid up
}

class ServiceShutdownTest : public ServiceMainLoopTest {
protected:
    /// Asks the process to end when the platform is called so for the first time.
    void requestEndAt(const std::string& call)
    {
        m_platform.onCall = [this, call](const std::string& present) {
            if (present == call && !m_requested) {
                m_requested = true;
                EXPECT_TRUE(m_platform.requestEnd());
            }
        };
    }

    bool m_requested = false;
};

TEST_F(ServiceShutdownTest, RequestWhileTheServiceWaitsEndsItNormally)
{
    m_platform.whenIdle = [this] { EXPECT_TRUE(m_platform.requestEnd()); };

    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(callsFrom("AaConfigRadSetValue(0x22000B, 2)"),
                ElementsAre("AaConfigRadSetValue(0x22000B, 2)", "AaSysComMsgReceive(-1)", "AaSysComEuWakeUp(7)",
                            "AaConfigRadSetValue(0x22000B, 4)", "AaStartupSetShutdownHandler(null)"));
}

TEST_F(ServiceShutdownTest, RequestWhileAMessageIsInHandLetsItBeFinished)
{
    bool finished = false;
    addDelegate(0x1234, [&](void*) {
        EXPECT_TRUE(m_platform.requestEnd());
        finished = true;
    });
    m_platform.queueMessage(0x1234);

    EXPECT_EQ(start(), 1U);

    EXPECT_TRUE(finished);
    EXPECT_EQ(m_platform.liveMessages(), 0U);
    EXPECT_EQ(m_platform.parameters[0x22000B], 4U);
}

TEST_F(ServiceShutdownTest, RequestBeforeTheMainEuRunsIsKept)
{
    requestEndAt("AaSysComEuCreateAndStartWithPolicy(\"PingMain\", stack 4096, policy 3, priority 10, argsSize " +
                 std::to_string(sizeof(void*)) + ", wait 1)");

    EXPECT_EQ(start(), 1U);

    EXPECT_TRUE(m_requested);
    EXPECT_EQ(m_platform.parameters[0x22000B], 4U);
    EXPECT_THAT(m_platform.calls("AaSysComEuWakeUp(0)"), IsEmpty()); // there was no EU to wake yet
}

TEST_F(ServiceShutdownTest, RequestBetweenTheStepsOfTheMainEuIsKept)
{
    for (const char* call : {"AaConfigRadSetValue(0x22000B, 2)", "AaSysComUserRegister(0x456, 7)",
                             "Info 0x20075 Service initialized ( 0x0456 )", "AaSysComMsgReceive(-1)"}) {
        m_requested = false;
        requestEndAt(call);

        EXPECT_EQ(start(), 1U) << call;

        EXPECT_TRUE(m_requested) << call;
        EXPECT_EQ(m_platform.parameters[0x22000B], 4U) << call;
    }
}

TEST_F(ServiceShutdownTest, RequestIsKeptAlthoughInitWaitsForMessagesOfItsOwn)
{
    m_service.init = [this] {
        EXPECT_TRUE(m_platform.requestEnd());
        EXPECT_EQ(AaSysComMsgReceive(1000), nullptr); // uses the wake-up up
        EXPECT_EQ(AaSysComMsgReceive(1000), nullptr);
    };

    EXPECT_EQ(start(), 1U);

    EXPECT_EQ(m_platform.parameters[0x22000B], 4U);
}

TEST_F(ServiceShutdownTest, RequestIsKeptAlthoughRunWaitsForMessagesOfItsOwn)
{
    m_service.run = [this] {
        if (!m_requested) {
            m_requested = true;
            EXPECT_TRUE(m_platform.requestEnd());
        }
        EXPECT_EQ(AaSysComMsgReceive(1000), nullptr); // uses the wake-up up
        return m_service.Service::Run();
    };

    EXPECT_EQ(start(), 1U);

    EXPECT_EQ(m_platform.parameters[0x22000B], 4U);
}

TEST_F(ServiceShutdownTest, RequestReachesARunThatReceivesByItself)
{
    m_service.run = [] {
        void* message = AaSysComMsgReceive(AA_WAIT_FOREVER);
        return message ? 1U : 0U;
    };
    m_service.init = [this] {
        EXPECT_TRUE(m_platform.requestEnd());
        EXPECT_EQ(AaSysComMsgReceive(1000), nullptr); // uses the wake-up up
    };

    EXPECT_EQ(start(), 1U);

    EXPECT_EQ(m_platform.parameters[0x22000B], 4U);
}

TEST_F(ServiceShutdownTest, MessageThatIsThereIsHandledFirst)
{
    bool handled = false;
    addDelegate(0x1234, [&](void*) { handled = true; });
    m_platform.queueMessage(0x1234);
    requestEndAt("AaSysComUserRegister(0x456, 7)");

    EXPECT_EQ(start(), 1U);

    EXPECT_TRUE(handled);
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceShutdownTest, HandlerIsRemovedWhenTheServiceHasEnded)
{
    m_service.run = [] { return 0U; };

    EXPECT_EQ(start(), 1U);

    EXPECT_FALSE(m_platform.requestEnd());
    EXPECT_EQ(m_platform.calls().back(), "AaStartupSetShutdownHandler(null)");
}

TEST_F(ServiceShutdownTest, HandlerThatRunsAfterTheServiceHasEndedDoesNothing)
{
    TAaStartupShutdownHandler handler = nullptr;
    m_service.run = [&] {
        handler = m_platform.shutdownHandler;
        return 0U;
    };
    ASSERT_EQ(start(), 1U);
    ASSERT_NE(handler, nullptr);
    m_platform.clearCalls();

    handler();

    EXPECT_THAT(m_platform.calls(), IsEmpty());
    m_service.run = nullptr;
    m_platform.queueMessage(9);
    EXPECT_EQ(m_service.Run(), 1U); // not terminated
}

TEST_F(ServiceShutdownTest, StartupOutlivesAHandlerOnAnotherThread)
{
    std::atomic<bool> isHandlerAtWork{false};
    std::atomic<bool> isHandlerRemoved{false};
    std::atomic<bool> hasHandlerEnded{false};
    std::thread requester;
    m_platform.onCall = [&](const std::string& call) {
        if (call == "AaStartupSetShutdownHandler(null)") {
            isHandlerRemoved.store(true);
        } else if (call == "AaSysComEuWakeUp(7)") {
            isHandlerAtWork.store(true);
            while (!isHandlerRemoved.load()) {
                std::this_thread::yield();
            }
            for (int round = 0; round < 1000; ++round) { // time for Startup() to return too early
                std::this_thread::yield();
            }
            hasHandlerEnded.store(true);
        }
    };
    m_service.run = [&] {
        requester = std::thread([this] { m_platform.requestEnd(); });
        while (!isHandlerAtWork.load()) {
            std::this_thread::yield();
        }
        return 0U;
    };

    EXPECT_EQ(start(), 1U);

    EXPECT_TRUE(hasHandlerEnded.load());
    requester.join();
}

TEST_F(ServiceShutdownTest, RequestOfAnEarlierLifeIsForgotten)
{
    m_platform.whenIdle = [this] { EXPECT_TRUE(m_platform.requestEnd()); };
    ASSERT_EQ(start(), 1U);
    m_platform.clearCalls();
    m_service.run = [] { return 0U; };

    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(m_platform.calls("AaSysComEuWakeUp"), IsEmpty());
}

} // namespace
} // namespace vel::hwapi::common
