// SPDX-License-Identifier: MIT
/// @file OwnMessages.hpp
/// Ids of the messages by which the TestKit knows that others have arrived.
#pragma once

#include "AaSysCom.h"

namespace dorn::testkit {

/// No service has ids of this range.
constexpr TAaSysComMsgId firstOwnId = 0xD0400000;
constexpr TAaSysComMsgId lastOwnId = 0xD040FFFF;

/// What a peer sends itself.
constexpr TAaSysComMsgId peerBarrierId = firstOwnId + 1;
/// What passes through the loop of a service under test.
constexpr TAaSysComMsgId serviceBarrierId = firstOwnId + 2;
/// What ends a recording of traffic.
constexpr TAaSysComMsgId trafficFenceId = firstOwnId + 3;

} // namespace dorn::testkit
