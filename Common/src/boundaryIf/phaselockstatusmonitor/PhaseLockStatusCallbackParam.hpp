// SPDX-License-Identifier: MIT
/// @file PhaseLockStatusCallbackParam.hpp
/// What a phase-lock event tells: the new status, and the monitor that reports it.
#pragma once

#include "boundaryIf/CallbackParam.hpp"
#include "boundaryIf/phaselockstatusmonitor/PhaseLockTypes.hpp"

#include <string>
#include <utility>

namespace vel::hwapi::common::bif::phaselockstatusmonitor {

/// The status that a monitor has come to.
class PhaseLockStatusCallbackParam : public CallbackParam {
public:
    /// An undefined status, reported by nobody.
    PhaseLockStatusCallbackParam() = default;
    /// @param identifier the monitor that reports
    PhaseLockStatusCallbackParam(EPhaseLockStatus status, std::string identifier)
        : m_phaseLockStatus(status), m_identifier(std::move(identifier))
    {
    }

    /// @{
    /// The status, after the change that is reported.
    EPhaseLockStatus getPhaseLockStatus() const { return m_phaseLockStatus; }
    void setPhaseLockStatus(EPhaseLockStatus status) { m_phaseLockStatus = status; }
    /// @}

    /// @{
    /// The monitor that reports.
    std::string getIdentifier() const { return m_identifier; }
    void setIdentifier(const std::string& identifier) { m_identifier = identifier; }
    /// @}

    bool operator==(const PhaseLockStatusCallbackParam&) const = default;

private:
    EPhaseLockStatus m_phaseLockStatus = EPhaseLockStatus_Undefined;
    std::string m_identifier;
};

} // namespace vel::hwapi::common::bif::phaselockstatusmonitor
