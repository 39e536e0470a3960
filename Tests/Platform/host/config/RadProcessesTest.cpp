// SPDX-License-Identifier: MIT
#include "ChildProcess.hpp"
#include "FailingFilePort.hpp"
#include "NodeTest.hpp"
#include "config/RadStore.hpp"

#include <array>
#include <csignal>
#include <gmock/gmock.h>
#include <memory>
#include <unistd.h>
#include <vector>

namespace dorn::host {
namespace {

using test::ChildProcess;
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

TEST_F(RadProcessesTest, ProcessesThatDisagreeLeaveTheFirstOnesDomain)
{
    ChildProcess first([](ChildProcess::Parent&) { ASSERT_EQ(registerMany(), 0); });
    ASSERT_TRUE(first.hasSucceeded());
    EXPECT_EQ(AaConfigRadRegisterDomain(3, "Few", [] { AaConfigRadSetMaxTagCount(3, 0x30001); }), 3);
    ASSERT_EQ(registerMany(), 0);
    expectDefaults();
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
