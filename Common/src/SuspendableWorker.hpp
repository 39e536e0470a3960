// SPDX-License-Identifier: MIT
/// @file SuspendableWorker.hpp
/// What can be held up between two pieces of work.
#pragma once

namespace vel::hwapi::common {

/// What can be held up between two pieces of work.
class SuspendableWorker {
public:
    /// Takes no new work from now on; what is being worked on goes on. Does nothing while suspended.
    virtual void SuspendWorking() = 0;
    /// Same as SuspendWorking(), and returns only when what was being worked on is done.
    virtual void SuspendAndWaitWorkToComplete() = 0;
    /// Takes new work again. Does nothing while not suspended.
    virtual void ResumeWorking() = 0;
    /// True from a suspension until the next ResumeWorking().
    virtual bool IsWorkingSuspended() = 0;

    SuspendableWorker() = default;
    SuspendableWorker(const SuspendableWorker&) = delete;
    SuspendableWorker& operator=(const SuspendableWorker&) = delete;
    virtual ~SuspendableWorker() = default;
};

} // namespace vel::hwapi::common
