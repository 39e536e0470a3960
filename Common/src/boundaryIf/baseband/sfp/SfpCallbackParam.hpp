// SPDX-License-Identifier: MIT
/// @file SfpCallbackParam.hpp
/// What an SFP event tells: whether a transceiver module has come or gone, and which link its cage serves.
#pragma once

#include "boundaryIf/CallbackParam.hpp"

#include <cstdint>

namespace vel::hwapi::common::bif::baseband::sfp {

/// What has happened at an SFP cage.
class SfpCallbackParam : public CallbackParam {
public:
    SfpCallbackParam() = default;
    /// Has every field set.
    SfpCallbackParam(bool detected, std::uint32_t physicalLinkId)
        : m_detected(detected), m_physicalLinkId(physicalLinkId)
    {
    }

    /// @{
    /// Whether a module is plugged now.
    bool isDetected() const { return m_detected; }
    void setDetected() { m_detected = true; }
    void setUndetected() { m_detected = false; }
    /// @}

    /// @{
    /// The link behind the cage; AbstractSfpBif::UNKNOWN_PHYSICAL_LINK_ID when it has none.
    std::uint32_t getPhysicalLinkId() const { return m_physicalLinkId; }
    void setPhysicalLinkId(std::uint32_t physicalLinkId) { m_physicalLinkId = physicalLinkId; }
    /// @}

    bool operator==(const SfpCallbackParam&) const = default;

private:
    bool m_detected = false;
    std::uint32_t m_physicalLinkId = 0;
};

} // namespace vel::hwapi::common::bif::baseband::sfp
