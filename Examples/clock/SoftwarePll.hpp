// SPDX-License-Identifier: MIT
/// @file SoftwarePll.hpp
/// The software phase-locked loop that has the board's clock follow its reference.
#pragma once

#include "boundaryIf/swpllstatemonitor/SwPllTypes.hpp"

#include <cstdint>

namespace dorn::examples {

/// What the loop measures at a step.
struct PllSample {
    bool hasReference = false;
    bool isOscillatorReady = false; ///< its oven is warm
    double phaseError = 0;          ///< nanoseconds that the clock is ahead of the reference; nothing without one
    double seconds = 1;             ///< since the step before
};

/// What the loop does about it.
struct PllCorrection {
    double frequency = 0; ///< ppb by which the oscillator is to be pulled from its calibrated frequency
    double phase = 0;     ///< nanoseconds that the clock is to be set back at once; whole periods of 30.72 MHz
};

/// State by state:
///
/// | State | What it does | It goes on |
/// |---|---|---|
/// | Acquire0 | waits | when there is a reference and the oscillator is ready |
/// | Acquire1 | measures the frequency error for 8 seconds | with the frequency set right |
/// | Acquire2 | sets the clock, to the nearest period | at once |
/// | Acquire3 | follows, natural frequency 0.3 rad/s | after 5 samples within 100 ns |
/// | TrackMed | follows, 0.1 rad/s | after 5 samples within 50 ns |
/// | TrackMax | follows, 0.04 rad/s | |
/// | Holdover | keeps the frequency that it followed last | when the reference is back: to Acquire3 |
///
/// A phase error beyond 100 ns leads back from TrackMax to TrackMed, one beyond 500 ns from TrackMed to Acquire3, one
/// beyond 2000 ns from Acquire3 or Holdover to Acquire1. Without reference the tracking states go to Holdover and the
/// acquiring ones to Acquire0. The loop is of second order and critically damped.
class SoftwarePll {
public:
    using State = vel::hwapi::common::bif::swpllstatemonitor::ESwPllState;

    /// Takes a sample. @return what to do from now on
    PllCorrection step(const PllSample& sample);

    State state() const { return m_state; }
    bool isTracking() const;
    /// How long the loop wants to wait for its next sample: the narrower, the longer.
    double secondsToNextStep() const;

private:
    void loseReference();
    double setClock(double phaseError);
    void beginAt(State state);
    void measureFrequency(const PllSample& sample);
    void follow(const PllSample& sample);

    State m_state = vel::hwapi::common::bif::swpllstatemonitor::ESwPllState_Acquire0;
    double m_frequency = 0;         ///< ppb, in use
    double m_followedFrequency = 0; ///< ppb, the loop's integral part
    double m_firstPhaseError = 0;   ///< Acquire1 began with it
    double m_measuredSeconds = -1;  ///< of Acquire1; negative before its first sample
    std::uint32_t m_goodSamples = 0;
};

} // namespace dorn::examples
