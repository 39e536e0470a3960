// SPDX-License-Identifier: MIT
#include "AaFile.h"

#include "FailingFilePort.hpp"
#include "TestNode.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <thread>

namespace {

using dorn::testkit::FailingFilePort;
using dorn::testkit::FileOperation;
using dorn::testkit::FullDisk;

struct Closer {
    void operator()(AaFile* file) const { AaFileClose(file); }
};
using OwnedFile = std::unique_ptr<AaFile, Closer>;

class AaFileTest : public ::testing::Test {
protected:
    static OwnedFile open(const char* path, const char* mode) { return OwnedFile(AaFileOpen(path, mode)); }

    static int32_t write(const OwnedFile& file, const std::string& text)
    {
        return AaFileWrite(file.get(), text.data(), static_cast<uint32_t>(text.size()));
    }

    static std::string read(const OwnedFile& file, uint32_t size)
    {
        std::string text(size, '\0');
        const int32_t count = AaFileRead(file.get(), text.data(), size);
        return count < 0 ? "failed" : text.substr(0, static_cast<std::size_t>(count));
    }

    static std::string readLine(const OwnedFile& file, uint32_t bufferSize)
    {
        std::string text(bufferSize, '#');
        const int32_t count = AaFileReadLine(file.get(), text.data(), bufferSize);
        if (count < 0) {
            return "failed";
        }
        EXPECT_EQ(text[static_cast<std::size_t>(count)], '\0');
        return text.substr(0, static_cast<std::size_t>(count));
    }

    void makePipe() const { ASSERT_EQ(mkfifo((m_node.boardRoot() + "/fifo").c_str(), 0600), 0); }

