// SPDX-License-Identifier: MIT
/// @file ClockClient.hpp
/// Who wants to know how the board's clocks are.
#pragma once

#include "CallbackTo.hpp"
#include "boundaryIf/ocxo/AbstractOcxoBif.hpp"
#include "boundaryIf/phaselockstatusmonitor/AbstractPhaseLockStatusMonitorBif.hpp"
#include "boundaryIf/swpllstatemonitor/AbstractSwPllStateMonitorBif.hpp"
#include "boundaryIf/systemtimer/AbstractSystemTimerBif.hpp"
#include "rad/ERadHwapi.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

namespace dorn::examples {

/// Logs the events of all clocks and keeps what they have said. Events come on one thread, questions on another.
class ClockClient {
public:
    /// What is known of the clocks.
    struct State {
        std::uint32_t pll = vel::hwapi::common::bif::swpllstatemonitor::ESwPllState_Undefined;
        double phaseError = 0; ///< reported with the PLL's state
        std::uint32_t calibration = vel::hwapi::common::bif::swpllstatemonitor::EClockCalibrationStatus_NotStarted;
        std::uint32_t timer = vel::hwapi::common::bif::systemtimer::ETimerSyncState_OutOfSync;
        std::uint32_t phaseLock = vel::hwapi::common::bif::phaselockstatusmonitor::EPhaseLockStatus_Undefined;
        std::uint32_t dac = 0;
        bool areSensorsOk = false;
    };

    /// @param feature feature id of the log lines
    explicit ClockClient(ERadHwapi feature);
    ClockClient(const ClockClient&) = delete;
    ClockClient& operator=(const ClockClient&) = delete;

    /// Takes all events of an interface. This object lives longer than it.
    void listenTo(vel::hwapi::common::bif::swpllstatemonitor::AbstractSwPllStateMonitorBif& bif);
    void listenTo(vel::hwapi::common::bif::systemtimer::AbstractSystemTimerBif& bif);
    void listenTo(vel::hwapi::common::bif::phaselockstatusmonitor::AbstractPhaseLockStatusMonitorBif& bif);
    void listenTo(vel::hwapi::clocks::bif::ocxo::AbstractOcxoBif& bif);

    State state() const;

private:
    using Pll = vel::hwapi::common::bif::swpllstatemonitor::SwPllStateMonitorCallbackParam;
    using Timer = vel::hwapi::common::bif::systemtimer::TimerSyncCallbackParam;
    using PhaseLock = vel::hwapi::common::bif::phaselockstatusmonitor::PhaseLockStatusCallbackParam;
    using Ocxo = vel::hwapi::clocks::bif::ocxo::OcxoCallbackParam;

    void onPll(const Pll& event);
    void onTimer(const Timer& event);
    void onPhaseLock(const PhaseLock& event);
    void onOcxo(const Ocxo& event);
    void note(
        const std::string& text, const std::function<void(State&)>& change = [](State&) {});

    const ERadHwapi m_feature;
    mutable std::mutex m_mutex;
    State m_state;

    CallbackTo<
        vel::hwapi::common::bif::swpllstatemonitor::AbstractSwPllStateMonitorBif::AbstractSwPllStateMonitorCallback,
        Pll>
        m_pll;
    CallbackTo<vel::hwapi::common::bif::systemtimer::AbstractSystemTimerBif::AbstractTimerSyncCallback, Timer> m_timer;
    CallbackTo<vel::hwapi::common::bif::phaselockstatusmonitor::AbstractPhaseLockStatusMonitorBif::
                   AbstractPhaseLockStatusCallback,
               PhaseLock>
        m_phaseLock;
    CallbackTo<vel::hwapi::clocks::bif::ocxo::AbstractOcxoBif::AbstractOcxoCallback, Ocxo> m_ocxo;
};

} // namespace dorn::examples
