// SPDX-License-Identifier: MIT
/// @file RandomNumbers.hpp
/// Numbers that look random and are the same on every machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace dorn::testkit {

/// A sequence of numbers that its seed determines. The distributions of the standard library differ from one
/// implementation to the next; these do not.
class RandomNumbers {
public:
    /// The same seed gives the same sequence on every machine.
    explicit RandomNumbers(std::uint64_t seed) : m_state(seed) {}

    /// The next of the sequence, any 64 bits. A counter in steps of the golden ratio, its bits stirred.
    std::uint64_t next()
    {
        m_state += 0x9E3779B97F4A7C15U;
        std::uint64_t bits = m_state;
        bits = (bits ^ bits >> 30U) * 0xBF58476D1CE4E5B9U;
        bits = (bits ^ bits >> 27U) * 0x94D049BB133111EBU;
        return bits ^ bits >> 31U;
    }

    /// A number from 0 to @p limit - 1; 0 for the limit 0.
    std::uint64_t below(std::uint64_t limit) { return limit == 0 ? 0 : next() % limit; }
    /// A number around @p average: from 0 to twice as much.
    std::uint64_t around(std::uint64_t average) { return below(2 * average + 1); }
    /// True in one of @p count cases.
    bool oneIn(std::uint64_t count) { return below(count) == 0; }
    /// A number from 0 to less than 1.
    double fraction() { return static_cast<double>(next() >> 11U) / 9007199254740992.0; }

    /// One of them.
    template <class T>
    const T& oneOf(std::span<const T> choice)
    {
        return choice[static_cast<std::size_t>(below(choice.size()))];
    }

private:
    std::uint64_t m_state;
};

} // namespace dorn::testkit
