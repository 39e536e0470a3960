// SPDX-License-Identifier: MIT
/// @file NodeMessages.hpp
/// Taking part in the messages of a node, and knowing who is who there.
#pragma once

#include "AaSysCom.h"
#include "answers/MessageText.hpp"
#include "node/EeTable.hpp"
#include "node/NodePlace.hpp"
#include "port/Clock.hpp"
#include "text/Values.hpp"

#include <memory>
#include <string>
#include <vector>

namespace dorn::tool {

struct DestroyMessage {
    void operator()(void* message) const { AaSysComMsgDestroy(&message); }
};
using MessageHandle = std::unique_ptr<void, DestroyMessage>;

/// The payload of a message; valid as long as the message.
BytesView payloadOf(void* message);

/// The own node's id as it stands in addresses.
TAaSysComNid ownNode();

/// The next message of the calling thread; null when none came in time or when the thread was woken.
MessageHandle receive(host::Deadline until);

/// A communication point for the calling thread, any free one.
class CommunicationPoint {
public:
    /// @throws Failure when there is none.
    CommunicationPoint();
    ~CommunicationPoint();
    CommunicationPoint(const CommunicationPoint&) = delete;
    CommunicationPoint& operator=(const CommunicationPoint&) = delete;
    TAaSysComCpid cpid() const { return m_cpid; }

private:
    TAaSysComCpid m_cpid;
};

/// Knows the services by a look at the node's list, which it renews twice a second.
class NameBook {
public:
    explicit NameBook(const NodePlace& node);

    /// The living service that holds a cpid; empty for none.
    std::string ofCpid(TAaSysComCpid cpid);
    /// The living service that a process is; empty for none.
    std::string ofPid(std::int32_t pid);
    /// The service at an address; empty where it is not of this node.
    std::string ofAddress(TAaSysComSicad address);
    /// The cpid by which a living service is known; 0 when there is none of this name.
    TAaSysComCpid cpidOf(const std::string& name);
    /// Asks this book, which has to live as long.
    Names names();

private:
    template <class Condition>
    std::string nameWhere(const Condition& isMeant);
    void renew();

    const host::EeTable* m_table;
    std::vector<host::EeInfo> m_services;
    host::Nanoseconds m_renewAt{};
};

} // namespace dorn::tool
