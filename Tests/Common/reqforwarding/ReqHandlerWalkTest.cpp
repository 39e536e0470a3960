// SPDX-License-Identifier: MIT
// How a forwarded reply finds its request.
#include "ScriptedReqs.hpp"

#include "MsgHandlingException.hpp"

#include <gmock/gmock.h>

namespace vel::hwapi::common {
namespace {

using dorn::test::formatted;
using dorn::test::RecordingPlatform;
using dorn::test::ScriptedReq;
using dorn::test::ScriptedReqs;
using testing::ElementsAre;
using testing::IsEmpty;

class ReqHandlerWalkTest : public testing::Test {
protected:
    /// Adds a request that writes @p name down when it is asked, and then does @p then.
    ScriptedReq& add(char name, std::function<void(ScriptedReq&)> then = {})
    {
        ScriptedReq& req = m_reqs.add();
        req.onResp = [this, name, then, &req](void*) {
            m_asked += name;
            if (then) {
                then(req);
            }
        };
        return req;
    }
    void reply() { m_reqs.HandleForwardedReqResp(&m_asked); }

    static void complete(ScriptedReq& req) { req.complete(); }

    RecordingPlatform m_platform;
    ScriptedReqs m_reqs;
    std::string m_asked;
};

TEST_F(ReqHandlerWalkTest, OldestIsAskedFirstAndTheFirstThatCompletesEndsTheSearch)
{
    ScriptedReq& a = add('a');
    add('b', complete);
    ScriptedReq& c = add('c', complete);

    reply();

    EXPECT_EQ(m_asked, "ab");
    EXPECT_THAT(m_reqs.open(), ElementsAre(&a, &c));
}

TEST_F(ReqHandlerWalkTest, EveryStepIsLogged)
{
    ScriptedReq& a = add('a');
    ScriptedReq& b = add('b', complete);
    add('c');
    int message = 0;
    m_platform.clearCalls();

    m_reqs.HandleForwardedReqResp(&message);

    const auto pointer = [](const char* text, const void* of) {
        return "Debug 0x20075 " + std::string(text) + formatted("'%p'", of);
    };
    EXPECT_THAT(m_platform.calls(),
                ElementsAre(pointer("ReqHandler::HandleForwardedReqResp msgHandle ", &message) + " m_reqs.size '3'",
                            pointer("ReqHandler::HandleForwardedReqResp req ", &a),
                            pointer("ReqHandler::HandleForwardedReqResp req ", &b),
                            pointer("ReqHandler::ReqCompleted reqPointer ", &b),
                            pointer("ReqHandler::ReqCompleted delete req ", &b), pointer("Req::~Req this: ", &b),
                            "Debug 0x20075 ReqHandler::ReqCompleted m_reqs.size '2'",
                            "Debug 0x20075 ReqHandler::HandleForwardedReqResp m_reqs.size '2'"));
}

TEST_F(ReqHandlerWalkTest, RequestIsGivenTheMessage)
{
    int message = 0;
    void* given = nullptr;
    m_reqs.add().onResp = [&](void* msgHandle) { given = msgHandle; };

    m_reqs.HandleForwardedReqResp(&message);

    EXPECT_EQ(given, &message);
}

TEST_F(ReqHandlerWalkTest, ReplyThatNobodyTakesIsDroppedSilently)
{
    add('a');
    add('b');
    m_platform.clearCalls();

    reply();

    EXPECT_EQ(m_asked, "ab");
    EXPECT_THAT(m_platform.calls("Error"), IsEmpty());
    EXPECT_THAT(m_platform.calls("Warning"), IsEmpty());
    EXPECT_EQ(m_platform.calls().back(), "Debug 0x20075 ReqHandler::HandleForwardedReqResp m_reqs.size '2'");
}

TEST_F(ReqHandlerWalkTest, ReplyWhileNothingIsOpenIsDropped)
{
    m_platform.clearCalls();

    m_reqs.HandleForwardedReqResp(nullptr);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("Debug 0x20075 ReqHandler::HandleForwardedReqResp msgHandle '(nil)' m_reqs.size '0'",
                            "Debug 0x20075 ReqHandler::HandleForwardedReqResp m_reqs.size '0'"));
}

TEST_F(ReqHandlerWalkTest, ReplyThatComesTwiceIsForNobodyTheSecondTime)
{
    add('a', complete);
    add('b');

    reply();
    reply();

    EXPECT_EQ(m_asked, "ab");
    EXPECT_EQ(m_reqs.open().size(), 1U);
}

TEST_F(ReqHandlerWalkTest, NewRequestEndsTheSearchToo)
{
    add('a', [&](ScriptedReq&) { add('x'); });
    add('b');

    reply();

    EXPECT_EQ(m_asked, "a");
}

TEST_F(ReqHandlerWalkTest, RequestThatCompletesAnotherEndsTheSearch)
{
    ScriptedReq& a = add('a');
    ScriptedReq& b = add('b');
    add('c');
    a.onResp = [&](void*) {
        m_asked += 'a';
        m_reqs.ReqCompleted(&b); // the one that would be next
    };

    reply();

    EXPECT_EQ(m_asked, "a");
    EXPECT_EQ(m_reqs.open().size(), 2U);
}

TEST_F(ReqHandlerWalkTest, RequestThatHasAnotherTakeItsPlaceEndsTheSearch)
{
    add('a', [&](ScriptedReq& req) {
        req.complete();
        add('x');
    });
    add('b');

    reply(); // the number of requests is what it was

    EXPECT_EQ(m_asked, "a");
    EXPECT_EQ(m_reqs.open().size(), 2U);
}

TEST_F(ReqHandlerWalkTest, RequestThatHasAnotherTakeItsPlaceBeforeItCompletesEndsTheSearchToo)
{
    add('a', [&](ScriptedReq& req) {
        add('x');
        req.complete();
    });
    add('b');

    reply();

    EXPECT_EQ(m_asked, "a");
    EXPECT_EQ(m_reqs.open().size(), 2U);
}

TEST_F(ReqHandlerWalkTest, CompletionOfNothingAfterTheRequestHasCompletedDoesNothing)
{
    ScriptedReq& a = add('a');
    ScriptedReq& b = add('b');
    a.onResp = [&](void*) {
        a.complete();
        m_reqs.ReqCompleted(nullptr);
        m_reqs.ReqCompleted(&a);
    };

    reply();

    EXPECT_THAT(m_reqs.open(), ElementsAre(&b));
}

TEST_F(ReqHandlerWalkTest, RequestIsCompletedByItsOwnHandlerOnly)
{
    ScriptedReqs others;
    ScriptedReq& a = add('a');
    ScriptedReq& other = others.add();
    a.onResp = [&](void*) {
        others.ReqCompleted(&a); // not its handler
        m_reqs.ReqCompleted(&other);
    };

    reply();

    EXPECT_THAT(m_reqs.open(), ElementsAre(&a));
    EXPECT_THAT(others.open(), ElementsAre(&other));
}

TEST_F(ReqHandlerWalkTest, RequestThatExchangesAnotherIsFollowedByTheNext)
{
    ScriptedReq& a = add('a');
    ScriptedReq& b = add('b');
    add('c');
    a.onResp = [&](void*) {
        m_asked += 'a';
        m_reqs.ReqCompleted(&b);
        add('x');
    };

    reply();

    EXPECT_EQ(m_asked, "acx");
}

TEST_F(ReqHandlerWalkTest, SearchWithinASearchMayCompleteTheRequestThatBeganIt)
{
    ScriptedReq& a = add('a');
    a.onResp = [&](void*) {
        m_asked += 'a';
        a.onResp = [&](void*) {
            m_asked += 'A';
            a.complete();
            add('x');
        };
        m_reqs.HandleForwardedReqResp(nullptr);
    };
    add('b');

    reply();

    EXPECT_EQ(m_asked, "aA");
    EXPECT_EQ(m_reqs.open().size(), 2U);
}

TEST_F(ReqHandlerWalkTest, SearchOfAnotherHandlerDoesNotDisturb)
{
    ScriptedReqs others;
    ScriptedReq& other = others.add();
    other.onResp = [&](void*) {
        m_asked += 'o';
        other.complete();
    };
    add('a', [&](ScriptedReq&) { others.HandleForwardedReqResp(nullptr); });
    add('b');

    reply();

    EXPECT_EQ(m_asked, "aob");
}

TEST_F(ReqHandlerWalkTest, ExceptionPassesAndTheNextReplyFindsItsWay)
{
    ScriptedReq& a = add('a');
    a.onResp = [&](void*) { throw MsgHandlingException("broken", "", 0); };
    ScriptedReq& b = add('b');

    EXPECT_THROW(reply(), MsgHandlingException);
    EXPECT_THAT(m_reqs.open(), ElementsAre(&a, &b));

    a.onResp = {};
    reply();
    EXPECT_EQ(m_asked, "b");
}

TEST_F(ReqHandlerWalkTest, RequestThatDoesNotOverrideTheReplyThrows)
{
    class Half : public Req {
    public:
        using Req::Req;
        void HandleReq() override {}
    };
    m_reqs.HandleNewReq(new Half(m_reqs, dorn::test::printId, nullptr));

    EXPECT_THROW(reply(), MsgHandlingException);
}

} // namespace
} // namespace vel::hwapi::common
