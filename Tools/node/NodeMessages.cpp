// SPDX-License-Identifier: MIT
#include "node/NodeMessages.hpp"

#include "AaPro.h"
#include "Outcome.hpp"
#include "node/PerNode.hpp"
#include "syscom/Node.hpp"

#include <algorithm>

namespace dorn::tool {

BytesView payloadOf(void* message)
{
    return {static_cast<const std::byte*>(AaSysComMsgGetPayload(message)), AaSysComMsgGetPayloadSize(message)};
}

TAaSysComNid ownNode()
{
    return host::idInAddresses(AaSysComGetOwnNid());
}

MessageHandle receive(host::Deadline until)
{
    constexpr host::Nanoseconds longest = std::chrono::minutes(10);
    const host::Nanoseconds left =
        until == host::noDeadline ? longest : std::min(until - host::Clock::get().monotonic(), longest);
    const auto timeout = std::chrono::ceil<std::chrono::microseconds>(std::max(left, host::Nanoseconds(0)));
    return MessageHandle(AaSysComMsgReceive(static_cast<std::int32_t>(timeout.count())));
}

CommunicationPoint::CommunicationPoint() : m_cpid(AaSysComUserRegister(0, AaProEuCurrent()))
{
    if (m_cpid == 0) {
        throw Failure("no cpid can be had on " + NodePlace().nodeName() + "; set DORN_LOG=stderr to see why");
    }
}

CommunicationPoint::~CommunicationPoint()
{
    AaSysComUserDeregister(m_cpid);
}

NameBook::NameBook(const NodePlace& node)
    : m_table(node.has(NodePart::Services) ? &host::PerNode<host::EeTable>::get() : nullptr)
{
}

template <class Condition>
std::string NameBook::nameWhere(const Condition& isMeant)
{
    renew();
    const auto found = std::find_if(m_services.begin(), m_services.end(), isMeant);
    return found == m_services.end() ? "" : found->name;
}

std::string NameBook::ofCpid(TAaSysComCpid cpid)
{
    return nameWhere([cpid](const host::EeInfo& service) {
        return std::any_of(service.cpids.begin(), service.cpids.end(),
                           [cpid](const host::EeInfo::Cpid& held) { return held.cpid == cpid; });
    });
}

std::string NameBook::ofPid(std::int32_t pid)
{
    return nameWhere([pid](const host::EeInfo& service) { return service.pid == pid; });
}

std::string NameBook::ofAddress(TAaSysComSicad address)
{
    return host::nodeOf(address) == ownNode() ? ofCpid(host::cpidOf(address)) : "";
}

TAaSysComCpid NameBook::cpidOf(const std::string& name)
{
    renew();
    const auto found = std::find_if(m_services.begin(), m_services.end(),
                                    [&name](const host::EeInfo& service) { return service.name == name; });
    return found == m_services.end() ? TAaSysComCpid{0} : found->cpid;
}

Names NameBook::names()
{
    return {ownNode(), [this](TAaSysComCpid cpid) { return ofCpid(cpid); },
            [this](std::int32_t pid) { return ofPid(pid); }};
}

void NameBook::renew()
{
    constexpr auto period = std::chrono::milliseconds(500);
    const host::Nanoseconds now = host::Clock::get().monotonic();
    if (m_table && now >= m_renewAt) {
        m_services = m_table->list();
        std::erase_if(m_services, [](const host::EeInfo& service) { return !service.alive; });
        m_renewAt = now + period;
    }
}

} // namespace dorn::tool
