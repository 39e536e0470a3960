// SPDX-License-Identifier: MIT
#include "Mate.hpp"

#include <utility>

namespace dorn::examples {

bool Mate::hear(const SMateHeartbeat& heartbeat, std::span<const SRedundancyRegistration> services)
{
    m_last = heartbeat;
    m_missed = 0;
    std::map<std::uint32_t, SRedundantService> known = std::exchange(m_services, {});
    for (const SRedundancyRegistration& registration : services) {
        if (registration.address >> 16 != m_node) {
            continue; // its own services, nobody else's
        }
        const SRedundantService fresh{registration.address, registration.mode, 0, 0};
        const auto found = known.find(registration.address);
        const bool isKnown = found != known.end() && found->second.mode == registration.mode;
        m_services.emplace(registration.address, isKnown ? found->second : fresh);
    }
    return !std::exchange(m_isHeard, true);
}

bool Mate::miss()
{
    if (!m_isHeard || ++m_missed < mateHeartbeatsToMiss) {
        return false;
    }
    m_isHeard = false;
    m_services.clear();
    return true;
}

} // namespace dorn::examples
