// SPDX-License-Identifier: MIT
// Configuration tags of a service on the host's platform, set by this process and by others.
#include "TagWatcher.hpp"

#include "AaConfigTag.h"
#include "AaSem.h"
#include "FailNth.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "Process.hpp"
#include "ServiceUnderTest.hpp"

#include <gmock/gmock.h>

#include <future>
#include <optional>
#include <pthread.h>

namespace vel::hwapi::common {
namespace {

using dorn::test::comesTrue;
using dorn::test::ScriptedDelegate;
using dorn::test::TagWatcher;
using dorn::testkit::CountCalls;
using dorn::testkit::FailNth;
using dorn::testkit::NodeTest;
using dorn::testkit::Peer;
using dorn::testkit::Process;
using dorn::testkit::ServiceUnderTest;
using testing::ElementsAre;
using testing::IsEmpty;

class ServiceTagsHostTest : public NodeTest {
protected:
    ServiceTagsHostTest() { AaConfigEarlyStartup(); }

    /// A thread that waits for a tag.
    std::future<void> startWaiting(const std::string& tag, unsigned int value)
    {
        const unsigned before = m_takes.count();
        auto waiting = std::async(std::launch::async, [=, this] { m_service.WaitForConfigTag(tag, value); });
        EXPECT_TRUE(comesTrue([&] { return m_takes.count() > before; }));
        return waiting;
    }
    static bool isReleased(const std::future<void>& waiting)
    {
        return waiting.wait_for(dorn::testkit::generousBound) == std::future_status::ready;
    }
    /// Returns when the observers have been told of every set so far.
    void letAllBeTold()
    {
        m_service.SetObservedTag("marker");
        AaConfigTagSetU32("marker", ++m_marker);
        EXPECT_TRUE(m_service.waitFor("marker=" + std::to_string(m_marker)));
    }

