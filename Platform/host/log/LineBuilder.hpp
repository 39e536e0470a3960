// SPDX-License-Identifier: MIT
/// @file LineBuilder.hpp
/// Makes the text form of one line out of a `printf` format.
#pragma once

#include "AaSysLog.h"
#include "log/LogOrigin.hpp"
#include "port/Clock.hpp"

#include <array>
#include <cstdarg>
#include <cstddef>
#include <memory>
#include <string_view>

namespace dorn::host {

/// Longest text of a line, in bytes before control characters are spelled out. Of a longer one the line keeps this
/// much, cut between two UTF-8 characters, and says so: "... [cut: 20000 bytes]".
constexpr std::size_t maxLogText = 8192;

/// One line in the making. Lives on the stack; a long text takes memory from the heap.
class LineBuilder {
public:
    LineBuilder() = default;
    LineBuilder(const LineBuilder&) = delete;
    LineBuilder& operator=(const LineBuilder&) = delete;

    /// Makes the line. Where memory is lacking the text is cut shorter.
    void build(Nanoseconds wall, EAaSysLogSeverityLevel severity, const LogOrigin& origin, const char* format,
               va_list arguments) noexcept;

    /// The line with its line feed.
    std::string_view line() const { return {m_begin, m_length}; }
    /// The text without it.
    std::string_view text() const { return line().substr(m_headLength, m_length - m_headLength - 1); }

private:
    std::size_t writeHead(Nanoseconds wall, EAaSysLogSeverityLevel severity, const LogOrigin& origin) noexcept;
    void moveToHeap(std::size_t size) noexcept;
    std::size_t room() const { return m_size - m_headLength; }
    char* textBegin() { return m_begin + m_headLength; }
    std::size_t writeText(const char* format, va_list arguments) noexcept;
    std::size_t cutText(std::size_t kept, std::size_t whole) noexcept;
    std::size_t makeOneLine(std::size_t length) noexcept;

    std::array<char, 1024> m_stack;
    std::unique_ptr<char[]> m_heap;
    char* m_begin = m_stack.data();
    std::size_t m_size = m_stack.size();
    std::size_t m_headLength = 0;
    std::size_t m_length = 0;
};

} // namespace dorn::host
