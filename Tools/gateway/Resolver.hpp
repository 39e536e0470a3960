// SPDX-License-Identifier: MIT
/// @file Resolver.hpp
/// Looking host names up without waiting for it.
#pragma once

#include "syscom/WaitSet.hpp"

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace dorn::gateway {

/// The system's look-up can take as long as its name servers like. Each runs in a thread of its own, one for each
/// ticket at a time, which nobody waits for: what it finds after the resolver has ended goes nowhere.
class Resolver {
public:
    /// The addresses of a host's name; any thread.
    using LookUp = std::function<std::vector<std::string>(const std::string& host)>;
    struct Found {
        std::size_t ticket;
        std::vector<std::string> addresses; ///< numeric; empty when the name is unknown
    };

    /// @param waitSet rung when something has been found; outlives the threads' last word by being told of the end
    /// @param lookUp empty: the system's
    explicit Resolver(host::WaitSet& waitSet, LookUp lookUp = {});
    ~Resolver();
    Resolver(const Resolver&) = delete;
    Resolver& operator=(const Resolver&) = delete;

    /// Begins to look @p host up for @p ticket, unless that is under way. Where no thread can be had for it nothing
    /// will be found; it may be begun again.
    void start(std::size_t ticket, const std::string& host);
    /// What has been found since the last call.
    std::list<Found> take();

private:
    struct Shared;
    LookUp m_lookUp;
    std::shared_ptr<Shared> m_shared;
    std::set<std::size_t> m_underWay;
};

} // namespace dorn::gateway
