// SPDX-License-Identifier: MIT
/// @file EventHandler.hpp
/// What an event dispatcher calls when a descriptor becomes readable.
#pragma once

namespace vel::hwapi::common {

/// Takes what has become readable; derived from by who registers descriptors.
class EventHandler {
public:
    /// Called on the dispatcher's execution unit, one call at a time, as long as @p fd is readable: whoever does not
    /// read what is there is called again at once. See EventDispatcher.hpp for what a handler may do.
    virtual void HandleEvent(int fd) = 0;

    EventHandler() = default;
    EventHandler(const EventHandler&) = delete;
    EventHandler& operator=(const EventHandler&) = delete;
    virtual ~EventHandler() = default;
};

} // namespace vel::hwapi::common
