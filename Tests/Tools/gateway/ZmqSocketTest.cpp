// SPDX-License-Identifier: MIT
#include "gateway/ZmqSocket.hpp"

#include "Bound.hpp"
#include "Sanitizers.hpp"
#include "TestNet.hpp"

#include <arpa/inet.h>
#include <future>
#include <gtest/gtest.h>
#include <optional>
#include <poll.h>
#include <sys/socket.h>

namespace dorn::gateway::test {
namespace {

/// Comes, and goes without a word. @return whether the other side has gone, too, within a while
bool comeAndGo(const std::string& host, std::uint16_t port)
{
    const host::Descriptor caller(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    inet_pton(AF_INET, host.c_str(), &address.sin_addr);
    if (connect(caller.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return false;
    }
    shutdown(caller.get(), SHUT_WR);
    for (char buffer[256];;) {
        pollfd entry{caller.get(), POLLIN, 0};
        if (poll(&entry, 1, 500) <= 0) {
            return false;
        }
        if (recv(caller.get(), buffer, sizeof buffer, 0) <= 0) {
            return true;
        }
    }
}

TEST(ZmqMessageTest, MessageThatThereIsNoMemoryForStaysEmptyAndCanBeEnded)
{
    if (dorn::test::hasAddressSanitizer || dorn::test::hasThreadSanitizer) {
        GTEST_SKIP() << "sanitizers end a process that asks for so much";
    }
    zmq::message_t message;
    EXPECT_FALSE(makeRoom(message, std::size_t{1} << 60));
    EXPECT_EQ(message.size(), 0U);
    EXPECT_TRUE(makeRoom(message, 100));
    EXPECT_EQ(message.size(), 100U);
}

TEST(ZmqMonitorTest, MonitorThatNobodyHasLookedAtEnds)
{
    host::WaitSet waitSet;
    zmq::context_t context(1);
    ZmqSocket watched(context, zmq::socket_type::router, waitSet);
    auto monitor = std::make_unique<ZmqMonitor>(context, watched, ZMQ_EVENT_ALL, waitSet);
    const TestNet place(0);
    const std::uint16_t port = TestNet::freePort();
    watched.socket().bind("tcp://" + place.host() + ":" + std::to_string(port));
    ASSERT_TRUE(comeAndGo(place.host(), port));
    int callers = 1;
    while (callers < 5000 && comeAndGo(place.host(), port)) {
        ++callers;
    }
    ASSERT_LT(callers, 5000); // until ZeroMQ's thread waits for room

    std::future<void> end = std::async(std::launch::async, [&monitor] { monitor.reset(); });

    if (end.wait_for(testkit::generousBound) != std::future_status::ready) {
        GTEST_FAIL() << "the monitor does not end";
    }
}

} // namespace
} // namespace dorn::gateway::test
