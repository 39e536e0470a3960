// SPDX-License-Identifier: MIT
#include "ScriptedReqs.hpp"

#include "InvalidParameterException.hpp"
#include "MsgHandlingException.hpp"
#include "ScriptedService.hpp"
#include "reqforwarding/ReqDelegate.hpp"

#include <gmock/gmock.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>

namespace vel::hwapi::common {
namespace {

using dorn::test::formatted;
using dorn::test::printId;
using dorn::test::RecordingPlatform;
using dorn::test::ScriptedReq;
using dorn::test::ScriptedReqs;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// A debug line of the handler about a pointer.
std::string line(const char* text, const void* pointer)
{
    return "Debug 0x20075 " + std::string(text) + formatted("'%p'", pointer);
}

std::string sizeLine(const char* function, int size)
{
    return formatted("Debug 0x20075 ReqHandler::%s m_reqs.size '%d'", function, size);
}

/// What a MsgHandlingException out of @p work says; empty without one.
template <class Work>
std::string descriptionOf(const Work& work)
{
    try {
        work();
        return {};
    } catch (const MsgHandlingException& exception) {
        EXPECT_STREQ(exception.what(), "Message handling error");
        return exception.getDescription();
    }
}

/// Expects that @p work throws an exception that names this file and a line of it.
template <class Exception, class Work>
void expectThrownIn(const std::string& file, const Work& work)
{
    try {
        work();
        ADD_FAILURE() << "no exception";
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.getFile(), file);
        EXPECT_GT(exception.getLine(), 0);
    }
}

class ReqHandlerTest : public testing::Test {
protected:
    ReqHandlerTest() { m_platform.clearCalls(); }
    ~ReqHandlerTest() override
    {
        AaSysComMsgDestroy(&m_message);
        for (void* message : m_messages) {
            AaSysComMsgDestroy(&message);
        }
    }
    ReqHandlerTest(const ReqHandlerTest&) = delete;
    ReqHandlerTest& operator=(const ReqHandlerTest&) = delete;

    /// A time-out message with these bytes.
    void* timeOut(const void* bytes, std::size_t size)
    {
        AaSysComMsgDestroy(&m_message);
        m_message = AaSysComMsgCreate(API_FORWARD_TIMEOUT_OUT, static_cast<std::uint16_t>(size), 0);
        if (size != 0) {
            std::memcpy(AaSysComMsgGetPayload(m_message), bytes, size);
        }
        m_platform.clearCalls();
        return m_message;
    }
    /// Some message of @p size bytes.
    void* messageOf(std::uint16_t size)
    {
        m_messages.push_back(AaSysComMsgCreate(1, size, 0));
        return m_messages.back();
    }
    template <class TypedMessage>
    std::unique_ptr<MsgDelegateBase> delegate(void (ReqHandler::*entryPoint)(void*))
    {
        return std::make_unique<ReqDelegate<TypedMessage>>(m_reqs, entryPoint, printId);
    }
    void* timeOutOf(const Req* req) { return timeOut(&req, sizeof req); }

