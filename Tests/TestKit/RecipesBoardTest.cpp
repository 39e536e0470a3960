// SPDX-License-Identifier: MIT
// Recipes: the board's drivers, alarms, redundancy.
#include "AaFile.h"
#include "FailNth.hpp"
#include "KioskTest.hpp"
#include "TestBoard.hpp"
#include "ddal_devicetree.h"

namespace kiosk {
namespace {

using vel::hwapi::common::ERedundancyCommand_PrepareActive;
using vel::hwapi::common::ERedundancyState_HwapiFailure;
using vel::hwapi::common::ERedundancyState_Ready;
using vel::hwapi::common::Service;
using vel::hwapi::common::SHwapiFaultInd;

class RecipesBoardTest : public KioskTest {};

TEST_F(RecipesBoardTest, KioskTellsWhichUnitItRunsOn)
{
    TestBoard board;
    board.text("units/unit@0", "dorn,unit-id", "KIVN");

    open();

    EXPECT_EQ(m_log.count("Vip 0x2000a A kiosk on a KIVN"), 1U);
}

TEST_F(RecipesBoardTest, UnknownUnitIsNotTold)
{
    TestBoard board;
    const FailEvery<ddal_devicetree_get_unit_id> noUnit;

    open();

    EXPECT_TRUE(noUnit.hasFailed());
    EXPECT_EQ(m_log.count("Vip 0x2000a A kiosk on a NAXE"), 0U);
}

TEST_F(RecipesBoardTest, OrderThatCannotBeWrittenIsAnAlarm)
{
    Peer faultManager(0x04C1);
    open();
    const FailNth<AaFileOpen> noBook(1);

    m_customer.send<OrderReqMsg>(m_running->address(), {.paper = 4});

    const Message alarm = faultManager.expect(11140);
    EXPECT_EQ(alarm.as<SHwapiFaultInd>().faultId, EFaultId_FileSystemFailure);
    EXPECT_EQ(alarm.as<SHwapiFaultInd>().detailSize, 4U);
    EXPECT_EQ(m_customer.expect<OrderRespMsg>()->isWritten, 0U);
}

TEST_F(RecipesBoardTest, SwitchOverIsAcknowledgedAndThenAnswered)
{
    open();
    Peer manager(0x04E4);

    manager.send<Service::HwapiRedundancyStateReqMsg>(
        m_running->address(), {.transactionId = 9, .command = ERedundancyCommand_PrepareActive});

    EXPECT_EQ(manager.expect<Service::HwapiRedundancyStateRespMsg>()->transactionId, 9U);
    EXPECT_EQ(manager.expect<Service::ApiRedundancyIndMsg>()->state, ERedundancyState_Ready);
}

TEST_F(RecipesBoardTest, OccupiedKioskRefusesASwitchOver)
{
    m_node.writeBoardFile("/ffs/run/kiosk/occupied/reader", "");
    open();
    Peer manager(0x04E4);

    manager.send<Service::HwapiRedundancyStateReqMsg>(
        m_running->address(), {.transactionId = 9, .command = ERedundancyCommand_PrepareActive});

    EXPECT_EQ(manager.expect<Service::ApiRedundancyIndMsg>()->state, ERedundancyState_HwapiFailure);
}

} // namespace
} // namespace kiosk
