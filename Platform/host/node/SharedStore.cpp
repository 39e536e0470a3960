// SPDX-License-Identifier: MIT
#include "node/SharedStore.hpp"

#include "port/FilePort.hpp"
#include "port/StandardStreams.hpp"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::host {
namespace {

[[noreturn]] void fail(const std::string& path, const std::string& what, int error)
{
    throw EnvironmentError("store '" + path + "' " + what + ": " + std::strerror(error));
}

/// Serialises the making of stores among the processes of a node; given up with the descriptor.
class CreationLock {
public:
    explicit CreationLock(const RunDirectory& directory)
        : m_descriptor(::openat(directory.descriptor(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        int result = m_descriptor;
        while (m_descriptor >= 0 && (result = flock(m_descriptor, LOCK_EX)) != 0 && errno == EINTR) {
        }
        if (result < 0) {
            const int error = errno;
            close(m_descriptor);
            throw EnvironmentError("run directory '" + directory.path() +
                                   "' cannot be locked: " + std::strerror(error));
        }
    }
    ~CreationLock() { close(m_descriptor); }
    CreationLock(const CreationLock&) = delete;
    CreationLock& operator=(const CreationLock&) = delete;

private:
    int m_descriptor;
};

bool hasFormat(int descriptor, const SharedStoreFormat& format)
{
    SharedStoreHeader header{};
    struct stat status {};
    return fstat(descriptor, &status) == 0 && static_cast<std::size_t>(status.st_size) == format.size &&
           pread(descriptor, &header, sizeof header, 0) == static_cast<ssize_t>(sizeof header) &&
           header.magic == format.magic && header.version == format.version && header.size == format.size;
}

struct flock lockOf(short type, std::size_t begin, std::size_t length)
{
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(begin);
    lock.l_len = static_cast<off_t>(length);
    return lock;
}

struct flock byteLock(short type, std::size_t index)
{
    return lockOf(type, index, 1);
}

/// The process that keeps @p wanted from being taken, 0 when there is none.
int holderAgainst(int descriptor, struct flock wanted)
{
    return fcntl(descriptor, F_GETLK, &wanted) != 0 || wanted.l_type == F_UNLCK ? 0 : wanted.l_pid;
}

/// Who uses a store holds one of its locks as a rule; without the file the others would no longer meet him.
void requireUnused(int descriptor, const std::string& path)
{
    constexpr std::size_t toTheEnd = 0;
    if (const int user = holderAgainst(descriptor, lockOf(F_WRLCK, 0, toTheEnd)); user != 0) {
        close(descriptor);
        throw EnvironmentError("store '" + path + "' is damaged or of another version, and process " +
                               std::to_string(user) + " uses it; end the services of this node and start them again");
    }
}

int createStore(const RunDirectory& directory, const std::string& name, const SharedStoreFormat& format)
{
    FilePort& files = FilePort::get();
    const std::string path = directory.path() + "/" + name;
    const std::string unfinished = name + ".new";
    const int descriptor =
        files.open(directory.descriptor(), unfinished.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_NOFOLLOW, 0600);
    if (descriptor < 0) {
        fail(path, "cannot be created", -descriptor);
    }
    const SharedStoreHeader header{format.magic, format.version, format.size};
    ssize_t result = files.reserve(descriptor, static_cast<off_t>(format.size));
    if (result == 0) {
        result = files.write(descriptor, &header, sizeof header);
    }
    if (result >= 0 && result < static_cast<ssize_t>(sizeof header)) {
        result = -ENOSPC;
    }
    if (result >= 0) {
        result = files.rename(directory.descriptor(), unfinished.c_str(), directory.descriptor(), name.c_str());
    }
    if (result < 0) {
        close(descriptor);
        files.remove(directory.descriptor(), unfinished.c_str());
        fail(path, "cannot be created", static_cast<int>(-result));
    }
    return descriptor;
}

int openOrCreate(const RunDirectory& directory, const std::string& name, const SharedStoreFormat& format)
{
    const CreationLock lock(directory);
    FilePort& files = FilePort::get();
    const int descriptor = files.open(directory.descriptor(), name.c_str(), O_RDWR | O_NOFOLLOW, 0);
    if (descriptor >= 0 && hasFormat(descriptor, format)) {
        return descriptor;
    }
    if (descriptor >= 0) {
        const std::string path = directory.path() + "/" + name;
        requireUnused(descriptor, path);
        close(descriptor);
        writeToStandardError("dorn: store '" + path + "' is damaged or of another version; set aside as '" + path +
                             ".broken'\n");
        files.rename(directory.descriptor(), name.c_str(), directory.descriptor(), (name + ".broken").c_str());
    } else if (descriptor != -ENOENT) {
        fail(directory.path() + "/" + name, "cannot be opened", -descriptor);
    }
    return createStore(directory, name, format);
}

} // namespace

SharedStore::SharedStore(const RunDirectory& directory, const std::string& name, const SharedStoreFormat& format)
    : m_descriptor(openOrCreate(directory, name, format)), m_size(format.size)
{
    void* const mapping = mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_SHARED, m_descriptor, 0);
    if (mapping == MAP_FAILED) {
        const int error = errno;
        close(m_descriptor);
        fail(directory.path() + "/" + name, "cannot be mapped", error);
    }
    m_data = static_cast<std::byte*>(mapping);
}

SharedStore::~SharedStore()
{
    munmap(m_data, m_size);
    close(m_descriptor);
}

bool SharedStore::tryLock(std::size_t index) const
{
    struct flock lock = byteLock(F_WRLCK, index);
    return fcntl(m_descriptor, F_SETLK, &lock) == 0;
}

bool SharedStore::tryShare(std::size_t index) const
{
    struct flock lock = byteLock(F_RDLCK, index);
    return fcntl(m_descriptor, F_SETLK, &lock) == 0;
}

void SharedStore::lock(std::size_t index) const
{
    struct flock lock = byteLock(F_WRLCK, index);
    // The kernel takes processes for the owners of locks, and so sees deadlocks where different threads of two
    // processes wait for each other's: then the lock is simply not free yet.
    while (fcntl(m_descriptor, F_SETLKW, &lock) != 0 && (errno == EINTR || errno == EDEADLK)) {
        sched_yield();
    }
}

void SharedStore::unlock(std::size_t index) const
{
    struct flock lock = byteLock(F_UNLCK, index);
    fcntl(m_descriptor, F_SETLK, &lock);
}

int SharedStore::lockHolder(std::size_t index) const
{
    return holderAgainst(m_descriptor, byteLock(F_WRLCK, index));
}

} // namespace dorn::host
