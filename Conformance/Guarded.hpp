// SPDX-License-Identifier: MIT
/// @file Guarded.hpp
/// A buffer that notices what a driver writes outside of it.
#pragma once

#include "Check.hpp"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace dorn::conformance {

/// So many bytes for a driver to write to, with others around them that it is to leave alone.
class Guarded {
public:
    explicit Guarded(std::size_t size) : m_size(size), m_bytes(size + 2 * margin, filling) {}

    char* data() { return m_bytes.data() + margin; }
    /// The text up to its terminating zero. Ends the rule as broken when it is not terminated within the buffer, or
    /// something has been written outside.
    std::string text(const std::string& what) const
    {
        expectGuarded(what);
        const std::string content(m_bytes.data() + margin, m_size);
        const std::size_t end = content.find('\0');
        expect(end != std::string::npos, what + ": the text is not terminated within its buffer");
        return content.substr(0, end);
    }
    /// Ends the rule as broken when anything has been written, inside or outside.
    void expectUntouched(const std::string& what) const
    {
        expect(m_bytes == std::vector<char>(m_bytes.size(), filling), what + " failed and wrote something");
    }

private:
    static constexpr std::size_t margin = 16;
    static constexpr char filling = '#';

    void expectGuarded(const std::string& what) const
    {
        const std::vector<char> guard(margin, filling);
        expect(std::equal(guard.begin(), guard.end(), m_bytes.begin()) &&
                   std::equal(guard.begin(), guard.end(), m_bytes.end() - margin),
               what + " wrote outside of its buffer");
    }

    std::size_t m_size;
    std::vector<char> m_bytes;
};

} // namespace dorn::conformance
