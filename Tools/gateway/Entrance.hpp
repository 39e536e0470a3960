// SPDX-License-Identifier: MIT
/// @file Entrance.hpp
/// Where other gateways come in: a listening ROUTER, and the check of their keys.
#pragma once

#include "gateway/Gateway.hpp"
#include "gateway/Keys.hpp"
#include "gateway/Status.hpp"
#include "gateway/Table.hpp"
#include "gateway/ZmqSocket.hpp"

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace dorn::gateway {

/// Takes what authenticated gateways send.
class EntranceSink {
public:
    virtual ~EntranceSink() = default;
    /// @param node whose key the connection has
    /// @param route where an answer goes
    /// @return how many messages of services it brought
    virtual std::size_t onMessage(TAaSysComNid node, const std::string& route, std::span<const std::byte> bytes) = 0;
};

class Entrance {
public:
    /// @param table stays with the caller, like @p refused, where refusals are counted
    /// @throws host::EnvironmentError when the port cannot be had.
    Entrance(zmq::context_t& context, host::WaitSet& waitSet, const Table& table, const TableRow& own,
             const KeyPair& keys, const GatewayOptions& options, RefusalCounts& refused);

    bool isDirty() const { return m_keyCheck.isDirty() || m_socket.isDirty() || m_monitor.isDirty(); }
    /// Hands over what has come, so much at once that nothing else waits long for its turn.
    void serve(EntranceSink& sink);
    /// Answers; nobody knows whether it arrives.
    void answer(const std::string& route, std::span<const std::byte> bytes);

private:
    void listen(const TableRow& own, const GatewayOptions& options);
    void serveKeyCheck();
    void decideOn(std::span<const zmq::message_t> request);
    const TableRow* rowOf(std::span<const zmq::message_t> request) const;
    std::size_t takeMessage(EntranceSink& sink, zmq::message_t& route);

    const Table& m_table;
    const TableRow& m_own;
    RefusalCounts& m_refused;
    ZmqSocket m_keyCheck; ///< before the socket that relies on it
    ZmqSocket m_socket;
    ZmqMonitor m_monitor;
};

} // namespace dorn::gateway
