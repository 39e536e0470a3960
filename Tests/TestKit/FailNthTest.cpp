// SPDX-License-Identifier: MIT
#include "FailNth.hpp"

#include "AaConfigRad.h"
#include "AaConfigTag.h"
#include "AaSem.h"
#include "AaSysCom.h"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "Service.hpp"
#include "TestBoard.hpp"
#include "ddal_fpga.h"
#include "ddal_rio.h"

#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <set>
#include <sstream>
#include <thread>
#include <vector>

namespace dorn::testkit {
namespace {

using ::testing::IsNull;
using ::testing::NotNull;

class FailNthTest : public NodeTest {};

class Semaphore {
public:
    explicit Semaphore(std::uint32_t count) : m_sem(AaSemCreateC(count)) {}
    ~Semaphore() { AaSemDestroy(&m_sem); }
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;
    bool tryTake() { return AaSemTake(m_sem, AA_NO_WAIT) == 0; }
    AaSem*& handle() { return m_sem; }

private:
    AaSem* m_sem;
};

TEST_F(FailNthTest, OnlyTheNthCallFails)
{
    Semaphore semaphore(3);
    const FailNth<AaSemTake> failure(2);

    EXPECT_TRUE(semaphore.tryTake());
    EXPECT_FALSE(failure.hasFailed());
    EXPECT_FALSE(semaphore.tryTake());
    EXPECT_TRUE(failure.hasFailed());
    EXPECT_TRUE(semaphore.tryTake());
}

TEST_F(FailNthTest, FailingCallIsNotCarriedOut)
{
    Semaphore semaphore(1);
    {
        const FailNth<AaSemTake> failure(1);
        EXPECT_FALSE(semaphore.tryTake());
    }

    EXPECT_TRUE(semaphore.tryTake());
}

TEST_F(FailNthTest, GivenResultIsReturned)
{
    const FailNth<AaSysComGetOwnNid> node(1, 0x0B01);

    EXPECT_EQ(AaSysComGetOwnNid(), 0x0B01U);
    EXPECT_EQ(AaSysComGetOwnNid(), 0x0F01U);
}

TEST_F(FailNthTest, UsualFailureOfAPointerIsNull)
{
    const FailNth<AaSemCreateC> failure(1);

    EXPECT_THAT(AaSemCreateC(0), IsNull());
}

TEST_F(FailNthTest, CallsAreCountedFromItsBegin)
{
    Semaphore semaphore(3);
    semaphore.tryTake();

    const FailNth<AaSemTake> failure(1);

    EXPECT_FALSE(semaphore.tryTake());
    EXPECT_EQ(failure.count(), 1U);
}

TEST_F(FailNthTest, NothingFailsAfterItsEnd)
{
    Semaphore semaphore(2);
    {
        const FailNth<AaSemTake> failure(2);
        EXPECT_TRUE(semaphore.tryTake());
    }

    EXPECT_TRUE(semaphore.tryTake());
}

TEST_F(FailNthTest, EveryCallFailsWhileFailEveryLives)
{
    Semaphore semaphore(2);
    {
        const FailEvery<AaSemTake> failure;
        EXPECT_FALSE(semaphore.tryTake());
        EXPECT_FALSE(semaphore.tryTake());
        EXPECT_EQ(failure.count(), 2U);
    }

    EXPECT_TRUE(semaphore.tryTake());
}

TEST_F(FailNthTest, CallsOfTheLibraryFail)
{
    class Simple : public vel::hwapi::common::Service {
    public:
        Simple() : Service("Simple", 0x0200, ERadHwapi_GENIO, ERadHwapiState_ClimateState) {}
        static bool hasMutex() { return m_wfctMapSem != nullptr; }
    };
    const FailNth<AaSemReMutexCreate> failure(1);

    const Simple service;

    EXPECT_TRUE(failure.hasFailed());
    EXPECT_FALSE(Simple::hasMutex());
}

TEST_F(FailNthTest, CallsOfTheTestKitAreNotCounted)
{
    const CountCalls<AaSysComMsgCreate> created;
    const FailEvery<AaSysComMsgSendS> failure;
    Peer peer;

    peer.send(0x1234, peer.address(), "text");
    EXPECT_EQ(peer.expect(0x1234).text(), "text");

    EXPECT_EQ(created.count(), 0U);
    EXPECT_EQ(failure.count(), 0U);
}

TEST_F(FailNthTest, CallsOfThePlatformItselfAreNotCounted)
{
    const TAaSysComCpid cpid = AaSysComUserRegister(0, AaProEuCurrent());
    const CountCalls<AaSysComGetOwnNid> calls;

    void* message = AaSysComMsgCreate(0x1234, 0, 0x0F010042);

    EXPECT_EQ(AaSysComMsgGetSender(message), 0x0F010000U | cpid);
    EXPECT_EQ(calls.count(), 0U);
    AaSysComMsgDestroy(&message);
    AaSysComUserDeregister(cpid);
}

TEST_F(FailNthTest, CallsOutOfAFunctionThatThePlatformCallsAreCounted)
{
    const CountCalls<AaConfigRadSetMaxTagCount> calls;

    AaConfigRadRegisterDomain(77, "Test", [] { AaConfigRadSetMaxTagCount(77, (77U << 16) + 1); });

    EXPECT_EQ(calls.count(), 1U);
}

TEST_F(FailNthTest, CallsOfAllThreadsAreCounted)
{
    const CountCalls<AaProEuCurrent> calls;
    {
        std::array<std::jthread, 4> threads;
        for (std::jthread& thread : threads) {
            thread = std::jthread([] {
                for (int call = 0; call < 100; ++call) {
                    AaProEuCurrent();
                }
            });
        }
    }

    EXPECT_EQ(calls.count(), 400U);
}

TEST_F(FailNthTest, FailingSendTakesTheMessage)
{
    const CountCalls<AaSysComMsgDestroy> destroyed;
    const FailNth<AaSysComMsgSend> failure(1);
    void* message = AaSysComMsgCreate(0x1234, 8, 0x0F010042);

    EXPECT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_NoReceiver);

