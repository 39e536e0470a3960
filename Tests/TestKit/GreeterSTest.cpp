// SPDX-License-Identifier: MIT
#include "GreeterS.hpp"

#include "FailNth.hpp"
#include "ManualClock.hpp"
#include "NodeTest.hpp"
#include "OutputCapture.hpp"
#include "Peer.hpp"
#include "Process.hpp"
#include "RadWait.hpp"
#include "ServiceUnderTest.hpp"

#include <chrono>
#include <csignal>
#include <gmock/gmock.h>

namespace greeter {
namespace {

using namespace dorn::testkit;
using ::testing::ElementsAre;

class GreeterSTest : public NodeTest {
protected:
    GreeterS m_greeter;
};

TEST_F(GreeterSTest, VisitorIsGreeted)
{
    ServiceUnderTest service(m_greeter);
    ASSERT_TRUE(service.waitUntilReady());
    Peer visitor;

    visitor.send<GreetReqMsg>(service.address(), {.visitor = 7});

    const auto response = visitor.expect<GreetRespMsg>();
    EXPECT_EQ(response->visitor, 7U);
    EXPECT_EQ(response->visits, 1U);
}

TEST_F(GreeterSTest, VisitorWithoutNameIsLoggedAndNotGreeted)
{
    ServiceUnderTest service(m_greeter);
    ASSERT_TRUE(service.waitUntilReady());
    Peer visitor;

    visitor.send<GreetReqMsg>(service.address(), {.visitor = 0});
    service.sync();

    visitor.expectNothing();
    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x2000a A visitor without name is not greeted"));
}

TEST_F(GreeterSTest, VisitsOfEarlierStartsCount)
{
    m_node.writeBoardFile("/ffs/run/guestbook", "41\n");
    ServiceUnderTest service(m_greeter);
    ASSERT_TRUE(service.waitUntilReady());
    Peer visitor;

    visitor.send<GreetReqMsg>(service.address(), {.visitor = 7});

    EXPECT_EQ(visitor.expect<GreetRespMsg>()->visits, 42U);
}

TEST_F(GreeterSTest, NoMemoryForAResponseIsLogged)
{
    ServiceUnderTest service(m_greeter);
    ASSERT_TRUE(service.waitUntilReady());
    Peer visitor;
    const FailNth<AaSysComMsgCreate> noMemory(1);

    visitor.send<GreetReqMsg>(service.address(), {.visitor = 7});

    EXPECT_TRUE(m_log.waitFor("Error 0x2000a Visitor 7 cannot be greeted"));
}

TEST_F(GreeterSTest, StartWithoutGuestBookFails)
{
    const FailEvery<AaSemCreateC> noSemaphore;
    ServiceUnderTest service(m_greeter);

    EXPECT_EQ(service.waitForEnd(), 0U);
    EXPECT_EQ(m_greeter.GetServiceStateRad(), 5U);
}

TEST_F(GreeterSTest, GoodbyeComesAfterAMinute)
{
    ManualClock clock;
    ServiceUnderTest service(m_greeter);
    ASSERT_TRUE(service.waitUntilReady());
    Peer visitor;
    visitor.send<GreetReqMsg>(service.address(), {.visitor = 7});
    visitor.expect<GreetRespMsg>();

    service.sync();
    clock.advance(std::chrono::minutes(1));

    EXPECT_EQ(visitor.expect<GoodbyeIndMsg>()->visits, 1U);
}

TEST_F(GreeterSTest, HelpNamesTheOptions)
{
    const OutputCapture output;

    EXPECT_EQ(ServiceUnderTest(m_greeter, {"--help"}).waitForEnd(), 1U);

    EXPECT_THAT(output.standardError(), ::testing::HasSubstr("Greet in a foreign language"));
}

class GreeterExeTest : public NodeTest {};

TEST_F(GreeterExeTest, RunsUntilItIsAskedToEnd)
{
    Process greeter(DORN_GREETER_EXE);
    ASSERT_TRUE(waitForRad(ERadHwapiState_ClimateState, 2)) << greeter.standardError();
    Peer visitor;
    visitor.send<GreetReqMsg>(0x0201, {.visitor = 7});
    EXPECT_EQ(visitor.expect<GreetRespMsg>()->visits, 1U);

    greeter.signal(SIGTERM);

    EXPECT_EQ(greeter.waitForEnd(), 1);
    EXPECT_EQ(greeter.standardError(), "");
}

} // namespace
} // namespace greeter
