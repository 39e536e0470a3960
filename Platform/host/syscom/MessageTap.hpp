// SPDX-License-Identifier: MIT
/// @file MessageTap.hpp
/// Letting an operator see the messages of a node as they are sent.
#pragma once

#include "node/SharedStore.hpp"
#include "syscom/Message.hpp"

#include <array>
#include <atomic>
#include <cstdint>

namespace dorn::host {

/// What a watcher receives for each message sent on the node: this record, then as much of the payload as fits.
struct TapRecord {
    std::int64_t wall;  ///< when it was sent, ns since the epoch
    std::int32_t pid;   ///< process that sent it
    std::uint32_t lost; ///< messages of that process that this watcher missed just before
    FrameHeader header; ///< the message's
};
static_assert(sizeof(TapRecord) == 40);

/// The watchers of a node. While there are none, a sender pays one load of a shared word.
class MessageTap {
public:
    /// Id of the messages that carry a TapRecord; they are not shown themselves.
    static constexpr TAaSysComMsgId recordId = 0xFFFF0001;
    static constexpr std::size_t maxWatchers = 8;

    /// Opens the tap of this process's node. @throws EnvironmentError
    MessageTap();
    ~MessageTap();

    /// Whether anybody watches; false until the tap has been opened.
    static bool isWatched() { return s_active.load(std::memory_order_acquire)->load(std::memory_order_relaxed) != 0; }

    /// Shows a message to every watcher that has room for it; watchers that are gone are removed.
    void show(const Message& message);

    /// Has records sent to @p cpid, which the caller holds. @return false when there are maxWatchers already, not
    /// counting those that are gone.
    bool addWatcher(TAaSysComCpid cpid);
    void removeWatcher(TAaSysComCpid cpid);

private:
    struct Control;

    Control& control() const;
    template <class Suits>
    bool takePlace(TAaSysComCpid cpid, const Suits& suits);
    void freePlace(std::size_t place, std::uint32_t watcher);
    void noteFree(std::size_t place);
    std::uint32_t takeLost(std::size_t place, std::uint32_t watcher);
    void addLost(std::size_t place, std::uint32_t watcher, std::uint32_t count);

    static std::atomic<const std::atomic<std::uint32_t>*> s_active;

    SharedStore m_store;
    /// For each place the watcher that missed messages of this process, and how many.
    std::array<std::atomic<std::uint64_t>, maxWatchers> m_lost{};
};

} // namespace dorn::host
