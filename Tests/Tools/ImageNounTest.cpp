// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Image.hpp"
#include "ManualClock.hpp"
#include "Program.hpp"
#include "TestNode.hpp"
#include "binary.h"
#include "port/Clock.hpp"

#include <CLI/CLI.hpp>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <span>
#include <sstream>

namespace dorn::tool {
namespace {

using test::payloadOf;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

/// A clock on which each look takes a second, and at whose second look somebody may ask the process to end.
class HurryingClock final : public host::Clock {
public:
    explicit HurryingClock(bool isEndAskedFor = false) : m_isEndAskedFor(isEndAskedFor) {}

    host::Nanoseconds monotonic() const override
    {
        ++m_looks;
        if (m_isEndAskedFor && m_looks == 2) {
            std::raise(SIGTERM);
        }
        return std::chrono::seconds(m_looks);
    }
    host::Nanoseconds wall() const override { return m_real.wall(); }
    void waitWhile(std::atomic<std::uint32_t>& word, std::uint32_t expected, host::Deadline, bool isShared) override
    {
        m_real.waitWhile(word, expected, host::noDeadline, isShared);
    }
    int waitDescriptors(std::span<pollfd> entries, host::Deadline) override
    {
        return m_real.waitDescriptors(entries, host::noDeadline);
    }

private:
    host::Clock& m_real{host::Clock::get()};
    bool m_isEndAskedFor;
    mutable std::atomic<int> m_looks{0};
    host::ClockScope m_scope{*this};
};

/// Runs verbs in this process on files of a directory of their own.
class ImageNounTest : public ::testing::Test {
protected:
    ImageNounTest()
    {
        addImageNoun(m_program);
        m_node.writeBoardFile("/payload", payloadOf(200'000));
    }

    Outcome run(const std::vector<std::string>& arguments, bool isWatched = false)
    {
        Console console(m_answer, m_remarks, false, isWatched);
        std::vector<std::string> all{"image"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return m_program.run(all, console);
    }

    Outcome create(bool isWatched = false)
    {
        return run({"create", path("payload"), path("image"), "--sw-version", "7", "--hwswid", "3A01"}, isWatched);
    }

    std::string path(const std::string& name) const { return m_node.boardRoot() + "/" + name; }

    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_node.boardRoot())) {
            names.push_back(entry.path().filename());
        }
        return names;
    }

    testkit::TestNode m_node;
    Program m_program;
    std::ostringstream m_answer;
    std::ostringstream m_remarks;
};

TEST_F(ImageNounTest, ProgressIsShownWhereSomebodyLooks)
{
    const HurryingClock clock;

    EXPECT_EQ(create(true), Outcome::Fine);
    EXPECT_THAT(m_remarks.str(), HasSubstr("writing '" + path("image") + "'  [#########---"));
    EXPECT_TRUE(m_remarks.str().ends_with("\r\033[K"));

    m_remarks.str("");
    EXPECT_EQ(run({"verify", path("image")}, true), Outcome::Fine);
    EXPECT_THAT(m_remarks.str(), HasSubstr("checking '" + path("image") + "'  ["));

    m_remarks.str("");
    EXPECT_EQ(run({"extract", path("image"), path("copy")}, true), Outcome::Fine);
    EXPECT_THAT(m_remarks.str(), HasSubstr("writing '" + path("copy") + "'  ["));
}

TEST_F(ImageNounTest, ProgressIsNotShownElsewhere)
{
    const HurryingClock clock;

    EXPECT_EQ(create(), Outcome::Fine);
    EXPECT_EQ(run({"verify", path("image")}), Outcome::Fine);
    EXPECT_EQ(run({"extract", path("image"), path("copy")}), Outcome::Fine);
    EXPECT_EQ(m_remarks.str(), "");
}

TEST_F(ImageNounTest, CreateThatIsInterruptedLeavesNothing)
{
    const HurryingClock clock(true);

    EXPECT_EQ(create(), Outcome::No);
    EXPECT_EQ(m_remarks.str(), "dorn: interrupted\n");
    EXPECT_THAT(files(), UnorderedElementsAre("payload"));
}

TEST_F(ImageNounTest, ExtractThatIsInterruptedLeavesNothing)
{
    ASSERT_EQ(create(), Outcome::Fine);
    const HurryingClock clock(true);

    EXPECT_EQ(run({"extract", path("image"), path("copy")}), Outcome::No);
    EXPECT_EQ(m_remarks.str(), "dorn: interrupted\n");
    EXPECT_THAT(files(), UnorderedElementsAre("payload", "image"));
}

TEST_F(ImageNounTest, TimeOfTheBuildIsNow)
{
    const testkit::ManualClock clock(std::chrono::seconds(1'763'716'681));

    EXPECT_EQ(create(), Outcome::Fine);
    EXPECT_THAT(m_answer.str(), HasSubstr("build time:   2025-11-21T09:18:01Z\n"));
}

TEST_F(ImageNounTest, TimeOfTheBuildCanBeRepeated)
{
    setenv("SOURCE_DATE_EPOCH", "86400", 1);
    EXPECT_EQ(create(), Outcome::Fine);
    EXPECT_THAT(m_answer.str(), HasSubstr("build time:   1970-01-02T00:00:00Z\n"));

    setenv("SOURCE_DATE_EPOCH", "yesterday", 1);
    EXPECT_EQ(create(), Outcome::WrongUse);
    EXPECT_THAT(m_remarks.str(), HasSubstr("dorn: SOURCE_DATE_EPOCH: 'yesterday' is not a number"));

    setenv("SOURCE_DATE_EPOCH", "", 1);
    EXPECT_EQ(create(), Outcome::Fine);
    unsetenv("SOURCE_DATE_EPOCH");
}

} // namespace
} // namespace dorn::tool
