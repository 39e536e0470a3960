// SPDX-License-Identifier: MIT
/// @file Transport.hpp
/// The one transport: every message that leaves or enters a process goes through it, as a frame. The node gateway alone
/// has sockets of its own besides.
#pragma once

#include "AaSysCom.h"
#include "port/Clock.hpp"

#include <cstddef>
#include <memory>
#include <span>
#include <sys/types.h>

namespace dorn::host {

class WaitSet;

/// The process at the other end of a connection, as the kernel vouches for it.
class Peer {
public:
    virtual ~Peer() = default;
    virtual pid_t pid() const = 0;
    /// Whether the process is no more.
    virtual bool isGone() const = 0;
};

/// Takes what arrives at an endpoint. Called by the EU that waits on the endpoint's WaitSet, and while the endpoint
/// closes.
class FrameSink {
public:
    virtual ~FrameSink() = default;
    /// Whether frames are welcome; others are to be left with their senders.
    virtual bool hasRoom() const = 0;
    /// @param frame as sent by the peer, not checked in any way
    /// @param isCut whether the peer sent more than the greatest frame
    virtual void onFrame(std::span<const std::byte> frame, bool isCut, const Peer& peer) = 0;
};

/// Makes a cpid reachable from other processes as long as it lives. Ending it delivers what the peers' sends had
/// successfully handed over.
class Endpoint {
public:
    virtual ~Endpoint() = default;
};

class Transport {
public:
    virtual ~Transport() = default;

    /// Sends a frame to the process that holds @p receiver, waiting for room for @p patience at most.
    /// Threads may send at once; frames of one thread to one receiver keep their order.
    virtual EAaSysComStatus send(TAaSysComCpid receiver, std::span<const std::byte> frame, Nanoseconds patience) = 0;

    /// Sends a frame to the gateway of this node that brings messages to @p node, another node, waiting for room for
    /// @p patience at most. Threads and order as for send(). A transport without gateways says `NoRoute`.
    virtual EAaSysComStatus sendToNode(TAaSysComNid node, std::span<const std::byte> frame, Nanoseconds patience) = 0;

    /// Makes @p cpid, which this process holds alone, reachable.
    /// @return null with `errno` set when that is not possible.
    virtual std::unique_ptr<Endpoint> open(TAaSysComCpid cpid, WaitSet& waitSet, FrameSink& sink) = 0;
};

} // namespace dorn::host
