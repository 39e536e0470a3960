// SPDX-License-Identifier: MIT
/// @file DealerWire.hpp
/// A link's connection: a DEALER that is connected once and made anew for each attempt.
#pragma once

#include "gateway/Gateway.hpp"
#include "gateway/Link.hpp"
#include "gateway/Resolver.hpp"
#include "gateway/ZmqSocket.hpp"

#include <memory>
#include <optional>

namespace dorn::gateway {

/// ZeroMQ's own reconnecting never comes to it: what was on its way when a connection ended must not be sent on the
/// next one before both sides have agreed where they are.
class DealerWire final : public LinkWire {
public:
    /// All arguments stay with the caller.
    /// @param ticket by which the resolver's findings are known to be this link's
    DealerWire(zmq::context_t& context, host::WaitSet& waitSet, Resolver& resolver, const TableRow& row,
               const KeyPair& keys, std::size_t ticket);

    void resolve(const std::string& host) override { m_resolver.start(m_ticket, host); }
    void connect(const std::string& address, std::uint16_t port) override;
    void close() override;
    bool send(std::span<const std::byte> head, std::span<const std::byte> body) override;

    /// Whether serve() has something to do.
    bool isDirty() const;
    /// Tells the link what has come.
    void serve(Link& link, Nanoseconds now);

private:
    void open(const std::string& endpoint);
    void takeMessages(Link& link, Nanoseconds now);
    std::optional<LinkFault> nextFault();

    zmq::context_t& m_context;
    host::WaitSet& m_waitSet;
    Resolver& m_resolver;
    const TableRow& m_row;
    const KeyPair& m_keys;
    std::size_t m_ticket;
    std::unique_ptr<ZmqSocket> m_socket;
    std::unique_ptr<ZmqMonitor> m_monitor;
    std::optional<LinkFault> m_failure; ///< of ZeroMQ, which ends this connection only
    int m_endedInHandshake = 0;         ///< attempts in a row that the other side ended there without a word
};

} // namespace dorn::gateway
