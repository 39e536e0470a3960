// SPDX-License-Identifier: MIT
// Services on the host's platform: real messages, a real log, real signals.
#include "ScriptedService.hpp"

#include "AaConfigRad.h"
#include "AaConfigTag.h"
#include "AaMem.h"
#include "AaStartup.h"
#include "FailNth.hpp"
#include "FailingFilePort.hpp"
#include "NodeTest.hpp"
#include "OutputCapture.hpp"
#include "Peer.hpp"
#include "Process.hpp"
#include "RadWait.hpp"
#include "ServiceUnderTest.hpp"

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>

namespace vel::hwapi::common {
namespace {

using dorn::test::ScriptedDelegate;
using dorn::test::ScriptedService;
using dorn::testkit::FailNth;
using dorn::testkit::FullDisk;
using dorn::testkit::NodeTest;
using dorn::testkit::OutputCapture;
using dorn::testkit::Peer;
using dorn::testkit::Process;
using dorn::testkit::ServiceUnderTest;
using dorn::testkit::waitForRad;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

struct Number {
    std::uint32_t value;
};
using DoubleMsg = Msg<Number, 0x1234>;
using DoubledMsg = Msg<Number, 0x1235>;

/// Doubles numbers.
class DoubleS : public ScriptedService {
public:
    void Init() override
    {
        AddMsgHandler(&DoubleS::HandleDouble);
        ScriptedService::Init();
    }

    void HandleDouble(DoubleMsg request)
    {
        DoubledMsg answer(request.GetSender(), 0);
        if (!answer.GetPayload()) {
            return;
        }
        answer->value = 2 * request->value;
        answer.SetSender(GetSicad());
        answer.Send();
    }
};

class ServiceHostTest : public NodeTest {
protected:
    std::vector<std::string> errors() const
    {
        std::vector<std::string> found;
        for (const std::string& text : m_log.texts()) {
            if (text.starts_with("Error ")) {
                found.push_back(text);
            }
        }
        return found;
    }
    std::uint32_t state() { return m_service.GetServiceStateRad(); }

    OutputCapture m_output;
    DoubleS m_service;
};

TEST_F(ServiceHostTest, RequestIsAnswered)
{
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());
    Peer peer;

    peer.send<DoubleMsg>(running.address(), {21});
    const auto answer = peer.expect<DoubledMsg>();

    EXPECT_EQ(answer->value, 42U);
    EXPECT_EQ(answer.sender(), running.address());
    EXPECT_EQ(answer.receiver(), peer.address());
    EXPECT_EQ(running.terminate(), 1U);
    EXPECT_EQ(state(), 4U);
}

TEST_F(ServiceHostTest, RequestsOfOneSenderAreHandledInTheirOrder)
{
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());
    Peer peer;
    for (std::uint32_t value = 0; value < 500; ++value) {
        peer.send<DoubleMsg>(running.address(), {value});
    }

    for (std::uint32_t value = 0; value < 500; ++value) {
        ASSERT_EQ(peer.expect<DoubledMsg>()->value, 2 * value);
    }
}

TEST_F(ServiceHostTest, UnknownMessageIsLoggedAndTheServiceGoesOn)
{
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());
    Peer peer(0x321);

    peer.send(0xBEE, running.address(), "what");
    peer.send<DoubleMsg>(running.address(), {1});

    EXPECT_EQ(peer.expect<DoubledMsg>()->value, 2U);
    EXPECT_THAT(errors(), ElementsAre("Error 0x20075 Unknown message received: id=0x0BEE receiver=0x0F010456 "
                                      "sender=0x0F010321"));
}

TEST_F(ServiceHostTest, ShortMessageIsLoggedAndTheServiceGoesOn)
{
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());
    Peer peer(0x321);

    peer.send(0x1234, running.address(), "abc");
    peer.send<DoubleMsg>(running.address(), {1});

    EXPECT_EQ(peer.expect<DoubledMsg>()->value, 2U);
    EXPECT_THAT(errors(),
                ElementsAre("Error 0x20075 Message too short: id=0x1234 size=3 expected=4 sender=0x0F010321"));
}

