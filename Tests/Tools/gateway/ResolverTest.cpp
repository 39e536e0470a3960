// SPDX-License-Identifier: MIT
#include "gateway/Resolver.hpp"

#include "NoMemory.hpp"
#include "TestNet.hpp"

#include <condition_variable>
#include <gmock/gmock.h>
#include <iterator>
#include <list>
#include <new>

namespace dorn::gateway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A look-up that answers when it is let.
class HeldLookUp {
public:
    std::vector<std::string> operator()(const std::string& host)
    {
        std::unique_lock lock(m_mutex);
        ++m_begun;
        m_isLet.wait(lock, [this] { return m_isOpen; });
        return {"found " + host};
    }
    void let()
    {
        const std::lock_guard lock(m_mutex);
        m_isOpen = true;
        m_isLet.notify_all();
    }
    int begun()
    {
        const std::lock_guard lock(m_mutex);
        return m_begun;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_isLet;
    bool m_isOpen = false;
    int m_begun = 0;
};

class ResolverTest : public testing::Test {
protected:
    std::vector<Resolver::Found> wait(std::size_t count)
    {
        std::vector<Resolver::Found> all;
        EXPECT_TRUE(waitUntil([&] {
            std::list<Resolver::Found> found = m_resolver->take();
            std::move(found.begin(), found.end(), std::back_inserter(all));
            return all.size() >= count;
        }));
        return all;
    }

    // Shared with threads that nobody waits for.
    const std::shared_ptr<HeldLookUp> m_lookUp = std::make_shared<HeldLookUp>();
    host::WaitSet m_waitSet;
    std::unique_ptr<Resolver> m_resolver =
        std::make_unique<Resolver>(m_waitSet, [lookUp = m_lookUp](const std::string& host) { return (*lookUp)(host); });
};

TEST_F(ResolverTest, OneLookUpForEachTicketIsUnderWay)
{
    for (int count = 0; count < 5; ++count) {
        m_resolver->start(1, "one");
        m_resolver->start(2, "two");
    }
    EXPECT_TRUE(waitUntil([this] { return m_lookUp->begun() == 2; }));
    EXPECT_THAT(m_resolver->take(), IsEmpty());
    m_lookUp->let();

    EXPECT_EQ(wait(2).size(), 2U);
    EXPECT_EQ(m_lookUp->begun(), 2);
}

TEST_F(ResolverTest, NextOneBeginsWhenTheAnswerHasBeenTaken)
{
    m_lookUp->let();
    m_resolver->start(1, "one");
    EXPECT_THAT(wait(1).at(0).addresses, ElementsAre("found one"));
    m_resolver->start(1, "other");

    const std::vector<Resolver::Found> found = wait(1);

    EXPECT_EQ(found.at(0).ticket, 1U);
    EXPECT_THAT(found.at(0).addresses, ElementsAre("found other"));
}

TEST_F(ResolverTest, LookUpThatCannotBeginBeginsLater)
{
    const std::string host = "a name that is longer than what a string has room for in itself";
    m_lookUp->let();
    {
        const NoMemory noMemory;
        m_resolver->start(1, host);
    }
    m_resolver->start(1, host);

    EXPECT_THAT(wait(1).at(0).addresses, ElementsAre("found " + host));
    EXPECT_EQ(m_lookUp->begun(), 1);
}

TEST_F(ResolverTest, LookUpThatFailsForWantOfMemoryFindsNothing)
{
    Resolver resolver(m_waitSet, [](const std::string&) -> std::vector<std::string> { throw std::bad_alloc(); });
    resolver.start(1, "one");
    std::list<Resolver::Found> found;

    ASSERT_TRUE(waitUntil([&] { return !(found = resolver.take()).empty(); }));

    EXPECT_THAT(found.front().addresses, IsEmpty());
}

TEST_F(ResolverTest, WhatIsFoundAfterTheEndGoesNowhere)
{
    m_resolver->start(1, "one");
    EXPECT_TRUE(waitUntil([this] { return m_lookUp->begun() == 1; }));
    m_resolver.reset();

    m_lookUp->let();

    // The thread lets go of the look-up at its end.
    EXPECT_TRUE(waitUntil([this] { return m_lookUp.use_count() == 1; }));
}

TEST(SystemLookUpTest, AddressIsFoundAsItStands)
{
    host::WaitSet waitSet;
    Resolver resolver(waitSet);
    resolver.start(7, "127.0.0.1"); // a name would ask what the machine knows
    std::list<Resolver::Found> found;

    ASSERT_TRUE(waitUntil([&] { return !(found = resolver.take()).empty(); }));

    EXPECT_EQ(found.front().ticket, 7U);
    EXPECT_THAT(found.front().addresses, ElementsAre("127.0.0.1"));
}

} // namespace
} // namespace dorn::gateway::test
