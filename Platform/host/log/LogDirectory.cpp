// SPDX-License-Identifier: MIT
#include "log/LogDirectory.hpp"

#include "node/RunDirectory.hpp"
#include "port/FilePort.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <tuple>

namespace dorn::host {
namespace {

struct DirectoryCloser {
    void operator()(DIR* stream) const { closedir(stream); }
};

std::vector<SegmentFile> listSegments(const Descriptor& directory)
{
    Descriptor own(::openat(directory.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::unique_ptr<DIR, DirectoryCloser> stream(own ? fdopendir(own.get()) : nullptr);
    std::vector<SegmentFile> files;
    if (!stream) {
        return files;
    }
    own.release();
    while (const dirent* const entry = readdir(stream.get())) {
        SegmentFile file{entry->d_name, {}};
        if (parseSegmentFileName(file.fileName, file.name)) {
            files.push_back(std::move(file));
        }
    }
    return files;
}

/// Takes the lock of an ended process's first segment; it lasts as long as the descriptor.
Descriptor lockEnded(const Descriptor& directory, const std::string& fileName)
{
    Descriptor segment = openSegment(directory, fileName);
    if (segment && flock(segment.get(), LOCK_EX | LOCK_NB) != 0) {
        segment.reset();
    }
    return segment;
}

bool removeIfEnded(const Descriptor& directory, const ProcessSegments& process)
{
    const Descriptor lock = lockEnded(directory, process.first().fileName);
    if (!lock) {
        return false;
    }
    for (const SegmentFile& file : process.files) {
        FilePort::get().remove(directory.get(), file.fileName.c_str());
    }
    return true;
}

} // namespace

Descriptor openLogDirectory(const RunDirectory& node)
{
    node.makeSubdirectory(logDirectoryName);
    Descriptor directory(
        ::openat(node.descriptor(), logDirectoryName, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!directory) {
        throw EnvironmentError("log directory '" + node.path() + "/" + logDirectoryName +
                               "' cannot be opened: " + std::strerror(errno));
    }
    return directory;
}

std::vector<ProcessSegments> listLogs(const Descriptor& directory)
{
    std::map<std::pair<std::int64_t, std::int32_t>, ProcessSegments> processes;
    for (SegmentFile& file : listSegments(directory)) {
        processes[{file.name.start, file.name.pid}].files.push_back(std::move(file));
    }
    std::vector<ProcessSegments> list;
    for (auto& [key, process] : processes) {
        std::sort(process.files.begin(), process.files.end(), [](const SegmentFile& left, const SegmentFile& right) {
            return left.name.number < right.name.number;
        });
        list.push_back(std::move(process));
    }
    return list;
}

Descriptor openSegment(const Descriptor& directory, const std::string& fileName)
{
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    Descriptor segment(::openat(directory.get(), fileName.c_str(), flags));
    struct stat status {};
    if (segment && (fstat(segment.get(), &status) != 0 || !S_ISREG(status.st_mode))) {
        segment.reset();
    }
    return segment;
}

bool isHeld(const Descriptor& segment)
{
    if (flock(segment.get(), LOCK_SH | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK;
    }
    flock(segment.get(), LOCK_UN);
    return false;
}

void pruneLogs(const Descriptor& directory, const LogPruning& keep)
{
    std::vector<ProcessSegments> processes = listLogs(directory);
    std::map<std::string, std::size_t> endedByName;
    std::size_t ended = 0;
    for (auto process = processes.rbegin(); process != processes.rend(); ++process) {
        const Descriptor first = openSegment(directory, process->first().fileName);
        if (first && isHeld(first)) {
            continue;
        }
        std::size_t& endedOfName = endedByName[process->first().name.eeName];
        const bool stays = first && endedOfName < keep.perName && ended < keep.altogether;
        if (!stays && removeIfEnded(directory, *process)) {
            continue;
        }
        ++endedOfName;
        ++ended;
    }
}

} // namespace dorn::host