    RecordingPlatform m_platform;
    std::unique_ptr<ScriptedReqs> m_owner = std::make_unique<ScriptedReqs>();
    ScriptedReqs& m_reqs = *m_owner;
    void* m_message = nullptr;
    std::vector<void*> m_messages;
};

struct Number {
    std::uint32_t value;
};

TEST_F(ReqHandlerTest, RequestLogsItsBeginningAndItsEnd)
{
    std::optional<Req> req(std::in_place, m_reqs, printId, nullptr);
    const void* const address = &*req;
    EXPECT_THAT(m_platform.calls(), ElementsAre("Debug 0x20075 Req::Req"));
    m_platform.clearCalls();

    req.reset();

    EXPECT_THAT(m_platform.calls(), ElementsAre(line("Req::~Req this: ", address)));
}

TEST_F(ReqHandlerTest, RequestLogsWithItsOwnPrintId)
{
    const Req req(m_reqs, ERadHwapi_GENIO, nullptr);

    EXPECT_THAT(m_platform.calls(), ElementsAre("Debug 0x2000A Req::Req"));
}

TEST_F(ReqHandlerTest, RequestKeepsItsMessage)
{
    int message = 0;
    const ScriptedReq req(m_reqs, &message);

    EXPECT_EQ(req.message(), &message);
}

TEST_F(ReqHandlerTest, WhatARequestDoesNotOverrideIsNotImplemented)
{
    Req req(m_reqs, printId, nullptr);

    EXPECT_EQ(descriptionOf([&] { req.HandleReq(); }), "Req::HandleReq NOT IMPLEMENTED");
    EXPECT_EQ(descriptionOf([&] { req.HandleForwardedReqResp(nullptr); }),
              "Req::HandleForwardedReqResp NOT IMPLEMENTED");
    EXPECT_EQ(descriptionOf([&] { req.HandleForwardedReqTimeout(); }),
              "Req::HandleForwardedReqTimeout NOT IMPLEMENTED");
}

TEST_F(ReqHandlerTest, WhatARequestDoesNotOverrideTellsWhereItWasThrown)
{
    const std::string file = "Common/src/reqforwarding/Req.cpp";
    Req req(m_reqs, printId, nullptr);

    expectThrownIn<MsgHandlingException>(file, [&] { req.HandleReq(); });
    expectThrownIn<MsgHandlingException>(file, [&] { req.HandleForwardedReqResp(nullptr); });
    expectThrownIn<MsgHandlingException>(file, [&] { req.HandleForwardedReqTimeout(); });
}

TEST_F(ReqHandlerTest, HandlerLogsItsBeginning)
{
    const ScriptedReqs another;

    EXPECT_THAT(m_platform.calls(), ElementsAre("Debug 0x20075 ReqHandler::ReqHandler"));
}

TEST_F(ReqHandlerTest, HandlerAndRequestsLogWithTheirOwnPrintIds)
{
    {
        ScriptedReqs reqs(ERadHwapi_GENIO);
        reqs.onNew = [&](void* msgHandle) { return new ScriptedReq(reqs, msgHandle); };
        reqs.HandleNewReq(static_cast<void*>(this));
        reqs.add();
        reqs.HandleForwardedReqResp(nullptr);
        Req* const last = reqs.open().back();
        void* message = AaSysComMsgCreate(API_FORWARD_TIMEOUT_OUT, sizeof last, 0);
        std::memcpy(AaSysComMsgGetPayload(message), &last, sizeof last);
        reqs.HandleForwardedReqTimeout(message);
        AaSysComMsgDestroy(&message);
        reqs.ReqCompleted(last);
    }

    EXPECT_THAT(m_platform.calls("Debug 0x2000A ReqHandler::"), SizeIs(17));
    EXPECT_THAT(m_platform.calls("Debug 0x20075 Req::"), SizeIs(4)); // two requests begin and end
    EXPECT_THAT(m_platform.calls("Debug "), SizeIs(21));
}

TEST_F(ReqHandlerTest, NewRequestIsMadeKeptAndThenHandled)
{
    int message = 0;
    Req* made = nullptr;
    m_reqs.onNew = [&](void* msgHandle) {
        EXPECT_EQ(msgHandle, &message);
        auto* const req = new ScriptedReq(m_reqs, msgHandle);
        req->onReq = [&, req] {
            EXPECT_THAT(m_reqs.open(), ElementsAre(req));
            m_platform.note("HandleReq", "HandleReq");
        };
        return made = req;
    };

    m_reqs.HandleNewReq(&message);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre(line("ReqHandler::HandleNewReq msgHandle ", &message), "Debug 0x20075 Req::Req",
                            line("ReqHandler::HandleNewReq req ", made),
                            line("ReqHandler::HandleNewReq m_reqs.size '1' req ", made), "HandleReq"));
}

TEST_F(ReqHandlerTest, RequestsAreKeptInTheOrderOfTheirArrival)
{
    ScriptedReq& first = m_reqs.add();
    ScriptedReq& second = m_reqs.add();
    ScriptedReq& third = m_reqs.add();

    EXPECT_THAT(m_reqs.open(), ElementsAre(&first, &second, &third));
    EXPECT_EQ(m_platform.calls().back(), line("ReqHandler::HandleNewReq m_reqs.size '3' req ", &third));
}

