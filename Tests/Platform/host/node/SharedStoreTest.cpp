// SPDX-License-Identifier: MIT
#include "node/SharedStore.hpp"

#include "FailingFilePort.hpp"
#include "NodeTest.hpp"

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

using namespace dorn::host;
using namespace dorn::testkit;

namespace {

constexpr SharedStoreFormat format{0x54534554, 3, 8192};

class SharedStoreTest : public ::testing::Test {
protected:
    std::size_t filesInDirectory() const
    {
        const std::filesystem::directory_iterator files(m_directory.path());
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

    TestNode m_node;
    RunDirectory m_directory{m_node.runDirectory(), 0x0F01};
};

/// Runs @p body in a child process until it is killed; returns when @p body has returned.
template <class Body>
pid_t startChild(Body body)
{
    int ready[2];
    EXPECT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        body();
        [[maybe_unused]] const ssize_t written = write(ready[1], "x", 1);
        for (;;) {
            pause();
        }
    }
    char byte = 0;
    EXPECT_EQ(read(ready[0], &byte, 1), 1);
    close(ready[0]);
    close(ready[1]);
    return child;
}

void killChild(pid_t child)
{
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

} // namespace

TEST_F(SharedStoreTest, NewStoreIsZeroBehindItsHeader)
{
    const SharedStore store(m_directory, "store", format);
    ASSERT_EQ(store.size(), format.size);
    SharedStoreHeader header{};
    std::memcpy(&header, store.data(), sizeof header);
    EXPECT_EQ(header.magic, format.magic);
    EXPECT_EQ(header.version, format.version);
    EXPECT_EQ(header.size, format.size);
    for (std::size_t index = sizeof header; index < store.size(); ++index) {
        ASSERT_EQ(store.data()[index], std::byte(0));
    }
}

TEST_F(SharedStoreTest, ContentIsThereWhenItIsOpenedAgain)
{
    {
        const SharedStore store(m_directory, "store", format);
        store.data()[100] = std::byte(7);
    }
    const SharedStore store(m_directory, "store", format);
    EXPECT_EQ(store.data()[100], std::byte(7));
}

TEST_F(SharedStoreTest, ChangeOfAnotherProcessIsSeenAtOnce)
{
    const SharedStore store(m_directory, "store", format);
    const pid_t child = startChild([&] { store.data()[100] = std::byte(9); });
    EXPECT_EQ(store.data()[100], std::byte(9));
    killChild(child);
}

TEST_F(SharedStoreTest, FullDiskIsAnErrorAndLeavesNothing)
{
    for (const FileOperation operation :
         {FileOperation::Open, FileOperation::Reserve, FileOperation::Write, FileOperation::Rename}) {
        // The first open looks whether the store is there; the second creates it.
        const FailingFilePort files(operation, operation == FileOperation::Open ? 2 : 1, ENOSPC);
        try {
            const SharedStore store(m_directory, "store", format);
            ADD_FAILURE() << "operation " << static_cast<int>(operation);
        } catch (const EnvironmentError& error) {
            EXPECT_EQ(error.what(),
                      "store '" + m_directory.path() + "/store' cannot be created: No space left on device");
        }
        EXPECT_TRUE(files.hasFailed());
        EXPECT_EQ(filesInDirectory(), 0U);
    }
}

TEST_F(SharedStoreTest, DamagedStoreIsSetAsideAndMadeAnew)
{
    std::ofstream(m_directory.path() + "/store") << "not a store";
    ::testing::internal::CaptureStderr();
    const SharedStore store(m_directory, "store", format);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "dorn: store '" + m_directory.path() +
                                                            "/store' is damaged or of another version; set aside as '" +
                                                            m_directory.path() + "/store.broken'\n");
    std::ifstream broken(m_directory.path() + "/store.broken");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(broken), {}), "not a store");
    EXPECT_EQ(store.data()[100], std::byte(0));
}

TEST_F(SharedStoreTest, StoreOfAnotherVersionIsSetAside)
{
    {
        const SharedStore store(m_directory, "store", format);
    }
    SharedStoreFormat newer = format;
    newer.version = 4;
    ::testing::internal::CaptureStderr();
    const SharedStore store(m_directory, "store", newer);
    EXPECT_NE(::testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(std::filesystem::exists(m_directory.path() + "/store.broken"));
}

TEST_F(SharedStoreTest, LinkInPlaceOfTheStoreIsNotFollowed)
{
    std::filesystem::create_symlink(m_node.boardRoot() + "/elsewhere", m_directory.path() + "/store");
    EXPECT_THROW(SharedStore(m_directory, "store", format), EnvironmentError);
    EXPECT_FALSE(std::filesystem::exists(m_node.boardRoot() + "/elsewhere"));
}

TEST_F(SharedStoreTest, LockExcludesOtherProcessesUntilTheHolderDies)
{
    const SharedStore store(m_directory, "store", format);
    const pid_t child = startChild([&] { store.lock(5); });
    EXPECT_EQ(store.lockHolder(5), child);
    EXPECT_FALSE(store.tryLock(5));
    EXPECT_TRUE(store.tryLock(6));
    killChild(child);
    EXPECT_EQ(store.lockHolder(5), 0);
    EXPECT_TRUE(store.tryLock(5));
}

TEST_F(SharedStoreTest, LockThatWasGivenUpIsFree)
{
    const SharedStore store(m_directory, "store", format);
    const pid_t child = startChild([&] {
        store.lock(5);
        store.unlock(5);
    });
    EXPECT_EQ(store.lockHolder(5), 0);
    killChild(child);
}

TEST_F(SharedStoreTest, ProcessesThatCreateItAtOnceShareOne)
{
    std::vector<pid_t> children;
    for (int index = 0; index < 4; ++index) {
        const pid_t child = fork();
        if (child == 0) {
            const SharedStore store(m_directory, "store", format);
            reinterpret_cast<std::atomic<int>*>(store.data() + 64)->fetch_add(1);
            _exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        waitpid(child, nullptr, 0);
    }
    const SharedStore store(m_directory, "store", format);
    EXPECT_EQ(reinterpret_cast<std::atomic<int>*>(store.data() + 64)->load(), 4);
}
