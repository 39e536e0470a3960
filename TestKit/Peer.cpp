// SPDX-License-Identifier: MIT
#include "Peer.hpp"

#include "seam/OwnMessages.hpp"
#include "seam/RealSeam.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <pthread.h>

namespace dorn::testkit {
namespace {

template <class... Arguments>
std::string format(const char* pattern, Arguments... arguments)
{
    std::array<char, 128> text{};
    std::snprintf(text.data(), text.size(), pattern, arguments...); // NOLINT: every pattern is in this file
    return text.data();
}

} // namespace

Message::~Message()
{
    __real_AaSysComMsgDestroy(&m_handle);
}

TAaSysComMsgId Message::id() const
{
    return __real_AaSysComMsgGetId(m_handle);
}

TAaSysComSicad Message::sender() const
{
    return __real_AaSysComMsgGetSender(m_handle);
}

TAaSysComSicad Message::receiver() const
{
    return __real_AaSysComMsgGetReceiver(m_handle);
}

std::span<const std::byte> Message::payload() const
{
    return {static_cast<const std::byte*>(__real_AaSysComMsgGetPayload(m_handle)),
            __real_AaSysComMsgGetPayloadSize(m_handle)};
}

std::string Message::text() const
{
    const std::span<const std::byte> bytes = payload();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

const void* Message::beginOfAtLeast(std::size_t size) const
{
    if (payload().size() < size) {
        throw std::runtime_error(
            format("message 0x%04X has %zu payload bytes, not the expected %zu", id(), payload().size(), size));
    }
    return payload().data();
}

Peer::Peer(TAaSysComCpid cpid) : m_thread([this, cpid] { collect(cpid); })
{
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_eu != 0; });
    }
    if (m_cpid == 0) {
        m_thread.join();
        throw std::runtime_error(format("peer: cpid 0x%04X is not granted", cpid));
    }
}

Peer::~Peer()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    __real_AaSysComEuWakeUp(m_eu);
    m_thread.join();
}

void Peer::collect(TAaSysComCpid wanted)
{
    pthread_setname_np(pthread_self(), "Peer");
    const TAaProEuId eu = __real_AaProEuCurrent();
    const TAaSysComCpid granted = __real_AaSysComUserRegister(wanted, eu);
    {
        const std::lock_guard lock(m_mutex);
        m_cpid = wanted == 0 || granted == wanted ? granted : 0;
        m_eu = eu;
        m_isEnding = m_cpid == 0;
        m_changed.notify_all();
    }
    for (;;) {
        {
            const std::lock_guard lock(m_mutex);
            if (m_isEnding) {
                break;
            }
        }
        if (void* const message = __real_AaSysComMsgReceive(AA_WAIT_FOREVER)) {
            store(Message(message));
        }
    }
    if (granted != 0) {
        __real_AaSysComUserDeregister(granted);
    }
}

void Peer::store(Message message)
{
    const std::lock_guard lock(m_mutex);
    if (message.id() == peerBarrierId && message.sender() == address()) {
        ++m_barriers;
    } else {
        m_inbox.push_back(std::move(message));
    }
    m_changed.notify_all();
}

TAaSysComSicad Peer::address() const
{
    return __real_AaSysComSicadGet(m_cpid, __real_AaSysComGetOwnNid());
}

void Peer::send(TAaSysComMsgId id, TAaSysComSicad receiver, std::span<const std::byte> payload)
{
    if (payload.size() > AA_SYS_COM_MAX_PAYLOAD) {
        throw std::runtime_error(format("message 0x%04X: %zu payload bytes are too many", id, payload.size()));
    }
    const bool isCpid = receiver <= 0xFFFF;
    const TAaSysComSicad to =
        isCpid ? __real_AaSysComSicadGet(static_cast<TAaSysComCpid>(receiver), __real_AaSysComGetOwnNid()) : receiver;
    void* message = __real_AaSysComMsgCreate(id, static_cast<std::uint16_t>(payload.size()), to);
    if (message && !payload.empty()) {
        std::memcpy(__real_AaSysComMsgGetPayload(message), payload.data(), payload.size());
    }
    const std::int32_t status = __real_AaSysComMsgSendS(&message, address());
    if (status != EAaSysComStatus_Ok) {
        throw std::runtime_error(format("message 0x%04X to 0x%08X: not sent, status %d", id, to, status));
    }
}

void Peer::send(TAaSysComMsgId id, TAaSysComSicad receiver, const std::string& text)
{
    send(id, receiver, std::as_bytes(std::span(text)));
}

Message Peer::expect(TAaSysComMsgId id, Bound bound)
{
    return take(id, bound);
}

Message Peer::expectAny(Bound bound)
{
    return take(std::nullopt, bound);
}

Message Peer::take(std::optional<TAaSysComMsgId> id, Bound bound)
{
    std::unique_lock lock(m_mutex);
    if (!m_changed.wait_for(lock, bound, [&] { return find(id) != m_inbox.end(); })) {
        throw std::runtime_error("peer: no message" + (id ? format(" 0x%04X", *id) : "") + " within " +
                                 std::to_string(bound.count()) + " ms;" + inboxText());
    }
    const auto place = find(id);
    Message message = std::move(*place);
    m_inbox.erase(place);
    return message;
}

Peer::Inbox::iterator Peer::find(std::optional<TAaSysComMsgId> id)
{
    return std::find_if(m_inbox.begin(), m_inbox.end(), [&](const Message& m) { return !id || m.id() == *id; });
}

void Peer::expectNothing()
{
    std::unique_lock lock(m_mutex);
    const unsigned wanted = m_barriers + 1;
    lock.unlock();
    send(peerBarrierId, address());
    lock.lock();
    if (!m_changed.wait_for(lock, generousBound, [&] { return m_barriers >= wanted; })) {
        throw std::runtime_error("peer: does not receive");
    }
    if (!m_inbox.empty()) {
        throw std::runtime_error("peer: nothing was expected;" + inboxText());
    }
}

std::string Peer::inboxText() const
{
    std::string text = m_inbox.empty() ? " nothing has arrived" : " not taken:";
    for (const Message& message : m_inbox) {
        text += format(" 0x%04X (%zu bytes, from 0x%08X)", message.id(), message.payload().size(), message.sender());
    }
    return text;
}

} // namespace dorn::testkit
