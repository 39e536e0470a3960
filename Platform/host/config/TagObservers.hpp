// SPDX-License-Identifier: MIT
/// @file TagObservers.hpp
/// The observers of this process and the platform thread that calls them.
#pragma once

#include "AaConfigTag.h"
#include "config/TagControl.hpp"
#include "config/TagDatabase.hpp"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>

namespace dorn::host {

/// Whether a tag belongs to each process by itself.
bool isProcessTag(const std::string& name);

/// Calls observers, one at a time, in the order of the sets, on the thread "AaConfigTag", which is started with the
/// first observer and sleeps while nothing happens.
///
/// Two streams are delivered: the journal of the node, of which the thread keeps a place (TagSlot::cursor), and a queue
/// of the sets of this process's own tags. Every observer knows from which set on it listens.
class TagObservers {
public:
    using Id = std::uint64_t;
    /// Gets a tag's name and new value, both valid during the call only.
    using Function = std::function<void(const std::string&, TagView)>;

    TagObservers(TagDatabase& database, TagControl& control);
    /// Ends the thread; what has not been delivered is dropped. Not called by an observer.
    ~TagObservers();
    TagObservers(const TagObservers&) = delete;
    TagObservers& operator=(const TagObservers&) = delete;

    /// Has @p function called for the sets of a tag from now on; for those of all tags when @p name is empty.
    /// @param key when not null: the function for which this is done; one that observes the tag already stays as it is
    /// @throws TagError
    Id add(const std::string& name, Function function, TAaConfigTagObserver key = nullptr);

    /// Ends an observer. When it returns, the observer does not run and will not be called again; called on the
    /// observers' thread, it returns at once. @return false when there is no such observer.
    bool remove(Id id);
    bool remove(const std::string& name, TAaConfigTagObserver key);

    /// Delivers the set of one of this process's own tags.
    void announce(const std::string& name, TagView value);

private:
    struct Observer {
        Id id;
        TAaConfigTagObserver key;
        std::uint64_t fromJournal; ///< first set on the node that concerns it
        std::uint64_t fromOwn;     ///< first set of an own tag that concerns it
        Function function;
    };
    using Observers = std::multimap<std::string, Observer>; ///< by name; in the order of registration

    void start();
    void beginJournal(TagWrite& write);
    void endObserver(std::unique_lock<std::mutex>& lock, Observers::iterator observer);
    bool isObserved(const std::string& name) const;
    bool hasJournalObserver() const;

    void run();
    bool deliverOwn();
    bool deliverJournal();
    void sayLost(std::uint64_t count) const;
    void deliver(const TagJournalEntry& entry, std::uint64_t Observer::*from);
    void callIfStillThere(std::unique_lock<std::mutex>& lock, Id id, const Tag& tag);

    TagDatabase& m_database;
    TagControl& m_control;

    std::mutex m_mutex; ///< guards all below; nobody waits for a TagWrite while he holds it
    std::condition_variable m_callEnded;
    Observers m_observers;
    Id m_lastId = 0;
    Id m_running = 0;          ///< the observer that is being called
    TagSlot* m_slot = nullptr; ///< set once, before the thread is started
    std::uint64_t m_epoch = 0; ///< counts how often this process has begun to read the journal
    std::deque<TagJournalEntry> m_own;
    std::uint64_t m_ownSequence = 0;
    std::uint64_t m_ownLost = 0;

    std::atomic<bool> m_isStopping{false};
    std::thread m_thread;
};

} // namespace dorn::host
