// SPDX-License-Identifier: MIT
#include "log/DropReport.hpp"

#include <cstdio>
#include <cstring>

namespace dorn::host {

void DropReport::dropped(int error)
{
    if (m_pending++ == 0) {
        m_error = error;
        std::fprintf(stderr, "dorn: log '%s' cannot be written: %s; its lines are dropped until it can\n",
                     m_path.c_str(), std::strerror(error));
    }
}

std::uint32_t DropReport::written()
{
    if (m_pending != 0) {
        std::fprintf(stderr, "dorn: log '%s' is written again; %u lines were dropped\n", m_path.c_str(), m_pending);
    }
    return std::exchange(m_pending, 0);
}

} // namespace dorn::host
