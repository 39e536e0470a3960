// SPDX-License-Identifier: MIT
/// @file AbstractSfpBif.hpp
/// The cages for SFP transceiver modules.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/baseband/sfp/SfpCallbackParam.hpp"
#include "boundaryIf/baseband/sfp/SfpTypes.hpp"

#include <vector>

namespace vel::hwapi::common::bif::baseband::sfp {

/// What a driver of SFP cages offers.
class AbstractSfpBif : public AbstractBif<SfpCallbackParam> {
public:
    /// Takes SFP events; derived from by clients.
    class AbstractSfpCallback : public CallbackFunctor {};

    /// The physical link id of a module without a link.
    static constexpr std::uint32_t UNKNOWN_PHYSICAL_LINK_ID = 0xFF;

    /// A module has been plugged or pulled.
    [[gnu::init_priority(101)]] inline static const std::string SFP_EVENT_NAME = "SfpEvent";

    /// Registers who is told when a module is plugged or pulled; the callback stays the caller's and must outlive the
    /// interface.
    virtual void setSfpCallback(AbstractSfpCallback* callback) { addCallback(SFP_EVENT_NAME, callback); }
    /// @return UNKNOWN_PHYSICAL_LINK_ID when the module has no link
    virtual std::uint32_t getPhysicalLinkId(TSfpModuleId moduleId) = 0;
    /// Fills @p moduleIds with the ids of all cages, also of empty ones.
    virtual void getSfpModuleIds(std::vector<std::uint32_t>& moduleIds) = 0;

protected:
    AbstractSfpBif() = default;
    /// From initialize() on events go through @p worker, which stays the caller's.
    explicit AbstractSfpBif(AbstractWorker& worker) : AbstractBif(worker) {}

    /// Raises #SFP_EVENT_NAME.
    virtual void callSfpCallback(SfpCallbackParam& parameter) { callCallback(SFP_EVENT_NAME, parameter); }
};

} // namespace vel::hwapi::common::bif::baseband::sfp
