// SPDX-License-Identifier: MIT
#include "syscom/FrameInlet.hpp"

#include "AaSysLog.h"
#include "syscom/CpidRegistry.hpp"
#include "syscom/Node.hpp"

#include <bit>
#include <cstring>
#include <unistd.h>

namespace dorn::host {

void FrameInlet::onFrame(std::span<const std::byte> frame, bool isCut, const Peer& peer)
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
    if (frame.size() != sizeof header + header.payloadSize) {
        return "its length is wrong";
    }
    if (!isOwnNode(header.receiver >> 16) || (header.receiver & 0xFFFFU) != m_cpid) {
        return "it is for another receiver";
    }
    if (!isCredible(header.sender, peer)) {
        return "its sender is forged";
    }
    return nullptr;
}

/// A sender is credible when nobody else can be it: cpid 0, a cpid of the peer, a free one, or one that another process
/// took over after the peer had gone.
bool FrameInlet::isCredible(TAaSysComSicad sender, const Peer& peer)
{
    const CpidRegistry* const registry = PerNode<CpidRegistry>::ifOpen(); // null only while it is being closed
    const std::uint32_t generation = registry ? registry->generation() : 0;
    if (sender == m_lastCredible && peer.pid() == m_lastCredibleProcess && generation == m_lastGeneration) {
        return true;
    }
    const auto cpid = static_cast<TAaSysComCpid>(sender & 0xFFFFU);
    if (sender != 0 && !isOwnNode(sender >> 16)) {
        return false;
    }
    const pid_t foreign = registry ? registry->foreignHolder(cpid) : 0;
    const pid_t holder = localHolder(cpid) != 0 ? getpid() : foreign;
    const bool isPeers = cpid == 0 || holder == 0 || holder == peer.pid();
    if (!isPeers && !peer.isGone()) {
        return false;
    }
    if (!isPeers) {
        return true; // what the dead had sent; of no other process it is to be believed
    }
    m_lastCredible = sender;
    m_lastCredibleProcess = peer.pid();
    m_lastGeneration = generation;
    return true;
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
