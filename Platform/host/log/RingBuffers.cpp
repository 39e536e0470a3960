// SPDX-License-Identifier: MIT
#include "log/RingBuffers.hpp"

#include <algorithm>
#include <cstring>
#include <new>

namespace dorn::host {
namespace {

thread_local bool isTellingOwner = false;

/// Tells a ring buffer's owner of a lost line, unless the line is one that he prints when told.
void tellOwner(TAaSysLogErrorPrintCallback callback)
{
    if (callback && !isTellingOwner) {
        isTellingOwner = true;
        callback();
        isTellingOwner = false;
    }
}

} // namespace

std::size_t LineRing::lengthOfOldest() const
{
    const char* const begin = m_memory.get() + m_begin;
    const std::size_t straight = std::min(m_used, m_size - m_begin);
    if (const void* const end = std::memchr(begin, '\n', straight)) {
        return static_cast<std::size_t>(static_cast<const char*>(end) - begin) + 1;
    }
    const void* const end = std::memchr(m_memory.get(), '\n', m_used - straight);
    return straight + static_cast<std::size_t>(static_cast<const char*>(end) - m_memory.get()) + 1;
}

void LineRing::dropOldest()
{
    const std::size_t length = lengthOfOldest();
    m_begin = (m_begin + length) % m_size;
    m_used -= length;
}

bool LineRing::append(std::string_view line)
{
    if (line.size() > m_size) {
        return false;
    }
    while (m_size - m_used < line.size()) {
        dropOldest();
    }
    const std::size_t end = (m_begin + m_used) % m_size;
    const std::size_t straight = std::min(line.size(), m_size - end);
    std::memcpy(m_memory.get() + end, line.data(), straight);
    std::memcpy(m_memory.get(), line.data() + straight, line.size() - straight);
    m_used += line.size();
    return true;
}

std::string LineRing::content() const
{
    const std::size_t straight = std::min(m_used, m_size - m_begin);
    std::string lines(m_memory.get() + m_begin, straight);
    lines.append(m_memory.get(), m_used - straight);
    return lines;
}

RingBuffers::~RingBuffers()
{
    for (Entry* entry = m_first.load(); entry;) {
        const std::unique_ptr<Entry> owner(entry);
        entry = owner->next;
    }
}

RingBuffers::Entry* RingBuffers::find(std::uint32_t featureId) const
{
    Entry* entry = m_first.load(std::memory_order_acquire);
    while (entry && entry->featureId != featureId) {
        entry = entry->next;
    }
    return entry;
}

RingBuffers::Entry* RingBuffers::find(EAaSysLogSeverityLevel severity, std::uint32_t featureId) const
{
    Entry* const entry = find(featureId);
    return entry && severity >= entry->leastSeverity ? entry : nullptr;
}

int RingBuffers::add(std::uint32_t featureId, std::uint32_t size, EAaSysLogSeverityLevel leastSeverity,
                     TAaSysLogErrorPrintCallback onTooLong)
{
    constexpr int exists = 1;
    constexpr int noMemory = 2;
    const std::lock_guard lock(m_mutex);
    if (find(featureId)) {
        return exists;
    }
    std::unique_ptr<char[]> memory(size != 0 ? new (std::nothrow) char[size] : nullptr);
    if (!memory) {
        return noMemory;
    }
    Entry* const first = m_first.load(std::memory_order_relaxed);
    std::unique_ptr<Entry> entry(
        new (std::nothrow) Entry{featureId, leastSeverity, onTooLong, LineRing(std::move(memory), size), first});
    if (!entry) {
        return noMemory;
    }
    m_first.store(entry.release(), std::memory_order_release);
    return 0;
}

void RingBuffers::append(EAaSysLogSeverityLevel severity, std::uint32_t featureId, std::string_view line)
{
    Entry* const entry = find(severity, featureId);
    if (!entry) {
        return;
    }
    bool isKept = false;
    {
        const std::lock_guard lock(m_mutex);
        isKept = entry->ring.append(line);
    }
    if (!isKept) {
        tellOwner(entry->onTooLong);
    }
}

std::optional<std::string> RingBuffers::content(std::uint32_t featureId) const
{
    const Entry* const entry = find(featureId);
    if (!entry) {
        return std::nullopt;
    }
    const std::lock_guard lock(m_mutex);
    return entry->ring.content();
}

} // namespace dorn::host
