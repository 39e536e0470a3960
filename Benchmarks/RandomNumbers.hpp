// SPDX-License-Identifier: MIT
/// @file RandomNumbers.hpp
/// Numbers in no order that are the same in every run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace dorn::benchmarks {

/// A linear congruential generator; its high bits are the good ones.
class RandomNumbers {
public:
    std::uint32_t next() { return m_state = m_state * 1'664'525U + 1'013'904'223U; }

private:
    std::uint32_t m_state = 1;
};

inline std::string randomBytes(std::size_t size)
{
    RandomNumbers numbers;
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(numbers.next() >> 24);
    }
    return bytes;
}

} // namespace dorn::benchmarks
