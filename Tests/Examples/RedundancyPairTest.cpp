// SPDX-License-Identifier: MIT
// A redundancy manager and its mate, which the test plays.
#include "AaConfigTag.h"
#include "FailNth.hpp"
#include "ManualClock.hpp"
#include "NodeTest.hpp"
#include "OutputCapture.hpp"
#include "Peer.hpp"
#include "RedundancyManagerS.hpp"
#include "ServiceUnderTest.hpp"
#include "node/PerNode.hpp"
#include "syscom/MessageTap.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common;
using testkit::Peer;

using StateReqMsg = Service::HwapiRedundancyStateReqMsg;

constexpr std::uint16_t mateNode = 0x0F02;
constexpr std::uint32_t mateManager = 0x0F0204E4;
constexpr std::uint32_t mateService = 0x0F020211;

class RedundancyPairTest : public testkit::NodeTest {
protected:
    void start(const std::string& mate = "--mate=0x0F02")
    {
        m_running.reset();
        m_manager.reset(); // before another is made: a process has one service at a time
        m_manager = std::make_unique<RedundancyManagerS>();
        m_running = std::make_unique<testkit::ServiceUnderTest>(*m_manager, std::vector<std::string>{"-v", mate});
        ASSERT_TRUE(m_running->waitUntilReady());
    }
    /// Lets the time of so many heartbeats pass.
    void pass(unsigned beats)
    {
        for (unsigned beat = 0; beat < beats; ++beat) {
            m_clock.advance(mateHeartbeatTime);
            ASSERT_TRUE(m_clock.waitForSleepers()); // the next one has been armed
            m_running->sync();
        }
    }
    void sendAs(std::uint32_t sender, const SMateHeartbeat& heartbeat,
                const std::vector<SRedundancyRegistration>& services = {})
    {
        const std::size_t tail = services.size() * sizeof(SRedundancyRegistration);
        void* message = AaSysComMsgCreate(MateHeartbeatMsg::ID, static_cast<std::uint16_t>(sizeof heartbeat + tail),
                                          m_running->address());
        auto* const payload = static_cast<char*>(AaSysComMsgGetPayload(message));
        std::memcpy(payload, &heartbeat, sizeof heartbeat);
        if (tail != 0) {
            std::memcpy(payload + sizeof heartbeat, services.data(), tail);
        }
        ASSERT_EQ(AaSysComMsgSendS(&message, sender), EAaSysComStatus_Ok);
        m_running->sync();
    }
    void hear(EUnitRole role, std::uint32_t term, const std::vector<SRedundancyRegistration>& services = {})
    {
        sendAs(mateManager, {role, term, static_cast<std::uint32_t>(services.size())}, services);
    }
    void enlist()
    {
        m_service.send<Service::HwapiRedundancyRegisterReqMsg>(redundancyManagerCpid, {0, ERedundancyMode_All, 0});
        m_service.expect<Service::HwapiRedundancyRegisterRespMsg>();
    }
    /// Takes the next command and tells a state.
    ERedundancyCommand obey(ERedundancyState state = ERedundancyState_Ready)
    {
        const auto request = m_service.expect<StateReqMsg>();
        m_service.send<Service::ApiRedundancyIndMsg>(redundancyManagerCpid, {request->command, state});
        return request->command;
    }
    void obeyAll(const std::vector<ERedundancyCommand>& commands)
    {
        for (const ERedundancyCommand command : commands) {
            EXPECT_EQ(obey(), command);
        }
        m_running->sync();
    }
    void becomeActive()
    {
        m_service.send<RedundancySwitchReqMsg>(redundancyManagerCpid, {1, EUnitRole_Active});
        m_service.expect<RedundancySwitchRespMsg>();
    }
    std::size_t count(const std::string& line) const { return m_log.count(line); }
    bool isActive() const { return m_manager->isActiveLcp(); }

    testkit::OutputCapture m_output;
    testkit::ManualClock m_clock;
    std::unique_ptr<RedundancyManagerS> m_manager;
    std::unique_ptr<testkit::ServiceUnderTest> m_running;
    Peer m_service{0x211};
};

const std::vector<ERedundancyCommand> toActive{ERedundancyCommand_PrepareActive, ERedundancyCommand_TakeHwLatch,
                                               ERedundancyCommand_EnableActive};
