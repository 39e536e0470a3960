// SPDX-License-Identifier: MIT
/// @file ActiveTransport.hpp
/// Which transport the process uses.
#pragma once

#include "port/Transport.hpp"

namespace dorn::host {

/// The transport in use: the node's sockets unless a TransportScope says otherwise.
Transport& activeTransport();

/// Has another transport used as long as the scope lives. Made and ended while no EU sends or receives.
class TransportScope {
public:
    explicit TransportScope(Transport& transport);
    ~TransportScope();
    TransportScope(const TransportScope&) = delete;
    TransportScope& operator=(const TransportScope&) = delete;

private:
    Transport* m_previous;
};

} // namespace dorn::host
