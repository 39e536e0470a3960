// SPDX-License-Identifier: MIT
#include "RedundancyManagerS.hpp"

#include "AaConfigTag.h"
#include "FailNth.hpp"
#include "ManualClock.hpp"
#include "NodeTest.hpp"
#include "OutputCapture.hpp"
#include "Peer.hpp"
#include "ServiceUnderTest.hpp"

#include <gmock/gmock.h>

#include <cstring>
#include <memory>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Peer;

using RegisterReqMsg = Service::HwapiRedundancyRegisterReqMsg;
using RegisterRespMsg = Service::HwapiRedundancyRegisterRespMsg;
using StateReqMsg = Service::HwapiRedundancyStateReqMsg;
using StateRespMsg = Service::HwapiRedundancyStateRespMsg;
using IndMsg = Service::ApiRedundancyIndMsg;

/// A service that takes part, played by the test.
class Player : public Peer {
public:
    explicit Player(TAaSysComCpid cpid) : Peer(cpid) {}

    std::int32_t enlist(ERedundancyMode mode = ERedundancyMode_All)
    {
        send<RegisterReqMsg>(redundancyManagerCpid, {5, mode, 0});
        const auto answer = expect<RegisterRespMsg>();
        EXPECT_EQ(answer->transactionId, 5U);
        EXPECT_EQ(answer->redundancyMode, mode);
        EXPECT_EQ(answer->clientAddress, address());
        return answer->status;
    }
    /// Takes the next command, acknowledges it and tells a state.
    ERedundancyCommand obey(ERedundancyState state = ERedundancyState_Ready)
    {
        const auto request = expect<StateReqMsg>();
        send<StateRespMsg>(request.sender(), {request->transactionId, request->command, 0});
        tell(request->command, state);
        return request->command;
    }
    void tell(ERedundancyCommand command, ERedundancyState state)
    {
        send<IndMsg>(redundancyManagerCpid, {command, state});
    }
};

class RedundancyManagerSTest : public testkit::NodeTest {
protected:
    struct Shown {
        std::uint32_t role;
        std::vector<SRedundantService> services;
    };
    struct Switched {
        std::uint32_t status;
        std::uint32_t role;
        std::vector<SRedundantService> failed;
    };

    RedundancyManagerSTest() { start(); }

    void start()
    {
        m_running.reset();
        m_manager.reset(); // before another is made: a process has one service at a time
        m_manager = std::make_unique<RedundancyManagerS>();
        m_manager->SetVerbose(1); // has its lines of information kept
        m_running = std::make_unique<testkit::ServiceUnderTest>(*m_manager);
        if (!m_running->waitUntilReady()) {
            throw std::runtime_error("the redundancy manager does not start");
        }
    }

    template <class Answer>
    static std::vector<SRedundantService> servicesIn(const Answer& answer)
    {
        std::vector<SRedundantService> services(answer->serviceCount);
        EXPECT_EQ(answer.payload().size(), sizeof(*answer) + services.size() * sizeof(SRedundantService));
        if (!services.empty()) {
            std::memcpy(services.data(), &*answer + 1, services.size() * sizeof(SRedundantService));
        }
        return services;
    }
    void askToShow() { m_operator.send<RedundancyShowReqMsg>(redundancyManagerCpid, {11}); }
    Shown shown()
    {
        const auto answer = m_operator.expect<RedundancyShowRespMsg>();
        EXPECT_EQ(answer->transactionId, 11U);
        return {answer->role, servicesIn(answer)};
    }
    void askToSwitch(std::uint32_t role) { m_operator.send<RedundancySwitchReqMsg>(redundancyManagerCpid, {12, role}); }
    Switched switched()
    {
        const auto answer = m_operator.expect<RedundancySwitchRespMsg>();
        EXPECT_EQ(answer->transactionId, 12U);
        return {answer->status, answer->role, servicesIn(answer)};
    }
    bool isActive() const { return m_manager->isActiveLcp(); }
    /// The lines of the manager's own feature from Warning on.
    std::vector<std::string> complaints() const
    {
        std::vector<std::string> found;
        for (const std::string& text : m_log.texts()) {
            if (text.find(" 0x20080 ") != std::string::npos && !text.starts_with("Info")) {
                found.push_back(text);
            }
        }
        return found;
    }

    testkit::OutputCapture m_output;
    testkit::ManualClock m_clock; ///< no time passes unless a test wants it
    std::unique_ptr<RedundancyManagerS> m_manager;
    std::unique_ptr<testkit::ServiceUnderTest> m_running;
    Peer m_operator{0x301};
    Player m_first{0x211};
    Player m_second{0x212};
};

