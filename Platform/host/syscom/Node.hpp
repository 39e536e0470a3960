// SPDX-License-Identifier: MIT
/// @file Node.hpp
/// The own node's id in addresses.
#pragma once

#include "AaSysCom.h"

namespace dorn::host {

/// The id by which addresses know a node: its own, or 0x0F01 when it has none.
constexpr TAaSysComNid idInAddresses(TAaSysComNid own)
{
    return own != 0 ? own : 0x0F01;
}

/// Whether an address with this node id is one of this node. A node without an id of its own is known as 0x0F01.
bool isOwnNode(TAaSysComNid nid);

} // namespace dorn::host
