// SPDX-License-Identifier: MIT
#include "RecordingPlatform.hpp"
#include "ScriptedService.hpp"

#include <gmock/gmock.h>

#include <cstring>
#include <optional>

namespace vel::hwapi::common {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* nullReceived = "Error 0x20075 HandleRedundancyStateReqMsg() NULL pointer received. ";
constexpr const char* nullCreated = "Error 0x20075 HandleRedundancyStateReqMsg() payload NULL. ";
constexpr TAaSysComSicad manager = 0x0F0104E4;

class RedundantService : public dorn::test::ScriptedService {
public:
    bool HandleRedundancyStateCommand(ERedundancyCommand command, ERedundancyState* state) override
    {
        return hook ? hook(command, state) : Service::HandleRedundancyStateCommand(command, state);
    }
    std::function<bool(ERedundancyCommand, ERedundancyState*)> hook;
};

template <class Record>
std::string bytesOf(const Record& record)
{
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

/// A service whose main EU this thread stands for.
class ServiceRedundancyTest : public testing::Test {
protected:
    ServiceRedundancyTest()
    {
        m_service.m_cpId = 0x456;
        m_platform.clearCalls();
    }

    /// A message that the service has received.
    class Received {
    public:
        Received(TAaSysComMsgId id, const std::string& payload, TAaSysComSicad sender = manager)
            : m_handle(dorn::test::RecordingPlatform::get().createMessage(
                  id, static_cast<std::uint16_t>(payload.size()), 0x0F010456))
        {
            AaSysComMsgSetSender(m_handle, sender);
            if (!payload.empty()) {
                std::memcpy(AaSysComMsgGetPayload(m_handle), payload.data(), payload.size());
            }
        }
        ~Received() { dorn::test::RecordingPlatform::get().endMessage(m_handle); }
        Received(const Received&) = delete;
        Received& operator=(const Received&) = delete;
        void* handle() const { return m_handle; }

    private:
        void* m_handle;
    };

    void answer(std::int32_t status)
    {
        m_platform.queueMessage(4018, bytesOf(SHwapiRedundancyRegisterResp{0, ERedundancyMode_All, 0, status}),
                                manager);
    }
    void command(ERedundancyCommand command)
    {
        const Received request(4019, bytesOf(SHwapiRedundancyStateReq{0x77, command}));
        m_service.HandleRedundancyStateReqMsg(request.handle());
    }
    /// Has no message with this id be made.
    void refuse(TAaSysComMsgId id)
    {
        m_platform.onCall = [this, beginning = "AaSysComMsgCreate(" + std::to_string(id)](const std::string& call) {
            m_platform.canCreateMessages = !call.starts_with(beginning);
        };
    }

    dorn::test::RecordingPlatform m_platform;
    RedundantService m_service;
};

TEST_F(ServiceRedundancyTest, RegistrationIsSentAndItsAnswerAwaited)
{
    answer(0);

    m_service.RegisterRedundancyService(ERedundancyMode_Switchover);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSysComSicadGet(0x4E4, 0xF01)", "AaSysComMsgCreate(4017, 12, 0xF0104E4)",
                            "AaSysComSicadGet(0x456, 0xF01)",
                            "AaSysComMsgSend(4017, from 0xF010456 to 0xF0104E4, 000000000300000000000000)",
                            "AaSysComMsgReceiveSelective(10000000, 1 4018)",
                            "Info 0x20075 Redundancy service registered successfully. ", "AaSysComMsgDestroy(4018)"));
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceRedundancyTest, RegistrationThatIsRefusedIsLogged)
{
    answer(3);

    m_service.RegisterRedundancyService(ERedundancyMode_All);

    EXPECT_THAT(m_platform.calls("Error"),
                ElementsAre("Error 0x20075 Redundancy service registration failed: status = 3 "));
    EXPECT_THAT(m_platform.calls("Info"), IsEmpty());
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceRedundancyTest, StatusIsPrintedWithItsSign)
{
    answer(-1);

    m_service.RegisterRedundancyService(ERedundancyMode_All);

    EXPECT_THAT(m_platform.calls("Error"),
                ElementsAre("Error 0x20075 Redundancy service registration failed: status = -1 "));
}

