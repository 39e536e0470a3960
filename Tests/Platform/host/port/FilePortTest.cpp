// SPDX-License-Identifier: MIT
#include "port/FilePort.hpp"

#include "TestNode.hpp"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::host::test {
namespace {

class FilePortTest : public ::testing::Test {
protected:
    ~FilePortTest() override { close(m_directory); }

    int open(const char* name, int flags = O_RDWR | O_CREAT) { return m_files.open(m_directory, name, flags, 0600); }
    std::string path(const std::string& name) const { return m_node.boardRoot() + "/" + name; }
    struct stat status(const char* name) const
    {
        struct stat result {};
        EXPECT_EQ(fstatat(m_directory, name, &result, 0), 0);
        return result;
    }

    const testkit::TestNode m_node;
    FilePort& m_files = FilePort::get();
    const int m_directory = ::open(m_node.boardRoot().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
};

TEST_F(FilePortTest, FileIsMadeWrittenAndClosedToChildren)
{
    const int file = open("file");
    ASSERT_GE(file, 0);

    EXPECT_EQ(m_files.write(file, "abc", 3), 3);

    EXPECT_EQ(fcntl(file, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_EQ(status("file").st_size, 3);
    EXPECT_EQ(status("file").st_mode & 0777U, 0600U);
    close(file);
}

TEST_F(FilePortTest, ReserveGivesAFileItsSizeAndItsRoom)
{
    const int file = open("file");

    EXPECT_EQ(m_files.reserve(file, 100'000), 0);

    EXPECT_EQ(status("file").st_size, 100'000);
    EXPECT_GE(status("file").st_blocks * 512, 100'000);
    EXPECT_EQ(m_files.reserve(file, 10), 0);
    EXPECT_EQ(status("file").st_size, 100'000);
    close(file);
}

TEST_F(FilePortTest, TruncateSetsTheSize)
{
    const int file = open("file");
    m_files.write(file, "abc", 3);

    EXPECT_EQ(m_files.truncate(file, 1), 0);

    EXPECT_EQ(status("file").st_size, 1);
    EXPECT_EQ(m_files.sync(file), 0);
    close(file);
}

TEST_F(FilePortTest, RenameReplacesWhatIsThere)
{
    close(open("from"));
    close(open("to"));

    EXPECT_EQ(m_files.rename(m_directory, "from", m_directory, "to"), 0);

    EXPECT_FALSE(std::filesystem::exists(path("from")));
    EXPECT_TRUE(std::filesystem::exists(path("to")));
}

TEST_F(FilePortTest, RemoveRemovesAFile)
{
    close(open("file"));

    EXPECT_EQ(m_files.remove(m_directory, "file"), 0);

    EXPECT_FALSE(std::filesystem::exists(path("file")));
}

TEST_F(FilePortTest, DirectoryIsMadeWithItsMode)
{
    EXPECT_EQ(m_files.makeDirectory(m_directory, "folder", 0700), 0);

    EXPECT_EQ(status("folder").st_mode & 0777U, 0700U);
}

TEST_F(FilePortTest, FailuresAreNegativeErrorNumbers)
{
    const int readOnly = (close(open("file")), open("file", O_RDONLY));
    m_files.makeDirectory(m_directory, "folder", 0700);

    EXPECT_EQ(open("missing", O_RDONLY), -ENOENT);
    EXPECT_EQ(open("file", O_RDWR | O_CREAT | O_EXCL), -EEXIST);
    EXPECT_EQ(m_files.write(readOnly, "x", 1), -EBADF);
    EXPECT_EQ(m_files.reserve(readOnly, 10), -EBADF);
    EXPECT_EQ(m_files.truncate(readOnly, 10), -EINVAL);
    EXPECT_EQ(m_files.sync(-1), -EBADF);
    EXPECT_EQ(m_files.rename(m_directory, "missing", m_directory, "to"), -ENOENT);
    EXPECT_EQ(m_files.remove(m_directory, "missing"), -ENOENT);
    EXPECT_EQ(m_files.remove(m_directory, "folder"), -EISDIR);
    EXPECT_EQ(m_files.makeDirectory(m_directory, "folder", 0700), -EEXIST);
    close(readOnly);
}

TEST_F(FilePortTest, MissingDirectoryIsAnErrorOfEveryOperation)
{
    close(open("file"));

    EXPECT_EQ(open("missing/file"), -ENOENT);
    EXPECT_EQ(m_files.rename(m_directory, "file", m_directory, "missing/file"), -ENOENT);
    EXPECT_EQ(m_files.remove(m_directory, "missing/file"), -ENOENT);
    EXPECT_EQ(m_files.makeDirectory(m_directory, "missing/folder", 0700), -ENOENT);
    EXPECT_EQ(m_files.open(-1, "file", O_RDONLY, 0), -EBADF);
    EXPECT_TRUE(std::filesystem::exists(path("file")));
}

TEST_F(FilePortTest, AbsolutePathNeedsNoDirectory)
{
    const int file = m_files.open(-1, path("file").c_str(), O_RDWR | O_CREAT, 0600);

    EXPECT_GE(file, 0);

    EXPECT_TRUE(std::filesystem::exists(path("file")));
    close(file);
}

TEST_F(FilePortTest, FullDeviceIsAnErrorOfTheWrite)
{
    const int file = m_files.open(-1, "/dev/full", O_WRONLY, 0);

    EXPECT_EQ(m_files.write(file, "abc", 3), -ENOSPC);

    close(file);
}

/// Lets no file of this process grow beyond a size while it lives.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t size) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{size, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;

private:
    void (*m_handler)(int);
    rlimit m_before{};
};

TEST_F(FilePortTest, WriteTakesWhatFits)
{
    const int file = open("file");
    const SizeLimit limit(2);

    EXPECT_EQ(m_files.write(file, "abc", 3), 2);
    EXPECT_EQ(m_files.write(file, "c", 1), -EFBIG);

    EXPECT_EQ(status("file").st_size, 2);
    close(file);
}

TEST_F(FilePortTest, FileThatMayNotGrowIsNotExtended)
{
    const int file = open("file");
    const SizeLimit limit(2);

    EXPECT_EQ(m_files.reserve(file, 3), -EFBIG);
    EXPECT_EQ(m_files.truncate(file, 3), -EFBIG);

    EXPECT_EQ(status("file").st_size, 0);
    close(file);
}

TEST_F(FilePortTest, ReserveKeepsWhatIsInTheFile)
{
    const int file = open("file");
    m_files.write(file, "abc", 3);

    EXPECT_EQ(m_files.reserve(file, 10), 0);

    char content[10] = {};
    ASSERT_EQ(pread(file, content, sizeof content, 0), 10);
    EXPECT_EQ(std::string(content, sizeof content), std::string("abc") + std::string(7, '\0'));
    close(file);
}

TEST_F(FilePortTest, InnerScopeEndsWithTheOuterPortInUse)
{
    PosixFilePort outer;
    const FilePortScope scope(outer);
    {
        PosixFilePort inner;
        const FilePortScope innerScope(inner);
        EXPECT_EQ(&FilePort::get(), &inner);
    }
    EXPECT_EQ(&FilePort::get(), &outer);
}

TEST_F(FilePortTest, AnotherPortIsUsedWithinItsScope)
{
    PosixFilePort other;
    {
        const FilePortScope scope(other);
        EXPECT_EQ(&FilePort::get(), &other);
    }
    EXPECT_EQ(&FilePort::get(), &m_files);
}

} // namespace
} // namespace dorn::host::test
