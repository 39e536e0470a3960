// SPDX-License-Identifier: MIT
/// @file Post.hpp
/// Bringing a message to whoever holds its receiver's cpid.
#pragma once

#include "port/Clock.hpp"
#include "syscom/Message.hpp"

#include <memory>

namespace dorn::host {

/// How long a send waits for room at its receiver.
constexpr std::chrono::seconds backPressureTime{1};

/// Delivers @p message to its receiver, in this process or another, or to the gateway to its node, waiting for room for
/// @p patience at most. The message is taken on success and left with the caller otherwise.
EAaSysComStatus post(std::unique_ptr<Message, MessageDeleter>& message, Nanoseconds patience);

/// Delivers @p message to an EU of this process, whatever its receiver's address. Ownership as for post().
EAaSysComStatus postToEu(std::unique_ptr<Message, MessageDeleter>& message, TAaProEuId eu,
                         Nanoseconds patience = Nanoseconds(0));

} // namespace dorn::host