TEST_F(ServiceRedundancyTest, RegistrationWithoutAnswerIsLogged)
{
    m_service.RegisterRedundancyService(ERedundancyMode_RealTime);

    EXPECT_EQ(m_platform.calls().back(), "Error 0x20075 Timeout waiting for HWAPI_REDUNDANCY_REGISTER_RESP_MSG");
    EXPECT_THAT(m_platform.calls("AaSysComMsgDestroy"), IsEmpty());
}

TEST_F(ServiceRedundancyTest, RegistrationThatCannotBeMadeIsLoggedAndNotAwaited)
{
    m_platform.canCreateMessages = false;

    m_service.RegisterRedundancyService(ERedundancyMode_All);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSysComSicadGet(0x4E4, 0xF01)", "AaSysComMsgCreate(4017, 12, 0xF0104E4)", nullReceived,
                            "AaSysComMsgDestroy(null)"));
}

TEST_F(ServiceRedundancyTest, ManagerIsOnTheOwnNodeAlsoWithoutNodeId)
{
    m_platform.nid = 0;

    m_service.UnRegisterRedundancyService();

    EXPECT_THAT(m_platform.calls("AaSysComMsgSend"),
                ElementsAre("AaSysComMsgSend(4017, from 0xF010456 to 0x4E4, 000000000100000000000000)"));
}

TEST_F(ServiceRedundancyTest, UnregistrationIsSentAndNotAwaited)
{
    m_service.UnRegisterRedundancyService();

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSysComSicadGet(0x4E4, 0xF01)", "AaSysComMsgCreate(4017, 12, 0xF0104E4)",
                            "AaSysComSicadGet(0x456, 0xF01)",
                            "AaSysComMsgSend(4017, from 0xF010456 to 0xF0104E4, 000000000100000000000000)"));
}

TEST_F(ServiceRedundancyTest, UnregistrationThatCannotBeMadeIsLogged)
{
    m_platform.canCreateMessages = false;

    m_service.UnRegisterRedundancyService();

    EXPECT_THAT(m_platform.calls("Error"), ElementsAre(nullReceived));
    EXPECT_THAT(m_platform.calls("AaSysComMsgSend"), IsEmpty());
}

TEST_F(ServiceRedundancyTest, RegistrationWithoutPayloadIsLoggedDestroyedAndNotAwaited)
{
    m_platform.canCreatePayloads = false;

    m_service.RegisterRedundancyService(ERedundancyMode_All);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSysComSicadGet(0x4E4, 0xF01)", "AaSysComMsgCreate(4017, 12, 0xF0104E4)", nullReceived,
                            "AaSysComMsgDestroy(4017)"));
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceRedundancyTest, RegistrationAnswerWithoutPayloadIsLogged)
{
    const Received empty(4018, "");

    m_service.HandleRedundancyRegisterRespMsg(nullptr);
    m_service.HandleRedundancyRegisterRespMsg(empty.handle());

    EXPECT_THAT(m_platform.calls(), ElementsAre(nullReceived, nullReceived));
}

TEST_F(ServiceRedundancyTest, RegistrationAnswerThatIsTooShortHasNoPayload)
{
    const Received cut(4018, std::string(15, '\0'));

    m_service.HandleRedundancyRegisterRespMsg(cut.handle());

    EXPECT_THAT(m_platform.calls(), ElementsAre(nullReceived));
}

