// SPDX-License-Identifier: MIT
/// @file LogCapture.hpp
/// The log lines of a test.
#pragma once

#include "Bound.hpp"
#include "log/LogLine.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace dorn::testkit {

/// Collects every line that this process keeps while it lives, whatever `DORN_LOG` says.
///
/// Tests compare lines whole, in the form `Error 0x20066 text`: severity, feature id, text. A line that belongs to no
/// feature has the feature id 0x0. All functions may be called from any thread.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// The lines so far in the form `Error 0x20066 text`, oldest first.
    std::vector<std::string> texts() const;
    /// The lines so far with all that is known of them (log/LogLine.hpp), oldest first.
    std::vector<host::LogLine> lines() const;
    /// How many lines so far are, in the form `Error 0x20066 text`, equal to @p text.
    std::size_t count(const std::string& text) const;
    /// Waits until a line is, in the form `Error 0x20066 text`, equal to @p text.
    /// @return false when none has come within @p bound.
    [[nodiscard]] bool waitFor(const std::string& text, Bound bound = generousBound) const;
    /// Forgets the lines so far.
    void clear();

private:
    class Collector;
    std::unique_ptr<Collector> m_collector;
};

/// @p line in the form `Error 0x20066 text`.
std::string textOf(const host::LogLine& line);

} // namespace dorn::testkit
