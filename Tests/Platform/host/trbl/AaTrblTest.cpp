// SPDX-License-Identifier: MIT
#include "AaTrbl.h"

#include "FailingFilePort.hpp"
#include "NodeTest.hpp"
#include "node/PerNode.hpp"
#include "trbl/TroubleCollection.hpp"

#include <gmock/gmock.h>
#include <ostream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace dorn::host {

void PrintTo(const TroubleFile& file, std::ostream* stream)
{
    *stream << file.name << " " << file.path << " " << file.priority << (file.hasSteps ? " with steps " : " ")
            << file.pid;
}

bool operator==(const TroubleFile& left, const TroubleFile& right)
{
    return left.name == right.name && left.path == right.path && left.priority == right.priority &&
           left.hasSteps == right.hasSteps && left.pid == right.pid;
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What the steps of files did: "prepare /ram/a".
std::vector<std::string> steps;
std::string failingStep;

template <char Step>
int32_t step(const char* fileName, void* opaque)
{
    steps.push_back(std::string(1, Step) + " " + fileName + " " + static_cast<const char*>(opaque));
    return steps.back().starts_with(failingStep) && !failingStep.empty() ? 1 : 0;
}

char context[] = "mine";

class AaTrblTest : public testkit::NodeTest {
protected:
    AaTrblTest()
    {
        steps.clear();
        failingStep.clear();
    }

    static int32_t add(const char* name, const char* path, uint32_t priority = 5)
    {
        return AaTrblFileRegister(name, path, priority, 0, nullptr, nullptr, nullptr, nullptr);
    }
    static int32_t addWithSteps(const char* name, const char* path, uint32_t priority)
    {
        return AaTrblFileRegister(name, path, priority, 0, step<'p'>, step<'s'>, step<'r'>, context);
    }
    static TroubleFiles& files() { return PerNode<TroubleFiles>::get(); }
    /// Collects the files of the node; a file that is taken is a step, too.
    static void collect()
    {
        const TroubleCollection collection(files(), Clock::get().monotonic() + testkit::generousBound);
        for (const auto& [file, answer] : collection.files()) {
            if (answer == TroubleAnswer::Done) {
                steps.push_back("take " + file.path);
            }
        }
    }
};

TEST_F(AaTrblTest, RegisteredFilesAreListedByPriority)
{
    EXPECT_EQ(add("late", "/ram/late", 9), 0);
    EXPECT_EQ(addWithSteps("early", "/ram/early", 1), 0);
    EXPECT_EQ(add("late too", "/ram/late2", 9), 0);

    EXPECT_THAT(files().list(), ElementsAre(TroubleFile{"early", "/ram/early", 1, true, getpid()},
                                            TroubleFile{"late", "/ram/late", 9, false, getpid()},
                                            TroubleFile{"late too", "/ram/late2", 9, false, getpid()}));
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(AaTrblTest, FileOfAnotherProcessIsListedAlsoAfterItsEnd)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(add("dump", "/ram/dump", 2));
    }
    int status = -1;
    waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);

    EXPECT_THAT(files().list(), ElementsAre(TroubleFile{"dump", "/ram/dump", 2, false, child}));
    collect();
    EXPECT_THAT(steps, ElementsAre("take /ram/dump"));

    EXPECT_EQ(add("dump", "/ram/dump", 3), 0);
    EXPECT_THAT(files().list(), ElementsAre(TroubleFile{"dump", "/ram/dump", 3, false, getpid()}));
}

TEST_F(AaTrblTest, FileThatIsRegisteredAgainIsReplaced)
{
    EXPECT_EQ(add("dump", "/ram/dump", 5), 0);
    EXPECT_EQ(addWithSteps("dump", "/ram/dump", 7), 0);
    EXPECT_EQ(add("dump", "/ram/other", 6), 0);

    EXPECT_THAT(files().list(), ElementsAre(TroubleFile{"dump", "/ram/other", 6, false, getpid()},
                                            TroubleFile{"dump", "/ram/dump", 7, true, getpid()}));
    collect();
    EXPECT_THAT(steps, ElementsAre("p /ram/dump mine", "s /ram/dump mine", "take /ram/other", "take /ram/dump",
                                   "r /ram/dump mine"));
}

