// SPDX-License-Identifier: MIT
/// @file TwoNodesTest.hpp
/// A service of one node, in the test's process, and processes of another node, with a gateway process for each.
#pragma once

#include "AaSysCom.h"
#include "Bound.hpp"
#include "NodeTest.hpp"
#include "Process.hpp"
#include "TestNet.hpp"
#include "syscom/PeerProtocol.hpp"

#include <array>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dorn::gateway::test {

constexpr TAaSysComNid ownNode = 0x0F01;
constexpr TAaSysComNid otherNode = 0x0F02;
constexpr std::int32_t generousTimeout =
    static_cast<std::int32_t>(std::chrono::microseconds(testkit::generousBound).count());

/// The environment's node id is another one while it lives.
class OnNode {
public:
    explicit OnNode(TAaSysComNid node) { setenv("DORN_NID", std::to_string(node).c_str(), 1); }
    ~OnNode() { unsetenv("DORN_NID"); }
    OnNode(const OnNode&) = delete;
    OnNode& operator=(const OnNode&) = delete;
};

/// This process is a service of the own node, the peer program one of the other.
class TwoNodesTest : public testkit::NodeTest {
protected:
    TwoNodesTest()
    {
        AaSysComGetOwnNid(); // as the environment is now
        const TestNet place(0);
        writeTable({place.host(), place.host()});
        writeKeyFile(keyFile(ownNode), m_ownKeys);
        writeKeyFile(keyFile(otherNode), m_otherKeys);
        m_cpid = AaSysComUserRegister(0, AaProEuCurrent());
    }
    ~TwoNodesTest() override
    {
        AaSysComUserDeregister(m_cpid);
        while (void* message = AaSysComMsgReceive(AA_NO_WAIT)) {
            AaSysComMsgDestroy(&message);
        }
    }

    /// @param hosts of the own and the other node
    void writeTable(const std::array<std::string, 2>& hosts)
    {
        m_hosts = hosts;
        std::ofstream table(m_table);
        table << ownNode << ' ' << hosts[0] << ' ' << TestNet::freePort() << ' ' << m_ownKeys.publicKey.text() << '\n';
        table << otherNode << ' ' << hosts[1] << ' ' << TestNet::freePort() << ' ' << m_otherKeys.publicKey.text()
              << '\n';
    }
    std::string keyFile(TAaSysComNid node) const { return m_node.runDirectory() + "-key-" + std::to_string(node); }

    /// Starts a node's gateway. @param within command, if any, that runs it somewhere
    std::unique_ptr<testkit::Process> startGateway(TAaSysComNid node, std::vector<std::string> within = {}) const
    {
        const OnNode environment(node);
        within.insert(within.end(), {DORN_GATEWAY_PROGRAM, m_table, keyFile(node), m_hosts[node == ownNode ? 0 : 1]});
        return std::make_unique<testkit::Process>(within.front(),
                                                  std::vector<std::string>(within.begin() + 1, within.end()));
    }
    std::unique_ptr<testkit::Process> startReadyGateway(TAaSysComNid node, std::vector<std::string> within = {}) const
    {
        std::unique_ptr<testkit::Process> gateway = startGateway(node, std::move(within));
        EXPECT_TRUE(gateway->waitForOutput("ready")) << gateway->standardError();
        return gateway;
    }
    /// Starts the peer program on the other node. @return its address
    TAaSysComSicad startPeer()
    {
        {
            const OnNode environment(otherNode);
            m_peer = std::make_unique<testkit::Process>(DORN_PEER_PROGRAM);
        }
        EXPECT_TRUE(m_peer->waitForOutput("\n"));
        const auto cpid = static_cast<TAaSysComCpid>(std::stoul(m_peer->standardOutput().substr(sizeof "ready")));
        return AaSysComSicadGet(cpid, otherNode);
    }

    static std::int32_t tell(TAaSysComSicad peer, const host::test::Command& command)
    {
        void* message = AaSysComMsgCreate(host::test::commandId, sizeof command, peer);
        std::memcpy(AaSysComMsgGetPayload(message), &command, sizeof command);
        return AaSysComMsgSend(&message);
    }
    static std::optional<host::test::Answer> answer(TAaSysComSicad& sender, std::int32_t timeout = generousTimeout)
    {
        constexpr std::uint16_t filter[] = {1, host::test::answerId};
        void* message = AaSysComMsgReceiveSelective(timeout, filter);
        if (!message) {
            return std::nullopt;
        }
        host::test::Answer answer{};
        std::memcpy(&answer, AaSysComMsgGetPayload(message), sizeof answer);
        sender = AaSysComMsgGetSender(message);
        AaSysComMsgDestroy(&message);
        return answer;
    }
    static std::int32_t sendEmptyTo(TAaSysComSicad receiver)
    {
        void* message = AaSysComMsgCreate(0x55, 0, receiver);
        return AaSysComMsgSend(&message);
    }

    const std::string m_table = m_node.runDirectory() + "-table";
    const KeyPair m_ownKeys = makeKeyPair();
    const KeyPair m_otherKeys = makeKeyPair();
    std::array<std::string, 2> m_hosts;
    TAaSysComCpid m_cpid = 0;
    std::unique_ptr<testkit::Process> m_peer;
};

} // namespace dorn::gateway::test
