// SPDX-License-Identifier: MIT
/// @file Soak.hpp
/// Many nodes that all talk to each other while their links are cut at random.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace dorn::gateway::test {

struct SoakPlan {
    std::size_t nodes = 16;
    std::uint32_t messagesPerPair = 200; ///< from each node to each other one
    std::uint32_t cuts = 100;
    std::uint32_t seed = 1;
};

struct SoakResult {
    std::uint64_t sent = 0;
    std::uint64_t arrived = 0;
    std::uint64_t confirmed = 0;
    std::uint64_t received = 0;   ///< by gateways, from others
    std::uint64_t delivered = 0;  ///< by gateways, to receivers
    std::uint64_t dropped = 0;    ///< for whatever reason
    std::uint64_t outOfOrder = 0; ///< or twice, or with a gap
    std::uint64_t ups = 0;        ///< how often links came up
    std::string complaint;        ///< what did not end in time; empty when everything did

    bool isGood() const;
    std::string text() const;
};

/// Runs it to the end.
SoakResult soak(const SoakPlan& plan);

} // namespace dorn::gateway::test
