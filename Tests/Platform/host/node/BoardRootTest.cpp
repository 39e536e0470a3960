// SPDX-License-Identifier: MIT
#include "node/BoardRoot.hpp"

#include "TestNode.hpp"

#include <cstdlib>
#include <gtest/gtest.h>

using dorn::host::boardPath;

namespace {

class BoardRootTest : public ::testing::Test {
protected:
    dorn::testkit::TestNode m_node; // puts DORN_ROOT back at its end
};

} // namespace

TEST_F(BoardRootTest, PathLiesBelowTheRoot)
{
    setenv("DORN_ROOT", "/board", 1);
    EXPECT_EQ(boardPath("/opt/dorn/dorn.xml"), "/board/opt/dorn/dorn.xml");
}

TEST_F(BoardRootTest, SlashBehindTheRootIsNotDoubled)
{
    setenv("DORN_ROOT", "/board//", 1);
    EXPECT_EQ(boardPath("/ram"), "/board/ram");
}

TEST_F(BoardRootTest, WithoutRootThePathStands)
{
    unsetenv("DORN_ROOT");
    EXPECT_EQ(boardPath("/ram/x"), "/ram/x");
    setenv("DORN_ROOT", "", 1);
    EXPECT_EQ(boardPath("/ram/x"), "/ram/x");
    setenv("DORN_ROOT", "/", 1);
    EXPECT_EQ(boardPath("/ram/x"), "/ram/x");
}

TEST_F(BoardRootTest, NoPathLeadsAboveTheRoot)
{
    setenv("DORN_ROOT", "/board", 1);
    EXPECT_EQ(boardPath("/../../etc/passwd"), "/board/etc/passwd");
    EXPECT_EQ(boardPath("/ram/../../etc"), "/board/etc");
    EXPECT_EQ(boardPath("/ram/./x"), "/board/ram/x");
    EXPECT_EQ(boardPath("//etc//passwd"), "/board/etc/passwd");
    EXPECT_EQ(boardPath("/.."), "/board/");
}

TEST_F(BoardRootTest, RelativePathIsNone)
{
    EXPECT_EQ(boardPath("ram/x"), "");
    EXPECT_EQ(boardPath(""), "");
}
