// SPDX-License-Identifier: MIT
#include "gateway/DropBurst.hpp"

#include <utility>

namespace dorn::gateway {

bool DropBurst::note(std::uint64_t count)
{
    const bool isFirst = m_count == 0 && count > 0;
    m_count += count;
    return isFirst;
}

std::optional<std::uint64_t> DropBurst::endAt(Nanoseconds now)
{
    if (m_known != m_count) {
        m_known = m_count;
        m_calmSince = now;
    }
    if (m_count == 0 || now - m_calmSince < m_calm) {
        return std::nullopt;
    }
    m_known = 0;
    return std::exchange(m_count, 0);
}

} // namespace dorn::gateway
