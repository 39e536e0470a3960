// SPDX-License-Identifier: MIT
#include "syscom/CpidStore.hpp"

#include "NodeTest.hpp"
#include "port/Transport.hpp"
#include "syscom/SenderCheck.hpp"

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace dorn::host::test {
namespace {

struct SomePeer : Peer {
    explicit SomePeer(pid_t of, bool ended = false) : process(of), hasEnded(ended) {}
    pid_t pid() const override { return process; }
    bool isGone() const override { return hasEnded; }
    pid_t process;
    bool hasEnded;
};

/// Starts a process that does @p work, and stays until it is killed. @return its id, once the work has been done well
pid_t startStaying(const std::function<bool()>& work)
{
    int ready[2] = {-1, -1};
    EXPECT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        const char result = work() ? 'y' : 'n';
        [[maybe_unused]] const ssize_t written = write(ready[1], &result, 1);
        for (;;) {
            pause();
        }
    }
    char result = 0;
    EXPECT_EQ(read(ready[0], &result, 1), 1);
    EXPECT_EQ(result, 'y');
    close(ready[0]);
    close(ready[1]);
    return child;
}

/// Another node of the test's run directory, so that this process has its store open once.
class CpidStoreTest : public testkit::NodeTest {
protected:
    enum class Stay { Gateway, Resigned };
    /// Starts a process that becomes the node's gateway, and stays until it is killed. @return its id
    pid_t startGateway(Stay stay = Stay::Gateway) const
    {
        std::unique_ptr<CpidStore> store; // the child's
        return startStaying([&] {
            store = std::make_unique<CpidStore>(m_directory);
            const bool isGateway = store->tryBecomeGateway();
            if (stay == Stay::Resigned) {
                store.reset();
            }
            return isGateway;
        });
    }
    static void kill(pid_t process)
    {
        ::kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }

    const RunDirectory m_directory{m_node.runDirectory(), 0x0F77};
    CpidStore m_store{m_directory};
};

TEST_F(CpidStoreTest, NobodyIsTheGatewayAtFirst)
{
    EXPECT_EQ(m_store.foreignGateway(), 0);
    EXPECT_FALSE(m_store.isGateway(SomePeer(4711)));
    EXPECT_FALSE(m_store.isGateway(SomePeer(4711, true)));
    EXPECT_FALSE(m_store.isGateway(SomePeer(0))); // its number cannot be told
}

TEST_F(CpidStoreTest, OneProcessIsTheGateway)
{
    const std::uint32_t before = m_store.generation();
    const pid_t gateway = startGateway();

    EXPECT_NE(m_store.generation(), before);
    EXPECT_EQ(m_store.foreignGateway(), gateway);
    EXPECT_FALSE(m_store.tryBecomeGateway());
    EXPECT_TRUE(m_store.isGateway(SomePeer(gateway)));
    EXPECT_FALSE(m_store.isGateway(SomePeer(4711)));
    EXPECT_FALSE(m_store.isGateway(SomePeer(4711, true)));
    kill(gateway);
}

TEST_F(CpidStoreTest, WhatADeadGatewaySentIsStillItsOwn)
{
    const pid_t gateway = startGateway();
    kill(gateway);
    const pid_t successor = startGateway();

    EXPECT_TRUE(m_store.isGateway(SomePeer(gateway, true)));
    EXPECT_FALSE(m_store.isGateway(SomePeer(gateway))); // another process that has got its id
    EXPECT_TRUE(m_store.isGateway(SomePeer(successor)));
    kill(successor);
}

TEST_F(CpidStoreTest, WhatAGatewaySentThatHasResignedIsStillItsOwn)
{
    const pid_t resigned = startGateway(Stay::Resigned);
    EXPECT_EQ(m_store.foreignGateway(), 0);
    EXPECT_TRUE(m_store.isGateway(SomePeer(resigned))); // it comes to its end
    const pid_t successor = startGateway();

    EXPECT_TRUE(m_store.isGateway(SomePeer(resigned)));
    EXPECT_TRUE(m_store.isGateway(SomePeer(resigned, true)));
    EXPECT_TRUE(m_store.isGateway(SomePeer(successor)));
    EXPECT_FALSE(m_store.isGateway(SomePeer(4711)));
    kill(resigned);
    kill(successor);
}

TEST_F(CpidStoreTest, ProcessThatGetsTheNumberOfAResignedGatewayIsNotIt)
{
    ASSERT_TRUE(m_store.tryBecomeGateway());
    m_store.resignAsGateway();
    EXPECT_TRUE(m_store.isGateway(SomePeer(getpid())));

    const CpidStore ofItsSuccessor(m_directory);

    EXPECT_FALSE(m_store.isGateway(SomePeer(getpid())));
}

TEST_F(CpidStoreTest, LastEightGatewaysAreRemembered)
{
    std::vector<pid_t> gateways;
    for (int count = 0; count < 9; ++count) {
        gateways.push_back(startGateway());
        kill(gateways.back());
    }

    EXPECT_FALSE(m_store.isGateway(SomePeer(gateways[0], true)));
    for (std::size_t index = 1; index < gateways.size(); ++index) {
        EXPECT_TRUE(m_store.isGateway(SomePeer(gateways[index], true))) << index;
    }
}

class SenderCheckTest : public CpidStoreTest {};

TEST_F(SenderCheckTest, OnlyTheGatewaySpeaksForOtherNodes)
{
    SenderCheck check;
    EXPECT_FALSE(check.isGateway(SomePeer(4711), &m_store));
    EXPECT_FALSE(check.isGateway(SomePeer(4711), nullptr));
    const pid_t gateway = startGateway();

    EXPECT_TRUE(check.isGateway(SomePeer(gateway), &m_store));
    EXPECT_TRUE(check.isGateway(SomePeer(gateway), &m_store)); // as it remembers
    EXPECT_FALSE(check.isGateway(SomePeer(4711), &m_store));
    kill(gateway);
}

TEST_F(SenderCheckTest, WhatIsRememberedOfAGatewayEndsWithItsSuccessor)
{
    SenderCheck check;
    const pid_t gateway = startGateway();
    EXPECT_TRUE(check.isGateway(SomePeer(gateway), &m_store));
    kill(gateway);
    const pid_t successor = startGateway();

    EXPECT_FALSE(check.isGateway(SomePeer(gateway), &m_store)); // another process that has got its id
    EXPECT_TRUE(check.isGateway(SomePeer(gateway, true), &m_store));
    EXPECT_TRUE(check.isGateway(SomePeer(successor), &m_store));
    kill(successor);
}

/// A process that holds cpids without having said so in the store, until it is killed.
class UnseenHolder {
public:
    UnseenHolder(const RunDirectory& directory, const std::vector<TAaSysComCpid>& cpids)
        : m_process(startStaying([&] { return lockAll(directory.path() + "/cpids", cpids); }))
    {
    }
    ~UnseenHolder()
    {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
    UnseenHolder(const UnseenHolder&) = delete;
    UnseenHolder& operator=(const UnseenHolder&) = delete;

private:
    static bool lockAll(const std::string& path, const std::vector<TAaSysComCpid>& cpids)
    {
        const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
        bool isDone = file >= 0;
        for (const TAaSysComCpid cpid : cpids) {
            struct flock lock {};
            lock.l_type = F_WRLCK;
            lock.l_whence = SEEK_SET;
            lock.l_start = cpid;
            lock.l_len = 1;
            isDone = isDone && fcntl(file, F_SETLK, &lock) == 0;
        }
        return isDone;
    }

    pid_t m_process;
};

TEST_F(SenderCheckTest, SendersInTurnAreAllRemembered)
{
    const std::vector<TAaSysComCpid> cpids{0x0211, 0x0212, 0x0300, 0x1000, 0x1001, 0x1002};
    constexpr TAaSysComCpid neverAsked = 0x0213;
    SenderCheck check;
    for (const TAaSysComCpid cpid : cpids) {
        EXPECT_TRUE(check.isCredible(cpid, SomePeer(5000 + cpid), &m_store));
    }
    const UnseenHolder holder(m_directory, {0x0211, 0x0212, 0x0213, 0x0300, 0x1000, 0x1001, 0x1002});

    EXPECT_FALSE(check.isCredible(neverAsked, SomePeer(5000), &m_store)); // it is looked up
    for (const TAaSysComCpid cpid : cpids) {
        EXPECT_TRUE(check.isCredible(cpid, SomePeer(5000 + cpid), &m_store)) << cpid; // these are not
        EXPECT_FALSE(check.isCredible(cpid, SomePeer(6000 + cpid), &m_store)) << cpid;
    }
    ASSERT_TRUE(m_store.tryLock(0x0400)); // somebody has begun to hold a cpid
    for (const TAaSysComCpid cpid : cpids) {
        EXPECT_FALSE(check.isCredible(cpid, SomePeer(5000 + cpid), &m_store)) << cpid;
    }
}

TEST_F(SenderCheckTest, NobodysNameIsEverybodys)
{
    const UnseenHolder holder(m_directory, {0});
    SenderCheck check;

    EXPECT_TRUE(check.isCredible(0, SomePeer(4711), &m_store));
    EXPECT_TRUE(check.isCredible(0, SomePeer(4711), nullptr));
}

TEST_F(CpidStoreTest, GatewaysPlaceIsFreeOnceItIsGone)
{
    kill(startGateway());

    EXPECT_EQ(m_store.foreignGateway(), 0);
    EXPECT_TRUE(m_store.tryBecomeGateway());
}

} // namespace
} // namespace dorn::host::test
