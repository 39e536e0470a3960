// SPDX-License-Identifier: MIT
#include "FailingFilePort.hpp"
#include "OutputCapture.hpp"
#include "SysComTest.hpp"
#include "eu/TestEu.hpp"
#include "node/EeTable.hpp"
#include "node/PerNode.hpp"
#include "syscom/CpidRegistry.hpp"

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

namespace dorn::host::test {
namespace {

using testkit::TestEu;

constexpr TAaSysComCpid cpid = 0x0300;

/// An EU that lives until the end of this object.
class IdleEu {
public:
    explicit IdleEu(std::string name = "Idle") : m_eu([this] { AaSemTake(m_end, AA_WAIT_FOREVER); }, std::move(name)) {}
    ~IdleEu() { end(); }
    IdleEu(const IdleEu&) = delete;
    IdleEu& operator=(const IdleEu&) = delete;
    TAaProEuId id() const { return m_eu.id(); }
    void end()
    {
        AaSemGive(m_end);
        m_eu.wait();
    }

private:
    struct Destroyed {
        AaSem* sem = AaSemCreateC(0);
        ~Destroyed() { AaSemDestroy(&sem); }
        operator AaSem*() const { return sem; } // NOLINT: stands for the handle
    } m_end;
    TestEu m_eu;
};

class RegistrationTest : public SysComTest {
protected:
    bool isSocketThere(TAaSysComCpid of) const
    {
        char name[16];
        std::snprintf(name, sizeof name, "/cpid/%04x", of);
        return std::filesystem::exists(m_node.nodeDirectory() + name);
    }
};

TEST_F(RegistrationTest, WantedCpidIsGranted)
{
    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
    EXPECT_EQ(sendEmpty(1, addressOf(cpid)), EAaSysComStatus_Ok);
    EXPECT_EQ(takeId(), 1U);
}

TEST_F(RegistrationTest, AnyCpidIsGrantedFromTheDynamicOnes)
{
    const IdleEu eu;
    const TAaSysComCpid first = AaSysComUserRegister(0, eu.id());
    const TAaSysComCpid second = AaSysComUserRegister(0, eu.id());

    EXPECT_GE(first, CpidRegistry::firstDynamic);
    EXPECT_LE(first, CpidRegistry::lastDynamic);
    EXPECT_NE(second, 0);
    EXPECT_NE(first, second);
    EXPECT_TRUE(m_log.texts().empty());
}

TEST_F(RegistrationTest, CpidThatHasJustBecomeFreeIsNotTheNextThatIsGiven)
{
    const IdleEu eu;
    const TAaSysComCpid first = AaSysComUserRegister(0, eu.id());
    AaSysComUserDeregister(first);

    EXPECT_NE(AaSysComUserRegister(0, eu.id()), first);
}

TEST_F(RegistrationTest, AnyCpidIsGrantedFromTheFirstOnesAgainBehindTheLast)
{
    const IdleEu eu;
    constexpr unsigned count = CpidRegistry::lastDynamic - CpidRegistry::firstDynamic + 1U;
    for (unsigned round = 0; round <= count; ++round) {
        const TAaSysComCpid granted = AaSysComUserRegister(0, eu.id());
        ASSERT_GE(granted, CpidRegistry::firstDynamic);
        ASSERT_LE(granted, CpidRegistry::lastDynamic);
        AaSysComUserDeregister(granted);
    }
}

TEST_F(RegistrationTest, HolderThatAsksAgainIsGranted)
{
    ASSERT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);

    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
    EXPECT_TRUE(m_log.texts().empty());
}

TEST_F(RegistrationTest, CpidOfAnotherEuOfTheProcessIsRefused)
{
    const IdleEu holder("Alpha");
    ASSERT_EQ(AaSysComUserRegister(cpid, holder.id()), cpid);

    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), 0);
    EXPECT_EQ(m_log.texts(),
              std::vector<std::string>{"Warning 0x0 cpid 0x0300 is not granted: EU Alpha of this process holds it"});
}

TEST_F(RegistrationTest, EuThatDoesNotLiveIsRefused)
{
    TAaProEuId id = 0;
    {
        const IdleEu eu;
        id = eu.id();
    }
    char expected[80];
    std::snprintf(expected, sizeof expected, "Warning 0x0 cpid 0x0300 is not granted: EU 0x%X does not live", id);

    EXPECT_EQ(AaSysComUserRegister(cpid, id), 0);
    EXPECT_EQ(AaSysComUserRegister(0, id), 0);
    EXPECT_EQ(AaSysComUserRegister(0, 0), 0);
    EXPECT_EQ(m_log.count(expected), 1U);
    EXPECT_EQ(m_log.texts().size(), 3U);
}

