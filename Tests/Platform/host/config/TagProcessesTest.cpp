// SPDX-License-Identifier: MIT
#include "AaConfigTag.h"
#include "ChildProcess.hpp"
#include "NodeTest.hpp"
#include "TagRecorder.hpp"
#include "WaitingClock.hpp"
#include "config/TagStore.hpp"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <fstream>
#include <gmock/gmock.h>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace dorn::host {
namespace {

using test::ChildProcess;
using test::TagRecorder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TagView bytes(const std::string& text)
{
    return std::as_bytes(std::span(text.data(), text.size()));
}

void set(const std::string& name, const std::string& value)
{
    ASSERT_TRUE(PerNode<TagStore>::get().set(name, bytes(value)));
}

TagObservers::Function recordingIn(TagRecorder& recorder)
{
    return [&recorder](const std::string& name, TagView value) { recorder.add(name, value.data(), value.size()); };
}

/// Sets that the node's journal still has; no store may be open.
std::size_t journalSize()
{
    const TagDatabase database(PerNode<RunDirectory>::get());
    return database.readJournal(0, [](const std::string&) { return true; }).entries.size();
}

/// Waits until a thread of this process, whose id is going to be in @p thread, sleeps.
void awaitSleepOf(const std::atomic<pid_t>& thread)
{
    for (std::string state; state != "S";) {
        std::ifstream stat("/proc/self/task/" + std::to_string(thread.load()) + "/stat");
        stat.ignore(std::numeric_limits<std::streamsize>::max(), ')') >> state;
        std::this_thread::yield();
    }
}

/// Tags of several processes.
class TagProcessesTest : public testkit::NodeTest {
protected:
    static TagStore& store() { return PerNode<TagStore>::get(); }

    /// A process that tells when it observes "sys.x", and does so until it is killed.
    static ChildProcess observingProcess()
    {
        return ChildProcess([](ChildProcess::Parent& parent) {
            TagRecorder recorder;
            const TagWatch watch(store(), "sys.x", recordingIn(recorder));
            parent.tell();
            parent.await();
        });
    }
};

TEST_F(TagProcessesTest, TagSetInOneProcessIsReadInAnother)
{
    ChildProcess other([](ChildProcess::Parent&) { AaConfigTagSetU32("sys.x", 5); });
    ASSERT_TRUE(other.hasSucceeded());
    std::uint32_t value = 0;
    EXPECT_EQ(AaConfigTagGetU32("sys.x", &value), 0);
    EXPECT_EQ(value, 5U);
}

TEST_F(TagProcessesTest, ProcessTagsAreNotSeenByOthers)
{
    ChildProcess other([](ChildProcess::Parent& parent) {
        AaConfigTagSetString("tessel.service.aapro.eename", "Other");
        parent.tell();
        parent.await();
    });
    ASSERT_TRUE(other.await());
    EXPECT_FALSE(store().get("tessel.service.aapro.eename"));
    EXPECT_THAT(store().list(), IsEmpty());
}

TEST_F(TagProcessesTest, ObserversInAllProcessesAreToldOfEverySetInTheSameOrder)
{
    constexpr int setters = 3;
    constexpr int sets = 200;
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int setter = 0; setter < setters; ++setter) {
        children.push_back(std::make_unique<ChildProcess>([setter](ChildProcess::Parent& parent) {
            ASSERT_TRUE(parent.await());
            for (int count = 0; count < sets; ++count) {
                set("sys.x", std::to_string(setter) + ":" + std::to_string(count));
            }
        }));
    }

    const std::string path = m_node.boardPath("/calls");
    ChildProcess other([&path](ChildProcess::Parent& parent) {
        TagRecorder recorder;
        const TagWatch watch(store(), "sys.x", recordingIn(recorder));
        parent.tell();
        std::ofstream file(path);
        for (const std::string& call : recorder.waitFor(setters * sets)) {
            file << call << '\n';
        }
    });
    ASSERT_TRUE(other.await());

    TagRecorder recorder;
    const TagWatch watch(store(), "sys.x", recordingIn(recorder));
    for (const auto& child : children) {
        child->tell();
    }

    std::string calls;
    for (const std::string& call : recorder.waitFor(setters * sets)) {
        calls += call + "\n";
    }

    EXPECT_EQ(std::count(calls.begin(), calls.end(), '\n'), setters * sets);
    ASSERT_TRUE(other.hasSucceeded());
    EXPECT_EQ(m_node.readBoardFile("/calls"), calls);
    for (const auto& child : children) {
        EXPECT_TRUE(child->hasSucceeded());
    }
}