const std::vector<ERedundancyCommand> toStandby{ERedundancyCommand_PrepareStandby, ERedundancyCommand_ReleaseActive,
                                                ERedundancyCommand_ReleaseHwLatch};

/// The next heartbeat that a watcher of the node's messages sees.
SMateHeartbeat seen(Peer& watcher, std::vector<SRedundancyRegistration>& services)
{
    for (;;) {
        const auto message = watcher.expect(host::MessageTap::recordId);
        const auto& record = message.as<host::TapRecord>();
        if (record.header.id != MateHeartbeatMsg::ID) {
            continue;
        }
        EXPECT_EQ(record.header.receiver, mateManager);
        EXPECT_EQ(record.header.sender, 0x0F0104E4U);
        SMateHeartbeat heartbeat{};
        const std::byte* const payload = message.payload().data() + sizeof record;
        std::memcpy(&heartbeat, payload, sizeof heartbeat);
        services.resize(heartbeat.serviceCount);
        if (!services.empty()) {
            std::memcpy(services.data(), payload + sizeof heartbeat, services.size() * sizeof services[0]);
        }
        return heartbeat;
    }
}

TEST_F(RedundancyPairTest, HeartbeatTellsRoleTermAndServices)
{
    Peer watcher;
    ASSERT_TRUE(host::PerNode<host::MessageTap>::get().addWatcher(watcher.cpid()));
    std::vector<SRedundancyRegistration> services;

    start();
    const SMateHeartbeat first = seen(watcher, services);

    EXPECT_EQ(first.role, EUnitRole_Standby);
    EXPECT_EQ(first.term, 0U);
    EXPECT_TRUE(services.empty());
    enlist();
    pass(11); // without a gateway it is tried every second
    EXPECT_EQ(seen(watcher, services).role, EUnitRole_Standby);
    ASSERT_EQ(services.size(), 1U);
    EXPECT_EQ(services[0].address, 0x0F010211U);
    EXPECT_EQ(services[0].mode, static_cast<std::uint32_t>(ERedundancyMode_All));
    host::PerNode<host::MessageTap>::get().removeWatcher(watcher.cpid());
}

TEST_F(RedundancyPairTest, WithoutGatewayAHeartbeatIsTriedEverySecond)
{
    const std::string line = "(id=0x2135 receiver=0x0F0204E4 sender=0x0F0104E4)";
    const auto tries = [&] {
        return std::ranges::count_if(m_log.texts(),
                                     [&line](const std::string& text) { return text.find(line) != std::string::npos; });
    };
    start();
    EXPECT_EQ(tries(), 1);

    pass(10);
    EXPECT_EQ(tries(), 1);
    pass(1);
    EXPECT_EQ(tries(), 2);
}

TEST_F(RedundancyPairTest, MateIsGreetedOnce)
{
    start();
    hear(EUnitRole_Standby, 2);
    hear(EUnitRole_Standby, 2);

    EXPECT_EQ(count("Info 0x20080 Mate 0x0F02 is there: standby in term 2"), 1U);
}

TEST_F(RedundancyPairTest, HeartbeatThatIsNotTheMatesOrLiesIsDropped)
{
    start();
    sendAs(0x0F0304E4, {EUnitRole_Active, 1, 0});
    sendAs(mateService, {EUnitRole_Active, 1, 0});
    sendAs(mateManager, {EUnitRole_Active, 1, 1});
    sendAs(mateManager, {EUnitRole_Active, 1, 33}, std::vector<SRedundancyRegistration>(33));
    sendAs(mateManager, {EUnitRole_Active, 1, 0xFFFFFFFF});

    EXPECT_EQ(count("Warning 0x20080 Heartbeat of 0x0F0304E4 with 0 services in 12 bytes dropped"), 1U);
    EXPECT_EQ(count("Warning 0x20080 Heartbeat of 0x0F020211 with 0 services in 12 bytes dropped"), 1U);
    EXPECT_EQ(count("Warning 0x20080 Heartbeat of 0x0F0204E4 with 1 services in 12 bytes dropped"), 1U);
    EXPECT_EQ(count("Warning 0x20080 Heartbeat of 0x0F0204E4 with 33 services in 276 bytes dropped"), 1U);
    EXPECT_EQ(count("Warning 0x20080 Heartbeat of 0x0F0204E4 with 4294967295 services in 12 bytes dropped"), 1U);
    pass(mateHeartbeatsToMiss);
    EXPECT_FALSE(isActive());
}

