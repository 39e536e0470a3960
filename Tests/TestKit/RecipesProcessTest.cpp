// SPDX-License-Identifier: MIT
// Recipes: the executable, its end and its next start.
#include "AaConfigTag.h"
#include "KioskS.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "Process.hpp"
#include "RadWait.hpp"
#include "TagWait.hpp"

#include <csignal>

namespace kiosk {
namespace {

using namespace dorn::testkit;

class RecipesProcessTest : public NodeTest {
protected:
    static bool isOpen() { return waitForRad(ERadHwapiState_ClimateState, 2); }
};

TEST_F(RecipesProcessTest, StatusTellsHowTheServiceEnded)
{
    Process kiosk(DORN_KIOSK_EXE);
    ASSERT_TRUE(isOpen());
    kiosk.signal(SIGTERM);
    EXPECT_EQ(kiosk.waitForEnd(), 1);

    m_node.writeBoardFile("/ffs/run/kiosk/closed/sign", "");
    EXPECT_EQ(Process(DORN_KIOSK_EXE).waitForEnd(), 0);
}

TEST_F(RecipesProcessTest, OrdersOutliveACrash)
{
    Peer customer;
    {
        Process kiosk(DORN_KIOSK_EXE);
        ASSERT_TRUE(isOpen());
        customer.send<OrderReqMsg>(kioskCpid, {.paper = 1});
        customer.expect<OrderRespMsg>();
        kiosk.signal(SIGSEGV);
        EXPECT_EQ(kiosk.waitForEnd(), -SIGSEGV);
    }

    AaConfigTagSetU32(priceTag, 220);
    Process next(DORN_KIOSK_EXE);
    ASSERT_TRUE(waitForTag(shownTag, 220U)) << "the state is still that of the one that has crashed";
    customer.send<OrderReqMsg>(kioskCpid, {.paper = 2});
    customer.expect<OrderRespMsg>();

    EXPECT_EQ(m_node.readBoardFile(orderBook), "paper 1\npaper 2\n");
}

} // namespace
} // namespace kiosk
