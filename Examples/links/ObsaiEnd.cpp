// SPDX-License-Identifier: MIT
#include "ObsaiEnd.hpp"

#include <array>

namespace dorn::examples {

using namespace vel::hwapi::common::bif::baseband::obsai;

namespace {

/// What the receiver does with what it hears in a state.
struct Awaited {
    ETxLinkState least; ///< less: the other end has begun anew, or is gone
    ETxLinkState first; ///< leads on to the next state, up to the last
    ETxLinkState last;
    ERxLinkState next;
};

/// By state.
constexpr std::array awaitedIn{
    Awaited{ETxLinkState_IdleReq, ETxLinkState_IdleReq, ETxLinkState_Frame, ERxLinkState_WaitForSeed},
    Awaited{ETxLinkState_IdleReq, ETxLinkState_IdleReq, ETxLinkState_IdleAck, ERxLinkState_WaitForAck},
    Awaited{ETxLinkState_IdleReq, ETxLinkState_IdleAck, ETxLinkState_Frame, ERxLinkState_WaitForIdle},
    Awaited{ETxLinkState_IdleAck, ETxLinkState_Idle, ETxLinkState_Frame, ERxLinkState_WaitForFrame},
    Awaited{ETxLinkState_Idle, ETxLinkState_Frame, ETxLinkState_Frame, ERxLinkState_Frame},
    Awaited{ETxLinkState_Frame, ETxLinkState_Frame, ETxLinkState_Frame, ERxLinkState_Frame},
};
static_assert(awaitedIn.size() == ERxLinkState_Frame + 1);

} // namespace

void ObsaiEnd::setEnabled(bool isEnabled)
{
    m_isEnabled = isEnabled;
    if (!isEnabled) {
        m_rx = ERxLinkState_Unsync;
        m_tx = ETxLinkState_Off;
    }
}

void ObsaiEnd::step(ETxLinkState heard)
{
    if (!m_isEnabled) {
        return;
    }
    if (heard == ETxLinkState_Off) {
        m_rx = ERxLinkState_Unsync;
    }
    if (m_mode == ELinkAutoSynchronizationMode_Disabled) {
        return;
    }
    m_rx = nextRx(heard);
    m_tx = nextTx(heard);
}

ERxLinkState ObsaiEnd::nextRx(ETxLinkState heard) const
{
    const Awaited& awaited = awaitedIn[m_rx];
    if (heard < awaited.least) {
        return ERxLinkState_Unsync;
    }
    return heard >= awaited.first && heard <= awaited.last ? awaited.next : m_rx;
}

ETxLinkState ObsaiEnd::nextTx(ETxLinkState heard) const
{
    if (m_tx == ETxLinkState_Off || m_rx == ERxLinkState_Unsync) {
        const bool isToBegin = m_mode == ELinkAutoSynchronizationMode_Master || heard != ETxLinkState_Off;
        return isToBegin ? ETxLinkState_IdleReq : ETxLinkState_Off;
    }
    if (m_rx == ERxLinkState_WaitForSeed) {
        return ETxLinkState_IdleReq;
    }
    switch (m_tx) {
    case ETxLinkState_IdleReq:
        return m_rx >= ERxLinkState_WaitForAck ? ETxLinkState_IdleAck : m_tx;
    case ETxLinkState_IdleAck:
        return m_rx >= ERxLinkState_WaitForIdle ? ETxLinkState_Idle : m_tx;
    case ETxLinkState_Idle:
        return m_rx >= ERxLinkState_WaitForFrame ? ETxLinkState_Frame : m_tx;
    default:
        return m_tx;
    }
}

} // namespace dorn::examples
