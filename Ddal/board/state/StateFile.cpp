// SPDX-License-Identifier: MIT
#include "state/StateFile.hpp"

#include "AaFile.h"
#include "AaSysLog.h"
#include "node/BoardRoot.hpp"
#include "port/FilePort.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <sys/file.h>
#include <vector>

namespace dorn::board {
namespace {

using host::Descriptor;
using host::FilePort;

constexpr const char* stateDirectory = "/var/lib/dorn/board";
constexpr mode_t fileMode = 0666; // less what the user's mask takes away, as for every file of the board

std::string placeOf(const std::string& targetPath)
{
    return host::boardPath(targetPath);
}

void makeStateDirectory()
{
    if (AaFileCreateDir(stateDirectory) != 0) {
        throw BoardFailure(DDAL_ERROR_IO,
                           std::string("'") + stateDirectory + "' cannot be made: " + std::strerror(errno));
    }
}

/// Opens a file that is made when it is missing, with the directory that it is in.
Descriptor openMaking(const StateFile& file, int flags)
{
    const std::string place = placeOf(file.path());
    int result = FilePort::get().open(AT_FDCWD, place.c_str(), flags | O_CREAT, fileMode);
    if (result == -ENOENT) {
        makeStateDirectory();
        result = FilePort::get().open(AT_FDCWD, place.c_str(), flags | O_CREAT, fileMode);
    }
    if (result < 0) {
        file.fail("cannot be written", -result);
    }
    return Descriptor(result);
}

/// A file that takes the place of another once it is whole.
class Replacement {
public:
    explicit Replacement(const StateFile& file)
        : m_file(file), m_beside(file.name() + ".new"), m_descriptor(openMaking(m_beside, O_WRONLY | O_TRUNC))
    {
    }
    ~Replacement()
    {
        if (!m_isInPlace) {
            FilePort::get().remove(AT_FDCWD, placeOf(m_beside.path()).c_str());
        }
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    void write(const void* data, std::size_t size) { m_file.write(m_descriptor.get(), data, size); }

    void putInPlace()
    {
        FilePort& files = FilePort::get();
        int result = files.sync(m_descriptor.get());
        if (result == 0) {
            result = files.rename(AT_FDCWD, placeOf(m_beside.path()).c_str(), AT_FDCWD, placeOf(m_file.path()).c_str());
        }
        if (result < 0) {
            m_file.fail("cannot be written", -result);
        }
        m_isInPlace = true;
    }

private:
    const StateFile& m_file;
    StateFile m_beside;
    Descriptor m_descriptor;
    bool m_isInPlace = false;
};

int lockWith(int descriptor, int operation)
{
    int result = 0;
    while ((result = flock(descriptor, operation)) != 0 && errno == EINTR) {
    }
    return result == 0 ? 0 : errno;
}

} // namespace

std::string StateFile::path() const
{
    return std::string(stateDirectory) + "/" + m_name;
}

Descriptor StateFile::open() const
{
    Descriptor descriptor(::open(placeOf(path()).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor && errno != ENOENT) {
        fail("cannot be read", errno);
    }
    return descriptor;
}

Descriptor StateFile::openOrMake() const
{
    return openMaking(*this, O_RDWR);
}

std::optional<std::string> StateFile::read() const
{
    const Descriptor descriptor = open();
    if (!descriptor) {
        return std::nullopt;
    }
    std::array<char, 4096> content; // NOLINT: filled before it is read
    const ssize_t count = ::read(descriptor.get(), content.data(), content.size());
    if (count < 0) {
        fail("cannot be read", errno);
    }
    return std::string(content.data(), static_cast<std::size_t>(count));
}

void StateFile::write(int descriptor, const void* data, std::size_t size) const
{
    const auto* from = static_cast<const char*>(data);
    while (size != 0) {
        const ssize_t count = FilePort::get().write(descriptor, from, size);
        if (count < 0 && count != -EINTR) {
            fail("cannot be written", static_cast<int>(-count));
        }
        const std::size_t written = count < 0 ? 0 : static_cast<std::size_t>(count);
        from += written;
        size -= written;
    }
}

void StateFile::replace(const std::string& content) const
{
    Replacement replacement(*this);
    replacement.write(content.data(), content.size());
    replacement.putInPlace();
}

void StateFile::replaceByCopy(int source, std::uint64_t size) const
{
    Replacement replacement(*this);
    std::vector<char> part(std::size_t{64} << 10);
    while (size != 0) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(part.size(), size));
        const ssize_t count = ::read(source, part.data(), wanted);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            throw BoardFailure(DDAL_ERROR_BAD_FILE, std::string("the image cannot be read: ") +
                                                        (count < 0 ? std::strerror(errno) : "it got shorter"));
        }
        replacement.write(part.data(), static_cast<std::size_t>(count));
        size -= static_cast<std::uint64_t>(count);
    }
    replacement.putInPlace();
}

void StateFile::remove() const noexcept
try {
    FilePort::get().remove(AT_FDCWD, placeOf(path()).c_str());
} catch (const std::exception&) { // no memory for its name: it stays
}

void StateFile::setAside(const std::string& reason) const
{
    const StateFile broken(m_name + ".broken");
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "'%s' %s; set aside as '%s'", path().c_str(), reason.c_str(),
                  broken.path().c_str());
    FilePort::get().rename(AT_FDCWD, placeOf(path()).c_str(), AT_FDCWD, placeOf(broken.path()).c_str());
}

void StateFile::fail(const std::string& what, int error) const
{
    throw BoardFailure(error == ENOSPC || error == EMFILE || error == ENFILE ? DDAL_ERROR_NO_RESOURCE : DDAL_ERROR_IO,
                       "'" + path() + "' " + what + ": " + std::strerror(error));
}

StateLock::StateLock(const std::string& name) : m_descriptor(openMaking(StateFile(name + ".lock"), O_RDWR))
{
    if (const int error = lockWith(m_descriptor.get(), LOCK_EX); error != 0) {
        StateFile(name + ".lock").fail("cannot be locked", error);
    }
}

std::optional<StateLock> StateLock::tryTake(const std::string& name)
{
    const StateFile file(name + ".lock");
    Descriptor descriptor = openMaking(file, O_RDWR);
    const int error = lockWith(descriptor.get(), LOCK_EX | LOCK_NB);
    if (error == EWOULDBLOCK) {
        return std::nullopt;
    }
    if (error != 0) {
        file.fail("cannot be locked", error);
    }
    return StateLock(std::move(descriptor));
}

} // namespace dorn::board
