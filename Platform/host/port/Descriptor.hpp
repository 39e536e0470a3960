// SPDX-License-Identifier: MIT
/// @file Descriptor.hpp
/// An open file that closes itself.
#pragma once

#include <unistd.h>
#include <utility>

namespace dorn::host {

/// Owns a file descriptor; negative when it owns none.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int value) : m_value(value) {}
    ~Descriptor() { reset(); }
    Descriptor(Descriptor&& other) noexcept : m_value(std::exchange(other.m_value, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        if (this != &other) {
            reset(std::exchange(other.m_value, -1));
        }
        return *this;
    }

    int get() const { return m_value; }
    int release() { return std::exchange(m_value, -1); }
    explicit operator bool() const { return m_value >= 0; }
    void reset(int value = -1)
    {
        if (m_value >= 0) {
            ::close(m_value);
        }
        m_value = value;
    }

private:
    int m_value = -1;
};

} // namespace dorn::host
