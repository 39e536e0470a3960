// SPDX-License-Identifier: MIT
#include "syscom/FrameInlet.hpp"

#include "AaSysLog.h"
#include "syscom/CpidRegistry.hpp"
#include "syscom/Node.hpp"
#include "syscom/Pack.hpp"

#include <bit>
#include <cstring>

namespace dorn::host {

void FrameInlet::onFrame(std::span<const std::byte> packet, bool isCut, const Peer& peer)
{
    if (isCut || !isPack(packet)) {
        take(packet, isCut, peer);
        return;
    }
    for (std::span<const std::byte> frames = framesOf(packet); !frames.empty();) {
        take(takeFrame(frames), false, peer);
    }
}

void FrameInlet::take(std::span<const std::byte> frame, bool isCut, const Peer& peer)
{
    FrameHeader header{};
    if (const char* const reason = whyBad(frame, isCut, peer, header)) {
        report(reason, header, frame.size(), peer);
        return;
    }
    Message* const message = Message::create(header.id, header.payloadSize, header.sender, header.receiver);
    if (!message) {
        report("there is no memory for it", header, frame.size(), peer);
        return;
    }
    std::memcpy(message->payload(), frame.data() + sizeof header, header.payloadSize);
    if (!hand(message)) {
        Message::destroy(message);
        report("the queue is full", header, frame.size(), peer);
    }
}

/// The owner of the queue adds to its own list; any other thread, which gives the cpid up, goes the senders' way.
bool FrameInlet::hand(Message* message)
{
    if (eus::currentIfAny() == &m_eu) {
        m_eu.queue.appendArrived(message);
        return true;
    }
    message->targetEu = m_euId;
    return m_eu.queue.push(message) == MessageQueue::PushResult::Ok;
}

const char* FrameInlet::whyBad(std::span<const std::byte> frame, bool isCut, const Peer& peer, FrameHeader& header)
{
    if (const char* const reason = whyNoMessage(frame, isCut, header)) {
        return reason;
    }
    if (!isOwnNode(nodeOf(header.receiver)) || cpidOf(header.receiver) != m_cpid) {
        return "it is for another receiver";
    }
    if (!isCredible(header.sender, peer)) {
        return "its sender is forged";
    }
    return nullptr;
}

const char* whyNoMessage(std::span<const std::byte> frame, bool isCut, FrameHeader& header)
{
    if (isCut) {
        return "it is too long";
    }
    if (frame.size() < sizeof header) {
        return "it is too short";
    }
    std::memcpy(&header, frame.data(), sizeof header);
    if (header.magic != FrameHeader::magicNumber) {
        return "it is no message";
    }
    if (header.version != FrameHeader::currentVersion) {
        return "it has another version";
    }
    return frame.size() == sizeof header + header.payloadSize ? nullptr : "its length is wrong";
}

bool FrameInlet::isCredible(TAaSysComSicad sender, const Peer& peer)
{
    const CpidRegistry* const registry = PerNode<CpidRegistry>::ifOpen(); // null only while it is being closed
    const CpidStore* const store = registry ? &registry->store() : nullptr;
    if (sender == 0 || isOwnNode(nodeOf(sender))) {
        return m_senders.isCredible(cpidOf(sender), peer, store);
    }
    return m_senders.isGateway(peer, store);
}

/// Logs the first bad frame and then ever more rarely, so that a faulty process cannot flood the log.
void FrameInlet::report(const char* reason, const FrameHeader& header, std::size_t size, const Peer& peer)
{
    ++m_bad;
    if (std::has_single_bit(m_bad)) {
        AaSysLogPrint(
            EAaSysLogSeverityLevel_Warning,
            "Dropped what process %d sent to cpid 0x%04X: %s (id=0x%04X receiver=0x%08X sender=0x%08X, %zu bytes;"
            " %u dropped so far)",
            peer.pid(), m_cpid, reason, header.id, header.receiver, header.sender, size, m_bad);
    }
}

} // namespace dorn::host
