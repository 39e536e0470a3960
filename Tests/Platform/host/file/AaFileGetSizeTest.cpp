// SPDX-License-Identifier: MIT
// A size is asked for in three steps: the position is remembered, moved to the end, and moved back. Each may fail.
#include "AaFile.h"

#include "TestNode.hpp"

#include <atomic>
#include <cerrno>
#include <gtest/gtest.h>
#include <memory>
#include <sys/types.h>

namespace {

constinit std::atomic<int> callsLeft{0}; ///< up to the one that fails; 0: none does

} // namespace

extern "C" {
// The linker's names of the two.
off_t realLseek(int descriptor, off_t offset, int whence) __asm__("__real_" DORN_LSEEK);
off_t scriptedLseek(int descriptor, off_t offset, int whence) __asm__("__wrap_" DORN_LSEEK);

off_t scriptedLseek(int descriptor, off_t offset, int whence)
{
    if (callsLeft.load() != 0 && callsLeft.fetch_sub(1) == 1) {
        errno = EIO;
        return -1;
    }
    return realLseek(descriptor, offset, whence);
}
}

namespace {

struct Closer {
    void operator()(AaFile* file) const { AaFileClose(file); }
};

class AaFileGetSizeTest : public ::testing::Test {
protected:
    AaFileGetSizeTest()
    {
        m_node.writeBoardFile("/a", "one\ntwo\n");
        m_file.reset(AaFileOpen("/a", "r"));
    }

    ~AaFileGetSizeTest() override { callsLeft.store(0); }

    /// The size when call number @p nth (from 1) to move the position fails.
    std::int32_t sizeWhenFailing(int nth) const
    {
        errno = 0;
        callsLeft.store(nth);
        return AaFileGetSize(m_file.get());
    }

    dorn::testkit::TestNode m_node;
    std::unique_ptr<AaFile, Closer> m_file;
};

TEST_F(AaFileGetSizeTest, PositionThatIsNotKnownIsAFailure)
{
    EXPECT_EQ(sizeWhenFailing(1), -1);
    EXPECT_EQ(errno, EIO);
}

TEST_F(AaFileGetSizeTest, EndThatIsNotReached)
{
    EXPECT_EQ(sizeWhenFailing(2), -1);
    EXPECT_EQ(errno, EIO);
}

TEST_F(AaFileGetSizeTest, PositionThatIsNotReachedAgainIsAFailure)
{
    EXPECT_EQ(sizeWhenFailing(3), -1);
    EXPECT_EQ(errno, EIO);
}

TEST_F(AaFileGetSizeTest, ThreeStepsAreEnough)
{
    EXPECT_EQ(sizeWhenFailing(4), 8);
}

TEST_F(AaFileGetSizeTest, PositionIsWhereItWasBeforeTheEndThatIsNotReached)
{
    ASSERT_EQ(AaFileSetPosition(m_file.get(), 4, EAaFileOrigin_Begin), 0);

    EXPECT_EQ(sizeWhenFailing(2), -1);

    EXPECT_EQ(AaFileGetPosition(m_file.get()), 4);
}

} // namespace
