// SPDX-License-Identifier: MIT
/// @file CpidStore.hpp
/// The store `cpids` of a node: record locks that say which process holds which cpid, and which is the node's gateway.
#pragma once

#include "AaSysCom.h"
#include "node/SharedStore.hpp"

#include <atomic>
#include <cstdint>
#include <sys/types.h>

namespace dorn::host {

class Peer;

/// A lock is free again as soon as the process that holds it is gone, however it ended. A process opens the store of a
/// node once at most: closing a second one would give up the locks of both.
class CpidStore {
public:
    /// Where a gateway has resigned that had the number of this process, it is not believed any more.
    /// @throws EnvironmentError
    explicit CpidStore(const RunDirectory& directory);
    /// Resigns as gateway, if it is.
    ~CpidStore();
    CpidStore(const CpidStore&) = delete;
    CpidStore& operator=(const CpidStore&) = delete;

    bool tryLock(TAaSysComCpid cpid);
    void unlock(TAaSysComCpid cpid) { m_store.unlock(cpid); }
    /// The other process that holds @p cpid; 0 when nobody does, or this process itself.
    pid_t foreignHolder(TAaSysComCpid cpid) const { return m_store.lockHolder(cpid); }

    /// Makes this process the node's gateway, the one whose word on senders of other nodes is taken.
    /// @return false when another process is.
    bool tryBecomeGateway();
    /// This process, which is the gateway, is it no more. What it has sent is still believed.
    void resignAsGateway();
    /// The other process that is the node's gateway; 0 when there is none, or this process itself.
    pid_t foreignGateway() const { return m_store.lockHolder(gatewayLock); }
    /// Whether a peer is the node's gateway, or was it when it sent what is only read now.
    bool isGateway(const Peer& peer) const;

    /// Changes whenever a process of the node begins to hold a cpid or becomes the gateway. One load.
    std::uint32_t generation() const;

private:
    struct Content;
    static constexpr std::size_t gatewayLock = 0x10000; // behind all cpids

    Content& content() const;
    void replaceGateway(pid_t before, pid_t after);

    SharedStore m_store;
    bool m_isGateway = false;
};

} // namespace dorn::host