TEST_F(AaTrblTest, FilesAreCollectedStepByStepInTheirOrder)
{
    addWithSteps("second", "/ram/b", 2);
    addWithSteps("first", "/ram/a", 1);

    collect();

    EXPECT_THAT(steps, ElementsAre("p /ram/a mine", "s /ram/a mine", "p /ram/b mine", "s /ram/b mine", "take /ram/a",
                                   "take /ram/b", "r /ram/a mine", "r /ram/b mine"));
}

TEST_F(AaTrblTest, FileOfWhichAStepFailsIsNotTaken)
{
    addWithSteps("first", "/ram/a", 1);
    addWithSteps("second", "/ram/b", 2);

    failingStep = "p /ram/a";
    collect();
    EXPECT_THAT(steps, ElementsAre("p /ram/a mine", "p /ram/b mine", "s /ram/b mine", "take /ram/b", "r /ram/b mine"));

    steps.clear();
    failingStep = "s /ram/b";
    collect();
    EXPECT_THAT(steps, ElementsAre("p /ram/a mine", "s /ram/a mine", "p /ram/b mine", "s /ram/b mine", "take /ram/a",
                                   "r /ram/a mine"));
}

TEST_F(AaTrblTest, BadArgumentsAreRefused)
{
    const std::string longName(TroubleFiles::nameSize, 'n');
    const std::string longPath = "/" + std::string(TroubleFiles::pathSize - 1, 'p');

    EXPECT_EQ(add(nullptr, "/ram/a"), 1);
    EXPECT_EQ(add("", "/ram/a"), 1);
    EXPECT_EQ(add(longName.c_str(), "/ram/a"), 1);
    EXPECT_EQ(add("a", nullptr), 1);
    EXPECT_EQ(add("a", ""), 1);
    EXPECT_EQ(add("a", "ram/a"), 1);
    EXPECT_EQ(add("a", longPath.c_str()), 1);
    EXPECT_EQ(AaTrblFileRegister("a", "/ram/a", 1, 1, nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_THAT(files().list(), IsEmpty());

    EXPECT_EQ(add(longName.c_str() + 1, longPath.substr(0, longPath.size() - 1).c_str()), 0);
    EXPECT_EQ(files().list().front().name, longName.substr(1));
    EXPECT_EQ(files().list().front().path, longPath.substr(0, longPath.size() - 1));
}

TEST_F(AaTrblTest, FileBeyondTheListIsLoggedAndRefused)
{
    for (std::size_t number = 0; number < TroubleFiles::capacity; ++number) {
        ASSERT_EQ(add("a", ("/ram/" + std::to_string(number)).c_str()), 0);
    }

    EXPECT_EQ(add("a", "/ram/more"), 3);
    EXPECT_EQ(add("a", "/ram/0"), 0);

    EXPECT_EQ(files().list().size(), TroubleFiles::capacity);
    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x0 Troubleshooting file /ram/more is not registered: the node's "
                                           "list has no more than 128 places"));
}

TEST_F(AaTrblTest, ListThatCannotBeMadeIsLogged)
{
    {
        const testkit::FullDisk disk;
        EXPECT_EQ(add("a", "/ram/a"), 2);
    }

    EXPECT_THAT(m_log.texts(),
                ElementsAre("Error 0x0 Troubleshooting file /ram/a is not registered: store '" +
                            m_node.nodeDirectory() + "/trouble' cannot be created: No space left on device"));
    EXPECT_EQ(add("a", "/ram/a"), 0);
}

} // namespace
} // namespace dorn::host
