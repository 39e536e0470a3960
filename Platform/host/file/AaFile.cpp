// SPDX-License-Identifier: MIT
#include "AaFile.h"

#include "file/OpenFile.hpp"
#include "node/BoardRoot.hpp"
#include "port/FilePort.hpp"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <string>
#include <sys/stat.h>

/// What the seam calls a file.
struct AaFile final : dorn::host::OpenFile {
    using OpenFile::OpenFile;
};

namespace dorn::host {
namespace {

/// Where a path of the target lies; empty, with `errno` set, when it is none or there is no memory.
std::string placeOf(const char* path, LastLink lastLink = LastLink::Followed)
{
    errno = EINVAL;
    if (!path) {
        return {};
    }
    try {
        return boardPath(path, lastLink);
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return {};
    }
}

/// Sets `errno` from the result of a FilePort. @return whether it is an error.
template <class Result>
bool isError(Result result)
{
    if (result < 0) {
        errno = static_cast<int>(-result);
    }
    return result < 0;
}

/// A size or position as the seam gives it; -1 stays.
int32_t fitting(off_t value)
{
    if (value > INT32_MAX) {
        errno = EOVERFLOW;
        return -1;
    }
    return static_cast<int32_t>(value);
}

bool isDirectory(const std::string& place)
{
    struct stat status {};
    return stat(place.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// Opens without waiting for the other end of a named pipe; reading and writing then wait as usual.
int openWithoutWaiting(const char* place, int flags)
{
    const int descriptor = FilePort::get().open(AT_FDCWD, place, flags | O_NONBLOCK, 0666);
    if (descriptor >= 0) {
        fcntl(descriptor, F_SETFL, flags & O_APPEND);
    }
    return descriptor;
}

/// Makes a directory and those above it.
bool makeDirectories(const std::string& place)
{
    if (isDirectory(place)) {
        return true;
    }
    const std::size_t slash = place.find_last_of('/');
    if (slash != std::string::npos && slash != 0 && !makeDirectories(place.substr(0, slash))) {
        return false;
    }
    const int result = FilePort::get().makeDirectory(AT_FDCWD, place.c_str(), 0777);
    return (result < 0 && isDirectory(place)) || !isError(result); // another may have made it meanwhile
}

} // namespace
} // namespace dorn::host

using namespace dorn::host;

int32_t AaFileGetBoardPath(const char* path, char* buffer, uint32_t bufferSize)
{
    const std::string place = placeOf(path);
    if (place.empty() || !buffer || place.size() >= bufferSize) {
        return 1;
    }
    std::memcpy(buffer, place.c_str(), place.size() + 1);
    return 0;
}

AaFile* AaFileOpen(const char* path, const char* mode)
{
    const int flags = openFlags(mode);
    if (isError(flags)) {
        return nullptr;
    }
    const bool isLinkKept = (flags & (O_EXCL | O_NOFOLLOW)) != 0;
    const std::string place = placeOf(path, isLinkKept ? LastLink::Kept : LastLink::Followed);
    if (place.empty()) {
        return nullptr;
    }
    Descriptor descriptor(openWithoutWaiting(place.c_str(), flags));
    if (isError(descriptor.get())) {
        return nullptr;
    }
    auto* const file = new (std::nothrow) AaFile(std::move(descriptor));
    if (!file) {
        errno = ENOMEM;
    }
    return file;
}

int32_t AaFileClose(AaFile* file)
{
    if (!file) {
        return 0;
    }
    const int error = file->close();
    delete file;
    return isError(-error) ? 1 : 0;
}

int32_t AaFileRead(AaFile* file, void* buffer, uint32_t size)
{
    if (!file || (!buffer && size != 0) || size > INT32_MAX) {
        errno = EINVAL;
        return -1;
    }
    return static_cast<int32_t>(file->read(static_cast<char*>(buffer), size));
}

int32_t AaFileWrite(AaFile* file, const void* buffer, uint32_t size)
{
    if (!file || (!buffer && size != 0) || size > INT32_MAX) {
        errno = EINVAL;
        return -1;
    }
    return static_cast<int32_t>(file->write(static_cast<const char*>(buffer), size));
}

int32_t AaFileReadLine(AaFile* file, char* buffer, uint32_t bufferSize)
{
    if (!file || !buffer || bufferSize < 2 || bufferSize > INT32_MAX) {
        errno = EINVAL;
        return -1;
    }
    const ssize_t length = file->readLine(buffer, bufferSize - 1);
    buffer[length < 0 ? 0 : length] = '\0';
    return static_cast<int32_t>(length);
}

int32_t AaFileGetSize(AaFile* file)
{
    if (!file) {
        errno = EINVAL;
        return -1;
    }
    return fitting(file->size());
}

int32_t AaFileSetPosition(AaFile* file, int32_t offset, EAaFileOrigin origin)
{
    constexpr std::array<int, 3> whences{SEEK_SET, SEEK_CUR, SEEK_END};
    if (!file || static_cast<std::size_t>(origin) >= whences.size()) {
        errno = EINVAL;
        return 1;
    }
    return file->seek(offset, whences[origin]) < 0 ? 1 : 0;
}

int32_t AaFileGetPosition(AaFile* file)
{
    if (!file) {
        errno = EINVAL;
        return -1;
    }
    return fitting(file->position());
}

int32_t AaFileRemove(const char* path)
{
    const std::string place = placeOf(path, LastLink::Kept);
    return place.empty() || isError(FilePort::get().remove(AT_FDCWD, place.c_str())) ? 1 : 0;
}

TBoolean AaFileDirExists(const char* path)
{
    const std::string place = placeOf(path);
    return !place.empty() && isDirectory(place) ? 1 : 0;
}

int32_t AaFileCreateDir(const char* path)
{
    std::string place = placeOf(path);
    if (place.empty()) {
        return 1;
    }
    while (place.size() > 1 && place.back() == '/') {
        place.pop_back();
    }
    try {
        return makeDirectories(place) ? 0 : 1;
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return 1;
    }
}
