// SPDX-License-Identifier: MIT
#include "config/TagObservers.hpp"

#include "AaSysLog.h"
#include "log/Log.hpp"
#include "node/PerNode.hpp"
#include "port/SignalsBlocked.hpp"

#include <algorithm>
#include <pthread.h>
#include <system_error>
#include <utility>
#include <vector>

namespace dorn::host {

bool isProcessTag(const std::string& name)
{
    return name.starts_with("tessel.service.");
}

TagObservers::TagObservers(TagDatabase& database, TagControl& control) : m_database(database), m_control(control) {}

TagObservers::~TagObservers()
{
    m_isStopping.store(true);
    if (m_thread.joinable()) {
        m_slot->signal.notify();
        m_thread.join();
    }
}

TagObservers::Id TagObservers::add(const std::string& name, Function function, TAaConfigTagObserver key)
{
    // The node's writer may be stopped in the middle of a set: whoever waits for it keeps nobody else waiting.
    TagWrite write(m_database);
    const std::lock_guard lock(m_mutex);
    const auto [begin, end] = m_observers.equal_range(name);
    const auto same = std::find_if(begin, end, [key](const auto& entry) { return key && entry.second.key == key; });
    if (same != end) {
        return same->second.id;
    }
    Observer observer{++m_lastId, key, 0, m_ownSequence, std::move(function)};
    start();
    if (!isProcessTag(name)) {
        beginJournal(write);
        observer.fromJournal = write.sequence();
    }
    const Id id = observer.id;
    m_observers.emplace(name, std::move(observer));
    return id;
}

/// Called inside a TagWrite. The slot is settled before the thread is there, which reads it without the lock.
void TagObservers::start()
{
    if (m_thread.joinable()) {
        return;
    }
    PerNode<Log>::get(); // which the thread prints to, and which is therefore to be closed after it
    m_slot = m_control.claim();
    if (!m_slot) {
        throw TagError("too many processes observe tags");
    }
    try {
        const SignalsBlocked untilStarted;
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error& error) {
        throw TagError(std::string("the observers' thread cannot be started: ") + error.what());
    }
    pthread_setname_np(m_thread.native_handle(), "AaConfigTag");
}

/// From here on the journal keeps what is set, until endObserver() has ended the last one.
void TagObservers::beginJournal(TagWrite& write)
{
    if (m_slot->isActive.load(std::memory_order_relaxed) == 0) {
        ++m_epoch;
        m_slot->cursor.store(write.sequence(), std::memory_order_relaxed);
        m_slot->isActive.store(1, std::memory_order_release);
    }
}

bool TagObservers::remove(Id id)
{
    std::unique_lock lock(m_mutex);
    const auto observer =
        std::find_if(m_observers.begin(), m_observers.end(), [id](const auto& entry) { return entry.second.id == id; });
    if (observer == m_observers.end()) {
        return false;
    }
    endObserver(lock, observer);
    return true;
}

bool TagObservers::remove(const std::string& name, TAaConfigTagObserver key)
{
    std::unique_lock lock(m_mutex);
    const auto [begin, end] = m_observers.equal_range(name);
    const auto observer = std::find_if(begin, end, [key](const auto& entry) { return entry.second.key == key; });
    if (observer == end) {
        return false;
    }
    endObserver(lock, observer);
    return true;
}

bool TagObservers::isObserved(const std::string& name) const
{
    return m_observers.contains(name) || m_observers.contains({});
}

bool TagObservers::hasJournalObserver() const
{
    return std::any_of(m_observers.begin(), m_observers.end(),
                       [](const auto& entry) { return !isProcessTag(entry.first); });
}

void TagObservers::endObserver(std::unique_lock<std::mutex>& lock, Observers::iterator observer)
{
    const Id id = observer->second.id;
    // The function may be running: what it owns must outlive the call, and its end must not happen under the lock.
    const Function function = std::move(observer->second.function);
    m_observers.erase(observer);
    if (!hasJournalObserver()) {
        m_slot->isActive.store(0, std::memory_order_release);
    }
    if (std::this_thread::get_id() != m_thread.get_id()) {
        m_callEnded.wait(lock, [this, id] { return m_running != id; });
    }
    lock.unlock();
}

void TagObservers::announce(const std::string& name, TagView value)
{
    const std::lock_guard lock(m_mutex);
    const std::uint64_t sequence = m_ownSequence++;
    if (!isObserved(name)) {
        return;
    }
    if (m_own.size() == tagJournalCapacity) {
        m_own.pop_front();
        ++m_ownLost;
    }
    m_own.push_back({sequence, {name, TagBytes(value.begin(), value.end())}});
    m_slot->signal.notify();
}

void TagObservers::run()
{
    SharedSignal& signal = m_slot->signal;
    while (!m_isStopping.load()) {
        const std::uint32_t seen = signal.count();
        const bool hadOwn = deliverOwn();
        const bool hadMore = deliverJournal();
        if (!hadOwn && !hadMore && !m_isStopping.load()) {
            signal.waitBeyond(seen, noDeadline);
        }
    }
}

bool TagObservers::deliverOwn()
{
    std::deque<TagJournalEntry> entries;
    std::uint64_t lost = 0;
    {
        const std::lock_guard lock(m_mutex);
        entries.swap(m_own);
        lost = std::exchange(m_ownLost, 0);
    }
    sayLost(lost);
    for (const TagJournalEntry& entry : entries) {
        deliver(entry, &Observer::fromOwn);
    }
    return !entries.empty();
}

bool TagObservers::deliverJournal()
{
    std::uint64_t from = 0;
    std::uint64_t epoch = 0;
    {
        const std::lock_guard lock(m_mutex);
        if (m_slot->isActive.load(std::memory_order_relaxed) == 0) {
            return false;
        }
        from = m_slot->cursor.load(std::memory_order_relaxed);
        epoch = m_epoch;
    }
    TagJournalPart part;
    try {
        part = m_database.readJournal(from, [this](const std::string& name) {
            const std::lock_guard lock(m_mutex);
            return isObserved(name);
        });
    } catch (const TagError& error) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "configuration tag observers cannot be served: %s", error.what());
        return false;
    }
    {
        const std::lock_guard lock(m_mutex);
        // When all observers have gone meanwhile, what was read concerns nobody, and what was missed is not lost.
        if (epoch != m_epoch || m_slot->isActive.load(std::memory_order_relaxed) == 0) {
            return true;
        }
        m_slot->cursor.store(part.next, std::memory_order_release);
    }
    sayLost(part.lost);
    for (const TagJournalEntry& entry : part.entries) {
        deliver(entry, &Observer::fromJournal);
    }
    return part.next != from;
}

