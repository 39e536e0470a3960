// SPDX-License-Identifier: MIT
/// @file AsioTasks.cpp
/// Registers Boost.Asio's io_context with one thread.
#include "worker/Tasks.hpp"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

namespace {

using namespace dorn::benchmarks;

class AsioRunner {
public:
    AsioRunner() : m_thread([this] { m_context.run(); }) {}
    ~AsioRunner()
    {
        m_work.reset();
        m_thread.join();
    }
    AsioRunner(const AsioRunner&) = delete;
    AsioRunner& operator=(const AsioRunner&) = delete;

    void assign(Goal& goal)
    {
        boost::asio::post(m_context, [&goal] { goal.approach(); });
    }
    void finish() {}

private:
    boost::asio::io_context m_context{1}; // one thread runs it, others post
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> m_work{m_context.get_executor()};
    std::thread m_thread;
};

[[maybe_unused]] const bool isRegistered = registerTaskRate<AsioRunner>("asio", 1) &&
                                           registerTaskRate<AsioRunner>("asio", 4) &&
                                           registerHandOver<AsioRunner>("asio");

} // namespace
