// SPDX-License-Identifier: MIT
#include "UpdateTest.hpp"

#include "AaFile.h"
#include "FailingFilePort.hpp"
#include "ddal_devicetree.h"

#include <cerrno>
#include <filesystem>
#include <unistd.h>

namespace dorn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testkit::FailEvery;
using testkit::FailNth;

class MarkersTest : public UpdateTest {
protected:
    MarkersTest() { useUnit("NAXE"); }

    std::int32_t forced(const std::string& content)
    {
        m_node.writeBoardFile(force, content);
        return is_firmware_update_forced("fpga");
    }

    static constexpr const char* force = "/ffs/run/logs/force-firmware-update-nax-fpga";
};

TEST_F(MarkersTest, WithoutMarkersUpdatesAreAllowedAndNotForced)
{
    EXPECT_EQ(is_firmware_update_disabled(), 0);
    EXPECT_EQ(is_firmware_update_forced("fpga"), 0);
    EXPECT_THAT(m_syslog.texts(), IsEmpty());
}

TEST_F(MarkersTest, MarkerForAllUnitsDisables)
{
    m_node.writeBoardFile("/ffs/run/logs/disable-firmware-update", "");

    EXPECT_EQ(is_firmware_update_disabled(), 1);
}

TEST_F(MarkersTest, MarkerForTheTypeDisables)
{
    m_node.writeBoardFile("/ffs/run/logs/disable-firmware-update-nax", "anything");

    EXPECT_EQ(is_firmware_update_disabled(), 1);
}

TEST_F(MarkersTest, MarkersForOthersDoNotDisable)
{
    m_node.writeBoardFile("/ffs/run/logs/disable-firmware-update-rud", "");
    m_node.writeBoardFile("/ffs/run/logs/disable-firmware-update-NAX", "");
    m_node.writeBoardFile("/ffs/run/logs/disable-firmware-update-naxe", "");

    EXPECT_EQ(is_firmware_update_disabled(), 0);
}

TEST_F(MarkersTest, MarkerForAllUnitsDecidesWithoutAskingWhichUnitItIs)
{
    const FailEvery<ddal_devicetree_get_unit_id> failure;
    unit_init(); // forgets the unit
    EXPECT_EQ(is_firmware_update_disabled(), 0);
    const unsigned before = failure.count();
    EXPECT_GT(before, 1U);

    m_node.writeBoardFile("/ffs/run/logs/disable-firmware-update", "");
    EXPECT_EQ(is_firmware_update_disabled(), 1);
    EXPECT_EQ(failure.count(), before);
}

TEST_F(MarkersTest, WhateverOpensIsAMarker)
{
    std::filesystem::create_directories(m_node.boardPath("/ffs/run/logs/disable-firmware-update"));
    EXPECT_EQ(is_firmware_update_disabled(), 1);
    std::filesystem::remove(m_node.boardPath("/ffs/run/logs/disable-firmware-update"));
    EXPECT_EQ(is_firmware_update_disabled(), 0);

    const std::string link = m_node.boardRoot() + "/ffs/run/logs/disable-firmware-update-nax";
    std::filesystem::create_symlink("/missing", link);
    EXPECT_EQ(is_firmware_update_disabled(), 0);
    m_node.writeBoardFile("/missing", "");
    EXPECT_EQ(is_firmware_update_disabled(), 1);
}

TEST_F(MarkersTest, MarkersOfAUnitWithoutIdHaveNoType)
{
    const FailEvery<ddal_devicetree_get_unit_id> failure;
    unit_init(); // forgets the unit
    m_node.writeBoardFile(force, "3");
    EXPECT_EQ(is_firmware_update_forced("fpga"), 0);
    m_node.writeBoardFile("/ffs/run/logs/force-firmware-update--fpga", "3");
    EXPECT_EQ(is_firmware_update_forced("fpga"), 1);
    m_node.writeBoardFile("/ffs/run/logs/disable-firmware-update-", "");
    EXPECT_EQ(is_firmware_update_disabled(), 1);
}

