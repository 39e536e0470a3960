// SPDX-License-Identifier: MIT
/// @file BareCalls.cpp
/// Registers what one writes without a library: a `std::function` for each event, and a virtual call.
#include "boundaryIf/CallEvents.hpp"

#include <functional>
#include <memory>
#include <vector>

namespace {

using namespace dorn::benchmarks;

class FunctionSource {
public:
    explicit FunctionSource(std::size_t count)
        : m_functions(count, [this](Reading& reading) { m_sum += reading.getValue(); })
    {
    }
    void raise(std::size_t which, Reading& reading) { m_functions[which](reading); }
    std::int64_t sum() const { return m_sum; }

private:
    std::int64_t m_sum = 0;
    std::vector<std::function<void(Reading&)>> m_functions;
};

class Callback {
public:
    virtual ~Callback() = default;
    virtual void call(Reading& reading) = 0;
};

class Add : public Callback {
public:
    explicit Add(std::int64_t& sum) : m_sum(sum) {}
    void call(Reading& reading) override { m_sum += reading.getValue(); }

private:
    std::int64_t& m_sum;
};

class VirtualSource {
public:
    explicit VirtualSource(std::size_t count)
    {
        for (std::size_t number = 0; number < count; ++number) {
            m_callbacks.push_back(std::make_unique<Add>(m_sum));
        }
    }
    void raise(std::size_t which, Reading& reading) { m_callbacks[which]->call(reading); }
    std::int64_t sum() const { return m_sum; }

private:
    std::int64_t m_sum = 0;
    std::vector<std::unique_ptr<Callback>> m_callbacks;
};

[[maybe_unused]] const bool isRegistered =
    registerCalls<FunctionSource>("function") && registerCalls<VirtualSource>("virtual");

} // namespace
