// SPDX-License-Identifier: MIT
#include "CpriReceiver.hpp"

#include <array>

namespace dorn::examples {

using namespace vel::hwapi::common::bif::baseband::cpri;

namespace {

struct Transition {
    ERxLinkState withFrame;
    ERxLinkState withoutFrame;
};

/// By state.
constexpr std::array transitions{
    Transition{ERxLinkState_XACQ2, ERxLinkState_XACQ1},    // XACQ1
    Transition{ERxLinkState_XSYNC1, ERxLinkState_XACQ1},   // XACQ2
    Transition{ERxLinkState_XSYNC2, ERxLinkState_XACQ1},   // XSYNC1
    Transition{ERxLinkState_HFNSYNC, ERxLinkState_XSYNC1}, // XSYNC2
    Transition{ERxLinkState_HFNSYNC, ERxLinkState_XSYNC1}, // HFNSYNC
};
static_assert(transitions.size() == ERxLinkState_HFNSYNC + 1);

} // namespace

void CpriReceiver::step(bool hasLight, bool hasFrames)
{
    m_hasLight = hasLight;
    if (!hasLight) {
        m_state = ERxLinkState_XACQ1;
        return;
    }
    const Transition& transition = transitions[m_state];
    m_state = hasFrames ? transition.withFrame : transition.withoutFrame;
}

bool CpriReceiver::isSynchronised() const
{
    return m_state == ERxLinkState_HFNSYNC;
}

bool CpriReceiver::hasLostFrame() const
{
    return m_state == ERxLinkState_XACQ1 || m_state == ERxLinkState_XACQ2;
}

} // namespace dorn::examples
