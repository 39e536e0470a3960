// SPDX-License-Identifier: MIT
/// @file RioFaultStore.hpp
/// RapidIO devices that have been told to corrupt what they are given, or to be slow.
#pragma once

#include "node/RunDirectory.hpp"
#include "node/SharedStore.hpp"

#include <chrono>
#include <cstdint>
#include <vector>

namespace dorn::board {

/// A device behind a RapidIO port.
struct RioAddress {
    std::uint32_t port;   ///< up to 0xFFFF
    std::uint32_t device; ///< RapidIO id

    bool operator==(const RioAddress&) const = default;
};

/// What a device has been told.
struct RioFault {
    RioAddress device;
    std::uint32_t corruptLeft;       ///< copies to it that it is still to spoil; RioFaultStore::always for all
    std::uint32_t corrupted;         ///< copies that it has spoilt since it was told
    std::chrono::milliseconds delay; ///< how much longer each copy takes
};

/// The store in the node's run directory through which any process tells the RapidIO devices what goes wrong with them,
/// for all processes of the node.
class RioFaultStore {
public:
    static constexpr std::uint32_t always = 0xFFFFFFFF;
    /// How many devices can be told something.
    static constexpr std::size_t most = 64;
    /// The store's file in the run directory.
    static constexpr const char* fileName = "board.rapidio";

    /// Opens the store of this process's node. @throws host::EnvironmentError. Use it through `PerNode<RioFaultStore>`.
    RioFaultStore();
    explicit RioFaultStore(const host::RunDirectory& directory);

    /// Has the device invert the bits of the first byte of each of the next @p copies to it.
    /// @throws BoardFailure when too many devices have been told something.
    void corrupt(const RioAddress& device, std::uint32_t copies);
    /// Has each copy to or from the device take @p delay longer. @throws BoardFailure as corrupt() does.
    void slow(const RioAddress& device, std::chrono::milliseconds delay);
    /// Has the device work again.
    void heal(const RioAddress& device);

    /// Counts a copy to the device. @return whether it is to be spoilt.
    bool takeCorruption(const RioAddress& device);
    /// How much longer a copy is to take.
    std::chrono::milliseconds delayOf(const RioAddress& device) const;

    /// The devices that have been told something, also those that have done it.
    std::vector<RioFault> list() const;

private:
    struct Content;
    struct Entry;
    Content& content() const;
    Entry* find(const RioAddress& device) const;
    Entry& findOrMake(const RioAddress& device);

    host::SharedStore m_store;
};

} // namespace dorn::board