TEST_F(TagProcessesTest, SetThatFollowsARegistrationInAnotherProcessIsSeenByIt)
{
    // Many short rounds: registration and set race on whether anybody observes.
    constexpr int rounds = 200;
    ChildProcess setter([](ChildProcess::Parent& parent) {
        for (int round = 0; round < rounds && parent.await(); ++round) {
            set("sys.x", std::to_string(round));
        }
    });

    for (int round = 0; round < rounds; ++round) {
        TagRecorder recorder;
        const TagWatch watch(store(), "sys.x", recordingIn(recorder));
        setter.tell();
        ASSERT_THAT(recorder.waitFor(1), ElementsAre("sys.x=" + std::to_string(round)));
    }

    EXPECT_TRUE(setter.hasSucceeded());
}

TEST_F(TagProcessesTest, KilledObserverBlocksNobodyAndIsForgotten)
{
    ChildProcess dead = observingProcess();
    ASSERT_TRUE(dead.await());
    set("sys.x", "it lives");
    dead.kill();
    for (int count = 0; count < 200; ++count) {
        set("sys.x", std::to_string(count));
    }
    closeNode();
    EXPECT_EQ(journalSize(), 0U);
}

TEST_F(TagProcessesTest, KilledObserverIsForgottenWhenAProcessStarts)
{
    ChildProcess dead = observingProcess();
    ASSERT_TRUE(dead.await());
    dead.kill();
    set("sys.x", "nobody listens");
    closeNode();
    EXPECT_EQ(journalSize(), 0U);
}

