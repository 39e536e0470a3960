// SPDX-License-Identifier: MIT
#include "node/RunDirectory.hpp"

#include "FailingFilePort.hpp"
#include "NodeTest.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace dorn::host;
using dorn::testkit::FailingFilePort;
using dorn::testkit::FileOperation;
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
    const std::string advice = "; set DORN_RUN_DIR to a directory of your own";
    EXPECT_EQ(refusal("/proc/dorn"), "run directory '/proc/dorn': cannot be made: No such file or directory" + advice);
    const FailingFilePort files(FileOperation::MakeDirectory, 1, EACCES);
    EXPECT_EQ(refusal(m_base + "/run"),
              "run directory '" + m_base + "/run': cannot be made: Permission denied" + advice);
}

TEST_F(RunDirectoryTest, DirectoryWithTooLongANameIsToldWithTheReason)
{
    const std::string path = m_base + "/" + std::string(300, 'n');
    EXPECT_EQ(refusal(path), "run directory '" + path +
                                 "': cannot be opened: File name too long; set DORN_RUN_DIR to a directory of your "
                                 "own");
}

TEST_F(RunDirectoryTest, DirectoriesOnTheWayNeedNotBeReadable)
{
    // As a user whom rights bind: root is made one.
    constexpr uid_t nobody = 65534;
    const uid_t user = geteuid() == 0 ? nobody : geteuid();
    const std::string way = m_base + "/way";
    std::filesystem::create_directories(way + "/run");
    for (const std::string& path : {way, way + "/run"}) {
        ASSERT_EQ(chown(path.c_str(), user, static_cast<gid_t>(-1)), 0);
    }
    chmod((way + "/run").c_str(), 0700);
    chmod(way.c_str(), 0300);
    for (const std::string& path : {std::filesystem::path(m_base).parent_path().string(), m_base}) {
        chmod(path.c_str(), 0711);
    }
    const pid_t child = fork();
    if (child == 0) {
        const bool isUser = seteuid(user) == 0;
        _exit(isUser && refusal(way + "/run").empty() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    chmod(way.c_str(), 0700);

    EXPECT_EQ(status, 0);
}

TEST_F(RunDirectoryTest, SocketFitsHoweverLongThePathIs)
{
    std::string path = m_base;
    while (path.size() < 1000) {
        path += "/" + std::string(100, 'n');
    }
    const RunDirectory directory(path, 0x0F01);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string name = directory.shortPath("socket");
    ASSERT_LT(name.size(), sizeof address.sun_path);
    std::copy(name.begin(), name.end(), address.sun_path);
    const int socket = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);

    EXPECT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);

    close(socket);
    EXPECT_TRUE(std::filesystem::is_socket(path + "/0f01/socket"));
}

TEST_F(RunDirectoryTest, SubdirectoryIsMadeOnce)
{
    const RunDirectory directory(m_base + "/run", 0x0F01);
    directory.makeSubdirectory("cpid");
    directory.makeSubdirectory("cpid");
    EXPECT_EQ(modeOf(m_base + "/run/0f01/cpid"), 0700U);
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
