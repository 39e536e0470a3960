// SPDX-License-Identifier: MIT
#include "node/SharedStore.hpp"

#include "FailingFilePort.hpp"
#include "NodeTest.hpp"

#include <atomic>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
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

/// Whether the kernel lists somebody who waits for the record lock on byte @p index.
bool isWaitedFor(const SharedStore& store, std::size_t index)
{
    struct stat status {};
    fstat(store.descriptor(), &status);
    const std::string place = ":" + std::to_string(status.st_ino) + " " + std::to_string(index) + " ";
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        if (line.find("->") != std::string::npos && line.find(place) != std::string::npos) {
            return true;
        }
    }
    return false;
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

TEST_F(SharedStoreTest, DiskThatIsFullInTheMiddleIsAnErrorAndLeavesNothing)
{
    for (const std::uint64_t room : {std::uint64_t{0}, std::uint64_t{format.size - 1}, std::uint64_t{format.size},
                                     std::uint64_t{format.size + sizeof(SharedStoreHeader) - 1}}) {
        const FullDisk disk(room);
        EXPECT_THROW(SharedStore(m_directory, "store", format), EnvironmentError) << room;
        EXPECT_EQ(filesInDirectory(), 0U);
    }
}

TEST_F(SharedStoreTest, WithoutDescriptorsNothingIsMade)
{
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit none = before;
    none.rlim_cur = 0;
    setrlimit(RLIMIT_NOFILE, &none);

    try {
        const SharedStore store(m_directory, "store", format);
        ADD_FAILURE();
    } catch (const EnvironmentError& error) {
        EXPECT_EQ(error.what(), "run directory '" + m_directory.path() + "' cannot be locked: Too many open files");
    }
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(filesInDirectory(), 0U);
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

TEST_F(SharedStoreTest, StoreOfAnotherVersionIsNotTakenFromWhoHoldsALock)
{
    const pid_t child = startChild([&] {
        const auto* const store = new SharedStore(m_directory, "store", format); // NOLINT: kept until the kill
        store->lock(format.size + 5);
    });
    SharedStoreFormat newer = format;
    newer.version = 4;

    try {
        const SharedStore store(m_directory, "store", newer);
        ADD_FAILURE();
    } catch (const EnvironmentError& error) {
        EXPECT_EQ(error.what(), "store '" + m_directory.path() +
                                    "/store' is damaged or of another version, and process " + std::to_string(child) +
                                    " uses it; end the services of this node and start them again");
    }
    EXPECT_EQ(filesInDirectory(), 1U);

    killChild(child);
    ::testing::internal::CaptureStderr();
    const SharedStore store(m_directory, "store", newer);
    EXPECT_NE(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(filesInDirectory(), 2U);
}

TEST_F(SharedStoreTest, ShareLeavesRoomForOthersButNobodyAlone)
{
    const SharedStore store(m_directory, "store", format);
    const pid_t child = startChild([&] { store.tryShare(5); });
    EXPECT_FALSE(store.tryLock(5));
    EXPECT_TRUE(store.tryShare(5));
    EXPECT_EQ(store.lockHolder(5), child);
    killChild(child);
    EXPECT_EQ(store.lockHolder(5), 0);
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

TEST_F(SharedStoreTest, LocksThatDifferentThreadsWaitForAreNoDeadlock)
{
    const SharedStore store(m_directory, "store", format);
    int go[2];
    int done[2];
    ASSERT_EQ(pipe(go), 0);
    ASSERT_EQ(pipe(done), 0);
    char byte = 0;
    const pid_t child = startChild([&] {
        store.lock(5);
        std::thread waiter([&] {
            [[maybe_unused]] const ssize_t got = read(go[0], &byte, 1);
            store.lock(6); // this process holds 5, for which the other waits: no thread waits for itself, though
            [[maybe_unused]] const ssize_t told = write(done[1], "x", 1);
        });
        waiter.detach();
    });
    ASSERT_TRUE(store.tryLock(6));
    std::thread waiter([&] { store.lock(5); });
    while (!isWaitedFor(store, 5)) {
    }
    ASSERT_EQ(write(go[1], "x", 1), 1);

    pollfd entry{done[0], POLLIN, 0};
    EXPECT_EQ(poll(&entry, 1, 100), 0) << "the child has the lock that this process holds";

    store.unlock(6);
    EXPECT_EQ(poll(&entry, 1, 20000), 1);
    killChild(child);
    waiter.join();
    for (const int descriptor : {go[0], go[1], done[0], done[1]}) {
        close(descriptor);
    }
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
