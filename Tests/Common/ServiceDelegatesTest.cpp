// SPDX-License-Identifier: MIT
#include "InvalidParameterException.hpp"
#include "RecordingPlatform.hpp"
#include "ScriptedService.hpp"

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>

namespace vel::hwapi::common {
namespace {

using dorn::test::RecordingPlatform;
using dorn::test::ScriptedDelegate;
using dorn::test::ScriptedService;
using testing::ElementsAre;
using testing::IsEmpty;

class ServiceDelegatesTest : public testing::Test {
protected:
    /// Gives the service one message of @p id, as its main EU would.
    void handle(TAaSysComMsgId id)
    {
        m_platform.queueMessage(id);
        m_service->Service::Run();
    }
    std::unique_ptr<ScriptedDelegate> delegate(unsigned int msgId, const std::string& name)
    {
        return std::make_unique<ScriptedDelegate>(
            msgId, [this, name](void*) { m_handledBy.push_back(name); }, &m_ends);
    }

    RecordingPlatform m_platform;
    std::unique_ptr<ScriptedService> m_service = std::make_unique<ScriptedService>();
    std::vector<std::string> m_handledBy;
    int m_ends = 0;
};

TEST_F(ServiceDelegatesTest, NullIsAnInvalidParameter)
{
    try {
        m_service->AddMsgDelegate(nullptr);
        FAIL() << "nothing thrown";
    } catch (const InvalidParameterException& exception) {
        EXPECT_EQ(exception.getDescription(), "NULL pointer argument passed to Service::AddMsgDelegate ");
        EXPECT_EQ(exception.getFile(), "Common/src/ServiceDelegates.cpp");
        EXPECT_GT(exception.getLine(), 0);
    }
}

TEST_F(ServiceDelegatesTest, DelegateGetsTheMessagesOfItsId)
{
    m_service->AddMsgDelegate(delegate(0x1234, "first").release());
    m_service->AddMsgDelegate(delegate(0x1235, "second").release());

    handle(0x1235);
    handle(0x1234);

    EXPECT_THAT(m_handledBy, ElementsAre("second", "first"));
    EXPECT_TRUE(m_service->HasMsgDelegate(0x1234));
    EXPECT_FALSE(m_service->HasMsgDelegate(0x1236));
}

TEST_F(ServiceDelegatesTest, SecondDelegateOfAnIdIsNeitherStoredNorDeleted)
{
    m_service->AddMsgDelegate(delegate(0x1234, "first").release());
    const std::unique_ptr<ScriptedDelegate> second = delegate(0x1234, "second");
    m_service->AddMsgDelegate(second.get());

    handle(0x1234);

    EXPECT_THAT(m_handledBy, ElementsAre("first"));
    EXPECT_EQ(m_ends, 0);
}

TEST_F(ServiceDelegatesTest, RemovedDelegateIsDeletedOnceAndGetsNoMoreMessages)
{
    m_service->AddMsgDelegate(delegate(0x1234, "first").release());

    m_service->RemoveMsgDelegate(0x1234);
    handle(0x1234);

    EXPECT_EQ(m_ends, 1);
    EXPECT_FALSE(m_service->HasMsgDelegate(0x1234));
    EXPECT_THAT(m_handledBy, IsEmpty());
}

TEST_F(ServiceDelegatesTest, RemovingAnIdThatIsNotRegisteredDoesNothing)
{
    m_service->AddMsgDelegate(delegate(0x1234, "first").release());

    m_service->RemoveMsgDelegate(0x1235);
    handle(0x1234);

    EXPECT_EQ(m_ends, 0);
    EXPECT_THAT(m_handledBy, ElementsAre("first"));
}

TEST_F(ServiceDelegatesTest, DelegateMayBeReplacedAfterItsRemoval)
{
    m_service->AddMsgDelegate(delegate(0x1234, "first").release());
    m_service->RemoveMsgDelegate(0x1234);
    m_service->AddMsgDelegate(delegate(0x1234, "second").release());

    handle(0x1234);

    EXPECT_THAT(m_handledBy, ElementsAre("second"));
}

TEST_F(ServiceDelegatesTest, DelegateMayRemoveItself)
{
    m_service->AddMsgDelegate(new ScriptedDelegate(
        0x1234, [this](void*) { m_service->RemoveMsgDelegate(0x1234); }, &m_ends));

    handle(0x1234);

    EXPECT_EQ(m_ends, 1);
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceDelegatesTest, DelegateThatRemovesItsIdAtItsEndIsDeletedOnce)
{
    class Remover : public MsgDelegateBase {
    public:
        Remover(Service& service, int& ends) : MsgDelegateBase(0x1234), m_service(service), m_ends(ends) {}
        ~Remover() override
        {
            ++m_ends;
            m_service.RemoveMsgDelegate(GetMsgId());
        }
        void HandleMsg(void* /*message*/) override {}

    private:
        Service& m_service;
        int& m_ends;
    };
    m_service->AddMsgDelegate(new Remover(*m_service, m_ends));
    m_service->RemoveMsgDelegate(0x1234);
    EXPECT_EQ(m_ends, 1);

    m_service->AddMsgDelegate(new Remover(*m_service, m_ends));
    m_service.reset();
    EXPECT_EQ(m_ends, 2);
}

/// Does something at its end.
class LastWords : public MsgDelegateBase {
public:
    LastWords(unsigned int msgId, std::function<void()> words) : MsgDelegateBase(msgId), m_words(std::move(words)) {}
    ~LastWords() override { m_words(); }
    void HandleMsg(void* /*message*/) override {}

private:
    std::function<void()> m_words;
};

TEST_F(ServiceDelegatesTest, DelegateMayRegisterItsSuccessorAtItsEnd)
{
    m_service->AddMsgDelegate(
        new LastWords(0x1234, [this] { m_service->AddMsgDelegate(delegate(0x1234, "successor").release()); }));

    m_service->RemoveMsgDelegate(0x1234);
    handle(0x1234);

    EXPECT_THAT(m_handledBy, ElementsAre("successor"));
    m_service.reset();
    EXPECT_EQ(m_ends, 1);
}

TEST_F(ServiceDelegatesTest, DelegateMayRemoveItsIdAndThenRegisterItsSuccessorAtItsEnd)
{
    m_service->AddMsgDelegate(new LastWords(0x1234, [this] {
        m_service->RemoveMsgDelegate(0x1234);
        m_service->AddMsgDelegate(delegate(0x1234, "successor").release());
    }));

    m_service->RemoveMsgDelegate(0x1234);
    handle(0x1234);

    EXPECT_THAT(m_handledBy, ElementsAre("successor"));
}

TEST_F(ServiceDelegatesTest, MessageThatComesAtTheEndOfItsDelegateIsUnknown)
{
    m_service->AddMsgDelegate(new LastWords(0x1234, [this] { handle(0x1234); }));
    m_platform.clearCalls();

    m_service->RemoveMsgDelegate(0x1234);

    EXPECT_THAT(m_platform.calls("Error"),
                ElementsAre("Error 0x20075 Unknown message received: id=0x1234 receiver=0x0F010456 "
                            "sender=0x0F010123"));
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(ServiceDelegatesTest, DelegatesAreDeletedWithTheService)
{
    m_service->AddMsgDelegate(delegate(0x1234, "first").release());
    m_service->AddMsgDelegate(delegate(0x1235, "second").release());
    m_service->AddMsgDelegate(delegate(0x1236, "third").release());
    m_service->RemoveMsgDelegate(0x1235);
    ASSERT_EQ(m_ends, 1);

    m_service.reset();

    EXPECT_EQ(m_ends, 3);
}

/// A delegate whose end fails.
template <class Thrown>
class FailingDelegate : public MsgDelegateBase {
public:
    explicit FailingDelegate(unsigned int msgId) : MsgDelegateBase(msgId) {}
    ~FailingDelegate() override { throw Thrown("cannot end"); }
    void HandleMsg(void* /*message*/) override {}
};

TEST_F(ServiceDelegatesTest, StandardExceptionOutOfARemovalBecomesARuntimeException)
{
    m_service->AddMsgDelegate(new FailingDelegate<std::logic_error>(0x1234));

    try {
        m_service->RemoveMsgDelegate(0x1234);
        FAIL() << "nothing thrown";
    } catch (const Service::RuntimeException& exception) {
        EXPECT_STREQ(exception.what(), "Runtime error");
        EXPECT_EQ(exception.getDescription(), "RemoveMsgDelegate failed");
        EXPECT_EQ(exception.getFile(), "Common/src/ServiceDelegates.cpp");
        EXPECT_GT(exception.getLine(), 0);
    }
    EXPECT_FALSE(m_service->HasMsgDelegate(0x1234));
}

TEST_F(ServiceDelegatesTest, OtherExceptionOutOfARemovalPassesThrough)
{
    m_service->AddMsgDelegate(new FailingDelegate<std::string>(0x1234));

    EXPECT_THROW(m_service->RemoveMsgDelegate(0x1234), std::string);
    EXPECT_FALSE(m_service->HasMsgDelegate(0x1234));
}

TEST_F(ServiceDelegatesTest, ExceptionOutOfADelegatesEndEndsTheProcessWithTheService)
{
    EXPECT_EXIT(
        {
            std::set_terminate([] {
                std::fputs("terminated\n", stderr);
                std::_Exit(3);
            });
            m_service->AddMsgDelegate(new FailingDelegate<std::logic_error>(0x1234));
            m_service.reset();
            std::_Exit(0);
        },
        testing::ExitedWithCode(3), "terminated");
}

struct Reading {
    std::uint32_t sensor;
    std::uint32_t value;
};
using ReadingMsg = Msg<Reading, 0x1234>;

struct Nothing {};
using StopMsg = Msg<Nothing, 0x1235>;

class ReadingS : public ScriptedService {
public:
    void HandleReading(ReadingMsg reading) { m_values.push_back(reading->value); }
    void HandleReadingAgain(ReadingMsg /*reading*/) { m_values.push_back(0); }
    void HandleStop(StopMsg stop) { m_stops.push_back(stop.GetSender()); }
    void HandleOnce(ReadingMsg reading)
    {
        RemoveMsgDelegate(ReadingMsg::ID);
        m_values.push_back(reading->value);
    }
    void handle(RecordingPlatform& platform, TAaSysComMsgId id, std::string_view payload)
    {
        platform.queueMessage(id, payload);
        Run();
    }

    std::vector<std::uint32_t> m_values;
    std::vector<unsigned int> m_stops;
};

/// An object that handles messages and is not the service.
class Display {
public:
    void HandleReading(ReadingMsg reading) { m_shown.push_back(reading->value); }
    std::vector<std::uint32_t> m_shown;
};

class MsgHandlerTest : public testing::Test {
protected:
    static std::string_view bytesOf(const Reading& reading)
    {
        return {reinterpret_cast<const char*>(&reading), sizeof reading};
    }

    RecordingPlatform m_platform;
    ReadingS m_service;
    const Reading m_reading{17, 42};
};

TEST_F(MsgHandlerTest, HandlerIsGivenItsTypedMessage)
{
    EXPECT_TRUE(m_service.AddMsgHandler(&ReadingS::HandleReading));

    m_service.handle(m_platform, 0x1234, bytesOf(m_reading));

    EXPECT_THAT(m_service.m_values, ElementsAre(42U));
    EXPECT_TRUE(m_service.HasMsgDelegate(0x1234));
}

TEST_F(MsgHandlerTest, PayloadMayBeLongerThanTheRecord)
{
    m_service.AddMsgHandler(&ReadingS::HandleReading);

    m_service.handle(m_platform, 0x1234, std::string(bytesOf(m_reading)) + "tail");

    EXPECT_THAT(m_service.m_values, ElementsAre(42U));
}

TEST_F(MsgHandlerTest, ShortPayloadIsLoggedAndTheHandlerNotCalled)
{
    m_service.AddMsgHandler(&ReadingS::HandleReading);
    m_platform.clearCalls();

    m_service.handle(m_platform, 0x1234, bytesOf(m_reading).substr(1));

    EXPECT_THAT(m_service.m_values, IsEmpty());
    EXPECT_THAT(m_platform.calls("Error"),
                ElementsAre("Error 0x20075 Message too short: id=0x1234 size=7 expected=8 sender=0x0F010123"));
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(MsgHandlerTest, MissingPayloadIsLoggedAndTheHandlerNotCalled)
{
    m_service.AddMsgHandler(&ReadingS::HandleReading);
    m_platform.clearCalls();

    m_service.handle(m_platform, 0x1234, {});

    EXPECT_THAT(m_service.m_values, IsEmpty());
    EXPECT_THAT(m_platform.calls("Error"),
                ElementsAre("Error 0x20075 Message too short: id=0x1234 size=0 expected=8 sender=0x0F010123"));
}

TEST_F(MsgHandlerTest, ServiceGoesOnAfterAShortMessage)
{
    m_service.AddMsgHandler(&ReadingS::HandleReading);
    m_service.handle(m_platform, 0x1234, "x");

    m_service.handle(m_platform, 0x1234, bytesOf(m_reading));

    EXPECT_THAT(m_service.m_values, ElementsAre(42U));
}

TEST_F(MsgHandlerTest, MessageWithAnEmptyRecordNeedsNoPayload)
{
    m_service.AddMsgHandler(&ReadingS::HandleStop);
    m_platform.clearCalls();

    m_service.handle(m_platform, 0x1235, {});
    m_service.handle(m_platform, 0x1235, "more");

    EXPECT_THAT(m_service.m_stops, ElementsAre(0x0F010123U, 0x0F010123U));
    EXPECT_THAT(m_platform.calls("Error"), IsEmpty());
}

TEST_F(MsgHandlerTest, SecondHandlerOfAnIdIsRefusedAndFreed)
{
    EXPECT_TRUE(m_service.AddMsgHandler(&ReadingS::HandleReading));
    m_platform.clearCalls();

    EXPECT_FALSE(m_service.AddMsgHandler(&ReadingS::HandleReadingAgain)); // a leak is found by the address sanitizer

    m_service.handle(m_platform, 0x1234, bytesOf(m_reading));
    EXPECT_THAT(m_service.m_values, ElementsAre(42U));
    EXPECT_THAT(m_platform.calls("Error"), ElementsAre("Error 0x20075 Message handler already registered: id=0x1234"));
}

TEST_F(MsgHandlerTest, HandlerMayBelongToAnotherObject)
{
    Display display;

    EXPECT_TRUE(m_service.AddMsgHandler(display, &Display::HandleReading));
    m_service.handle(m_platform, 0x1234, bytesOf(m_reading));

    EXPECT_THAT(display.m_shown, ElementsAre(42U));
}

TEST_F(MsgHandlerTest, HandlerMayRemoveItself)
{
    m_service.AddMsgHandler(&ReadingS::HandleOnce);

    m_service.handle(m_platform, 0x1234, bytesOf(m_reading));

    EXPECT_THAT(m_service.m_values, ElementsAre(42U));
    EXPECT_FALSE(m_service.HasMsgDelegate(0x1234));
}

} // namespace
} // namespace vel::hwapi::common
