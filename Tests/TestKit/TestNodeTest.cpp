// SPDX-License-Identifier: MIT
#include "TestNode.hpp"

#include "AaFile.h"
#include "node/BoardRoot.hpp"
#include "node/PerNode.hpp"
#include "node/RunDirectory.hpp"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <system_error>

namespace dorn::testkit {
namespace {

std::string variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "(not set)";
}

unsigned modeOf(const std::string& path)
{
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

/// Sets an environment variable for the life of a test.
class Variable {
public:
    Variable(const char* name, const char* value) : m_name(name) { setenv(name, value, 1); }
    ~Variable() { unsetenv(m_name); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* m_name;
};

TEST(TestNodeTest, EnvironmentPointsAtTheNode)
{
    const Variable board("DORN_BOARD", "/boards/other.dtb");
    const TestNode node;

    EXPECT_EQ(variable("DORN_RUN_DIR"), node.runDirectory());
    EXPECT_EQ(variable("DORN_ROOT"), node.boardRoot());
    EXPECT_EQ(variable("DORN_NID"), "(not set)");
    EXPECT_EQ(variable("DORN_BOARD"), "(not set)");
    EXPECT_EQ(variable("DORN_LOG"), "none");
}

TEST(TestNodeTest, OptionsChooseNodeIdAndLog)
{
    const TestNode node({.nodeId = 0x0A02, .log = "stderr", .logLevel = "debug"});

    EXPECT_EQ(host::nodeIdFromEnvironment(), 0x0A02);
    EXPECT_EQ(variable("DORN_LOG"), "stderr");
    EXPECT_EQ(variable("DORN_LOG_LEVEL"), "debug");
    EXPECT_EQ(node.nodeDirectory(), node.runDirectory() + "/0a02");
}

TEST(TestNodeTest, DirectoriesAreTheUsersOwn)
{
    const TestNode node;

    EXPECT_EQ(modeOf(node.runDirectory()), 0700U);
    EXPECT_EQ(modeOf(node.boardRoot()), 0700U);
}

TEST(TestNodeTest, PathsHaveNoSymbolicLinkAlthoughTmpdirIsOne)
{
    const TestNode outer;
    const std::string link = outer.boardRoot() + "/link";
    std::filesystem::create_directory(outer.boardRoot() + "/real");
    std::filesystem::create_directory_symlink(outer.boardRoot() + "/real", link);
    const char* const before = std::getenv("TMPDIR");
    const std::string tmpdir = before ? before : "";
    setenv("TMPDIR", link.c_str(), 1);

    const std::string runDirectory = TestNode().runDirectory();

    before ? setenv("TMPDIR", tmpdir.c_str(), 1) : unsetenv("TMPDIR");
    EXPECT_EQ(runDirectory.rfind(outer.boardRoot() + "/real/", 0), 0U) << runDirectory;
}

TEST(TestNodeTest, NodeDirectoryIsTheOneThePlatformUses)
{
    const TestNode node;

    EXPECT_EQ(host::PerNode<host::RunDirectory>::get().path(), node.nodeDirectory());
}

TEST(TestNodeTest, EndRestoresTheEnvironment)
{
    const Variable runDirectory("DORN_RUN_DIR", "/somewhere");
    const Variable nodeId("DORN_NID", "77");
    unsetenv("DORN_ROOT");
    {
        const TestNode node({.nodeId = 1});
    }

    EXPECT_EQ(variable("DORN_RUN_DIR"), "/somewhere");
    EXPECT_EQ(variable("DORN_NID"), "77");
    EXPECT_EQ(variable("DORN_ROOT"), "(not set)");
}

TEST(TestNodeTest, SignalsThatWereIgnoredAreHeardWhileTheNodeLives)
{
    const auto before = std::signal(SIGHUP, SIG_IGN);
    {
        const TestNode node;
        EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_DFL);
    }

    EXPECT_EQ(std::signal(SIGHUP, before), SIG_IGN);
}

TEST(TestNodeTest, EndRemovesTheDirectories)
{
    std::string parent;
    {
        const TestNode node;
        node.writeBoardFile("/ffs/run/boot/image", "x");
        host::PerNode<host::RunDirectory>::get();
        parent = std::filesystem::path(node.runDirectory()).parent_path();
    }

    EXPECT_FALSE(std::filesystem::exists(parent));
}

TEST(TestNodeTest, EndClosesWhatThePlatformHasOpened)
{
    {
        const TestNode node;
        host::PerNode<host::RunDirectory>::get();
    }

    EXPECT_EQ(host::PerNode<host::RunDirectory>::ifOpen(), nullptr);
}

TEST(TestNodeTest, BeginClosesWhatThePlatformHasOpenedElsewhere)
{
    const TestNode first;
    host::PerNode<host::RunDirectory>::get();

    const TestNode second;

    EXPECT_EQ(host::PerNode<host::RunDirectory>::get().path(), second.nodeDirectory());
}

TEST(TestNodeTest, BoardFileIsFoundByThePlatform)
{
    const TestNode node;

    node.writeBoardFile("/ram/post/results", "passed\n");

    EXPECT_EQ(host::boardPath("/ram/post/results"), node.boardPath("/ram/post/results"));
    EXPECT_EQ(node.readBoardFile("/ram/post/results"), "passed\n");
}

TEST(TestNodeTest, BoardFileIsReplacedWhole)
{
    const TestNode node;
    node.writeBoardFile("/ram/file", "a long content");

    node.writeBoardFile("/ram/file", std::string("\0b", 2));

    EXPECT_EQ(node.readBoardFile("/ram/file"), std::string("\0b", 2));
}

TEST(TestNodeTest, BoardPathDoesNotLeadAboveTheRoot)
{
    const TestNode node;

    EXPECT_EQ(node.boardPath("/../../etc/passwd"), node.boardRoot() + "/etc/passwd");
}

TEST(TestNodeTest, RelativePathOfTheTargetIsRefused)
{
    const TestNode node;

    EXPECT_THROW(node.writeBoardFile("ram/file", ""), std::system_error);
}

TEST(TestNodeTest, MissingBoardFileIsReported)
{
    const TestNode node;

    EXPECT_THROW(node.readBoardFile("/ram/missing"), std::system_error);
}

} // namespace
} // namespace dorn::testkit
