// SPDX-License-Identifier: MIT
#include "log/RotatingFile.hpp"

#include "FailingFilePort.hpp"
#include "LogFixture.hpp"
#include "TestNode.hpp"
#include "node/RunDirectory.hpp"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace dorn::host {
namespace {

using testkit::FailingFilePort;
using testkit::FileOperation;

class RotatingFileTest : public ::testing::Test {
protected:
    std::string path() const { return m_node.boardRoot() + "/a.log"; }
    std::string content(const std::string& suffix = "") const { return m_node.readBoardFile("/a.log" + suffix); }
    bool exists(const std::string& suffix) const { return std::filesystem::exists(path() + suffix); }

    testkit::TestNode m_node;
};

TEST_F(RotatingFileTest, LineIsInTheFileAtOnce)
{
    RotatingFile file(path());
    file.write("one\n");
    EXPECT_EQ(content(), "one\n");
    file.write("two\n");
    EXPECT_EQ(content(), "one\ntwo\n");
}

TEST_F(RotatingFileTest, LineIsOneWrite)
{
    RotatingFile file(path());
    const FailingFilePort files(FileOperation::Write, 1'000, EIO);
    file.write("one\n");
    EXPECT_EQ(files.calls(FileOperation::Write), 1U);
}

TEST_F(RotatingFileTest, FileThatExistsIsContinued)
{
    m_node.writeBoardFile("/a.log", "before\n");
    RotatingFile(path()).write("after\n");
    EXPECT_EQ(content(), "before\nafter\n");
}

TEST_F(RotatingFileTest, FullFileIsRenamedAndTheNextLineBeginsANewOne)
{
    RotatingFile file(path(), {10, 2});
    file.write("1234\n");
    file.write("567\n");
    EXPECT_FALSE(exists(".1"));
    file.write("8\n");
    EXPECT_EQ(content(".1"), "1234\n567\n8\n");
    EXPECT_EQ(content(), "");
    file.write("9\n");
    EXPECT_EQ(content(), "9\n");
}

TEST_F(RotatingFileTest, OnlySoManyOlderFilesAreKept)
{
    RotatingFile file(path(), {2, 2});
    for (const char* const line : {"1\n", "2\n", "3\n", "4\n"}) {
        file.write(line);
    }
    EXPECT_EQ(content(".1"), "4\n");
    EXPECT_EQ(content(".2"), "3\n");
    EXPECT_FALSE(exists(".3"));
}

TEST_F(RotatingFileTest, NoOlderFileMayBeKept)
{
    RotatingFile file(path(), {2, 0});
    file.write("1\n");
    EXPECT_EQ(content(), "");
    EXPECT_FALSE(exists(".1"));
}

TEST_F(RotatingFileTest, SecondWriterFollowsARotation)
{
    RotatingFile one(path(), {10, 2});
    RotatingFile other(path(), {10, 2});
    one.write("one 1\n");
    one.write("one 2\n"); // full
    other.write("other 1\n");
    other.write("other 2\n");
    one.write("one 3\n");
    EXPECT_EQ(content(".2"), "one 1\none 2\nother 1\n"); // noticed with the line that went there
    EXPECT_EQ(content(".1"), "other 2\none 3\n");
    EXPECT_FALSE(exists(".3"));
}

TEST_F(RotatingFileTest, LinesOfSeveralWritersStayWhole)
{
    constexpr int linesOfEach = 2'000;
    const auto write = [this](const std::string& line) {
        RotatingFile file(path(), {1'000'000, 1});
        for (int number = 0; number < linesOfEach; ++number) {
            file.write(line);
        }
    };

    std::thread other(write, std::string(200, 'b') + "\n");
    write(std::string(300, 'a') + "\n");
    other.join();

    std::istringstream lines(content() + (exists(".1") ? content(".1") : ""));
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        EXPECT_TRUE(line == std::string(300, 'a') || line == std::string(200, 'b')) << line;
    }
    EXPECT_EQ(count, 2 * linesOfEach);
}

TEST_F(RotatingFileTest, FileThatCannotBeOpenedIsRefused)
{
    try {
        RotatingFile(m_node.boardRoot() + "/missing/a.log");
        FAIL();
    } catch (const EnvironmentError& error) {
        EXPECT_EQ(error.what(),
                  "log file '" + m_node.boardRoot() + "/missing/a.log' cannot be opened: No such file or directory");
    }
}

TEST_F(RotatingFileTest, FullDiskIsReportedOnceAndItsEndToo)
{
    RotatingFile file(path());
    ErrorOutput output;
    {
        const testkit::FullDisk disk;
        file.write("lost 1\n");
        file.write("lost 2\n");
    }

    const std::string complaint =
        "dorn: log '" + path() + "' cannot be written: No space left on device; its lines are dropped until it can\n";

    file.write("kept\n");
    file.write("kept\n");

    EXPECT_EQ(output.take(), complaint + "dorn: log '" + path() + "' is written again; lines dropped: 2\n");
    EXPECT_EQ(content(), "kept\nkept\n");
}

TEST_F(RotatingFileTest, LineWrittenInPartIsEnded)
{
    RotatingFile file(path());
    ErrorOutput output;
    {
        const testkit::FullDisk disk(3);
        file.write("12345\n");
        file.write("lost\n");
    }
    file.write("kept\n");
    EXPECT_EQ(content(), "123\nkept\n");
}

TEST_F(RotatingFileTest, InterruptedWriteGoesOn)
{
    RotatingFile file(path());
    const FailingFilePort files(FileOperation::Write, 1, EINTR);
    file.write("one\n");
    EXPECT_EQ(content(), "one\n");
}

TEST_F(RotatingFileTest, FileThatCannotBeRenamedGrowsOn)
{
    RotatingFile file(path(), {2, 1});
    const FailingFilePort files(FileOperation::Rename, 1, EACCES);
    file.write("1\n");
    EXPECT_EQ(content(), "1\n");
    file.write("2\n");
    EXPECT_EQ(content(".1"), "1\n2\n");
}

TEST_F(RotatingFileTest, NewFileThatCannotBeOpenedLeavesTheOldOne)
{
    RotatingFile file(path(), {2, 1});
    {
        const FailingFilePort files(FileOperation::Open, 1, EMFILE);
        file.write("1\n");
    }
    file.write("2\n");
    EXPECT_EQ(content(".1"), "1\n2\n");
    file.write("3\n");
    EXPECT_EQ(content(".1"), "3\n");
}

} // namespace
} // namespace dorn::host
