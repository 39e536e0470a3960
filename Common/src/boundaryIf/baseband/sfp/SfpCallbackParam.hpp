// SPDX-License-Identifier: MIT
/// @file SfpCallbackParam.hpp
/// What an SFP event tells: whether a transceiver module has come or gone, and which link its cage serves.
#pragma once

#include "boundaryIf/CallbackParam.hpp"

#include <cstdint>

namespace vel::hwapi::common::bif::baseband::sfp {

class SfpCallbackParam : public CallbackParam {
public:
    SfpCallbackParam() = default;
    SfpCallbackParam(bool detected, std::uint32_t physicalLinkId)
        : m_detected(detected), m_physicalLinkId(physicalLinkId)
    {
    }

    bool isDetected() const { return m_detected; }
    void setDetected() { m_detected = true; }
    void setUndetected() { m_detected = false; }

    std::uint32_t getPhysicalLinkId() const { return m_physicalLinkId; }
    void setPhysicalLinkId(std::uint32_t physicalLinkId) { m_physicalLinkId = physicalLinkId; }

    bool operator==(const SfpCallbackParam&) const = default;

private:
    bool m_detected = false;
    std::uint32_t m_physicalLinkId = 0;
};

} // namespace vel::hwapi::common::bif::baseband::sfp
