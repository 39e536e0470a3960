// SPDX-License-Identifier: MIT
/// @file OcxoModel.hpp
/// What an oven-controlled crystal oscillator does.
#pragma once

#include <array>
#include <cstdint>

namespace dorn::examples {

/// A crystal in an oven in an outer oven. Its frequency is off by
///
/// - what it was off in the factory, and what it has aged since and ages on;
/// - a warm-up part that dies away within an hour after power-on;
/// - a part for every degree that the oven lacks, large while the oven heats up;
/// - a polynomial of the case's temperature, which follows the air's slowly;
/// - what its DAC pulls it by.
///
/// Frequencies are in parts per billion (ppb), positive when the clock is fast; temperatures in degrees Celsius.
class OcxoModel {
public:
    /// The DAC: 16 bits, the middle pulls nothing.
    static constexpr std::int32_t greatestControlValue = 0xFFFF;
    static constexpr std::int32_t middleControlValue = 0x8000;
    static constexpr double pullPerStep = 0.01; ///< ppb that one step of the control value adds

    /// The factory's calibration: with this control value the frequency was right.
    static constexpr std::int32_t factoryControlValue = middleControlValue - 1500;

    /// Coefficients of the ppb by which the case's temperature less 25 puts the frequency off, the constant one first.
    static constexpr std::array<double, 4> thermalCoefficients{0.0, 0.05, -0.0004, 0.000002};

    static constexpr double ovenSetPoint = 85;
    static constexpr double outerOvenSetPoint = 60;

    /// Cold, at power-on. @param air temperature of the air
    explicit OcxoModel(double air = 25);

    /// Lets time pass. @param air temperature of the air around the oscillator
    void step(double seconds, double air);

    /// @param value 0 to greatestControlValue
    void setControlValue(std::int32_t value) { m_controlValue = value; }
    std::int32_t controlValue() const { return m_controlValue; }
    /// Has the crystal's frequency jump by so many ppb, for good.
    void jump(double ppb) { m_offset += ppb; }

    double frequencyError() const; ///< ppb
    double ovenTemperature() const { return m_oven; }
    double outerOvenTemperature() const { return m_outerOven; }
    double ovenCurrent() const; ///< milliamperes
    /// Whether the oven has all but reached its set point, so that the frequency is worth being followed.
    bool isWarm() const { return m_oven > ovenSetPoint - 1; }

private:
    double thermalError() const;

    double m_offset;
    double m_seconds = 0; ///< since power-on
    double m_air;
    double m_case;
    double m_outerOven;
    double m_oven;
    std::int32_t m_controlValue = factoryControlValue;
};

} // namespace dorn::examples
