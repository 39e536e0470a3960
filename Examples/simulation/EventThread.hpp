// SPDX-License-Identifier: MIT
/// @file EventThread.hpp
/// The thread on which the boundary interfaces of a service call back.
#pragma once

#include "Worker.hpp"

namespace dorn::examples {

/// Makes sure that events which have been raised are delivered before those who take them are gone.
///
/// One worker serves all interfaces of the process, so that their events come one at a time and in order, and so that
/// an interface may be destroyed: an initialized one with a worker of its own may not. A service has, in this order:
///
/// 1. the callbacks;
/// 2. the interfaces, each constructed with worker();
/// 3. an EventThread, whose end comes first.
class EventThread {
public:
    EventThread() = default;
    EventThread(const EventThread&) = delete;
    EventThread& operator=(const EventThread&) = delete;
    /// Waits until everything that was raised has been delivered. Nobody raises events any more.
    ~EventThread();

    /// The worker, for the interfaces' constructors. Its thread runs when the first of them is initialized.
    static vel::hwapi::common::Worker& worker();
};

} // namespace dorn::examples
