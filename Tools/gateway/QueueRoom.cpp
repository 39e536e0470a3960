// SPDX-License-Identifier: MIT
#include "gateway/QueueRoom.hpp"

#include <algorithm>

namespace dorn::gateway {

void QueueRoom::note(std::size_t bytes)
{
    m_atMost += bytes;
    if (m_atMost <= m_limit) {
        return;
    }
    m_atMost = sum();
    while (m_atMost > m_limit) {
        QueueTenant* const tenant = fullest();
        if (!tenant) {
            return; // all that is left is on its way
        }
        m_atMost -= tenant->giveWay();
    }
}

std::size_t QueueRoom::sum() const
{
    std::size_t bytes = 0;
    for (const QueueTenant* const tenant : m_tenants) {
        bytes += tenant->queuedBytes();
    }
    return bytes;
}

QueueTenant* QueueRoom::fullest() const
{
    const auto most =
        std::max_element(m_tenants.begin(), m_tenants.end(), [](const QueueTenant* left, const QueueTenant* right) {
            return left->droppableBytes() < right->droppableBytes();
        });
    return most != m_tenants.end() && (*most)->droppableBytes() > 0 ? *most : nullptr;
}

} // namespace dorn::gateway
