// SPDX-License-Identifier: MIT
/// @file ServiceUnderTest.hpp
/// Runs a service inside the test program.
#pragma once

#include "AaSysCom.h"
#include "Bound.hpp"

#include <memory>
#include <string>
#include <vector>

namespace vel::hwapi::common {
class Service;
}

namespace dorn::testkit {

/// Calls `Startup(argc, argv)` of a service on a thread of its own, as the service's `main` would.
///
///     GreeterS greeter;
///     ServiceUnderTest service(greeter, {"-v"});
///     ASSERT_TRUE(service.waitUntilReady());
///     ... talk to it through a Peer ...
///     EXPECT_EQ(service.terminate(), 1U);
///
/// The service object lives longer than this one and is started once. Its functions are for the thread that made it.
class ServiceUnderTest {
public:
    /// Starts the service.
    /// @param arguments what follows the program's name on the command line
    explicit ServiceUnderTest(vel::hwapi::common::Service& service, const std::vector<std::string>& arguments = {});
    /// Ends the service if it still runs. A service that does not end ends the test program.
    ~ServiceUnderTest();
    ServiceUnderTest(const ServiceUnderTest&) = delete;
    ServiceUnderTest& operator=(const ServiceUnderTest&) = delete;

    /// The address under which the service asked to be known.
    TAaSysComSicad address() const;

    /// Waits until the service publishes @p state.
    /// @return false when it does not within @p bound, or has ended in another state.
    [[nodiscard]] bool waitForState(unsigned state, Bound bound = generousBound);
    /// Waits until the service waits for messages, state 2.
    [[nodiscard]] bool waitUntilReady(Bound bound = generousBound) { return waitForState(2, bound); }

    /// Waits until the service has handled every message that this thread has sent it so far; the answers are then on
    /// their way. Passes a message through its loop, so its state is 3 for a moment.
    /// @throws std::runtime_error when the service does not run or does not get there within @p bound.
    void sync(Bound bound = generousBound);

    /// Asks the service to end, as an operator's SIGTERM does, and waits until it has.
    /// @return what `Startup` returned. @throws as waitForEnd() does.
    unsigned terminate(Bound bound = generousBound);

    /// Waits until the service has ended.
    /// @return what `Startup` returned.
    /// @throws what `Startup` threw; std::runtime_error when the service still runs after @p bound.
    unsigned waitForEnd(Bound bound = generousBound);

    /// Whether `Startup` has returned or thrown.
    bool hasEnded() const;

private:
    class Run;
    class Barrier;

    vel::hwapi::common::Service& m_service;
    std::shared_ptr<Barrier> m_barrier;
    std::unique_ptr<Run> m_run;
};

} // namespace dorn::testkit
