// SPDX-License-Identifier: MIT
#include "DornCommand.hpp"

#include "ManualClock.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "node/PerNode.hpp"
#include "syscom/MessageTap.hpp"

#include <array>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace dorn::tool {
namespace {

/// A node with EchoS.
class DornMsgTest : public testkit::NodeTest {
protected:
    DornMsgTest() { host::PerNode<host::MessageTap>::get(); }

    /// Waits until the node is watched, or is not any more.
    static bool waitUntilWatched(bool isWatched)
    {
        const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
        while (host::MessageTap::isWatched() != isWatched && std::chrono::steady_clock::now() < end) {
            std::this_thread::yield();
        }
        return host::MessageTap::isWatched() == isWatched;
    }

    const EchoService m_echo;
};

TEST_F(DornMsgTest, ReplyIsPrinted)
{
    EXPECT_EQ(dorn({"msg", "send", "0x0300", "--id", "0x3001", "--text", "Hello!!!", "--wait-reply", "20"}),
              (CommandResult{0,
                             "0x3002 from EchoS 0x0300, 8 bytes\n"
                             "    0000  48 65 6c 6c 6f 21 21 21                           Hello!!!\n",
                             ""}));
}

TEST_F(DornMsgTest, ServiceCanBeNamed)
{
    EXPECT_EQ(dorn({"msg", "send", "EchoS", "--id", "12289", "--payload", "4142434445464748", "--wait-reply", "20",
                    "--json"}),
              (CommandResult{0, R"({
  "id": 12290,
  "sender": {
    "name": "EchoS",
    "node": 3841,
    "cpid": 768
  },
  "length": 8,
  "payload": "4142434445464748"
}
)",
                             ""}));
}

TEST_F(DornMsgTest, SendThatIsNotToBeAnsweredIsQuiet)
{
    testkit::Peer peer(0x0301);

    EXPECT_EQ(dorn({"msg", "send", "0x0301", "--id", "7", "--payload", "01 02"}), (CommandResult{0, "", ""}));

    const testkit::Message message = peer.expectAny();
    EXPECT_EQ(message.id(), 7U);
    EXPECT_EQ(message.text(), "\x01\x02");
    EXPECT_EQ(message.sender() & 0xF000U, 0xF000U); // a cpid of its own
}

TEST_F(DornMsgTest, ReplyThatDoesNotComeIsANo)
{
    const testkit::Peer silent(0x0301);

    EXPECT_EQ(dorn({"msg", "send", "0x0301", "--wait-reply", "0.05"}),
              (CommandResult{1, "", "dorn: sent, but no reply came within 0.05 s\n"}));
}

TEST_F(DornMsgTest, ReceiverThatIsNotThereIsNamed)
{
    EXPECT_EQ(
        dorn({"msg", "send", "0x0301"}),
        (CommandResult{1, "",
                       "dorn: not sent: nobody holds cpid 0x0301 on node 0x0F01; 'dorn service list' shows who is "
                       "there\n"}));
    EXPECT_EQ(dorn({"msg", "send", "Nobody"}),
              (CommandResult{1, "",
                             "dorn: no service 'Nobody' lives on node 0x0F01; give a cpid or a name that 'dorn service "
                             "list' shows\n"}));
    EXPECT_EQ(dorn({"msg", "send", "0x0300", "--node", "0x0F02"}),
              (CommandResult{1, "", "dorn: not sent: node 0x0F02 cannot be reached from node 0x0F01\n"}));
}

