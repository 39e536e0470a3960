// SPDX-License-Identifier: MIT
/// @file FaultManagerS.hpp
/// The fault management service, to which every service of the node reports its faults.
#pragma once

#include "AlarmMessages.hpp"
#include "AlarmTable.hpp"
#include "Service.hpp"

#include <cstdint>
#include <vector>

namespace dorn::examples {

/// Keeps the alarms of the node, logs what becomes of them, and tells operators' programs; see AlarmMessages.hpp.
///
/// The alarms live as long as the process. A subscriber that cannot be reached, or that does not take its messages, is
/// forgotten.
class FaultManagerS : public vel::hwapi::common::Service {
public:
    static constexpr std::size_t maxSubscribers = 8;

    FaultManagerS();

private:
    void Init() override;
    void HandleFault(FaultIndMsg fault);
    void HandleList(AlarmListReqMsg request);
    void HandleClear(AlarmClearReqMsg request);
    void HandleSubscribe(AlarmSubscribeReqMsg request);

    void onChange(EAlarmEvent event, const SAlarm& alarm);
    void tellSubscribers(EAlarmEvent event, const SAlarm& alarm);
    bool sendEvent(TAaSysComSicad receiver, EAlarmEvent event, const SAlarm& alarm);
    bool addSubscriber(TAaSysComSicad subscriber);

    AlarmTable m_alarms;
    std::vector<TAaSysComSicad> m_subscribers;
};

} // namespace dorn::examples