TEST_F(ServiceHostTest, StateTellsWhatTheServiceDoes)
{
    Peer peer;
    m_service.AddMsgDelegate(new ScriptedDelegate(1, [&](void*) { EXPECT_EQ(state(), 3U); }));
    m_service.init = [&] { EXPECT_EQ(state(), 1U); };
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());

    peer.send(1, running.address());
    running.sync();

    EXPECT_TRUE(running.waitForState(2));
    EXPECT_EQ(running.terminate(), 1U);
    EXPECT_EQ(state(), 4U);
}

TEST_F(ServiceHostTest, DelegateThatTerminatesEndsTheService)
{
    m_service.AddMsgDelegate(new ScriptedDelegate(1, [&](void*) { m_service.Terminate(); }));
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());
    Peer peer;

    peer.send(1, running.address());

    EXPECT_EQ(running.waitForEnd(), 1U);
    EXPECT_EQ(state(), 4U);
    EXPECT_THAT(errors(), testing::IsEmpty());
}

TEST_F(ServiceHostTest, TerminateOfAnotherThreadEndsTheServiceWithTheNextMessage)
{
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());
    Peer peer;

    std::thread([&] { m_service.Terminate(); }).join();
    peer.send<DoubleMsg>(running.address(), {4});

    EXPECT_EQ(peer.expect<DoubledMsg>()->value, 8U);
    EXPECT_EQ(running.waitForEnd(), 1U);
}

TEST_F(ServiceHostTest, DelegateThatThrowsEndsTheServiceWithStateFive)
{
    m_service.AddMsgDelegate(new ScriptedDelegate(1, [](void*) { throw std::runtime_error("broken"); }));
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());
    Peer peer;

    peer.send(1, running.address());

    EXPECT_EQ(running.waitForEnd(), 0U);
    EXPECT_EQ(state(), 5U);
    EXPECT_THAT(errors(), ElementsAre("Error 0x20075 Message handling failed 0x   1",
                                      MatchesRegex("Error 0x20075 Runtime error : std::exception in Run\\(\\) \\(file: "
                                                   "Common/src/ServiceMainLoop.cpp, line: [1-9][0-9]*\\)"),
                                      "Error 0x20075 Ping main EU died unexpectedly"));
}

TEST_F(ServiceHostTest, CpidThatAnotherHoldsEndsTheService)
{
    Peer holder(ScriptedService::cpid);
    ServiceUnderTest running(m_service);

    EXPECT_EQ(running.waitForEnd(), 0U);

    EXPECT_EQ(state(), 5U);
    const auto lines = errors();
    EXPECT_THAT(lines, Contains(MatchesRegex("Error 0x20075 Initialization failed : Failed to connect to middleware "
                                             "\\(file: Common/src/ServiceMainLoop.cpp, line: [1-9][0-9]*\\)")));
    EXPECT_EQ(lines.back(), "Error 0x20075 Ping main EU died unexpectedly");
}

TEST_F(ServiceHostTest, InitThatFailsGivesTheCpidBack)
{
    m_service.init = [] { throw Service::InitFailedException("no sensor", "Sensor.cpp", 77); };
    ServiceUnderTest running(m_service);

    EXPECT_EQ(running.waitForEnd(), 0U);

    EXPECT_EQ(state(), 5U);
    EXPECT_THAT(errors(), ElementsAre("Error 0x20075 Initialization failed : no sensor (file: Sensor.cpp, line: 77)",
                                      "Error 0x20075 Ping main EU died unexpectedly"));
    EXPECT_NO_THROW(Peer{ScriptedService::cpid});
}

TEST_F(ServiceHostTest, MainEuThatCannotBeCreatedIsLogged)
{
    const FailNth<AaSysComEuCreateAndStartWithPolicy> noEu(1, 11);

    EXPECT_EQ(m_service.start(), 0U);

    EXPECT_THAT(errors(), ElementsAre("Error 0x20075 Ping main EU creation failed 11"));
    EXPECT_EQ(state(), 1U);
}

