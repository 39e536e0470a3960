// SPDX-License-Identifier: MIT
// Copying to and from the memory of RapidIO devices.
#include "BoardTest.hpp"
#include "FailingFilePort.hpp"
#include "ManualClock.hpp"
#include "ddal_rio.h"
#include "driver/RioHandles.hpp"
#include "node/PerNode.hpp"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <numeric>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace dorn::board {
namespace {

constexpr std::uint16_t device = 0x10;
constexpr std::uint64_t memoryBegin = 0x80000000;
constexpr std::uint64_t memorySize = 0x100000;
constexpr const char* memoryFile = "/var/lib/dorn/board/rapidio-0-device-16-0x80000000.memory";

/// An open copy handle.
class Handle {
public:
    explicit Handle(std::uint32_t mode = DDAL_RIO_READ_WRITE, std::uint16_t deviceId = device)
    {
        EXPECT_EQ(ddal_rio_copy_open_fd(0, deviceId, mode, &m_number), DDAL_OK);
    }
    ~Handle() { ddal_rio_copy_close_fd(m_number); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    std::int32_t number() const { return m_number; }
    std::int32_t write(std::uint64_t address, const std::string& data) const
    {
        return ddal_rio_copy_to_fd(m_number, address, data.data(), static_cast<std::uint32_t>(data.size()));
    }
    std::string read(std::uint64_t address, std::uint32_t size) const
    {
        std::string data(size, '#');
        EXPECT_EQ(ddal_rio_copy_from_fd(m_number, address, data.data(), size), DDAL_OK);
        return data;
    }

private:
    std::int32_t m_number = -1;
};

std::string pattern(std::size_t size, unsigned char first)
{
    std::string data(size, '\0');
    for (std::size_t index = 0; index < size; ++index) {
        data[index] = static_cast<char>(first + index * 7);
    }
    return data;
}

class DriverRioTest : public BoardTest {};

TEST_F(DriverRioTest, WhatWasWrittenIsRead)
{
    const Handle handle;
    const std::string data = pattern(0x10000, 3);

    EXPECT_EQ(handle.write(memoryBegin + 100, data), DDAL_OK);

    EXPECT_EQ(handle.read(memoryBegin + 100, 0x10000), data);
    EXPECT_EQ(handle.read(memoryBegin + 99, 2), std::string(1, '\0') + data.front());
}

TEST_F(DriverRioTest, WhatWasNeverWrittenIsZero)
{
    const Handle handle;

    EXPECT_EQ(handle.read(memoryBegin, 100), std::string(100, '\0'));
    EXPECT_FALSE(std::filesystem::exists(m_node.boardPath(memoryFile))) << "reading makes nothing";

    EXPECT_EQ(handle.write(memoryBegin, "x"), DDAL_OK);
    EXPECT_EQ(handle.read(memoryBegin + memorySize - 10, 10), std::string(10, '\0'));
}

TEST_F(DriverRioTest, MemoryTakesOnlyTheRoomOfWhatWasWritten)
{
    m_board.cells("rapidio/port@0/device@10/memory@80000000", "reg", {0, 0x80000000, 0, 0x40000000});
    const Handle handle;

    EXPECT_EQ(handle.write(memoryBegin + 0x3FFFFFFF, "x"), DDAL_OK);

    struct stat status {};
    ASSERT_EQ(stat(m_node.boardPath(memoryFile).c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 0x40000000);
    EXPECT_LT(status.st_blocks * 512, 1 << 20);
}

TEST_F(DriverRioTest, MemorySurvivesTheProcess)
{
    {
        const Handle handle;
        EXPECT_EQ(handle.write(memoryBegin, "kept"), DDAL_OK);
    }
    host::closeNode(); // as a process that begins

    EXPECT_EQ(Handle().read(memoryBegin, 4), "kept");
}

TEST_F(DriverRioTest, DevicesAndMemoriesAreKeptApart)
{
    m_board.cells("rapidio/port@0/device@10/memory@0", "reg", {0, 0, 0, 0x1000});
    m_board.cells("rapidio/port@0/device@11", "reg", {0x11});
    m_board.cells("rapidio/port@0/device@11/memory@80000000", "reg", {0, 0x80000000, 0, 0x1000});
    const Handle first;
    const Handle second(DDAL_RIO_READ_WRITE, 0x11);

    EXPECT_EQ(first.write(memoryBegin, "one"), DDAL_OK);
    EXPECT_EQ(first.write(0, "two"), DDAL_OK);
    EXPECT_EQ(second.write(memoryBegin, "six"), DDAL_OK);

    EXPECT_EQ(first.read(memoryBegin, 3), "one");
    EXPECT_EQ(first.read(0, 3), "two");
    EXPECT_EQ(second.read(memoryBegin, 3), "six");
}

TEST_F(DriverRioTest, MemoryMayLieAbove32Bits)
{
    m_board.cells("rapidio/port@0/device@10/memory@80000000", "reg", {0x8, 0x10, 0, 0x1000});
    const Handle handle;

    EXPECT_EQ(handle.write(0x800000010, "far"), DDAL_OK);

    EXPECT_EQ(handle.read(0x800000010, 3), "far");
    EXPECT_EQ(handle.write(0x10, "near"), DDAL_ERROR_BAD_ADDRESS);
}

TEST_F(DriverRioTest, LastByteIsInTheMemoryAndTheNextIsNot)
{
    const Handle handle;

    EXPECT_EQ(handle.write(memoryBegin + memorySize - 4, "last"), DDAL_OK);
    for (const std::uint64_t address : {memoryBegin - 1, memoryBegin + memorySize - 3, memoryBegin + memorySize,
                                        std::uint64_t{0}, ~std::uint64_t{0}, ~std::uint64_t{0} - 3}) {
        EXPECT_EQ(handle.write(address, "xxxx"), DDAL_ERROR_BAD_ADDRESS) << address;
        std::string data(4, '#');
        EXPECT_EQ(ddal_rio_copy_from_fd(handle.number(), address, data.data(), 4), DDAL_ERROR_BAD_ADDRESS);
    }
    EXPECT_EQ(handle.read(memoryBegin + memorySize - 4, 4), "last");
    EXPECT_EQ(m_log.count("Error 0x0 ddal_rio_copy_to_fd(): device 0x10 has no memory for 4 bytes at 0x80100000"), 1U);
}

TEST_F(DriverRioTest, NothingIsCopiedInNoBytes)
{
    const Handle handle;

    EXPECT_EQ(ddal_rio_copy_to_fd(handle.number(), 0, nullptr, 0), DDAL_OK);
    EXPECT_EQ(ddal_rio_copy_from_fd(handle.number(), 0, nullptr, 0), DDAL_OK);
    EXPECT_EQ(ddal_rio_copy_to_fd(handle.number(), memoryBegin, nullptr, 1), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(ddal_rio_copy_from_fd(handle.number(), memoryBegin, nullptr, 1), DDAL_ERROR_INVALID_ARGUMENT);
}

TEST_F(DriverRioTest, HandleIsForItsDirection)
{
    const Handle reader(DDAL_RIO_READ);
    const Handle writer(DDAL_RIO_WRITE);
    std::string data = "data";

    EXPECT_EQ(reader.write(memoryBegin, data), DDAL_ERROR_BAD_HANDLE);
    EXPECT_EQ(ddal_rio_copy_from_fd(writer.number(), memoryBegin, data.data(), 4), DDAL_ERROR_BAD_HANDLE);
    EXPECT_EQ(writer.write(memoryBegin, data), DDAL_OK);
    EXPECT_EQ(reader.read(memoryBegin, 4), "data");
    EXPECT_EQ(m_log.count("Error 0x0 ddal_rio_copy_to_fd(): copy handle " + std::to_string(reader.number()) +
                          " is not open for writing"),
              1U);
}

TEST_F(DriverRioTest, DeviceThatTheBoardDoesNotHaveIsNotOpened)
{
    std::int32_t handle = 7;

    EXPECT_EQ(ddal_rio_copy_open_fd(0, 0x77, DDAL_RIO_READ, &handle), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(ddal_rio_copy_open_fd(1, device, DDAL_RIO_READ, &handle), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(ddal_rio_copy_open_fd(0, device, 3, &handle), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(ddal_rio_copy_open_fd(0, device, DDAL_RIO_READ, nullptr), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(handle, 7);
}

TEST_F(DriverRioTest, ClosedHandleIsNotOpen)
{
    std::int32_t handle = -1;
    ASSERT_EQ(ddal_rio_copy_open_fd(0, device, DDAL_RIO_READ_WRITE, &handle), DDAL_OK);
    EXPECT_GE(handle, 0);

    EXPECT_EQ(ddal_rio_copy_close_fd(handle), DDAL_OK);

    EXPECT_EQ(ddal_rio_copy_close_fd(handle), DDAL_ERROR_BAD_HANDLE);
    EXPECT_EQ(ddal_rio_copy_to_fd(handle, memoryBegin, "x", 1), DDAL_ERROR_BAD_HANDLE);
    EXPECT_EQ(m_log.count("Error 0x0 ddal_rio_copy_to_fd(): copy handle " + std::to_string(handle) + " is not open"),
              1U);
}

TEST_F(DriverRioTest, HandleThatNeverWasIsNotOpen)
{
    for (const std::int32_t handle : {-1, 0, 12345}) {
        EXPECT_EQ(ddal_rio_copy_close_fd(handle), DDAL_ERROR_BAD_HANDLE);
    }
}

TEST_F(DriverRioTest, CloseThatIsToldToFailClosesAllTheSame)
{
    std::int32_t handle = -1;
    ASSERT_EQ(ddal_rio_copy_open_fd(0, device, DDAL_RIO_READ, &handle), DDAL_OK);
    m_board.fail("ddal_rio_copy_close_fd", DDAL_ERROR_TIMEOUT);

    EXPECT_EQ(ddal_rio_copy_close_fd(handle), DDAL_ERROR_TIMEOUT);
    EXPECT_EQ(ddal_rio_copy_close_fd(handle), DDAL_ERROR_BAD_HANDLE);
}

TEST_F(DriverRioTest, HandlesAreLimited)
{
    std::vector<std::int32_t> handles(RioHandles::most, -1);
    for (std::int32_t& handle : handles) {
        ASSERT_EQ(ddal_rio_copy_open_fd(0, device, DDAL_RIO_READ, &handle), DDAL_OK);
    }
    std::int32_t more = -1;

    EXPECT_EQ(ddal_rio_copy_open_fd(0, device, DDAL_RIO_READ, &more), DDAL_ERROR_NO_RESOURCE);

    EXPECT_EQ(ddal_rio_copy_close_fd(handles[100]), DDAL_OK);
    EXPECT_EQ(ddal_rio_copy_open_fd(0, device, DDAL_RIO_READ, &more), DDAL_OK);
    EXPECT_NE(more, handles[100]) << "a late user of the old handle must not meet the new one";
}

TEST_F(DriverRioTest, MemoryThatCannotBeIsRefused)
{
    std::int32_t handle = -1;
    m_board.cells("rapidio/port@0/device@10/memory@80000000", "reg", {0xFFFFFFFF, 0xFFFFFFF0, 0, 0x1000});

    EXPECT_EQ(ddal_rio_copy_open_fd(0, device, DDAL_RIO_READ, &handle), DDAL_ERROR_BAD_DESCRIPTION);
    EXPECT_EQ(m_log.texts(),
              std::vector<std::string>{
                  "Error 0x0 ddal_rio_copy_open_fd(): " + m_origin +
                  "property 'reg' of node '/board/rapidio/port@0/device@10/memory@80000000' has the size 0x1000, which "
                  "no memory at 0xFFFFFFFFFFFFFFF0 can have"});
}

TEST_F(DriverRioTest, DiskErrorsAreTheDevices)
{
    using testkit::FileOperation;
    const Handle handle;
    {
        const testkit::FailingFilePort files(FileOperation::Write, 1, EIO);
        EXPECT_EQ(handle.write(memoryBegin, "x"), DDAL_ERROR_IO);
    }
    {
        const testkit::FullDisk disk(0);
        EXPECT_EQ(handle.write(memoryBegin, "x"), DDAL_ERROR_NO_RESOURCE);
    }

    std::filesystem::remove(m_node.boardPath(memoryFile));
    {
        const testkit::FailingFilePort files(FileOperation::Truncate, 1, EFBIG);
        EXPECT_EQ(handle.write(memoryBegin, "x"), DDAL_ERROR_IO);
    }

    EXPECT_EQ(handle.write(memoryBegin, "x"), DDAL_OK);
}

TEST_F(DriverRioTest, CorruptingDeviceSpoilsTheFirstByteOfACopy)
{
    const Handle handle;
    m_board.corruptRio(device, 2);

    for (const std::uint64_t offset : {0U, 16U, 32U}) {
        EXPECT_EQ(handle.write(memoryBegin + offset, "data"), DDAL_OK);
    }

    const std::string spoilt = std::string(1, static_cast<char>(~'d')) + "ata";
    EXPECT_EQ(handle.read(memoryBegin, 4), spoilt);
    EXPECT_EQ(handle.read(memoryBegin + 16, 4), spoilt);
    EXPECT_EQ(handle.read(memoryBegin + 32, 4), "data");
}

TEST_F(DriverRioTest, OtherDevicesDoNotCorrupt)
{
    m_board.cells("rapidio/port@0/device@11", "reg", {0x11});
    m_board.cells("rapidio/port@0/device@11/memory@80000000", "reg", {0, 0x80000000, 0, 0x1000});
    m_board.corruptRio(0x11);
    const Handle handle;

    EXPECT_EQ(handle.write(memoryBegin, "data"), DDAL_OK);

    EXPECT_EQ(handle.read(memoryBegin, 4), "data");
}

TEST_F(DriverRioTest, SlowDeviceTakesItsTimeForEachCopy)
{
    using namespace std::chrono_literals;
    testkit::ManualClock clock;
    const Handle handle;
    m_board.slowRio(device, 500ms);
    std::jthread time([&clock] {
        for (int copy = 0; copy < 2; ++copy) {
            EXPECT_TRUE(clock.waitForSleepers());
            clock.advance(499ms);
            EXPECT_TRUE(clock.waitForSleepers()) << "too fast";
            clock.advance(1ms);
        }
    });
    const auto begin = clock.monotonic();

    EXPECT_EQ(handle.write(memoryBegin, "data"), DDAL_OK);
    EXPECT_EQ(handle.read(memoryBegin, 4), "data");

    EXPECT_EQ(clock.monotonic() - begin, 1s);
}

TEST_F(DriverRioTest, StoreOfFaultsThatCannotBeOpenedIsInNobodysWay)
{
    std::filesystem::create_directory(m_node.nodeDirectory() + "/board.rapidio");
    const Handle handle;

    EXPECT_EQ(handle.write(memoryBegin, "data"), DDAL_OK);

    EXPECT_EQ(handle.read(memoryBegin, 4), "data");
}

TEST_F(DriverRioTest, ThreadsCopyThroughOneHandleAtOnce)
{
    constexpr std::uint32_t blockSize = 0x1000;
    const Handle handle;
    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&handle, thread] {
            const std::uint64_t address = memoryBegin + thread * blockSize;
            for (unsigned char round = 0; round < 50; ++round) {
                const std::string data = pattern(blockSize, static_cast<unsigned char>(round + thread));
                EXPECT_EQ(handle.write(address, data), DDAL_OK);
                EXPECT_EQ(handle.read(address, blockSize), data);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace
} // namespace dorn::board
