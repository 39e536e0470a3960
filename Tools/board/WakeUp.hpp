// SPDX-License-Identifier: MIT
/// @file WakeUp.hpp
/// Waking a thread that waits for descriptors.
#pragma once

#include "port/Descriptor.hpp"

namespace dorn::tool {

/// A descriptor that becomes readable when somebody wants something.
class WakeUp {
public:
    /// @throws std::system_error when descriptors have run out.
    WakeUp();

    int descriptor() const { return m_event.get(); }
    /// May be called from any thread and in a signal handler.
    void wake() const;
    /// Makes it unreadable again.
    void clear() const;

private:
    host::Descriptor m_event;
};

} // namespace dorn::tool