TEST_F(MarkersTest, CountForcesAsOftenAsItSays)
{
    EXPECT_EQ(forced("3"), 1);
    EXPECT_EQ(m_node.readBoardFile(force), "2");
    EXPECT_EQ(is_firmware_update_forced("fpga"), 1);
    EXPECT_EQ(is_firmware_update_forced("fpga"), 1);
    EXPECT_EQ(m_node.readBoardFile(force), "0");
    EXPECT_EQ(is_firmware_update_forced("fpga"), 0);
    EXPECT_EQ(m_node.readBoardFile(force), "0");
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info is_firmware_update_forced(): yes fpga 3",
                                              "info is_firmware_update_forced(): yes fpga 2",
                                              "info is_firmware_update_forced(): yes fpga 1"));
}

TEST_F(MarkersTest, CountOfAnotherPartDoesNotForce)
{
    m_node.writeBoardFile(force, "3");

    EXPECT_EQ(is_firmware_update_forced("uboot"), 0);
    EXPECT_EQ(m_node.readBoardFile(force), "3");
}

TEST_F(MarkersTest, CountMayHaveBlanksAndTextAround)
{
    EXPECT_EQ(forced(" \n 12 times\n"), 1);
    EXPECT_EQ(m_node.readBoardFile(force), "11");
}

TEST_F(MarkersTest, CountMayHaveASignAndAnyBlanksAndZerosBefore)
{
    EXPECT_EQ(forced("+5"), 1);
    EXPECT_EQ(m_node.readBoardFile(force), "4");
    EXPECT_EQ(forced(std::string(70, ' ') + " \t\n\v\f\r" + "7"), 1);
    EXPECT_EQ(m_node.readBoardFile(force), "6");
    EXPECT_EQ(forced(std::string(5000, '0') + "8"), 1);
    EXPECT_EQ(m_node.readBoardFile(force), "7");
    EXPECT_EQ(forced(std::string(5000, ' ') + std::string(5000, '9')), 1);
    EXPECT_EQ(m_node.readBoardFile(force), "2147483646");
}

TEST_F(MarkersTest, CountIsDecimal)
{
    EXPECT_EQ(forced("0x10"), 0); // 0, and what follows is text
    EXPECT_EQ(m_node.readBoardFile(force), "0x10");
    EXPECT_THAT(m_syslog.texts(), IsEmpty());
    EXPECT_EQ(forced("010"), 1);
    EXPECT_EQ(m_node.readBoardFile(force), "9");
}

TEST_F(MarkersTest, CountBelowOneDoesNotForce)
{
    for (const char* const count : {"0", "-1", "-99999999999"}) {
        EXPECT_EQ(forced(count), 0);
        EXPECT_EQ(m_node.readBoardFile(force), count);
    }
    EXPECT_THAT(m_syslog.texts(), IsEmpty());
}

TEST_F(MarkersTest, CountThatIsTooGreatIsTheGreatest)
{
    EXPECT_EQ(forced("99999999999"), 1);
    EXPECT_EQ(m_node.readBoardFile(force), "2147483646");
}

TEST_F(MarkersTest, MarkerWithoutNumberIsLogged)
{
    EXPECT_EQ(forced("yes"), 0);
    EXPECT_EQ(forced(""), 0);
    EXPECT_EQ(forced(std::string(100, ' ')), 0);
    EXPECT_EQ(forced("+"), 0);
    EXPECT_EQ(forced("- 1"), 0);
    EXPECT_EQ(forced("\xFF"), 0);
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info is_firmware_update_forced(): fscanf() failed 0 0",
                                              "info is_firmware_update_forced(): fscanf() failed -1 0",
                                              "info is_firmware_update_forced(): fscanf() failed -1 0",
                                              "info is_firmware_update_forced(): fscanf() failed 0 0",
                                              "info is_firmware_update_forced(): fscanf() failed 0 0",
                                              "info is_firmware_update_forced(): fscanf() failed 0 0"));
    EXPECT_EQ(m_node.readBoardFile(force), "\xFF");
}

TEST_F(MarkersTest, MarkerThatIsADirectoryIsLogged)
{
    std::filesystem::create_directories(m_node.boardPath(force));

    EXPECT_EQ(is_firmware_update_forced("fpga"), 0);
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info is_firmware_update_forced(): fscanf() failed -1 21"));
}

