// SPDX-License-Identifier: MIT
#include "AllocationCount.hpp"
#include "PeerProcess.hpp"
#include "SysComTest.hpp"

#include <utility>

namespace dorn::host::test {
namespace {

constexpr unsigned count = 500;

class AllocationTest : public SysComTest {
protected:
    /// What @p work allocates that is no message.
    template <class Work>
    static std::pair<unsigned, unsigned> allocatedBy(const Work& work)
    {
        const unsigned mallocsBefore = mallocCount();
        const unsigned newsBefore = newCount();
        work();
        return {mallocCount() - mallocsBefore, newCount() - newsBefore};
    }
};

TEST_F(AllocationTest, MessageWithinTheProcessIsOneAllocation)
{
    const auto pass = [this](unsigned messages) {
        for (unsigned index = 0; index < messages; ++index) {
            sendEmpty(1, address());
            const std::uint16_t filter[] = {1, 1};
            void* message =
                index % 2 == 0 ? AaSysComMsgReceive(AA_NO_WAIT) : AaSysComMsgReceiveSelective(AA_NO_WAIT, filter);
            AaSysComMsgDestroy(&message);
        }
    };
    pass(300); // everything has been used once

    const auto [messages, others] = allocatedBy([&] { pass(count); });

    EXPECT_EQ(messages, count);
    EXPECT_EQ(others, 0U);
}

TEST_F(AllocationTest, MessageBetweenProcessesIsOneAllocationAtEachEnd)
{
    PeerProcess peer;
    const auto pass = [&](unsigned messages) {
        for (unsigned index = 0; index < messages; ++index) {
            sendEmpty(1, peer.address());
            void* message = AaSysComMsgReceive(generousTimeout);
            AaSysComMsgDestroy(&message);
        }
    };
    peer.tell({.order = Order::Return, .count = count + 301});
    pass(300);

    const auto [messages, others] = allocatedBy([&] { pass(count); });

    EXPECT_EQ(messages, 2 * count);
    EXPECT_EQ(others, 0U);
    pass(1);
    peer.answer();
}

} // namespace
} // namespace dorn::host::test