TEST_F(ServiceHostTest, UnknownSchedulingPolicyDoesNotStopTheStartUp)
{
    const FailNth<AaProEeGetDefaultSchedulingPolicy> noPolicy(1, 22);
    ServiceUnderTest running(m_service);

    EXPECT_TRUE(running.waitUntilReady());

    EXPECT_THAT(errors(), ElementsAre("Error 0x20075 AaProEeGetDefaultSchedulingPolicy failed 22"));
}

TEST_F(ServiceHostTest, PlatformThatDoesNotStartIsAnException)
{
    const FailNth<AaStartupEeStartup> noEe(1, 9);

    EXPECT_THROW(m_service.start(), Service::InitFailedException);

    EXPECT_EQ(m_output.standardOutput(),
              "bin/DornPingExe: EE Start...\nbin/DornPingExe: AaStartupEeStartup() failed 9\n");
}

TEST_F(ServiceHostTest, FullDiskIsToldAndTheServiceDoesNotStart)
{
    const FullDisk disk;

    EXPECT_THROW(m_service.start(), Service::InitFailedException);

    EXPECT_EQ(m_output.standardOutput(),
              "bin/DornPingExe: EE Start...\nbin/DornPingExe: AaConfigEarlyStartup() failed 0\n");
    EXPECT_EQ(m_output.standardError(),
              "dorn: store '" + m_node.nodeDirectory() + "/tags.control' cannot be created: No space left on device\n");
}

TEST_F(ServiceHostTest, VerboseServiceKeepsItsOwnLines)
{
    m_service.SetVerbose(1);
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());

    EXPECT_EQ(AaConfigRadGetValue(ScriptedService::radId), 1U);
    EXPECT_THAT(m_log.texts(), Contains("Info 0x20075 Service initialized ( 0x0456 )"));
}

TEST_F(ServiceHostTest, ServiceNamesItsExecutionEnvironment)
{
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());
    void* name = nullptr;
    std::uint32_t length = 0;

    ASSERT_EQ(AaConfigTagGet("tessel.service.aapro.eename", &name, &length), EAaConfigTagStatus_Ok);
    EXPECT_EQ(std::string(static_cast<const char*>(name), length), "Ping");
    AaMemUnRef(name);
    ASSERT_EQ(AaConfigTagGet("tessel.service.aatbts.cpid", &name, &length), EAaConfigTagStatus_Ok);
    ASSERT_EQ(length, 2U);
    EXPECT_EQ(*static_cast<const std::uint16_t*>(name), 0x456);
    AaMemUnRef(name);
}

TEST_F(ServiceHostTest, UnknownOptionTouchesNothing)
{
    EXPECT_EQ(m_service.start({"--nonsense"}), 0U);

    EXPECT_EQ(m_output.standardError(), "Invalid arguments:  --nonsense\nTry DornPingExe with '-h' or '--help' "
                                        "agruments for usage information\n");
    EXPECT_EQ(m_output.standardOutput(), "");
}

TEST_F(ServiceHostTest, TwoLivesOfOneServiceFollowEachOther)
{
    {
        ServiceUnderTest running(m_service);
        ASSERT_TRUE(running.waitUntilReady());
        EXPECT_EQ(running.terminate(), 1U);
    }
    // The first life's request to end is over, though Terminate() was called: the second ends with its first message.
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());
    Peer peer;
    peer.send<DoubleMsg>(running.address(), {3});
    EXPECT_EQ(peer.expect<DoubledMsg>()->value, 6U);
    EXPECT_EQ(running.waitForEnd(), 1U);
}

TEST_F(ServiceHostTest, RequestToEndComesWhileMessagesFlow)
{
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());
    Peer peer;
    std::atomic<bool> isOver{false};
    std::thread sender([&] {
        while (!isOver.load()) {
            try {
                peer.send<DoubleMsg>(running.address(), {1});
            } catch (const std::runtime_error&) {
                return; // the service has ended and its cpid is free
            }
        }
    });
    ASSERT_EQ(peer.expect<DoubledMsg>()->value, 2U);

    EXPECT_EQ(running.terminate(), 1U);

    isOver.store(true);
    sender.join();
    EXPECT_EQ(state(), 4U);
}

class ServiceProcessTest : public NodeTest {
protected:
    static constexpr TAaSysComSicad address = 0x0F010777;
    static constexpr TAaConfigRadId stateId = ERadHwapiState_LedState;

