// SPDX-License-Identifier: MIT
#include "trbl/TroubleFiles.hpp"

#include "log/Log.hpp"
#include "node/PerNode.hpp"
#include "port/SignalsBlocked.hpp"

#include <algorithm>
#include <array>
#include <pthread.h>
#include <unistd.h>

namespace dorn::host {

/// Lies in shared memory.
struct TroubleFiles::Header {
    SharedStoreHeader store;
    SharedSignal orders; ///< counts announcements
    SharedSignal answers;
    std::atomic<std::uint32_t> collections;
};

/// Lies in shared memory. Name and path do not change any more once there is a pid.
struct TroubleFiles::Record {
    std::atomic<std::int32_t> pid; ///< 0: the place is free
    std::atomic<std::uint32_t> priority;
    std::atomic<std::uint32_t> hasSteps;
    std::atomic<std::uint32_t> wanted; ///< the last order; 0 without one
    std::atomic<std::uint32_t> failed; ///< 1 when the order that is done has failed
    std::atomic<std::uint32_t> done;   ///< the last order that has been carried out
    std::array<char, nameSize> name;
    std::array<char, pathSize> path;

    void reset(const TroubleFile& file)
    {
        priority.store(file.priority);
        hasSteps.store(file.hasSteps ? 1 : 0);
        wanted.store(0);
        done.store(0);
        pid.store(file.pid); // last: now it is in the list
    }
};

namespace {

constexpr std::uint32_t magic = 0x6C627274; // "trbl", by a little-endian processor
constexpr std::uint32_t layoutVersion = 3;
constexpr std::size_t headerSize = 64;

// Record locks of the store.
constexpr std::size_t listLock = 0;
constexpr std::size_t collectionLock = 1;
constexpr std::size_t processLocks = 16; ///< and the process id: held by a process as long as it lives

/// An order of a collection as one word, never 0.
std::uint32_t wordOf(std::uint32_t collection, TroubleOrder order)
{
    return collection << 1U | static_cast<std::uint32_t>(order);
}

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

bool succeeds(TAaTrblFileCallback step, const TroubleFile& file, void* opaque)
{
    return !step || step(file.path.c_str(), opaque) == 0;
}

} // namespace

TroubleFiles::TroubleFiles() : TroubleFiles(PerNode<RunDirectory>::get()) {}

TroubleFiles::TroubleFiles(const RunDirectory& directory)
    : m_store(directory, "trouble", {magic, layoutVersion, headerSize + capacity * sizeof(Record)})
{
    static_assert(sizeof(Header) <= headerSize);
}

TroubleFiles::~TroubleFiles()
{
    m_isStopping.store(true);
    if (m_thread.joinable()) {
        header().orders.notify();
        m_thread.join();
    }
}

TroubleFiles::Header& TroubleFiles::header() const
{
    return *reinterpret_cast<Header*>(m_store.data());
}

TroubleFiles::Record* TroubleFiles::records() const
{
    return reinterpret_cast<Record*>(m_store.data() + headerSize);
}

/// The place of a file that is listed, else the first free one, else the end of the list.
TroubleFiles::Record* TroubleFiles::placeOf(const std::string& name, const std::string& path) const
{
    return std::find_if(records(), records() + capacity, [&](const Record& record) {
        return record.pid.load() == 0 || (name == record.name.data() && path == record.path.data());
    });
}

bool TroubleFiles::enter(TroubleFile& file) const
{
    const ListLock listGuard(m_store);
    Record* const record = placeOf(file.name, file.path);
    file.place = static_cast<std::size_t>(record - records());
    if (file.place == capacity) {
        return false;
    }
    if (record->pid.load() == 0) {
        file.name.copy(record->name.data(), nameSize - 1);
        file.path.copy(record->path.data(), pathSize - 1);
    }
    record->reset(file);
    return true;
}

bool TroubleFiles::add(const std::string& name, const std::string& path, std::uint32_t priority,
                       const TroubleFileSteps& steps)
{
    const std::lock_guard lock(m_mutex);
    if (steps.isAny()) {
        start();
    }
    TroubleFile file{name, path, priority, steps.isAny(), getpid()};
    if (!enter(file)) {
        return false;
    }
    std::erase_if(m_own, [&file](const Own& own) { return own.file.place == file.place; });
    const auto place = std::ranges::upper_bound(m_own, priority, {}, [](const Own& own) { return own.file.priority; });
    m_own.insert(place, {file, steps});
    return true;
}

std::vector<TroubleFile> TroubleFiles::list() const
{
    std::vector<TroubleFile> files;
    for (std::size_t place = 0; place < capacity && records()[place].pid.load() != 0; ++place) {
        const Record& record = records()[place];
        files.push_back({record.name.data(), record.path.data(), record.priority.load(), record.hasSteps.load() != 0,
                         record.pid.load(), place});
    }
    std::ranges::stable_sort(files, {}, &TroubleFile::priority);
    return files;
}

bool TroubleFiles::isAlive(std::int32_t pid) const
{
    return pid == getpid() || m_store.lockHolder(processLocks + static_cast<std::size_t>(pid)) != 0;
}

bool TroubleFiles::beginCollection() const
{
    return m_store.tryLock(collectionLock);
}

void TroubleFiles::endCollection() const
{
    m_store.unlock(collectionLock);
}

std::uint32_t TroubleFiles::newCollection() const
{
    constexpr std::uint32_t most = 0x7FFFFFFF; // a bit is the order's
    return header().collections.fetch_add(1) % most + 1;
}

void TroubleFiles::order(const TroubleFile& file, std::uint32_t collection, TroubleOrder order) const
{
    records()[file.place].wanted.store(wordOf(collection, order));
}

void TroubleFiles::announceOrders() const
{
    header().orders.notify();
}

TroubleAnswer TroubleFiles::answer(const TroubleFile& file, std::uint32_t collection, TroubleOrder order) const
{
    const Record& record = records()[file.place];
    const bool isAliveNow = isAlive(file.pid); // before the answer is looked for, which it may give as its last act
    if (record.done.load() == wordOf(collection, order)) {
        return record.failed.load() == 0 ? TroubleAnswer::Done : TroubleAnswer::Failed;
    }
    return isAliveNow ? TroubleAnswer::Pending : TroubleAnswer::Dead;
}

SharedSignal& TroubleFiles::answers() const
{
    return header().answers;
}

void TroubleFiles::start()
{
    if (m_thread.joinable()) {
        return;
    }
    PerNode<Log>::get(); // which steps print to, and which is therefore to be closed after the thread
    m_store.tryLock(processLocks + static_cast<std::size_t>(getpid()));
    const SignalsBlocked untilStarted;
    m_thread = std::thread([this] { run(); });
    pthread_setname_np(m_thread.native_handle(), "AaTrbl");
}

void TroubleFiles::run()
{
    SharedSignal& orders = header().orders;
    while (!m_isStopping.load()) {
        const std::uint32_t seen = orders.count();
        if (!serve() && !m_isStopping.load()) {
            orders.waitBeyond(seen, noDeadline);
        }
    }
}

/// Carries out the orders for this process's files. @return whether there were any.
bool TroubleFiles::serve()
{
    std::vector<Own> files;
    {
        const std::lock_guard lock(m_mutex); // not while steps run: they may register files
        files = m_own;
    }
    bool wasAny = false;
    for (const Own& own : files) {
        Record& record = records()[own.file.place];
        const std::uint32_t wanted = record.wanted.load();
        if (wanted == record.done.load() || record.pid.load() != own.file.pid || m_isStopping.load()) {
            continue;
        }
        record.failed.store(carryOut(own, static_cast<TroubleOrder>(wanted & 1U)) ? 0 : 1);
        record.done.store(wanted);
        header().answers.notify();
        wasAny = true;
    }
    return wasAny;
}

bool TroubleFiles::carryOut(const Own& own, TroubleOrder order)
{
    const auto& [file, steps] = own;
    if (order == TroubleOrder::Remove) {
        return m_stored.erase(file.place) == 0 || succeeds(steps.remove, file, steps.opaque);
    }
    const bool isStored = succeeds(steps.prepare, file, steps.opaque) && succeeds(steps.store, file, steps.opaque);
    if (isStored) {
        m_stored.insert(file.place);
    }
    return isStored;
}

} // namespace dorn::host
