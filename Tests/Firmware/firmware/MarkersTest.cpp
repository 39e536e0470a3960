// SPDX-License-Identifier: MIT
#include "UpdateTest.hpp"

#include "AaFile.h"

#include <filesystem>

namespace dorn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
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
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info is_firmware_update_forced(): fscanf() failed 0 0",
                                              "info is_firmware_update_forced(): fscanf() failed -1 0"));
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
    m_node.writeBoardFile(force, "3");
    {
        const FailNth<AaFileWrite> failure(1);
        EXPECT_EQ(is_firmware_update_forced("fpga"), 0);
    }
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info is_firmware_update_forced(): fopen() failed 5",
                                              "info is_firmware_update_forced(): fprintf() failed -1"));
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
