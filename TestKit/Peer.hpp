// SPDX-License-Identifier: MIT
/// @file Peer.hpp
/// The other side of a service: sends it messages and takes its answers.
#pragma once

#include "AaSysCom.h"
#include "Bound.hpp"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

namespace dorn::testkit {

/// A message that a Peer has received; freed with this object.
class Message {
public:
    /// @param handle a message of the platform; freed with this object
    explicit Message(void* handle) : m_handle(handle) {}
    ~Message();
    /// @{
    /// Takes the message over.
    Message(Message&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    Message& operator=(Message&& other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    /// @}

    /// @{
    /// What the message bears; the payload lives as long as this object.
    TAaSysComMsgId id() const;
    TAaSysComSicad sender() const;
    TAaSysComSicad receiver() const;
    std::span<const std::byte> payload() const;
    /// @}

    /// The payload as characters.
    std::string text() const;

    /// The payload's first bytes as a record; valid as long as the message.
    /// @throws std::runtime_error when the payload is shorter.
    template <class Record>
    const Record& as() const
    {
        static_assert(std::is_trivially_copyable_v<Record>, "a payload is bytes");
        return *static_cast<const Record*>(beginOfAtLeast(sizeof(Record)));
    }

private:
    const void* beginOfAtLeast(std::size_t size) const;

    void* m_handle;
};

/// The record type of a typed message, `Msg<Record, id>`.
template <class TypedMessage>
using RecordOf = std::remove_pointer_t<decltype(std::declval<TypedMessage&>().GetPayload())>;

/// A received message whose payload is known to hold a record.
template <class Record>
class RecordMessage : public Message {
public:
    /// Takes the message over; the payload has been checked to hold the record.
    explicit RecordMessage(Message&& message) : Message(std::move(message)), m_record(as<Record>()) {}
    /// @{
    /// A copy of the record.
    const Record* operator->() const { return &m_record; }
    const Record& operator*() const { return m_record; }
    /// @}

private:
    const Record& m_record;
};

/// A communication point of the test, with an EU of its own that collects what arrives.
///
///     Peer peer;
///     peer.send<PingMsg>(service.address(), {.counter = 41});
///     EXPECT_EQ(peer.expect<PingAnswerMsg>()->counter, 42U);
///
/// `PingMsg` is a `Msg<SPing, 0x1234>` of the service; where there is no such type, messages are sent and expected by
/// id. An expectation that is not met is a std::runtime_error that tells what has arrived instead. A test may have any
/// number of peers and use them from any thread.
class Peer {
public:
    /// Registers @p cpid, or any free one for 0. @throws std::runtime_error when it is not granted.
    explicit Peer(TAaSysComCpid cpid = 0);
    ~Peer();
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    /// @{
    /// What others send to: the cpid, and the address on this node.
    TAaSysComCpid cpid() const { return m_cpid; }
    TAaSysComSicad address() const;
    /// @}

    /// Sends bytes, with this peer as the sender.
    /// @param receiver an address, or a cpid of the own node
    /// @throws std::runtime_error when they could not be delivered.
    void send(TAaSysComMsgId id, TAaSysComSicad receiver, std::span<const std::byte> payload = {});
    /// Sends characters.
    void send(TAaSysComMsgId id, TAaSysComSicad receiver, const std::string& text);
    /// Sends a record.
    template <class TypedMessage>
    void send(TAaSysComSicad receiver, const RecordOf<TypedMessage>& record = {})
    {
        send(TypedMessage::ID, receiver, std::as_bytes(std::span(&record, 1)));
    }

    /// Takes the first message with @p id; others stay for later.
    /// @throws std::runtime_error when none has come within @p bound.
    Message expect(TAaSysComMsgId id, Bound bound = generousBound);
    /// Takes the first message of this type. @throws std::runtime_error also when it is too short for its record.
    template <class TypedMessage>
    RecordMessage<RecordOf<TypedMessage>> expect(Bound bound = generousBound)
    {
        return RecordMessage<RecordOf<TypedMessage>>(expect(TypedMessage::ID, bound));
    }
    /// Takes the first message, whichever it is: for tests of order.
    /// @throws std::runtime_error when none has come within @p bound.
    Message expectAny(Bound bound = generousBound);

    /// Looks whether anything has arrived that was not taken, without waiting for it to come. Call it when the service
    /// is known to have done what it was asked: after ServiceUnderTest::sync(), or after its answer to a later request.
    /// @throws std::runtime_error when something has.
    void expectNothing();

private:
    using Inbox = std::deque<Message>;

    void collect(TAaSysComCpid wanted);
    void store(Message message);
    Message take(std::optional<TAaSysComMsgId> id, Bound bound);
    Inbox::iterator find(std::optional<TAaSysComMsgId> id);
    std::string inboxText() const;

    TAaSysComCpid m_cpid = 0;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    TAaProEuId m_eu = 0; ///< 0 until the EU has asked for its cpid
    bool m_isEnding = false;
    unsigned m_barriers = 0; ///< that have arrived
    Inbox m_inbox;
    std::thread m_thread;
};

} // namespace dorn::testkit
