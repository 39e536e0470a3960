// SPDX-License-Identifier: MIT
#include "log/DropReport.hpp"

#include <cstdio>

namespace dorn::host {

void DropReport::dropped(const std::string& reason)
{
    if (m_pending++ == 0) {
        m_reason = reason;
        std::fprintf(stderr, "dorn: log '%s' cannot be written: %s; its lines are dropped until it can\n",
                     m_path.c_str(), reason.c_str());
    }
}

std::uint32_t DropReport::written()
{
    if (m_pending != 0) {
        std::fprintf(stderr, "dorn: log '%s' is written again; lines dropped: %u\n", m_path.c_str(), m_pending);
    }
    return std::exchange(m_pending, 0);
}

} // namespace dorn::host
