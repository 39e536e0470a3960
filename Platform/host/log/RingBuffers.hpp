// SPDX-License-Identifier: MIT
/// @file RingBuffers.hpp
/// The ring buffers that features have asked for.
#pragma once

#include "AaSysLog.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace dorn::host {

/// Keeps the latest lines within a fixed number of bytes. Not for several threads at once.
class LineRing {
public:
    LineRing(std::unique_ptr<char[]> memory, std::size_t size) : m_memory(std::move(memory)), m_size(size) {}

    /// Appends a line, which ends with its line feed; the oldest lines make room. @return false when it is too long.
    bool append(std::string_view line);
    /// All lines, the oldest first. @throws std::bad_alloc
    std::string content() const;

private:
    void dropOldest();
    std::size_t lengthOfOldest() const;

    std::unique_ptr<char[]> m_memory;
    std::size_t m_size;
    std::size_t m_begin = 0; ///< of the oldest line
    std::size_t m_used = 0;
};

/// All ring buffers of the process. A ring buffer stays until all go.
class RingBuffers {
public:
    RingBuffers() = default;
    ~RingBuffers();
    RingBuffers(const RingBuffers&) = delete;
    RingBuffers& operator=(const RingBuffers&) = delete;

    /// As AaSysLogRegisterRingBuffer().
    int add(std::uint32_t featureId, std::uint32_t size, EAaSysLogSeverityLevel leastSeverity,
            TAaSysLogErrorPrintCallback onTooLong);
    /// Whether there is a ring buffer for a line. Takes no lock.
    bool wants(EAaSysLogSeverityLevel severity, std::uint32_t featureId) const { return find(severity, featureId); }
    /// Puts a line into its feature's ring buffer.
    void append(EAaSysLogSeverityLevel severity, std::uint32_t featureId, std::string_view line);
    /// The lines of a feature; nothing when it has no ring buffer. @throws std::bad_alloc
    std::optional<std::string> content(std::uint32_t featureId) const;

    /// Keep the ring buffers as they are while the process forks.
    void lock() { m_mutex.lock(); }
    void unlock() { m_mutex.unlock(); }

private:
    struct Entry {
        std::uint32_t featureId;
        EAaSysLogSeverityLevel leastSeverity;
        TAaSysLogErrorPrintCallback onTooLong;
        LineRing ring; ///< guarded by m_mutex
        Entry* next;   ///< does not change once the entry can be found
    };
    Entry* find(EAaSysLogSeverityLevel severity, std::uint32_t featureId) const;
    Entry* find(std::uint32_t featureId) const;

    mutable std::mutex m_mutex;
    std::atomic<Entry*> m_first{nullptr};
};

} // namespace dorn::host
