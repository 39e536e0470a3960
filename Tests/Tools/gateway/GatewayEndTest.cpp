// SPDX-License-Identifier: MIT
// What a gateway cannot go on for.
#include "gateway/Gateway.hpp"
#include "gateway/PlaceWatch.hpp"

#include "NodeTest.hpp"
#include "TestNet.hpp"

#include <filesystem>
#include <future>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::gateway::test {
namespace {

using testing::HasSubstr;

class GatewayEndTest : public testkit::NodeTest {
protected:
    /// Has the gateway of the first node run until something ends it, for which there is time.
    std::future<void> run() const
    {
        return std::async(std::launch::async, [this] { m_gateway->run(); });
    }
    /// Why a gateway ended; empty when it did not by itself.
    std::string whyEnded(std::future<void> running)
    {
        if (running.wait_for(testkit::generousBound) != std::future_status::ready) {
            m_gateway->stop();
        }
        try {
            running.get();
        } catch (const host::EnvironmentError& error) {
            return error.what();
        }
        return "";
    }
    std::string logged(const std::string& why) const { return "Error 0x0 The gateway ends: " + why; }

    TestNet m_net{2};
    const std::string m_place = m_net.directory(0).path();
    GatewayOptions m_options = [this] {
        GatewayOptions options = quickOptions();
        options.listenAddress = m_net.host();
        return options;
    }();
    std::unique_ptr<Gateway> m_gateway =
        std::make_unique<Gateway>(m_net.directory(0), m_net.table(), m_net.keys(0), m_options);
};

TEST_F(GatewayEndTest, RunDirectoryThatIsRemovedEndsIt)
{
    std::filesystem::remove_all(m_net.runPath()); // before it looks for the first time, as this is not one step
    std::future<void> running = run();

    const std::string why = "the run directory '" + m_place + "' is gone, and nobody finds this gateway any more";
    EXPECT_EQ(whyEnded(std::move(running)), why);
    EXPECT_THAT(m_log.texts(), testing::Contains(logged(why)));
    m_gateway.reset(); // with nothing there to be taken away
}

TEST_F(GatewayEndTest, RunDirectoryThatIsMovedAwayEndsIt)
{
    std::future<void> running = run();
    const std::string elsewhere = m_net.runPath() + "/moved";
    std::filesystem::rename(m_place, elsewhere);
    std::filesystem::create_directory(m_place); // as the next service does

    EXPECT_THAT(whyEnded(std::move(running)), HasSubstr("the run directory '" + m_place + "' is gone"));
}

TEST_F(GatewayEndTest, StatusSocketThatIsRemovedEndsIt)
{
    std::future<void> running = run();
    std::filesystem::remove(m_place + "/gateway");

    EXPECT_EQ(whyEnded(std::move(running)),
              "the socket 'gateway' in '" + m_place + "' is gone, and nobody finds this gateway any more");
}

TEST_F(GatewayEndTest, SocketForANodeInWhosePlaceThereIsAnotherEndsIt)
{
    std::future<void> running = run();
    std::filesystem::rename(m_place + "/gateway", m_place + "/node/0102");

    EXPECT_THAT(whyEnded(std::move(running)), HasSubstr("the socket 'node/0102' in '" + m_place + "' is gone"));
}

TEST_F(GatewayEndTest, PlaceThatCannotBeLookedAtIsNotTakenForGone)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "nothing is closed to this user";
    }
    const PlaceWatch watch(m_net.directory(0));
    chmod(m_net.runPath().c_str(), 0);
    const std::optional<std::string> missing = watch.whatIsMissing();
    chmod(m_net.runPath().c_str(), 0700);

    EXPECT_EQ(missing, std::nullopt);
}

TEST_F(GatewayEndTest, GatewayWhosePlaceIsWholeGoesOn)
{
    GatewayOptions options = m_options;
    options.heartbeat = std::chrono::milliseconds(1);
    m_gateway.reset();
    m_net.start(0, options);
    m_net.start(1);
    ASSERT_TRUE(m_net.waitForLinks());

    ASSERT_TRUE(waitUntil([this] { return m_net.status(0).age > std::chrono::milliseconds(100); }));
    EXPECT_EQ(m_net.link(0, 1).ups, 1U);
}

TEST_F(GatewayEndTest, SuccessorInTheNewPlaceCarriesOn)
{
    std::future<void> running = run();
    std::filesystem::remove_all(m_net.runPath());
    EXPECT_NE(whyEnded(std::move(running)), "");
    m_gateway.reset();

    const host::RunDirectory again(m_net.runPath(), static_cast<std::uint16_t>(nodeId(0)));
    Gateway successor(again, m_net.table(), m_net.keys(0), m_options);
    std::thread thread([&successor] { successor.run(); });

    EXPECT_TRUE(fetchStatus(again, testkit::generousBound).status);
    successor.stop();
    thread.join();
}

} // namespace
} // namespace dorn::gateway::test
