// SPDX-License-Identifier: MIT
#include "PeerProcess.hpp"

#include "Bound.hpp"

#include <chrono>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <string>

namespace dorn::host::test {
namespace {

constexpr std::int32_t generousTimeout =
    static_cast<std::int32_t>(std::chrono::microseconds(testkit::generousBound).count());

} // namespace

PeerProcess::PeerProcess() : m_process(DORN_PEER_PROGRAM)
{
    if (!m_process.waitForOutput("\n")) {
        throw std::runtime_error("peer program: " + m_process.standardError());
    }
    const auto cpid = static_cast<TAaSysComCpid>(std::stoul(m_process.standardOutput().substr(sizeof "ready")));
    m_address = AaSysComSicadGet(cpid, AaSysComGetOwnNid());
}

void PeerProcess::tell(const Command& command)
{
    void* message = AaSysComMsgCreate(commandId, sizeof command, m_address);
    std::memcpy(AaSysComMsgGetPayload(message), &command, sizeof command);
    if (AaSysComMsgSend(&message) != 0) {
        throw std::runtime_error("the peer program has gone");
    }
}

Answer PeerProcess::answer()
{
    constexpr std::uint16_t filter[] = {1, answerId};
    void* message = AaSysComMsgReceiveSelective(generousTimeout, filter);
    if (!message) {
        throw std::runtime_error("the peer program does not answer: " + m_process.standardError());
    }
    Answer answer{};
    std::memcpy(&answer, AaSysComMsgGetPayload(message), sizeof answer);
    AaSysComMsgDestroy(&message);
    return answer;
}

Answer PeerProcess::ask(const Command& command)
{
    tell(command);
    return answer();
}

void PeerProcess::kill()
{
    m_process.signal(SIGKILL);
    m_process.waitForEnd();
}

void emptyQueue()
{
    while (void* message = AaSysComMsgReceive(AA_NO_WAIT)) {
        AaSysComMsgDestroy(&message);
    }
}

} // namespace dorn::host::test
