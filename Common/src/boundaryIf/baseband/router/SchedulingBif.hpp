// SPDX-License-Identifier: MIT
/// @file SchedulingBif.hpp
/// When a route may send on its output: every modulo-th message slot, beginning with the index-th. Each value is
/// optional: it counts once it has been set.
#pragma once

#include "boundaryIf/baseband/router/OptionalField.hpp"
#include "boundaryIf/baseband/router/RouterTypes.hpp"

namespace vel::hwapi::common::bif::baseband::router {

/// When a route may send; a field counts once it is set.
class SchedulingBif {
public:
    /// @{
    /// Every how many message slots the route may send.
    void SetModulo(std::uint32_t value) { setField(m_modulo, m_modulo_set, value); }
    std::uint32_t GetModulo() const { return m_modulo; }
    bool IsSetModulo() const { return m_modulo_set; }
    /// @}

    /// @{
    /// Which of them is the first, below the modulo.
    void SetIndex(std::uint32_t value) { setField(m_index, m_index_set, value); }
    std::uint32_t GetIndex() const { return m_index; }
    bool IsSetIndex() const { return m_index_set; }
    /// @}

    /// @{
    /// Whether data or control slots are used.
    void SetDestSlot(EMessageSlot value) { setField(m_destSlot, m_destSlot_set, value); }
    EMessageSlot GetDestSlot() const { return m_destSlot; }
    bool IsSetDestSlot() const { return m_destSlot_set; }
    /// @}

    /// @{
    /// The time stamp that messages are sent with.
    void SetTimeStamp(std::uint32_t value) { setField(m_timeStamp, m_timeStamp_set, value); }
    std::uint32_t GetTimeStamp() const { return m_timeStamp; }
    bool IsSetTimeStamp() const { return m_timeStamp_set; }
    /// @}

    /// @{
    /// The virtual channel that the route uses.
    void SetChannel(std::uint32_t value) { setField(m_channel, m_channel_set, value); }
    std::uint32_t GetChannel() const { return m_channel; }
    bool IsSetChannel() const { return m_channel_set; }
    /// @}

    /// @{
    /// The dual bit map that shares out the slots, by the id that createDualBitMap() has returned.
    void SetDualBitMapId(std::uint32_t value) { setField(m_dualBitMapId, m_dualBitMapId_set, value); }
    std::uint32_t GetDualBitMapId() const { return m_dualBitMapId; }
    bool IsSetDualBitMapId() const { return m_dualBitMapId_set; }
    /// @}

private:
    std::uint32_t m_modulo = 0;
    std::uint32_t m_index = 0;
    EMessageSlot m_destSlot = EMessageSlot_Data;
    std::uint32_t m_timeStamp = 0;
    std::uint32_t m_channel = 0;
    std::uint32_t m_dualBitMapId = 0;
    bool m_modulo_set = false;
    bool m_index_set = false;
    bool m_destSlot_set = false;
    bool m_timeStamp_set = false;
    bool m_channel_set = false;
    bool m_dualBitMapId_set = false;
};

} // namespace vel::hwapi::common::bif::baseband::router
