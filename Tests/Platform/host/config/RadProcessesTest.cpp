// SPDX-License-Identifier: MIT
#include "ChildProcess.hpp"
#include "FailingFilePort.hpp"
#include "NodeTest.hpp"
#include "config/RadStore.hpp"

#include <array>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace dorn::host {
namespace {

using test::ChildProcess;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::size_t size = 2000;

void declareMany()
{
    AaConfigRadSetMaxTagCount(3, 0x30000 + size);
    for (TAaConfigRadId index = 0; index < size; ++index) {
        AaConfigRadSetDefault(0x30000 + index, ("P" + std::to_string(index)).c_str(), index + 1);
    }
}

int32_t registerMany()
{
    return AaConfigRadRegisterDomain(3, "Many", declareMany);
}

void expectDefaults()
{
    for (TAaConfigRadId index = 0; index < size; ++index) {
        ASSERT_EQ(AaConfigRadGetValue(0x30000 + index), index + 1);
        ASSERT_EQ("P" + std::to_string(index), radParameterName(0x30000 + index));
    }
}

/// R&D parameters of several processes.
class RadProcessesTest : public testkit::NodeTest {};

TEST_F(RadProcessesTest, ValueSetInOneProcessIsReadInAnother)
{
    ChildProcess other([](ChildProcess::Parent& parent) {
        ASSERT_EQ(registerMany(), 0);
        parent.tell();
        ASSERT_TRUE(parent.await());
        EXPECT_EQ(AaConfigRadGetValue(0x30005), 77U);
        AaConfigRadSetValue(0x30006, 78);
    });
    ASSERT_TRUE(other.await());

    ASSERT_EQ(registerMany(), 0);
    AaConfigRadSetValue(0x30005, 77);
    other.tell();

    ASSERT_TRUE(other.hasSucceeded());
    EXPECT_EQ(AaConfigRadGetValue(0x30006), 78U);
}

TEST_F(RadProcessesTest, ValuesOutliveTheProcessThatSetThem)
{
    ChildProcess first([](ChildProcess::Parent&) {
        ASSERT_EQ(registerMany(), 0);
        AaConfigRadSetValue(0x30005, 77);
    });
    ASSERT_TRUE(first.hasSucceeded());
    ASSERT_EQ(registerMany(), 0);
    EXPECT_EQ(AaConfigRadGetValue(0x30005), 77U);
    EXPECT_EQ(AaConfigRadGetValue(0x30006), 7U);
}

TEST_F(RadProcessesTest, ProcessesThatRegisterAtOnceAllSucceed)
{
    std::vector<std::unique_ptr<ChildProcess>> services;
    for (int count = 0; count < 6; ++count) {
        services.push_back(std::make_unique<ChildProcess>([](ChildProcess::Parent& parent) {
            parent.tell();
            ASSERT_TRUE(parent.await());
            EXPECT_EQ(registerMany(), 0);
            expectDefaults();
        }));
    }

    for (const auto& service : services) {
        ASSERT_TRUE(service->await());
    }
    for (const auto& service : services) {
        service->tell();
    }

    for (const auto& service : services) {
        EXPECT_TRUE(service->hasSucceeded());
    }

    ASSERT_EQ(registerMany(), 0);
    expectDefaults();
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

/// Another version of the domain.
int32_t registerFew()
{
    return AaConfigRadRegisterDomain(3, "Few", [] {
        AaConfigRadSetMaxTagCount(3, 0x30001);
        AaConfigRadSetDefault(0x30000, "FIRST", 5);
    });
}

/// Registers the domain and lives on until it is told to end.
void registerAndStay(ChildProcess::Parent& parent)
{
    ASSERT_EQ(registerMany(), 0);
    parent.tell();
    parent.await();
}

TEST_F(RadProcessesTest, ProcessesThatDisagreeLeaveTheFirstOnesDomain)
{
    ChildProcess first(registerAndStay);
    ASSERT_TRUE(first.await());
    EXPECT_EQ(registerFew(), 3);
    EXPECT_THAT(
        m_log.texts(),
        ElementsAre("Warning 0x0 R&D domain 3 \"Few\" is not registered: its name is \"Few\" here and \"Many\" on "
                    "the node; process " +
                    std::to_string(first.pid()) +
                    " uses the node's: end the services of the other version, then start this"));
    ASSERT_EQ(registerMany(), 0);
    expectDefaults();
}

TEST_F(RadProcessesTest, DomainOfAnotherVersionThatNobodyUsesIsMadeAnew)
{
    ChildProcess first([](ChildProcess::Parent&) {
        ASSERT_EQ(registerMany(), 0);
        AaConfigRadSetValue(0x30000, 77);
    });
    ASSERT_TRUE(first.hasSucceeded());

    EXPECT_EQ(registerFew(), 0);
    EXPECT_THAT(
        m_log.texts(),
        ElementsAre("Warning 0x0 R&D domain 3 \"Few\" is made anew with its defaults, for nobody uses the node's: "
                    "its name is \"Few\" here and \"Many\" on the node"));
    EXPECT_EQ(AaConfigRadGetValue(0x30000), 5U);
    EXPECT_EQ(AaConfigRadGetValue(0x30001), 0U);
}

TEST_F(RadProcessesTest, OneOfSeveralUsersIsEnoughToKeepADomain)
{
    ChildProcess stays(registerAndStay);
    ChildProcess ends(registerAndStay);
    ASSERT_TRUE(stays.await());
    ASSERT_TRUE(ends.await());
    ends.kill();
    EXPECT_EQ(registerFew(), 3);
    stays.kill();
    EXPECT_EQ(registerFew(), 0);
}

TEST_F(RadProcessesTest, ProcessThatOnlyLooksFindsTheDomainThatWasMadeAnew)
{
    ChildProcess first([](ChildProcess::Parent&) { ASSERT_EQ(registerMany(), 0); });
    ChildProcess next([](ChildProcess::Parent& parent) {
        ASSERT_TRUE(parent.await());
        ASSERT_EQ(registerFew(), 0);
        parent.tell();
        parent.await();
    });

    ASSERT_TRUE(first.hasSucceeded());
    RadStore& store = PerNode<RadStore>::get();
    const RadDomain* const old = store.domain(3);
    ASSERT_EQ(old->name(), "Many");

    next.tell();
    ASSERT_TRUE(next.await());

    ASSERT_EQ(store.domains().size(), 1U);
    EXPECT_EQ(store.domains()[0]->name(), "Few");
    EXPECT_EQ(old->name(), "Many"); // who still has it may still look
}

TEST_F(RadProcessesTest, StoreOfAnotherVersionIsNotTakenFromItsUser)
{
    ChildProcess first(registerAndStay);
    ASSERT_TRUE(first.await());
    {
        std::fstream file(m_node.nodeDirectory() + "/rad/3", std::ios::in | std::ios::out);
        file.seekp(offsetof(SharedStoreHeader, version));
        file.put(99);
    }

    EXPECT_EQ(registerMany(), 3);
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Warning 0x0 R&D domain 3 \"Many\" is not registered: its store is damaged or of another "
                            "version; process " +
                            std::to_string(first.pid()) +
                            " uses the node's: end the services of the other version, then start this"));

