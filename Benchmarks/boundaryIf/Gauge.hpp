// SPDX-License-Identifier: MIT
/// @file Gauge.hpp
/// A boundary interface with as many events as a benchmark wants.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/Reading.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace dorn::benchmarks {

class Gauge : public vel::hwapi::common::bif::AbstractBif<Reading> {
public:
    class GaugeCallback : public CallbackFunctor {};

    explicit Gauge(std::size_t events) { makeNames(events); }
    Gauge(std::size_t events, vel::hwapi::common::AbstractWorker& worker) : AbstractBif(worker) { makeNames(events); }

    void setCallback(std::size_t which, GaugeCallback* callback) { addCallback(m_names[which], callback); }
    void raise(std::size_t which, Reading& reading) { callCallback(m_names[which], reading); }

private:
    /// Of the length that the names of interfaces have, and like them equal at the beginning.
    void makeNames(std::size_t events)
    {
        for (std::size_t number = 0; number < events; ++number) {
            m_names.push_back("GaugeMeasurement" + std::to_string(number) + "Event");
        }
    }

    std::vector<std::string> m_names;
};

} // namespace dorn::benchmarks