TEST_F(ReqHandlerTest, RequestThatOverridesNothingThrowsAsSoonAsItIsAddedAndStaysOpen)
{
    auto* const req = new Req(m_reqs, printId, nullptr);

    EXPECT_EQ(descriptionOf([&] { m_reqs.HandleNewReq(req); }), "Req::HandleReq NOT IMPLEMENTED");

    EXPECT_THAT(m_reqs.open(), ElementsAre(req));
}

TEST_F(ReqHandlerTest, RequestMayCompleteWhileItIsHandledForTheFirstTime)
{
    auto* const req = new ScriptedReq(m_reqs);
    req->onReq = [req] { req->complete(); };

    m_reqs.HandleNewReq(req);

    EXPECT_THAT(m_reqs.open(), IsEmpty());
}

TEST_F(ReqHandlerTest, NoRequestIsAnInvalidParameter)
{
    try {
        m_reqs.HandleNewReq(static_cast<Req*>(nullptr));
        ADD_FAILURE() << "no exception";
    } catch (const InvalidParameterException& exception) {
        EXPECT_EQ(exception.getDescription(), "NULL pointer argument passed to ReqHandler::HandleNewReq");
        EXPECT_EQ(exception.getFile(), "Common/src/reqforwarding/ReqHandler.cpp");
        EXPECT_GT(exception.getLine(), 0);
    }
    EXPECT_THROW(m_reqs.HandleNewReq(static_cast<void*>(this)), InvalidParameterException); // NewReq() makes none
    EXPECT_THAT(m_reqs.open(), IsEmpty());
}

TEST_F(ReqHandlerTest, ExceptionOutOfNewReqPassesAndAddsNothing)
{
    m_reqs.onNew = [](void*) -> Req* { throw MsgHandlingException("bad request", "", 0); };

    EXPECT_EQ(descriptionOf([&] { m_reqs.HandleNewReq(static_cast<void*>(this)); }), "bad request");

    EXPECT_THAT(m_reqs.open(), IsEmpty());
}

TEST_F(ReqHandlerTest, CompletedRequestIsTakenOutAndDeleted)
{
    ScriptedReq& req = m_reqs.add();
    ScriptedReq& other = m_reqs.add();
    req.onEnd = [&] { EXPECT_THAT(m_reqs.open(), ElementsAre(&other)); };
    m_platform.clearCalls();

    m_reqs.ReqCompleted(&req);

    EXPECT_THAT(m_platform.calls(), ElementsAre(line("ReqHandler::ReqCompleted reqPointer ", &req),
                                                line("ReqHandler::ReqCompleted delete req ", &req),
                                                line("Req::~Req this: ", &req), sizeLine("ReqCompleted", 1)));
    EXPECT_THAT(m_reqs.open(), ElementsAre(&other));
}

TEST_F(ReqHandlerTest, CompletionOfARequestThatIsNotKeptDoesNothing)
{
    ScriptedReqs others;
    ScriptedReq& foreign = others.add();
    m_reqs.add();
    m_platform.clearCalls();

    m_reqs.ReqCompleted(&foreign);
    m_reqs.ReqCompleted(nullptr);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre(line("ReqHandler::ReqCompleted reqPointer ", &foreign), sizeLine("ReqCompleted", 1),
                            line("ReqHandler::ReqCompleted reqPointer ", nullptr), sizeLine("ReqCompleted", 1)));
}

TEST_F(ReqHandlerTest, RequestCompletedASecondTimeByItsOwnEndIsDeletedOnce)
{
    ScriptedReq& req = m_reqs.add();
    int ends = 0;
    req.onEnd = [&] {
        ++ends;
        m_reqs.ReqCompleted(&req);
    };

    m_reqs.ReqCompleted(&req);

    EXPECT_EQ(ends, 1);
}

TEST_F(ReqHandlerTest, EndOfTheHandlerDeletesTheOpenRequestsTheOldestFirst)
{
    const Req* const first = &m_reqs.add();
    ScriptedReq& second = m_reqs.add();
    second.onEnd = [&] { EXPECT_THAT(m_reqs.open(), IsEmpty()); }; // taken out before it is deleted
    const void* const last = &second;
    m_platform.clearCalls();

    m_owner.reset();

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("Debug 0x20075 ReqHandler::~ReqHandler", line("ReqHandler::~ReqHandler delete req ", first),
                            line("Req::~Req this: ", first), line("ReqHandler::~ReqHandler delete req ", last),
                            line("Req::~Req this: ", last)));
}

