// SPDX-License-Identifier: MIT
/// @file Node.hpp
/// Addresses: what they are made of, and which of them are the own node's.
#pragma once

#include "AaSysCom.h"

namespace dorn::host {

/// The node that an address leads to.
constexpr TAaSysComNid nodeOf(TAaSysComSicad address)
{
    return address >> 16;
}

/// The cpid that an address leads to on its node.
constexpr TAaSysComCpid cpidOf(TAaSysComSicad address)
{
    return static_cast<TAaSysComCpid>(address & 0xFFFFU);
}

/// The id by which addresses know a node: its own, or 0x0F01 when it has none.
constexpr TAaSysComNid idInAddresses(TAaSysComNid own)
{
    return own != 0 ? own : 0x0F01;
}

/// Whether an address with this node id is one of this node. A node without an id of its own is known as 0x0F01.
bool isOwnNode(TAaSysComNid nid);

} // namespace dorn::host