TEST_F(MarkersTest, CountThatCannotBeReducedDoesNotForce)
{
    m_node.writeBoardFile(force, "3");
    {
        const FailNth<AaFileOpen> failure(2);
        EXPECT_EQ(is_firmware_update_forced("fpga"), 0);
    }
    EXPECT_EQ(m_node.readBoardFile(force), "3") << "what was not opened is as it was";

    {
        const FailNth<AaFileWrite> failure(1);
        EXPECT_EQ(is_firmware_update_forced("fpga"), 0);
    }
    EXPECT_EQ(m_node.readBoardFile(force), "") << "what was opened is empty";

    m_node.writeBoardFile(force, "3");
    {
        const FailNth<AaFileWrite> failure(1, 0);
        EXPECT_EQ(is_firmware_update_forced("fpga"), 0);
    }

    EXPECT_THAT(m_syslog.texts(), ElementsAre("info is_firmware_update_forced(): fopen() failed 5",
                                              "info is_firmware_update_forced(): fprintf() failed -1",
                                              "info is_firmware_update_forced(): fprintf() failed 0"));
}

TEST_F(MarkersTest, OneCharacterThatCouldBeWrittenIsEnough)
{
    m_node.writeBoardFile(force, "12");
    const testkit::FullDisk disk(1);

    EXPECT_EQ(is_firmware_update_forced("fpga"), 1);
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info is_firmware_update_forced(): yes fpga 12"));
    EXPECT_EQ(m_node.readBoardFile(force), "1");
}

TEST_F(MarkersTest, MarkerThatMayNotBeWrittenDoesNotForce)
{
    m_node.writeBoardFile(force, "3");
    const testkit::FailingFilePort files(testkit::FileOperation::Open, 2, EACCES);

    EXPECT_EQ(is_firmware_update_forced("fpga"), 0);
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info is_firmware_update_forced(): fopen() failed 13"));
    EXPECT_EQ(files.calls(testkit::FileOperation::Remove), 0U);
    EXPECT_EQ(m_node.readBoardFile(force), "3");
}

TEST_F(MarkersTest, WriteProtectedMarkerDoesNotForce)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "nothing is write-protected for root";
    }
    m_node.writeBoardFile(force, "3");
    std::filesystem::permissions(m_node.boardPath(force), std::filesystem::perms::owner_read);

    EXPECT_EQ(is_firmware_update_forced("fpga"), 0);
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info is_firmware_update_forced(): fopen() failed 13"));
    EXPECT_EQ(m_node.readBoardFile(force), "3");
}

TEST_F(MarkersTest, CountIsWrittenIntoTheFileThatIsThere)
{
    m_node.writeBoardFile(force, "3");
    const std::string other = m_node.boardRoot() + "/ffs/run/logs/other-name";
    std::filesystem::create_hard_link(m_node.boardPath(force), other);

    EXPECT_EQ(is_firmware_update_forced("fpga"), 1);
    EXPECT_EQ(m_node.readBoardFile("/ffs/run/logs/other-name"), "2");
}

TEST_F(MarkersTest, LinkThatCannotBeRemovedDoesNotForce)
{
    m_node.writeBoardFile("/etc/important", "3");
    std::filesystem::create_directories(m_node.boardPath("/ffs/run/logs"));
    std::filesystem::create_symlink("/etc/important", m_node.boardRoot() + force);
    const FailNth<AaFileRemove> failure(1);

    EXPECT_EQ(is_firmware_update_forced("fpga"), 0);
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info is_firmware_update_forced(): fopen() failed 5"));
    EXPECT_EQ(m_node.readBoardFile("/etc/important"), "3");
}

TEST_F(MarkersTest, CountIsNotWrittenThroughALink)
{
    m_node.writeBoardFile("/etc/important", "3");
    std::filesystem::create_directories(m_node.boardPath("/ffs/run/logs"));
    std::filesystem::create_symlink("/etc/important", m_node.boardRoot() + force);

    EXPECT_EQ(is_firmware_update_forced("fpga"), 1);
    EXPECT_EQ(m_node.readBoardFile("/etc/important"), "3");
    EXPECT_EQ(m_node.readBoardFile(force), "2");
}

TEST_F(MarkersTest, PartWithALongNameIsCut)
{
    const std::string name = std::string(force).substr(0, std::string(force).size() - 4) + std::string(200, 'p');
    m_node.writeBoardFile(name.substr(0, 127), "1");

    EXPECT_EQ(is_firmware_update_forced(std::string(200, 'p').c_str()), 1);
    EXPECT_EQ(m_node.readBoardFile(name.substr(0, 127)), "0");
}

} // namespace
} // namespace dorn::test
