// SPDX-License-Identifier: MIT
/// @file DropReport.hpp
/// Tells on standard error that lines cannot be written, once, and that they can be again.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace dorn::host {

/// Keeps count of the lines that one sink had to drop. Not for several threads at once.
class DropReport {
public:
    /// @param pending lines that were dropped, and reported, before this one came
    explicit DropReport(std::string path, std::uint32_t pending = 0, std::string reason = {})
        : m_path(std::move(path)), m_pending(pending), m_reason(std::move(reason))
    {
    }

    /// A line could not be written. The reason of the first one counts.
    void dropped(const std::string& reason);
    /// One could be written. @return how many had been dropped since the last that could.
    std::uint32_t written();

    /// Takes the count for another process's.
    void forget() { m_pending = 0; }

    /// Lines dropped since the last that could be written.
    std::uint32_t pending() const { return m_pending; }
    /// Why the first of them could not.
    const std::string& reason() const { return m_reason; }

private:
    std::string m_path;
    std::uint32_t m_pending = 0;
    std::string m_reason;
};

} // namespace dorn::host
