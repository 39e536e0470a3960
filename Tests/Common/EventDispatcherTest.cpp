// SPDX-License-Identifier: MIT
// What the event dispatcher asks of the platform and of `poll`, and in which order.
#include "EventDispatcher.hpp"
#include "ClassLayout.hpp"
#include "RecordingPlatform.hpp"
#include "ScriptedPoll.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

DORN_EXPOSE(RunningDispatcherTag, vel::hwapi::common::EventDispatcher, TAaProEuId, m_euId)
DORN_EXPOSE(ChangedFlagTag, vel::hwapi::common::EventDispatcher, std::uint32_t, m_handlerVectorChanged)

namespace vel::hwapi::common {
namespace {

using dorn::test::formatted;
using dorn::test::RecordingPlatform;
using dorn::test::ScriptedPoll;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr ERadHwapi radId = ERadHwapi_PrintCtrlTask;

/// Notes its calls among the platform's.
class Handler : public EventHandler {
public:
    explicit Handler(std::string name) : m_name(std::move(name)) {}
    void HandleEvent(int fd) override
    {
        RecordingPlatform::get().note(m_name + formatted(" handles %d", fd), {});
        if (onEvent) {
            onEvent();
        }
    }
    std::function<void()> onEvent;

private:
    std::string m_name;
};

class EventDispatcherTest : public testing::Test {
protected:
    /// Runs the dispatcher's EU through the rounds of m_poll and one more, after which it ends.
    void run() { m_dispatcher.Setup(radId, "Events", 3, 8192); }

    std::vector<std::string> handled()
    {
        std::vector<std::string> found;
        for (const std::string& call : m_platform.calls()) {
            if (call.find(" handles ") != std::string::npos) {
                found.push_back(call);
            }
        }
        return found;
    }
    /// The calls from the first wait on.
    std::vector<std::string> callsInRounds()
    {
        std::vector<std::string> calls = m_platform.calls();
        calls.erase(calls.begin(), std::find_if(calls.begin(), calls.end(),
                                                [](const std::string& call) { return call.starts_with("poll("); }));
        return calls;
    }
    void endEu() { m_dispatcher.*exposed(dorn::test::RunningDispatcherTag{}) = 0; }

    RecordingPlatform m_platform;
    EventDispatcher m_dispatcher; ///< its semaphores: 1 end of the EU, 2 registration, 3 handler calls
    ScriptedPoll m_poll{[this] { endEu(); }};
    Handler m_a{"a"};
    Handler m_b{"b"};
};

TEST_F(EventDispatcherTest, ConstructorCreatesTheSemaphores)
{
    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSemCreateC(1)", "AaSemCreateC(1)", "AaSemCreateC(1)"));
}

TEST_F(EventDispatcherTest, DestructorStopsAndLeavesTheSemaphores)
{
    auto dispatcher = std::make_unique<EventDispatcher>(); // semaphores 4 to 6
    m_platform.clearCalls();

    dispatcher.reset();

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSemTake(4, -1)", "AaSemGive(4)"));
}

TEST_F(EventDispatcherTest, SetupRunsTheEuUntilItIsStopped)
{
    m_platform.clearCalls();

    run();

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSemTake(1, -1)", "Info 0x20000 Starting Event Dispatcher Events",
                            formatted("AaSysComEuCreateAndStart(\"Events\", stack 8192, priority 3, argsSize %zu)",
                                      sizeof(void*)),
                            "poll(200)", "AaSemGive(1)", "Info 0x20000 Event Dispatcher Events finished polling"));
}

TEST_F(EventDispatcherTest, StartWithoutNameOnlyLogs)
{
    m_platform.clearCalls();

    m_dispatcher.Start();

    EXPECT_THAT(m_platform.calls(), ElementsAre("Info 0x0 Event Dispatcher cannot be started (name=, euId=0)"));
}

TEST_F(EventDispatcherTest, SetupWithoutNameOnlyLogs)
{
    m_platform.clearCalls();

    m_dispatcher.Setup(radId, "", 3, 8192);

    EXPECT_THAT(m_platform.calls(), ElementsAre("Info 0x20000 Event Dispatcher cannot be started (name=, euId=0)"));
}

