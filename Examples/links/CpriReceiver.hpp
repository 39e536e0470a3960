// SPDX-License-Identifier: MIT
/// @file CpriReceiver.hpp
/// How the receiver of a CPRI link comes into synchronisation.
#pragma once

#include "boundaryIf/baseband/cpri/CpriTypes.hpp"

namespace dorn::examples {

/// Layer 1 synchronisation, a state a step.
///
/// A hyperframe in which the synchronisation byte stands where it belongs leads upwards: XACQ1, XACQ2, XSYNC1, XSYNC2,
/// HFNSYNC; the last step also takes the hyperframe's number to be the next one. A hyperframe without leads down, from
/// the synchronised states to XSYNC1 and from there to XACQ1, so that one that is lost does not lose the frame but two
/// in a row do. Without light the receiver is in XACQ1 at once.
///
/// LOS, loss of signal: there is no light. LOF, loss of frame: XACQ1 and XACQ2.
class CpriReceiver {
public:
    using State = vel::hwapi::common::bif::baseband::cpri::ERxLinkState;

    /// Lets a step pass. @param hasFrames whether hyperframes are made out in the light
    void step(bool hasLight, bool hasFrames);

    State state() const { return m_state; }
    bool isSynchronised() const;
    bool hasLostSignal() const { return !m_hasLight; }
    bool hasLostFrame() const;

private:
    State m_state = vel::hwapi::common::bif::baseband::cpri::ERxLinkState_XACQ1;
    bool m_hasLight = false;
};

} // namespace dorn::examples
