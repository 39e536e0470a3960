// SPDX-License-Identifier: MIT
/// @file StatusServer.hpp
/// Answers who asks for the gateway's status.
#pragma once

#include "gateway/Status.hpp"
#include "syscom/UnixSocket.hpp"
#include "syscom/WaitSet.hpp"

#include <functional>

namespace dorn::gateway {

/// Name of the status socket in the run directory.
constexpr const char* statusSocketName = "gateway";

/// Whoever connects gets the status in one packet.
class StatusServer final : private host::WaitSource {
public:
    using Source = std::function<GatewayStatus()>;

    /// @throws host::EnvironmentError when the socket cannot be made.
    StatusServer(const host::RunDirectory& directory, host::WaitSet& waitSet, Source source);
    ~StatusServer() override;

private:
    void onReadable() override;
    void tell(const host::UnixSocket& socket) const;

    const host::RunDirectory& m_directory;
    host::WaitSet& m_waitSet;
    Source m_source;
    host::UnixSocket m_listener;
};

} // namespace dorn::gateway
