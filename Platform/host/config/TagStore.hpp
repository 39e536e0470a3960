// SPDX-License-Identifier: MIT
/// @file TagStore.hpp
/// The configuration tags as one process sees them: those of the node and its own.
#pragma once

#include "config/TagLimits.hpp"
#include "config/TagObservers.hpp"
#include "node/PerNode.hpp"

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace dorn::host {

/// Reads and sets tags. Use it through `PerNode<TagStore>`; a process has only one, and not across fork(). Every
/// function may be called from any thread; those that touch the store throw TagError when it fails.
class TagStore {
public:
    /// @throws EnvironmentError
    TagStore();
    TagStore(const TagStore&) = delete;
    TagStore& operator=(const TagStore&) = delete;

    static bool isName(const std::string& name) { return !name.empty() && name.size() <= maximumTagName; }

    /// Sets a tag, and has every observer on the node told.
    /// @return false when name or value have a size that a tag cannot have.
    bool set(const std::string& name, TagView value);

    /// Calls @p take with the tag's value, which is valid during the call only. @return false when there is no such
    /// tag.
    bool read(const std::string& name, const std::function<void(TagView)>& take) const;
    /// A copy of the tag's value, or nothing when there is no such tag.
    std::optional<TagBytes> get(const std::string& name) const;
    /// All tags of the node and this process's own, by name.
    std::vector<Tag> list() const;

    /// Those who are told of sets; for all tags with an empty name.
    TagObservers& observers();

private:
    /// LMDB must not be opened twice in a process, not even while an observer still uses a store that is being closed.
    class OnlyOne {
    public:
        OnlyOne();
        ~OnlyOne();
        OnlyOne(const OnlyOne&) = delete;
        OnlyOne& operator=(const OnlyOne&) = delete;
    };

    void requireOpeningProcess() const;

    OnlyOne m_onlyOne;
    int m_process;
    TagControl m_control;
    TagDatabase m_database;
    bool m_hasForgottenDead = false; ///< read and written inside a TagWrite only
    mutable std::mutex m_ownMutex;
    std::map<std::string, TagBytes> m_own; ///< the tags of this process
    TagObservers m_observers;
};

/// Has a function called for every set of a tag, or of all tags, as long as it lives; on the observers' thread.
class TagWatch {
public:
    /// @param name the tag; empty for all. @throws TagError
    TagWatch(TagStore& store, const std::string& name, TagObservers::Function function)
        : m_store(store), m_id(store.observers().add(name, std::move(function)))
    {
    }
    ~TagWatch() { m_store.observers().remove(m_id); }
    TagWatch(const TagWatch&) = delete;
    TagWatch& operator=(const TagWatch&) = delete;

private:
    TagStore& m_store;
    TagObservers::Id m_id;
};

} // namespace dorn::host
