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

class AbstractRouterDualBitMapBif : public AbstractBaseBif {
public:
    /// @return the id of the new dual bit map
    virtual std::uint32_t createDualBitMap(const std::uint32_t& virtualChannels, const std::uint32_t& bitMap1Repeat,
                                           const std::string& bitMap1, const std::string& bitMap2) = 0;
    virtual std::uint32_t createDualBitMap() = 0;
    virtual void deleteDualBitMap(std::uint32_t id) = 0;
    virtual void setVirtualChannels(std::uint32_t id, const std::uint32_t& virtualChannels) = 0;
    virtual std::uint32_t getVirtualChannels(std::uint32_t id) = 0;
    virtual void setBitMap1Repeat(std::uint32_t id, const std::uint32_t& bitMap1Repeat) = 0;
    virtual std::uint32_t getBitMap1Repeat(std::uint32_t id) = 0;
    virtual void setBitMap1(std::uint32_t id, const std::string& bitMap1) = 0;
    virtual void getBitMap1(std::uint32_t id, std::string& bitMap1) = 0;
    virtual void setBitMap2(std::uint32_t id, const std::string& bitMap2) = 0;
    virtual void getBitMap2(std::uint32_t id, std::string& bitMap2) = 0;

protected:
    AbstractRouterDualBitMapBif() = default;
    /// Same: without events, there is nothing for the worker to do.
    explicit AbstractRouterDualBitMapBif(AbstractWorker& /*worker*/) {}
};

} // namespace vel::hwapi::common::bif::baseband::router
