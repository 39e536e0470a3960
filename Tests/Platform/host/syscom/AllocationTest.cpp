// SPDX-License-Identifier: MIT
// Counts what is allocated: `malloc` of the library through the linker, `new` by its replacement.
#include "PeerProcess.hpp"
#include "SysComTest.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<unsigned> mallocs{0};
std::atomic<unsigned> news{0};

} // namespace

extern "C" {
void* __real_malloc(std::size_t size);
void* __wrap_malloc(std::size_t size)
{
    mallocs.fetch_add(1);
    return __real_malloc(size);
}
}

void* operator new(std::size_t size)
{
    news.fetch_add(1);
    if (void* const block = __real_malloc(size)) {
        return block;
    }
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept
{
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

namespace dorn::host::test {
namespace {

constexpr unsigned count = 500;

class AllocationTest : public SysComTest {
protected:
    /// What @p work allocates that is no message.
    template <class Work>
    static std::pair<unsigned, unsigned> allocatedBy(const Work& work)
    {
        const unsigned mallocsBefore = mallocs.load();
        const unsigned newsBefore = news.load();
        work();
        return {mallocs.load() - mallocsBefore, news.load() - newsBefore};
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
