// SPDX-License-Identifier: MIT
/// @file Eu.hpp
/// An execution unit for a rule.
#pragma once

#include "AaSysCom.h"

#include <functional>
#include <future>
#include <memory>
#include <pthread.h>
#include <string>

namespace dorn::conformance {

/// Runs a function on an EU that the platform creates. What the function finds broken is thrown by join().
class Eu {
public:
    explicit Eu(std::function<void()> body, const std::string& name = "ConformanceEu");
    /// Waits for the end of the body; when it does not end, neither can the rule: giveUp().
    ~Eu();
    Eu(const Eu&) = delete;
    Eu& operator=(const Eu&) = delete;

    TAaProEuId id() const { return m_id; }
    /// The thread; asked when it has begun to run.
    pthread_t thread() const;
    /// Waits for the end of the body. Ends the rule as broken when it has thrown, or has not ended within the bound.
    void join();
    /// Whether the body has been left, be it by cancellation.
    bool hasEnded() const;

private:
    struct Body;
    static void* run(void* argument);

    std::shared_ptr<Body> m_body;
    TAaProEuId m_id = 0;
};

/// A flag that one thread raises and others wait for.
class Signal {
public:
    void raise();
    /// Ends the rule as broken when it has not been raised within the bound. @param what "the EU has not run"
    void await(const std::string& what) const;
    bool isRaised() const;

private:
    std::promise<void> m_promise;
    std::shared_future<void> m_future = m_promise.get_future().share();
};

/// Cancels an EU that waits, and ends the rule as broken when its destructors do not run.
/// @param wait never returns by itself
void expectUnwinding(const std::function<void()>& wait);

} // namespace dorn::conformance
