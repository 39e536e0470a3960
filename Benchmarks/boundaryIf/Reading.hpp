// SPDX-License-Identifier: MIT
/// @file Reading.hpp
/// What the measured events tell: a value class as interfaces have them.
#pragma once

#include <cstdint>

namespace dorn::benchmarks {

class Reading {
public:
    Reading() = default;
    explicit Reading(std::int64_t value) : m_value(value) {}
    Reading(const Reading&) = default;
    Reading& operator=(const Reading&) = default;
    virtual ~Reading() = default;

    std::int64_t getValue() const { return m_value; }

private:
    std::int64_t m_value = 0;
};

} // namespace dorn::benchmarks