    TagWatcher m_service;
    CountCalls<AaSemTake> m_takes;
    CountCalls<AaSemGive> m_gives;
    unsigned m_marker = 0;
};

TEST_F(ServiceTagsHostTest, ExistingTagIsDeliveredAtOnceOnTheCallersThread)
{
    AaConfigTagSetU32("x", 7);
    std::thread::id thread;
    m_service.onChange = [&](const std::string&, unsigned int) { thread = std::this_thread::get_id(); };

    m_service.SetObservedTag("x");

    EXPECT_THAT(m_service.changes(), ElementsAre("x=7"));
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_F(ServiceTagsHostTest, MissingTagDeliversNothingUntilItIsSet)
{
    m_service.SetObservedTag("x");
    EXPECT_THAT(m_service.changes(), IsEmpty());

    AaConfigTagSetU32("x", 7);

    EXPECT_TRUE(m_service.waitFor("x=7"));
}

TEST_F(ServiceTagsHostTest, ExistingTagOfAnotherLengthIsNotDeliveredUntilItIsSet)
{
    AaConfigTagSetU16("x", 7);
    m_service.SetObservedTag("x");
    EXPECT_THAT(m_service.changes(), IsEmpty());

    AaConfigTagSetU16("x", 8); // a set is delivered whatever its length

    EXPECT_TRUE(m_service.waitFor("x=8"));
}

TEST_F(ServiceTagsHostTest, ChangesAreDeliveredInTheirOrderOnAnotherThread)
{
    std::thread::id thread;
    m_service.onChange = [&](const std::string&, unsigned int) { thread = std::this_thread::get_id(); };
    m_service.SetObservedTag("x");
    m_service.SetObservedTag("y");

    for (unsigned int value = 1; value <= 3; ++value) {
        AaConfigTagSetU32("x", value);
        AaConfigTagSetU32("y", value);
    }

    ASSERT_TRUE(m_service.waitFor("y=3"));
    EXPECT_THAT(m_service.changes(), ElementsAre("x=1", "y=1", "x=2", "y=2", "x=3", "y=3"));
    EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(ServiceTagsHostTest, TagObservedTwiceDeliversOneChangeForASet)
{
    m_service.SetObservedTag("x");
    m_service.SetObservedTag("x");

    AaConfigTagSetU32("x", 1);
    AaConfigTagSetU32("x", 2);

    ASSERT_TRUE(m_service.waitFor("x=2"));
    EXPECT_THAT(m_service.changes(), ElementsAre("x=1", "x=2"));
}

TEST_F(ServiceTagsHostTest, TagThatIsUnsetIsNotDelivered)
{
    m_service.SetObservedTag("x");
    m_service.UnSetObservedTag("x");

    AaConfigTagSetU32("x", 1);
    letAllBeTold();

    EXPECT_THAT(m_service.changes(), ElementsAre("marker=1"));
}

TEST_F(ServiceTagsHostTest, UnsettingWaitsForTheChangeThatIsBeingHandled)
{
    std::promise<void> isIn;
    std::atomic<bool> isDone{false};
    m_service.onChange = [&](const std::string&, unsigned int) {
        isIn.set_value();
        std::this_thread::yield();
        isDone.store(true);
    };
    m_service.SetObservedTag("x");
    AaConfigTagSetU32("x", 1);
    isIn.get_future().wait();

    m_service.UnSetObservedTag("x");

    EXPECT_TRUE(isDone.load());
}

TEST_F(ServiceTagsHostTest, HandlerMaySetTags)
{
    m_service.onChange = [](const std::string& tag, unsigned int value) {
        if (tag == "x") {
            AaConfigTagSetU32("y", value + 1);
        } else if (value < 5) {
            AaConfigTagSetU32("x", value + 1);
        }
    };
    m_service.SetObservedTag("x");
    m_service.SetObservedTag("y");

    AaConfigTagSetU32("x", 1);

    ASSERT_TRUE(m_service.waitFor("y=6"));
    EXPECT_THAT(m_service.changes(), ElementsAre("x=1", "y=2", "x=3", "y=4", "x=5", "y=6"));
}

TEST_F(ServiceTagsHostTest, HandlerMayUnsetItsOwnTagAndObserveAnother)
{
    AaConfigTagSetU32("y", 9);
    m_service.onChange = [&](const std::string& tag, unsigned int) {
        if (tag == "x") {
            m_service.UnSetObservedTag("x");
            m_service.SetObservedTag("y");
        }
    };
    m_service.SetObservedTag("x");

    AaConfigTagSetU32("x", 1);
    AaConfigTagSetU32("x", 2);
    ASSERT_TRUE(m_service.waitFor("x=1"));
    letAllBeTold();

    EXPECT_THAT(m_service.changes(), ElementsAre("y=9", "x=1", "marker=1"));
}

TEST_F(ServiceTagsHostTest, HandlerRunsBesideTheMessageLoop)
{
    std::promise<void> goOn;
    m_service.AddMsgDelegate(new ScriptedDelegate(1, [&](void*) { goOn.get_future().wait(); }));
    ServiceUnderTest running(m_service);
    ASSERT_TRUE(running.waitUntilReady());
    m_service.SetObservedTag("x");
    Peer peer;

    peer.send(1, running.address());
    AaConfigTagSetU32("x", 1);

    EXPECT_TRUE(m_service.waitFor("x=1")); // while the main EU is busy
    goOn.set_value();
    running.sync();
}

TEST_F(ServiceTagsHostTest, TagThatCannotBeObservedIsLoggedAndDeliveredAtOnce)
{
    AaConfigTagSetU32("x", 7);
    const FailNth<AaConfigTagRegister> noRegistration(1, EAaConfigTagStatus_StoreFailed);

    m_service.SetObservedTag("x");

    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x20075 Configuration tag 'x' cannot be observed: 4"));
    EXPECT_THAT(m_service.changes(), ElementsAre("x=7"));
}

TEST_F(ServiceTagsHostTest, TagThatCouldNotBeObservedCanBeOnceItIsUnset)
{
    {
        const FailNth<AaConfigTagRegister> noRegistration(1);
        m_service.SetObservedTag("x");
    }
    m_service.UnSetObservedTag("x");

    m_service.SetObservedTag("x");
    AaConfigTagSetU32("x", 7);

    EXPECT_TRUE(m_service.waitFor("x=7"));
}

TEST_F(ServiceTagsHostTest, TagWithoutANameIsLogged)
{
    m_service.SetObservedTag("");

    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x20075 Configuration tag '' cannot be observed: 2"));
    EXPECT_THAT(m_service.changes(), IsEmpty());
}

TEST_F(ServiceTagsHostTest, WaitSeesOnlyASetThatWasMadeAfterItBegan)
{
    AaConfigTagSetU32("x", 5);
    auto waiting = startWaiting("x", 5);
    letAllBeTold();
    EXPECT_EQ(m_gives.count(), 0U);

    AaConfigTagSetU32("x", 5);

    EXPECT_TRUE(isReleased(waiting));
}

TEST_F(ServiceTagsHostTest, OneSetReleasesAllWhoWaitForItAndNobodyElse)
{
    auto first = startWaiting("x", 5);
    auto second = startWaiting("x", 5);
    auto otherValue = startWaiting("x", 6);
    auto otherTag = startWaiting("y", 5);

    AaConfigTagSetU32("x", 5);

    EXPECT_TRUE(isReleased(first));
    EXPECT_TRUE(isReleased(second));
    letAllBeTold();
    EXPECT_EQ(m_gives.count(), 2U);

    AaConfigTagSetU32("x", 6);
    EXPECT_TRUE(isReleased(otherValue));
    AaConfigTagSetU32("y", 5);
    EXPECT_TRUE(isReleased(otherTag));
}

TEST_F(ServiceTagsHostTest, SetOfAnotherLengthReleasesNobody)
{
    auto waiting = startWaiting("x", 5);

    AaConfigTagSetU16("x", 5);
    AaConfigTagSet("x", "\5\0\0\0\0\0\0\0", 8);
    AaConfigTagSetString("x", "");
    letAllBeTold();
    EXPECT_EQ(m_gives.count(), 0U);

    AaConfigTagSetU32("x", 5);
    EXPECT_TRUE(isReleased(waiting));
}

TEST_F(ServiceTagsHostTest, ThreadMayWaitAgainForTheSameValue)
{
    for (int count = 0; count < 3; ++count) {
        auto waiting = startWaiting("x", 5);
        AaConfigTagSetU32("x", 5);
        EXPECT_TRUE(isReleased(waiting));
        letAllBeTold();
    }
    EXPECT_EQ(m_gives.count(), 3U);
}

TEST_F(ServiceTagsHostTest, HandlerMayReleaseAThreadThatWaits)
{
    m_service.onChange = [](const std::string& tag, unsigned int) {
        if (tag == "x") {
            AaConfigTagSetU32("y", 1);
        }
    };
    m_service.SetObservedTag("x");
    auto waiting = startWaiting("y", 1);

    AaConfigTagSetU32("x", 1);

    EXPECT_TRUE(isReleased(waiting));
}

TEST_F(ServiceTagsHostTest, TagMayBeObservedAndWaitedFor)
{
    m_service.SetObservedTag("x");
    auto waiting = startWaiting("x", 5);

    AaConfigTagSetU32("x", 5);

    EXPECT_TRUE(isReleased(waiting));
    EXPECT_TRUE(m_service.waitFor("x=5"));
}

TEST_F(ServiceTagsHostTest, WaitWithoutASemaphoreIsAnException)
{
    const FailNth<AaSemCreateC> noSemaphore(1);

    EXPECT_THROW(m_service.WaitForConfigTag("x", 5), Service::RuntimeException);

    AaConfigTagSetU32("x", 5);
    letAllBeTold();
    EXPECT_EQ(m_gives.count(), 0U);
}

TEST_F(ServiceTagsHostTest, WaitForATagThatCannotBeObservedIsAnException)
{
    EXPECT_THROW(m_service.WaitForConfigTag("", 5), Service::RuntimeException);
    const FailNth<AaConfigTagRegister> noRegistration(1);
    EXPECT_THROW(m_service.WaitForConfigTag("x", 5), Service::RuntimeException);
}

TEST_F(ServiceTagsHostTest, ThreadThatIsCancelledLeavesTheOthersWaiting)
{
    CountCalls<AaSemDestroy> destroyed;
    auto other = startWaiting("x", 5);
    std::thread cancelled([&] { m_service.WaitForConfigTag("x", 5); });
    ASSERT_TRUE(comesTrue([&] { return m_takes.count() == 2; }));
    pthread_cancel(cancelled.native_handle());
    cancelled.join();
    EXPECT_EQ(destroyed.count(), 1U);

    AaConfigTagSetU32("x", 5);

    EXPECT_TRUE(isReleased(other));
    letAllBeTold();
    EXPECT_EQ(m_gives.count(), 1U);
}

TEST_F(ServiceTagsHostTest, SetOfAnotherProcessIsDeliveredAndReleases)
{
    m_service.SetObservedTag("x");
    auto waiting = startWaiting("x", 5);

    Process setter(DORN_TAG_PROGRAM, {"set", "x", "5"});

    EXPECT_EQ(setter.waitForEnd(), 0) << setter.standardError();
    EXPECT_TRUE(isReleased(waiting));
    EXPECT_TRUE(m_service.waitFor("x=5"));
}

TEST_F(ServiceTagsHostTest, AnotherProcessIsToldOfEverySetInItsOrder)
{
    AaConfigTagSetU32("x", 1);
    Process observer(DORN_TAG_PROGRAM, {"observe", "x", "100"});
    ASSERT_TRUE(observer.waitForOutput("observing\n"));
    std::string expected = "x=1\nobserving\n";

    for (unsigned int value = 2; value <= 100; ++value) {
        AaConfigTagSetU32("x", value);
        expected += "x=" + std::to_string(value) + "\n";
    }

    EXPECT_EQ(observer.waitForEnd(), 0) << observer.standardError();
    EXPECT_EQ(observer.standardOutput(), expected);
}

TEST_F(ServiceTagsHostTest, ThreadOfAnotherProcessIsReleased)
{
    AaConfigTagSetU32("x", 5);
    Process waiter(DORN_TAG_PROGRAM, {"wait", "x", "5"});

    // When it has begun to wait is not seen from here: the tag is set until it has.
    EXPECT_TRUE(comesTrue([&] {
        AaConfigTagSetU32("x", 5);
        return waiter.waitForOutput("released\n", std::chrono::milliseconds(10));
    }));

    EXPECT_EQ(waiter.waitForEnd(), 0) << waiter.standardError();
}

class ServiceTagsLivesTest : public NodeTest {};

TEST_F(ServiceTagsLivesTest, EndOfAServiceLeavesNothingForThePlatformToCall)
{
    {
        TagWatcher passing;
        const CountCalls<AaSemTake> takes;
        passing.SetObservedTag("x");
        auto waiting = std::async(std::launch::async, [&] { passing.WaitForConfigTag("x", 1); });
        EXPECT_TRUE(comesTrue([&] { return takes.count() == 1; }));
        AaConfigTagSetU32("x", 1);
        waiting.wait();
    }
    AaConfigTagSetU32("x", 1);
    TagWatcher next;

    next.SetObservedTag("y");
    AaConfigTagSetU32("x", 2);
    AaConfigTagSetU32("y", 3);

    ASSERT_TRUE(next.waitFor("y=3"));
    EXPECT_THAT(next.changes(), ElementsAre("y=3"));
}

} // namespace
} // namespace vel::hwapi::common
