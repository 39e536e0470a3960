// SPDX-License-Identifier: MIT
/// @file LiveView.hpp
/// Shows a running board in the terminal.
#pragma once

#include "AaConfigRad.h"
#include "log/LogLine.hpp"
#include "log/LogReader.hpp"

#include <deque>
#include <string>
#include <vector>

namespace dorn::demonstration {

/// Draws services, R&D switches and the latest log lines anew at each change; on anything but a terminal it prints the
/// log lines as they come.
class LiveView {
public:
    /// @param switches the R&D parameters to show
    /// @param hint what the reader may try, printed below
    LiveView(std::vector<TAaConfigRadId> switches, std::string hint);

    /// Waits for log lines for a moment and shows what there is.
    void update();

private:
    void draw() const;
    std::string servicesText() const;
    std::string switchesText() const;
    std::string logText(std::size_t rows, std::size_t columns) const;

    std::vector<TAaConfigRadId> m_switches;
    std::string m_hint;
    bool m_isTerminal;
    host::LogReader m_log;
    std::deque<host::LogLine> m_lines;
};

} // namespace dorn::demonstration