TEST_F(RedundancyManagerSTest, RegistrationIsAnsweredAndLogged)
{
    EXPECT_EQ(m_first.enlist(), ERedundancyRegisterStatus_Ok);

    EXPECT_EQ(m_log.count("Info 0x20080 Service 0x0F010211 registers for 4 all: status 0"), 1U);
}

TEST_F(RedundancyManagerSTest, UnknownModeIsRefused)
{
    EXPECT_EQ(m_first.enlist(static_cast<ERedundancyMode>(9)), ERedundancyRegisterStatus_UnknownMode);

    EXPECT_THAT(complaints(), ElementsAre("Error 0x20080 Service 0x0F010211 registers for 9 : status 1"));
}

TEST_F(RedundancyManagerSTest, UnregistrationIsNotAnswered)
{
    m_first.enlist();
    m_first.send<RegisterReqMsg>(redundancyManagerCpid, {0, ERedundancyMode_None, 0});
    askToShow();

    EXPECT_THAT(shown().services, IsEmpty());
    m_first.expectNothing();
}

TEST_F(RedundancyManagerSTest, UnregistrationOfOneThatIsNotRegisteredIsNothing)
{
    m_first.send<RegisterReqMsg>(redundancyManagerCpid, {0, ERedundancyMode_None, 0});
    m_running->sync();

    m_first.expectNothing();
    EXPECT_THAT(complaints(), IsEmpty());
}

TEST_F(RedundancyManagerSTest, RegistrationOfNobodyIsDropped)
{
    void* request = AaSysComMsgCreate(RegisterReqMsg::ID, sizeof(SHwapiRedundancyRegisterReq), m_running->address());
    const SHwapiRedundancyRegisterReq record{0, ERedundancyMode_All, 0x0F010211};
    std::memcpy(AaSysComMsgGetPayload(request), &record, sizeof record);
    AaSysComMsgSendS(&request, 0x0F010000);
    m_running->sync();

    EXPECT_THAT(complaints(), ElementsAre("Error 0x20080 Registration dropped: its sender has no cpid (0x0F010000)"));
}

TEST_F(RedundancyManagerSTest, ShortMessagesAreLoggedAndDropped)
{
    m_first.send(RegisterReqMsg::ID, redundancyManagerCpid, std::string(11, 'x'));
    m_first.send(StateRespMsg::ID, redundancyManagerCpid, std::string(11, 'x'));
    m_first.send(IndMsg::ID, redundancyManagerCpid, std::string(7, 'x'));
    m_first.send(RedundancyShowReqMsg::ID, redundancyManagerCpid, std::string(3, 'x'));
    m_first.send(RedundancySwitchReqMsg::ID, redundancyManagerCpid, std::string(7, 'x'));
    m_running->sync();

    m_first.expectNothing();
    EXPECT_THAT(complaints(),
                ElementsAre("Error 0x20080 Message too short: id=0x0FB1 size=11 expected=12 sender=0x0F010211",
                            "Error 0x20080 Message too short: id=0x0FB4 size=11 expected=12 sender=0x0F010211",
                            "Error 0x20080 Message too short: id=0x0FB0 size=7 expected=8 sender=0x0F010211",
                            "Error 0x20080 Message too short: id=0x2131 size=3 expected=4 sender=0x0F010211",
                            "Error 0x20080 Message too short: id=0x2133 size=7 expected=8 sender=0x0F010211"));
}

TEST_F(RedundancyManagerSTest, NoMemoryForAnAnswerIsLogged)
{
    const testkit::FailEvery<AaSysComMsgCreate> noMemory;
    m_first.send<RegisterReqMsg>(redundancyManagerCpid, {0, ERedundancyMode_All, 0});
    askToShow();
    askToSwitch(EUnitRole_Active);
    m_running->sync();

    m_operator.expectNothing();
    EXPECT_THAT(complaints(), ElementsAre("Error 0x20080 No memory to answer 0x0F010211",
                                          "Error 0x20080 No memory to answer 0x0F010301",
                                          "Error 0x20080 No memory to answer 0x0F010301"));
}

TEST_F(RedundancyManagerSTest, EveryServiceIsAskedForItsState)
{
    m_first.enlist();
    m_second.enlist(ERedundancyMode_RealTime);

    askToShow();
    EXPECT_EQ(m_first.obey(ERedundancyState_SelfActive), ERedundancyCommand_CardState);
    EXPECT_EQ(m_second.obey(ERedundancyState_HwapiFailure), ERedundancyCommand_CardState);

    const Shown answer = shown();
    EXPECT_EQ(answer.role, EUnitRole_Standby);
    ASSERT_EQ(answer.services.size(), 2U);
    EXPECT_EQ(answer.services[0].address, m_first.address());
    EXPECT_EQ(answer.services[0].mode, ERedundancyMode_All);
    EXPECT_EQ(answer.services[0].state, ERedundancyState_SelfActive);
    EXPECT_EQ(answer.services[0].command, ERedundancyCommand_CardState);
    EXPECT_EQ(answer.services[1].state, ERedundancyState_HwapiFailure);
}

