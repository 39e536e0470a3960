// SPDX-License-Identifier: MIT
#include "state/StateFile.hpp"

#include "BoardTest.hpp"
#include "FailingFilePort.hpp"
#include "state/StateNote.hpp"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>

namespace dorn::board {
namespace {

class StateFileTest : public testkit::NodeTest {
protected:
    std::string place(const std::string& name) const { return m_node.boardPath("/var/lib/dorn/board/" + name); }

    const StateFile m_file{"thing"};
};

TEST_F(StateFileTest, MissingFileHoldsNothing)
{
    EXPECT_EQ(m_file.read(), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(m_node.boardPath("/var"))) << "looking makes nothing";
}

TEST_F(StateFileTest, ContentIsReplaced)
{
    m_file.replace("a long content");
    m_file.replace("short");

    EXPECT_EQ(m_file.read(), "short");
    EXPECT_EQ(m_file.path(), "/var/lib/dorn/board/thing");
    EXPECT_EQ(m_node.readBoardFile(m_file.path()), "short");
    EXPECT_FALSE(std::filesystem::exists(place("thing.new")));
}

TEST_F(StateFileTest, FailureLeavesTheOldContentAndNothingElse)
{
    using testkit::FileOperation;
    m_file.replace("old");
    for (const FileOperation operation :
         {FileOperation::Open, FileOperation::Write, FileOperation::Sync, FileOperation::Rename}) {
        const testkit::FailingFilePort files(operation, 1, EIO);

        EXPECT_EQ(
            failureOf([&] { m_file.replace("new"); }),
            std::tuple(DDAL_ERROR_IO, operation == FileOperation::Open
                                          ? "'/var/lib/dorn/board/thing.new' cannot be written: Input/output error"
                                          : "'/var/lib/dorn/board/thing' cannot be written: Input/output error"));

        EXPECT_EQ(m_file.read(), "old");
        EXPECT_FALSE(std::filesystem::exists(place("thing.new")));
    }
}

TEST_F(StateFileTest, WriteGoesOnWhereTheDiskStopped)
{
    testkit::FullDisk disk(3);
    EXPECT_EQ(
        failureOf([&] { m_file.replace("four"); }),
        std::tuple(DDAL_ERROR_NO_RESOURCE, "'/var/lib/dorn/board/thing' cannot be written: No space left on device"));
}

TEST_F(StateFileTest, BoardRootThatCannotBeWrittenIsReported)
{
    m_node.writeBoardFile("/var", "a file in the directory's place");

    EXPECT_EQ(failureOf([&] { m_file.replace("new"); }),
              std::tuple(DDAL_ERROR_IO, "'/var/lib/dorn/board/thing.new' cannot be written: Not a directory"));
    EXPECT_EQ(failureOf([&] { m_file.read(); }),
              std::tuple(DDAL_ERROR_IO, "'/var/lib/dorn/board/thing' cannot be read: Not a directory"));
}

TEST_F(StateFileTest, DirectoryThatCannotBeMadeIsReported)
{
    const testkit::FailingFilePort files(testkit::FileOperation::MakeDirectory, 1, EACCES);

    EXPECT_EQ(failureOf([&] { m_file.replace("new"); }),
              std::tuple(DDAL_ERROR_IO, "'/var/lib/dorn/board' cannot be made: Permission denied"));
}

TEST_F(StateFileTest, LockExcludesOthersUntilItEnds)
{
    {
        const StateLock lock("thing");
        EXPECT_EQ(StateLock::tryTake("thing"), std::nullopt);
        EXPECT_NE(StateLock::tryTake("other"), std::nullopt);
    }
    EXPECT_NE(StateLock::tryTake("thing"), std::nullopt);
}

TEST_F(StateFileTest, NoteIsReadAsItWasWritten)
{
    writeNote(m_file, {7, "a value with blanks"});

    const auto note = readNote(m_file);
    ASSERT_TRUE(note);
    EXPECT_EQ(note->resets, 7U);
    EXPECT_EQ(note->value, "a value with blanks");
    EXPECT_EQ(m_file.read(), "7\na value with blanks\n");
}

TEST_F(StateFileTest, EmptyValueIsAValue)
{
    writeNote(m_file, {0, ""});

    EXPECT_EQ(readNote(m_file).value_or(StateNote{1, "none"}).value, "");
}

} // namespace
} // namespace dorn::board
