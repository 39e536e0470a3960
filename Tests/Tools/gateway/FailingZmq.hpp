// SPDX-License-Identifier: MIT
/// @file FailingZmq.hpp
/// Has ZeroMQ fail when a test wants it: its calls go through wrappers of the linker.
#pragma once

#include <cstddef>

namespace dorn::gateway::test {

enum class ZmqCall { Receive, Send };

/// Has the next call on a socket of a type fail, in whatever thread. One at a time lives for a call.
class FailNextZmq {
public:
    /// @param type of the socket: ZMQ_ROUTER, ...
    /// @param error that the call fails with
    FailNextZmq(ZmqCall call, int type, int error);
    ~FailNextZmq();
    FailNextZmq(const FailNextZmq&) = delete;
    FailNextZmq& operator=(const FailNextZmq&) = delete;

    /// Whether the call has come.
    bool hasFailed() const;

private:
    ZmqCall m_call;
};

/// Once a message of @p size bytes at least has been received on a ROUTER, the thread that has received it has no
/// memory until it receives again. One at a time lives.
class NoMemoryAfterReceive {
public:
    explicit NoMemoryAfterReceive(std::size_t size);
    ~NoMemoryAfterReceive();
    NoMemoryAfterReceive(const NoMemoryAfterReceive&) = delete;
    NoMemoryAfterReceive& operator=(const NoMemoryAfterReceive&) = delete;

    /// Whether the message has come.
    bool hasBegun() const;
};

/// The greatest number of sockets that a context was last told, by any thread; 0 before.
int greatestNumberOfSockets();

} // namespace dorn::gateway::test
