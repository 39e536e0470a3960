// SPDX-License-Identifier: MIT
/// @file QueueingWorker.hpp
/// A worker without thread, which notes what is asked of it and runs its tasks when the test says so.
#pragma once

#include "AbstractWorker.hpp"

#include <deque>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace dorn::test {

class QueueingWorker : public vel::hwapi::common::AbstractWorker {
public:
    QueueingWorker() = default;
    explicit QueueingWorker(bool isSetUp) : m_isSetUp(isSetUp) {}

    std::vector<std::string> calls;
    std::deque<std::unique_ptr<Task>> tasks;
    bool isFull = false; ///< assigning a task fails

    /// Performs all tasks and deletes each afterwards.
    void work()
    {
        while (!tasks.empty()) {
            tasks.front()->Perform();
            tasks.pop_front();
        }
    }

    void Setup(ERadHwapi printId, std::string name) override
    {
        calls.push_back("Setup " + std::to_string(printId) + ' ' + name);
        m_isSetUp = true;
    }
    void AssignTaskAndGiveOwnership(Task* task) override
    {
        if (isFull) {
            throw std::bad_alloc();
        }
        tasks.emplace_back(task);
    }
    void AssignTaskAndKeepOwnership(Task* /*task*/) override { calls.emplace_back("AssignTaskAndKeepOwnership"); }
    bool IsSetupDone() override { return m_isSetUp; }
    void startWorkerThread() override { calls.emplace_back("startWorkerThread"); }
    void SuspendWorking() override { calls.emplace_back("SuspendWorking"); }
    void SuspendAndWaitWorkToComplete() override { calls.emplace_back("SuspendAndWaitWorkToComplete"); }
    void ResumeWorking() override { calls.emplace_back("ResumeWorking"); }
    bool IsWorkingSuspended() override { return false; }

private:
    bool m_isSetUp = false;
};

} // namespace dorn::test
