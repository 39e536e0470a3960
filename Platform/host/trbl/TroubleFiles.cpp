// SPDX-License-Identifier: MIT
#include "trbl/TroubleFiles.hpp"

#include "node/PerNode.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <unistd.h>

namespace dorn::host {

/// Lies in shared memory. Name and path do not change any more once there is a pid.
struct TroubleFiles::Record {
    std::atomic<std::int32_t> pid; ///< 0: the place is free
    std::atomic<std::uint32_t> priority;
    std::atomic<std::uint32_t> isProduced;
    std::array<char, nameSize> name;
    std::array<char, pathSize> path;

    bool isOf(const TroubleFile& file) const { return file.name == name.data() && file.path == path.data(); }
    TroubleFile file() const { return {name.data(), path.data(), priority.load(), isProduced.load() != 0, pid.load()}; }
};

namespace {

constexpr std::size_t headerSize = 64;
constexpr std::size_t listLock = 0;

/// Among processes; threads of one process are kept apart by a mutex.
class ListLock {
public:
    explicit ListLock(const SharedStore& store) : m_store(store) { m_store.lock(listLock); }
    ~ListLock() { m_store.unlock(listLock); }
    ListLock(const ListLock&) = delete;
    ListLock& operator=(const ListLock&) = delete;

private:
    const SharedStore& m_store;
};

bool succeeds(TAaTrblFileCallback step, const std::string& path, void* opaque)
{
    return !step || step(path.c_str(), opaque) == 0;
}

} // namespace

TroubleFiles::TroubleFiles() : TroubleFiles(PerNode<RunDirectory>::get()) {}

TroubleFiles::TroubleFiles(const RunDirectory& directory)
    : m_store(directory, "trouble", {0x6C627274, 2, headerSize + capacity * sizeof(Record)})
{
}

TroubleFiles::Record* TroubleFiles::records() const
{
    return reinterpret_cast<Record*>(m_store.data() + headerSize);
}

/// The place of a file that is listed, else the first free one; null when there is none.
TroubleFiles::Record* TroubleFiles::placeOf(const TroubleFile& file) const
{
    Record* const end = records() + capacity;
    return std::find_if(records(), end,
                        [&](const Record& record) { return record.pid.load() == 0 || record.isOf(file); });
}

bool TroubleFiles::add(const TroubleFile& file, const TroubleFileSteps& steps)
{
    const std::lock_guard lock(m_mutex);
    {
        const ListLock listGuard(m_store);
        Record* const record = placeOf(file);
        if (record == records() + capacity) {
            return false;
        }
        if (record->pid.load() == 0) {
            file.name.copy(record->name.data(), nameSize - 1);
            file.path.copy(record->path.data(), pathSize - 1);
        }
        record->priority.store(file.priority);
        record->isProduced.store(file.isProduced ? 1 : 0);
        record->pid.store(getpid()); // last: now it is in the list
    }
    std::erase_if(m_own, [&file](const Own& own) { return own.file.name == file.name && own.file.path == file.path; });
    m_own.push_back({file, steps});
    m_own.back().file.pid = getpid();
    return true;
}

std::vector<TroubleFile> TroubleFiles::list() const
{
    std::vector<TroubleFile> files;
    for (std::size_t place = 0; place < capacity && records()[place].pid.load() != 0; ++place) {
        files.push_back(records()[place].file());
    }
    std::ranges::stable_sort(files, {}, &TroubleFile::priority);
    return files;
}

void TroubleFiles::collectOwn(const std::function<void(const TroubleFile&)>& take) const
{
    std::vector<Own> files;
    {
        const std::lock_guard lock(m_mutex); // not while the steps run: they may register files
        files = m_own;
    }
    std::ranges::stable_sort(files, {}, [](const Own& own) { return own.file.priority; });
    for (const auto& [file, steps] : files) {
        if (succeeds(steps.prepare, file.path, steps.opaque) && succeeds(steps.store, file.path, steps.opaque)) {
            take(file);
            succeeds(steps.remove, file.path, steps.opaque);
        }
    }
}

} // namespace dorn::host
