// SPDX-License-Identifier: MIT
/// @file BifCalls.cpp
/// Registers the library's boundary interface before its initialization.
#include "boundaryIf/CallEvents.hpp"
#include "boundaryIf/Gauge.hpp"

#include <deque>

namespace {

using namespace dorn::benchmarks;

class Add : public Gauge::GaugeCallback {
public:
    explicit Add(std::int64_t& sum) : m_sum(sum) {}
    void operator()(Reading& reading) override { m_sum += reading.getValue(); }

private:
    std::int64_t& m_sum;
};

class BifSource {
public:
    explicit BifSource(std::size_t count) : m_gauge(count)
    {
        for (std::size_t number = 0; number < count; ++number) {
            m_gauge.setCallback(number, &m_callbacks.emplace_back(m_sum));
        }
    }
    void raise(std::size_t which, Reading& reading) { m_gauge.raise(which, reading); }
    std::int64_t sum() const { return m_sum; }

private:
    std::int64_t m_sum = 0;
    std::deque<Add> m_callbacks;
    Gauge m_gauge;
};

[[maybe_unused]] const bool isRegistered = registerCalls<BifSource>("dorn");

} // namespace