TEST_F(DornMsgTest, PayloadHasItsGreatestSize)
{
    EXPECT_EQ(dorn({"msg", "send", "0x0300", "--text", std::string(65'536, 'x')}),
              (CommandResult{2, "",
                             "dorn: a message has at most 65535 payload bytes, this one 65536\n"
                             "Try 'dorn msg send --help'\n"}));
}

TEST_F(DornMsgTest, WatchShowsRequestAndAnswer)
{
    const testkit::ManualClock clock;
    testkit::Peer peer(0x0301);
    DornCommand watch({"msg", "watch", "--count", "2", "--hex"});
    ASSERT_TRUE(waitUntilWatched(true));

    peer.send(0x3001, 0x0300, "Hello!!!");

    EXPECT_EQ(watch.waitForEnd(), 0);
    const std::string answer = replaced(watch.standardOutput(), std::to_string(getpid()), "PID");
    EXPECT_TRUE(answer.starts_with("2025-01-01T00:00:00.000000Z 0x3001 process PID 0x0301 -> EchoS 0x0300 8 bytes\n"
                                   "    0000  48 65 6c 6c 6f 21 21 21                           Hello!!!\n"))
        << answer;
    EXPECT_EQ(withoutTimes(answer.substr(answer.rfind("Z 0x") - 26)),
              "TIME 0x3002 EchoS 0x0300 -> 0x0301 8 bytes\n"
              "    0000  48 65 6c 6c 6f 21 21 21                           Hello!!!\n");
    EXPECT_EQ(watch.standardError(), "");
}

TEST_F(DornMsgTest, WatchShowsOnlyWhatIsAskedFor)
{
    testkit::Peer peer(0x0301);
    testkit::Peer other(0x0302);
    DornCommand byId({"msg", "watch", "--count", "1", "--id", "0x10"});
    DornCommand byCpid({"msg", "watch", "--count", "1", "--cpid", "0x0302"});
    ASSERT_TRUE(waitUntilWatched(true));
    // Each is asked until it has answered: both are known to look on then.
    ASSERT_TRUE(byId.waitForOutputOf(
        [&] {
            peer.send(0x20, other.address());
            other.send(0x10, peer.address());
        },
        "\n"));
    ASSERT_TRUE(byCpid.waitForOutputOf(
        [&] {
            peer.send(0x30, peer.address());
            peer.send(0x40, other.address());
        },
        "\n"));

    EXPECT_EQ(byId.waitForEnd() + byCpid.waitForEnd(), 0);
    EXPECT_NE(byId.standardOutput().find(" 0x0010 "), std::string::npos);
    EXPECT_NE(byCpid.standardOutput().find("0x0302"), std::string::npos);
    EXPECT_EQ(byCpid.standardOutput().find(" 0x0030 "), std::string::npos);
}

TEST_F(DornMsgTest, WatchCanBeToldAsJson)
{
    const testkit::ManualClock clock;
    testkit::Peer peer(0x0301);
    DornCommand watch({"msg", "watch", "--count", "1", "--json"});
    ASSERT_TRUE(waitUntilWatched(true));

    peer.send(0x10, peer.address(), "abc");

    EXPECT_EQ(watch.waitForEnd(), 0);
    EXPECT_EQ(replaced(watch.standardOutput(), std::to_string(getpid()), "PID"),
              R"({"time":"2025-01-01T00:00:00.000000Z","id":16,)"
              R"("sender":{"name":"","node":3841,"cpid":769,"pid":PID},)"
              R"("receiver":{"name":"","node":3841,"cpid":769},"length":3})"
              "\n");
}

class DornMsgWatchEndTest : public DornMsgTest, public ::testing::WithParamInterface<int> {};

TEST_P(DornMsgWatchEndTest, WatchTakesItselfOffTheNode)
{
    DornCommand watch({"msg", "watch"});
    ASSERT_TRUE(waitUntilWatched(true));
    testkit::Peer peer;
    ASSERT_TRUE(watch.waitForOutputOf([&] { peer.send(0x10, peer.address()); }, "\n")); // it can be told to end now

    watch.signal(GetParam());

    EXPECT_EQ(watch.waitForEnd(), 0);
    EXPECT_FALSE(host::MessageTap::isWatched());
}

INSTANTIATE_TEST_SUITE_P(Signals, DornMsgWatchEndTest, ::testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(DornMsgTest, WatchThatSeesTooLittleInItsTimeIsANo)
{
    EXPECT_EQ(dorn({"msg", "watch", "--count", "1", "--timeout", "0.05"}), (CommandResult{1, "", ""}));
    EXPECT_FALSE(host::MessageTap::isWatched());
}

TEST_F(DornMsgTest, OneWatchTooManyIsRefused)
{
    auto& tap = host::PerNode<host::MessageTap>::get();
    std::array<testkit::Peer, host::MessageTap::maxWatchers> watchers;
    for (const testkit::Peer& watcher : watchers) {
        ASSERT_TRUE(tap.addWatcher(watcher.cpid()));
    }

    EXPECT_EQ(dorn({"msg", "watch"}),
              (CommandResult{
                  1, "", "dorn: the messages of node 0x0F01 are watched 8 times already; end one of the watches\n"}));
}

TEST_F(DornMsgTest, MessagesThatAWatchCouldNotTakeAreCounted)
{
    testkit::Peer peer(0x0301);
    DornCommand watch({"msg", "watch"});
    ASSERT_TRUE(watch.waitForOutputOf([&] { peer.send(0x10, peer.address()); }, "\n"));
    watch.signal(SIGSTOP);
    constexpr unsigned more = 20'000; // than any queue holds while nobody takes them
    for (unsigned sent = 0; sent < more; ++sent) {
        peer.send(0x10, peer.address());
        peer.expect(0x10);
    }
    watch.signal(SIGCONT);

    EXPECT_TRUE(watch.waitForOutputOf([&] { peer.send(0x10, peer.address()); },
                                      " messages of process " + std::to_string(getpid()) + " missed\n"));
}

} // namespace
} // namespace dorn::tool