TEST_F(ReqHandlerTest, TimeOutIsToldToTheRequestWithTheIdentity)
{
    ScriptedReq& first = m_reqs.add();
    ScriptedReq& second = m_reqs.add();
    ScriptedReq& third = m_reqs.add();
    for (ScriptedReq* const req : {&first, &second, &third}) {
        req->onTimeout = [this, req] { m_platform.note(formatted("time-out %p", static_cast<void*>(req)), ""); };
    }

    m_reqs.HandleForwardedReqTimeout(timeOutOf(&second));

    EXPECT_THAT(m_platform.calls(),
                ElementsAre(formatted("Debug 0x20075 ReqHandler::HandleForwardedReqTimeout req'%p' (*it)'%p'",
                                      static_cast<void*>(&second), static_cast<void*>(&first)),
                            formatted("Debug 0x20075 ReqHandler::HandleForwardedReqTimeout req'%p' (*it)'%p'",
                                      static_cast<void*>(&second), static_cast<void*>(&second)),
                            formatted("time-out %p", static_cast<void*>(&second))));
}

TEST_F(ReqHandlerTest, RequestMayCompleteOnItsTimeOut)
{
    ScriptedReq& req = m_reqs.add();
    m_reqs.add();
    req.onTimeout = [&] { req.complete(); };

    m_reqs.HandleForwardedReqTimeout(timeOutOf(&req));

    EXPECT_EQ(m_reqs.open().size(), 1U);
}

TEST_F(ReqHandlerTest, RequestMayForwardAgainOnItsTimeOutAndStaysOpen)
{
    ScriptedReq& req = m_reqs.add();
    int timeOuts = 0;
    req.onTimeout = [&] { ++timeOuts; };

    m_reqs.HandleForwardedReqTimeout(timeOutOf(&req));
    m_reqs.HandleForwardedReqTimeout(timeOutOf(&req));

    EXPECT_EQ(timeOuts, 2);
    EXPECT_THAT(m_reqs.open(), ElementsAre(&req));
}

TEST_F(ReqHandlerTest, TimeOutOfACompletedRequestIsIgnored)
{
    ScriptedReq& req = m_reqs.add();
    ScriptedReq& open = m_reqs.add();
    open.onTimeout = [] { ADD_FAILURE() << "not its time-out"; };
    void* const late = timeOutOf(&req);
    req.complete();
    m_platform.clearCalls();

    EXPECT_NO_THROW(m_reqs.HandleForwardedReqTimeout(late));

    EXPECT_THAT(m_platform.calls(), testing::SizeIs(1)); // the comparison with the open one
}

TEST_F(ReqHandlerTest, IdentityIsComparedAndNeverFollowed)
{
    ScriptedReq& open = m_reqs.add();
    open.onTimeout = [] { ADD_FAILURE() << "not its time-out"; };
    for (const std::uintptr_t identity : {std::uintptr_t{0}, std::uintptr_t{1}, ~std::uintptr_t{0}}) {
        EXPECT_NO_THROW(m_reqs.HandleForwardedReqTimeout(timeOut(&identity, sizeof identity)));
    }
}

TEST_F(ReqHandlerTest, LateTimeOutReachesANewRequestAtTheSameAddress)
{
    // The address is all that there is to compare.
    alignas(ScriptedReq) std::byte place[sizeof(ScriptedReq)];
    auto* const old = new (place) ScriptedReq(m_reqs);
    void* const late = timeOutOf(old);
    old->~ScriptedReq();
    auto* const fresh = new (place) ScriptedReq(m_reqs);
    bool isTold = false;
    fresh->onTimeout = [&] { isTold = true; };
    class Keep : public ScriptedReqs {
    public:
        void keep(Req* req) { m_reqs.push_back(req); }
        void letGo() { m_reqs.clear(); }
    } reqs;
    reqs.keep(fresh);

    reqs.HandleForwardedReqTimeout(late);

    EXPECT_TRUE(isTold);
    reqs.letGo();
    fresh->~ScriptedReq();
}

