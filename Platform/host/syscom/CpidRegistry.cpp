// SPDX-License-Identifier: MIT
#include "syscom/CpidRegistry.hpp"

#include "AaSysLog.h"
#include "eu/Eu.hpp"
#include "node/EeTable.hpp"
#include "syscom/ActiveTransport.hpp"
#include "syscom/MessageTap.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <unistd.h>

namespace dorn::host {
namespace {

/// Indexed by cpid. Lies in zeroed memory of which only touched pages exist.
std::array<std::atomic<TAaProEuId>, 0x10000> holders;

} // namespace

TAaProEuId localHolder(TAaSysComCpid cpid)
{
    return holders[cpid].load(std::memory_order_acquire);
}

CpidRegistry::CpidRegistry() : m_process(getpid()), m_locks(PerNode<RunDirectory>::get()) {}

CpidRegistry::~CpidRegistry()
{
    while (!m_holdings.empty()) {
        releaseLocked(m_holdings.begin()->first);
    }
}

TAaSysComCpid CpidRegistry::acquire(TAaSysComCpid cpid, TAaProEuId id)
{
    const std::lock_guard lock(m_mutex);
    Eu* const eu = eus::find(id);
    if (!eu) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "cpid 0x%04X is not granted: EU 0x%X does not live", cpid, id);
        return 0;
    }
    return cpid == 0 ? acquireAny(*eu, id) : acquireExactly(cpid, *eu, id);
}

TAaSysComCpid CpidRegistry::acquireAny(Eu& eu, TAaProEuId id)
{
    // Not the one that has just become free: what is still on its way to its last holder is nobody else's.
    constexpr unsigned count = lastDynamic - firstDynamic + 1U;
    const unsigned start = m_locks.generation();
    for (unsigned step = 0; step < count; ++step) {
        const auto candidate = static_cast<TAaSysComCpid>(firstDynamic + (start + step) % count);
        if (localHolder(candidate) == 0 && m_locks.tryLock(candidate)) {
            return hold(candidate, eu, id);
        }
    }
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "No cpid is granted: 0x%04X to 0x%04X are all held", firstDynamic,
                  lastDynamic);
    return 0;
}

TAaSysComCpid CpidRegistry::acquireExactly(TAaSysComCpid cpid, Eu& eu, TAaProEuId id)
{
    const TAaProEuId holder = localHolder(cpid);
    if (holder == id) {
        return cpid;
    }
    if (holder != 0) {
        const Eu* const other = eus::find(holder);
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "cpid 0x%04X is not granted: EU %s of this process holds it",
                      cpid, other ? other->name.data() : "that is just ending");
        return 0;
    }
    if (!m_locks.tryLock(cpid)) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "cpid 0x%04X is not granted: process %d holds it", cpid,
                      m_locks.foreignHolder(cpid));
        return 0;
    }
    return hold(cpid, eu, id);
}

/// Makes a cpid, whose lock the process has got, an EU's.
TAaSysComCpid CpidRegistry::hold(TAaSysComCpid cpid, Eu& eu, TAaProEuId id)
{
    if (MessageTap* const tap = PerNode<MessageTap>::ifOpen()) {
        tap->removeWatcher(cpid); // a holder that was killed may have watched
    }
    holders[cpid].store(id, std::memory_order_release); // first: nobody of this process is to send through the socket
    try {
        Holding holding{id, std::make_unique<FrameInlet>(cpid, eu), nullptr};
        holding.endpoint = activeTransport().open(cpid, eu.queue.waitSet(), *holding.inlet);
        if (!holding.endpoint) {
            throw std::system_error(errno, std::generic_category());
        }
        m_holdings.emplace(cpid, std::move(holding));
    } catch (const std::exception& error) {
        holders[cpid].store(0, std::memory_order_release);
        m_locks.unlock(cpid);
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "cpid 0x%04X cannot be made reachable: %s", cpid, error.what());
        return 0;
    }
    TAaSysComCpid none = 0;
    eu.firstCpid.compare_exchange_strong(none, cpid);
    if (EeTable* const table = PerNode<EeTable>::ifOpen()) {
        table->noteCpid(cpid, eu.name.data());
    }
    return cpid;
}

bool CpidRegistry::release(TAaSysComCpid cpid)
{
    const std::lock_guard lock(m_mutex);
    if (!m_holdings.contains(cpid)) {
        return false;
    }
    releaseLocked(cpid);
    return true;
}

void CpidRegistry::releaseAll(TAaProEuId eu)
{
    if (getpid() != m_process) {
        return; // a forked process ends; the sockets and connections are its parent's
    }
    const std::lock_guard lock(m_mutex);
    for (auto holding = m_holdings.begin(); holding != m_holdings.end();) {
        const auto [cpid, held] = std::pair(holding->first, holding->second.eu);
        ++holding;
        if (held == eu) {
            releaseLocked(cpid);
        }
    }
}

void CpidRegistry::releaseLocked(TAaSysComCpid cpid)
{
    const auto holding = m_holdings.find(cpid);
    if (EeTable* const table = PerNode<EeTable>::ifOpen()) {
        table->forgetCpid(cpid);
    }
    holders[cpid].store(0, std::memory_order_release);
    if (Eu* const eu = eus::find(holding->second.eu)) {
        TAaSysComCpid first = cpid;
        eu->firstCpid.compare_exchange_strong(first, 0);
    }
    m_holdings.erase(holding); // takes in what other processes had handed over; still locked, so nobody else is found
    m_locks.unlock(cpid);
}

} // namespace dorn::host