TEST_F(EventDispatcherTest, StartOfARunningOneOnlyLogs)
{
    std::vector<std::string> calls;
    m_poll.add([&](pollfd* /*entries*/) {
        m_platform.clearCalls();
        m_dispatcher.Start();
        calls = m_platform.calls();
        return 0;
    });

    run();

    EXPECT_THAT(calls, ElementsAre("Info 0x20000 Event Dispatcher cannot be started (name=Events, euId=7)"));
}

TEST_F(EventDispatcherTest, StartAfterSetupUsesItsValuesAgain)
{
    run();
    m_platform.clearCalls();

    m_dispatcher.Start();

    EXPECT_THAT(m_platform.calls("AaSysCom"),
                ElementsAre(formatted("AaSysComEuCreateAndStart(\"Events\", stack 8192, priority 3, argsSize %zu)",
                                      sizeof(void*))));
}

TEST_F(EventDispatcherTest, SetupStopsARunningOneFirst)
{
    m_dispatcher.*exposed(dorn::test::RunningDispatcherTag{}) = 9;
    m_platform.clearCalls();

    run();

    const std::vector<std::string> calls = m_platform.calls();
    ASSERT_GE(calls.size(), 4U);
    EXPECT_EQ(calls[0], "AaSemTake(1, -1)");
    EXPECT_EQ(calls[1], "AaSemGive(1)");
    EXPECT_EQ(calls[2], "AaSemTake(1, -1)");
    EXPECT_EQ(calls[3], "Info 0x20000 Starting Event Dispatcher Events");
}

TEST_F(EventDispatcherTest, StopTakesTheEndAndGivesItBack)
{
    m_platform.clearCalls();

    m_dispatcher.Stop();

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSemTake(1, -1)", "AaSemGive(1)"));
}

TEST_F(EventDispatcherTest, EuThatCannotBeCreatedBlocksNobody)
{
    m_platform.setResult("AaSysComEuCreateAndStart", 11);
    run();
    EXPECT_THAT(m_platform.calls("poll"), IsEmpty());
    m_platform.setResult("AaSysComEuCreateAndStart", 0);

    m_dispatcher.Stop();
    m_dispatcher.Start();

    EXPECT_THAT(m_platform.calls("poll"), ElementsAre("poll(200)"));
}

TEST_F(EventDispatcherTest, SafeSemaphoreIsTakenAndGiven)
{
    m_platform.clearCalls();

    m_dispatcher.WaitSafeSem();
    m_dispatcher.PostSafeSem();

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSemTake(3, -1)", "AaSemGive(3)"));
}