TEST_F(ReqHandlerTest, RequestsIdentityMayBeFollowedByMoreBytes)
{
    ScriptedReq& req = m_reqs.add();
    bool isTold = false;
    req.onTimeout = [&] { isTold = true; };
    const std::array<const Req*, 2> words{&req, nullptr};

    m_reqs.HandleForwardedReqTimeout(timeOut(words.data(), sizeof words));

    EXPECT_TRUE(isTold);
}

TEST_F(ReqHandlerTest, TimeOutWithoutPayloadIsAnException)
{
    m_reqs.add();
    const std::string missing = "ReqHandler::HandleForwardedReqTimeout Payload missing from API_FORWARD_TIMEOUT_OUT";

    EXPECT_EQ(descriptionOf([&] { m_reqs.HandleForwardedReqTimeout(timeOut(nullptr, 0)); }), missing);
    EXPECT_EQ(descriptionOf([&] { m_reqs.HandleForwardedReqTimeout(nullptr); }), missing);
    expectThrownIn<MsgHandlingException>("Common/src/reqforwarding/ReqHandler.cpp",
                                         [&] { m_reqs.HandleForwardedReqTimeout(nullptr); });
    const void* const word = nullptr;
    EXPECT_EQ(descriptionOf([&] { m_reqs.HandleForwardedReqTimeout(timeOut(&word, sizeof word - 1)); }), missing);
}

TEST_F(ReqHandlerTest, ExceptionOutOfATimeOutPassesAndTheRequestStaysOpen)
{
    auto* const req = new ScriptedReq(m_reqs);
    m_reqs.HandleNewReq(req);
    req->onTimeout = [] { throw MsgHandlingException("broken", "", 0); };

    EXPECT_EQ(descriptionOf([&] { m_reqs.HandleForwardedReqTimeout(timeOutOf(req)); }), "broken");

    EXPECT_THAT(m_reqs.open(), ElementsAre(req));
}

TEST_F(ReqHandlerTest, DelegatesCallTheEntryPoints)
{
    const auto requests = delegate<Msg<Number, 0x1000>>(&ReqHandler::HandleNewReq);
    const auto replies = delegate<Msg<Number, 0x1001>>(&ReqHandler::HandleForwardedReqResp);
    const auto timeOuts = delegate<ApiForwardTimeoutOutMsg>(&ReqHandler::HandleForwardedReqTimeout);
    void* const message = messageOf(sizeof(Number));
    std::string heard;
    ScriptedReq* req = nullptr;
    m_reqs.onNew = [&](void* msgHandle) {
        req = new ScriptedReq(m_reqs, msgHandle);
        req->onReq = [&] { heard += "request "; };
        req->onResp = [&](void* reply) { heard += reply == message ? "reply " : "other "; };
        req->onTimeout = [&] { heard += "time-out"; };
        return req;
    };

    requests->HandleMsg(message);
    replies->HandleMsg(message);
    timeOuts->HandleMsg(timeOutOf(req));

    EXPECT_EQ(heard, "request reply time-out");
    EXPECT_EQ(requests->GetMsgId(), 0x1000U);
    EXPECT_EQ(timeOuts->GetMsgId(), 0x2BFFU);
}

TEST_F(ReqHandlerTest, MessageThatIsTooShortIsLoggedAndDropped)
{
    const auto requests = delegate<Msg<Number, 0x1000>>(&ReqHandler::HandleNewReq);

    EXPECT_NO_THROW(requests->HandleMsg(messageOf(3)));
    EXPECT_NO_THROW(requests->HandleMsg(messageOf(0)));

    EXPECT_THAT(m_platform.calls("Error"),
                ElementsAre("Error 0x20075 Message too short: id=0x1000 size=3 expected=4 sender=0x00000000",
                            "Error 0x20075 Message too short: id=0x1000 size=0 expected=4 sender=0x00000000"));
}

TEST_F(ReqHandlerTest, MessageWithAnEmptyRecordNeedsNoPayload)
{
    struct Nothing {};
    const auto replies = delegate<Msg<Nothing, 0x1000>>(&ReqHandler::HandleForwardedReqResp);
    bool isAsked = false;
    m_reqs.add().onResp = [&](void*) { isAsked = true; };

    replies->HandleMsg(messageOf(0));

    EXPECT_TRUE(isAsked);
}

} // namespace
} // namespace vel::hwapi::common