TEST_F(RedundancyPairTest, UnitThatIsNoHalfDropsHeartbeats)
{
    start("-v");
    hear(EUnitRole_Active, 1);

    EXPECT_EQ(count("Warning 0x20080 Heartbeat of 0x0F0204E4 with 0 services in 12 bytes dropped"), 1U);
}

TEST_F(RedundancyPairTest, MateThatIsNoOtherNodeEndsTheManager)
{
    for (const char* const mate : {"", "0", "0x", "0x0F01", "3841", "65536", "half", "-1", "1 "}) {
        RedundancyManagerS manager;
        testkit::ServiceUnderTest running(manager, {"--mate=" + std::string(mate)});

        EXPECT_FALSE(running.waitUntilReady()) << mate;
    }
    EXPECT_TRUE(std::ranges::any_of(m_log.texts(), [](const std::string& text) {
        return text.find("'--mate=half' is not the other half's node id") != std::string::npos;
    }));
}

TEST_F(RedundancyPairTest, SilentActiveMateIsStoodInFor)
{
    start();
    enlist();
    hear(EUnitRole_Active, 3);
    pass(mateHeartbeatsToMiss - 1);
    m_service.expectNothing();

    pass(1);
    obeyAll(toActive);

    EXPECT_TRUE(isActive());
    EXPECT_EQ(count("Warning 0x20080 Mate 0x0F02 is silent: 5 heartbeats have not come; it was active"), 1U);
    EXPECT_EQ(count("Warning 0x20080 Taking over from mate 0x0F02"), 1U);
    EXPECT_EQ(count("Info 0x20080 Switch to active done"), 1U);
    std::uint32_t term = 0;
    EXPECT_EQ(AaConfigTagGetU32(termTag, &term), EAaConfigTagStatus_Ok);
    EXPECT_EQ(term, 4U);
}

TEST_F(RedundancyPairTest, HeartbeatsInTimeKeepTheHalfStandby)
{
    start();
    enlist();
    for (int time = 0; time < 3; ++time) {
        hear(EUnitRole_Active, 1);
        pass(mateHeartbeatsToMiss - 1);
    }

    m_service.expectNothing();
    EXPECT_FALSE(isActive());
}

TEST_F(RedundancyPairTest, MateThatWasStandbyIsNotStoodInFor)
{
    start();
    enlist();
    hear(EUnitRole_Standby, 1);
    pass(2 * mateHeartbeatsToMiss);

    m_service.expectNothing();
    EXPECT_EQ(count("Warning 0x20080 Mate 0x0F02 is silent: 5 heartbeats have not come; it was standby"), 1U);
}

TEST_F(RedundancyPairTest, TakeOverThatFailedIsTriedAgainAfterASecond)
{
    start();
    enlist();
    hear(EUnitRole_Active, 1);
    pass(mateHeartbeatsToMiss);
    EXPECT_EQ(obey(ERedundancyState_HwapiFailure), ERedundancyCommand_PrepareActive);
    m_running->sync();
    EXPECT_EQ(count("Error 0x20080 Switch to active failed"), 1U);

    pass(9);
    m_service.expectNothing();
    pass(1);
    obeyAll(toActive);

    EXPECT_TRUE(isActive());
}

TEST_F(RedundancyPairTest, ActiveHalfOfAnEarlierTermYields)
{
    start();
    becomeActive(); // term 1
    enlist();

    hear(EUnitRole_Active, 2);
    obeyAll(toStandby);

    EXPECT_FALSE(isActive());
    EXPECT_EQ(count("Warning 0x20080 Mate 0x0F02 is active in term 2: this half, of term 1, yields"), 1U);
}

TEST_F(RedundancyPairTest, ActiveHalfOfALaterTermStays)
{
    start();
    hear(EUnitRole_Standby, 1);
    becomeActive(); // term 2
    enlist();

    hear(EUnitRole_Active, 1);

    m_service.expectNothing();
    EXPECT_TRUE(isActive());
}

