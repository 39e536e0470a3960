// SPDX-License-Identifier: MIT
#include "FailingFilePort.hpp"

#include "TestNode.hpp"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string_view>
#include <unistd.h>

namespace dorn::testkit {
namespace {

using host::FilePort;

class FailingFilePortTest : public ::testing::Test {
protected:
    FailingFilePortTest() : m_directory(open(m_node.boardRoot().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}
    ~FailingFilePortTest() override
    {
        close(m_file);
        close(m_directory);
    }

    int openFile(const char* name)
    {
        m_file = FilePort::get().open(m_directory, name, O_RDWR | O_CREAT, 0600);
        return m_file;
    }

    static ssize_t write(int descriptor, std::string_view text)
    {
        return FilePort::get().write(descriptor, text.data(), text.size());
    }

    /// Calls one operation of the port in use. @return what it returned.
    ssize_t call(FileOperation operation)
    {
        FilePort& files = FilePort::get();
        switch (operation) {
        case FileOperation::Open:
            return files.open(m_directory, "opened", O_RDWR | O_CREAT, 0600);
        case FileOperation::Write:
            return write(m_file, "x");
        case FileOperation::Reserve:
            return files.reserve(m_file, 1);
        case FileOperation::Truncate:
            return files.truncate(m_file, 1);
        case FileOperation::Sync:
            return files.sync(m_file);
        case FileOperation::Rename:
            return files.rename(m_directory, "file", m_directory, "renamed");
        case FileOperation::Remove:
            return files.remove(m_directory, "file");
        case FileOperation::MakeDirectory:
            return files.makeDirectory(m_directory, "made", 0700);
        }
        return 0;
    }

    bool exists(const std::string& name) const { return std::filesystem::exists(m_node.boardRoot() + "/" + name); }

    TestNode m_node;
    int m_directory;
    int m_file = -1;
};

TEST_F(FailingFilePortTest, EveryOperationCanFail)
{
    openFile("file");
    for (std::size_t index = 0; index < fileOperationCount; ++index) {
        const auto operation = static_cast<FileOperation>(index);
        const FailingFilePort files(operation, 1, EIO);

        EXPECT_EQ(call(operation), -EIO) << index;
        EXPECT_TRUE(files.hasFailed()) << index;
        EXPECT_EQ(files.calls(operation), 1U) << index;
    }
}

TEST_F(FailingFilePortTest, FailingOperationIsNotCarriedOut)
{
    openFile("file");
    for (std::size_t index = 0; index < fileOperationCount; ++index) {
        const FailingFilePort files(static_cast<FileOperation>(index), 1, EIO);
        call(static_cast<FileOperation>(index));
    }

    EXPECT_EQ(m_node.readBoardFile("/file"), "");
    EXPECT_FALSE(exists("opened"));
    EXPECT_FALSE(exists("renamed"));
    EXPECT_FALSE(exists("made"));
}

TEST_F(FailingFilePortTest, OnlyTheNthCallOfTheOperationFails)
{
    const FailingFilePort files(FileOperation::Write, 2, ENOSPC);
    openFile("file");

    EXPECT_EQ(write(m_file, "first"), 5);
    EXPECT_FALSE(files.hasFailed());
    EXPECT_EQ(write(m_file, "second"), -ENOSPC);
    EXPECT_EQ(write(m_file, "third"), 5);

    EXPECT_EQ(m_node.readBoardFile("/file"), "firstthird");
    EXPECT_EQ(files.calls(FileOperation::Write), 3U);
    EXPECT_EQ(files.calls(FileOperation::Open), 1U);
}

TEST_F(FailingFilePortTest, NothingFailsAfterItsEnd)
{
    openFile("file");
    {
        const FailingFilePort files(FileOperation::Write, 1, EIO);
    }

    EXPECT_EQ(write(m_file, "x"), 1);
}

TEST_F(FailingFilePortTest, PortsAreStacked)
{
    openFile("file");
    const FullDisk disk(2);
    const FailingFilePort files(FileOperation::Write, 2, EIO);

    EXPECT_EQ(write(m_file, "ab"), 2);
    EXPECT_EQ(write(m_file, "c"), -EIO);
    EXPECT_EQ(write(m_file, "d"), -ENOSPC);
}

TEST_F(FailingFilePortTest, FullDiskTakesWhatFits)
{
    openFile("file");
    const FullDisk disk(7);

    EXPECT_EQ(write(m_file, "first"), 5);
    EXPECT_EQ(write(m_file, "second"), 2);
    EXPECT_EQ(disk.room(), 0U);
    EXPECT_EQ(write(m_file, "third"), -ENOSPC);

    EXPECT_EQ(m_node.readBoardFile("/file"), "firstse");
}

TEST_F(FailingFilePortTest, FullDiskTakesEmptyWrites)
{
    openFile("file");
    const FullDisk disk;

    EXPECT_EQ(write(m_file, ""), 0);
}

TEST_F(FailingFilePortTest, FullDiskReservesAllOrNothing)
{
    openFile("file");
    const FullDisk disk(100);

    EXPECT_EQ(FilePort::get().reserve(m_file, 101), -ENOSPC);
    EXPECT_EQ(disk.room(), 100U);
    EXPECT_EQ(FilePort::get().reserve(m_file, 60), 0);
    EXPECT_EQ(disk.room(), 40U);
    EXPECT_EQ(FilePort::get().reserve(m_file, 100), 0) << "60 of them are there already";
    EXPECT_EQ(FilePort::get().reserve(m_file, 50), 0) << "a smaller file is never in need";
}

TEST_F(FailingFilePortTest, ReserveOnNoFileIsAnErrorOfTheSystem)
{
    const FullDisk disk(100);

    EXPECT_EQ(FilePort::get().reserve(-1, 1), -EBADF);
}

} // namespace
} // namespace dorn::testkit
