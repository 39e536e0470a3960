// SPDX-License-Identifier: MIT
#include "SimulatedCpriRemoteNode.hpp"

#include <utility>

namespace dorn::examples {

using vel::hwapi::common::bif::baseband::cpri::LinkRemoteNodeCallbackParam;

std::uint32_t SimulatedCpriRemoteNode::getEthernetSubchannelPointer(const CpriLink& link)
{
    return m_links.model(link).hasHeard() ? CpriLinkModel::farEthernetSubchannelPointer : 0;
}

std::uint32_t SimulatedCpriRemoteNode::getHdlcBitRate(const CpriLink& link)
{
    return m_links.model(link).hasHeard() ? CpriLinkModel::farHdlcBitRate : 0;
}

std::uint32_t SimulatedCpriRemoteNode::getProtocolVersion(const CpriLink& link)
{
    return m_links.model(link).hasHeard() ? CpriLinkModel::farProtocolVersion : 0;
}

void SimulatedCpriRemoteNode::tell()
{
    for (std::size_t index = 0; index < CpriLinks::count; ++index) {
        const auto& [link, model] = m_links.all()[index];
        const Told told = std::exchange(m_told[index], {model.hasHeard(), model.heardSignals()});
        if (model.hasHeard() && !told.hasHeard) {
            LinkRemoteNodeCallbackParam event(true, link, getEthernetSubchannelPointer(link), getProtocolVersion(link));
            callProtocolVersionChangeEventCallback(event);
            callEthernetSubchannelPointerChangeEventCallback(event);
        }
        tellSignals(link, model.heardSignals(), model.heardSignals() ^ told.signals);
    }
}

void SimulatedCpriRemoteNode::tellSignals(const CpriLink& link, std::uint32_t signals, std::uint32_t changed)
{
    struct Signal {
        ECpriSignal bit;
        void (SimulatedCpriRemoteNode::*call)(LinkRemoteNodeCallbackParam&);
    };
    static constexpr std::array<Signal, 5> all{{
        {ECpriSignal_Reset, &SimulatedCpriRemoteNode::callResetEventCallback},
        {ECpriSignal_Los, &SimulatedCpriRemoteNode::callLosEventCallback},
        {ECpriSignal_Lof, &SimulatedCpriRemoteNode::callLofEventCallback},
        {ECpriSignal_Rai, &SimulatedCpriRemoteNode::callRaiEventCallback},
        {ECpriSignal_Sdi, &SimulatedCpriRemoteNode::callSdiEventCallback},
    }};
    for (const Signal& signal : all) {
        if ((changed & signal.bit) != 0) {
            LinkRemoteNodeCallbackParam event((signals & signal.bit) != 0, link, getEthernetSubchannelPointer(link),
                                              getProtocolVersion(link));
            (this->*signal.call)(event);
        }
    }
}

} // namespace dorn::examples
