// SPDX-License-Identifier: MIT
// What other binaries rely on in the classes of request forwarding.
#include "ClassLayout.hpp"

#include "MsgHandlingException.hpp"
#include "RecordingPlatform.hpp"
#include "reqforwarding/Req.hpp"
#include "reqforwarding/ReqHandler.hpp"

#include <gmock/gmock.h>

#include <type_traits>

using vel::hwapi::common::Req;
using vel::hwapi::common::ReqHandler;
using ReqList = std::list<Req*>;

DORN_EXPOSE(PrintIdTag, Req, ERadHwapi, m_printId)
DORN_EXPOSE(MsgHandleTag, Req, void*, m_msgHandle)
DORN_EXPOSE(ReqsTag, ReqHandler, ReqList, m_reqs)
DORN_EXPOSE(HandlerPrintIdTag, ReqHandler, ERadHwapi, m_printId)

namespace {

using namespace dorn::test;
using namespace dorn::test::layout;
using namespace vel::hwapi::common;
using testing::ElementsAre;

class NoReqs : public ReqHandler {
public:
    NoReqs() : ReqHandler(ERadHwapi_LED) {}
    Req* NewReq(void* /*msgHandle*/) override { return nullptr; }
};

TEST(ReqLayoutTest, VirtualFunctionsOfReqKeepTheirOrder)
{
    EXPECT_EQ(slotOf(&Req::HandleReq), 2); // behind the destructor's two
    EXPECT_EQ(slotOf(&Req::HandleForwardedReqResp), 3);
    EXPECT_EQ(slotOf(&Req::HandleForwardedReqTimeout), 4);
}

TEST(ReqLayoutTest, VirtualFunctionsOfReqHandlerKeepTheirOrder)
{
    EXPECT_EQ(slotOf(&ReqHandler::NewReq), 2);
    EXPECT_EQ(slotOf<void (ReqHandler::*)(void*)>(&ReqHandler::HandleNewReq), -1);
    EXPECT_EQ(slotOf<void (ReqHandler::*)(Req*)>(&ReqHandler::HandleNewReq), -1);
    EXPECT_EQ(slotOf(&ReqHandler::ReqCompleted), -1);
    EXPECT_EQ(slotOf(&ReqHandler::HandleForwardedReqResp), -1);
    EXPECT_EQ(slotOf(&ReqHandler::HandleForwardedReqTimeout), -1);
    EXPECT_TRUE(std::has_virtual_destructor_v<ReqHandler>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Req>);
    EXPECT_TRUE(std::is_abstract_v<ReqHandler>);
    EXPECT_FALSE(std::is_abstract_v<Req>);
}

TEST(ReqLayoutTest, MembersOfReqKeepTheirPlaces)
{
    const RecordingPlatform platform;
    NoReqs handler;
    const Req req(handler, ERadHwapi_LED, nullptr);

    // A reference, here to the handler, has no pointer to member: it fills the word behind the table of functions.
    EXPECT_THAT(offsetsIn(req, exposed(PrintIdTag{})), ElementsAre(2 * word));
    EXPECT_THAT(offsetsIn(req, exposed(MsgHandleTag{})), ElementsAre(3 * word));
    EXPECT_EQ(sizeof req, 4 * word);
    const ReqHandler* owner = nullptr;
    std::memcpy(&owner, reinterpret_cast<const char*>(&req) + word, sizeof owner);
    EXPECT_EQ(owner, &handler);
}

TEST(ReqLayoutTest, MembersOfReqHandlerKeepTheirPlaces)
{
    const RecordingPlatform platform;
    const NoReqs handler;

    EXPECT_THAT(offsetsIn<ReqHandler>(handler, exposed(ReqsTag{})), ElementsAre(word));
    EXPECT_THAT(offsetsIn<ReqHandler>(handler, exposed(HandlerPrintIdTag{})), ElementsAre(word + sizeof(ReqList)));
    EXPECT_EQ(sizeof handler, 2 * word + sizeof(ReqList));
}

TEST(ReqLayoutTest, TimeOutMessageHasThePlatformsId)
{
    EXPECT_EQ(API_FORWARD_TIMEOUT_OUT, 0x2BFFU);
}

TEST(ReqLayoutTest, MsgHandlingExceptionIsOfTheFamilyAndHasItsReason)
{
    const MsgHandlingException exception("what", "File.cpp", 7);

    EXPECT_STREQ(exception.what(), "Message handling error");
    EXPECT_EQ(exception.getDescription(), "what");
    EXPECT_EQ(exception.getFile(), "File.cpp");
    EXPECT_EQ(exception.getLine(), 7);
    EXPECT_TRUE((std::is_base_of_v<CHwapiException, MsgHandlingException>));
}

} // namespace
