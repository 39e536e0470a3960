// SPDX-License-Identifier: MIT
// Recipes: what goes wrong around a service.
#include "AaFile.h"
#include "FailNth.hpp"
#include "FailingFilePort.hpp"
#include "KioskTest.hpp"

namespace kiosk {
namespace {

class RecipesFailureTest : public KioskTest {
protected:
    std::uint32_t order(std::uint32_t paper)
    {
        m_customer.send<OrderReqMsg>(m_running->address(), {paper});
        return m_customer.expect<OrderRespMsg>()->isWritten;
    }
};

TEST_F(RecipesFailureTest, SecondWriteFails)
{
    open();
    const FailNth<AaFileWrite> failure(2);

    EXPECT_EQ(order(1), 1U);
    EXPECT_EQ(order(2), 0U);
    EXPECT_EQ(order(3), 1U);
}

TEST_F(RecipesFailureTest, FullDiskIsNoticedAndTheNextOrderIsTried)
{
    open();
    {
        const FullDisk disk(10); // one order has 8 bytes
        EXPECT_EQ(order(1), 1U);
        EXPECT_EQ(order(2), 0U);
    }
    EXPECT_EQ(order(3), 1U);
}

TEST_F(RecipesFailureTest, PriceIsNotToldWithoutMemory)
{
    open();
    const FailNth<AaSysComMsgCreate> noMemory(1);

    m_customer.send<PriceReqMsg>(m_running->address(), {.paper = 7});

    EXPECT_TRUE(m_log.waitFor("Error 0x2000a Price of paper 7 not told"));
    EXPECT_EQ(priceOf(7), 200U);
}

TEST_F(RecipesFailureTest, ClosedKioskDoesNotStart)
{
    m_node.writeBoardFile("/ffs/run/kiosk/closed/sign", "");
    ServiceUnderTest service(m_kiosk);

    EXPECT_EQ(service.waitForEnd(), 0U);
    EXPECT_EQ(m_kiosk.GetServiceStateRad(), 5U);
}

} // namespace
} // namespace kiosk
