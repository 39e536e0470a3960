// SPDX-License-Identifier: MIT
/// @file HwapiAlarm.hpp
/// Reports faults to the platform's fault management service.
///
/// A service keeps one HwapiAlarm and calls it whenever it finds a fault:
///
///     HwapiAlarm alarm(0x0211, GetRadId());
///     alarm.sendAlarmMsg(EFaultId_FanFailure, &fan, sizeof fan);
///
/// What is sent says that there is a fault. There is no message that takes it back: that is for the operator and the
/// fault management service.
#pragma once

#include "AaFault.h"
#include "AaSysCom.h"
#include "CHwapiException.hpp"

#include <cstddef>
#include <cstdint>

namespace vel::hwapi::common {

/// Message 11140: a service reports a fault. The detail bytes follow; some unused bytes follow them.
struct SHwapiFaultInd {
    std::uint32_t faultId;     ///< EFaultId; a peer may send values that no enumerator has
    std::uint32_t boardNumber; ///< configuration tag "sys.unit.ownboard"; 16 when there is none
    std::uint32_t detailSize;  ///< bytes behind this record
};
static_assert(sizeof(SHwapiFaultInd) == 12);
static_assert(offsetof(SHwapiFaultInd, faultId) == 0);
static_assert(offsetof(SHwapiFaultInd, boardNumber) == 4);
static_assert(offsetof(SHwapiFaultInd, detailSize) == 8);
static_assert(sizeof(EFaultId) == 4);

/// Sends fault indications to the communication point 0x04C1 of the own node. Any thread may use it, one call at a time
/// for an object.
class HwapiAlarm {
public:
    class MsgSendingException;

    /// An alarm without sender and log feature; set both before the first fault.
    HwapiAlarm();

    /// @param senderCpid cpid that the fault comes from, usually the service's own
    /// @param feature feature id of the log lines
    HwapiAlarm(unsigned short senderCpid, unsigned int feature);

    /// Has faults come from this cpid from now on.
    void setSenderCpid(unsigned short senderCpid);
    /// Has log lines bear this feature id from now on.
    void setPrintFeature(unsigned int feature);

    /// Logs and sends one fault. Whether somebody receives it is not known afterwards.
    /// @param data detail bytes, copied as they are; null when there are none
    /// @param size bytes of @p data, at most 65519; the low 16 bits are used. Without @p data, so many bytes are left
    ///   free.
    /// @throws MsgSendingException when the message could not be made.
    void sendAlarmMsg(EFaultId faultId, const void* data, unsigned int size);

private:
    TAaSysComCpid m_senderCpid;
    unsigned int m_feature;
};

/// The message could not be made.
class HwapiAlarm::MsgSendingException : public CHwapiException {
public:
    /// @param description what could not be made
    MsgSendingException(const std::string& description, const char* file, ssize_t line)
        : CHwapiException("Message sending failed", description, file, line)
    {
    }
};

} // namespace vel::hwapi::common
