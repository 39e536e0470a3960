// SPDX-License-Identifier: MIT
// RapidIO.
#include "Check.hpp"
#include "Guarded.hpp"
#include "Options.hpp"
#include "Rules.hpp"
#include "ddal_rio.h"

#include <array>
#include <string>

namespace dorn::conformance {
namespace {

constexpr std::size_t rangeSize = 256;
constexpr uint32_t missingPort = 0xFFFFFFF0;
constexpr int32_t noHandle = 0x7FFFFFF0;

const RapidIoPlace& place()
{
    if (!options().rapidIo) {
        skip("name 256 bytes of a device's memory with --rio PORT:DEVICE:ADDRESS");
    }
    return *options().rapidIo;
}

/// An open copy handle.
class Handle {
public:
    explicit Handle(uint32_t mode)
    {
        expectEqual(ddal_rio_copy_open_fd(place().port, place().device, mode, &m_number), DDAL_OK,
                    "ddal_rio_copy_open_fd() in mode " + std::to_string(mode));
        expect(m_number >= 0, "ddal_rio_copy_open_fd() gave the handle " + std::to_string(m_number));
    }
    ~Handle() { ddal_rio_copy_close_fd(m_number); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    int32_t number() const { return m_number; }
    std::string read() const
    {
        std::string data(rangeSize, '#');
        expectEqual(ddal_rio_copy_from_fd(m_number, place().address, data.data(), rangeSize), DDAL_OK,
                    "ddal_rio_copy_from_fd()");
        return data;
    }
    void write(const std::string& data) const
    {
        expectEqual(ddal_rio_copy_to_fd(m_number, place().address, data.data(), static_cast<uint32_t>(data.size())),
                    DDAL_OK, "ddal_rio_copy_to_fd()");
    }

private:
    int32_t m_number = -1;
};

void ownIdIsRead()
{
    uint16_t id = 0;
    uint16_t again = 1;
    const int32_t result = ddal_rio_get_own_id(&id);
    expectEqual(ddal_rio_get_own_id(nullptr), DDAL_ERROR_INVALID_ARGUMENT, "ddal_rio_get_own_id() into null");
    if (result == DDAL_ERROR_NOT_FOUND) {
        skip("the board has no RapidIO: result 5, not found");
    }
    expectEqual(result, DDAL_OK, "ddal_rio_get_own_id()");
    expectEqual(ddal_rio_get_own_id(&again), DDAL_OK, "the same asked again");
    expectEqual(again, id, "the own id asked again");
}

void wrongOpensAreRefused()
{
    int32_t handle = 77;
    expectEqual(ddal_rio_copy_open_fd(missingPort, 1, DDAL_RIO_READ, &handle), DDAL_ERROR_NOT_FOUND,
                "ddal_rio_copy_open_fd() of a port that is not there");
    expectEqual(ddal_rio_copy_open_fd(0, 0, 77, &handle), DDAL_ERROR_INVALID_ARGUMENT,
                "ddal_rio_copy_open_fd() in mode 77");
    expectEqual(handle, 77, "the handle of an open that failed");
    expectEqual(ddal_rio_copy_open_fd(0, 0, DDAL_RIO_READ, nullptr), DDAL_ERROR_INVALID_ARGUMENT,
                "ddal_rio_copy_open_fd() into null");
}

void unknownHandlesAreRefused()
{
    char byte = 0;
    expectEqual(ddal_rio_copy_from_fd(noHandle, 0, &byte, 1), DDAL_ERROR_BAD_HANDLE,
                "ddal_rio_copy_from_fd() of a handle that is not open");
    expectEqual(ddal_rio_copy_to_fd(noHandle, 0, &byte, 1), DDAL_ERROR_BAD_HANDLE,
                "ddal_rio_copy_to_fd() of a handle that is not open");
    expectEqual(ddal_rio_copy_close_fd(noHandle), DDAL_ERROR_BAD_HANDLE,
                "ddal_rio_copy_close_fd() of a handle that is not open");
}

void memoryIsRead()
{
    const Handle handle(DDAL_RIO_READ);
    const Handle other(DDAL_RIO_READ);
    expect(handle.number() != other.number(), "two open handles have the same number");
    const std::string data = handle.read();
    expectEqual(ddal_rio_copy_from_fd(handle.number(), place().address, nullptr, 0), DDAL_OK,
                "ddal_rio_copy_from_fd() of 0 bytes");
    Guarded part(10);
    expectEqual(ddal_rio_copy_from_fd(handle.number(), place().address + 1, part.data(), 10), DDAL_OK,
                "ddal_rio_copy_from_fd() of 10 bytes from an odd address");
    part.data()[9] = '\0';
    expect(part.text("ddal_rio_copy_from_fd() of 10 bytes") == std::string(data.substr(1, 9).c_str()),
           "a part that is read is not what stands in the whole");
}

void wrongCopiesAreRefused()
{
    char byte = 0;
    const Handle reader(DDAL_RIO_READ);
    expectEqual(ddal_rio_copy_from_fd(reader.number(), UINT64_MAX - 10, &byte, 1), DDAL_ERROR_BAD_ADDRESS,
                "ddal_rio_copy_from_fd() of an address that is not in the memory");
    const Handle writer(DDAL_RIO_WRITE);
    expectEqual(ddal_rio_copy_from_fd(writer.number(), place().address, &byte, 1), DDAL_ERROR_BAD_HANDLE,
                "ddal_rio_copy_from_fd() of a handle that is open for writing");
}

void closedHandleIsNotOpen()
{
    int32_t handle = -1;
    expectEqual(ddal_rio_copy_open_fd(place().port, place().device, DDAL_RIO_READ, &handle), DDAL_OK,
                "ddal_rio_copy_open_fd()");
    expectEqual(ddal_rio_copy_close_fd(handle), DDAL_OK, "ddal_rio_copy_close_fd()");
    char byte = 0;
    expectEqual(ddal_rio_copy_from_fd(handle, place().address, &byte, 1), DDAL_ERROR_BAD_HANDLE,
                "ddal_rio_copy_from_fd() of a handle that has been closed");
    expectEqual(ddal_rio_copy_close_fd(handle), DDAL_ERROR_BAD_HANDLE, "ddal_rio_copy_close_fd() once more");
}

/// Puts a range of a device's memory back.
class Restored {
public:
    explicit Restored(const Handle& handle) : m_handle(handle), m_content(handle.read()) {}
    ~Restored()
    {
        ddal_rio_copy_to_fd(m_handle.number(), place().address, m_content.data(),
                            static_cast<uint32_t>(m_content.size()));
    }
    Restored(const Restored&) = delete;
    Restored& operator=(const Restored&) = delete;

private:
    const Handle& m_handle;
    const std::string m_content;
};

void writtenIsRead()
{
    const Handle handle(DDAL_RIO_READ_WRITE);
    const Restored restored(handle);
    std::string data(rangeSize, '\0');
    for (std::size_t index = 0; index < data.size(); ++index) {
        data[index] = static_cast<char>(index * 7 + 3);
    }
    handle.write(data);
    expect(handle.read() == data, "what is read is not what was written");
    expectEqual(ddal_rio_copy_to_fd(handle.number(), place().address, nullptr, 0), DDAL_OK,
                "ddal_rio_copy_to_fd() of 0 bytes");
    const Handle reader(DDAL_RIO_READ);
    expectEqual(ddal_rio_copy_to_fd(reader.number(), place().address, "xx", 2), DDAL_ERROR_BAD_HANDLE,
                "ddal_rio_copy_to_fd() of a handle that is open for reading");
    expectEqual(ddal_rio_copy_to_fd(handle.number(), UINT64_MAX - 10, "xx", 2), DDAL_ERROR_BAD_ADDRESS,
                "ddal_rio_copy_to_fd() to an address that is not in the memory");
    expect(handle.read() == data, "copies that failed changed the memory");
}

constexpr std::array rules{
    Rule{"rio.own-id-is-read", "ddal_rio.h", "ddal_rio_get_own_id",
         "The board's own id is always the same; DDAL_ERROR_NOT_FOUND without RapidIO", ownIdIsRead},
    Rule{"rio.wrong-opens-are-refused", "ddal_rio.h", "ddal_rio_copy_open_fd",
         "A port that is not there is DDAL_ERROR_NOT_FOUND, an unknown mode and null are invalid arguments",
         wrongOpensAreRefused},
    Rule{"rio.unknown-handles-are-refused", "ddal_rio.h",
         "ddal_rio_copy_from_fd ddal_rio_copy_to_fd ddal_rio_copy_close_fd",
         "A handle that is not open is DDAL_ERROR_BAD_HANDLE", unknownHandlesAreRefused},
    Rule{"rio.memory-is-read", "ddal_rio.h", "ddal_rio_copy_open_fd ddal_rio_copy_from_fd",
         "Several handles of a device may be open at once; any part of its memory is read, bytes as they are",
         memoryIsRead},
    Rule{"rio.wrong-copies-are-refused", "ddal_rio.h", "ddal_rio_copy_from_fd",
         "An address outside the memory is DDAL_ERROR_BAD_ADDRESS, the wrong direction DDAL_ERROR_BAD_HANDLE",
         wrongCopiesAreRefused},
    Rule{"rio.closed-handle-is-not-open", "ddal_rio.h", "ddal_rio_copy_close_fd",
         "A handle that has been closed is DDAL_ERROR_BAD_HANDLE from then on", closedHandleIsNotOpen},
    Rule{"rio.written-is-read", "ddal_rio.h", "ddal_rio_copy_to_fd ddal_rio_copy_from_fd",
         "What was written is read; copies that fail change nothing", writtenIsRead, Effect::Destructive},
};

} // namespace

Rules rapidIoRules()
{
    return rules;
}

} // namespace dorn::conformance