TEST_F(RedundancyPairTest, InTheSameTermTheGreaterNodeYields)
{
    start();
    becomeActive();
    enlist();
    hear(EUnitRole_Active, 1);
    m_service.expectNothing();
    EXPECT_TRUE(isActive());

    start("--mate=0x0F00");
    EXPECT_TRUE(isActive());
    sendAs(0x0F0004E4, {EUnitRole_Active, 1, 0});
    obeyAll(toStandby);
    EXPECT_FALSE(isActive());
}

TEST_F(RedundancyPairTest, HalfThatIsBetweenBesideAnActiveMateBecomesStandby)
{
    start();
    enlist();
    m_service.send<RedundancySwitchReqMsg>(redundancyManagerCpid, {1, EUnitRole_Active});
    EXPECT_EQ(obey(ERedundancyState_HwapiFailure), ERedundancyCommand_PrepareActive);
    m_service.expect<RedundancySwitchRespMsg>();

    hear(EUnitRole_Active, 1);
    obeyAll(toStandby);

    EXPECT_EQ(count("Info 0x20080 Switch to standby done"), 1U);
}

TEST_F(RedundancyPairTest, TermSurvivesTheManager)
{
    start();
    hear(EUnitRole_Standby, 6);
    becomeActive();
    enlist();

    start();
    hear(EUnitRole_Active, 6);

    m_service.expectNothing();
    EXPECT_TRUE(isActive());
}

TEST_F(RedundancyPairTest, MatesServicesAreAskedByAddress)
{
    start();
    enlist();
    hear(EUnitRole_Active, 1, {{mateService, ERedundancyMode_All}});

    m_service.send<RedundancyShowReqMsg>(redundancyManagerCpid, {11});
    obeyAll({ERedundancyCommand_CardState});
    const auto answer = m_service.expect<RedundancyShowRespMsg>();

    EXPECT_EQ(answer->serviceCount, 1U) << "there is no way to the mate here";
    EXPECT_EQ(count("Warning 0x20080 Service 0x0F020211 has gone: forgotten"), 1U);
}

TEST_F(RedundancyPairTest, MatesServiceTellsItsState)
{
    start();
    hear(EUnitRole_Active, 1, {{mateService, ERedundancyMode_All}});
    const testkit::FailNth<AaSysComMsgSendS> taken(1, EAaSysComStatus_Ok); // the question, on its way to the mate
    m_service.send<RedundancyShowReqMsg>(redundancyManagerCpid, {11});
    m_running->sync();

    void* message =
        AaSysComMsgCreate(Service::ApiRedundancyIndMsg::ID, sizeof(SApiRedundancyInd), m_running->address());
    const SApiRedundancyInd state{ERedundancyCommand_CardState, ERedundancyState_SelfActive};
    std::memcpy(AaSysComMsgGetPayload(message), &state, sizeof state);
    AaSysComMsgSendS(&message, mateService);
    const auto answer = m_service.expect<RedundancyShowRespMsg>();

    ASSERT_EQ(answer->serviceCount, 1U);
    SRedundantService service{};
    std::memcpy(&service, &*answer + 1, sizeof service);
    EXPECT_EQ(service.address, mateService);
    EXPECT_EQ(service.state, static_cast<std::uint32_t>(ERedundancyState_SelfActive));
}

TEST_F(RedundancyPairTest, SwitchLeavesTheMatesServicesAlone)
{
    start();
    hear(EUnitRole_Standby, 1, {{mateService, ERedundancyMode_All}});

    becomeActive();

    EXPECT_TRUE(isActive());
    EXPECT_EQ(count("Warning 0x20080 Service 0x0F020211 has gone: forgotten"), 0U);
}

TEST_F(RedundancyPairTest, SilentMatesServicesAreUnknown)
{
    start();
    hear(EUnitRole_Standby, 1, {{mateService, ERedundancyMode_All}});
    pass(mateHeartbeatsToMiss);

    m_service.send<RedundancyShowReqMsg>(redundancyManagerCpid, {11});

    EXPECT_EQ(m_service.expect<RedundancyShowRespMsg>()->serviceCount, 0U);
}

} // namespace
} // namespace dorn::examples
