// SPDX-License-Identifier: MIT
#include "RecordingPlatform.hpp"
#include "ScriptedService.hpp"

#include <gmock/gmock.h>

#include <memory>
#include <ostream>
#include <stdexcept>

namespace vel::hwapi::common {
namespace {

using dorn::test::RecordingPlatform;
using dorn::test::ScriptedService;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

class ServiceStartupTest : public testing::Test {
protected:
    ServiceStartupTest()
    {
        m_platform.whenIdle = [this] { m_platform.wakeUp(); };
        m_service.init = [this] { m_service.Terminate(); }; // the loop ends with its first receive
        m_platform.clearCalls();
    }

    /// Startup() with what it prints taken away.
    unsigned int start(std::vector<std::string> words = {})
    {
        CaptureStderr();
        CaptureStdout();
        const unsigned int result = m_service.start(std::move(words));
        GetCapturedStdout();
        m_standardError = GetCapturedStderr();
        return result;
    }

    std::vector<std::string> calls() const { return m_platform.callsWithoutParameters(); }

    std::vector<std::string> publishedStates() const { return m_platform.calls("AaConfigRadSetValue(0x22000B,"); }

    RecordingPlatform m_platform;
    ScriptedService m_service;
    std::string m_standardError;
};

const std::string euCreation = "AaSysComEuCreateAndStartWithPolicy(\"PingMain\", stack 4096, policy 3, priority 10, "
                               "argsSize " +
                               std::to_string(sizeof(void*)) + ", wait 1)";

TEST_F(ServiceStartupTest, UnknownOptionIsToldAndNothingElseHappens)
{
    bool preStarted = false;
    m_service.preStartup = [&] {
        preStarted = true;
        return 1U;
    };

    EXPECT_EQ(start({"-x", "foo"}), 0U);

    EXPECT_EQ(m_standardError, "Invalid arguments:  -x foo\nTry DornPingExe with '-h' or '--help' agruments for usage "
                               "information\n");
    EXPECT_FALSE(preStarted);
    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

TEST_F(ServiceStartupTest, ShortHelpPrintsTheUsageAndNothingElseHappens)
{
    bool preStarted = false;
    m_service.preStartup = [&] {
        preStarted = true;
        return 1U;
    };

    EXPECT_EQ(start({"-h"}), 1U);

    EXPECT_EQ(m_standardError, "Usage:\nDornPingExe [options]\n\n\t-h\n\t--help\n\t\t Print usage information\n");
    EXPECT_FALSE(preStarted);
    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

TEST_F(ServiceStartupTest, LongHelpPrintsTheUsageAndNothingElseHappens)
{
    bool preStarted = false;
    m_service.preStartup = [&] {
        preStarted = true;
        return 1U;
    };

    EXPECT_EQ(start({"--help"}), 1U);

    EXPECT_EQ(m_standardError, "Usage:\nDornPingExe [options]\n\n\t-h\n\t--help\n\t\t Print usage information\n");
    EXPECT_FALSE(preStarted);
    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

TEST_F(ServiceStartupTest, HelpWithAValueIsNotARequestForHelp)
{
    EXPECT_EQ(start({"--help=yes"}), 1U);

    EXPECT_EQ(m_standardError, "");
    EXPECT_THAT(calls(), Contains(euCreation));
}

TEST_F(ServiceStartupTest, UnknownOptionGoesBeforeHelp)
{
    EXPECT_EQ(start({"-h", "-x"}), 0U);

    EXPECT_THAT(m_standardError, StartsWith("Invalid arguments:  -x\n"));
}

TEST_F(ServiceStartupTest, OptionsOfTheServiceAreUnderstoodAndListed)
{
    m_service.GetArgumentParser().SetArgumentInfo("--level=N Level of detail\n");

    EXPECT_EQ(start({"--level=3", "-h"}), 1U);

    EXPECT_EQ(m_standardError, "Usage:\nDornPingExe [options]\n\n\t-h\n\t--help\n\t\t Print usage information\n"
                               "\t--level=N\n\t\t Level of detail\n");
    EXPECT_EQ(m_service.GetArgumentParser().ReadArgument("level"), "3");
}

TEST_F(ServiceStartupTest, StepsOfALifeComeInTheirOrder)
{
    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(calls(),
                ElementsAre("AaConfigEarlyStartup()", "AaConfigTagSetString(\"tessel.service.aapro.eename\", \"Ping\")",
                            "AaConfigTagSetU16(\"tessel.service.aatbts.cpid\", 0x456)", "AaStartupEeStartup()",
                            "AaConfigTagReadFile(\"/opt/dorn/dorn.xml\")",
                            "Info 0x0 Dorn, Tessel EE initialization done", "AaConfigRadRegisterDomain(2, \"HWA\")",
                            "AaConfigRadRegisterDomain(34, \"HWAState\")",                //
                            "AaConfigRadSetValue(0x22000B, 1)",                           //
                            "AaProEeGetDefaultSchedulingPolicy(1)",                       //
                            "AaStartupSetShutdownHandler(set)",                           //
                            euCreation,                                                   //
                            "AaConfigRadSetValue(0x22000B, 1)",                           //
                            "AaSysComUserRegister(0x456, 7)",                             //
                            "Info 0x20075 Service initialized ( 0x0456 )",                //
                            "AaConfigRadSetValue(0x22000B, 2)", "AaSysComMsgReceive(-1)", //
                            "AaConfigRadSetValue(0x22000B, 4)",                           //
                            "AaStartupSetShutdownHandler(null)"));
}

TEST_F(ServiceStartupTest, PreStartupComesBeforeThePlatform)
{
    std::vector<std::string> callsBefore = {"not called"};
    m_service.preStartup = [&] {
        callsBefore = m_platform.calls();
        return 1U;
    };

    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(callsBefore, IsEmpty());
}

TEST_F(ServiceStartupTest, PreStartupCannotStopTheStartUp)
{
    m_service.preStartup = [] { return 0U; };

    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(calls(), Contains(euCreation));
}

TEST_F(ServiceStartupTest, PreStartupOfTheBaseReturnsOne)
{
    EXPECT_EQ(m_service.Service::PreStartup(), 1U);
}

/// What start-up can fail at before there is an EU.
struct FailingStep {
    const char* name;
    const char* call; ///< begins so
};

void PrintTo(const FailingStep& step, std::ostream* stream)
{
    *stream << step.name;
}

class ServiceFailingStartupTest : public ServiceStartupTest, public testing::WithParamInterface<FailingStep> {};

TEST_P(ServiceFailingStartupTest, ExecutableThatIsNotInitialisedIsAnExceptionAndThereIsNoEu)
{
    m_platform.onCall = [this](const std::string& call) {
        if (call.starts_with(GetParam().call)) {
            m_platform.setResult(call.substr(0, call.find('(')), 5);
        }
    };

    try {
        start();
        FAIL() << "nothing thrown";
    } catch (const Service::InitFailedException& exception) {
        GetCapturedStdout();
        GetCapturedStderr();
        EXPECT_STREQ(exception.what(), "Initialization failed");
        EXPECT_EQ(exception.getDescription(), "Failed to set initialize executable");
        EXPECT_EQ(exception.getFile(), "Common/src/ServiceMainLoop.cpp");
        EXPECT_GT(exception.getLine(), 0);
    }
    EXPECT_THAT(publishedStates(), IsEmpty());
    EXPECT_THAT(calls(), Not(Contains(euCreation)));
}

INSTANTIATE_TEST_SUITE_P(Steps, ServiceFailingStartupTest,
                         testing::Values(FailingStep{"EarlyStart", "AaConfigEarlyStartup("},
                                         FailingStep{"EeStart", "AaStartupEeStartup("},
                                         FailingStep{"FirstDomain", "AaConfigRadRegisterDomain(2,"},
                                         FailingStep{"SecondDomain", "AaConfigRadRegisterDomain(34,"}),
                         [](const auto& step) { return step.param.name; });

TEST_F(ServiceStartupTest, VerboseSwitchesThePrintsOn)
{
    m_service.SetVerbose(1);

    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(m_platform.calls("AaConfigRadSetValue(0x20075"), ElementsAre("AaConfigRadSetValue(0x20075, 1)"));
}

TEST_F(ServiceStartupTest, PrintsAreSwitchedOnBeforeTheFirstStateIsPublished)
{
    m_service.SetVerbose(1);

    EXPECT_EQ(start(), 1U);

    const auto writes = m_platform.calls("AaConfigRadSetValue(");
    ASSERT_GE(writes.size(), 2U);
    EXPECT_EQ(writes[0], "AaConfigRadSetValue(0x20075, 1)");
    EXPECT_EQ(writes[1], "AaConfigRadSetValue(0x22000B, 1)");
}

TEST_F(ServiceStartupTest, OnlyOneIsVerbose)
{
    m_service.SetVerbose(2);

    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(m_platform.calls("AaConfigRadSetValue(0x20075"), IsEmpty());
}

TEST_F(ServiceStartupTest, UnknownSchedulingPolicyIsLoggedAndBackgroundIsTaken)
{
    m_platform.setResult("AaProEeGetDefaultSchedulingPolicy", 22);

    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(m_platform.calls("Error"), ElementsAre("Error 0x20075 AaProEeGetDefaultSchedulingPolicy failed 22"));
    EXPECT_THAT(m_platform.calls("AaSysComEuCreate"), ElementsAre(HasSubstr("policy 1, ")));
}

TEST_F(ServiceStartupTest, PolicyThatAFailingCallHasStoredIsTaken)
{
    m_platform.setResult("AaProEeGetDefaultSchedulingPolicy", 22);
    m_platform.policyOfFailure = EAaProEuSchedulingPolicy_RoundRobin;

    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(m_platform.calls("AaSysComEuCreate"), ElementsAre(HasSubstr("policy 2, ")));
}

TEST_F(ServiceStartupTest, MainEuThatCannotBeCreatedIsLogged)
{
    m_platform.setResult("AaSysComEuCreateAndStartWithPolicy", 11);

    EXPECT_EQ(start(), 0U);

    EXPECT_THAT(m_platform.calls("Error"), ElementsAre("Error 0x20075 Ping main EU creation failed 11"));
    EXPECT_EQ(m_platform.shutdownHandler, nullptr);
}

TEST_F(ServiceStartupTest, OtherCpidThanWantedEndsTheService)
{
    m_platform.grantCpid = [](TAaSysComCpid) { return TAaSysComCpid{0x999}; };

    EXPECT_EQ(start(), 0U);

    const auto errors = m_platform.calls("Error");
    ASSERT_EQ(errors.size(), 2U);
    EXPECT_THAT(errors[0],
                testing::MatchesRegex("Error 0x20075 Initialization failed : Failed to connect to middleware "
                                      "\\(file: Common/src/ServiceMainLoop.cpp, line: [1-9][0-9]*\\)"));
    EXPECT_EQ(errors[1], "Error 0x20075 Ping main EU died unexpectedly");
    EXPECT_THAT(m_platform.calls("AaSysComUserDeregister"), ElementsAre("AaSysComUserDeregister(0x999)"));
    EXPECT_THAT(publishedStates(), ElementsAre("AaConfigRadSetValue(0x22000B, 1)", "AaConfigRadSetValue(0x22000B, 1)",
                                               "AaConfigRadSetValue(0x22000B, 5)"));
    EXPECT_THAT(m_platform.calls("AaSysComMsgReceive"), IsEmpty());
}

TEST_F(ServiceStartupTest, InitThatFailsGivesTheCpidUpAndEndsTheService)
{
    m_service.init = [] { throw Service::InitFailedException("no sensor", "Sensor.cpp", 77); };

    EXPECT_EQ(start(), 0U);

    EXPECT_THAT(m_platform.calls("Error"),
                ElementsAre("Error 0x20075 Initialization failed : no sensor (file: Sensor.cpp, line: 77)",
                            "Error 0x20075 Ping main EU died unexpectedly"));
    EXPECT_THAT(m_platform.calls("AaSysComUser"),
                ElementsAre("AaSysComUserRegister(0x456, 7)", "AaSysComUserDeregister(0x456)"));
    EXPECT_EQ(publishedStates().back(), "AaConfigRadSetValue(0x22000B, 5)");
}

TEST_F(ServiceStartupTest, ExceptionOutOfInitIsThrownOnAsACopyOfItsBase)
{
    class NoSensor : public Service::InitFailedException {
    public:
        NoSensor() : InitFailedException("no sensor", "Sensor.cpp", 77) {}
    };
    m_service.init = [] { throw NoSensor(); };

    try {
        m_service.InitEu();
        FAIL() << "nothing thrown";
    } catch (const Service::InitFailedException& exception) {
        EXPECT_EQ(dynamic_cast<const NoSensor*>(&exception), nullptr);
        EXPECT_EQ(exception.getDescription(), "no sensor");
        EXPECT_EQ(exception.getFile(), "Sensor.cpp");
        EXPECT_EQ(exception.getLine(), 77);
    }
}

TEST_F(ServiceStartupTest, RuntimeExceptionOutOfInitEndsTheService)
{
    m_service.init = [] { throw Service::RuntimeException("no sensor", "Sensor.cpp", 77); };

    EXPECT_EQ(start(), 0U);

    EXPECT_THAT(m_platform.calls("Error"),
                ElementsAre("Error 0x20075 Runtime error : no sensor (file: Sensor.cpp, line: 77)",
                            "Error 0x20075 Ping main EU died unexpectedly"));
    EXPECT_THAT(m_platform.calls("AaSysComUserDeregister"), IsEmpty());
    EXPECT_EQ(publishedStates().back(), "AaConfigRadSetValue(0x22000B, 5)");
}

TEST_F(ServiceStartupTest, AnyOtherExceptionOutOfInitEndsTheService)
{
    m_service.init = [] { throw std::logic_error("no sensor"); };

    EXPECT_EQ(start(), 0U);

    const auto errors = m_platform.calls("Error");
    ASSERT_EQ(errors.size(), 2U);
    EXPECT_THAT(errors[0], testing::MatchesRegex(
                               "Error 0x20075 Unexpected exception in Common/src/ServiceMainLoop.cpp:[1-9][0-9]*"));
    EXPECT_EQ(errors[1], "Error 0x20075 Ping main EU died unexpectedly");
    EXPECT_EQ(publishedStates().back(), "AaConfigRadSetValue(0x22000B, 5)");
}

TEST_F(ServiceStartupTest, ServiceInitializedIsLoggedAfterInit)
{
    std::vector<std::string> infos = {"not called"};
    m_service.init = [&] {
        infos = m_platform.calls("Info 0x20075");
        m_service.Terminate();
    };

    EXPECT_EQ(start(), 1U);

    EXPECT_THAT(infos, IsEmpty());
    EXPECT_THAT(m_platform.calls("Info 0x20075"), ElementsAre("Info 0x20075 Service initialized ( 0x0456 )"));
}

TEST(ServiceLifeTest, NewServiceIsTheProcesssAndHasItsMutex)
{
    RecordingPlatform platform;
    const ScriptedService service;

    EXPECT_EQ(Service::Get(), &service);
    EXPECT_NE(ScriptedService::m_wfctMapSem, nullptr);
    EXPECT_EQ(service.m_cpId, 0);
    EXPECT_EQ(service.m_useCommonServiceState, 1U);
    EXPECT_THAT(platform.calls(), ElementsAre("AaSemReMutexCreate()"));
}

TEST(ServiceLifeTest, ProcessHasNoServiceAfterItsEnd)
{
    const RecordingPlatform platform;
    {
        const ScriptedService service;
    }
    EXPECT_EQ(Service::Get(), nullptr);
}

TEST(ServiceLifeTest, EndPublishesStateFourAndGivesEverythingUp)
{
    RecordingPlatform platform;
    auto service = std::make_unique<ScriptedService>();
    int ends = 0;
    service->AddMsgDelegate(new dorn::test::ScriptedDelegate(
        1, [](void*) {}, &ends));
    platform.onCall = [&](const std::string& call) {
        if (call.starts_with("AaConfigRadSetValue")) {
            EXPECT_EQ(ends, 0);
        } else {
            EXPECT_EQ(ends, 1);
        }
    };
    platform.clearCalls();

    service.reset();

    EXPECT_THAT(platform.calls(), ElementsAre("AaConfigRadSetValue(0x22000B, 4)", "AaSemReMutexDestroy()",
                                              "AaSysComUserDeregister(0x456)"));
    EXPECT_EQ(ScriptedService::m_wfctMapSem, nullptr);
}

/// Tells in a list which of its hooks were called.
class TellTale : public Service {
public:
    explicit TellTale(std::vector<std::string>& told)
        : Service("Tell", 1, ERadHwapi_PrintCtrlTask, ERadHwapiState_CpriState), m_told(told)
    {
    }
    void SetServiceStateRad(unsigned int /*state*/) override { m_told.emplace_back("SetServiceStateRad"); }
    void Exit() override { m_told.emplace_back("Exit"); }

private:
    std::vector<std::string>& m_told;
};

TEST(ServiceLifeTest, EndCallsNoOverride)
{
    RecordingPlatform platform;
    std::vector<std::string> told;
    {
        const TellTale service(told);
    }
    EXPECT_THAT(told, IsEmpty());
    EXPECT_THAT(platform.calls("AaConfigRadSetValue"), ElementsAre("AaConfigRadSetValue(0x220000, 4)"));
}

TEST(ServiceLifeTest, EndWithoutMutexPassesItOver)
{
    RecordingPlatform platform;
    {
        const ScriptedService service;
        AaSemReMutexDestroy(&ScriptedService::m_wfctMapSem);
        platform.clearCalls();
    }
    EXPECT_THAT(platform.calls("AaSemReMutexDestroy"), IsEmpty());
}

TEST(ServiceLifeTest, ExitGivesTheQueueAndTheWantedCpidUp)
{
    RecordingPlatform platform;
    ScriptedService service;
    service.m_cpId = 0x999;
    platform.clearCalls();

    service.Exit();

    EXPECT_THAT(platform.calls(), ElementsAre("AaSysComUserDeregister(0x456)"));
}

class ServiceStateTest : public testing::Test {
protected:
    ServiceStateTest() { m_platform.clearCalls(); }
    RecordingPlatform m_platform;
    ScriptedService m_service;
};

TEST_F(ServiceStateTest, EveryStateButSixIsPublished)
{
    for (unsigned int state = 0; state <= 9; ++state) {
        m_service.SetServiceStateRad(state);
    }
    m_service.SetServiceStateRad(0xFFFFFFFF);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaConfigRadSetValue(0x22000B, 0)", "AaConfigRadSetValue(0x22000B, 1)",
                            "AaConfigRadSetValue(0x22000B, 2)", "AaConfigRadSetValue(0x22000B, 3)",
                            "AaConfigRadSetValue(0x22000B, 4)", "AaConfigRadSetValue(0x22000B, 5)",
                            "AaConfigRadSetValue(0x22000B, 7)", "AaConfigRadSetValue(0x22000B, 8)",
                            "AaConfigRadSetValue(0x22000B, 9)", "AaConfigRadSetValue(0x22000B, 4294967295)"));
}

TEST_F(ServiceStateTest, WithoutCommonStateOnlySevenAndAboveArePublished)
{
    m_service.SetUseCommonServiceState(0);
    for (unsigned int state = 0; state <= 8; ++state) {
        m_service.SetServiceStateRad(state);
    }

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaConfigRadSetValue(0x22000B, 7)", "AaConfigRadSetValue(0x22000B, 8)"));
}

TEST_F(ServiceStateTest, AnyValueButZeroKeepsTheCommonState)
{
    m_service.SetUseCommonServiceState(2);
    m_service.SetServiceStateRad(3);

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaConfigRadSetValue(0x22000B, 3)"));
}

TEST_F(ServiceStateTest, StateIsReadFromItsParameter)
{
    m_platform.parameters[0x22000B] = 17;

    EXPECT_EQ(m_service.GetServiceStateRad(), 17U);
}

TEST_F(ServiceStateTest, NameAndPrintsAreThoseOfTheConstruction)
{
    EXPECT_EQ(m_service.GetName(), "Ping");
    EXPECT_EQ(m_service.GetRadId(), ERadHwapi_PrintBoundaryIf);
}

TEST_F(ServiceStateTest, AddressIsTheGrantedCpidOnTheOwnNode)
{
    m_service.m_cpId = 0x999;    // not the one that was asked for
    m_platform.nid = 0xABCD1234; // the low 16 bits are the node

    EXPECT_EQ(m_service.GetSicad(), 0x12340999U);
    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComSicadGet(0x999, 0x1234)"));
}

TEST_F(ServiceStateTest, AddressWithoutOwnNodeTakesTheDefaultNode)
{
    m_service.m_cpId = 0x456;
    m_platform.nid = 0xABCD0000;

    EXPECT_EQ(m_service.GetSicad(), 0x0F010456U);
}

TEST_F(ServiceStateTest, LastConstructedServiceIsTheProcesssAndOutlivesAnEarlierOne)
{
    auto first = std::make_unique<ScriptedService>();
    const ScriptedService second;
    EXPECT_EQ(Service::Get(), &second);
    first.reset();
    EXPECT_EQ(Service::Get(), &second);
}

TEST_F(ServiceStateTest, RedundancyCommandIsAnsweredReadyByDefault)
{
    ERedundancyState state = ERedundancyState_Unfinished;

    EXPECT_TRUE(m_service.HandleRedundancyStateCommand(ERedundancyCommand_PrepareActive, &state));
    EXPECT_EQ(state, ERedundancyState_Ready);
}

TEST_F(ServiceStateTest, ConfigTagChangeIsPassedOverByDefault)
{
    m_service.HandleConfigTagChange("sys.unit.state.ne-act", 1);

    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

} // namespace
} // namespace vel::hwapi::common
