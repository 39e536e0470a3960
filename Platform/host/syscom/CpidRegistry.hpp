// SPDX-License-Identifier: MIT
/// @file CpidRegistry.hpp
/// Who holds which communication point: in this process by a table, on the node by record locks.
#pragma once

#include "node/PerNode.hpp"
#include "port/Transport.hpp"
#include "syscom/CpidStore.hpp"
#include "syscom/FrameInlet.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace dorn::host {

/// The EU of this process that holds @p cpid; 0 when none does. Takes no lock.
TAaProEuId localHolder(TAaSysComCpid cpid);

/// A cpid belongs to the process that holds its record lock, and so is free again as soon as that process is gone,
/// however it ended.
class CpidRegistry {
public:
    /// First of the cpids that are given to those who do not ask for a certain one.
    static constexpr TAaSysComCpid firstDynamic = 0xF000;
    static constexpr TAaSysComCpid lastDynamic = 0xFFFE;

    /// Opens the registry of this process's node. @throws EnvironmentError
    CpidRegistry();
    ~CpidRegistry();

    /// See AaSysComUserRegister().
    TAaSysComCpid acquire(TAaSysComCpid cpid, TAaProEuId eu);
    /// @return whether this process held it.
    bool release(TAaSysComCpid cpid);
    void releaseAll(TAaProEuId eu);
    /// The other process that holds @p cpid; 0 when nobody does, or this process itself.
    pid_t foreignHolder(TAaSysComCpid cpid) const { return m_locks.foreignHolder(cpid); }
    /// The locks of the node.
    const CpidStore& store() const { return m_locks; }

private:
    struct Holding {
        TAaProEuId eu;
        std::unique_ptr<FrameInlet> inlet;
        std::unique_ptr<Endpoint> endpoint; // ends before the inlet that it delivers to
    };

    TAaSysComCpid acquireExactly(TAaSysComCpid cpid, Eu& eu, TAaProEuId id);
    TAaSysComCpid acquireAny(Eu& eu, TAaProEuId id);
    TAaSysComCpid hold(TAaSysComCpid cpid, Eu& eu, TAaProEuId id);
    void releaseLocked(TAaSysComCpid cpid);

    const pid_t m_process;
    CpidStore m_locks;
    mutable std::mutex m_mutex;
    std::map<TAaSysComCpid, Holding> m_holdings;
};

} // namespace dorn::host