TEST_F(ServiceRedundancyTest, CommandIsAcknowledgedBeforeTheServiceReacts)
{
    m_service.hook = [this](ERedundancyCommand given, ERedundancyState* state) {
        m_platform.note("hook " + std::to_string(given), "");
        *state = ERedundancyState_SelfStandby;
        return true;
    };

    command(ERedundancyCommand_PrepareStandby);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSysComMsgCreate(4020, 12, 0xF0104E4)", "AaSysComSicadGet(0x456, 0xF01)",
                            "AaSysComMsgSend(4020, from 0xF010456 to 0xF0104E4, 770000000400000000000000)", "hook 4",
                            "AaSysComMsgCreate(4016, 8, 0xF0104E4)", "AaSysComSicadGet(0x456, 0xF01)",
                            "AaSysComMsgSend(4016, from 0xF010456 to 0xF0104E4, 0400000007000000)"));
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceRedundancyTest, AcknowledgementAndStateGoToWhoHasSentTheCommand)
{
    const Received request(4019, bytesOf(SHwapiRedundancyStateReq{0x77, ERedundancyCommand_CardState}), 0x0F220789);

    m_service.HandleRedundancyStateReqMsg(request.handle());

    EXPECT_THAT(m_platform.calls("AaSysComMsgSend"),
                ElementsAre("AaSysComMsgSend(4020, from 0xF010456 to 0xF220789, 770000000200000000000000)",
                            "AaSysComMsgSend(4016, from 0xF010456 to 0xF220789, 0200000001000000)"));
}

TEST_F(ServiceRedundancyTest, DefaultIsReadyForEveryCommand)
{
    for (std::uint32_t number = ERedundancyCommand_None; number <= ERedundancyCommand_ReleaseHwLatch; ++number) {
        m_platform.clearCalls();

        command(static_cast<ERedundancyCommand>(number));

        const std::string digits = "0" + std::to_string(number) + "000000";
        EXPECT_THAT(m_platform.calls("AaSysComMsgSend"),
                    ElementsAre("AaSysComMsgSend(4020, from 0xF010456 to 0xF0104E4, 77000000" + digits + "00000000)",
                                "AaSysComMsgSend(4016, from 0xF010456 to 0xF0104E4, " + digits + "01000000)"));
    }
}

TEST_F(ServiceRedundancyTest, CommandThatNobodyKnowsIsGivenToTheServiceAsItIs)
{
    std::optional<std::uint32_t> seen;
    m_service.hook = [&](ERedundancyCommand given, ERedundancyState*) {
        seen = given;
        return false;
    };

    command(static_cast<ERedundancyCommand>(0xFFFFFFFFU));

    EXPECT_EQ(seen, 0xFFFFFFFFU);
}

TEST_F(ServiceRedundancyTest, HookThatReturnsFalseHasNoStateSent)
{
    m_service.hook = [](ERedundancyCommand, ERedundancyState*) { return false; };

    command(ERedundancyCommand_CardState);

    EXPECT_THAT(m_platform.calls("AaSysComMsgSend"),
                ElementsAre("AaSysComMsgSend(4020, from 0xF010456 to 0xF0104E4, 770000000200000000000000)"));
    EXPECT_THAT(m_platform.calls("AaSysComMsgCreate(4016"), IsEmpty());
}

TEST_F(ServiceRedundancyTest, AcknowledgementThatCannotBeMadeEndsTheExchange)
{
    refuse(4020);
    m_service.hook = [](ERedundancyCommand, ERedundancyState*) {
        ADD_FAILURE() << "the service has been told";
        return true;
    };

    command(ERedundancyCommand_CardState);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSysComMsgCreate(4020, 12, 0xF0104E4)", nullCreated, "AaSysComMsgDestroy(null)"));
}

TEST_F(ServiceRedundancyTest, AcknowledgementWithoutPayloadIsDestroyedAndEndsTheExchange)
{
    m_platform.canCreatePayloads = false;

    command(ERedundancyCommand_CardState);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSysComMsgCreate(4020, 12, 0xF0104E4)", nullCreated, "AaSysComMsgDestroy(4020)"));
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceRedundancyTest, IndicationThatCannotBeMadeIsLogged)
{
    refuse(4016);

    command(ERedundancyCommand_CardState);

    EXPECT_THAT(m_platform.calls("AaSysComMsgSend(4020"), testing::SizeIs(1));
    EXPECT_THAT(m_platform.calls("AaSysComMsgSend(4016"), IsEmpty());
    EXPECT_THAT(m_platform.calls("Error"), ElementsAre(nullCreated));
}