    dorn::testkit::TestNode m_node;
};

TEST_F(AaFileTest, BoardPathLiesBelowTheBoardRoot)
{
    std::array<char, 256> path{};
    EXPECT_EQ(AaFileGetBoardPath("/ram/log.txt", path.data(), path.size()), 0);
    EXPECT_EQ(path.data(), m_node.boardRoot() + "/ram/log.txt");
}

TEST_F(AaFileTest, BoardPathDoesNotLeaveTheBoardRoot)
{
    std::array<char, 256> path{};
    EXPECT_EQ(AaFileGetBoardPath("/ram/../../../etc/passwd", path.data(), path.size()), 0);
    EXPECT_EQ(path.data(), m_node.boardRoot() + "/etc/passwd");
}

TEST_F(AaFileTest, BoardPathThatFitsExactlyIsGiven)
{
    const std::string expected = m_node.boardRoot() + "/a";
    std::string path(expected.size() + 1, '#');
    EXPECT_EQ(AaFileGetBoardPath("/a", path.data(), static_cast<uint32_t>(path.size())), 0);
    EXPECT_EQ(path.c_str(), expected);
    EXPECT_EQ(AaFileGetBoardPath("/a", path.data(), static_cast<uint32_t>(path.size() - 1)), 1);
}

TEST_F(AaFileTest, BoardPathWantsAbsolutePathAndBuffer)
{
    std::array<char, 256> path{};
    EXPECT_EQ(AaFileGetBoardPath("ram", path.data(), path.size()), 1);
    EXPECT_EQ(AaFileGetBoardPath(nullptr, path.data(), path.size()), 1);
    EXPECT_EQ(AaFileGetBoardPath("/ram", nullptr, 256), 1);
}

TEST_F(AaFileTest, FileIsCreatedBelowTheBoardRoot)
{
    {
        const OwnedFile file = open("/new.txt", "w");
        ASSERT_TRUE(file);
        EXPECT_EQ(write(file, "one\n"), 4);
    }
    EXPECT_EQ(m_node.readBoardFile("/new.txt"), "one\n");
}

TEST_F(AaFileTest, AbsoluteLinkIsFollowedBelowTheBoardRoot)
{
    const dorn::testkit::TestNode host; // stands for the rest of this machine; its board root is in use from here on
    const std::string outside = m_node.boardRoot() + "/outside";
    std::ofstream(outside) << "untouched";
    std::filesystem::create_symlink(outside, host.boardRoot() + "/link");
    std::filesystem::create_directories(host.boardPath(m_node.boardRoot()));

    EXPECT_EQ(AaFileOpen("/link", "r"), nullptr);
    ASSERT_EQ(write(open("/link", "w"), "text"), 4);
    EXPECT_EQ(host.readBoardFile(outside), "text");

    std::filesystem::create_symlink(m_node.boardRoot(), host.boardRoot() + "/directory");
    EXPECT_EQ(AaFileCreateDir("/directory/new"), 0);
    EXPECT_TRUE(AaFileDirExists("/directory/new"));
    EXPECT_FALSE(std::filesystem::exists(m_node.boardRoot() + "/new"));
    EXPECT_EQ(AaFileRemove("/directory/outside"), 0);

    std::string left;
    std::ifstream(outside) >> left;
    EXPECT_EQ(left, "untouched");
}

TEST_F(AaFileTest, RemovingALinkLeavesWhatItNames)
{
    m_node.writeBoardFile("/file", "text");
    std::filesystem::create_symlink("/file", m_node.boardRoot() + "/link");
    EXPECT_EQ(AaFileRemove("/link"), 0);
    EXPECT_EQ(m_node.readBoardFile("/file"), "text");
    EXPECT_FALSE(std::filesystem::is_symlink(m_node.boardRoot() + "/link"));
}

TEST_F(AaFileTest, CircleOfLinksIsToldByErrno)
{
    std::filesystem::create_symlink("/link", m_node.boardRoot() + "/link");
    errno = 0;
    EXPECT_EQ(AaFileOpen("/link", "w"), nullptr);
    EXPECT_EQ(errno, ELOOP);
}

TEST_F(AaFileTest, OpeningForReadingWantsTheFile)
{
    errno = 0;
    EXPECT_EQ(AaFileOpen("/missing", "r"), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(AaFileOpen("/missing", "r+"), nullptr);
}

TEST_F(AaFileTest, OpeningForWritingEmptiesTheFile)
{
    m_node.writeBoardFile("/a", "long content");
    open("/a", "w");
    EXPECT_EQ(m_node.readBoardFile("/a"), "");
    m_node.writeBoardFile("/a", "long content");
    open("/a", "wb+");
    EXPECT_EQ(m_node.readBoardFile("/a"), "");
}

TEST_F(AaFileTest, OpeningForWritingANewFileWantsNone)
{
    write(open("/a", "wx"), "one");
    EXPECT_EQ(AaFileOpen("/a", "wx"), nullptr);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(AaFileOpen("/a", "w+bx"), nullptr);
    EXPECT_EQ(m_node.readBoardFile("/a"), "one");
}

TEST_F(AaFileTest, NewFileIsNotWrittenThroughALink)
{
    m_node.writeBoardFile("/file", "untouched");
    std::filesystem::create_symlink("/file", m_node.boardRoot() + "/link");
    std::filesystem::create_symlink("/missing", m_node.boardRoot() + "/dangling");
    for (const char* const link : {"/link", "/dangling"}) {
        EXPECT_EQ(AaFileOpen(link, "wx"), nullptr) << link;
        EXPECT_EQ(errno, EEXIST);
    }
    EXPECT_EQ(m_node.readBoardFile("/file"), "untouched");
    EXPECT_FALSE(std::filesystem::exists(m_node.boardRoot() + "/missing"));
}

TEST_F(AaFileTest, FileIsWrittenAndALinkIsNotWhereTheModeSaysSo)
{
    m_node.writeBoardFile("/file", "untouched");
    std::filesystem::create_symlink("/file", m_node.boardRoot() + "/link");
    std::filesystem::create_symlink("/missing", m_node.boardRoot() + "/dangling");
    std::filesystem::create_symlink("/", m_node.boardRoot() + "/directory");
    for (const char* const link : {"/link", "/dangling"}) {
        errno = 0;
        EXPECT_EQ(AaFileOpen(link, "wl"), nullptr) << link;
        EXPECT_EQ(errno, ELOOP) << link;
    }
    EXPECT_EQ(m_node.readBoardFile("/file"), "untouched");
    EXPECT_FALSE(std::filesystem::exists(m_node.boardRoot() + "/missing"));

    write(open("/directory/file", "wl"), "one"); // only the last name counts
    EXPECT_EQ(m_node.readBoardFile("/file"), "one");
    write(open("/new", "w+bl"), "two");
    EXPECT_EQ(m_node.readBoardFile("/new"), "two");
}

TEST_F(AaFileTest, OpeningForAppendingKeepsTheFile)
{
    m_node.writeBoardFile("/a", "one ");
    write(open("/a", "a"), "two ");
    write(open("/a", "a+b"), "three");
    EXPECT_EQ(m_node.readBoardFile("/a"), "one two three");
}

TEST_F(AaFileTest, OpeningForUpdateKeepsTheFile)
{
    m_node.writeBoardFile("/a", "content");
    write(open("/a", "r+"), "C");
    EXPECT_EQ(m_node.readBoardFile("/a"), "Content");
}

TEST_F(AaFileTest, WrongModeIsRefused)
{
    for (const char* const mode : {"", "x", "rw", "r+b+", "rx", "ax", "w+bx+", "+r", "rl", "al", "wll"}) {
        errno = 0;
        EXPECT_EQ(AaFileOpen("/a", mode), nullptr) << mode;
        EXPECT_EQ(errno, EINVAL) << mode;
    }
    EXPECT_EQ(AaFileOpen("/a", nullptr), nullptr);
    EXPECT_EQ(AaFileOpen(nullptr, "r"), nullptr);
    EXPECT_EQ(AaFileOpen("relative", "w"), nullptr);
    EXPECT_FALSE(std::filesystem::exists(m_node.boardRoot() + "/a"));
}

TEST_F(AaFileTest, ReadGivesFewerBytesOnlyAtTheEnd)
{
    m_node.writeBoardFile("/a", "0123456789");
    const OwnedFile file = open("/a", "r");
    EXPECT_EQ(read(file, 4), "0123");
    EXPECT_EQ(read(file, 0), "");
    EXPECT_EQ(read(file, 100), "456789");
    EXPECT_EQ(read(file, 100), "");
}

TEST_F(AaFileTest, LargeFileIsReadInPiecesOfAnySize)
{
    std::string content;
    for (int number = 0; content.size() < 100'000; ++number) {
        content += std::to_string(number) + ";";
    }
    m_node.writeBoardFile("/a", content);
    for (const uint32_t size : {1U, 1'000U, 4'095U, 4'096U, 4'097U, 5'000U, 70'000U}) {
        const OwnedFile file = open("/a", "r");
        const std::string first = read(file, size);
        EXPECT_EQ(AaFileGetPosition(file.get()), static_cast<int32_t>(size));
        EXPECT_EQ(first + read(file, size) + read(file, 1'000'000), content) << size;
    }
}

TEST_F(AaFileTest, ReadingFromAFileOpenForWritingFails)
{
    EXPECT_EQ(read(open("/a", "w"), 1), "failed");
    EXPECT_EQ(readLine(open("/a", "w"), 10), "failed");
}

TEST_F(AaFileTest, WritingToAFileOpenForReadingFails)
{
    m_node.writeBoardFile("/a", "content");
    EXPECT_EQ(write(open("/a", "r"), "x"), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST_F(AaFileTest, WriteGoesOnWhereTheReaderIs)
{
    m_node.writeBoardFile("/a", "one\ntwo\n");
    const OwnedFile file = open("/a", "r+");
    EXPECT_EQ(readLine(file, 100), "one\n");
    EXPECT_EQ(write(file, "TWO"), 3);
    EXPECT_EQ(readLine(file, 100), "\n");
    EXPECT_EQ(m_node.readBoardFile("/a"), "one\nTWO\n");
}

TEST_F(AaFileTest, FullDiskIsSeenByTheWriteThatDoesNotFit)
{
    const OwnedFile file = open("/a", "w");
    const FullDisk disk(6);
    EXPECT_EQ(write(file, "1234"), 4);
    EXPECT_EQ(write(file, "5678"), 2);
    EXPECT_EQ(write(file, "9"), -1);
    EXPECT_EQ(errno, ENOSPC);
}

TEST_F(AaFileTest, InterruptedWriteGoesOn)
{
    const OwnedFile file = open("/a", "w");
    const FailingFilePort files(FileOperation::Write, 1, EINTR);
    EXPECT_EQ(write(file, "1234"), 4);
    EXPECT_EQ(m_node.readBoardFile("/a"), "1234");
}

TEST_F(AaFileTest, LinesAreReadOneByOne)
{
    m_node.writeBoardFile("/a", "one\n\nthree");
    const OwnedFile file = open("/a", "r");
    EXPECT_EQ(readLine(file, 100), "one\n");
    EXPECT_EQ(readLine(file, 100), "\n");
    EXPECT_EQ(readLine(file, 100), "three");
    EXPECT_EQ(readLine(file, 100), "");
}

TEST_F(AaFileTest, LineLongerThanTheBufferComesInPieces)
{
    m_node.writeBoardFile("/a", "123456789\nabc\n");
    const OwnedFile file = open("/a", "r");
    EXPECT_EQ(readLine(file, 5), "1234");
    EXPECT_EQ(readLine(file, 5), "5678");
    EXPECT_EQ(readLine(file, 5), "9\n");
    EXPECT_EQ(readLine(file, 5), "abc\n");
}

TEST_F(AaFileTest, LinesLongerThanWhatIsReadAtOnceAreWhole)
{
    const std::string line = std::string(5'000, 'x') + "\n";
    m_node.writeBoardFile("/a", line + line);
    const OwnedFile file = open("/a", "r");
    EXPECT_EQ(readLine(file, 6'000), line);
    EXPECT_EQ(readLine(file, 6'000), line);
}

TEST_F(AaFileTest, NulInALineDoesNotEndIt)
{
    m_node.writeBoardFile("/a", std::string("a\0b\n", 4));
    EXPECT_EQ(readLine(open("/a", "r"), 100), std::string("a\0b\n", 4));
}

TEST_F(AaFileTest, ReadLineWantsRoomForACharacter)
{
    m_node.writeBoardFile("/a", "one\n");
    const OwnedFile file = open("/a", "r");
    char byte = '#';
    EXPECT_EQ(AaFileReadLine(file.get(), &byte, 1), -1);
    EXPECT_EQ(AaFileReadLine(file.get(), &byte, 0), -1);
    EXPECT_EQ(AaFileReadLine(file.get(), nullptr, 10), -1);
    EXPECT_EQ(readLine(file, 100), "one\n");
}

TEST_F(AaFileTest, SizeLeavesThePosition)
{
    m_node.writeBoardFile("/a", "one\ntwo\n");
    const OwnedFile file = open("/a", "r");
    EXPECT_EQ(readLine(file, 100), "one\n");
    EXPECT_EQ(AaFileGetSize(file.get()), 8);
    EXPECT_EQ(readLine(file, 100), "two\n");
}

TEST_F(AaFileTest, SizeThatDoesNotFitIsMinusOne)
{
    m_node.writeBoardFile("/a", "");
    std::filesystem::resize_file(m_node.boardRoot() + "/a", 0x7FFFFFFF);
    EXPECT_EQ(AaFileGetSize(open("/a", "r").get()), 0x7FFFFFFF);
    std::filesystem::resize_file(m_node.boardRoot() + "/a", 0x80000000);
    EXPECT_EQ(AaFileGetSize(open("/a", "r").get()), -1);
    EXPECT_EQ(errno, EOVERFLOW);
}

TEST_F(AaFileTest, SizeOfAPipeIsMinusOne)
{
    makePipe();
    EXPECT_EQ(AaFileGetSize(open("/fifo", "r+").get()), -1);
}

TEST_F(AaFileTest, PositionCountsFromBeginPositionAndEnd)
{
    m_node.writeBoardFile("/a", "0123456789");
    const OwnedFile file = open("/a", "r");
    EXPECT_EQ(AaFileSetPosition(file.get(), 3, EAaFileOrigin_Begin), 0);
    EXPECT_EQ(AaFileGetPosition(file.get()), 3);
    EXPECT_EQ(read(file, 2), "34");
    EXPECT_EQ(AaFileGetPosition(file.get()), 5);
    EXPECT_EQ(AaFileSetPosition(file.get(), -2, EAaFileOrigin_Current), 0);
    EXPECT_EQ(read(file, 3), "345");
    EXPECT_EQ(AaFileSetPosition(file.get(), -4, EAaFileOrigin_End), 0);
    EXPECT_EQ(AaFileGetPosition(file.get()), 6);
    EXPECT_EQ(read(file, 10), "6789");
}

TEST_F(AaFileTest, PositionBeforeTheFirstByteIsRefused)
{
    m_node.writeBoardFile("/a", "012");
    const OwnedFile file = open("/a", "r");
    EXPECT_EQ(read(file, 1), "0");
    EXPECT_EQ(AaFileSetPosition(file.get(), -4, EAaFileOrigin_End), 1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(AaFileSetPosition(file.get(), -2, EAaFileOrigin_Current), 1);
    EXPECT_EQ(AaFileSetPosition(file.get(), -1, EAaFileOrigin_Begin), 1);
    EXPECT_EQ(AaFileSetPosition(file.get(), 0, static_cast<EAaFileOrigin>(3)), 1);
    EXPECT_EQ(read(file, 10), "12");
}

TEST_F(AaFileTest, PositionBehindTheEndIsEmpty)
{
    m_node.writeBoardFile("/a", "012");
    const OwnedFile file = open("/a", "r");
    EXPECT_EQ(AaFileSetPosition(file.get(), 5, EAaFileOrigin_End), 0);
    EXPECT_EQ(AaFileGetPosition(file.get()), 8);
    EXPECT_EQ(read(file, 10), "");
}

TEST_F(AaFileTest, WriteGoesWhereThePositionIs)
{
    m_node.writeBoardFile("/a", "0123456789");
    const OwnedFile file = open("/a", "r+");
    EXPECT_EQ(read(file, 8), "01234567");
    EXPECT_EQ(AaFileSetPosition(file.get(), 2, EAaFileOrigin_Begin), 0);
    EXPECT_EQ(write(file, "AB"), 2);
    EXPECT_EQ(AaFileGetPosition(file.get()), 4);
    EXPECT_EQ(read(file, 2), "45");
    EXPECT_EQ(m_node.readBoardFile("/a"), "01AB456789");
}

TEST_F(AaFileTest, PositionThatDoesNotFitIsMinusOne)
{
    m_node.writeBoardFile("/a", "");
    std::filesystem::resize_file(m_node.boardRoot() + "/a", 0x80000000);
    const OwnedFile file = open("/a", "r");
    EXPECT_EQ(AaFileSetPosition(file.get(), -1, EAaFileOrigin_End), 0);
    EXPECT_EQ(AaFileGetPosition(file.get()), 0x7FFFFFFF);
    EXPECT_EQ(AaFileSetPosition(file.get(), 0, EAaFileOrigin_End), 0);
    EXPECT_EQ(AaFileGetPosition(file.get()), -1);
    EXPECT_EQ(errno, EOVERFLOW);
}

TEST_F(AaFileTest, PipeHasNoPosition)
{
    makePipe();
    const OwnedFile file = open("/fifo", "r+");
    EXPECT_EQ(AaFileSetPosition(file.get(), 0, EAaFileOrigin_Begin), 1);
    EXPECT_EQ(AaFileGetPosition(file.get()), -1);
}

TEST_F(AaFileTest, OpeningAPipeWaitsForNobody)
{
    makePipe();
    EXPECT_EQ(read(open("/fifo", "r"), 10), "");
    EXPECT_EQ(AaFileOpen("/fifo", "w"), nullptr);
    EXPECT_EQ(errno, ENXIO);
}

TEST_F(AaFileTest, ReadingFromAPipeWaitsForItsWriter)
{
    makePipe();
    const OwnedFile reader = open("/fifo", "r");
    const OwnedFile writer = open("/fifo", "w");
    std::string text;
    std::thread other([&] { text = read(reader, 4); });
    EXPECT_EQ(write(writer, "te"), 2);
    EXPECT_EQ(write(writer, "xt"), 2);
    other.join();
    EXPECT_EQ(text, "text");
}

TEST_F(AaFileTest, NullFileIsNoCrash)
{
    char byte = 0;
    EXPECT_EQ(AaFileClose(nullptr), 0);
    EXPECT_EQ(AaFileRead(nullptr, &byte, 1), -1);
    EXPECT_EQ(AaFileWrite(nullptr, &byte, 1), -1);
    EXPECT_EQ(AaFileReadLine(nullptr, &byte, 1), -1);
    EXPECT_EQ(AaFileGetSize(nullptr), -1);
    EXPECT_EQ(AaFileSetPosition(nullptr, 0, EAaFileOrigin_Begin), 1);
    EXPECT_EQ(AaFileGetPosition(nullptr), -1);
}

TEST_F(AaFileTest, NullBufferIsRefused)
{
    m_node.writeBoardFile("/a", "content");
    const OwnedFile file = open("/a", "r+");
    EXPECT_EQ(AaFileRead(file.get(), nullptr, 1), -1);
    EXPECT_EQ(AaFileWrite(file.get(), nullptr, 1), -1);
    EXPECT_EQ(AaFileRead(file.get(), nullptr, 0), 0);
    EXPECT_EQ(AaFileWrite(file.get(), nullptr, 0), 0);
}

TEST_F(AaFileTest, CloseOfAWrittenFileIsFine)
{
    AaFile* const file = AaFileOpen("/a", "w");
    AaFileWrite(file, "x", 1);
    EXPECT_EQ(AaFileClose(file), 0);
}

TEST_F(AaFileTest, RemovedFileIsGone)
{
    m_node.writeBoardFile("/a", "content");
    EXPECT_EQ(AaFileRemove("/a"), 0);
    EXPECT_FALSE(std::filesystem::exists(m_node.boardRoot() + "/a"));
}

TEST_F(AaFileTest, RemovingWhatIsNoFileFails)
{
    EXPECT_EQ(AaFileRemove("/a"), 1);
    EXPECT_EQ(errno, ENOENT);
    std::filesystem::create_directory(m_node.boardRoot() + "/dir");
    EXPECT_EQ(AaFileRemove("/dir"), 1);
    EXPECT_EQ(AaFileRemove(nullptr), 1);
    EXPECT_EQ(AaFileRemove("relative"), 1);
}

TEST_F(AaFileTest, OnlyADirectoryExistsAsOne)
{
    m_node.writeBoardFile("/dir/file", "");
    EXPECT_EQ(AaFileDirExists("/dir"), 1U);
    EXPECT_EQ(AaFileDirExists("/dir/"), 1U);
    EXPECT_EQ(AaFileDirExists("/"), 1U);
    EXPECT_EQ(AaFileDirExists("/dir/file"), 0U);
    EXPECT_EQ(AaFileDirExists("/other"), 0U);
    EXPECT_EQ(AaFileDirExists(nullptr), 0U);
    EXPECT_EQ(AaFileDirExists("dir"), 0U);
}

TEST_F(AaFileTest, DirectoryIsCreatedWithThoseAboveIt)
{
    EXPECT_EQ(AaFileCreateDir("/store/hwapi/deep"), 0);
    EXPECT_TRUE(std::filesystem::is_directory(m_node.boardRoot() + "/store/hwapi/deep"));
    EXPECT_EQ(AaFileCreateDir("/store/hwapi/deep"), 0);
    EXPECT_EQ(AaFileCreateDir("/store/other/"), 0);
    EXPECT_TRUE(std::filesystem::is_directory(m_node.boardRoot() + "/store/other"));
}

TEST_F(AaFileTest, DirectoryInPlaceOfAFileFails)
{
    m_node.writeBoardFile("/file", "");
    EXPECT_EQ(AaFileCreateDir("/file"), 1);
    EXPECT_EQ(AaFileCreateDir("/file/below"), 1);
    EXPECT_EQ(AaFileCreateDir(nullptr), 1);
    EXPECT_EQ(AaFileCreateDir("relative"), 1);
}

TEST_F(AaFileTest, DirectoryThatCannotBeCreatedTellsWhy)
{
    const FailingFilePort files(FileOperation::MakeDirectory, 2, EROFS);
    EXPECT_EQ(AaFileCreateDir("/one/two/three"), 1);
    EXPECT_EQ(errno, EROFS);
}

TEST_F(AaFileTest, OpeningGoesThroughTheFilePort)
{
    const FailingFilePort files(FileOperation::Open, 1, EMFILE);
    EXPECT_EQ(AaFileOpen("/a", "w"), nullptr);
    EXPECT_EQ(errno, EMFILE);
}

TEST_F(AaFileTest, ThreadsShareAFile)
{
    constexpr int linesOfEach = 500;
    {
        const OwnedFile file = open("/a", "w");
        const auto writeLines = [&file](const std::string& line) {
            for (int count = 0; count < linesOfEach; ++count) {
                write(file, line);
            }
        };
        std::thread other(writeLines, "from the other thread\n");
        writeLines("from this thread\n");
        other.join();
    }

    const OwnedFile file = open("/a", "r");
    int lines = 0;
    for (std::string line = readLine(file, 100); !line.empty(); line = readLine(file, 100)) {
        EXPECT_TRUE(line == "from this thread\n" || line == "from the other thread\n") << line;
        ++lines;
    }

    EXPECT_EQ(lines, 2 * linesOfEach);
}

} // namespace
