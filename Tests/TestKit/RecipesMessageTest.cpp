// SPDX-License-Identifier: MIT
// Recipes: messages in and out, other services, workers.
#include "KioskTest.hpp"
#include "ManualClock.hpp"

#include <chrono>
#include <gmock/gmock.h>

namespace kiosk {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

class RecipesMessageTest : public KioskTest {};

TEST_F(RecipesMessageTest, EveryCustomerGetsTheAnswerToHisQuestion)
{
    open();
    Peer other;

    m_customer.send<PriceReqMsg>(m_running->address(), {.paper = 1});
    other.send<PriceReqMsg>(m_running->address(), {.paper = 2});

    EXPECT_EQ(m_customer.expect<PriceRespMsg>()->paper, 1U);
    const auto answer = other.expect<PriceRespMsg>();
    EXPECT_EQ(answer->paper, 2U);
    EXPECT_EQ(answer.sender(), m_running->address());
}

TEST_F(RecipesMessageTest, ShortRequestIsDropped)
{
    open();
    m_log.clear();

    m_customer.send(PriceReqMsg::ID, m_running->address(), "ab");
    m_running->sync();

    m_customer.expectNothing();
    EXPECT_THAT(m_log.texts(), ElementsAre(StartsWith("Error 0x2000a Message too short: id=0x1011 size=2 expected=4")));
    EXPECT_EQ(priceOf(1), 200U) << "the kiosk goes on";
}

TEST_F(RecipesMessageTest, AnswersKeepTheOrderOfTheQuestions)
{
    open();

    for (const std::uint32_t paper : {3U, 1U, 2U}) {
        m_customer.send<PriceReqMsg>(m_running->address(), {paper});
    }

    for (const std::uint32_t paper : {3U, 1U, 2U}) {
        EXPECT_EQ(m_customer.expectAny().as<SPriceResp>().paper, paper);
    }
}

TEST_F(RecipesMessageTest, SupplierIsAskedAndItsAnswerForwarded)
{
    open();
    Peer supplier(supplierCpid);
    m_customer.send<StockReqMsg>(m_running->address(), {.paper = 5});

    const auto question = supplier.expect<SupplyReqMsg>();
    EXPECT_EQ(question->paper, 5U);
    supplier.send<SupplyRespMsg>(question.sender(), {.paper = 5, .left = 12});

    EXPECT_EQ(m_customer.expect<StockRespMsg>()->left, 12U);
}

TEST_F(RecipesMessageTest, SilentSupplierIsWaitedForForThreeSeconds)
{
    ManualClock clock;
    open();
    Peer supplier(supplierCpid);
    m_customer.send<StockReqMsg>(m_running->address(), {.paper = 5});
    supplier.expect<SupplyReqMsg>();
    m_running->sync();

    clock.advance(std::chrono::milliseconds(2999));
    m_running->sync();
    m_customer.expectNothing();
    clock.advance(std::chrono::milliseconds(1));

    EXPECT_EQ(m_customer.expect<StockRespMsg>()->left, 0U);
}

TEST_F(RecipesMessageTest, OrderIsWrittenByTheWorker)
{
    open();

    m_customer.send<OrderReqMsg>(m_running->address(), {.paper = 4});

    EXPECT_EQ(m_customer.expect<OrderRespMsg>()->isWritten, 1U);
    EXPECT_EQ(m_node.readBoardFile(orderBook), "paper 4\n");
}

TEST_F(RecipesMessageTest, KioskAnswersWhileItsWorkerIsBusy)
{
    open();
    auto& clerk = *vel::hwapi::common::Worker::Get(7);
    clerk.SuspendAndWaitWorkToComplete();

    m_customer.send<OrderReqMsg>(m_running->address(), {.paper = 4});
    EXPECT_EQ(priceOf(4), 200U);
    m_customer.expectNothing();

    clerk.ResumeWorking();
    EXPECT_EQ(m_customer.expect<OrderRespMsg>()->paper, 4U);
}

} // namespace
} // namespace kiosk
