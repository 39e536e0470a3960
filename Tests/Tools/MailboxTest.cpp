// SPDX-License-Identifier: MIT
#include "waiting/Mailbox.hpp"

#include "ManualClock.hpp"

#include <gmock/gmock.h>
#include <thread>

namespace dorn::tool {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(MailboxTest, ItemsComeInTheirOrder)
{
    Mailbox<int> mailbox;
    mailbox.put(1);
    mailbox.put(2);

    EXPECT_THAT(mailbox.take(host::noDeadline), ElementsAre(1, 2));
}

TEST(MailboxTest, WaiterIsWokenByAnItem)
{
    const testkit::ManualClock clock;
    Mailbox<int> mailbox;
    std::thread writer([&] { mailbox.put(7); });

    std::vector<int> items;
    while (items.empty()) {
        items = mailbox.take(host::noDeadline);
    }
    writer.join();

    EXPECT_THAT(items, ElementsAre(7));
}

TEST(MailboxTest, TakeEndsWhenTheTimeHasPassed)
{
    testkit::ManualClock clock;
    Mailbox<int> mailbox;
    std::vector<int> items{1};
    std::thread reader([&] { items = mailbox.take(clock.monotonic() + std::chrono::seconds(1)); });

    EXPECT_TRUE(clock.waitForSleepers());
    clock.advance(std::chrono::seconds(1));
    reader.join();

    EXPECT_THAT(items, IsEmpty());
}

TEST(MailboxTest, InterruptEndsTheTakeToCome)
{
    Mailbox<int> mailbox;
    mailbox.interrupt();

    EXPECT_THAT(mailbox.take(host::noDeadline), IsEmpty());
}

TEST(MailboxTest, ItemAfterAnInterruptIsNotLost)
{
    Mailbox<int> mailbox;
    mailbox.interrupt();
    mailbox.take(host::noDeadline);
    mailbox.put(3);

    EXPECT_THAT(mailbox.take(host::noDeadline), ElementsAre(3));
}

} // namespace
} // namespace dorn::tool
