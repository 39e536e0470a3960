// SPDX-License-Identifier: MIT
/// @file Gauge.hpp
/// A boundary interface as small as can be, to test what all of them are made of.
#pragma once

#include "boundaryIf/AbstractBif.hpp"

#include <functional>
#include <string>
#include <utility>

namespace dorn::test {

using vel::hwapi::common::AbstractWorker;
using vel::hwapi::common::bif::AbstractBif;

/// A callback parameter.
class Reading {
public:
    Reading() = default;
    explicit Reading(int value) : m_value(value) {}
    Reading(const Reading&) = default;
    Reading& operator=(const Reading&) = default;
    virtual ~Reading() = default;

    int getValue() const { return m_value; }
    void setValue(int value) { m_value = value; }
    bool operator==(const Reading& other) const { return m_value == other.m_value; }

private:
    int m_value = 0;
};

/// A gauge with two events. Lets tests do what otherwise only drivers do.
class Gauge : public AbstractBif<Reading> {
public:
    class GaugeCallback : public CallbackFunctor {};

    static inline const std::string HIGH = "GaugeHighEvent";
    static inline const std::string LOW = "GaugeLowEvent";

    Gauge() = default;
    explicit Gauge(AbstractWorker& worker) : AbstractBif(worker) {}

    using AbstractBif::addCallback;
    using AbstractBif::callCallback;
    using AbstractBif::callCallbackWithParameter;
    using AbstractBif::callEventAsynchronously;
    using AbstractBif::callEventSynchronously;
    using AbstractBif::queueEvent;

    void raise(const std::string& name, Reading reading) { callCallback(name, reading); }
};

/// A callback that does what the test says.
class OnReading : public Gauge::GaugeCallback {
public:
    explicit OnReading(std::function<void(Reading&)> work) : m_work(std::move(work)) {}
    void operator()(Reading& reading) override { m_work(reading); }

private:
    std::function<void(Reading&)> m_work;
};

} // namespace dorn::test
