// SPDX-License-Identifier: MIT
#include "SoftwarePll.hpp"

#include <array>
#include <cmath>
#include <limits>

namespace dorn::examples {

using namespace vel::hwapi::common::bif::swpllstatemonitor;

namespace {

constexpr double measuringSeconds = 8;
constexpr double clockPeriod = 1000 / 30.72; // nanoseconds
constexpr std::uint32_t goodSamplesToGoOn = 5;
constexpr double holdoverLimit = 2000; // nanoseconds

/// How a state follows the reference.
struct Loop {
    double naturalFrequency; ///< radians a second
    double goodWithin;       ///< nanoseconds
    double badBeyond;        ///< nanoseconds
    ESwPllState next;
    ESwPllState previous;
};

constexpr std::array loops{
    Loop{0.3, 100, holdoverLimit, ESwPllState_TrackMed, ESwPllState_Acquire1},                            // Acquire3
    Loop{0.1, 50, 500, ESwPllState_TrackMax, ESwPllState_Acquire3},                                       // TrackMed
    Loop{0.04, std::numeric_limits<double>::infinity(), 100, ESwPllState_TrackMax, ESwPllState_TrackMed}, // TrackMax
};

} // namespace

PllCorrection SoftwarePll::step(const PllSample& sample)
{
    if (!sample.hasReference) {
        loseReference();
        return {m_frequency, 0};
    }
    double phase = 0;
    switch (m_state) {
    case ESwPllState_Acquire0:
        if (sample.isOscillatorReady) {
            beginAt(ESwPllState_Acquire1);
        }
        break;
    case ESwPllState_Acquire1:
        measureFrequency(sample);
        break;
    case ESwPllState_Acquire2:
        phase = setClock(sample.phaseError);
        break;
    case ESwPllState_Holdover:
        beginAt(std::fabs(sample.phaseError) > holdoverLimit ? ESwPllState_Acquire1 : ESwPllState_Acquire3);
        break;
    default:
        follow(sample);
        break;
    }
    return {m_frequency, phase};
}

bool SoftwarePll::isTracking() const
{
    return m_state == ESwPllState_TrackMed || m_state == ESwPllState_TrackMax;
}

double SoftwarePll::secondsToNextStep() const
{
    return m_state == ESwPllState_TrackMax || m_state == ESwPllState_Holdover ? 10 : 1;
}

void SoftwarePll::loseReference()
{
    if (isTracking()) {
        m_frequency = m_followedFrequency;
        m_state = ESwPllState_Holdover;
    } else if (m_state != ESwPllState_Holdover) {
        m_state = ESwPllState_Acquire0;
    }
}

void SoftwarePll::beginAt(ESwPllState state)
{
    m_state = state;
    m_goodSamples = 0;
    m_measuredSeconds = -1;
}

void SoftwarePll::measureFrequency(const PllSample& sample)
{
    if (m_measuredSeconds < 0) {
        m_firstPhaseError = sample.phaseError;
        m_measuredSeconds = 0;
        return;
    }
    m_measuredSeconds += sample.seconds;
    if (m_measuredSeconds >= measuringSeconds) {
        m_frequency -= (sample.phaseError - m_firstPhaseError) / m_measuredSeconds; // ns a second are ppb
        m_state = ESwPllState_Acquire2;
    }
}

double SoftwarePll::setClock(double phaseError)
{
    m_followedFrequency = m_frequency;
    beginAt(ESwPllState_Acquire3);
    return std::round(phaseError / clockPeriod) * clockPeriod;
}

void SoftwarePll::follow(const PllSample& sample)
{
    const Loop& loop = loops[m_state - ESwPllState_Acquire3];
    const double proportional = 2 * loop.naturalFrequency;
    const double integral = loop.naturalFrequency * loop.naturalFrequency;
    m_followedFrequency -= integral * sample.phaseError * sample.seconds;
    m_frequency = m_followedFrequency - proportional * sample.phaseError;
    const double error = std::fabs(sample.phaseError);
    if (error > loop.badBeyond) {
        beginAt(loop.previous);
        return;
    }
    m_goodSamples = error <= loop.goodWithin ? m_goodSamples + 1 : 0;
    if (m_goodSamples >= goodSamplesToGoOn && loop.next != m_state) {
        beginAt(loop.next);
    }
}

} // namespace dorn::examples
