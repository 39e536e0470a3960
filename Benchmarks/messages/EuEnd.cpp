// SPDX-License-Identifier: MIT
#include "messages/EuEnd.hpp"

#include <stdexcept>

namespace dorn::benchmarks {
namespace {

TAaSysComSicad registerThisThread()
{
    const TAaSysComCpid cpid = AaSysComUserRegister(0, AaProEuCurrent());
    if (cpid == 0) {
        throw std::runtime_error("no cpid is granted");
    }
    return AaSysComSicadGet(cpid, AaSysComGetOwnNid());
}

} // namespace

EuEnd::EuEnd(std::size_t size) : m_size(static_cast<std::uint16_t>(size)), m_own(registerThisThread()) {}

EuEnd::EuEnd(const std::string& address, std::size_t size) : EuEnd(size)
{
    m_partner = static_cast<TAaSysComSicad>(std::stoul(address));
}

EuEnd::~EuEnd()
{
    AaSysComUserDeregister(static_cast<TAaSysComCpid>(m_own & 0xFFFFU));
}

void EuEnd::send(const Parcel& parcel)
{
    void* message = AaSysComMsgCreate(parcelId, m_size, m_partner);
    writeParcel(AaSysComMsgGetPayload(message), m_size, parcel);
    if (AaSysComMsgSend(&message) != EAaSysComStatus_Ok) {
        throw std::runtime_error("a message was not sent");
    }
}

Parcel EuEnd::receive()
{
    void* message = AaSysComMsgReceive(AA_WAIT_FOREVER);
    if (m_partner == 0) {
        m_partner = AaSysComMsgGetSender(message);
    }
    const Parcel parcel = readParcel(AaSysComMsgGetPayload(message));
    AaSysComMsgDestroy(&message);
    return parcel;
}

} // namespace dorn::benchmarks
