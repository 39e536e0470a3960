// SPDX-License-Identifier: MIT
/// @file QueueRoom.hpp
/// What may wait for all other nodes together.
#pragma once

#include <cstddef>
#include <vector>

namespace dorn::gateway {

/// A queue that gives way when all of them take too much.
class QueueTenant {
public:
    virtual ~QueueTenant() = default;
    /// Bytes of all that waits.
    virtual std::size_t queuedBytes() const = 0;
    /// Those of them that can be dropped.
    virtual std::size_t droppableBytes() const = 0;
    /// Drops the oldest message that can be. @return its bytes; more than 0
    virtual std::size_t giveWay() = 0;
};

/// Bounds the bytes of all queues: where there are too many, the queue with the most that can be dropped gives way.
class QueueRoom {
public:
    explicit QueueRoom(std::size_t bytes) : m_limit(bytes) {}

    /// @param tenant outlives the last note()
    void add(QueueTenant& tenant) { m_tenants.push_back(&tenant); }
    /// A queue has become @p bytes greater. Makes room where they are too many.
    void note(std::size_t bytes);

private:
    std::size_t sum() const;
    QueueTenant* fullest() const;

    std::size_t m_limit;
    std::vector<QueueTenant*> m_tenants;
    std::size_t m_atMost = 0; ///< they take no more than that: what has become less is not counted until it matters
};

} // namespace dorn::gateway
