/* SPDX-License-Identifier: MIT */
/// @file ddal_rio.h
/// RapidIO: this board's own id, and copying to and from the memory of the devices behind the bus.
///
/// 1. Open a copy handle for one device.
/// 2. Copy to and from addresses of the device, as often as wanted.
/// 3. Close the handle.
///
/// A handle belongs to the process that opened it. Several handles of one device may be open at once, in one process or
/// in several; copies to the same addresses are not coordinated. Bytes are copied as they are: the bus changes no byte
/// order.
#ifndef DDAL_RIO_H
#define DDAL_RIO_H

#include "ddal_error.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Directions of a copy handle.
typedef enum ddal_rio_mode {
    DDAL_RIO_READ = 0,      ///< from the device
    DDAL_RIO_WRITE = 1,     ///< to the device
    DDAL_RIO_READ_WRITE = 2 ///< both
} ddal_rio_mode;

/// Reads the RapidIO id of this board's own end of the bus.
/// @return #DDAL_OK; #DDAL_ERROR_NOT_FOUND when the board has no RapidIO.
int32_t ddal_rio_get_own_id(uint16_t* id);

/// Opens a copy handle.
/// @param port the board's RapidIO port, from 0
/// @param deviceId RapidIO id of the device
/// @param mode a value of #ddal_rio_mode
/// @param handle receives the handle, never negative; to be closed with ddal_rio_copy_close_fd()
/// @return #DDAL_OK; #DDAL_ERROR_NOT_FOUND when there is no such port or device; #DDAL_ERROR_NO_RESOURCE when no handle
///   is free.
int32_t ddal_rio_copy_open_fd(uint32_t port, uint16_t deviceId, uint32_t mode, int32_t* handle);

/// Copies to the device and returns when it has the data.
/// @param address of the device's memory
/// @param size bytes; 0 copies nothing and is no failure
/// @return #DDAL_OK; #DDAL_ERROR_BAD_HANDLE when the handle is not open for this; #DDAL_ERROR_BAD_ADDRESS when not all
/// of
///   the range is in the device's memory: nothing is copied then.
int32_t ddal_rio_copy_to_fd(int32_t handle, uint64_t address, const void* buffer, uint32_t size);

/// Copies from the device; otherwise as ddal_rio_copy_to_fd(). After a failure the content of @p buffer is anything.
int32_t ddal_rio_copy_from_fd(int32_t handle, uint64_t address, void* buffer, uint32_t size);

/// Closes a copy handle.
/// @return #DDAL_OK; #DDAL_ERROR_BAD_HANDLE when it is not open. Whatever it returns, the handle is not open any more.
int32_t ddal_rio_copy_close_fd(int32_t handle);

#ifdef __cplusplus
}
#endif

#endif