    first.kill();
    EXPECT_EQ(registerMany(), 0);
    EXPECT_TRUE(std::filesystem::exists(m_node.nodeDirectory() + "/rad/3.broken"));
}

/// Ends the process at one call of one operation.
class KillingFilePort : public PosixFilePort {
public:
    KillingFilePort(testkit::FileOperation operation, int call) : m_operation(operation), m_call(call) {}
    int open(int directory, const char* path, int flags, mode_t mode) override
    {
        count(testkit::FileOperation::Open);
        return PosixFilePort::open(directory, path, flags, mode);
    }
    ssize_t write(int descriptor, const void* data, std::size_t bytes) override
    {
        count(testkit::FileOperation::Write);
        return PosixFilePort::write(descriptor, data, bytes);
    }
    int reserve(int descriptor, off_t bytes) override
    {
        count(testkit::FileOperation::Reserve);
        return PosixFilePort::reserve(descriptor, bytes);
    }
    int rename(int fromDirectory, const char* from, int toDirectory, const char* to) override
    {
        count(testkit::FileOperation::Rename);
        return PosixFilePort::rename(fromDirectory, from, toDirectory, to);
    }

private:
    void count(testkit::FileOperation operation)
    {
        if (operation == m_operation && --m_call == 0) {
            raise(SIGKILL);
        }
    }
    testkit::FileOperation m_operation;
    int m_call;
    FilePortScope m_scope{*this};
};

TEST_F(RadProcessesTest, ProcessKilledAtAnyStepOfARegistrationLeavesAUsableStore)
{
    struct Step {
        testkit::FileOperation operation;
        int call;
    };
    using enum testkit::FileOperation;
    constexpr std::array<Step, 9> steps{{{Open, 1},
                                         {Open, 2},
                                         {Reserve, 1},
                                         {Write, 1},
                                         {Rename, 1},
                                         {Reserve, 2}, // the control store is there from here on
                                         {Open, 3},
                                         {Write, 1},
                                         {Rename, 1}}};

    std::vector<std::unique_ptr<ChildProcess>> services;
    for (const Step& step : steps) {
        services.push_back(std::make_unique<ChildProcess>([step](ChildProcess::Parent& parent) {
            ASSERT_TRUE(parent.await());
            const KillingFilePort port(step.operation, step.call);
            registerMany();
        }));
    }

    for (const auto& service : services) {
        service->tell();
        EXPECT_FALSE(service->hasSucceeded());
    }

    ASSERT_EQ(registerMany(), 0);
    expectDefaults();
}

} // namespace
} // namespace dorn::host
