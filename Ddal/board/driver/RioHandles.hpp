// SPDX-License-Identifier: MIT
/// @file RioHandles.hpp
/// The copy handles that this process has open.
#pragma once

#include "device/RioDevice.hpp"
#include "fault/RioFaultStore.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace dorn::board {

/// An open copy handle.
struct RioHandle {
    RioDevice device;
    std::uint32_t mode;    ///< a value of #ddal_rio_mode
    RioFaultStore* faults; ///< what devices have been told; null when nobody can tell them anything
};

class RioHandles {
public:
    static constexpr std::size_t most = 256;

    /// @return its number, which no other handle of the process has had. @throws BoardFailure when too many are open.
    std::int32_t add(RioHandle handle);
    /// @return the handle; null when there is none. It works on while somebody closes it.
    std::shared_ptr<const RioHandle> find(std::int32_t number) const;
    /// @return whether there was one.
    bool remove(std::int32_t number);

private:
    mutable std::mutex m_mutex;
    std::map<std::int32_t, std::shared_ptr<const RioHandle>> m_handles;
    std::uint32_t m_last = 0;
};

} // namespace dorn::board
