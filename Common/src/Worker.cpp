// SPDX-License-Identifier: MIT
#include "Worker.hpp"

#include "AaSysCom.h"
#include "AaSysLog.h"
#include "InvalidParameterException.hpp"
#include "SemLock.hpp"

#include <atomic>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>

namespace vel::hwapi::common {
namespace {

constinit std::mutex registryMutex;

} // namespace

constinit std::map<int, Worker*>* Worker::m_workers = nullptr;

Worker* Worker::Get(int id)
{
    const std::lock_guard lock(registryMutex);
    if (!m_workers) {
        m_workers = new std::map<int, Worker*>; // used by threads that outlive static objects
    }
    const auto found = m_workers->find(id);
    if (found != m_workers->end()) {
        return found->second;
    }
    auto worker = std::make_unique<Worker>();
    m_workers->emplace(id, worker.get());
    return worker.release();
}

Worker* Worker::Get()
{
    return new Worker;
}

Worker::Worker()
    : m_waitForTaskSem(AaSemCreateC(0)),
      m_queueSem(AaSemCreateC(1)),
      m_suspendSem(AaSemCreateC(1)),
      m_executingSem(AaSemCreateC(1))
{
}

Worker::~Worker()
{
    for (AaSem** const sem : {&m_waitForTaskSem, &m_queueSem, &m_suspendSem, &m_executingSem}) {
        if (*sem) {
            AaSemDestroy(sem);
        }
    }
    m_setupDone = false;
    m_taskQueue.clear();
}

void Worker::Setup(ERadHwapi printId, std::string name, unsigned int priority, unsigned int stackSize,
                   EAaProEuSchedulingPolicy policy)
{
    m_priority = priority;
    m_stackSize = stackSize;
    m_policy = policy;
    Setup(printId, std::move(name));
}

void Worker::Setup(ERadHwapi printId, std::string name)
{
    if (name.empty()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, m_printId, "Illegal name '%s' for Worker thread", name.c_str());
        throw InvalidParameterException("invalid worker name", __FILE__, __LINE__);
    }
    if (m_euId != 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, m_printId, "Worker '%s' setup already done", m_name.c_str());
        throw SetupAlreadyDoneException("execution is already done", __FILE__, __LINE__);
    }
    m_printId = printId;
    m_name = std::move(name);
    startWorkerThread();
    std::atomic_ref(m_setupDone).store(true);
}

bool Worker::IsSetupDone()
{
    return std::atomic_ref(m_setupDone).load();
}

void Worker::startWorkerThread()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, m_printId, "Starting Worker '%s'", m_name.c_str());
    Worker* const self = this;
    AaSysComEuCreateAndStartWithPolicy(&m_euId, m_name.c_str(), WorkerFunction, m_stackSize, m_policy, m_priority,
                                       &self, sizeof(self), 0);
}

void Worker::AssignTask(Task* task, unsigned int giveOwnership)
{
    if (giveOwnership == 1) {
        AssignTaskAndGiveOwnership(task);
    } else {
        AssignTaskAndKeepOwnership(task);
    }
}

void Worker::AssignTaskAndGiveOwnership(Task* task)
{
    assignTask(task, true);
}

void Worker::AssignTaskAndKeepOwnership(Task* task)
{
    assignTask(task, false);
}

void Worker::assignTask(Task* task, bool owned)
{
    if (!task) {
        throw InvalidParameterException("NULL pointer argument passed to Worker::AssignTask", __FILE__, __LINE__);
    }
    task->setOwnedByWorker(owned);
    {
        const SemLock queue(m_queueSem);
        m_taskQueue.push_back(task);
    }
    AaSemGive(m_waitForTaskSem);
}

void* Worker::WorkerFunction(void* args)
{
    Worker* const worker = *static_cast<Worker**>(args);
    while (std::atomic_ref(worker->m_euId).load(std::memory_order_relaxed) != 0) {
        worker->performNextTask();
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, worker->m_printId, "Terminating Worker '%s'", worker->m_name.c_str());
    return nullptr;
}

void Worker::performNextTask()
{
    // A suspension holds the worker up here, between two tasks and never inside one. Who waits for the work in hand
    // finds m_executingSem taken as soon as m_suspendSem is his.
    AaSemTake(m_waitForTaskSem, AA_WAIT_FOREVER);
    AaSemTake(m_suspendSem, AA_WAIT_FOREVER);
    const SemLock executing(m_executingSem);
    AaSemGive(m_suspendSem);
    try {
        if (Task* const task = takeTask()) {
            execute(*task);
        }
    } catch (const Task::TaskException& failure) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_printId, "Task - %s: %s", failure.what(),
                       failure.getDescription().c_str());
    } catch (...) {
        if (!std::current_exception()) {
            throw; // no exception, but the thread being cancelled
        }
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_printId, "Task - undefined exception");
    }
}

/// The first task of the queue. Null only where the platform had no semaphores to count them.
AbstractWorker::Task* Worker::takeTask()
{
    const SemLock queue(m_queueSem);
    if (m_taskQueue.empty()) {
        return nullptr;
    }
    Task* const task = m_taskQueue.front();
    m_taskQueue.pop_front();
    return task;
}

void Worker::execute(Task& task)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "WORKER: EXECUTE TASK");
    task.setExecutingWorker(this);
    task.Perform();
    task.setExecutingWorker(nullptr);
    if (task.isOwnedByWorker()) {
        delete &task;
    }
}

void Worker::SuspendWorking()
{
    if (IsWorkingSuspended()) {
        return;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "WORKER: SUSPEND WORKING");
    AaSemTake(m_suspendSem, AA_WAIT_FOREVER);
    std::atomic_ref(m_workingSuspended).store(true);
}

void Worker::ResumeWorking()
{
    if (!IsWorkingSuspended()) {
        return;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "WORKER: RESUME WORKING");
    if (std::atomic_ref(m_workingSuspended).exchange(false)) { // of two that resume at once, one gives
        AaSemGive(m_suspendSem);
    }
}

void Worker::SuspendAndWaitWorkToComplete()
{
    SuspendWorking();
    waitWorkToComplete();
}

void Worker::waitWorkToComplete()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "WORKER: WAITING WORK TO COMPLETE");
    const SemLock executing(m_executingSem);
}

bool Worker::IsWorkingSuspended()
{
    return std::atomic_ref(m_workingSuspended).load();
}

} // namespace vel::hwapi::common
