// SPDX-License-Identifier: MIT
/// @file AbstractRouterDualBitMapBif.hpp
/// Dual bit maps of the message router: which message slots the virtual channels of a route may use. Bit map 1 is
/// repeated a number of times, then bit map 2 is used once. Has no events.
///
/// Bit maps are texts; what they look like is the driver's.
#pragma once

#include "AbstractWorker.hpp"
#include "boundaryIf/AbstractBaseBif.hpp"

#include <cstdint>
#include <string>

namespace vel::hwapi::common::bif::baseband::router {

/// What a driver of the message router offers for dual bit maps; it raises no events.
class AbstractRouterDualBitMapBif : public AbstractBaseBif {
public:
    /// @return the id of the new dual bit map
    virtual std::uint32_t createDualBitMap(const std::uint32_t& virtualChannels, const std::uint32_t& bitMap1Repeat,
                                           const std::string& bitMap1, const std::string& bitMap2) = 0;
    /// @return the id of a new dual bit map whose values are still to be set
    virtual std::uint32_t createDualBitMap() = 0;
    /// Ends the dual bit map; its id is not valid any more.
    virtual void deleteDualBitMap(std::uint32_t id) = 0;
    /// @{
    /// The virtual channels whose message slots it shares out.
    virtual void setVirtualChannels(std::uint32_t id, const std::uint32_t& virtualChannels) = 0;
    virtual std::uint32_t getVirtualChannels(std::uint32_t id) = 0;
    /// @}

    /// @{
    /// How often bit map 1 is repeated before bit map 2 is used once.
    virtual void setBitMap1Repeat(std::uint32_t id, const std::uint32_t& bitMap1Repeat) = 0;
    virtual std::uint32_t getBitMap1Repeat(std::uint32_t id) = 0;
    /// @}

    /// @{
    /// Bit map 1, as the driver writes it.
    virtual void setBitMap1(std::uint32_t id, const std::string& bitMap1) = 0;
    virtual void getBitMap1(std::uint32_t id, std::string& bitMap1) = 0;
    /// @}

    /// @{
    /// Bit map 2, as the driver writes it.
    virtual void setBitMap2(std::uint32_t id, const std::string& bitMap2) = 0;
    virtual void getBitMap2(std::uint32_t id, std::string& bitMap2) = 0;
    /// @}

protected:
    AbstractRouterDualBitMapBif() = default;
    /// Same: without events, there is nothing for the worker to do.
    explicit AbstractRouterDualBitMapBif(AbstractWorker& /*worker*/) {}
};

} // namespace vel::hwapi::common::bif::baseband::router
