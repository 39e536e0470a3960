// SPDX-License-Identifier: MIT
/// @file EuMessages.cpp
/// Registers the platform's messages.
#include "messages/BetweenProcesses.hpp"
#include "messages/BetweenThreads.hpp"
#include "messages/EuEnd.hpp"

namespace {

using namespace dorn::benchmarks;

[[maybe_unused]] const bool isRegistered = registerRoundTripBetweenThreads<EuEnd>("dorn") &&
                                           registerRateBetweenThreads<EuEnd>("dorn") &&
                                           registerBetweenProcesses<EuEnd>("dorn");

} // namespace