TEST_F(RegistrationTest, DeregisteredCpidIsFree)
{
    IdleEu holder;
    AaSysComUserRegister(cpid, holder.id());

    EXPECT_EQ(AaSysComUserDeregister(cpid), 0);

    EXPECT_FALSE(isSocketThere(cpid));
    EXPECT_EQ(sendEmpty(1, addressOf(cpid)), EAaSysComStatus_NoReceiver);
    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
}

TEST_F(RegistrationTest, CpidThatTheProcessDoesNotHoldIsNotDeregistered)
{
    EXPECT_EQ(AaSysComUserDeregister(cpid), 1);
    AaSysComUserRegister(cpid, AaProEuCurrent());
    EXPECT_EQ(AaSysComUserDeregister(cpid), 0);
    EXPECT_EQ(AaSysComUserDeregister(cpid), 1);
}

TEST_F(RegistrationTest, WhatWasSentBeforeStaysQueuedWhenTheCpidIsGivenUp)
{
    AaSysComUserRegister(cpid, AaProEuCurrent());
    sendEmpty(1, addressOf(cpid));

    AaSysComUserDeregister(cpid);

    EXPECT_EQ(takeId(), 1U);
}

TEST_F(RegistrationTest, EndOfTheEuFreesItsCpids)
{
    IdleEu holder;
    AaSysComUserRegister(cpid, holder.id());
    AaSysComUserRegister(cpid + 1, holder.id());

    holder.end();

    EXPECT_FALSE(isSocketThere(cpid));
    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
    EXPECT_EQ(AaSysComUserRegister(cpid + 1, AaProEuCurrent()), cpid + 1);
}

/// Whoever registers a cpid for an EU that is just ending is refused, or the end frees it.
TEST_F(RegistrationTest, CpidRegisteredForAnEuThatIsEndingDoesNotStayHeld)
{
    std::atomic<TAaProEuId> ending{0};
    std::atomic<bool> isOver{false};
    std::thread registrar([&] {
        while (!isOver.load()) {
            if (const TAaProEuId id = ending.load()) {
                AaSysComUserRegister(cpid, id);
            }
        }
    });
    for (int round = 0; round < 300; ++round) {
        TestEu eu([&] { ending.store(AaProEuCurrent()); });
        eu.wait();
    }
    isOver.store(true);
    registrar.join();

    EXPECT_EQ(localHolder(cpid), 0U);
    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
}

TEST_F(RegistrationTest, FileInPlaceOfADeadProcesssSocketIsNoObstacle)
{
    std::ofstream(m_node.nodeDirectory() + "/cpid/0300") << "left behind";

    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
}

TEST_F(RegistrationTest, UnreachableCpidIsNotGranted)
{
    std::filesystem::create_directories(m_node.nodeDirectory() + "/cpid/0300/in the way");

    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), 0);
    EXPECT_EQ(m_log.texts(),
              std::vector<std::string>{"Error 0x0 cpid 0x0300 cannot be made reachable: Address already in use"});
    EXPECT_EQ(sendEmpty(1, addressOf(cpid)), EAaSysComStatus_NoReceiver);
    std::filesystem::remove_all(m_node.nodeDirectory() + "/cpid/0300");
    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
}

TEST_F(RegistrationTest, CpidsOfTheProcessAreInTheListOfEes)
{
    PerNode<EeTable>::get().enter("Clock", 0x0100);
    const IdleEu holder("ClockMain");
    AaSysComUserRegister(cpid, holder.id());

    const std::optional<EeInfo> info = PerNode<EeTable>::get().holderOf(cpid);

    ASSERT_TRUE(info);
    EXPECT_EQ(info->name, "Clock");
    ASSERT_EQ(info->cpids.size(), 1U);
    EXPECT_EQ(info->cpids[0].cpid, cpid);
    EXPECT_EQ(info->cpids[0].euName, "ClockMain");
    AaSysComUserDeregister(cpid);
    EXPECT_FALSE(PerNode<EeTable>::get().holderOf(cpid));
}

