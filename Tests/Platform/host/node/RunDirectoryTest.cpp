// SPDX-License-Identifier: MIT
#include "node/RunDirectory.hpp"

#include "NodeTest.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

using namespace dorn::host;
using dorn::testkit::TestNode;

namespace {

class RunDirectoryTest : public ::testing::Test {
protected:
    /// Why @p path is refused; empty when it is not.
    static std::string refusal(const std::string& path)
    {
        try {
            const RunDirectory directory(path, 0x0F01);
            return {};
        } catch (const EnvironmentError& error) {
            return error.what();
        }
    }
    static unsigned modeOf(const std::string& path)
    {
        struct stat status {};
        return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
    }

    TestNode m_node;
    std::string m_base = m_node.boardRoot();
};

/// Sets an environment variable for a scope; the TestNode puts it back as it was.
void set(const char* name, const std::optional<std::string>& value)
{
    value ? setenv(name, value->c_str(), 1) : unsetenv(name);
}

} // namespace

TEST_F(RunDirectoryTest, IsMadeWithTheNodesFolderForTheOwnerOnly)
{
    const RunDirectory directory(m_base + "/a/b", 0x00AB);
    EXPECT_EQ(directory.path(), m_base + "/a/b/00ab");
    EXPECT_EQ(directory.nodeId(), 0x00AB);
    EXPECT_EQ(modeOf(m_base + "/a/b"), 0700U);
    EXPECT_EQ(modeOf(m_base + "/a/b/00ab"), 0700U);
}

TEST_F(RunDirectoryTest, DirectoryOpenToOthersIsRefused)
{
    std::filesystem::create_directory(m_base + "/open");
    chmod((m_base + "/open").c_str(), 0750);
    EXPECT_EQ(refusal(m_base + "/open"),
              "run directory '" + m_base + "/open': is open to other users; its mode must be 0700");
}

TEST_F(RunDirectoryTest, DirectoryOfAnotherOwnerIsRefused)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a directory away";
    }
    std::filesystem::create_directory(m_base + "/theirs");
    chmod((m_base + "/theirs").c_str(), 0700);
    ASSERT_EQ(chown((m_base + "/theirs").c_str(), 12345, 12345), 0);
    EXPECT_EQ(refusal(m_base + "/theirs"), "run directory '" + m_base +
                                               "/theirs': belongs to user 12345, not to user 0; set DORN_RUN_DIR to a "
                                               "directory of your own");
}

TEST_F(RunDirectoryTest, SymbolicLinkIsNotFollowedAnywhereOnTheWay)
{
    std::filesystem::create_directories(m_base + "/real/run");
    std::filesystem::create_directory_symlink(m_base + "/real", m_base + "/link");
    const std::string reason = "is reached through a symbolic link or is no directory; name the real directory";
    EXPECT_EQ(refusal(m_base + "/link"), "run directory '" + m_base + "/link': " + reason);
    EXPECT_EQ(refusal(m_base + "/link/run"), "run directory '" + m_base + "/link': " + reason);
}

TEST_F(RunDirectoryTest, LinkInPlaceOfTheNodesFolderIsRefused)
{
    std::filesystem::create_directories(m_base + "/run");
    chmod((m_base + "/run").c_str(), 0700);
    std::filesystem::create_directory_symlink(m_base, m_base + "/run/0f01");
    EXPECT_NE(refusal(m_base + "/run").find("symbolic link"), std::string::npos);
}

TEST_F(RunDirectoryTest, FileInTheWayIsRefused)
{
    std::ofstream(m_base + "/file") << "x";
    EXPECT_NE(refusal(m_base + "/file").find("is no directory"), std::string::npos);
}

TEST_F(RunDirectoryTest, RelativePathAndStepsUpAreRefused)
{
    EXPECT_EQ(refusal("somewhere"), "run directory 'somewhere': must be an absolute path");
    EXPECT_EQ(refusal(""), "run directory '': must be an absolute path");
    EXPECT_EQ(refusal(m_base + "/../x"), "run directory '" + m_base + "/../x': must not contain '..'");
}

TEST_F(RunDirectoryTest, DirectoryThatCannotBeMadeIsToldWithTheReason)
{
    EXPECT_EQ(refusal("/proc/dorn"), "run directory '/proc/dorn': cannot be made: No such file or directory");
}

TEST_F(RunDirectoryTest, EnvironmentNamesItInThisOrder)
{
    set("DORN_RUN_DIR", "/one");
    set("XDG_RUNTIME_DIR", "/two");
    EXPECT_EQ(runPathFromEnvironment(), "/one");
    set("DORN_RUN_DIR", std::nullopt);
    EXPECT_EQ(runPathFromEnvironment(), "/two/dorn");
    set("XDG_RUNTIME_DIR", std::nullopt);
    EXPECT_EQ(runPathFromEnvironment(), "/run/dorn");
}

TEST_F(RunDirectoryTest, NodeIdIsDecimalOrHexadecimal)
{
    set("DORN_NID", std::nullopt);
    EXPECT_EQ(nodeIdFromEnvironment(), 0x0F01);
    set("DORN_NID", "0x1234");
    EXPECT_EQ(nodeIdFromEnvironment(), 0x1234);
    set("DORN_NID", "65535");
    EXPECT_EQ(nodeIdFromEnvironment(), 0xFFFF);
    set("DORN_NID", "0");
    EXPECT_EQ(nodeIdFromEnvironment(), 0);
}

TEST_F(RunDirectoryTest, WrongNodeIdIsToldWithWhatItMayBe)
{
    for (const char* text : {"65536", "-1", "0x", "12x", " 1", "node", "99999999999999999999"}) {
        set("DORN_NID", text);
        try {
            nodeIdFromEnvironment();
            ADD_FAILURE() << text;
        } catch (const EnvironmentError& error) {
            EXPECT_EQ(error.what(),
                      std::string("DORN_NID '") + text + "' is not a node id (0 to 65535, or 0x0000 to 0xFFFF)");
        }
    }
}
