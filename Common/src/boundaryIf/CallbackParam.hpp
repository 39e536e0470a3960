// SPDX-License-Identifier: MIT
/// @file CallbackParam.hpp
/// Root of the callback parameters: what they all have, a virtual destructor, and values that can be copied.
///
/// A callback parameter adds its fields with their accessors, and which of them count when two are compared. It is
/// copied for an event that is queued, and deleted as what it is.
#pragma once

namespace vel::hwapi::common::bif {

/// What an event tells its callback; each event's class derives from it.
class CallbackParam {
public:
    CallbackParam() = default;
    CallbackParam(const CallbackParam&) = default;
    CallbackParam& operator=(const CallbackParam&) = default;
    virtual ~CallbackParam() = default;

    bool operator==(const CallbackParam&) const = default;
};

} // namespace vel::hwapi::common::bif
