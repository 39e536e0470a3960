// SPDX-License-Identifier: MIT
#include "SfpClient.hpp"

#include "AaSysLog.h"

namespace dorn::examples {

void SfpClient::operator()(vel::hwapi::common::bif::baseband::sfp::SfpCallbackParam& event)
{
    {
        const std::lock_guard lock(m_mutex);
        Module& module = m_modules[event.getPhysicalLinkId()];
        module.isDetected = event.isDetected();
        ++module.eventCount;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, m_feature, "SFP module of link %u %s", event.getPhysicalLinkId(),
                   event.isDetected() ? "plugged" : "pulled");
}

SfpClient::Module SfpClient::moduleOf(std::uint32_t physicalLinkId) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_modules.find(physicalLinkId);
    return found == m_modules.end() ? Module{} : found->second;
}

} // namespace dorn::examples
