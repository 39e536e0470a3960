// SPDX-License-Identifier: MIT
/// @file SysComTest.hpp
/// What the tests of message passing share.
#pragma once

#include "AaSysCom.h"
#include "Bound.hpp"
#include "NodeTest.hpp"
#include "PeerProcess.hpp"

#include <chrono>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

namespace dorn::host::test {

/// More than ever passes in a test that succeeds, in micro-seconds.
constexpr std::int32_t generousTimeout =
    static_cast<std::int32_t>(std::chrono::microseconds(testkit::generousBound).count());

inline TAaSysComSicad addressOf(TAaSysComCpid cpid)
{
    return AaSysComSicadGet(cpid, AaSysComGetOwnNid());
}

/// Sends an empty message. @return the status.
inline std::int32_t sendEmpty(TAaSysComMsgId id, TAaSysComSicad receiver)
{
    void* message = AaSysComMsgCreate(id, 0, receiver);
    return AaSysComMsgSend(&message);
}

/// Takes the next message of the calling EU, one of @p ids if there are any. @return its id; 0 when there was none.
inline TAaSysComMsgId takeId(std::int32_t timeout = AA_NO_WAIT, std::initializer_list<std::uint16_t> ids = {})
{
    std::vector<std::uint16_t> filter{static_cast<std::uint16_t>(ids.size())};
    filter.insert(filter.end(), ids);
    void* message = ids.size() == 0 ? AaSysComMsgReceive(timeout) : AaSysComMsgReceiveSelective(timeout, filter.data());
    const TAaSysComMsgId id = AaSysComMsgGetId(message);
    AaSysComMsgDestroy(&message);
    return id;
}

/// The test's EU has a cpid, and an empty queue when the test begins.
class SysComTest : public testkit::NodeTest {
protected:
    SysComTest()
    {
        emptyQueue();
        m_cpid = AaSysComUserRegister(0, AaProEuCurrent());
    }
    ~SysComTest() override
    {
        AaSysComUserDeregister(m_cpid);
        emptyQueue();
    }

    TAaSysComSicad address() const { return addressOf(m_cpid); }

    TAaSysComCpid m_cpid = 0;
};

} // namespace dorn::host::test
