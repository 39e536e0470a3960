// SPDX-License-Identifier: MIT
#include "Letter.hpp"

#include <cstring>

namespace dorn::conformance {

std::string Letter::text() const
{
    const auto* const payload = static_cast<const char*>(AaSysComMsgGetPayload(m_handle));
    return payload ? std::string(payload, AaSysComMsgGetPayloadSize(m_handle)) : "";
}

Address::Address(TAaSysComCpid wanted) : m_cpid(AaSysComUserRegister(wanted, AaProEuCurrent()))
{
    expect(m_cpid != 0, "AaSysComUserRegister(" + shown(wanted) + ") granted no cpid");
}

Letter write(TAaSysComMsgId id, TAaSysComSicad receiver, const std::string& text)
{
    Letter letter(AaSysComMsgCreate(id, static_cast<uint16_t>(text.size()), receiver));
    expect(static_cast<bool>(letter), "AaSysComMsgCreate() gave null");
    if (!text.empty()) {
        void* const payload = AaSysComMsgGetPayload(letter.handle());
        expect(payload != nullptr, "AaSysComMsgGetPayload() gave null for a message with payload");
        std::memcpy(payload, text.data(), text.size());
    }
    return letter;
}

void post(TAaSysComMsgId id, TAaSysComSicad receiver, const std::string& text)
{
    Letter letter = write(id, receiver, text);
    expectEqual(AaSysComMsgSend(&letter.handle()), 0, "AaSysComMsgSend()");
}

Letter take()
{
    Letter letter(AaSysComMsgReceive(boundOfSeam()));
    expect(static_cast<bool>(letter), "AaSysComMsgReceive() gave null, and a message has been sent");
    return letter;
}

void expectLetter(TAaSysComMsgId id, const std::string& text)
{
    const Letter letter = take();
    expectEqual(letter.id(), id, "the id of the message that came next");
    expect(letter.text() == text, "the payload of the message that came next is another than was sent");
}

void expectNoLetter(const std::string& why)
{
    const Letter letter(AaSysComMsgReceive(AA_NO_WAIT));
    expect(!letter, "a message with id " + std::to_string(letter.id()) + " came, " + why);
}

} // namespace dorn::conformance
