// SPDX-License-Identifier: MIT
// Unit autodetection on the host's platform and on boards that device trees describe.
#include "AaConfigRad.h"
#include "AaConfigTag.h"
#include "FailNth.hpp"
#include "NodeTest.hpp"
#include "TestBoard.hpp"
#include "UnpackedTree.hpp"
#include "ddal_devicetree.h"
#include "description/TreeBlob.hpp"
#include "new/ApiAutodetInfo.h"
#include "new/IdentityCaches.hpp"
#include "rad/ERadHwapi.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace {

using dorn::testkit::CountCalls;
using dorn::testkit::FailNth;
using dorn::testkit::TestBoard;
using dorn::testkit::TestNode;
using testing::ElementsAre;
using testing::IsEmpty;

template <typename Function>
std::string textOf(Function function)
{
    std::string buffer(200, '\0');
    return function(buffer.data(), 199U) == 1 ? buffer.c_str() : "(failed)";
}

/// What every function says; those that take a unit or a port are asked for number 1.
std::vector<std::string> answers()
{
    std::vector<std::string> all;
    for (const auto text :
         {ApiGetLocalUnitId, ApiGetLocalUnitProductionCode, ApiGetLocalUnitSerialNumber, ApiGetModuleId,
          ApiGetModuleProductionCode, ApiGetModuleSerialNumber, ApiGetDieId, ApiGetDieIdQuality}) {
        all.push_back(textOf(text));
    }
    for (const auto text : {ApiGetUnitId, ApiGetUnitProductionCode, ApiGetUnitSerialNumber, ApiGetExtModuleId,
                            ApiGetExtModuleProductionCode, ApiGetExtModuleSerialNumber}) {
        all.push_back(textOf([text](char* buffer, std::uint32_t length) { return text(1, buffer, length); }));
    }
    for (const std::int64_t number : std::initializer_list<std::int64_t>{
             ApiGetLocalUnitHwSwId(), ApiGetLocalUnitHwId(), ApiGetLocalUnitType(), ApiGetLocalUnitVersion(),
             ApiGetUnitHwSwId(1), ApiGetUnitHwId(1), ApiGetUnitType(1), ApiGetUnitVersion(1), ApiGetTarnBoardType(),
             ApiGetTarnModuleVersion(), ApiGetLocalTarnRatType(), ApiGetModuleVersion(), ApiGetExtModuleVersion(1)}) {
        all.push_back(std::to_string(number));
    }
    return all;
}

/// The answers of a process on a new node, whose board @p describe gives.
template <typename Describe>
std::vector<std::string> answersOn(Describe describe)
{
    const TestNode node;
    describe(node);
    EXPECT_EQ(AaConfigEarlyStartup(), 0);
    std::construct_at(&vel::hwapi::adet::identityCaches());
    return answers();
}

class ApiAutodetInfoHostTest : public dorn::testkit::NodeTest {
protected:
    ApiAutodetInfoHostTest() { std::construct_at(&vel::hwapi::adet::identityCaches()); }

    void SetUp() override { ASSERT_EQ(AaConfigEarlyStartup(), 0); }

    static std::string extModuleId(std::uint32_t portId)
    {
        return textOf(
            [portId](char* buffer, std::uint32_t length) { return ApiGetExtModuleId(portId, buffer, length); });
    }
};

TEST_F(ApiAutodetInfoHostTest, SingleTarnBoardIsRecognised)
{
    const TestBoard board(DORN_TARN_SINGLE);

    EXPECT_EQ(textOf(ApiGetLocalUnitId), "NAXE");
    EXPECT_EQ(ApiGetLocalUnitHwSwId(), 0xA00100U);
    EXPECT_EQ(ApiGetLocalUnitHwId(), 0xA00U);
    EXPECT_EQ(ApiGetLocalUnitType(), EUnitType_Tarn);
    EXPECT_EQ(ApiGetLocalUnitVersion(), EUnitVersion_Tarn);
    EXPECT_EQ(textOf(ApiGetLocalUnitProductionCode), "DRN-0815-01");
    EXPECT_EQ(textOf(ApiGetLocalUnitSerialNumber), "DN264700001");
    EXPECT_EQ(ApiGetTarnBoardType(), ETarnBoardType_Single);
    EXPECT_EQ(ApiGetTarnModuleVersion(), EModuleVersion_Tarn);
    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_FDLte);
    EXPECT_EQ(textOf(ApiGetModuleId), "TARN");
    EXPECT_EQ(ApiGetModuleVersion(), EModuleVersion_Tarn);
    EXPECT_EQ(textOf(ApiGetModuleProductionCode), "DRN-0900-01");
    EXPECT_EQ(textOf(ApiGetModuleSerialNumber), "DN264600017");
    EXPECT_EQ(extModuleId(1), "VESP");
    EXPECT_EQ(ApiGetExtModuleVersion(1), EModuleVersion_Vesper_4X4);
    EXPECT_EQ(textOf(ApiGetDieId), "5f1c8a3e907b42d6b1e0c4479a2d3385");
    EXPECT_EQ(textOf(ApiGetDieIdQuality), "A1");
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(ApiAutodetInfoHostTest, MasterOfAPairIsRecognised)
{
    const TestBoard board(DORN_TARN_PAIR_MASTER);

    EXPECT_EQ(textOf(ApiGetLocalUnitId), "NAXM");
    EXPECT_EQ(ApiGetLocalUnitType(), EUnitType_Tarn);
    EXPECT_EQ(ApiGetUnitHwSwId(1), 0xA00300U);
    EXPECT_EQ(ApiGetTarnBoardType(), ETarnBoardType_Master);
    EXPECT_EQ(ApiGetTarnModuleVersion(), EModuleVersion_Tarn_Master);
    EXPECT_EQ(ApiGetModuleVersion(), EModuleVersion_Tarn_Master);
    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_TDLte);
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST(ApiAutodetInfoAnswersTest, BlobAndUnpackedTreeGiveTheSame)
{
    for (const char* const blob : {DORN_TARN_SINGLE, DORN_TARN_PAIR_MASTER}) {
        const auto ofBlob = answersOn([blob](const TestNode&) { setenv("DORN_BOARD", blob, 1); });
        const auto ofTree = answersOn([blob](const TestNode& node) {
            dorn::board::unpackTree(node, dorn::board::readTreeBlob(blob, "board"), "/proc/device-tree");
        });

        EXPECT_EQ(ofBlob, ofTree) << blob;
        EXPECT_NE(ofBlob, answersOn([](const TestNode&) {})) << blob;
    }
}

