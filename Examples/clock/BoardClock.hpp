// SPDX-License-Identifier: MIT
/// @file BoardClock.hpp
/// The board's clock hardware: the oscillator, the time that it counts, and the reference beside it.
#pragma once

#include "OcxoModel.hpp"

#include <cstdint>

namespace dorn::examples {

/// The reference is right but for a few nanoseconds of noise, the same in every run. The board's time runs with the
/// oscillator's frequency: a ppb that it is fast puts it a nanosecond ahead each second.
class BoardClock {
public:
    /// Lets time pass. @param air degrees Celsius around the oscillator
    void step(double seconds, double air);

    OcxoModel& ocxo() { return m_ocxo; }
    const OcxoModel& ocxo() const { return m_ocxo; }

    /// Nanoseconds that the board's time is ahead.
    double timeError() const { return m_timeError; }
    /// Sets the board's time back, or forward by a negative number.
    void setBack(double nanoseconds) { m_timeError -= nanoseconds; }
    /// What a phase detector finds: the time error less the reference's noise.
    double measurePhase();

    void setReference(bool isThere) { m_hasReference = isThere; }
    bool hasReference() const { return m_hasReference; }
    void setSensors(bool areThere) { m_hasSensors = areThere; }
    bool hasSensors() const { return m_hasSensors; }

    /// Seconds since power-on.
    double uptime() const { return m_uptime; }

private:
    OcxoModel m_ocxo;
    double m_timeError = 1000; ///< wherever the counter happened to be at power-on
    double m_uptime = 0;
    std::uint32_t m_noise = 1;
    bool m_hasReference = true;
    bool m_hasSensors = true;
};

} // namespace dorn::examples
