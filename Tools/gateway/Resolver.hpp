// SPDX-License-Identifier: MIT
/// @file Resolver.hpp
/// Looking host names up without waiting for it.
#pragma once

#include "syscom/WaitSet.hpp"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace dorn::gateway {

/// The system's look-up can take as long as its name servers like. Each runs in a thread of its own, which nobody
/// waits for: what it finds after the resolver has ended goes nowhere.
class Resolver {
public:
    struct Found {
        std::size_t ticket;
        std::optional<std::string> address; ///< numeric; nothing when the name is unknown
    };

    /// @param waitSet rung when something has been found; outlives the threads' last word by being told of the end
    explicit Resolver(host::WaitSet& waitSet);
    ~Resolver();
    Resolver(const Resolver&) = delete;
    Resolver& operator=(const Resolver&) = delete;

    void start(std::size_t ticket, const std::string& host);
    std::vector<Found> take();

private:
    struct Shared;
    std::shared_ptr<Shared> m_shared;
};

} // namespace dorn::gateway