TEST_F(RedundancyManagerSTest, QuestionWithoutServicesIsAnsweredAtOnce)
{
    askToShow();

    EXPECT_THAT(shown().services, IsEmpty());
}

TEST_F(RedundancyManagerSTest, ServiceThatDoesNotAnswerHasTimedOut)
{
    m_first.enlist();
    m_second.enlist();
    askToShow();
    m_first.obey();
    m_second.expect<StateReqMsg>();
    m_running->sync();

    m_clock.advance(redundancyAnswerTime);

    const Shown answer = shown();
    ASSERT_EQ(answer.services.size(), 2U);
    EXPECT_EQ(answer.services[0].state, ERedundancyState_Ready);
    EXPECT_EQ(answer.services[1].state, ERedundancyState_Timeout);
}

TEST_F(RedundancyManagerSTest, ServiceThatHasGoneIsForgotten)
{
    {
        Player gone(0x200);
        gone.enlist();
    }
    askToShow();

    EXPECT_THAT(shown().services, IsEmpty());
    EXPECT_THAT(complaints(), ElementsAre("Warning 0x20080 Service 0x0F010200 has gone: forgotten"));
}

TEST_F(RedundancyManagerSTest, UnfinishedServiceIsWaitedFor)
{
    m_first.enlist();
    askToShow();
    m_first.obey(ERedundancyState_Unfinished);
    m_running->sync();
    m_operator.expectNothing();

    m_first.tell(ERedundancyCommand_CardState, ERedundancyState_SelfStandby);

    EXPECT_EQ(shown().services.at(0).state, ERedundancyState_SelfStandby);
}

TEST_F(RedundancyManagerSTest, StateThatNobodyAskedForIsDropped)
{
    m_first.enlist();
    m_first.tell(ERedundancyCommand_CardState, ERedundancyState_SelfActive);
    m_second.tell(ERedundancyCommand_CardState, ERedundancyState_SelfActive);
    m_running->sync();

    EXPECT_THAT(complaints(),
                ElementsAre("Warning 0x20080 State 6 after command 2 of 0x0F010211 dropped: nobody asked for it",
                            "Warning 0x20080 State 6 after command 2 of 0x0F010212 dropped: nobody asked for it"));
}

TEST_F(RedundancyManagerSTest, QuestionDuringASwitchIsAnsweredWithWhatIsKnown)
{
    m_first.enlist();
    askToSwitch(EUnitRole_Active);
    m_first.expect<StateReqMsg>();

    askToShow();

    const Shown answer = shown();
    ASSERT_EQ(answer.services.size(), 1U);
    EXPECT_EQ(answer.services[0].command, ERedundancyCommand_PrepareActive);
    EXPECT_EQ(answer.services[0].state, 0U);
}

TEST_F(RedundancyManagerSTest, UnitBecomesActiveStepByStep)
{
    m_first.enlist();
    m_second.enlist(ERedundancyMode_Switchover);

    askToSwitch(EUnitRole_Active);
    for (const ERedundancyCommand command :
         {ERedundancyCommand_PrepareActive, ERedundancyCommand_TakeHwLatch, ERedundancyCommand_EnableActive}) {
        EXPECT_EQ(m_first.obey(), command);
        m_running->sync();
        EXPECT_FALSE(isActive());
        EXPECT_EQ(m_second.obey(), command); // the next step waits for both
    }

    const Switched answer = switched();
    EXPECT_EQ(answer.status, ERedundancySwitchStatus_Done);
    EXPECT_EQ(answer.role, EUnitRole_Active);
    EXPECT_THAT(answer.failed, IsEmpty());
    EXPECT_TRUE(isActive());
    EXPECT_EQ(m_log.count("Info 0x20080 Switch to active done"), 1U);
}

TEST_F(RedundancyManagerSTest, UnitBecomesStandbyStepByStep)
{
    ASSERT_EQ(AaConfigTagSetU32(activeUnitTag, 1), EAaConfigTagStatus_Ok);
    m_first.enlist();

    askToSwitch(EUnitRole_Standby);
    EXPECT_EQ(m_first.obey(), ERedundancyCommand_PrepareStandby);
    EXPECT_EQ(m_first.obey(), ERedundancyCommand_ReleaseActive);
    EXPECT_EQ(m_first.obey(), ERedundancyCommand_ReleaseHwLatch);

    EXPECT_EQ(switched().role, EUnitRole_Standby);
    EXPECT_FALSE(isActive());
}

