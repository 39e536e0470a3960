// SPDX-License-Identifier: MIT
#include "FirmwareS.hpp"

#include "FailNth.hpp"
#include "Image.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "ServiceUnderTest.hpp"
#include "TestBoard.hpp"
#include "ddal_fpga.h"
#include "ddal_watchdog.h"
#include "firmware.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace dorn::examples {
namespace {

using test::element;
using testing::Contains;
using testkit::CountCalls;
using testkit::Peer;

constexpr const char* image = "/ffs/run/boot/NAX-BRINDLE.bin";

class FirmwareSTest : public testkit::NodeTest {
protected:
    FirmwareSTest() { EXPECT_TRUE(m_running.waitUntilReady()); }

    /// Makes the board what it is before the service looks at it.
    bool prepare()
    {
        m_board.cells("units/unit@0", "dorn,hw-sw-id", {0x3A01}).text("units/unit@0", "dorn,unit-id", "NAXE");
        std::filesystem::create_directories(m_node.boardPath("/ffs/run/boot"));
        std::filesystem::create_directories(m_node.boardPath("/tmp"));
        return unit_init() == 0; // the process may have known another one
    }

    void putImage(std::uint32_t version, const std::string& hwSwId = "3A01") const
    {
        const std::string payload = test::payloadOf(1000);
        m_node.writeBoardFile(
            image, test::imageOf(payload, test::trailerOf(element("Crc32", std::to_string(test::crcOf(payload))) +
                                                          element("SwVersion", std::to_string(version)) +
                                                          element("HwSwIdList", element("HwSwId", hwSwId)))));
    }

    SFirmwareUpdateResp ask()
    {
        m_peer.send<FirmwareUpdateReqMsg>(m_running.address(), {5});
        const auto answer = m_peer.expect<FirmwareUpdateRespMsg>();
        EXPECT_EQ(answer->transactionId, 5U);
        EXPECT_EQ(answer->activeVersion, 0x20010U);
        return *answer;
    }

    /// Asks, and expects this.
    void expect(EFirmwareOutcome outcome, std::int32_t result, const std::string& file)
    {
        const SFirmwareUpdateResp answer = ask();
        EXPECT_EQ(answer.outcome, outcome);
        EXPECT_EQ(answer.result, result);
        EXPECT_EQ(answer.file.data(), file);
    }

    testkit::TestBoard m_board;
    const bool m_isPrepared = prepare();
    FirmwareS m_firmware;
    testkit::ServiceUnderTest m_running{m_firmware, {"-v"}};
    Peer m_peer{0x0301};
};

TEST_F(FirmwareSTest, AnotherImageIsFlashedIntoBothSlots)
{
    putImage(0x20011);
    const CountCalls<ddal_fpga_update_mod> flashings;

    expect(EFirmwareOutcome_Flashed, 0, image);
    EXPECT_EQ(flashings.count(), 2U);
    EXPECT_THAT(m_log.texts(), Contains("Info 0x20003 FPGA version 0x20010, image '/ffs/run/boot/NAX-BRINDLE.bin': "
                                        "flashed, in use from the next reset on (0)"));
}

TEST_F(FirmwareSTest, ImageThatRunsAlreadyIsNotFlashed)
{
    putImage(0x20010);
    const CountCalls<ddal_fpga_update_mod> flashings;

    expect(EFirmwareOutcome_UpToDate, 0, image);
    EXPECT_EQ(flashings.count(), 0U);
}

TEST_F(FirmwareSTest, ImageThatRunsAlreadyIsFlashedWhenForced)
{
    putImage(0x20010);
    m_node.writeBoardFile("/ffs/run/logs/force-firmware-update-nax-fpga", "1");

    expect(EFirmwareOutcome_Flashed, 0, image);
    EXPECT_EQ(m_node.readBoardFile("/ffs/run/logs/force-firmware-update-nax-fpga"), "0");
    expect(EFirmwareOutcome_UpToDate, 0, image);
}

TEST_F(FirmwareSTest, UpdatesMayBeSwitchedOff)
{
    putImage(0x20011);
    m_node.writeBoardFile("/ffs/run/logs/disable-firmware-update", "");

    expect(EFirmwareOutcome_Disabled, 0, "");
}

TEST_F(FirmwareSTest, DamagedImageIsRefused)
{
    putImage(0x20011);
    std::string content = m_node.readBoardFile(image);
    content[10] = static_cast<char>(content[10] ^ 1);
    m_node.writeBoardFile(image, content);
    const CountCalls<ddal_fpga_update_mod> flashings;

    expect(EFirmwareOutcome_Refused, 70413, image);
    EXPECT_EQ(flashings.count(), 0U);
}

TEST_F(FirmwareSTest, ImageForAnotherBoardIsRefused)
{
    putImage(0x20011, "3B01");

    expect(EFirmwareOutcome_Refused, 70411, image);
    EXPECT_THAT(m_log.texts(),
                Contains("Error 0x20003 Own HwSwId not found from trailer, binary is not compatible with "
                         "this board!"));
    EXPECT_THAT(m_log.texts(), Contains("Error 0x20003 FPGA version 0x20010, image '/ffs/run/boot/NAX-BRINDLE.bin': "
                                        "refused (70411)"));
}

TEST_F(FirmwareSTest, NoImageIsAFailure)
{
    expect(EFirmwareOutcome_Failed, -7, "");
}

TEST_F(FirmwareSTest, SlotThatCannotBeFlashedIsAFailure)
{
    putImage(0x20011);
    m_board.fail("ddal_fpga_update_mod", DDAL_ERROR_IO, 1, 1);

    expect(EFirmwareOutcome_Failed, -4, image);
    expect(EFirmwareOutcome_Flashed, 0, image);
}

TEST_F(FirmwareSTest, VersionThatCannotBeReadIsAFailure)
{
    putImage(0x20011);
    m_board.fail("ddal_fpga_get_active_version", DDAL_ERROR_IO);

    expect(EFirmwareOutcome_Failed, -9, "");
}

TEST_F(FirmwareSTest, BoardThatCannotBeResetIsLogged)
{
    m_board.fail("ddal_watchdog_reboot", DDAL_ERROR_IO);

    m_peer.send<BoardResetReqMsg>(m_running.address(), {6});
    m_running.sync();

    EXPECT_THAT(m_log.texts(), Contains(testing::StartsWith("Error 0x20003 The board is not reset (9)")));
}

} // namespace
} // namespace dorn::examples
