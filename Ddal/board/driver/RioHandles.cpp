// SPDX-License-Identifier: MIT
#include "driver/RioHandles.hpp"

#include <limits>

namespace dorn::board {

std::int32_t RioHandles::add(RioHandle handle)
{
    constexpr std::uint32_t greatest = std::numeric_limits<std::int32_t>::max();
    const auto shared = std::make_shared<const RioHandle>(std::move(handle));
    const std::lock_guard lock(m_mutex);
    if (m_handles.size() == most) {
        throw BoardFailure(DDAL_ERROR_NO_RESOURCE, "this process has " + std::to_string(most) + " copy handles open");
    }
    do {
        m_last = m_last % greatest + 1;
    } while (m_handles.contains(static_cast<std::int32_t>(m_last)));
    m_handles.emplace(static_cast<std::int32_t>(m_last), shared);
    return static_cast<std::int32_t>(m_last);
}

std::shared_ptr<const RioHandle> RioHandles::find(std::int32_t number) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_handles.find(number);
    return found == m_handles.end() ? nullptr : found->second;
}

bool RioHandles::remove(std::int32_t number)
{
    const std::lock_guard lock(m_mutex);
    return m_handles.erase(number) != 0;
}

} // namespace dorn::board
