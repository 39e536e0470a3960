// SPDX-License-Identifier: MIT
/// @file Job.hpp
/// What a queue that is written without a library holds.
#pragma once

#include "worker/Goal.hpp"

namespace dorn::benchmarks {

class Job {
public:
    explicit Job(Goal& goal) : m_goal(goal) {}
    virtual ~Job() = default;
    virtual void run() { m_goal.approach(); }

private:
    Goal& m_goal;
};

} // namespace dorn::benchmarks
