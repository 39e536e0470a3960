// SPDX-License-Identifier: MIT
#include "ShellCmdOutReader.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <dirent.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vel::hwapi::common {
namespace {

class ShellCmdOutReaderTest : public testing::Test {
protected:
    ShellCmdOutReader m_reader;
    std::string m_output;
};

/// Lets the process open no further descriptor while it lives.
class NoMoreDescriptors {
public:
    NoMoreDescriptors()
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit none = m_before;
        const int lowestFree = dup(STDIN_FILENO);
        close(lowestFree);
        none.rlim_cur = static_cast<rlim_t>(lowestFree);
        setrlimit(RLIMIT_NOFILE, &none);
    }
    NoMoreDescriptors(const NoMoreDescriptors&) = delete;
    NoMoreDescriptors& operator=(const NoMoreDescriptors&) = delete;
    ~NoMoreDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }

private:
    rlimit m_before{};
};

std::size_t openDescriptors()
{
    std::size_t count = 0;
    DIR* const directory = opendir("/proc/self/fd");
    while (readdir(directory)) {
        ++count;
    }
    closedir(directory);
    return count;
}

TEST_F(ShellCmdOutReaderTest, OutputOfACommandIsRead)
{
    EXPECT_EQ(m_reader.RunAndReadOutput("echo one; echo two", m_output), 0);
    EXPECT_EQ(m_output, "one\ntwo\n");
}

TEST_F(ShellCmdOutReaderTest, OutputIsAppended)
{
    m_output = "before ";

    EXPECT_EQ(m_reader.RunAndReadOutput("echo after", m_output), 0);
    EXPECT_EQ(m_output, "before after\n");
}

TEST_F(ShellCmdOutReaderTest, CommandThatPrintsNothingLeavesTheOutput)
{
    m_output = "before";

    EXPECT_EQ(m_reader.RunAndReadOutput("true", m_output), 0);
    EXPECT_EQ(m_output, "before");
}

TEST_F(ShellCmdOutReaderTest, CommandThatFailsIsNoFailureOfTheReader)
{
    EXPECT_EQ(m_reader.RunAndReadOutput("echo said; exit 3", m_output), 0);
    EXPECT_EQ(m_output, "said\n");
}

TEST_F(ShellCmdOutReaderTest, CommandThatTheShellDoesNotKnowIsNoFailureOfTheReader)
{
    EXPECT_EQ(m_reader.RunAndReadOutput("/no/such/command 2>/dev/null", m_output), 0);
    EXPECT_EQ(m_output, "");
}

TEST_F(ShellCmdOutReaderTest, ErrorOutputIsNotRead)
{
    EXPECT_EQ(m_reader.RunAndReadOutput("{ echo error >&2; echo output; } 2>/dev/null", m_output), 0);
    EXPECT_EQ(m_output, "output\n");
}

TEST_F(ShellCmdOutReaderTest, LineWithoutEndIsRead)
{
    EXPECT_EQ(m_reader.RunAndReadOutput("printf abc", m_output), 0);
    EXPECT_EQ(m_output, "abc");
}

TEST_F(ShellCmdOutReaderTest, LinesAroundTheSizeOfAPieceAreReadWhole)
{
    for (const std::size_t length : {254U, 255U, 256U, 510U, 511U, 10000U}) {
        m_output.clear();
        const std::string line(length, 'x');
        EXPECT_EQ(m_reader.RunAndReadOutput("printf %s " + line + "; echo; echo next", m_output), 0);
        EXPECT_EQ(m_output, line + "\nnext\n") << length;
    }
}

TEST_F(ShellCmdOutReaderTest, WithoutAShellTheOutputIsUntouchedAndOneReturned)
{
    m_output = "before";
    {
        const NoMoreDescriptors limit;
        EXPECT_EQ(m_reader.RunAndReadOutput("echo after", m_output), 1);
    }
    EXPECT_EQ(m_output, "before");
}

TEST_F(ShellCmdOutReaderTest, EndOfTheCommandIsTakenNoteOf)
{
    m_reader.RunAndReadOutput("echo one", m_output);

    errno = 0;
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1); // there is no child, not even an ended one
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(ShellCmdOutReaderTest, NoDescriptorIsLeftOpen)
{
    const std::size_t before = openDescriptors();
    m_reader.RunAndReadOutput("echo one", m_output);
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
} // namespace vel::hwapi::common
