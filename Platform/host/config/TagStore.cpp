// SPDX-License-Identifier: MIT
#include "config/TagStore.hpp"

#include <algorithm>
#include <atomic>
#include <unistd.h>

namespace dorn::host {
namespace {

/// Opens the database while no other process does.
TagDatabase openAlone(const TagControl& control, const RunDirectory& directory)
{
    struct Lock {
        explicit Lock(const TagControl& opened) : control(opened) { control.lockOpening(); }
        ~Lock() { control.unlockOpening(); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;
        const TagControl& control;
    };
    const CancellationOff untilDone;
    const Lock lock(control);
    return TagDatabase(directory);
}

std::atomic<bool> isOpen{false};

} // namespace

TagStore::OnlyOne::OnlyOne()
{
    if (isOpen.exchange(true)) {
        throw EnvironmentError("the tag store of this process is just being closed");
    }
}

TagStore::OnlyOne::~OnlyOne()
{
    isOpen.store(false);
}

TagStore::TagStore()
    : m_process(getpid()),
      m_control(PerNode<RunDirectory>::get()),
      m_database(openAlone(m_control, PerNode<RunDirectory>::get())),
      m_observers(m_database, m_control)
{
    // A process that was killed between a set and its wake-up owes it to the observers.
    m_control.notifyAll();
}

void TagStore::requireOpeningProcess() const
{
    if (getpid() != m_process) {
        throw TagError("the store was opened before fork(); use it in one of the two processes only");
    }
}

bool TagStore::set(const std::string& name, TagView value)
{
    if (!isName(name) || value.size() > maximumTagValue) {
        return false;
    }
    requireOpeningProcess();
    if (isProcessTag(name)) {
        const std::lock_guard lock(m_ownMutex);
        m_own[name].assign(value.begin(), value.end());
        m_observers.announce(name, value);
        return true;
    }
    {
        TagWrite write(m_database);
        if (!m_hasForgottenDead) {
            m_control.forgetDead();
            m_hasForgottenDead = true;
        }
        write.put(name, value);
        if (const std::optional<std::uint64_t> oldest = m_control.oldestCursor(write.sequence())) {
            write.appendToJournal(name, value);
            write.trimJournal(*oldest);
        } else {
            write.emptyJournal();
        }
        write.commit();
    }
    m_control.notifyAll();
    return true;
}

bool TagStore::read(const std::string& name, const std::function<void(TagView)>& take) const
{
    requireOpeningProcess();
    if (!isProcessTag(name)) {
        return isName(name) && m_database.read(name, take);
    }
    const std::lock_guard lock(m_ownMutex);
    const auto tag = m_own.find(name);
    if (tag == m_own.end()) {
        return false;
    }
    take(tag->second);
    return true;
}

std::optional<TagBytes> TagStore::get(const std::string& name) const
{
    std::optional<TagBytes> value;
    read(name, [&value](TagView found) { value.emplace(found.begin(), found.end()); });
    return value;
}

std::vector<Tag> TagStore::list() const
{
    requireOpeningProcess();
    std::vector<Tag> tags = m_database.list();
    {
        const std::lock_guard lock(m_ownMutex);
        for (const auto& [name, value] : m_own) {
            tags.push_back({name, value});
        }
    }
    std::sort(tags.begin(), tags.end(), [](const Tag& left, const Tag& right) { return left.name < right.name; });
    return tags;
}

TagObservers& TagStore::observers()
{
    requireOpeningProcess();
    return m_observers;
}

} // namespace dorn::host
