// SPDX-License-Identifier: MIT
/// @file FaultStore.hpp
/// Driver functions that have been told to fail.
#pragma once

#include "driver/DriverFunction.hpp"
#include "node/RunDirectory.hpp"
#include "node/SharedStore.hpp"

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace dorn::board {

/// What a driver function has been told.
struct DriverFault {
    DriverFunction function;
    std::int32_t code;       ///< with which it fails, never #DDAL_OK, or FaultStore::powerLoss
    std::uint32_t left;      ///< calls that are still to fail; FaultStore::always for all
    std::uint32_t given;     ///< calls that have failed since it was told
    std::uint32_t after = 0; ///< calls that are still to work before the first one fails
};

/// The store in the node's run directory through which any process tells the drivers of all processes what is to fail.
///
/// A call of a driver function that has been told nothing costs one load. Of functions that many processes call at once
/// exactly as many calls fail as was said. A process that dies has taken its calls, nothing else.
class FaultStore {
public:
    static constexpr std::uint32_t always = 0xFFFFFFFF;
    /// In place of a code: the board loses its power in the call, half way where the call flashes something. Every
    /// process of the node is killed, as by a reset.
    static constexpr std::int32_t powerLoss = std::numeric_limits<std::int32_t>::min();
    /// The store's file in the run directory.
    static constexpr const char* fileName = "board.faults";

    /// Opens the store of this process's node. @throws host::EnvironmentError. Use it through `PerNode<FaultStore>`.
    FaultStore();
    explicit FaultStore(const host::RunDirectory& directory);

    /// Has the next @p times calls of a function, behind @p after calls that work, fail with @p code, in place of what
    /// it was told before. @p code is not 0, @p times not either.
    void set(DriverFunction function, std::int32_t code, std::uint32_t times, std::uint32_t after = 0);
    void clear(DriverFunction function);

    /// Counts a call. @return the code with which it is to fail, if it is.
    std::optional<std::int32_t> take(DriverFunction function);

    /// The functions that have been told to fail, also those whose calls have all failed, in the order of the table.
    std::vector<DriverFault> list() const;

private:
    struct Content;
    Content& content() const;

    host::SharedStore m_store;
};

} // namespace dorn::board
