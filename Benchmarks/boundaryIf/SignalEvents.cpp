// SPDX-License-Identifier: MIT
/// @file SignalEvents.cpp
/// Registers Boost.Signals2 whose slots post to a thread that runs Boost.Asio.
#include "boundaryIf/QueuedEvents.hpp"
#include "boundaryIf/Reading.hpp"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/signals2/signal.hpp>
#include <future>
#include <thread>
#include <vector>

namespace {

using namespace dorn::benchmarks;

class SignalSource {
public:
    SignalSource(std::size_t count, Goal& goal) : m_signals(count), m_thread([this] { m_context.run(); })
    {
        for (auto& signal : m_signals) {
            signal.connect([this, &goal](const Reading& reading) {
                boost::asio::post(m_context, [&goal, reading] {
                    benchmark::DoNotOptimize(reading.getValue());
                    goal.approach();
                });
            });
        }
    }
    ~SignalSource()
    {
        m_work.reset();
        m_thread.join();
    }
    SignalSource(const SignalSource&) = delete;
    SignalSource& operator=(const SignalSource&) = delete;

    void raise(std::size_t which)
    {
        const Reading reading(1);
        m_signals[which](reading);
    }
    /// Has the thread wait in a handler.
    void hold()
    {
        std::promise<void> isHeld;
        std::future<void> held = isHeld.get_future();
        m_release = std::promise<void>();
        boost::asio::post(m_context, [isHeld = std::move(isHeld), until = m_release.get_future()]() mutable {
            isHeld.set_value();
            until.wait();
        });
        held.wait();
    }
    void release() { m_release.set_value(); }

private:
    boost::asio::io_context m_context{1}; // one thread runs it, others post
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> m_work{m_context.get_executor()};
    std::vector<boost::signals2::signal<void(const Reading&)>> m_signals;
    std::promise<void> m_release;
    std::thread m_thread; ///< last: it uses the others
};

[[maybe_unused]] const bool isRegistered = registerQueuedEvents<SignalSource>("signals2");

} // namespace
