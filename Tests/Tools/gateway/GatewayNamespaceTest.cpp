// SPDX-License-Identifier: MIT
// Two nodes on two hosts of their own, as far as the network goes: a link is cut where a cable would be pulled.
#include "Namespace.hpp"
#include "TwoNodesTest.hpp"

#include <utility>

namespace dorn::gateway::test {
namespace {

using host::test::Order;

class GatewayNamespaceTest : public TwoNodesTest {
protected:
    /// Two hosts with a cable between them. @return why that cannot be; empty when it is there
    std::string connectHosts()
    {
        m_own = std::make_unique<Namespace>();
        if (!m_own->isThere()) {
            return "no network namespace can be made: " + m_own->whyNot();
        }
        m_other = std::make_unique<Namespace>(m_own->enter());
        if (!m_other->isThere()) {
            return "no second network namespace can be made: " + m_other->whyNot();
        }
        const std::vector<std::pair<const Namespace*, std::vector<std::string>>> steps{
            {m_own.get(),
             {"ip", "link", "add", "cable0", "type", "veth", "peer", "name", "cable1", "netns", m_other->process()}},
            {m_own.get(), {"ip", "addr", "add", ownAddress + std::string("/24"), "dev", "cable0"}},
            {m_other.get(), {"ip", "addr", "add", otherAddress + std::string("/24"), "dev", "cable1"}},
            {m_own.get(), {"ip", "link", "set", "cable0", "up"}},
            {m_other.get(), {"ip", "link", "set", "cable1", "up"}}};
        for (const auto& [place, command] : steps) {
            if (const std::string complaint = place->run(command); !complaint.empty()) {
                return complaint;
            }
        }
        writeTable({ownAddress, otherAddress});
        return "";
    }
    LinkStatus ownLink() const
    {
        return fetchStatus(m_directory, testkit::generousBound).status.value_or(GatewayStatus{}).links.at(0);
    }

    static constexpr const char* ownAddress = "10.77.0.1";
    static constexpr const char* otherAddress = "10.77.0.2";
    const host::RunDirectory m_directory;
    std::unique_ptr<Namespace> m_own;
    std::unique_ptr<Namespace> m_other;
};

TEST_F(GatewayNamespaceTest, PulledCableLosesAndRepeatsNothing)
{
    if (const std::string reason = connectHosts(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    const auto own = startReadyGateway(ownNode, m_own->enter());
    const auto other = startReadyGateway(otherNode, m_other->enter());
    const TAaSysComSicad peer = startPeer();
    constexpr std::uint32_t count = 3000;
    ASSERT_EQ(tell(peer, {.order = Order::Return, .size = 64, .count = count}), EAaSysComStatus_Ok);
    ASSERT_TRUE(waitUntil([this] { return ownLink().state == LinkState::Up; }));

    for (std::uint32_t number = 0; number < count; ++number) {
        if (number == count / 3) {
            ASSERT_EQ(m_own->run({"ip", "link", "set", "cable0", "down"}), "");
        }
        ASSERT_EQ(sendEmptyTo(peer), EAaSysComStatus_Ok);
    }
    ASSERT_TRUE(waitUntil([this] { return ownLink().fault == LinkFault::Silent; }));
    ASSERT_EQ(m_own->run({"ip", "link", "set", "cable0", "up"}), "");

    for (std::uint32_t expected = 0; expected < count; ++expected) {
        void* message = AaSysComMsgReceive(generousTimeout);
        ASSERT_TRUE(message) << expected;
        std::uint32_t words[2] = {};
        std::memcpy(words, AaSysComMsgGetPayload(message), sizeof words);
        EXPECT_EQ(words[1], expected);
        AaSysComMsgDestroy(&message);
    }
    TAaSysComSicad sender = 0;
    ASSERT_TRUE(answer(sender));
    ASSERT_TRUE(waitUntil([this] { return ownLink().waiting == 0; }));
    const LinkStatus link = ownLink();
    EXPECT_EQ(link.accepted, count + 1);
    EXPECT_EQ(link.confirmed, count + 1);
    EXPECT_EQ(link.received, count + 1);
    EXPECT_EQ(link.dropped.sum(), 0U);
}

} // namespace
} // namespace dorn::gateway::test
