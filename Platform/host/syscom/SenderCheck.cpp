// SPDX-License-Identifier: MIT
#include "syscom/SenderCheck.hpp"

#include "syscom/CpidRegistry.hpp"
#include "syscom/CpidStore.hpp"

#include <algorithm>
#include <unistd.h>

namespace dorn::host {

bool SenderCheck::Believed::isSame(const Believed& other) const
{
    return process == other.process && generation == other.generation && cpid == other.cpid;
}

bool SenderCheck::isCredible(TAaSysComCpid cpid, const Peer& peer, const CpidStore* store)
{
    if (cpid == 0) {
        return true;
    }
    const Believed asked{peer.pid(), store ? store->generation() : 0, cpid};
    if (std::any_of(m_senders.begin(), m_senders.end(), [&](const Believed& one) { return one.isSame(asked); })) {
        return true;
    }
    const pid_t foreign = store ? store->foreignHolder(cpid) : 0;
    const pid_t holder = localHolder(cpid) != 0 ? getpid() : foreign;
    const bool isPeers = holder == 0 || holder == peer.pid();
    if (!isPeers) {
        return peer.isGone(); // what the dead had sent; of no other process it is to be believed
    }
    m_senders[m_next++ % sendersRemembered] = asked;
    return true;
}

bool SenderCheck::isGateway(const Peer& peer, const CpidStore* store)
{
    if (!store || peer.pid() <= 0) { // 0: of a world with other process ids
        return false;
    }
    const Believed asked{peer.pid(), store->generation(), 0};
    if (asked.isSame(m_gateway)) {
        return true;
    }
    if (!store->isGateway(peer)) {
        return false;
    }
    m_gateway = asked;
    return true;
}

} // namespace dorn::host
