// SPDX-License-Identifier: MIT
#include "syscom/CpidStore.hpp"

#include "port/Transport.hpp"

#include <algorithm>
#include <array>
#include <unistd.h>

namespace dorn::host {
namespace {

constexpr std::uint32_t magic = 0x64697063;
constexpr std::size_t gatewaysRemembered = 8;

} // namespace

struct CpidStore::Content {
    SharedStoreHeader header;
    std::atomic<std::uint32_t> generation;
    std::atomic<std::uint32_t> gatewayCount;                     ///< that the node has had
    std::array<std::atomic<pid_t>, gatewaysRemembered> gateways; ///< negative: it has resigned, in order
    std::array<std::uint32_t, 2> reserved;
};

// Its size has been that since the first version.
static constexpr SharedStoreFormat format{magic, 1, 64};

CpidStore::CpidStore(const RunDirectory& directory) : m_store(directory, "cpids", format)
{
    static_assert(sizeof(Content) == format.size);
    replaceGateway(-getpid(), 0);
}

CpidStore::~CpidStore()
{
    if (m_isGateway) {
        resignAsGateway();
    }
}

void CpidStore::replaceGateway(pid_t before, pid_t after)
{
    for (auto& gateway : content().gateways) {
        pid_t expected = before;
        gateway.compare_exchange_strong(expected, after);
    }
}

void CpidStore::resignAsGateway()
{
    m_isGateway = false;
    replaceGateway(getpid(), -getpid());
    m_store.unlock(gatewayLock);
    content().generation.fetch_add(1);
}

CpidStore::Content& CpidStore::content() const
{
    return *reinterpret_cast<Content*>(m_store.data());
}

bool CpidStore::tryLock(TAaSysComCpid cpid)
{
    if (!m_store.tryLock(cpid)) {
        return false;
    }
    content().generation.fetch_add(1);
    return true;
}

bool CpidStore::tryBecomeGateway()
{
    if (!m_store.tryLock(gatewayLock)) {
        return false;
    }
    m_isGateway = true;
    const std::uint32_t place = content().gatewayCount.fetch_add(1);
    content().gateways[place % gatewaysRemembered].store(getpid());
    content().generation.fetch_add(1);
    return true;
}

bool CpidStore::isGateway(const Peer& peer) const
{
    if (peer.pid() <= 0) {
        return false; // of another process namespace: it may be anybody
    }
    if (peer.pid() == foreignGateway()) {
        return true;
    }
    const auto& known = content().gateways;
    const auto isKnown = [&known](pid_t entry) {
        return std::any_of(known.begin(), known.end(),
                           [entry](const auto& gateway) { return gateway.load() == entry; });
    };
    return isKnown(-peer.pid()) || (isKnown(peer.pid()) && peer.isGone());
}

std::uint32_t CpidStore::generation() const
{
    return content().generation.load(std::memory_order_acquire);
}

} // namespace dorn::host