TEST_F(EventDispatcherTest, OwnHandlerDoesNothing)
{
    m_platform.clearCalls();

    m_dispatcher.HandleEvent(5);

    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

TEST_F(EventDispatcherTest, TablesAreChangedUnderTheirLockOnly)
{
    m_platform.clearCalls();

    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_dispatcher.UnregisterEventHandler(5);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSemTake(2, -1)", "AaSemGive(2)", "AaSemTake(2, -1)", "AaSemGive(2)"));
}

TEST_F(EventDispatcherTest, ChangesAreTakenOverUnderTheLockBeforeTheWait)
{
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_dispatcher.RegisterEventHandler(6, m_b, POLLIN | POLLPRI);
    m_poll.add({});
    m_platform.clearCalls();

    run();

    const std::vector<std::string> calls = m_platform.calls();
    EXPECT_THAT(std::vector(calls.begin() + 3, calls.end() - 2),
                ElementsAre("AaSemTake(2, -1)", "AaSemGive(2)", "poll(5:0x1, 6:0x3, 200)", "poll(5:0x1, 6:0x3, 200)"));
}

TEST_F(EventDispatcherTest, DescriptorRegisteredTwiceIsPolledTwiceAndTheLaterHandlerCalled)
{
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_dispatcher.RegisterEventHandler(5, m_b, POLLPRI);
    m_poll.add({{0, POLLIN}, {1, POLLPRI}});

    run();

    EXPECT_EQ(m_platform.calls("poll(").front(), "poll(5:0x1, 5:0x2, 200)");
    EXPECT_THAT(handled(), ElementsAre("b handles 5", "b handles 5"));
}

TEST_F(EventDispatcherTest, OfTwoNeighboursOneIsUnregisteredAtATime)
{
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_dispatcher.RegisterEventHandler(5, m_a, POLLPRI);
    m_dispatcher.UnregisterEventHandler(5);
    m_poll.add({{0, POLLPRI}});

    run();

    EXPECT_EQ(m_platform.calls("poll(").front(), "poll(5:0x2, 200)");
    EXPECT_THAT(handled(), IsEmpty()); // its handler is gone

    m_dispatcher.UnregisterEventHandler(5);
    m_platform.clearCalls();
    m_dispatcher.Start();

    EXPECT_EQ(m_platform.calls("poll(").front(), "poll(200)");
}

TEST_F(EventDispatcherTest, RegistrationsApartFromEachOtherAreUnregisteredTogether)
{
    for (const int fd : {5, 6, 5, 7, 5}) {
        m_dispatcher.RegisterEventHandler(fd, m_a, POLLIN);
    }
    m_dispatcher.UnregisterEventHandler(5);

    run();

    EXPECT_EQ(m_platform.calls("poll(").front(), "poll(6:0x1, 7:0x1, 200)");
}

TEST_F(EventDispatcherTest, OfThreeNeighboursTheMiddleOneStays)
{
    m_dispatcher.RegisterEventHandler(5, m_a, 1);
    m_dispatcher.RegisterEventHandler(5, m_a, 2);
    m_dispatcher.RegisterEventHandler(5, m_a, 4);
    m_dispatcher.UnregisterEventHandler(5);

    run();

    EXPECT_EQ(m_platform.calls("poll(").front(), "poll(5:0x2, 200)");
}

TEST_F(EventDispatcherTest, DescriptorThatIsNotRegisteredIsPassedOver)
{
    m_dispatcher.RegisterEventHandler(6, m_a, POLLIN);
    m_dispatcher.UnregisterEventHandler(5);
    m_poll.add({{0, POLLIN}});

    run();

    EXPECT_THAT(handled(), ElementsAre("a handles 6"));
}

TEST_F(EventDispatcherTest, UnregisteringADescriptorThatIsNotRegisteredCountsAsAChange)
{
    m_dispatcher.UnregisterEventHandler(5);

    EXPECT_EQ(m_dispatcher.*exposed(dorn::test::ChangedFlagTag{}), 1U);
}

TEST_F(EventDispatcherTest, HandlerRegisteredAfterItsDescriptorWasUnregisteredInVainIsLost)
{
    m_dispatcher.UnregisterEventHandler(5);
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_poll.add({{0, POLLIN}});

    run();

    EXPECT_EQ(m_platform.calls("poll(").front(), "poll(5:0x1, 200)");
    EXPECT_THAT(handled(), IsEmpty());
}

TEST_F(EventDispatcherTest, DispatcherItselfStandsInForAHandlerThatWasUnregistered)
{
    class Noting : public EventDispatcher {
    public:
        void HandleEvent(int fd) override { RecordingPlatform::get().note(formatted("dispatcher handles %d", fd), {}); }
    };
    Noting dispatcher;
    ScriptedPoll poll([&] { dispatcher.*exposed(dorn::test::RunningDispatcherTag{}) = 0; });
    dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    poll.add([&](pollfd* entries) {
        dispatcher.UnregisterEventHandler(5);
        entries[0].revents = POLLIN;
        return 1;
    });

    dispatcher.Setup(radId, "Events", 3, 8192);

    EXPECT_THAT(handled(), ElementsAre("dispatcher handles 5"));
}

TEST_F(EventDispatcherTest, HandlerOfADescriptorRegisteredAgainTooEarlyIsLost)
{
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_poll.add([this](pollfd* /*entries*/) {
        m_dispatcher.UnregisterEventHandler(5);
        m_dispatcher.RegisterEventHandler(5, m_b, POLLIN);
        return 0;
    });
    m_poll.add({{0, POLLIN}});

    run();

    EXPECT_THAT(m_platform.calls("poll("), ElementsAre("poll(5:0x1, 200)", "poll(5:0x1, 200)", "poll(5:0x1, 200)"));
    EXPECT_THAT(handled(), IsEmpty());
}

TEST_F(EventDispatcherTest, DescriptorRegisteredAgainAfterTheTakeoverHasItsHandler)
{
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_poll.add([this](pollfd* /*entries*/) {
        m_dispatcher.UnregisterEventHandler(5);
        return 0;
    });
    m_poll.add([this](pollfd* /*entries*/) {
        m_dispatcher.RegisterEventHandler(5, m_b, POLLIN);
        return 0;
    });
    m_poll.add({{0, POLLIN}});

    run();

    EXPECT_THAT(m_platform.calls("poll("),
                ElementsAre("poll(5:0x1, 200)", "poll(200)", "poll(5:0x1, 200)", "poll(5:0x1, 200)"));
    EXPECT_THAT(handled(), ElementsAre("b handles 5"));
}

TEST_F(EventDispatcherTest, EveryEntryIsLookedAtInOrderUnderTheSafeSemaphore)
{
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_dispatcher.RegisterEventHandler(6, m_a, POLLIN);
    m_dispatcher.RegisterEventHandler(7, m_b, POLLIN);
    m_poll.add({{2, POLLIN}, {0, POLLIN}});

    run();

    EXPECT_THAT(callsInRounds(), ElementsAre("poll(5:0x1, 6:0x1, 7:0x1, 200)", "AaSemTake(3, -1)", "a handles 5",
                                             "AaSemGive(3)", "AaSemTake(3, -1)", "AaSemGive(3)", "AaSemTake(3, -1)",
                                             "b handles 7", "AaSemGive(3)", "poll(5:0x1, 6:0x1, 7:0x1, 200)",
                                             "AaSemGive(1)", "Info 0x20000 Event Dispatcher Events finished polling"));
}

TEST_F(EventDispatcherTest, ReadableConditionsCallTheHandler)
{
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    for (const int events : {POLLIN, POLLPRI, POLLRDNORM, POLLIN | POLLHUP, POLLPRI | POLLERR | POLLOUT}) {
        m_poll.add({{0, events}});
    }

    run();

    EXPECT_EQ(handled().size(), 5U);
}

TEST_F(EventDispatcherTest, OtherConditionsCallNoHandlerAndTheDescriptorStays)
{
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    for (const int events : {POLLERR, POLLHUP, POLLNVAL, POLLOUT, POLLRDBAND, POLLERR | POLLHUP}) {
        m_poll.add({{0, events}});
    }

    run();

    EXPECT_THAT(handled(), IsEmpty());
    EXPECT_THAT(m_platform.calls("poll("), testing::SizeIs(7));
    EXPECT_THAT(m_platform.calls("poll("), testing::Each("poll(5:0x1, 200)"));
}

TEST_F(EventDispatcherTest, RoundWithoutEventsTakesNoSemaphore)
{
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_poll.add([](pollfd* entries) {
        entries[0].revents = POLLIN; // not to be looked at
        return 0;
    });

    run();

    EXPECT_THAT(m_platform.calls("AaSemTake(3"), IsEmpty());
}

TEST_F(EventDispatcherTest, FailedPollIsLoggedAndTriedAgain)
{
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    for (int round = 0; round < 2; ++round) {
        m_poll.add([](pollfd* entries) {
            entries[0].revents = POLLIN; // not to be looked at
            errno = EINTR;
            return -1;
        });
    }
    m_poll.add({{0, POLLIN}});

    run();

    EXPECT_THAT(callsInRounds(),
                ElementsAre("poll(5:0x1, 200)", "Error 0x20000 Event Handler Events - poll() failed",
                            "poll(5:0x1, 200)", "Error 0x20000 Event Handler Events - poll() failed",
                            "poll(5:0x1, 200)", "AaSemTake(3, -1)", "a handles 5", "AaSemGive(3)", "poll(5:0x1, 200)",
                            "AaSemGive(1)", "Info 0x20000 Event Dispatcher Events finished polling"));
}

TEST_F(EventDispatcherTest, HandlerUnregisteredWhilePendingIsNotCalled)
{
    m_a.onEvent = [this] { m_dispatcher.UnregisterEventHandler(6); };
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_dispatcher.RegisterEventHandler(6, m_b, POLLIN);
    m_poll.add({{0, POLLIN}, {1, POLLIN}});

    run();

    EXPECT_THAT(handled(), ElementsAre("a handles 5"));
    EXPECT_THAT(m_platform.calls("poll("), ElementsAre("poll(5:0x1, 6:0x1, 200)", "poll(5:0x1, 200)"));
}

TEST_F(EventDispatcherTest, HandlerMayUnregisterItself)
{
    m_a.onEvent = [this] { m_dispatcher.UnregisterEventHandler(5); };
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_poll.add({{0, POLLIN}});

    run();

    EXPECT_THAT(handled(), ElementsAre("a handles 5"));
    EXPECT_THAT(m_platform.calls("poll("), ElementsAre("poll(5:0x1, 200)", "poll(200)"));
}

TEST_F(EventDispatcherTest, HandlersMayUnregisterEachOther)
{
    m_a.onEvent = [this] { m_dispatcher.UnregisterEventHandler(6); };
    m_b.onEvent = [this] { m_dispatcher.UnregisterEventHandler(5); };
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_dispatcher.RegisterEventHandler(6, m_b, POLLIN);
    m_poll.add({{0, POLLIN}, {1, POLLIN}});
    m_poll.add({{0, POLLIN}});

    run();

    EXPECT_THAT(handled(), ElementsAre("a handles 5", "a handles 5"));
}

TEST_F(EventDispatcherTest, DescriptorRegisteredByAHandlerIsPolledFromTheNextRoundOn)
{
    m_a.onEvent = [this] { m_dispatcher.RegisterEventHandler(6, m_b, POLLIN); };
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_poll.add({{0, POLLIN}});
    m_poll.add({{1, POLLIN}});

    run();

    EXPECT_THAT(handled(), ElementsAre("a handles 5", "b handles 6"));
    EXPECT_THAT(m_platform.calls("poll("),
                ElementsAre("poll(5:0x1, 200)", "poll(5:0x1, 6:0x1, 200)", "poll(5:0x1, 6:0x1, 200)"));
}

TEST_F(EventDispatcherTest, HandlerReplacedInARoundIsCalledInThatRound)
{
    Handler later("later");
    m_a.onEvent = [&] { m_dispatcher.RegisterEventHandler(6, later, POLLIN); };
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_dispatcher.RegisterEventHandler(6, m_b, POLLIN);
    m_poll.add({{0, POLLIN}, {1, POLLIN}});

    run();

    EXPECT_THAT(handled(), ElementsAre("a handles 5", "later handles 6"));
}

TEST_F(EventDispatcherTest, DescriptorsAndHandlersOutliveTheEu)
{
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    run();
    m_poll.add({{0, POLLIN}});
    m_platform.clearCalls();

    m_dispatcher.Start();

    EXPECT_THAT(handled(), ElementsAre("a handles 5"));
}

TEST_F(EventDispatcherTest, HandlerThatThrowsIsLoggedAndTheRoundGoesOn)
{
    m_a.onEvent = [] { throw std::runtime_error("broken"); };
    m_b.onEvent = [] { throw 5; };
    Handler last("last");
    m_dispatcher.RegisterEventHandler(5, m_a, POLLIN);
    m_dispatcher.RegisterEventHandler(6, m_b, POLLIN);
    m_dispatcher.RegisterEventHandler(7, last, POLLIN);
    m_poll.add({{0, POLLIN}, {1, POLLIN}, {2, POLLIN}});

    run();

    EXPECT_THAT(callsInRounds(),
                ElementsAre("poll(5:0x1, 6:0x1, 7:0x1, 200)", "AaSemTake(3, -1)", "a handles 5",
                            "Error 0x20000 Event Handler Events - HandleEvent(5) failed: broken", "AaSemGive(3)",
                            "AaSemTake(3, -1)", "b handles 6",
                            "Error 0x20000 Event Handler Events - HandleEvent(6) failed", "AaSemGive(3)",
                            "AaSemTake(3, -1)", "last handles 7", "AaSemGive(3)", "poll(5:0x1, 6:0x1, 7:0x1, 200)",
                            "AaSemGive(1)", "Info 0x20000 Event Dispatcher Events finished polling"));
}

} // namespace
} // namespace vel::hwapi::common
