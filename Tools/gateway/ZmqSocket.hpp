// SPDX-License-Identifier: MIT
/// @file ZmqSocket.hpp
/// A ZeroMQ socket in a set of descriptors to wait for.
#pragma once

#include "syscom/WaitSet.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <zmq.hpp>

namespace dorn::gateway {

/// The descriptor of a ZeroMQ socket tells only once that there is something, and a send may swallow even that. So the
/// socket remembers that there may be something until a receive has found nothing; nobody may sleep before.
class ZmqSocket final : private host::WaitSource {
public:
    /// @throws zmq::error_t
    ZmqSocket(zmq::context_t& context, zmq::socket_type type, host::WaitSet& waitSet);
    ~ZmqSocket() override;
    ZmqSocket(const ZmqSocket&) = delete;
    ZmqSocket& operator=(const ZmqSocket&) = delete;

    zmq::socket_t& socket() { return m_socket; }
    /// Sets an option to bytes.
    void set(int option, std::span<const std::uint8_t> bytes);

    /// Whether there may be something to receive.
    bool isDirty() const { return m_isDirty; }
    /// Takes the next part of a message. @return false when there is nothing.
    bool receive(zmq::message_t& part);
    /// Takes the rest of a message, which is not wanted.
    void skipRest(const zmq::message_t& part);
    /// Sends a part. @return false when it cannot be taken now or nobody is there.
    bool send(std::span<const std::byte> bytes, bool hasMore = false);
    bool send(zmq::message_t message, bool hasMore = false);

private:
    void onReadable() override { m_isDirty = true; }

    host::WaitSet& m_waitSet;
    zmq::socket_t m_socket;
    int m_descriptor;
    bool m_isDirty = true;
};

/// Gives an empty message room for @p size bytes. @return false when there is no memory for it now.
bool makeRoom(zmq::message_t& message, std::size_t size);

/// What happens to the connections of a socket. Ends before the socket.
class ZmqMonitor {
public:
    ZmqMonitor(zmq::context_t& context, ZmqSocket& watched, int events, host::WaitSet& waitSet);
    ~ZmqMonitor();
    ZmqMonitor(const ZmqMonitor&) = delete;
    ZmqMonitor& operator=(const ZmqMonitor&) = delete;

    bool isDirty() const { return m_pair.isDirty(); }
    struct Event {
        int kind;  ///< ZMQ_EVENT_...
        int value; ///< what it says besides, an error number for some
    };
    /// The next event; nothing when there is none.
    std::optional<Event> next();

private:
    ZmqSocket& m_watched;
    ZmqSocket m_pair;
};

} // namespace dorn::gateway
