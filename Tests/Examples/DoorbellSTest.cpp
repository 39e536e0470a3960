// SPDX-License-Identifier: MIT
#include "DoorbellS.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "ServiceUnderTest.hpp"
#include "TestBoard.hpp"
#include "new/IdentityCaches.hpp"

#include <array>
#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <utility>

namespace dorn::examples {
namespace {

using testkit::Peer;
using testkit::ServiceUnderTest;

class DoorbellSTest : public testkit::NodeTest {
protected:
    DoorbellSTest()
    {
        // A number that no test before has had: the dispatcher is that of the process and remembers what was
        // unregistered.
        static int next = 100;
        if (pipe(m_contact.data()) != 0 || dup2(m_contact[0], next) != next) {
            throw std::runtime_error("no pipe");
        }
        close(std::exchange(m_contact[0], next++));
    }
    ~DoorbellSTest() override
    {
        close(m_contact[0]);
        close(m_contact[1]);
    }

    void ring() const { EXPECT_EQ(write(m_contact[1], "r", 1), 1); }

    /// Asks until so many visits stand in the book.
    static bool waitForVisits(Peer& visitor, TAaSysComSicad service, std::uint32_t visits)
    {
        const auto until = std::chrono::steady_clock::now() + testkit::generousBound;
        do {
            visitor.send<VisitsReqMsg>(service, {1});
            if (visitor.expect<VisitsRespMsg>()->visits == visits) {
                return true;
            }
        } while (std::chrono::steady_clock::now() < until);
        return false;
    }

    std::array<int, 2> m_contact{};
};

TEST_F(DoorbellSTest, VisitsAreWrittenToTheBookAndCounted)
{
    m_node.writeBoardFile(visitorsBookPath, "");
    {
        DoorbellS doorbell(m_contact[0]);
        ServiceUnderTest service(doorbell);
        ASSERT_TRUE(service.waitUntilReady());
        Peer visitor;

        ring();
        ring();
        EXPECT_TRUE(waitForVisits(visitor, service.address(), 2));
    }

    EXPECT_EQ(m_node.readBoardFile(visitorsBookPath), "somebody rang\nsomebody rang\n");
}

TEST_F(DoorbellSTest, BookThatCannotBeOpenedIsLoggedAndTheNextVisitIsTried)
{
    m_node.writeBoardFile("/ffs/run", "in place of the directory");
    DoorbellS doorbell(m_contact[0]);
    ServiceUnderTest service(doorbell);
    ASSERT_TRUE(service.waitUntilReady());
    Peer visitor;

    ring();
    ASSERT_TRUE(m_log.waitFor("Error 0x200b0 Task - Visit not written: the book cannot be opened"));
    std::filesystem::remove(m_node.boardPath("/ffs/run"));
    m_node.writeBoardFile(visitorsBookPath, "");
    ring();

    EXPECT_TRUE(waitForVisits(visitor, service.address(), 1));
}

TEST_F(DoorbellSTest, UnitIsToldAtTheStart)
{
    const testkit::TestBoard board;
    std::construct_at(&vel::hwapi::adet::identityCaches());
    DoorbellS doorbell(m_contact[0]);
    ServiceUnderTest service(doorbell);

    EXPECT_TRUE(m_log.waitFor("Vip 0x200b0 Runs on unit NAXE DN264700001: HW/SW id 0xA00100, type 19, version 51"));
}

} // namespace
} // namespace dorn::examples
