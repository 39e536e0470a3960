// SPDX-License-Identifier: MIT
/// @file IdleState.hpp
/// Seeing from outside that the idle service waits for messages.
#pragma once

#include "config/RadStore.hpp"
#include "config/RadWatch.hpp"
#include "rad/ERadHwapiState.h"

namespace dorn::benchmarks {

/// Waits for the idle service's state, which it publishes in an R&D parameter.
class IdleState {
public:
    /// Waits until the parameter is set to 2. What it was before this object is made does not count.
    /// @return false when that has not happened within 10 seconds.
    bool waitUntilReady();

private:
    host::RadStore& m_store = host::PerNode<host::RadStore>::get();
    host::RadWatch m_watch{m_store};
};

} // namespace dorn::benchmarks