TEST_F(RedundancyManagerSTest, ServiceOfAnotherModeIsNotSwitched)
{
    m_first.enlist(ERedundancyMode_RealTime);

    askToSwitch(EUnitRole_Active);

    EXPECT_EQ(switched().status, ERedundancySwitchStatus_Done);
    m_first.expectNothing();
}

TEST_F(RedundancyManagerSTest, ServiceThatFailsStopsTheSwitch)
{
    m_first.enlist();
    m_second.enlist();

    askToSwitch(EUnitRole_Active);
    m_first.obey(ERedundancyState_TesselFailure);
    m_second.obey();

    const Switched answer = switched();
    EXPECT_EQ(answer.status, ERedundancySwitchStatus_Failed);
    EXPECT_EQ(answer.role, EUnitRole_Between);
    ASSERT_EQ(answer.failed.size(), 1U);
    EXPECT_EQ(answer.failed[0].address, m_first.address());
    EXPECT_EQ(answer.failed[0].command, ERedundancyCommand_PrepareActive);
    EXPECT_EQ(answer.failed[0].state, ERedundancyState_TesselFailure);
    EXPECT_FALSE(isActive());
    EXPECT_THAT(complaints(), ElementsAre("Error 0x20080 Switch to active failed"));
    m_second.expectNothing();
}

TEST_F(RedundancyManagerSTest, EachStateOfFailureStopsTheSwitch)
{
    m_first.enlist();
    for (const ERedundancyState state :
         {ERedundancyState_HwapiFailure, ERedundancyState_NoMateCard, ERedundancyState_Timeout}) {
        askToSwitch(EUnitRole_Active);
        m_first.obey(state);
        EXPECT_EQ(switched().status, ERedundancySwitchStatus_Failed) << state;
    }
}

TEST_F(RedundancyManagerSTest, ServiceThatRefusesStopsTheSwitch)
{
    m_first.enlist();
    askToSwitch(EUnitRole_Active);
    const auto request = m_first.expect<StateReqMsg>();

    m_first.send<StateRespMsg>(redundancyManagerCpid, {request->transactionId, request->command, 13});

    const Switched answer = switched();
    EXPECT_EQ(answer.status, ERedundancySwitchStatus_Failed);
    ASSERT_EQ(answer.failed.size(), 1U);
    EXPECT_EQ(answer.failed[0].state, 0U);
    EXPECT_THAT(complaints(), ElementsAre("Error 0x20080 Service 0x0F010211 refuses 5 prepare-active: status 13",
                                          "Error 0x20080 Switch to active failed"));
}

TEST_F(RedundancyManagerSTest, ServiceThatDoesNotAnswerStopsTheSwitch)
{
    m_first.enlist();
    askToSwitch(EUnitRole_Active);
    m_first.obey();
    m_first.expect<StateReqMsg>(); // the second command

    m_clock.advance(redundancyAnswerTime);

    const Switched answer = switched();
    EXPECT_EQ(answer.status, ERedundancySwitchStatus_Failed);
    ASSERT_EQ(answer.failed.size(), 1U);
    EXPECT_EQ(answer.failed[0].command, ERedundancyCommand_TakeHwLatch);
    EXPECT_EQ(answer.failed[0].state, ERedundancyState_Timeout);
}

TEST_F(RedundancyManagerSTest, ServiceThatStartsAnewDuringASwitchStopsIt)
{
    m_first.enlist();
    askToSwitch(EUnitRole_Active);
    m_first.expect<StateReqMsg>();

    m_first.enlist();

    EXPECT_EQ(switched().status, ERedundancySwitchStatus_Failed);
}

TEST_F(RedundancyManagerSTest, ServiceThatLeavesDuringASwitchIsNotWaitedFor)
{
    m_first.enlist();
    askToSwitch(EUnitRole_Active);
    m_first.expect<StateReqMsg>();

    m_first.send<RegisterReqMsg>(redundancyManagerCpid, {0, ERedundancyMode_None, 0});

    EXPECT_EQ(switched().status, ERedundancySwitchStatus_Done);
}

TEST_F(RedundancyManagerSTest, SwitchThatHasFailedCanBeTakenBack)
{
    m_first.enlist();
    askToSwitch(EUnitRole_Active);
    m_first.obey(ERedundancyState_HwapiFailure);
    ASSERT_EQ(switched().role, EUnitRole_Between);

    askToSwitch(EUnitRole_Standby);
    m_first.obey();
    m_first.obey();
    m_first.obey();

    EXPECT_EQ(switched().role, EUnitRole_Standby);
}

