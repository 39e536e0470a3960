// SPDX-License-Identifier: MIT
#include "HwapiAlarm.hpp"

#include "AaConfigTag.h"
#include "AaMem.h"
#include "AaSysLog.h"
#include "Msg.hpp"

#include <cstring>

namespace vel::hwapi::common {
namespace {

constexpr TAaSysComCpid faultManagementCpid = 0x04C1;
constexpr unsigned int lengthAroundDetails = 16;
constexpr unsigned int lengthWithoutDetails = 20;

using FaultIndMsg = Msg<SHwapiFaultInd, 11140>;

/// The number of the board on which this node runs.
std::uint8_t ownBoard()
{
    constexpr std::uint8_t unknownBoard = 16;
    void* value = nullptr;
    std::uint32_t length = 0;
    if (AaConfigTagGetDefault("sys.unit.ownboard", &value, &length, &unknownBoard, sizeof unknownBoard) !=
            EAaConfigTagStatus_Ok ||
        !value) {
        return unknownBoard;
    }
    const std::uint8_t board = *static_cast<const std::uint8_t*>(value); // there, also behind an empty value
    AaMemUnRefDbg(value, __FILE__, __LINE__);
    return board;
}

} // namespace

HwapiAlarm::HwapiAlarm() : m_senderCpid(0), m_feature(0) {}

HwapiAlarm::HwapiAlarm(unsigned short senderCpid, unsigned int feature) : m_senderCpid(senderCpid), m_feature(feature)
{
}

void HwapiAlarm::setSenderCpid(unsigned short senderCpid)
{
    m_senderCpid = senderCpid;
}

void HwapiAlarm::setPrintFeature(unsigned int feature)
{
    m_feature = feature;
}

void HwapiAlarm::sendAlarmMsg(EFaultId faultId, const void* data, unsigned int size)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, m_feature, "Sending alarm for fault '%i'",
                   static_cast<int>(faultId));
    const std::uint16_t detailSize = size & 0xFFFFU;
    const unsigned int length = detailSize != 0 ? lengthAroundDetails + detailSize : lengthWithoutDetails;
    const TAaSysComSicad receiver = AaSysComSicadGet(faultManagementCpid, AaSysComGetOwnNid());
    const TAaSysComSicad sender = AaSysComSicadGet(m_senderCpid, AaSysComGetOwnNid());
    // With the greatest sizes the length is more than a message can have: cut off, it would not hold the details.
    void* message = length <= AA_SYS_COM_MAX_PAYLOAD
                        ? AaSysComMsgCreate(FaultIndMsg::ID, static_cast<std::uint16_t>(length), receiver)
                        : nullptr;
    auto* const payload = static_cast<std::byte*>(message ? AaSysComMsgGetPayload(message) : nullptr);
    if (!payload) {
        if (message) {
            AaSysComMsgDestroy(&message);
        }
        throw MsgSendingException("faile to allocate SICAP message", __FILE__, __LINE__);
    }
    std::memset(payload, 0, length); // what is not used tells nothing of this process
    const SHwapiFaultInd head{faultId, ownBoard(), data ? detailSize : 0U};
    std::memcpy(payload, &head, sizeof head);
    if (data) {
        std::memcpy(payload + sizeof head, data, detailSize);
    }
    AaSysComMsgSendS(&message, sender);
}

} // namespace vel::hwapi::common