TEST_F(TagProcessesTest, LivingObserverIsServedBesideAKilledOne)
{
    ChildProcess dead = observingProcess();
    ASSERT_TRUE(dead.await());
    TagRecorder recorder;
    const TagWatch watch(store(), "sys.x", recordingIn(recorder));

    dead.kill();
    for (int count = 0; count < 300; ++count) {
        set("sys.x", std::to_string(count));
    }
    const std::vector<std::string> calls = recorder.waitFor(300);

    ASSERT_EQ(calls.size(), 300U);
    EXPECT_EQ(calls.back(), "sys.x=299");
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(TagProcessesTest, ProcessThatIsStoppedInASetKeepsNobodyFromStartingAndReading)
{
    ChildProcess stopped([](ChildProcess::Parent& parent) {
        set("sys.x", "before");
        closeNode();
        TagDatabase database(PerNode<RunDirectory>::get());
        const TagWrite write(database);
        parent.tell();
        parent.await();
    });
    ChildProcess other([](ChildProcess::Parent& parent) {
        ASSERT_TRUE(parent.await());
        EXPECT_EQ(AaConfigEarlyStartup(), 0);
        EXPECT_EQ(store().get("sys.x")->size(), 6U);
        EXPECT_EQ(store().list().size(), 1U);
        parent.tell();
    });

    ASSERT_TRUE(stopped.await());
    other.tell();
    EXPECT_TRUE(other.await());
}

TEST_F(TagProcessesTest, ThreadThatWaitsForAStoppedSetterKeepsNoOtherWaiting)
{
    ChildProcess stopped([](ChildProcess::Parent& parent) {
        ASSERT_TRUE(parent.await());
        TagDatabase database(PerNode<RunDirectory>::get());
        const TagWrite write(database);
        parent.tell();
        parent.await();
    });
    ChildProcess other([](ChildProcess::Parent& parent) {
        TagRecorder recorder;
        const TagWatch own(store(), "tessel.service.x", recordingIn(recorder));
        parent.tell();
        ASSERT_TRUE(parent.await());
        std::atomic<pid_t> waiter{0};
        std::thread registration([&recorder, &waiter] {
            waiter.store(gettid());
            const TagWatch watch(store(), "sys.x", recordingIn(recorder));
        });
        awaitSleepOf(waiter);
        set("tessel.service.x", "1");
        EXPECT_THAT(recorder.waitFor(1), ElementsAre("tessel.service.x=1"));
        parent.tell();
        registration.join();
    });

    ASSERT_TRUE(other.await());
    stopped.tell();
    ASSERT_TRUE(stopped.await());
    other.tell();
    EXPECT_TRUE(other.await());

    stopped.kill();
    EXPECT_TRUE(other.hasSucceeded());
}

TEST_F(TagProcessesTest, WakeUpThatAKilledProcessOwesIsMadeUpForByTheNextStart)
{
    ChildProcess killed([](ChildProcess::Parent& parent) {
        ASSERT_TRUE(parent.await());
        const RunDirectory& directory = PerNode<RunDirectory>::get();
        TagDatabase database(directory);
        TagWrite write(database);
        write.put("sys.x", bytes("1"));
        write.appendToJournal("sys.x", bytes("1"));
        write.commit(); // and here it is killed
    });
    ChildProcess next([](ChildProcess::Parent& parent) {
        ASSERT_TRUE(parent.await());
        EXPECT_EQ(AaConfigEarlyStartup(), 0);
    });

    TagRecorder recorder;
    const TagWatch watch(store(), "sys.x", recordingIn(recorder));

    killed.tell();
    ASSERT_TRUE(killed.hasSucceeded());
    next.tell();
    ASSERT_TRUE(next.hasSucceeded());

    EXPECT_THAT(recorder.waitFor(1), ElementsAre("sys.x=1"));
}

TEST_F(TagProcessesTest, ProcessKilledWhileSettingBlocksNobody)
{
    for (int round = 0; round < 20; ++round) {
        ChildProcess setter([](ChildProcess::Parent& parent) {
            set("sys.x", "");
            parent.tell();
            for (;;) {
                set("sys.x", std::string(30'000, 'v'));
            }
        });
        ASSERT_TRUE(setter.await());
        std::this_thread::yield();
        setter.kill();

        ChildProcess next([](ChildProcess::Parent&) {
            set("sys.y", "alive");
            EXPECT_TRUE(PerNode<TagStore>::get().get("sys.x"));
        });
        ASSERT_TRUE(next.hasSucceeded());
    }
}

TEST_F(TagProcessesTest, SetThatHasReturnedOutlivesTheKilledSetter)
{
    void* const memory =
        mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto& returned = *new (memory) std::atomic<int>(0);

    for (int round = 0; round < 10; ++round) {
        returned.store(0);
        ChildProcess setter([&returned](ChildProcess::Parent& parent) {
            set("sys.x", "0");
            parent.tell();
            for (int count = 1;; ++count) {
                set("sys.x", std::to_string(count));
                returned.store(count);
            }
        });
        ASSERT_TRUE(setter.await());
        while (returned.load() < 5) {
            std::this_thread::yield();
        }
        setter.kill();

        ChildProcess next([&returned](ChildProcess::Parent&) {
            const std::optional<TagBytes> value = PerNode<TagStore>::get().get("sys.x");
            ASSERT_TRUE(value);
            const int kept = std::stoi(std::string(reinterpret_cast<const char*>(value->data()), value->size()));
            EXPECT_GE(kept, returned.load());
            EXPECT_LE(kept, returned.load() + 1); // the one it was killed at
        });
        ASSERT_TRUE(next.hasSucceeded());
    }

    munmap(memory, sizeof(std::atomic<int>));
}

TEST_F(TagProcessesTest, FullDiskFailsTheSetAndLeavesTheStoreUsable)
{
    ChildProcess full([](ChildProcess::Parent&) {
        set("sys.x", "before");
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{200'000, 200'000};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        const std::string big(60'000, 'v');
        int32_t status = 0;
        for (int count = 0; count < 10 && status == 0; ++count) {
            status = AaConfigTagSetString(("sys.big" + std::to_string(count)).c_str(), big.c_str());
        }
        EXPECT_EQ(status, EAaConfigTagStatus_StoreFailed);
        EXPECT_TRUE(PerNode<TagStore>::get().get("sys.x"));
    });
    EXPECT_TRUE(full.hasSucceeded());

    set("sys.x", "after");
    EXPECT_EQ(store().get("sys.x")->size(), 5U);
}

TEST_F(TagProcessesTest, IdleObserverSleepsWithoutLimitAndIsWokenByItsEventsOnly)
{
    ChildProcess other([](ChildProcess::Parent& parent) {
        EXPECT_EQ(AaConfigEarlyStartup(), 0);
        parent.tell();
        ASSERT_TRUE(parent.await());
        TagRecorder recorder;
        const TagWatch watch(store(), "tessel.service.x", recordingIn(recorder));
        set("tessel.service.x", "only here");
        EXPECT_THAT(recorder.waitFor(1), ElementsAre("tessel.service.x=only here"));
        parent.tell();
        ASSERT_TRUE(parent.await());
        set("sys.x", "1");
    });
    ASSERT_TRUE(other.await());

    test::WaitingClock clock;
    TagRecorder recorder;
    {
        const TagWatch watch(store(), "sys.x", recordingIn(recorder));
        clock.awaitSleepAfter(0);
        other.tell();
        ASSERT_TRUE(other.await());
        EXPECT_EQ(clock.sleeps(), 1); // the other's own affairs have not woken it
        other.tell();
        EXPECT_THAT(recorder.waitFor(1), ElementsAre("sys.x=1"));
        ASSERT_TRUE(other.hasSucceeded());
    }

    closeNode();
    EXPECT_EQ(clock.timedSleeps(), 0);
}

} // namespace
} // namespace dorn::host
