// SPDX-License-Identifier: MIT
/// @file QueueTasks.cpp
/// Registers what one writes without a library: a queue with a mutex and a condition variable.
#include "worker/Job.hpp"
#include "worker/Tasks.hpp"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

namespace {

using namespace dorn::benchmarks;

class QueueRunner {
public:
    QueueRunner() : m_thread([this] { work(); }) {}
    ~QueueRunner()
    {
        push(nullptr);
        m_thread.join();
    }
    QueueRunner(const QueueRunner&) = delete;
    QueueRunner& operator=(const QueueRunner&) = delete;

    void assign(Goal& goal) { push(std::make_unique<Job>(goal)); }
    void finish() {}

private:
    void push(std::unique_ptr<Job> job)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_jobs.push_back(std::move(job));
        }
        m_added.notify_one();
    }

    void work()
    {
        for (;;) {
            std::unique_lock lock(m_mutex);
            m_added.wait(lock, [this] { return !m_jobs.empty(); });
            const std::unique_ptr<Job> job = std::move(m_jobs.front());
            m_jobs.pop_front();
            lock.unlock();
            if (!job) {
                return;
            }
            job->run();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_added;
    std::deque<std::unique_ptr<Job>> m_jobs;
    std::thread m_thread; ///< last: it uses the others
};

[[maybe_unused]] const bool isRegistered = registerTaskRate<QueueRunner>("queue", 1) &&
                                           registerTaskRate<QueueRunner>("queue", 4) &&
                                           registerHandOver<QueueRunner>("queue");

} // namespace
