// SPDX-License-Identifier: MIT
/// @file TwoNodes.hpp
/// The node of this process and another one on this machine, with a gateway process each.
#pragma once

#include "messages/BetweenProcesses.hpp"

#include <array>
#include <cstdint>
#include <memory>

namespace dorn::benchmarks {

/// Started with the first measurement that needs them.
class TwoNodes {
public:
    /// Starts the gateways, unless they run, and waits until they have each other.
    /// @throws std::runtime_error when they do not within a bound.
    static TwoNodes& get();
    /// Ends the gateways. To be called before the run directory goes.
    static void end();
    ~TwoNodes();
    TwoNodes(const TwoNodes&) = delete;
    TwoNodes& operator=(const TwoNodes&) = delete;

    /// Messages that both gateways have dropped so far, for whatever reason.
    std::uint64_t dropped() const;

    /// Moves this process, which has opened nothing yet, to the other node.
    static void goToOther();

private:
    TwoNodes();

    std::array<std::unique_ptr<PartnerProcess>, 2> m_gateways;
};

} // namespace dorn::benchmarks
