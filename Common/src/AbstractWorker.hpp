// SPDX-License-Identifier: MIT
/// @file AbstractWorker.hpp
/// A thread that runs tasks one after another, in the order in which they were assigned.
///
/// 1. Somebody sets the worker up: Setup() starts its thread.
/// 2. Any thread assigns tasks, with or without giving them away.
/// 3. The worker's thread calls Task::Perform() of each, and deletes those that were given to it.
/// 4. In between, any thread may suspend and resume the worker.
#pragma once

#include "CHwapiException.hpp"
#include "SuspendableWorker.hpp"
#include "rad/ERadHwapi.h"

#include <string>

namespace vel::hwapi::common {

/// What a worker thread offers to who assigns tasks to it.
class AbstractWorker : public SuspendableWorker {
public:
    class Task;
    class SetupAlreadyDoneException;

    /// Starts the worker's thread.
    /// @param printId feature id of the worker's log lines
    /// @param name the thread's name
    /// @throws InvalidParameterException when @p name is empty.
    /// @throws SetupAlreadyDoneException when the thread has been started before.
    virtual void Setup(ERadHwapi printId, std::string name) = 0;

    /// Queues a task; the worker deletes it after it has run.
    virtual void AssignTaskAndGiveOwnership(Task* task) = 0;

    /// Queues a task; the caller deletes it, and not before it has run.
    virtual void AssignTaskAndKeepOwnership(Task* task) = 0;

    /// Tells whether Setup() has succeeded.
    virtual bool IsSetupDone() = 0;

    /// Starts the thread; called by Setup().
    virtual void startWorkerThread() = 0;
};

/// A unit of work. Derive from it and implement Perform().
class AbstractWorker::Task {
public:
    class TaskException;

    Task() = default;
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    virtual ~Task();

    /// Does the work, on the worker's thread. It may throw TaskException to have a failure logged; the worker goes on
    /// with its next task, and does not delete this one. Any other exception is logged without its text.
    virtual void Perform() = 0;

    /// The worker that is running the task now; null at other times. It stays set when Perform() has thrown. May be
    /// called from any thread.
    virtual AbstractWorker* getExecutingWorker() const;
    /// Tells whether the worker deletes the task after it has run.
    virtual bool isOwnedByWorker() const;
    /// Called by the worker before and after Perform().
    virtual void setExecutingWorker(AbstractWorker* worker);
    /// Called by the worker when the task is assigned.
    virtual void setOwnedByWorker(bool owned);

private:
    bool m_ownedByWorker = false;
    AbstractWorker* m_excecutingWorker = nullptr;
};

/// Thrown by a task's Perform() to report a failure; the reason is the task's own.
class AbstractWorker::Task::TaskException : public CHwapiException {
public:
    using CHwapiException::CHwapiException;
};

/// Thrown when a worker is set up a second time.
class AbstractWorker::SetupAlreadyDoneException : public CHwapiException {
public:
    /// @param description what could not be set up
    SetupAlreadyDoneException(const std::string& description, const char* file, ssize_t line)
        : CHwapiException("Worker setup already done", description, file, line)
    {
    }
};

} // namespace vel::hwapi::common
