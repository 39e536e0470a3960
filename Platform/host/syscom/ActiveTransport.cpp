// SPDX-License-Identifier: MIT
#include "syscom/ActiveTransport.hpp"

#include "node/PerNode.hpp"
#include "syscom/UnixTransport.hpp"

#include <atomic>

namespace dorn::host {
namespace {

std::atomic<Transport*> standIn{nullptr};

} // namespace

Transport& activeTransport()
{
    Transport* const transport = standIn.load(std::memory_order_acquire);
    return transport ? *transport : PerNode<UnixTransport>::get();
}

TransportScope::TransportScope(Transport& transport) : m_previous(standIn.exchange(&transport)) {}

TransportScope::~TransportScope()
{
    standIn.store(m_previous);
}

} // namespace dorn::host
