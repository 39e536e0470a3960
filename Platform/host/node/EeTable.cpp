// SPDX-License-Identifier: MIT
#include "node/EeTable.hpp"

#include "AaSysLog.h"
#include "node/FixedText.hpp"
#include "node/PerNode.hpp"
#include "port/Clock.hpp"

#include <algorithm>
#include <cstring>
#include <unistd.h>

namespace dorn::host {
namespace {

constexpr std::size_t headerSize = 64;
constexpr std::size_t tableLock = EeTable::capacity; ///< the byte behind the places' own: guards the choice of a place
constexpr SharedStoreFormat format{0x44524E45, 2, headerSize + EeTable::capacity * sizeof(EeRecord)}; // "DRNE"

std::int64_t wallNow()
{
    return Clock::get().wall().count();
}

void clear(EeRecord& record)
{
    record.isGranted.store(0);
    for (EeRecord::Published& entry : record.published) {
        entry.id.store(0);
        entry.value.store(0);
        entry.before.store(0);
        entry.when.store(0);
    }
    for (EeRecord::Cpid& entry : record.cpids) {
        entry.cpid.store(0);
    }
}

EeInfo copyOf(const EeRecord& record, bool alive)
{
    EeInfo info{textOf(record.name),
                record.pid.load(),
                alive,
                static_cast<std::uint16_t>(record.cpid.load()),
                record.since.load(),
                {},
                {},
                record.isGranted.load() != 0};
    for (const EeRecord::Published& entry : record.published) {
        if (entry.id.load() != 0) {
            info.published.push_back({entry.id.load(), entry.value.load(), entry.when.load(), entry.before.load()});
        }
    }
    for (const EeRecord::Cpid& entry : record.cpids) {
        if (entry.cpid.load() != 0) {
            info.cpids.push_back({static_cast<std::uint16_t>(entry.cpid.load()), textOf(entry.euName)});
        }
    }
    return info;
}

} // namespace

EeTable::EeTable() : EeTable(PerNode<RunDirectory>::get()) {}

EeTable::EeTable(const RunDirectory& directory) : m_store(directory, "ees", format) {}

EeRecord* EeTable::records() const
{
    return reinterpret_cast<EeRecord*>(m_store.data() + headerSize);
}

bool EeTable::isAlive(std::size_t place) const
{
    return place == m_ownPlace || m_store.lockHolder(place) != 0;
}

/// Places are filled from the first on and never emptied, so the first empty one is the end: what lies behind is not
/// even touched.
std::size_t EeTable::placesInUse() const
{
    std::size_t place = 0;
    while (place < capacity && records()[place].pid.load() != 0) {
        ++place;
    }
    return place;
}

std::size_t EeTable::choosePlace(const std::string& name) const
{
    const std::size_t end = placesInUse();
    std::size_t oldest = capacity;
    for (std::size_t place = 0; place < end; ++place) {
        const EeRecord& record = records()[place];
        if (isAlive(place)) {
            continue;
        }
        if (textOf(record.name) == name.substr(0, record.name.size() - 1)) {
            return place;
        }
        if (oldest == capacity || record.since.load() < records()[oldest].since.load()) {
            oldest = place;
        }
    }
    return end != capacity ? end : oldest;
}

void EeTable::enter(const std::string& name, std::uint16_t cpid)
{
    m_store.lock(tableLock);
    const std::size_t place = m_own.load() ? m_ownPlace : choosePlace(name);
    const bool hasPlace = place != capacity && m_store.tryLock(place);
    if (hasPlace) {
        EeRecord& record = records()[place];
        clear(record);
        copyText(record.name, name);
        record.cpid.store(cpid);
        record.since.store(wallNow());
        record.pid.store(getpid());
        m_ownPlace = place;
        m_own.store(&record, std::memory_order_release);
    }
    m_store.unlock(tableLock);
    if (!hasPlace) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "EE %s is not in the node's list: it has no more than %zu places",
                      name.c_str(), capacity);
    }
}

void EeTable::notePublished(std::uint32_t id, std::uint32_t value)
{
    EeRecord* const own = m_own.load(std::memory_order_acquire);
    if (!own) {
        return;
    }
    for (EeRecord::Published& entry : own->published) {
        std::uint32_t there = entry.id.load(std::memory_order_relaxed);
        if (there == id || (there == 0 && entry.id.compare_exchange_strong(there, id)) || there == id) {
            const std::uint32_t before = entry.value.load(std::memory_order_relaxed);
            if (before != value) {
                entry.before.store(before, std::memory_order_relaxed);
                entry.value.store(value, std::memory_order_relaxed);
            }
            entry.when.store(wallNow(), std::memory_order_relaxed);
            return;
        }
    }
    if (!m_isPublishedFullSaid.exchange(true)) {
        AaSysLogPrint(
            EAaSysLogSeverityLevel_Warning,
            "R&D parameter 0x%X and others of EE %s are not in the node's list: it has no more than %zu places "
            "for them",
            id, own->name.data(), own->published.size());
    }
}

void EeTable::noteCpid(std::uint16_t cpid, const std::string& euName)
{
    EeRecord* const own = m_own.load(std::memory_order_acquire);
    if (!own) {
        return;
    }
    if (cpid == own->cpid.load()) {
        own->isGranted.store(1);
    }
    for (EeRecord::Cpid& entry : own->cpids) {
        if (entry.cpid.load() == 0) {
            copyText(entry.euName, euName);
            entry.cpid.store(cpid);
            return;
        }
    }
    if (!m_isCpidsFullSaid.exchange(true)) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                      "cpid 0x%04X and others of EE %s are not in the node's list: it has no more than %zu places for "
                      "them",
                      cpid, own->name.data(), own->cpids.size());
    }
}

void EeTable::forgetCpid(std::uint16_t cpid)
{
    EeRecord* const own = m_own.load(std::memory_order_acquire);
    if (!own) {
        return;
    }
    for (EeRecord::Cpid& entry : own->cpids) {
        std::uint32_t expected = cpid;
        entry.cpid.compare_exchange_strong(expected, 0);
    }
}

std::vector<EeInfo> EeTable::list() const
{
    std::vector<EeInfo> infos;
    const std::size_t end = placesInUse();
    for (std::size_t place = 0; place < end; ++place) {
        infos.push_back(copyOf(records()[place], isAlive(place)));
    }
    return infos;
}

std::optional<EeInfo> EeTable::holderOf(std::uint16_t cpid) const
{
    const std::size_t end = placesInUse();
    for (std::size_t place = 0; place < end; ++place) {
        const EeRecord& record = records()[place];
        const bool holds = std::any_of(record.cpids.begin(), record.cpids.end(),
                                       [cpid](const EeRecord::Cpid& entry) { return entry.cpid.load() == cpid; });
        if (holds && isAlive(place)) {
            return copyOf(record, true);
        }
    }
    return std::nullopt;
}

} // namespace dorn::host
