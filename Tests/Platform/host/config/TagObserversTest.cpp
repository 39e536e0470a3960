// SPDX-License-Identifier: MIT
#include "config/TagObservers.hpp"

#include "NodeTest.hpp"
#include "TagRecorder.hpp"
#include "config/TagStore.hpp"

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <pthread.h>
#include <string>
#include <thread>
#include <vector>

namespace dorn::host {
namespace {

using test::Gate;
using test::TagRecorder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TagView bytes(const std::string& text)
{
    return std::as_bytes(std::span(text.data(), text.size()));
}

/// Names of this process's threads, without that of the test itself.
std::vector<std::string> platformThreads()
{
    std::vector<std::string> names;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        if (name == "AaConfigTag") {
            names.push_back(name);
        }
    }
    return names;
}

class TagObserversTest : public testkit::NodeTest {
protected:
    static TagStore& store() { return PerNode<TagStore>::get(); }
    static TagObservers& observers() { return store().observers(); }
    static void set(const std::string& name, const std::string& value) { ASSERT_TRUE(store().set(name, bytes(value))); }

    TagObservers::Function recording()
    {
        return [this](const std::string& name, TagView value) { m_recorder.add(name, value.data(), value.size()); };
    }

    TagRecorder m_recorder;
};

TEST_F(TagObserversTest, ThreadIsStartedWithTheFirstObserverOnly)
{
    set("sys.x", "1");
    set("tessel.service.x", "1");
    EXPECT_THAT(platformThreads(), IsEmpty());
    observers().add("sys.x", recording());
    EXPECT_THAT(platformThreads(), ElementsAre("AaConfigTag"));
    observers().add("sys.y", recording());
    EXPECT_THAT(platformThreads(), ElementsAre("AaConfigTag"));
}

TEST_F(TagObserversTest, ClosedNodeHasNoThread)
{
    observers().add("sys.x", recording());
    closeNode();
    EXPECT_THAT(platformThreads(), IsEmpty());
}

TEST_F(TagObserversTest, ThreadTakesNoSignals)
{
    Gate gate;
    sigset_t blocked;
    sigemptyset(&blocked);
    const TagWatch watch(store(), "sys.x", [&](const std::string&, TagView) {
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        gate.open();
    });
    set("sys.x", "1");
    ASSERT_TRUE(gate.pass());
    EXPECT_EQ(sigismember(&blocked, SIGTERM), 1);
    EXPECT_EQ(sigismember(&blocked, SIGCHLD), 1);
}

TEST_F(TagObserversTest, WatchOfAllTagsSeesEverySet)
{
    const TagWatch watch(store(), "", recording());
    set("sys.x", "1");
    set("sys.y", "2");
    ASSERT_THAT(m_recorder.waitFor(2), ElementsAre("sys.x=1", "sys.y=2"));
    set("tessel.service.x", "3");
    EXPECT_THAT(m_recorder.waitFor(3), ElementsAre("sys.x=1", "sys.y=2", "tessel.service.x=3"));
}

TEST_F(TagObserversTest, EndedWatchSeesNoMore)
{
    TagWatch all(store(), "", recording());
    std::optional<TagWatch> one;
    TagRecorder ended;
    one.emplace(store(), "sys.x",
                [&ended](const std::string& name, TagView value) { ended.add(name, value.data(), value.size()); });
    set("sys.x", "1");
    ended.waitFor(1);
    one.reset();
    set("sys.x", "2");
    m_recorder.waitFor(2);
    EXPECT_THAT(ended.calls(), ElementsAre("sys.x=1"));
}

TEST_F(TagObserversTest, ObserverMaySetTags)
{
    const TagWatch watch(store(), "sys.x", [&](const std::string& name, TagView value) {
        m_recorder.add(name, value.data(), value.size());
        if (value.size() < 4) {
            set("sys.x", std::string(value.size() + 1, 'n'));
        }
    });
    set("sys.x", "n");
    EXPECT_THAT(m_recorder.waitFor(4), ElementsAre("sys.x=n", "sys.x=nn", "sys.x=nnn", "sys.x=nnnn"));
}

TEST_F(TagObserversTest, ObserverMayRegisterAnother)
{
    std::atomic<TagObservers::Id> second{0};
    const TagWatch watch(store(), "sys.x", [&](const std::string&, TagView) {
        if (second == 0) {
            second = observers().add("sys.y", recording());
            set("sys.y", "1");
        }
    });
    set("sys.y", "0");
    set("sys.x", "go");
    EXPECT_THAT(m_recorder.waitFor(1), ElementsAre("sys.y=1"));
}

TEST_F(TagObserversTest, ObserverMayEndItself)
{
    const auto id = std::make_shared<std::atomic<TagObservers::Id>>(0);
    *id = observers().add("sys.x", [this, id](const std::string& name, TagView value) {
        m_recorder.add(name, value.data(), value.size());
        observers().remove(*id);
    });
    TagRecorder all;
    const TagWatch watch(store(), "",
                         [&all](const std::string& name, TagView value) { all.add(name, value.data(), value.size()); });

    set("sys.x", "1");
    set("sys.x", "2");
    all.waitFor(2);

    EXPECT_THAT(m_recorder.calls(), ElementsAre("sys.x=1"));
}

TEST_F(TagObserversTest, ObserverMayEndAnotherThatWaitsForTheSameSet)
{
    TagObservers::Id second = 0;
    const TagWatch first(store(), "sys.x", [&](const std::string& name, TagView value) {
        m_recorder.add(name, value.data(), value.size());
        observers().remove(second);
    });
    TagRecorder never;
    second = observers().add(
        "sys.x", [&never](const std::string& name, TagView value) { never.add(name, value.data(), value.size()); });

    set("sys.x", "1");
    set("sys.x", "2");
    m_recorder.waitFor(2);

    EXPECT_THAT(never.calls(), IsEmpty());
}

TEST_F(TagObserversTest, EndingARunningObserverWaitsForIt)
{
    Gate entered;
    Gate leave;
    std::atomic<bool> hasLeft{false};
    const TagObservers::Id id = observers().add("sys.x", [&](const std::string&, TagView) {
        entered.open();
        EXPECT_TRUE(leave.pass());
        hasLeft = true;
    });

    set("sys.x", "1");
    ASSERT_TRUE(entered.pass());
    std::thread other([&] { leave.open(); });

    EXPECT_TRUE(observers().remove(id));
    EXPECT_TRUE(hasLeft);
    other.join();
}

TEST_F(TagObserversTest, EndingAnObserverDoesNotWaitForAnother)
{
    Gate entered;
    Gate leave;
    observers().add("sys.x", [&](const std::string&, TagView) {
        entered.open();
        EXPECT_TRUE(leave.pass());
    });
    const TagObservers::Id other = observers().add("sys.y", recording());

    set("sys.x", "1");
    ASSERT_TRUE(entered.pass());
    EXPECT_TRUE(observers().remove(other));

    leave.open();
    closeNode();
}

TEST_F(TagObserversTest, SetsBeforeALaterRegistrationAreNotForIt)
{
    Gate entered;
    Gate leave;
    const TagWatch slow(store(), "sys.slow", [&](const std::string&, TagView) {
        entered.open();
        EXPECT_TRUE(leave.pass());
    });

    set("sys.slow", "");
    ASSERT_TRUE(entered.pass());
    set("sys.x", "before");
    set("tessel.service.x", "before");
    const TagWatch own(store(), "tessel.service.x", recording());
    const TagWatch watch(store(), "sys.x", recording());

    set("tessel.service.x", "after");
    set("sys.x", "after");
    leave.open();
    m_recorder.waitFor(2);

    EXPECT_THAT(m_recorder.calls(), ::testing::UnorderedElementsAre("tessel.service.x=after", "sys.x=after"));
}

TEST_F(TagObserversTest, SetsWhileNobodyObservesAreForNobody)
{
    {
        const TagWatch first(store(), "sys.x", recording());
        set("sys.x", "1");
        m_recorder.waitFor(1);
    }
    set("sys.x", "2");
    const TagWatch second(store(), "sys.x", recording());
    set("sys.x", "3");
    EXPECT_THAT(m_recorder.waitFor(2), ElementsAre("sys.x=1", "sys.x=3"));
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(TagObserversTest, ManySetsFromManyThreadsAreAllDeliveredInTheirOrder)
{
    constexpr int threads = 4;
    constexpr int sets = 300;
    const TagWatch watch(store(), "sys.x", recording());

    std::vector<std::thread> setters;
    for (int thread = 0; thread < threads; ++thread) {
        setters.emplace_back([thread] {
            for (int count = 0; count < sets; ++count) {
                set("sys.x", std::to_string(thread) + ":" + std::to_string(count));
            }
        });
    }
    for (std::thread& setter : setters) {
        setter.join();
    }

    std::vector<int> next(threads, 0);
    const std::vector<std::string> calls = m_recorder.waitFor(threads * sets);
    ASSERT_EQ(calls.size(), static_cast<std::size_t>(threads * sets));
    for (const std::string& call : calls) {
        const std::size_t colon = call.find(':');
        int& expected = next[static_cast<std::size_t>(std::stoi(call.substr(6, colon - 6)))];
        EXPECT_EQ(std::stoi(call.substr(colon + 1)), expected);
        ++expected;
    }
}

/// An observer of "sys.x" that stands still until it is let go.
class TagLaggardTest : public TagObserversTest {
protected:
    void fallBehind(const std::string& name)
    {
        m_watch.emplace(store(), name, [this](const std::string& tag, TagView value) {
            m_entered.open();
            EXPECT_TRUE(m_leave.pass());
            m_recorder.add(tag, value.data(), value.size());
        });
        set(name, "0");
        ASSERT_TRUE(m_entered.pass());
    }

    Gate m_entered;
    Gate m_leave;
    std::optional<TagWatch> m_watch;
};

TEST_F(TagLaggardTest, LaggardWithinTheBoundLosesNothing)
{
    fallBehind("sys.x");
    for (int count = 1; count <= 500; ++count) {
        set("sys.x", std::to_string(count));
    }
    m_leave.open();
    const std::vector<std::string> calls = m_recorder.waitFor(501);
    ASSERT_EQ(calls.size(), 501U);
    EXPECT_EQ(calls.front(), "sys.x=0");
    EXPECT_EQ(calls.back(), "sys.x=500");
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(TagLaggardTest, LaggardBeyondTheBoundLosesTheOldestWithALine)
{
    fallBehind("sys.x");

    // Set 0 has been read; of the following the last 65,536 are kept.
    const auto last = static_cast<int>(tagJournalCapacity) + 7;
    for (int count = 1; count <= last; ++count) {
        set("sys.x", std::to_string(count));
    }

    m_leave.open();
    const std::vector<std::string> calls = m_recorder.waitFor(1 + tagJournalCapacity);

    ASSERT_EQ(calls.size(), 1 + tagJournalCapacity);
    EXPECT_EQ(calls[0], "sys.x=0");
    EXPECT_EQ(calls[1], "sys.x=8");
    EXPECT_EQ(calls.back(), "sys.x=" + std::to_string(last));
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Error 0x0 configuration tag observers are too slow: the oldest 7 sets are lost to them"));
}

TEST_F(TagLaggardTest, LaggardOfProcessTagsLosesTheOldestWithALine)
{
    fallBehind("tessel.service.x");
    const auto last = static_cast<int>(tagJournalCapacity) + 7;
    for (int count = 1; count <= last; ++count) {
        set("tessel.service.x", std::to_string(count));
    }
    m_leave.open();
    const std::vector<std::string> calls = m_recorder.waitFor(1 + tagJournalCapacity);
    ASSERT_EQ(calls.size(), 1 + tagJournalCapacity);
    EXPECT_EQ(calls[1], "tessel.service.x=8");
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Error 0x0 configuration tag observers are too slow: the oldest 7 sets are lost to them"));
}

TEST_F(TagLaggardTest, ObserverThatUsesTheTagsWhileTheNodeIsClosedFailsCleanly)
{
    std::string reason;
    Gate entered;
    observers().add("sys.y", [&](const std::string&, TagView) {
        entered.open();
        while (PerNode<TagStore>::ifOpen()) {
            std::this_thread::yield();
        }
        try {
            PerNode<TagStore>::get();
        } catch (const EnvironmentError& error) {
            reason = error.what();
        }
    });

    set("sys.y", "1");
    ASSERT_TRUE(entered.pass());
    closeNode();

    EXPECT_EQ(reason, "the tag store of this process is just being closed");
}

} // namespace
} // namespace dorn::host
