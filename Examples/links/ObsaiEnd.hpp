// SPDX-License-Identifier: MIT
/// @file ObsaiEnd.hpp
/// How one end of an OBSAI link comes into synchronisation with the other.
#pragma once

#include "boundaryIf/baseband/obsai/ObsaiTypes.hpp"

namespace dorn::examples {

/// Transmitter and receiver of one end, a state a step.
///
/// The receiver goes on when it hears from the other end what it waits for:
///
///     Unsync ---anything---> WaitForSeed ---IdleReq or IdleAck---> WaitForAck ---IdleAck or more---> WaitForIdle
///         ---Idle or more---> WaitForFrame ---Frame---> Frame
///
/// and is Unsync at once when it hears less than what brought it where it is: nothing, or an end that has begun anew.
/// The transmitter follows its own receiver:
///
///     Off ---master: at once; slave: anything is heard---> IdleReq ---seed received---> IdleAck
///         ---acknowledgement received---> Idle ---idles received---> Frame
///
/// and begins anew while the receiver is Unsync or waits for the seed. With automatic synchronisation disabled nothing
/// of this moves by itself, except that a receiver which hears nothing is Unsync.
class ObsaiEnd {
public:
    using RxState = vel::hwapi::common::bif::baseband::obsai::ERxLinkState;
    using TxState = vel::hwapi::common::bif::baseband::obsai::ETxLinkState;
    using Mode = vel::hwapi::common::bif::baseband::obsai::ELinkAutoSynchronizationMode;

    explicit ObsaiEnd(Mode mode) : m_mode(mode) {}

    /// Lets a step pass. @param heard what arrives from the other end; ETxLinkState_Off for nothing
    void step(TxState heard);

    /// Switches the end on, or off, which ends both states.
    void setEnabled(bool isEnabled);
    bool isEnabled() const { return m_isEnabled; }
    void setMode(Mode mode) { m_mode = mode; }
    Mode mode() const { return m_mode; }
    void setRxState(RxState state) { m_rx = state; }
    RxState rxState() const { return m_rx; }
    void setTxState(TxState state) { m_tx = state; }
    TxState txState() const { return m_tx; }

    bool operator==(const ObsaiEnd&) const = default;

private:
    RxState nextRx(TxState heard) const;
    TxState nextTx(TxState heard) const;

    Mode m_mode;
    bool m_isEnabled = false;
    RxState m_rx = vel::hwapi::common::bif::baseband::obsai::ERxLinkState_Unsync;
    TxState m_tx = vel::hwapi::common::bif::baseband::obsai::ETxLinkState_Off;
};

} // namespace dorn::examples
