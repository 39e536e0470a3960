// SPDX-License-Identifier: MIT
#include "log/DropReport.hpp"

#include "port/StandardStreams.hpp"

namespace dorn::host {

void DropReport::dropped(const std::string& reason)
{
    if (m_pending++ == 0) {
        m_reason = reason;
        writeToStandardError("dorn: log '" + m_path + "' cannot be written: " + reason +
                             "; its lines are dropped until it can\n");
    }
}

std::uint32_t DropReport::written()
{
    if (m_pending != 0) {
        writeToStandardError("dorn: log '" + m_path +
                             "' is written again; lines dropped: " + std::to_string(m_pending) + "\n");
    }
    return std::exchange(m_pending, 0);
}

} // namespace dorn::host
