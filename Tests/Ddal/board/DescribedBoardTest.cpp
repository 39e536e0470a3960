// SPDX-License-Identifier: MIT
#include "description/DescribedBoard.hpp"

#include "BoardTest.hpp"
#include "UnpackedTree.hpp"
#include "ddal_devicetree.h"

#include <gtest/gtest.h>

namespace dorn::board {
namespace {

class DescribedBoardTest : public testkit::NodeTest {
protected:
    static void nameBoard(const std::string& path) { setenv("DORN_BOARD", path.c_str(), 1); }
    static std::string unitId() { return textFrom(ddal_devicetree_get_unit_id, 0U); }
    static std::tuple<int, std::string> failure()
    {
        return failureOf([] { DescribedBoard board; });
    }
};

TEST_F(DescribedBoardTest, BlobThatTheEnvironmentNamesIsRead)
{
    nameBoard(DORN_TARN_SINGLE);
    const DescribedBoard board;

    EXPECT_EQ(board.path(), DORN_TARN_SINGLE);
    EXPECT_EQ(board.model(), "Tarn single board");
    EXPECT_EQ(board.board().cell("dorn,board-code"), 1U);
    EXPECT_EQ(unitId(), "NAXE");
}

TEST_F(DescribedBoardTest, DirectoryThatTheEnvironmentNamesIsRead)
{
    unpackTree(m_node, testkit::TestBoard().text("units/unit@0", "dorn,unit-id", "RUDA").tree(), "/elsewhere");
    nameBoard(m_node.boardPath("/elsewhere"));

    EXPECT_EQ(unitId(), "RUDA");
}

TEST_F(DescribedBoardTest, WithoutANameTheTargetsDeviceTreeIsRead)
{
    unpackTree(m_node, testkit::TestBoard().tree(), "/proc/device-tree");
    unsetenv("DORN_BOARD");

    EXPECT_EQ(DescribedBoard().path(), "/proc/device-tree");
    EXPECT_EQ(unitId(), "NAXE");
}

TEST_F(DescribedBoardTest, EmptyNameIsNone)
{
    unpackTree(m_node, testkit::TestBoard().tree(), "/proc/device-tree");
    nameBoard("");

    EXPECT_EQ(unitId(), "NAXE");
}

TEST_F(DescribedBoardTest, MissingDescriptionIsReportedWithWhatToDo)
{
    EXPECT_EQ(failure(), std::tuple(DDAL_ERROR_NO_DESCRIPTION,
                                    "board description '/proc/device-tree' cannot be read: No such file or directory "
                                    "(DORN_BOARD can name another one)"));
    nameBoard("/no/such.dtb");
    EXPECT_EQ(failure(), std::tuple(DDAL_ERROR_NO_DESCRIPTION,
                                    "board description '/no/such.dtb' cannot be read: No such file or directory"));
}

TEST_F(DescribedBoardTest, FileThatIsNoBlobIsReported)
{
    m_node.writeBoardFile("/board.dtb", "/dts-v1/; / { a source is no blob };     ");
    const std::string path = m_node.boardRoot() + "/board.dtb";
    nameBoard(path);

    EXPECT_EQ(
        failure(),
        std::tuple(
            DDAL_ERROR_NO_DESCRIPTION,
            "board description '" + path +
                "' is no device tree blob, which dtc makes of a source: it begins with 2f647473, not with d00dfeed"));
}

TEST_F(DescribedBoardTest, TreeWithoutTheBoardIsReported)
{
    testkit::TestBoard board;
    board.remove("");

    EXPECT_EQ(failure(),
              std::tuple(DDAL_ERROR_BAD_DESCRIPTION, "board description '" + board.path() + "' has no node '/board'"));
}

TEST_F(DescribedBoardTest, NodeForSomethingElseIsNoBoard)
{
    testkit::TestBoard board;
    board.text("", "compatible", "other,board");

    EXPECT_EQ(failure(), std::tuple(DDAL_ERROR_BAD_DESCRIPTION,
                                    "board description '" + board.path() +
                                        "': property 'compatible' of node '/board' does not list 'dorn,board'"));
}

TEST_F(DescribedBoardTest, NodeMayBeCompatibleWithMore)
{
    testkit::TestBoard board;
    board.bytes("", "compatible", std::string("maker,special\0dorn,board\0", 25));

    EXPECT_EQ(unitId(), "NAXE");
}

TEST_F(DescribedBoardTest, DescriptionThatIsMissingIsLookedForAgain)
{
    EXPECT_EQ(unitId(), "error 3");

    const testkit::TestBoard board;

    EXPECT_EQ(unitId(), "NAXE");
}

TEST_F(DescribedBoardTest, FailureIsSaidOnceInTheLog)
{
    const std::string line = "Error 0x0 ddal_devicetree_get_unit_id(): board description '/proc/device-tree' cannot be "
                             "read: No such file or directory (DORN_BOARD can name another one)";

    unitId();
    unitId();

    EXPECT_EQ(m_log.texts(), std::vector<std::string>{line});
}

} // namespace
} // namespace dorn::board
