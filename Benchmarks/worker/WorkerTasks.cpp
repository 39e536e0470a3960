// SPDX-License-Identifier: MIT
/// @file WorkerTasks.cpp
/// Registers the library's worker.
#include "Worker.hpp"
#include "worker/Tasks.hpp"

namespace {

using namespace dorn::benchmarks;
using namespace vel::hwapi::common;

class Approach : public AbstractWorker::Task {
public:
    explicit Approach(Goal& goal) : m_goal(goal) {}
    void Perform() override { m_goal.approach(); }

private:
    Goal& m_goal;
};

/// One worker is used again and again: it runs as long as the process.
class WorkerRunner {
public:
    WorkerRunner()
    {
        if (!m_worker.IsSetupDone()) {
            m_worker.Setup(ERadHwapi_PrintCtrlTask, "Benchmark");
        }
    }
    void assign(Goal& goal) { m_worker.AssignTaskAndGiveOwnership(new Approach(goal)); }
    void finish() {}

private:
    Worker& m_worker = *Worker::Get(1);
};

[[maybe_unused]] const bool isRegistered = registerTaskRate<WorkerRunner>("dorn", 1) &&
                                           registerTaskRate<WorkerRunner>("dorn", 4) &&
                                           registerHandOver<WorkerRunner>("dorn");

} // namespace