void TagObservers::sayLost(std::uint64_t count) const
{
    if (count != 0) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error,
                      "configuration tag observers are too slow: the oldest %llu sets are lost to them",
                      static_cast<unsigned long long>(count));
    }
}

void TagObservers::deliver(const TagJournalEntry& entry, std::uint64_t Observer::*from)
{
    std::unique_lock lock(m_mutex);
    std::vector<Id> ids;
    for (const std::string& name : {entry.tag.name, std::string()}) {
        const auto [begin, end] = m_observers.equal_range(name);
        for (auto observer = begin; observer != end; ++observer) {
            if (observer->second.*from <= entry.sequence) {
                ids.push_back(observer->second.id);
            }
        }
    }
    for (const Id id : ids) {
        callIfStillThere(lock, id, entry.tag);
    }
}

void TagObservers::callIfStillThere(std::unique_lock<std::mutex>& lock, Id id, const Tag& tag)
{
    const auto observer =
        std::find_if(m_observers.begin(), m_observers.end(), [id](const auto& entry) { return entry.second.id == id; });
    if (observer == m_observers.end() || m_isStopping.load()) {
        return;
    }
    m_running = id;
    {
        const Function function = observer->second.function;
        lock.unlock();
        function(tag.name, tag.value);
    }
    lock.lock();
    m_running = 0;
    m_callEnded.notify_all();
}

} // namespace dorn::host
