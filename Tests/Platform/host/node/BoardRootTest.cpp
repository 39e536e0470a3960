// SPDX-License-Identifier: MIT
#include "node/BoardRoot.hpp"

#include "TestNode.hpp"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

using dorn::host::boardPath;
using dorn::host::LastLink;

namespace {

class BoardRootTest : public ::testing::Test {
protected:
    /// Makes a link in the node's board root.
    void link(const std::string& targetPath, const std::string& to) const
    {
        const std::filesystem::path place = m_node.boardRoot() + targetPath;
        std::filesystem::create_directories(place.parent_path());
        std::filesystem::create_symlink(to, place);
    }
    /// Where a path lies in the node's board root.
    std::string placeOf(const std::string& targetPath, LastLink lastLink = LastLink::Followed) const
    {
        const std::string path = boardPath(targetPath, lastLink);
        const std::string root = m_node.boardRoot();
        return path.starts_with(root + "/") ? path.substr(root.size()) : "outside: " + path;
    }

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

TEST_F(BoardRootTest, StorageThatSurvivesAResetHasTwoNames)
{
    setenv("DORN_ROOT", "/board", 1);
    EXPECT_EQ(boardPath("/rpram"), "/board/var/tmp");
    EXPECT_EQ(boardPath("/rpram/"), "/board/var/tmp/");
    EXPECT_EQ(boardPath("/rpram/hwapi/x"), "/board/var/tmp/hwapi/x");
    EXPECT_EQ(boardPath("/ram/../rpram/x"), "/board/var/tmp/x");
    EXPECT_EQ(boardPath("/rpramx"), "/board/rpramx");
    EXPECT_EQ(boardPath("/x/rpram"), "/board/x/rpram");
    unsetenv("DORN_ROOT");
    EXPECT_EQ(boardPath("/rpram/hwapi"), "/var/tmp/hwapi");
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

TEST_F(BoardRootTest, AbsoluteLinkLeadsToThePlaceBelowTheRoot)
{
    link("/etc", "/usr/etc");
    EXPECT_EQ(placeOf("/etc/hosts"), "/usr/etc/hosts");
    EXPECT_EQ(placeOf("/etc"), "/usr/etc");
    EXPECT_EQ(placeOf("/etc/"), "/usr/etc/");
}

TEST_F(BoardRootTest, RelativeLinkIsFollowedFromWhereItLies)
{
    link("/opt/dorn/config", "../common/./config");
    EXPECT_EQ(placeOf("/opt/dorn/config/dorn.xml"), "/opt/common/config/dorn.xml");
}

TEST_F(BoardRootTest, LinkDoesNotLeadAboveTheRoot)
{
    link("/opt/up", "../../../../../../etc");
    link("/top", "..");
    EXPECT_EQ(placeOf("/opt/up/passwd"), "/etc/passwd");
    EXPECT_EQ(placeOf("/top"), "/");
    EXPECT_EQ(placeOf("/top/etc"), "/etc");
}

TEST_F(BoardRootTest, LinksOfLinksAreFollowed)
{
    link("/a", "/b");
    link("/b", "c/d");
    link("/c/d", "/e/..");
    EXPECT_EQ(placeOf("/a/x"), "/x");
    link("/f", "/h/i");
    link("/h", "j");
    EXPECT_EQ(placeOf("/f"), "/j/i");
}

TEST_F(BoardRootTest, DotDotOfThePathIsResolvedBeforeLinks)
{
    link("/ram/link", "/far/away");
    EXPECT_EQ(placeOf("/ram/link/../x"), "/ram/x");
}

TEST_F(BoardRootTest, LastLinkMayBeKept)
{
    link("/ram/link", "/x");
    link("/dir", "/ram");
    EXPECT_EQ(placeOf("/dir/link", LastLink::Kept), "/ram/link");
    EXPECT_EQ(placeOf("/dir/", LastLink::Kept), "/ram/");
}

TEST_F(BoardRootTest, CircleOfLinksIsNoPath)
{
    link("/a", "/b");
    link("/b", "/a");
    errno = 0;
    EXPECT_EQ(boardPath("/a/x"), "");
    EXPECT_EQ(errno, ELOOP);
}

TEST_F(BoardRootTest, WithoutRootLinksAreTheKernels)
{
    link("/link", "/x");
    unsetenv("DORN_ROOT");
    EXPECT_EQ(boardPath(m_node.boardRoot() + "/link"), m_node.boardRoot() + "/link");
}