TEST_F(ApiAutodetInfoHostTest, PortZeroLeadsToTheOwnModule)
{
    const TestBoard board;

    EXPECT_EQ(extModuleId(0), textOf(ApiGetModuleId));
    EXPECT_EQ(ApiGetExtModuleVersion(0), ApiGetModuleVersion());
}

TEST_F(ApiAutodetInfoHostTest, TagTellsWcdma)
{
    const TestBoard board;
    ASSERT_EQ(AaConfigTagSetString("sys.orv.fpga.technology", "wcdma 2100"), EAaConfigTagStatus_Ok);

    EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_Wcdma);
}

TEST_F(ApiAutodetInfoHostTest, NodeMapTellsBoardAndCpu)
{
    const TestBoard board;
    ASSERT_EQ(AaConfigTagSetU32("sys.nmap.0f01.board", 0x12), EAaConfigTagStatus_Ok);
    ASSERT_EQ(AaConfigTagSetU32("sys.nmap.0f01.cpu", 0x21), EAaConfigTagStatus_Ok);

    EXPECT_EQ(ApiGetCurrentBoard(), 0x12);
    EXPECT_EQ(ApiGetSlotIdFromBoardId(ApiGetCurrentBoard()), 1);
    EXPECT_EQ(ApiGetCurrentCpu(), 0x21);
}

TEST_F(ApiAutodetInfoHostTest, OtherUnitsAreFoundByTheirRapidIoId)
{
    TestBoard board;
    board.cells("units/unit@0", "dorn,hw-sw-id", {0x501001}).cells("rapidio/port@0", "dorn,own-id", {0x21});
    ASSERT_EQ(AaConfigTagSetU32("sys.nmap.0021.board", 0x34), EAaConfigTagStatus_Ok);

    EXPECT_EQ(ApiGetCurrentBoard(), 0x34);
}

TEST_F(ApiAutodetInfoHostTest, ProcessWithoutBoardAsksAgainAndAgain)
{
    const CountCalls<ddal_devicetree_get_unit_id> asked;

    EXPECT_EQ(textOf(ApiGetLocalUnitId), "(failed)");
    EXPECT_EQ(textOf(ApiGetLocalUnitId), "(failed)");

    EXPECT_EQ(asked.count(), 2U);
    const std::string line =
        "Warning 0x20063 ApiGetUnitId(): ddal_devicetree_get_unit_id() returned '0x3' (not DDAL_OK)";
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Error 0x0 ddal_devicetree_get_unit_id(): board description '/proc/device-tree' cannot be "
                            "read: No such file or directory (DORN_BOARD can name another one)",
                            line, line));
}

TEST_F(ApiAutodetInfoHostTest, DriverThatFailsOnceIsAskedAgainAndThenNoMore)
{
    const TestBoard board;
    const FailNth<ddal_devicetree_get_serial_number> busy(1, DDAL_ERROR_BUSY);

    EXPECT_EQ(textOf(ApiGetLocalUnitSerialNumber), "(failed)");
    EXPECT_EQ(textOf(ApiGetLocalUnitSerialNumber), "DN264700001");
    EXPECT_EQ(textOf(ApiGetLocalUnitSerialNumber), "DN264700001");

    EXPECT_EQ(busy.count(), 2U);
    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x20063 ApiGetUnitSerialNumber(): "
                                           "ddal_devicetree_get_serial_number() returned '0xb' (not DDAL_OK)"));
}

} // namespace
