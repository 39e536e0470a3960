// SPDX-License-Identifier: MIT
// What every driver function does around its work.
#include "driver/DriverCall.hpp"

#include "BoardTest.hpp"
#include "LogCapture.hpp"
#include "Sanitizers.hpp"
#include "ddal_fpga.h"
#include "node/PerNode.hpp"

#include <atomic>
#include <gtest/gtest.h>
#include <new>
#include <pthread.h>
#include <stdexcept>
#include <thread>

namespace dorn::board {
namespace {

constexpr DriverFunction function("ddal_unit_get_board");

class DriverCallTest : public BoardTest {};

TEST_F(DriverCallTest, WorkThatIsDoneIsOk)
{
    bool isDone = false;

    EXPECT_EQ(driverCall(function, [&] { isDone = true; }), DDAL_OK);
    EXPECT_TRUE(isDone);
}

TEST_F(DriverCallTest, FailureOfTheBoardIsTheResult)
{
    EXPECT_EQ(driverCall(function, [] { throw BoardFailure(DDAL_ERROR_BUSY, "at something else"); }), DDAL_ERROR_BUSY);
    EXPECT_EQ(m_log.texts(), std::vector<std::string>{"Error 0x0 ddal_unit_get_board(): at something else"});
}

TEST_F(DriverCallTest, OtherExceptionsDoNotGetOut)
{
    EXPECT_EQ(driverCall(function, [] { throw std::bad_alloc(); }), DDAL_ERROR_NO_RESOURCE);
    EXPECT_EQ(driverCall(function, [] { throw std::runtime_error("of another kind"); }), DDAL_ERROR_FAILED);
    EXPECT_EQ(m_log.count("Error 0x0 ddal_unit_get_board(): of another kind"), 1U);
}

TEST_F(DriverCallTest, EachFailureIsSaidOnce)
{
    for (int call = 0; call < 3; ++call) {
        driverCall(function, [] { throw BoardFailure(DDAL_ERROR_IO, "first"); });
        driverCall(function, [] { throw BoardFailure(DDAL_ERROR_NOT_FOUND, "second"); });
    }

    EXPECT_EQ(m_log.texts(), (std::vector<std::string>{"Error 0x0 ddal_unit_get_board(): first",
                                                       "Warning 0x0 ddal_unit_get_board(): second"}));
}

TEST(DriverCallLogTest, RepeatedFailuresAndOrdersStandInTheLogOfWhoWantsThem)
{
    const testkit::TestNode node({.nodeId = std::nullopt, .log = "none", .logLevel = "debug"});
    const testkit::LogCapture log;
    const testkit::TestBoard board;
    std::uint32_t version = 0;
    ddal_fpga_get_active_version(1, nullptr);
    ddal_fpga_get_active_version(1, nullptr);
    board.fail("ddal_fpga_get_active_version", 42);
    ddal_fpga_get_active_version(1, &version);

    EXPECT_EQ(log.count("Error 0x0 ddal_fpga_get_active_version(): an argument is null"), 1U);
    EXPECT_EQ(log.count("Debug 0x0 ddal_fpga_get_active_version(): an argument is null"), 1U);
    EXPECT_EQ(log.count("Info 0x0 ddal_fpga_get_active_version() fails with 42 as it was told to"), 1U);
}

TEST_F(DriverCallTest, CancelledThreadFinishesItsCallFirst)
{
    if (test::hasAddressSanitizer) {
        GTEST_SKIP() << test::unwindingIsNotKnown;
    }
    std::atomic<std::int32_t> result{-1};
    std::atomic<bool> isCancelled{true};
    std::thread thread([&] {
        std::uint32_t version = 0;
        pthread_cancel(pthread_self()); // takes effect at the first wait, read or write
        result = ddal_fpga_get_active_version(1, &version);
        pthread_testcancel();
        isCancelled = false;
    });
    thread.join();

    EXPECT_EQ(result.load(), DDAL_OK);
    EXPECT_TRUE(isCancelled.load());
}

/// An environment in which there can be no run directory.
TEST(DriverCallWithoutNodeTest, DriversWorkAlthoughNobodyCanTellThemToFail)
{
    const testkit::TestNode node;
    const testkit::TestBoard board;
    setenv("DORN_RUN_DIR", "/proc/no/such/place", 1);
    host::closeNode();
    std::uint32_t version = 0;

    EXPECT_EQ(ddal_fpga_get_active_version(1, &version), DDAL_OK);
    EXPECT_EQ(version, 0x107U);
}

} // namespace
} // namespace dorn::board
