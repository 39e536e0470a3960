// SPDX-License-Identifier: MIT
#include "ddal_rio.h"

#include "description/DescribedBoard.hpp"
#include "device/RioPort.hpp"
#include "driver/DriverCall.hpp"
#include "driver/RioHandles.hpp"
#include "node/PerNode.hpp"
#include "port/Clock.hpp"

#include <atomic>
#include <vector>

namespace {

using namespace dorn::board;

constexpr std::uint32_t ownPort = 0;

RioPort rioPort(std::uint32_t number)
{
    return RioPort(DescribedBoard::get().part("rapidio", number));
}

RioHandles& handles()
{
    return dorn::host::PerNode<RioHandles>::get();
}

[[noreturn]] void failBecauseOfHandle(std::int32_t number, const char* reason)
{
    throw BoardFailure(DDAL_ERROR_BAD_HANDLE, "copy handle " + std::to_string(number) + " is not open" + reason);
}

/// The handle, open for reading or writing, whichever of the two @p unwanted is not.
std::shared_ptr<const RioHandle> requireHandle(std::int32_t number, ddal_rio_mode unwanted, const char* wanted)
{
    auto handle = handles().find(number);
    if (!handle || handle->mode == static_cast<std::uint32_t>(unwanted)) {
        failBecauseOfHandle(number, handle ? wanted : "");
    }
    return handle;
}

/// Without the store nobody has told the devices anything.
RioFaultStore* openFaults()
{
    try {
        return &dorn::host::PerNode<RioFaultStore>::get();
    } catch (const std::exception& failure) {
        reportFailure(DriverFunction("ddal_rio_copy_open_fd"), failure);
        return nullptr;
    }
}

RioAddress addressOf(const RioHandle& handle)
{
    return {handle.device.port(), handle.device.id()};
}

/// Waits as long as the device has been told to take longer.
void waitForSlow(const RioHandle& handle)
{
    dorn::host::Clock& clock = dorn::host::Clock::get();
    const auto delay = handle.faults ? handle.faults->delayOf(addressOf(handle)) : std::chrono::milliseconds(0);
    if (delay == delay.zero()) {
        return;
    }
    const dorn::host::Deadline until = clock.monotonic() + delay;
    std::atomic<std::uint32_t> nobodyWakes{0};
    while (clock.monotonic() < until) {
        clock.waitWhile(nobodyWakes, 0, until, false);
    }
}

/// Writes, and spoils what is written if the device has been told to.
void write(const RioHandle& handle, std::uint64_t address, const char* data, std::uint32_t size)
{
    if (!handle.faults || !handle.faults->takeCorruption(addressOf(handle))) {
        handle.device.write(address, data, size);
        return;
    }
    std::vector<char> spoilt(data, data + size);
    spoilt.front() = static_cast<char>(~spoilt.front());
    handle.device.write(address, spoilt.data(), size);
}

} // namespace

int32_t ddal_rio_get_own_id(uint16_t* id)
{
    return driverCall(DriverFunction("ddal_rio_get_own_id"), [&] { require(id) = rioPort(ownPort).ownId(); });
}

int32_t ddal_rio_copy_open_fd(uint32_t port, uint16_t deviceId, uint32_t mode, int32_t* handle)
{
    return driverCall(DriverFunction("ddal_rio_copy_open_fd"), [&] {
        std::int32_t& result = require(handle);
        if (mode > DDAL_RIO_READ_WRITE) {
            throw BoardFailure(DDAL_ERROR_INVALID_ARGUMENT, "there is no mode " + std::to_string(mode));
        }
        result = handles().add({rioPort(port).device(deviceId), mode, openFaults()});
    });
}

int32_t ddal_rio_copy_to_fd(int32_t handle, uint64_t address, const void* buffer, uint32_t size)
{
    return driverCall(DriverFunction("ddal_rio_copy_to_fd"), [&] {
        const auto open = requireHandle(handle, DDAL_RIO_READ, " for writing");
        if (size != 0) {
            const char* const data = &require(static_cast<const char*>(buffer));
            waitForSlow(*open);
            write(*open, address, data, size);
        }
    });
}

int32_t ddal_rio_copy_from_fd(int32_t handle, uint64_t address, void* buffer, uint32_t size)
{
    return driverCall(DriverFunction("ddal_rio_copy_from_fd"), [&] {
        const auto open = requireHandle(handle, DDAL_RIO_WRITE, " for reading");
        if (size != 0) {
            char* const data = &require(static_cast<char*>(buffer));
            waitForSlow(*open);
            open->device.read(address, data, size);
        }
    });
}

int32_t ddal_rio_copy_close_fd(int32_t handle)
{
    const dorn::host::CancellationOff off;
    const RioHandles* const open = dorn::host::PerNode<RioHandles>::ifOpen();
    const bool wasOpen = open && handles().remove(handle); // also when the call is to fail
    return driverCall(DriverFunction("ddal_rio_copy_close_fd"), [&] {
        if (!wasOpen) {
            failBecauseOfHandle(handle, "");
        }
    });
}