TEST_F(ServiceRedundancyTest, IndicationWithoutPayloadIsLoggedAndDestroyed)
{
    m_service.hook = [this](ERedundancyCommand, ERedundancyState*) {
        m_platform.canCreatePayloads = false;
        m_platform.clearCalls();
        return true;
    };

    command(ERedundancyCommand_CardState);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSysComMsgCreate(4016, 8, 0xF0104E4)", nullCreated, "AaSysComMsgDestroy(4016)"));
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceRedundancyTest, CommandWithoutPayloadIsLoggedAndNotAnswered)
{
    const Received empty(4019, "");

    m_service.HandleRedundancyStateReqMsg(nullptr);
    m_service.HandleRedundancyStateReqMsg(empty.handle());

    EXPECT_THAT(m_platform.calls(), ElementsAre(nullReceived, nullReceived));
}

TEST_F(ServiceRedundancyTest, CommandThatIsTooShortHasNoPayload)
{
    const Received cut(4019, std::string(7, '\0'));

    m_service.HandleRedundancyStateReqMsg(cut.handle());

    EXPECT_THAT(m_platform.calls(), ElementsAre(nullReceived));
}

TEST_F(ServiceRedundancyTest, RequestIsLeftToTheMessageLoop)
{
    const Received request(4019, bytesOf(SHwapiRedundancyStateReq{1, ERedundancyCommand_CardState}));

    m_service.HandleRedundancyStateReqMsg(request.handle());

    EXPECT_EQ(m_platform.liveMessages(), 1U);
    EXPECT_THAT(m_platform.calls("AaSysComMsgDestroy"), IsEmpty());
}

TEST_F(ServiceRedundancyTest, HandlerOfCommandsIsRegisteredOnce)
{
    EXPECT_TRUE(m_service.AddRedundancyHandler());
    EXPECT_TRUE(m_service.HasMsgDelegate(4019));
    EXPECT_FALSE(m_service.AddRedundancyHandler());

    EXPECT_THAT(m_platform.calls("Error"), ElementsAre("Error 0x20075 Message handler already registered: id=0x0FB3"));
}

class ActiveUnitTest : public ServiceRedundancyTest {
protected:
    bool isActiveWith(const std::string& value)
    {
        m_platform.tags["sys.unit.state.ne-act"] = value;
        const bool isActive = m_service.isActiveLcp();
        EXPECT_EQ(m_platform.liveTagValues, 0U);
        return isActive;
    }
};

TEST_F(ActiveUnitTest, TagOfFourBytesTells)
{
    EXPECT_TRUE(isActiveWith(bytesOf(std::uint32_t{1})));
    EXPECT_FALSE(isActiveWith(bytesOf(std::uint32_t{0})));
    EXPECT_TRUE(isActiveWith(bytesOf(std::uint32_t{0x01000000})));
}

TEST_F(ActiveUnitTest, TagOfAnotherSizeIsNo)
{
    EXPECT_FALSE(isActiveWith(""));
    EXPECT_FALSE(isActiveWith("\x01"));
    EXPECT_FALSE(isActiveWith("\x01\x01\x01"));
    EXPECT_FALSE(isActiveWith("\x01\x01\x01\x01\x01"));
}

TEST_F(ActiveUnitTest, TagThatDoesNotExistIsNo)
{
    EXPECT_FALSE(m_service.isActiveLcp());
    EXPECT_THAT(m_platform.calls(), ElementsAre("AaConfigTagGet(\"sys.unit.state.ne-act\")"));
}

TEST_F(ActiveUnitTest, TagThatCannotBeReadIsNo)
{
    m_platform.setResult("AaConfigTagGet", 4);

    EXPECT_FALSE(isActiveWith(bytesOf(std::uint32_t{1})));
}

TEST_F(ActiveUnitTest, TagThatIsReadWithoutAValueIsNo)
{
    m_platform.canHandOutValues = false;

    EXPECT_FALSE(isActiveWith(bytesOf(std::uint32_t{1})));

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaConfigTagGet(\"sys.unit.state.ne-act\")"));
}

TEST_F(ActiveUnitTest, ValueIsReleased)
{
    isActiveWith(bytesOf(std::uint32_t{1}));

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaConfigTagGet(\"sys.unit.state.ne-act\")", "AaMemUnRefDbg()"));
}

} // namespace
} // namespace vel::hwapi::common
