// SPDX-License-Identifier: MIT
#include "trbl/TroubleCollection.hpp"

#include "AaFile.h"
#include "AaTrbl.h"
#include "NodeTest.hpp"
#include "Process.hpp"
#include "node/PerNode.hpp"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>

namespace dorn::host {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testkit::Process;

Deadline in(Nanoseconds time)
{
    return Clock::get().monotonic() + time;
}

class TroubleCollectionTest : public testkit::NodeTest {
protected:
    void SetUp() override { ASSERT_EQ(AaFileCreateDir("/ram"), 0); }

    static TroubleFiles& list() { return PerNode<TroubleFiles>::get(); }
    bool isThere(const std::string& path) const { return std::filesystem::exists(m_node.boardPath(path)); }
};

/// A process with one file.
class Owner : public Process {
public:
    Owner(const std::string& mode, const std::string& path) : Process(DORN_TROUBLE_PROGRAM, {mode, mode, path})
    {
        EXPECT_TRUE(waitForOutput("ready")) << standardError();
    }
};

TEST_F(TroubleCollectionTest, FileOfAnotherProcessIsStoredThereAndRemovedAtTheEnd)
{
    const Owner owner("stored", "/ram/a");
    {
        const TroubleCollection collection(list(), in(20s));

        ASSERT_EQ(collection.files().size(), 1U);
        EXPECT_EQ(collection.files()[0].answer, TroubleAnswer::Done);
        EXPECT_EQ(collection.files()[0].file.pid, owner.pid());
        EXPECT_EQ(m_node.readBoardFile("/ram/a"), "stored by " + std::to_string(owner.pid()));
    }
    EXPECT_FALSE(isThere("/ram/a"));
}

TEST_F(TroubleCollectionTest, FileIsCollectedAsOftenAsSomebodyAsks)
{
    const Owner owner("stored", "/ram/a");

    for (int turn = 0; turn < 3; ++turn) {
        const TroubleCollection collection(list(), in(20s));
        EXPECT_EQ(collection.files()[0].answer, TroubleAnswer::Done);
        EXPECT_TRUE(isThere("/ram/a"));
    }
    EXPECT_FALSE(isThere("/ram/a"));
}

TEST_F(TroubleCollectionTest, FileThatCouldNotBeStoredIsNotRemoved)
{
    const Owner owner("failed", "/ram/a");
    {
        const TroubleCollection collection(list(), in(20s));
        EXPECT_EQ(collection.files()[0].answer, TroubleAnswer::Failed);
    }
    EXPECT_TRUE(isThere("/ram/a"));
}

TEST_F(TroubleCollectionTest, ProcessThatCrashesKeepsNobodyElsesFilesAway)
{
    const Owner crashing("crashed", "/ram/a");
    const Owner owner("stored", "/ram/b");
    const Deadline until = in(20s);

    const TroubleCollection collection(list(), until);

    ASSERT_EQ(collection.files().size(), 2U);
    EXPECT_EQ(collection.files()[0].answer, TroubleAnswer::Dead);
    EXPECT_EQ(collection.files()[1].answer, TroubleAnswer::Done);
    EXPECT_TRUE(isThere("/ram/b"));
    EXPECT_LT(Clock::get().monotonic(), until); // nobody waited for the dead
}

TEST_F(TroubleCollectionTest, ProcessThatHangsIsWaitedForNoLongerThanWanted)
{
    const Owner hanging("hung", "/ram/a");
    const Owner owner("stored", "/ram/b");
    {
        const TroubleCollection collection(list(), in(2s));

        ASSERT_EQ(collection.files().size(), 2U);
        EXPECT_EQ(collection.files()[0].answer, TroubleAnswer::Pending);
        EXPECT_EQ(collection.files()[1].answer, TroubleAnswer::Done);
    }
    EXPECT_TRUE(owner.waitForOutput("removed"));
}

TEST_F(TroubleCollectionTest, ProcessThatStoresLateRemovesThen)
{
    const std::string gate = m_node.boardPath("/ram/gate");
    ASSERT_EQ(mkfifo(gate.c_str(), 0600), 0);
    const Owner owner("late", "/ram/a");
    {
        const TroubleCollection collection(list(), in(50ms));
        EXPECT_EQ(collection.files()[0].answer, TroubleAnswer::Pending);
    }

    std::ofstream(gate) << "now"; // waits for the process to be there

    EXPECT_TRUE(owner.waitForOutput("removed"));
    EXPECT_FALSE(isThere("/ram/a"));
}

TEST_F(TroubleCollectionTest, FileOfADeadProcessIsThereAsItWasLeft)
{
    {
        Owner owner("left", "/ram/a");
        Owner other("stored", "/ram/b");
        owner.signal(SIGKILL);
        other.signal(SIGKILL);
        owner.waitForEnd();
        other.waitForEnd();
    }

    const TroubleCollection collection(list(), in(20s));

    ASSERT_EQ(collection.files().size(), 2U);
    EXPECT_EQ(collection.files()[0].answer, TroubleAnswer::Done); // it asks for nothing
    EXPECT_EQ(collection.files()[1].answer, TroubleAnswer::Dead);
    EXPECT_TRUE(isThere("/ram/a"));
}

TEST_F(TroubleCollectionTest, SecondCollectorWaitsForTheFirstNoLongerThanWanted)
{
    const Process other(DORN_TROUBLE_PROGRAM, {"collecting", "", ""});
    ASSERT_TRUE(other.waitForOutput("collecting")) << other.standardError();

    EXPECT_THROW(TroubleCollection(list(), in(50ms)), CollectionError);
}

TEST_F(TroubleCollectionTest, StepMayRegisterAFile)
{
    const TAaTrblFileCallback store = [](const char* /*path*/, void* /*opaque*/) {
        return AaTrblFileRegister("more", "/ram/more", 9, 0, nullptr, nullptr, nullptr, nullptr);
    };
    ASSERT_EQ(AaTrblFileRegister("a", "/ram/a", 1, 0, nullptr, store, nullptr, nullptr), 0);

    const TroubleCollection collection(list(), in(20s));

    EXPECT_EQ(collection.files()[0].answer, TroubleAnswer::Done);
    EXPECT_EQ(list().list().size(), 2U);
}

} // namespace
} // namespace dorn::host
