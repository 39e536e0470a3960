// SPDX-License-Identifier: MIT
/// @file BifRouteStats.hpp
/// Statistics of a route. Each value is optional: it counts once it has been set.
#pragma once

#include "boundaryIf/baseband/AbstractBasebandLink.hpp"
#include "boundaryIf/baseband/router/OptionalField.hpp"

#include <cstdint>

namespace vel::hwapi::common::bif::baseband::router {

/// What has been measured on a route; a field counts once it is set.
class BifRouteStats {
public:
    /// @{
    /// Latency of messages from the input link, in the driver's unit.
    void SetMsgLatency(std::uint32_t value) { setField(m_msgLatency, m_msgLatency_set, value); }
    std::uint32_t GetMsgLatency() const { return m_msgLatency; }
    bool IsSetMsgLatency() const { return m_msgLatency_set; }
    /// @}

    /// @{
    /// The least fill level of the route's buffer that the measurement saw.
    void SetMinBufferFillLevel(std::uint32_t value) { setField(m_minBufferFillLevel, m_minBufferFillLevel_set, value); }
    std::uint32_t GetMinBufferFillLevel() const { return m_minBufferFillLevel; }
    bool IsSetMinBufferFillLevel() const { return m_minBufferFillLevel_set; }
    /// @}

    /// @{
    /// The greatest fill level of the route's buffer that the measurement saw.
    void SetMaxBufferFillLevel(std::uint32_t value) { setField(m_maxBufferFillLevel, m_maxBufferFillLevel_set, value); }
    std::uint32_t GetMaxBufferFillLevel() const { return m_maxBufferFillLevel; }
    bool IsSetMaxBufferFillLevel() const { return m_maxBufferFillLevel_set; }
    /// @}

    /// @{
    /// The input link that the message latency was measured from; stays the one's who set it.
    void SetInputLink(const AbstractBasebandLink* value) { setField(m_inputLink, m_inputLink_set, value); }
    const AbstractBasebandLink* GetInputLink() const { return m_inputLink; }
    bool IsSetInputLink() const { return m_inputLink_set; }
    /// @}

    /// Compares values and what is set; the input links are equal only when they are the same object.
    bool operator==(const BifRouteStats&) const = default;

private:
    std::uint32_t m_msgLatency = 0;
    std::uint32_t m_minBufferFillLevel = 0;
    std::uint32_t m_maxBufferFillLevel = 0;
    const AbstractBasebandLink* m_inputLink = nullptr; ///< not owned
    bool m_msgLatency_set = false;
    bool m_minBufferFillLevel_set = false;
    bool m_maxBufferFillLevel_set = false;
    bool m_inputLink_set = false;
};

} // namespace vel::hwapi::common::bif::baseband::router