TEST(RegistrationEnvironmentTest, BadEnvironmentIsLoggedAndGrantsNothing)
{
    const testkit::TestNode node;
    setenv("DORN_RUN_DIR", "relative", 1);
    const testkit::LogCapture log;

    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), 0);

    EXPECT_EQ(log.texts(),
              std::vector<std::string>{"Error 0x0 cpid 0x0300 is not granted: run directory 'relative': must be an "
                                       "absolute path"});
}

TEST(RegistrationEnvironmentTest, FullDiskIsLoggedAndGrantsNothing)
{
    const testkit::TestNode node;
    const testkit::LogCapture log;
    {
        const testkit::FullDisk disk;
        EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), 0);
    }

    EXPECT_EQ(log.texts(),
              std::vector<std::string>{"Error 0x0 cpid 0x0300 is not granted: store '" + node.nodeDirectory() +
                                       "/tap' cannot be created: No space left on device"});
    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid); // there is room again
    AaSysComUserDeregister(cpid);
}

class RegistrationBetweenProcessesTest : public RegistrationTest {};

TEST_F(RegistrationBetweenProcessesTest, CpidOfALiveProcessIsRefusedWithAWarning)
{
    PeerProcess peer;
    ASSERT_EQ(peer.ask({.order = Order::Register, .cpid = cpid}).first, cpid);

    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), 0);
    EXPECT_EQ(m_log.texts(), std::vector<std::string>{"Warning 0x0 cpid 0x0300 is not granted: process " +
                                                      std::to_string(peer.pid()) + " holds it"});
}

TEST_F(RegistrationBetweenProcessesTest, DynamicCpidsOfTwoProcessesDiffer)
{
    const PeerProcess peer;

    EXPECT_NE(peer.address(), address());
    EXPECT_NE(peer.address() & 0xFFFFU, 0U);
    EXPECT_TRUE(m_log.texts().empty());
}

TEST_F(RegistrationBetweenProcessesTest, CpidIsFreeAfterDeregistration)
{
    PeerProcess peer;
    peer.ask({.order = Order::Register, .cpid = cpid});
    EXPECT_EQ(peer.ask({.order = Order::Deregister, .cpid = cpid}).first, 0U);

    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
    EXPECT_EQ(peer.ask({.order = Order::Register, .cpid = cpid}).first, 0U);
}

TEST_F(RegistrationBetweenProcessesTest, CpidIsFreeAfterTheEndOfItsEu)
{
    PeerProcess peer;
    ASSERT_EQ(peer.ask({.order = Order::RegisterInEu, .cpid = cpid}).first, cpid);
    peer.ask({.order = Order::EndEu});

    while (AaSysComUserRegister(cpid, AaProEuCurrent()) != cpid) {
        std::this_thread::yield();
    }
}

TEST_F(RegistrationBetweenProcessesTest, CpidIsFreeAfterTheExitOfItsProcess)
{
    PeerProcess peer;
    peer.ask({.order = Order::Register, .cpid = cpid});
    peer.ask({.order = Order::Exit});
    EXPECT_EQ(peer.waitForEnd(), 0);

    EXPECT_FALSE(isSocketThere(cpid));
    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
}

TEST_F(RegistrationBetweenProcessesTest, CpidIsFreeAfterItsProcessHasBeenKilled)
{
    PeerProcess peer;
    peer.ask({.order = Order::Register, .cpid = cpid});
    peer.kill();

    EXPECT_TRUE(isSocketThere(cpid));
    EXPECT_EQ(sendEmpty(1, addressOf(cpid)), EAaSysComStatus_NoReceiver);
    EXPECT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
    EXPECT_EQ(sendEmpty(2, addressOf(cpid)), EAaSysComStatus_Ok);
    EXPECT_EQ(takeId(), 2U);
}

TEST_F(RegistrationBetweenProcessesTest, ProcessKilledWhileItRegistersLeavesNothingBehind)
{
    for (int round = 0; round < 3; ++round) {
        PeerProcess peer;
        peer.ask({.order = Order::RegisterForever, .cpid = cpid});
        while (AaSysComUserRegister(cpid, AaProEuCurrent()) == cpid) { // so that both get their turns
            AaSysComUserDeregister(cpid);
        }
        peer.kill();

        ASSERT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
        ASSERT_EQ(sendEmpty(1, addressOf(cpid)), EAaSysComStatus_Ok);
        ASSERT_EQ(takeId(), 1U);
        AaSysComUserDeregister(cpid);
    }
}

} // namespace
} // namespace dorn::host::test
