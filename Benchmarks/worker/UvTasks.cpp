// SPDX-License-Identifier: MIT
/// @file UvTasks.cpp
/// Registers libuv's work queue with a pool of one thread. Only the thread of its loop can assign, and that is where
/// the work is reported and freed.
#include "worker/Tasks.hpp"

#include <cstdlib>
#include <memory>
#include <uv.h>

namespace {

using namespace dorn::benchmarks;

class UvRunner {
public:
    UvRunner() { uv_loop_init(&m_loop); }
    ~UvRunner() { uv_loop_close(&m_loop); }
    UvRunner(const UvRunner&) = delete;
    UvRunner& operator=(const UvRunner&) = delete;

    void assign(Goal& goal)
    {
        auto request = std::make_unique<uv_work_t>();
        request->data = &goal;
        uv_queue_work(
            &m_loop, request.get(), [](uv_work_t* work) { static_cast<Goal*>(work->data)->approach(); },
            [](uv_work_t* work, int) { delete work; });
        request.release(); // NOLINT(bugprone-unused-return-value): the callback above deletes it
    }
    void finish() { uv_run(&m_loop, UV_RUN_DEFAULT); }

private:
    uv_loop_t m_loop{};
};

bool haveOneThread()
{
    return setenv("UV_THREADPOOL_SIZE", "1", 1) == 0; // read when the first work is queued
}

[[maybe_unused]] const bool isRegistered =
    haveOneThread() && registerTaskRate<UvRunner>("libuv", 1) && registerHandOver<UvRunner>("libuv");

} // namespace
