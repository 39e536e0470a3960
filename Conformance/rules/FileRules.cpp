// SPDX-License-Identifier: MIT
// Files and directories of the target.
#include "AaFile.h"
#include "Check.hpp"
#include "Folder.hpp"
#include "Rules.hpp"

#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::conformance {
namespace {

/// An open file, closed with this object.
class File {
public:
    File(const std::string& path, const char* mode) : m_file(AaFileOpen(path.c_str(), mode)) {}
    ~File() { AaFileClose(m_file); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    operator AaFile*() const { return m_file; }

private:
    AaFile* m_file;
};

void expectOpen(AaFile* file, const char* mode)
{
    expect(file != nullptr, std::string("AaFileOpen() in mode \"") + mode + "\" gave null");
}

void expectNotOpen(const std::string& path, const char* mode, int error)
{
    errno = 0;
    const File file(path, mode);
    const int told = errno;
    expect(file == nullptr, "AaFileOpen() of " + path + " in mode \"" + mode + "\" opened it");
    expectEqual(told, error, "errno after AaFileOpen() of " + path + " in mode \"" + mode + "\"");
}

void writtenIsRead()
{
    const Folder folder;
    std::string content(100'000, '\0');
    for (std::size_t index = 0; index < content.size(); ++index) {
        content[index] = static_cast<char>(index * 31);
    }
    writeFile(folder.path("file"), content);
    expect(readFile(folder.path("file")) == content, "what is read is not what was written");
}

void modesAreThoseOfFopen()
{
    const Folder folder;
    const std::string path = folder.path("file");
    expectNotOpen(path, "r", ENOENT);
    writeFile(path, "12345");
    for (const char* const mode : {"r", "rb", "r+"}) {
        const File file(path, mode);
        expectOpen(file, mode);
        expectEqual(AaFileGetSize(file), 5, std::string("the size of a file that was opened with \"") + mode + "\"");
    }
    {
        const File file(path, "a");
        expectOpen(file, "a");
        expectEqual(AaFileWrite(file, "67", 2), 2, "AaFileWrite() in mode \"a\"");
    }
    expect(readFile(path) == "1234567", "mode \"a\" did not write behind what was there");
    {
        const File file(path, "w+");
        expectOpen(file, "w+");
        expectEqual(AaFileGetSize(file), 0, "the size of a file that was opened with \"w+\"");
    }
}

void exclusiveModeWantsNothingThere()
{
    const Folder folder;
    writeFile(folder.path("there"), "1");
    expectNotOpen(folder.path("there"), "wx", EEXIST);
    expect(symlink("nowhere", folder.realPath("link").c_str()) == 0, "no link could be made");
    expectNotOpen(folder.path("link"), "wx", EEXIST);
    const File file(folder.path("new"), "wx");
    expectOpen(file, "wx");
    expect(readFile(folder.path("there")) == "1", "mode \"wx\" changed a file that was there");
}

void linkIsNotFollowed()
{
    const Folder folder;
    writeFile(folder.path("there"), "1");
    expect(symlink("there", folder.realPath("link").c_str()) == 0, "no link could be made");
    expectNotOpen(folder.path("link"), "wl", ELOOP);
    expect(readFile(folder.path("link")) == "1", "a link was not followed, or mode \"wl\" wrote through it");
}

void pipeIsNotWaitedFor()
{
    const Folder folder;
    expect(mkfifo(folder.realPath("pipe").c_str(), 0600) == 0, "no pipe could be made");
    char character = 0;
    const File reader(folder.path("pipe"), "r");
    expectOpen(reader, "r");
    expectEqual(AaFileRead(reader, &character, 1), 0, "AaFileRead() of a named pipe without writer");
    expect(unlink(folder.realPath("pipe").c_str()) == 0, "the pipe could not be removed");
    expect(mkfifo(folder.realPath("pipe").c_str(), 0600) == 0, "no pipe could be made");
    const File writer(folder.path("pipe"), "w");
    expect(!writer || AaFileWrite(writer, "1", 1) != 1, "a named pipe without reader was written");
}

void partIsReadAtTheEnd()
{
    const Folder folder;
    writeFile(folder.path("file"), "12345");
    const File file(folder.path("file"), "r");
    std::array<char, 8> buffer{};
    expectEqual(AaFileRead(file, buffer.data(), 3), 3, "AaFileRead() of 3 bytes of 5");
    expectEqual(AaFileRead(file, buffer.data(), 3), 2, "AaFileRead() of 3 bytes where 2 are left");
    expectEqual(AaFileRead(file, buffer.data(), 3), 0, "AaFileRead() at the end of the file");
}

void wrongDirectionFails()
{
    const Folder folder;
    writeFile(folder.path("file"), "1");
    char character = 0;
    {
        const File file(folder.path("file"), "a");
        expectEqual(AaFileRead(file, &character, 1), -1, "AaFileRead() of a file that is open for writing only");
    }
    const File file(folder.path("file"), "r");
    expect(AaFileWrite(file, "2", 1) != 1, "AaFileWrite() to a file that is open for reading only returned 1");
}

void expectLine(AaFile* file, uint32_t bufferSize, const std::string& line)
{
    std::array<char, 64> buffer{};
    buffer.fill('#');
    expectEqual(AaFileReadLine(file, buffer.data(), bufferSize), line.size(), "AaFileReadLine()");
    expectEqual(std::string(buffer.data()), line, "the line that AaFileReadLine() gave");
    expectEqual(int{buffer[bufferSize]}, int{'#'}, "the byte behind the buffer of AaFileReadLine()");
}

void linesAreRead()
{
    const Folder folder;
    writeFile(folder.path("file"), "one\n\n0123456789\nlast");
    const File file(folder.path("file"), "r");
    expectOpen(file, "r");
    expectLine(file, 32, "one\n");
    expectLine(file, 32, "\n");
    expectLine(file, 8, "0123456");
    expectLine(file, 8, "789\n");
    expectLine(file, 32, "last");
    std::array<char, 8> buffer{};
    expectEqual(AaFileReadLine(file, buffer.data(), buffer.size()), 0, "AaFileReadLine() at the end of the file");
}

void sizeLeavesThePosition()
{
    const Folder folder;
    writeFile(folder.path("file"), "12345");
    const File file(folder.path("file"), "r");
    std::array<char, 2> buffer{};
    AaFileRead(file, buffer.data(), 2);
    expectEqual(AaFileGetSize(file), 5, "AaFileGetSize()");
    expectEqual(AaFileGetPosition(file), 2, "the position after AaFileGetSize()");
}

void expectPosition(AaFile* file, int32_t offset, EAaFileOrigin origin, int32_t position)
{
    expectEqual(AaFileSetPosition(file, offset, origin), 0,
                "AaFileSetPosition(" + std::to_string(offset) + ", " + shown(origin) + ")");
    expectEqual(AaFileGetPosition(file), position, "AaFileGetPosition() after it");
}

void positionIsSet()
{
    const Folder folder;
    writeFile(folder.path("file"), "0123456789");
    const File file(folder.path("file"), "r+");
    expectPosition(file, 4, EAaFileOrigin_Begin, 4);
    expectPosition(file, 2, EAaFileOrigin_Current, 6);
    expectPosition(file, -1, EAaFileOrigin_End, 9);
    char character = 0;
    expectEqual(AaFileRead(file, &character, 1), 1, "AaFileRead()");
    expectEqual(character, '9', "the byte at position 9");
    expectPosition(file, 5, EAaFileOrigin_End, 15);
    expectPosition(file, 3, EAaFileOrigin_Begin, 3);
    expectEqual(AaFileWrite(file, "x", 1), 1, "AaFileWrite()");
    expectEqual(AaFileSetPosition(file, -1, EAaFileOrigin_Begin), 1, "AaFileSetPosition() before the first byte");
    expectEqual(AaFileGetPosition(file), 4, "the position after that");
}

void removedIsGone()
{
    const Folder folder;
    writeFile(folder.path("file"), "1");
    expectEqual(AaFileRemove(folder.path("file").c_str()), 0, "AaFileRemove()");
    expectNotOpen(folder.path("file"), "r", ENOENT);
    errno = 0;
    expectEqual(AaFileRemove(folder.path("file").c_str()), 1, "AaFileRemove() of a file that is not there");
    expectEqual(errno, ENOENT, "errno after it");
}

void directoriesAreMadeAndSeen()
{
    const Folder folder;
    const std::string deep = folder.path("one/two/three");
    expectEqual(AaFileDirExists(deep.c_str()), 0U, "AaFileDirExists() of a directory that is not there");
    expectEqual(AaFileCreateDir(deep.c_str()), 0, "AaFileCreateDir() with two directories above that are missing");
    expectEqual(AaFileDirExists(deep.c_str()), 1U, "AaFileDirExists() of a directory that was made");
    expectEqual(AaFileCreateDir(deep.c_str()), 0, "AaFileCreateDir() of a directory that exists");
    writeFile(folder.path("file"), "1");
    expectEqual(AaFileDirExists(folder.path("file").c_str()), 0U, "AaFileDirExists() of a file");
    expectEqual(AaFileCreateDir(folder.path("file/below").c_str()), 1, "AaFileCreateDir() below a file");
}

void closeOfNullIsPassedOver()
{
    expectEqual(AaFileClose(nullptr), 0, "AaFileClose(null)");
}

void boardPathIsWhereFilesLie()
{
    const Folder folder;
    writeFile(folder.path("file"), "1");
    expect(access(boardPath(folder.path("file")).c_str(), R_OK) == 0,
           "no file is where AaFileGetBoardPath() says that one lies");
    expectEqual(boardPath("/../../etc/../name"), boardPath("/name"), "the board path of /../../etc/../name");
    std::array<char, PATH_MAX> buffer{};
    expectEqual(AaFileGetBoardPath("relative", buffer.data(), buffer.size()), 1,
                "AaFileGetBoardPath() of a path that is not absolute");
    expectEqual(AaFileGetBoardPath(nullptr, buffer.data(), buffer.size()), 1, "AaFileGetBoardPath() of null");
    expectEqual(AaFileGetBoardPath("/name", nullptr, 10), 1, "AaFileGetBoardPath() into null");
    expectEqual(AaFileGetBoardPath("/name", buffer.data(), 3), 1, "AaFileGetBoardPath() into a buffer too small");
}

constexpr std::array rules{
    Rule{"file.written-is-read", "AaFile.h", "AaFileOpen AaFileWrite AaFileRead AaFileClose",
         "What AaFileWrite() wrote is what AaFileRead() reads", writtenIsRead},
    Rule{"file.modes-are-those-of-fopen", "AaFile.h", "AaFileOpen AaFileGetSize AaFileWrite",
         "AaFileOpen() takes the modes of fopen; null and errno tell of a file that cannot be opened",
         modesAreThoseOfFopen},
    Rule{"file.exclusive-mode-wants-nothing-there", "AaFile.h", "AaFileOpen",
         "Mode \"wx\" makes a file, and fails with EEXIST when there is one or a link of its name",
         exclusiveModeWantsNothingThere},
    Rule{"file.link-is-not-followed", "AaFile.h", "AaFileOpen",
         "Mode \"l\" fails with ELOOP at a symbolic link; without it links are followed", linkIsNotFollowed},
    Rule{"file.pipe-is-not-waited-for", "AaFile.h", "AaFileOpen AaFileRead AaFileWrite",
         "Nobody is waited for at the other end of a named pipe: without writer it is empty, without reader it cannot "
         "be written",
         pipeIsNotWaitedFor},
    Rule{"file.part-is-read-at-the-end", "AaFile.h", "AaFileRead",
         "AaFileRead() gives fewer bytes than asked for only at the end of the file, and 0 there", partIsReadAtTheEnd},
    Rule{"file.wrong-direction-fails", "AaFile.h", "AaFileRead AaFileWrite",
         "Reading a file that is open for writing gives -1; writing one that is open for reading fails too",
         wrongDirectionFails},
    Rule{"file.lines-are-read", "AaFile.h", "AaFileReadLine",
         "AaFileReadLine() reads up to and including the line feed, at most what fits with the terminating zero, and "
         "gives 0 at the end",
         linesAreRead},
    Rule{"file.size-leaves-the-position", "AaFile.h", "AaFileGetSize AaFileGetPosition",
         "AaFileGetSize() tells the size and leaves the position", sizeLeavesThePosition},
    Rule{"file.position-is-set", "AaFile.h", "AaFileSetPosition AaFileGetPosition",
         "AaFileSetPosition() counts from begin, position or end; one before the first byte is refused and leaves the "
         "position, one behind the end is allowed",
         positionIsSet},
    Rule{"file.removed-is-gone", "AaFile.h", "AaFileRemove",
         "AaFileRemove() removes a file; for one that is not there it returns 1 and sets errno", removedIsGone},
    Rule{"file.directories-are-made-and-seen", "AaFile.h", "AaFileCreateDir AaFileDirExists",
         "AaFileCreateDir() makes a directory with those above it, and is content with one that exists; "
         "AaFileDirExists() tells directories alone",
         directoriesAreMadeAndSeen},
    Rule{"file.close-of-null-is-passed-over", "AaFile.h", "AaFileClose", "AaFileClose() passes null over",
         closeOfNullIsPassedOver},
    Rule{"file.board-path-is-where-files-lie", "AaFile.h", "AaFileGetBoardPath",
         "AaFileGetBoardPath() tells where a path of the target lies; \"..\" does not lead above the board root; wrong "
         "arguments give 1",
         boardPathIsWhereFilesLie},
};

} // namespace

Rules fileRules()
{
    return rules;
}

} // namespace dorn::conformance