    /// The state of the service, which this process can read once the domain is registered.
    std::uint32_t state() { return AaConfigRadGetValue(stateId); }
};

TEST_F(ServiceProcessTest, SignalWhileTheServiceWaitsEndsItNormally)
{
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        Process service(DORN_SIGNAL_TEST_EXE);
        ASSERT_TRUE(service.waitForOutput("waiting\n"));

        service.signal(number);

        EXPECT_EQ(service.waitForEnd(), 1) << number << service.standardError();
        EXPECT_TRUE(service.standardOutput().ends_with("state 4\n")) << service.standardOutput();
    }
}

TEST_F(ServiceProcessTest, SignalDuringInitEndsTheServiceNormally)
{
    Process service(DORN_SIGNAL_TEST_EXE, {"--signal-in=init"});

    EXPECT_EQ(service.waitForEnd(), 1) << service.standardError();
    EXPECT_TRUE(service.standardOutput().ends_with("signalled in init\nwaiting\nstate 4\n"))
        << service.standardOutput();
}

TEST_F(ServiceProcessTest, SignalWhileAMessageIsInHandLetsItBeFinished)
{
    Process service(DORN_SIGNAL_TEST_EXE, {"--signal-in=message"});

    EXPECT_EQ(service.waitForEnd(), 1) << service.standardError();
    EXPECT_TRUE(service.standardOutput().ends_with("waiting\nsignalled in message\nmessage finished\nstate 4\n"))
        << service.standardOutput();
}

TEST_F(ServiceProcessTest, SignalAfterTheServiceHasTheSystemsOwnEffect)
{
    Process service(DORN_SIGNAL_TEST_EXE, {"--signal-in=end"});

    EXPECT_EQ(service.waitForEnd(), -SIGTERM) << service.standardError();
    EXPECT_TRUE(service.standardOutput().ends_with("state 4\n")) << service.standardOutput();
}

TEST_F(ServiceProcessTest, SecondServiceOfACpidEndsAndTheFirstGoesOn)
{
    Process first(DORN_SIGNAL_TEST_EXE);
    ASSERT_TRUE(first.waitForOutput("waiting\n"));
    setenv("DORN_LOG", "stderr", 1); // the node of the test puts it back
    Process second(DORN_SIGNAL_TEST_EXE);

    EXPECT_EQ(second.waitForEnd(), 0);

    EXPECT_TRUE(second.standardOutput().ends_with("state 5\n")) << second.standardOutput();
    EXPECT_THAT(second.standardError(),
                AllOf(HasSubstr(" cpid 0x0777 is not granted: process " + std::to_string(first.pid()) + " holds it\n"),
                      HasSubstr(" Initialization failed : Failed to connect to middleware (file: "
                                "Common/src/ServiceMainLoop.cpp, line: "),
                      HasSubstr(" Signal main EU died unexpectedly\n")));
    Peer(0x321).send(0x1234, address);
    EXPECT_TRUE(first.waitForOutput("message finished\n"));
}

TEST_F(ServiceProcessTest, RefusedRunDirectoryEndsTheProcessWithTheReasonAndStatusZero)
{
    chmod(m_node.runDirectory().c_str(), 0755);
    Process service(DORN_SIGNAL_TEST_EXE);

    EXPECT_EQ(service.waitForEnd(), 0);

    EXPECT_EQ(service.standardError(), "dorn: run directory '" + m_node.runDirectory() +
                                           "': is open to other users; its mode must be 0700\n"
                                           "DornSignalExe: Initialization failed: Failed to set initialize "
                                           "executable\n");
}

TEST_F(ServiceProcessTest, HelpIsPrintedAndTheExitStatusIsOne)
{
    Process service(DORN_SIGNAL_TEST_EXE, {"--help"});

    EXPECT_EQ(service.waitForEnd(), 1);
    EXPECT_EQ(service.standardError(),
              "Usage:\nDornSignalExe [options]\n\n\t-h\n\t--help\n\t\t Print usage information\n"
              "\t--signal-in=STEP\n\t\t Ask the process to end in this step: init, message, end\n");
}

} // namespace
} // namespace vel::hwapi::common
