// SPDX-License-Identifier: MIT
/// @file PosixTasks.cpp
/// Registers the worker's own order of waits, which lets it be suspended between two tasks, with the semaphores of the
/// C library: what that order costs with whatever semaphores.
#include "worker/Job.hpp"
#include "worker/Tasks.hpp"

#include <deque>
#include <memory>
#include <semaphore.h>

namespace {

using namespace dorn::benchmarks;

class Semaphore {
public:
    explicit Semaphore(unsigned count) { sem_init(&m_sem, 0, count); }
    ~Semaphore() { sem_destroy(&m_sem); }
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    void lock() { sem_wait(&m_sem); }
    void unlock() { sem_post(&m_sem); }

private:
    sem_t m_sem{};
};

class PosixRunner {
public:
    PosixRunner() : m_thread([this] { work(); }) {}
    ~PosixRunner()
    {
        push(nullptr);
        m_thread.join();
    }
    PosixRunner(const PosixRunner&) = delete;
    PosixRunner& operator=(const PosixRunner&) = delete;

    void assign(Goal& goal) { push(std::make_unique<Job>(goal)); }
    void finish() {}

private:
    void push(std::unique_ptr<Job> job)
    {
        {
            const std::lock_guard lock(m_queue);
            m_jobs.push_back(std::move(job));
        }
        m_added.unlock();
    }

    std::unique_ptr<Job> pop()
    {
        const std::lock_guard lock(m_queue);
        std::unique_ptr<Job> job = std::move(m_jobs.front());
        m_jobs.pop_front();
        return job;
    }

    void work()
    {
        for (;;) {
            m_added.lock();
            m_suspended.lock();
            const std::lock_guard executing(m_executing);
            m_suspended.unlock();
            const std::unique_ptr<Job> job = pop();
            if (!job) {
                return;
            }
            job->run();
        }
    }

    Semaphore m_added{0};
    Semaphore m_queue{1};
    Semaphore m_suspended{1};
    Semaphore m_executing{1};
    std::deque<std::unique_ptr<Job>> m_jobs;
    std::thread m_thread; ///< last: it uses the others
};

[[maybe_unused]] const bool isRegistered = registerTaskRate<PosixRunner>("posix", 1) &&
                                           registerTaskRate<PosixRunner>("posix", 4) &&
                                           registerHandOver<PosixRunner>("posix");

} // namespace