    EXPECT_THAT(message, IsNull());
    EXPECT_EQ(destroyed.count(), 0U) << "not a call of the code under test";
    EXPECT_THAT(m_log.texts(), ::testing::IsEmpty());
}

TEST_F(FailNthTest, FailingReadOfATagGivesNoValue)
{
    ASSERT_EQ(AaConfigEarlyStartup(), 0);
    ASSERT_EQ(AaConfigTagSetU32("test.tag", 1), 0);
    const FailNth<AaConfigTagGet> failure(1);
    int something = 0;
    void* value = &something;

    EXPECT_EQ(AaConfigTagGet("test.tag", &value, nullptr), EAaConfigTagStatus_StoreFailed);

    EXPECT_THAT(value, IsNull());
}

TEST_F(FailNthTest, FunctionWithoutResultIsNotCarriedOut)
{
    Semaphore semaphore(0);
    const FailNth<AaSemDestroy> failure(1);

    AaSemDestroy(&semaphore.handle());

    EXPECT_THAT(semaphore.handle(), NotNull());
}

std::vector<std::string> linesOf(const std::string& path)
{
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// The functions that a header of a seam declares, inline ones left out: `int32_t AaSemGive(AaSem* sem);`
std::set<std::string> functionsOf(const std::string& header)
{
    std::set<std::string> names;
    for (const std::string& line : linesOf(header)) {
        const std::size_t bracket = line.find('(');
        const std::size_t begin = line.rfind(' ', bracket) + 1;
        const bool isDeclaration = !line.empty() && std::isalpha(static_cast<unsigned char>(line.front())) &&
                                   !line.starts_with("typedef") && !line.starts_with("static");
        if (bracket != std::string::npos && isDeclaration &&
            (line.compare(begin, 2, "Aa") == 0 || line.compare(begin, 5, "ddal_") == 0)) {
            names.insert(line.substr(begin, bracket - begin));
        }
    }
    return names;
}

/// The second words of the table's rows.
std::set<std::string> functionsOfTable()
{
    std::set<std::string> names;
    for (const std::string& line : linesOf(DORN_SEAM_TABLE)) {
        std::istringstream row(line);
        std::string header;
        std::string name;
        if (row >> header >> name && header.starts_with('"')) {
            names.insert(name);
        }
    }
    return names;
}

TEST_F(FailNthTest, EveryFunctionOfTheSeamsHasAWrapper)
{
    std::set<std::string> declared;
    for (const char* const folder : {DORN_PLATFORM_HEADERS, DORN_DRIVER_HEADERS}) {
        for (const auto& header : std::filesystem::directory_iterator(folder)) {
            if (header.path().extension() == ".h") {
                declared.merge(functionsOf(header.path()));
            }
        }
    }
    for (const char* const excluded : {"AaErrorAssertionFailed", "AaSysLogPrint", "AaSysLogPrintE"}) {
        EXPECT_EQ(declared.erase(excluded), 1U) << excluded;
    }

    EXPECT_GE(declared.size(), 60U + 27U);
    EXPECT_EQ(functionsOfTable(), declared);
}

TEST_F(FailNthTest, DriverFunctionsFailToo)
{
    const TestBoard board;
    const FailNth<ddal_fpga_get_active_version> failure(1);
    std::uint32_t version = 0;

    EXPECT_EQ(ddal_fpga_get_active_version(1, &version), DDAL_ERROR_IO);
    EXPECT_EQ(ddal_fpga_get_active_version(1, &version), DDAL_OK);
    EXPECT_EQ(version, 0x107U);
}

TEST_F(FailNthTest, FailingCloseOfACopyHandleCloses)
{
    const TestBoard board;
    std::int32_t handle = -1;
    ASSERT_EQ(ddal_rio_copy_open_fd(0, 0x10, DDAL_RIO_READ, &handle), DDAL_OK);
    {
        const FailNth<ddal_rio_copy_close_fd> failure(1);
        EXPECT_EQ(ddal_rio_copy_close_fd(handle), DDAL_ERROR_IO);
    }

    EXPECT_EQ(ddal_rio_copy_close_fd(handle), DDAL_ERROR_BAD_HANDLE);
}

TEST_F(FailNthTest, FailingErrorTextIsEmpty)
{
    const FailNth<ddal_strerror> failure(1);
    std::array<char, 8> text{"rubbish"};

    EXPECT_EQ(ddal_strerror(DDAL_ERROR_IO, text.data(), 7), DDAL_ERROR_FAILED);

    EXPECT_STREQ(text.data(), "");
}

} // namespace
} // namespace dorn::testkit
