// SPDX-License-Identifier: MIT
/// @file Traffic.hpp
/// Records what passes between a service and the others, and plays it to another start of the service.
#pragma once

#include "AaSysCom.h"
#include "Peer.hpp"

#include <string>
#include <vector>

namespace dorn::testkit {

/// One message as it was sent.
struct SentMessage {
    TAaSysComSicad sender = 0;   ///< its address; 0 when it has none
    TAaSysComSicad receiver = 0; ///< its address
    TAaSysComMsgId id = 0;       ///< message id
    std::string payload;         ///< any bytes

    /// Whether they are the same in all.
    bool operator==(const SentMessage&) const = default;
};

/// Messages in the order in which they were sent.
using Traffic = std::vector<SentMessage>;

/// Records every message that is sent to or from a service of this process.
///
///     TrafficRecorder recorder(service.address());
///     ... talk to the service ...
///     service.sync();
///     const Traffic traffic = recorder.stop();
///
/// The TestKit's own messages and time-outs, which the platform delivers itself, are not recorded. A watcher of the
/// node's messages, as `dorn msg watch` is one: no more than eight at once.
class TrafficRecorder {
public:
    /// @throws std::runtime_error when the node is watched too often already.
    explicit TrafficRecorder(TAaSysComSicad service);
    ~TrafficRecorder();
    TrafficRecorder(const TrafficRecorder&) = delete;
    TrafficRecorder& operator=(const TrafficRecorder&) = delete;

    /// Ends the recording. @return what was recorded.
    /// @throws std::runtime_error when a message was missed, or has more than 65,495 payload bytes, of which the rest
    /// is not shown.
    Traffic stop();

private:
    void add(const Message& record, Traffic& traffic) const;

    const TAaSysComSicad m_service;
    Peer m_watcher;
};

/// The traffic as text, a line for each message: sender, receiver, id and payload in hexadecimal digits.
std::string textOf(const Traffic& traffic);
/// What textOf() has written. @throws std::runtime_error when it is something else.
Traffic trafficOf(const std::string& text);

/// Plays the others' part of a recording: sends the service what it was sent, each message from the cpid that it came
/// from, and waits in its turn for each that the service sent. The cpids must be free.
///
/// What the service says by its own, at another time, has to be made to come: a ManualClock moves its time-outs.
/// @throws std::runtime_error when the service does not send what it has sent, byte for byte; the text tells which.
void replay(const Traffic& traffic, TAaSysComSicad service);

} // namespace dorn::testkit
