// SPDX-License-Identifier: MIT
/// @file CutProxy.hpp
/// TCP connections between gateways that a test can cut.
#pragma once

#include "port/Descriptor.hpp"

#include <atomic>
#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace dorn::gateway::test {

/// Passes on what comes to some ports of an address, each to another port. All functions may be called from any thread.
class CutProxy {
public:
    /// @param host the address of both sides
    explicit CutProxy(const std::string& host);
    ~CutProxy();
    CutProxy(const CutProxy&) = delete;
    CutProxy& operator=(const CutProxy&) = delete;

    /// Passes on from @p port to @p target. @return the route's number
    std::size_t add(std::uint16_t port, std::uint16_t target);

    /// Resets the connections of a route, and each new one, until restore().
    void cut(std::size_t route);
    /// Passes nothing on, but keeps the connections, until restore().
    void hold(std::size_t route);
    void restore(std::size_t route);

    /// Connections that came to a route, cut or not.
    std::uint64_t accepted(std::size_t route) const;
    /// Bytes passed on along a route, both ways.
    std::uint64_t passed(std::size_t route) const;

private:
    enum class Mode { Open, Held, Cut };
    struct Route {
        host::Descriptor listener;
        std::uint16_t target;
        Mode mode = Mode::Open;
        std::uint64_t accepted = 0;
        std::uint64_t passed = 0;
    };
    struct Pair {
        std::size_t route;
        host::Descriptor ends[2];
        std::vector<char> waiting[2]; ///< read from an end, not taken by the other
        bool isOver = false;
    };

    void run();
    void acceptAll();
    void pump(Pair& pair, std::size_t from);
    void reset(Pair& pair);
    host::Descriptor connectTo(std::uint16_t port) const;
    void ring() const;

    std::string m_host;
    host::Descriptor m_bell;
    mutable std::mutex m_mutex;
    std::vector<Route> m_routes;
    std::list<Pair> m_pairs;
    std::atomic<bool> m_isEnding{false};
    std::thread m_thread;
};

} // namespace dorn::gateway::test