TEST_F(RedundancyManagerSTest, SecondSwitchAtOnceIsRefused)
{
    m_first.enlist();
    askToSwitch(EUnitRole_Active);
    m_first.expect<StateReqMsg>();

    askToSwitch(EUnitRole_Standby);

    EXPECT_EQ(switched().status, ERedundancySwitchStatus_Busy);
}

TEST_F(RedundancyManagerSTest, SwitchToNoRoleIsRefused)
{
    askToSwitch(EUnitRole_Between);
    EXPECT_EQ(switched().status, ERedundancySwitchStatus_BadRole);
    askToSwitch(99);
    EXPECT_EQ(switched().status, ERedundancySwitchStatus_BadRole);
}

TEST_F(RedundancyManagerSTest, NoTimerIsLoggedAndTheSwitchRefused)
{
    const testkit::FailNth<AaTimerArm> noTimer(1);

    askToSwitch(EUnitRole_Active);

    EXPECT_EQ(switched().status, ERedundancySwitchStatus_Busy);
    EXPECT_THAT(complaints(), ElementsAre("Error 0x20080 No timer to wait for the services by"));
}

TEST_F(RedundancyManagerSTest, NoMemoryForACommandStopsTheSwitch)
{
    m_first.enlist();
    const testkit::FailNth<AaSysComMsgCreate> noMemory(1);

    askToSwitch(EUnitRole_Active);

    EXPECT_EQ(switched().status, ERedundancySwitchStatus_Failed);
    EXPECT_THAT(complaints(), ElementsAre("Error 0x20080 No memory for a command to 0x0F010211",
                                          "Error 0x20080 Switch to active failed"));
}

TEST_F(RedundancyManagerSTest, TimeOutOfAnEarlierSwitchDoesNotEndALaterOne)
{
    m_first.enlist();
    askToSwitch(EUnitRole_Active);
    for (int step = 0; step < 3; ++step) {
        m_first.obey();
    }
    ASSERT_EQ(switched().status, ERedundancySwitchStatus_Done);
    m_clock.advance(redundancyAnswerTime / 2);
    askToSwitch(EUnitRole_Standby);
    m_first.expect<StateReqMsg>();
    m_running->sync();

    m_clock.advance(redundancyAnswerTime / 2);
    m_running->sync();

    m_operator.expectNothing();
}

TEST_F(RedundancyManagerSTest, TimeOutThatArrivesLateIsPassedOver)
{
    m_first.enlist();
    askToSwitch(EUnitRole_Active);
    m_first.expect<StateReqMsg>();

    m_first.send(AA_TIMER_MSG_TIMEOUT, redundancyManagerCpid, std::string(sizeof(void*), '\0'));
    m_running->sync();

    m_operator.expectNothing();
}

TEST_F(RedundancyManagerSTest, RefusalOfAnEarlierCommandIsPassedOver)
{
    m_first.enlist();
    askToSwitch(EUnitRole_Active);
    m_first.obey();
    const auto second = m_first.expect<StateReqMsg>();

    m_first.send<StateRespMsg>(redundancyManagerCpid,
                               {second->transactionId - 1, ERedundancyCommand_PrepareActive, 13});
    m_running->sync();

    m_operator.expectNothing();
}

TEST_F(RedundancyManagerSTest, SwitchThatHasEndedLeavesNoTimeOut)
{
    const testkit::CountCalls<AaTimerCancel> cancelled;

    askToSwitch(EUnitRole_Active);
    ASSERT_EQ(switched().status, ERedundancySwitchStatus_Done);
    m_running->sync();

    EXPECT_EQ(cancelled.count(), 1U);
}

TEST_F(RedundancyManagerSTest, ManagerThatComesBackKnowsItsServicesAndItsRole)
{
    m_first.enlist(ERedundancyMode_Switchover);
    ASSERT_EQ(AaConfigTagSetU32(activeUnitTag, 1), EAaConfigTagStatus_Ok);

    start();
    askToShow();
    m_first.obey(ERedundancyState_SelfActive);

    const Shown answer = shown();
    EXPECT_EQ(answer.role, EUnitRole_Active);
    ASSERT_EQ(answer.services.size(), 1U);
    EXPECT_EQ(answer.services[0].mode, ERedundancyMode_Switchover);
    EXPECT_EQ(answer.services[0].state, ERedundancyState_SelfActive);
}

} // namespace
} // namespace dorn::examples
