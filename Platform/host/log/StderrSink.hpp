// SPDX-License-Identifier: MIT
/// @file StderrSink.hpp
/// Lines on standard error.
#pragma once

#include "log/TextSink.hpp"
#include "port/Clock.hpp"

#include <cstdint>
#include <string>

namespace dorn::host {

/// Follows standard error wherever the program leads it. Where it takes nothing, the first line waits for
/// standardErrorPatience; that one and those behind it are dropped, and the next line that can be written comes behind
/// one that tells how many.
class StderrSink final : public TextSink {
public:
    explicit StderrSink(bool isColoured) : m_isColoured(isColoured) {}

    void write(EAaSysLogSeverityLevel severity, std::string_view line) override;

private:
    std::size_t writeWhatGoes(std::string_view text);
    bool put(std::string_view text);

    const bool m_isColoured;
    Nanoseconds m_lookAgainAt{};
    bool m_isReady = false; ///< at the last look
    bool m_isStalled = false;
    bool m_isMidLine = false;
    std::uint32_t m_dropped = 0;
};

} // namespace dorn::host
