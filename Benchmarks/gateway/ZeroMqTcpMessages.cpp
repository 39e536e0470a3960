// SPDX-License-Identifier: MIT
/// @file ZeroMqTcpMessages.cpp
/// Registers bare ZeroMQ over TCP: sockets of type PAIR, with CURVE and without.
#include "gateway/ZeroMqTcp.hpp"
#include "messages/BetweenProcesses.hpp"

namespace {

using namespace dorn::benchmarks;

[[maybe_unused]] const bool isRegistered = registerBetweenProcesses<ZeroMqEnd<ZeroMqCurve>>("zeromqCurve") &&
                                           registerBetweenProcesses<ZeroMqEnd<ZeroMqTcp>>("zeromqTcp");

} // namespace
