// SPDX-License-Identifier: MIT
/// @file BifEvents.cpp
/// Registers the library's boundary interface after its initialization.
#include "boundaryIf/Gauge.hpp"
#include "boundaryIf/QueuedEvents.hpp"

namespace {

using namespace dorn::benchmarks;
using vel::hwapi::common::Worker;

class Approach : public Gauge::GaugeCallback {
public:
    explicit Approach(Goal& goal) : m_goal(goal) {}
    void operator()(Reading& /*reading*/) override { m_goal.approach(); }

private:
    Goal& m_goal;
};

/// One worker is used again and again: it runs as long as the process.
class BifSource {
public:
    BifSource(std::size_t count, Goal& goal) : m_callback(goal), m_gauge(count, *Worker::Get(1))
    {
        for (std::size_t number = 0; number < count; ++number) {
            m_gauge.setCallback(number, &m_callback);
        }
        m_gauge.initialize();
    }
    ~BifSource()
    {
        Worker::Get(1)->SuspendAndWaitWorkToComplete(); // the last event may still be on its way out
        Worker::Get(1)->ResumeWorking();
    }
    BifSource(const BifSource&) = delete;
    BifSource& operator=(const BifSource&) = delete;

    void raise(std::size_t which)
    {
        Reading reading(1);
        m_gauge.raise(which, reading);
    }
    void hold() { Worker::Get(1)->SuspendAndWaitWorkToComplete(); }
    void release() { m_gauge.resume(); }

private:
    Approach m_callback;
    Gauge m_gauge;
};

[[maybe_unused]] const bool isRegistered = registerQueuedEvents<BifSource>("dorn");

} // namespace
