// SPDX-License-Identifier: MIT
/// @file Worker.hpp
/// The worker thread: an execution unit (EU) that runs tasks in the order in which they were assigned.
///
/// 1. Take one with Get(id), which everybody shares who knows the id, or with Get(), which is the caller's alone.
/// 2. Setup() starts its EU. From now on it runs until the process ends; nothing stops it.
/// 3. Any thread assigns tasks. They wait in a queue without limit, also before Setup() and while suspended.
/// 4. The EU takes one task at a time, calls its Perform() and then deletes it if it was given away.
///
/// Threads: any thread may assign tasks at any time; after Setup(), any thread may suspend and resume. Perform() runs
/// on the worker's EU; it may assign tasks and suspend or resume its own worker, but SuspendAndWaitWorkToComplete()
/// would wait for itself there.
///
/// A worker must not be destroyed once it has been set up, because its EU goes on using it.
#pragma once

#include "AaPro.h"
#include "AaSem.h"
#include "AbstractWorker.hpp"

#include <cstdint>
#include <deque>
#include <map>
#include <string>

namespace vel::hwapi::common {

/// A worker thread: one EU and its queue of tasks.
class Worker : public AbstractWorker {
public:
    /// The worker registered under @p id; it is made when there is none. It is never destroyed.
    static Worker* Get(int id);
    /// A new worker that is registered nowhere. The caller owns it.
    static Worker* Get();

    Worker();
    /// Only for a worker that has not been set up. Tasks that are still queued are not deleted.
    ~Worker() override;

    /// Starts the worker's EU with the parameters set so far (priority 5, 4096 bytes of stack, time sharing). That the
    /// EU could not be created is not reported; the worker then counts as set up, keeps what is assigned, and Setup()
    /// may be called again.
    /// @throws InvalidParameterException "invalid worker name" when @p name is empty; a warning has been logged.
    /// @throws SetupAlreadyDoneException when the EU runs; a warning has been logged.
    void Setup(ERadHwapi printId, std::string name) override;

    /// Queues a task and leaves it to the worker, which deletes it after it has run. One that throws is not deleted.
    /// @throws InvalidParameterException when @p task is null.
    /// @throws std::bad_alloc when the queue cannot grow; the task is still the caller's then.
    void AssignTaskAndGiveOwnership(Task* task) override;

    /// Queues a task that stays the caller's. The worker touches it for a moment after Perform() has returned: delete
    /// it after SuspendAndWaitWorkToComplete(), or once a task that was assigned later runs. Until then it must not be
    /// assigned with ownership either.
    /// @throws InvalidParameterException when @p task is null.
    /// @throws std::bad_alloc when the queue cannot grow.
    void AssignTaskAndKeepOwnership(Task* task) override;

    bool IsSetupDone() override;
    /// Creates the EU; called by Setup().
    void startWorkerThread() override;

    /// Has the worker take no further task; the one in hand goes on. When two threads suspend at once, the second one
    /// waits until the worker is resumed and suspends it again; neither of them had better be a task of this worker.
    void SuspendWorking() override;
    /// Same as SuspendWorking(), and returns when the task in hand has ended, at once when there is none. Not to be
    /// called by a task of this worker.
    void SuspendAndWaitWorkToComplete() override;
    /// Has the worker take tasks again.
    void ResumeWorking() override;
    /// True from a suspension until the next ResumeWorking(), also while the task in hand still runs.
    bool IsWorkingSuspended() override;

    /// Same as the other Setup(), with an EU of the caller's choice. The three parameters are stored even when that one
    /// throws.
    /// @param priority used with a real-time policy only
    /// @param stackSize bytes; the platform raises it to what it needs
    virtual void Setup(ERadHwapi printId, std::string name, unsigned int priority, unsigned int stackSize,
                       EAaProEuSchedulingPolicy policy);

    /// Queues a task: with @p giveOwnership 1 as AssignTaskAndGiveOwnership(), with any other value as
    /// AssignTaskAndKeepOwnership().
    virtual void AssignTask(Task* task, unsigned int giveOwnership);

private:
    static void* WorkerFunction(void* args);
    void assignTask(Task* task, bool owned);
    void performNextTask();
    Task* takeTask();
    void execute(Task& task);
    void waitWorkToComplete();

    static std::map<int, Worker*>* m_workers; ///< made by the first Get(id), never emptied

    bool m_setupDone = false;
    TAaProEuId m_euId = 0; ///< the EU runs while it is not 0
    ERadHwapi m_printId = ERadHwapi_Last;
    std::string m_name;
    std::deque<Task*> m_taskQueue;
    AaSem* m_waitForTaskSem; ///< one count for each queued task
    AaSem* m_queueSem;       ///< guards m_taskQueue
    AaSem* m_suspendSem;     ///< held while suspended
    AaSem* m_executingSem;   ///< held while a task runs
    bool m_workingSuspended = false;
    std::uint32_t m_priority = 5;
    std::uint32_t m_stackSize = 4096;
    EAaProEuSchedulingPolicy m_policy = EAaProEuSchedulingPolicy_Background;
};

} // namespace vel::hwapi::common
