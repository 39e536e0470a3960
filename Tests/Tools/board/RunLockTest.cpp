// SPDX-License-Identifier: MIT
#include "board/RunLock.hpp"

#include "NodeTest.hpp"
#include "Outcome.hpp"
#include "node/PerNode.hpp"

#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

class RunLockTest : public testkit::NodeTest {
protected:
    const host::RunDirectory& m_directory = host::PerNode<host::RunDirectory>::get();
};

TEST_F(RunLockTest, SecondIsRefusedAndTheFirstNamed)
{
    const RunLock first(m_directory);
    try {
        const RunLock second(m_directory);
        FAIL() << "a second supervisor is not refused";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.what(), "the services of this node are run already, by process " + std::to_string(getpid()) +
                                      ", in '" + m_directory.path() +
                                      "' (DORN_RUN_DIR and DORN_NID choose another node)");
    }
}

TEST_F(RunLockTest, ProperEndLeavesNothingBehind)
{
    {
        const RunLock first(m_directory);
    }
    const RunLock second(m_directory);
    EXPECT_EQ(second.deadHolder(), std::nullopt);
}

TEST_F(RunLockTest, HolderThatDiedIsNamed)
{
    std::ofstream(m_directory.path() + "/board-run") << "4711\n";
    const RunLock next(m_directory);
    EXPECT_EQ(next.deadHolder(), 4711);
}

TEST_F(RunLockTest, FileThatIsALinkIsNotFollowed)
{
    ASSERT_EQ(symlink("/tmp/elsewhere", (m_directory.path() + "/board-run").c_str()), 0);
    EXPECT_THROW(RunLock lock(m_directory), Failure);
}

} // namespace
} // namespace dorn::tool
