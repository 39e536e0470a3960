// SPDX-License-Identifier: MIT
#include "gateway/NodeInlet.hpp"

#include "AaSysLog.h"
#include "syscom/FrameInlet.hpp"

#include <bit>

namespace dorn::gateway {

void NodeInlet::onFrame(std::span<const std::byte> frame, bool isCut, const host::Peer& peer)
{
    ++m_taken;
    host::FrameHeader header{};
    if (const char* const reason = whyBad(frame, isCut, peer, header)) {
        ++m_refused[RefusalReason::LocalFrame];
        if (std::has_single_bit(++m_refusedHere)) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                          "Dropped what process %d sent to node 0x%04X: %s (id=0x%04X receiver=0x%08X sender=0x%08X, "
                          "%zu bytes; %llu dropped so far)",
                          peer.pid(), m_node, reason, header.id, header.receiver, header.sender, frame.size(),
                          static_cast<unsigned long long>(m_refusedHere));
        }
        return;
    }
    m_link.accept({header.id, header.sender, header.receiver, header.payloadSize}, frame.subspan(sizeof header));
}

const char* NodeInlet::whyBad(std::span<const std::byte> frame, bool isCut, const host::Peer& peer,
                              host::FrameHeader& header)
{
    if (const char* const reason = host::whyNoMessage(frame, isCut, header)) {
        return reason;
    }
    if (header.receiver >> 16 != m_node) {
        return "it is for another node";
    }
    if (!isCredible(header.sender, peer)) {
        return "its sender is forged";
    }
    return nullptr;
}

bool NodeInlet::isCredible(TAaSysComSicad sender, const host::Peer& peer)
{
    const bool isOfNode = sender == 0 || sender >> 16 == m_own;
    return isOfNode && m_senders.isCredible(static_cast<TAaSysComCpid>(sender & 0xFFFFU), peer, &m_store);
}

} // namespace dorn::gateway
