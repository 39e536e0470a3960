// SPDX-License-Identifier: MIT
/// @file Mate.hpp
/// The other half of the pair, as this half's manager knows it.
#pragma once

#include "AaSysCom.h"
#include "RedundancyMessages.hpp"

#include <cstdint>
#include <map>
#include <span>

namespace dorn::examples {

/// The mate's manager sends a heartbeat every #mateHeartbeatTime. When so many of them in a row have not come, the
/// mate is silent: dead, or cut off.
class Mate {
public:
    /// @param node the other half's node id
    explicit Mate(std::uint16_t node) : m_node(node) {}

    std::uint16_t node() const { return m_node; }
    /// Address of its redundancy manager.
    TAaSysComSicad manager() const { return AaSysComSicadGet(redundancyManagerCpid, m_node); }

    /// A heartbeat has come, with the services that are registered there.
    /// @return whether it is the first one after a silence.
    bool hear(const SMateHeartbeat& heartbeat, std::span<const SRedundancyRegistration> services);
    /// The time of a heartbeat has passed. @return whether the mate falls silent by it; its services are unknown then.
    bool miss();

    /// Whether heartbeats come.
    bool isHeard() const { return m_isHeard; }
    /// Whether it was the active half when last heard.
    bool wasActive() const { return m_last.role == EUnitRole_Active; }
    std::uint32_t role() const { return m_last.role; }
    std::uint32_t term() const { return m_last.term; }

    /// Its services by address, with what they said last.
    std::map<std::uint32_t, SRedundantService>& services() { return m_services; }

private:
    std::uint16_t m_node;
    bool m_isHeard = false;
    std::uint32_t m_missed = 0;
    SMateHeartbeat m_last{EUnitRole_Standby, 0, 0};
    std::map<std::uint32_t, SRedundantService> m_services;
};

} // namespace dorn::examples
