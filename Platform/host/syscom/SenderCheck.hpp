// SPDX-License-Identifier: MIT
/// @file SenderCheck.hpp
/// Whether a process may send in the name of an address.
#pragma once

#include "AaSysCom.h"
#include "port/Transport.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

namespace dorn::host {

class CpidStore;

/// What has been believed is not looked up again as long as nobody has begun to hold a cpid since: looking up has the
/// kernel go through the locks of the whole node. So it is with a few dozen senders in turn, too.
class SenderCheck {
public:
    /// Whether a peer is to be believed that a message is from @p cpid of this node: nobody else can be it, because it
    /// is 0, a cpid of the peer, a free one, or one that another process took over after the peer had gone.
    /// @param store null only while it is being closed
    bool isCredible(TAaSysComCpid cpid, const Peer& peer, const CpidStore* store);

    /// Whether a peer is to be believed about senders of other nodes: only the node's gateway is.
    bool isGateway(const Peer& peer, const CpidStore* store);

private:
    struct Believed {
        pid_t process = 0;
        std::uint32_t generation = 0;
        TAaSysComCpid cpid = 0;
        bool isSame(const Believed& other) const;
    };

    static constexpr std::size_t sendersRemembered = 32;

    std::array<Believed, sendersRemembered> m_senders;
    std::size_t m_next = 0; ///< place of the next one to remember, the oldest's
    Believed m_gateway;
};

} // namespace dorn::host
