// SPDX-License-Identifier: MIT
/// @file SignalCalls.cpp
/// Registers Boost.Signals2: a signal with one slot for each event, found by its place or by its name.
#include "boundaryIf/CallEvents.hpp"

#include <boost/signals2/signal.hpp>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace dorn::benchmarks;
using Signal = boost::signals2::signal<void(Reading&)>;

class SignalSource {
public:
    explicit SignalSource(std::size_t count) : m_signals(count)
    {
        for (Signal& signal : m_signals) {
            signal.connect([this](Reading& reading) { m_sum += reading.getValue(); });
        }
    }
    void raise(std::size_t which, Reading& reading) { m_signals[which](reading); }
    std::int64_t sum() const { return m_sum; }

private:
    std::int64_t m_sum = 0;
    std::vector<Signal> m_signals;
};

class NamedSignalSource {
public:
    explicit NamedSignalSource(std::size_t count)
    {
        for (std::size_t number = 0; number < count; ++number) {
            m_names.push_back("GaugeMeasurement" + std::to_string(number) + "Event");
            m_signals[m_names.back()].connect([this](Reading& reading) { m_sum += reading.getValue(); });
        }
    }
    void raise(std::size_t which, Reading& reading) { m_signals.find(m_names[which])->second(reading); }
    std::int64_t sum() const { return m_sum; }

private:
    std::int64_t m_sum = 0;
    std::vector<std::string> m_names;
    std::map<std::string, Signal> m_signals;
};

[[maybe_unused]] const bool isRegistered =
    registerCalls<SignalSource>("signals2") && registerCalls<NamedSignalSource>("namedSignals2");

} // namespace
