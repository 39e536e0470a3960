// SPDX-License-Identifier: MIT
#include "CpriLinkModel.hpp"

#include "Fibre.hpp"

#include <tuple>

namespace dorn::examples {

bool CpriLinkModel::step()
{
    const auto snapshot = [this] {
        return std::tuple(m_near.state(), m_near.hasLostSignal(), m_far.state(), m_far.hasLostSignal(), m_heard,
                          m_hasHeard, m_farBytes, m_receivedBytes);
    };
    const auto before = snapshot();
    const std::uint32_t signals = farSignals();
    const CpriControlBytes farBytes = m_farBytes;
    m_far.step(m_isEnabled && isWhole(ELinkPart_Transmit), true);
    m_near.step(m_isEnabled && isWhole(ELinkPart_Receive), isWhole(ELinkPart_Framing));
    if (m_far.isSynchronised()) {
        m_farBytes = m_sentBytes;
    }
    m_heard = m_near.isSynchronised() ? signals : 0;
    if (m_near.isSynchronised()) {
        m_hasHeard = true;
        m_receivedBytes = farBytes;
    }
    return snapshot() != before;
}

void CpriLinkModel::setSending(std::uint32_t signals, bool isSending)
{
    m_sending = isSending ? m_sending | signals : m_sending & ~signals;
}

std::int32_t CpriLinkModel::roundTrip() const
{
    return static_cast<std::int32_t>(fibreDelay(2 * m_metres));
}

/// What the far end sends in Z.130.0.
std::uint32_t CpriLinkModel::farSignals() const
{
    std::uint32_t signals = 0;
    if (m_far.hasLostSignal()) {
        signals |= ECpriSignal_Los | ECpriSignal_Rai;
    }
    if (m_far.hasLostFrame()) {
        signals |= ECpriSignal_Lof | ECpriSignal_Rai;
    }
    if (m_far.isSynchronised() && isSending(ECpriSignal_Reset)) {
        signals |= ECpriSignal_Reset | ECpriSignal_Sdi; // being reset, it has no payload to be used
    }
    return signals;
}

} // namespace dorn::examples
