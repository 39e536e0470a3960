/* SPDX-License-Identifier: MIT */
/// @file mount.h
/// Read-write mounts of the board's flash file systems.
///
/// The flash file systems are mounted read-only at each start and belong to the platform's mount service. Who wants to
/// write to them
///
/// 1. asks the driver with isMountNeeded() whether they are mounted for writing already;
/// 2. if not, has the mount service do it with MountFilesystemsToRwMode(), which waits for its answers.
///
/// The functions tell their caller nothing of the mount service's success: they log it. Ask isMountNeeded() again to
/// know. They run on the caller's thread, which is an execution unit (EU): the answers come to its message queue, where
/// other messages stay queued in their order meanwhile.
///
/// Every line is logged with the feature id that the caller gives as @p printFlag, normally an `ERadHwapi` value.
#ifndef SWDLS_MOUNT_H
#define SWDLS_MOUNT_H

#include "AaSysCom.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Message id of a request to the mount service; its payload is an #SApiMountReq.
#define API_MOUNT_REQ_MSG 0x2B95
/// Message id of the mount service's answer; its payload is an #SApiMountResp.
#define API_MOUNT_RESP_MSG 0x2B96

/// Node id and communication point of the mount service.
#define API_MOUNT_SERVICE_NID 0xF01
/// Communication point of the mount service on its node.
#define API_MOUNT_SERVICE_CPID 0x4B2

/// Names of files and file systems in messages; those that mount requests are about.
typedef enum EFileId {
    EFileId_McuFileSystem1 = 53, ///< the MCU's first flash file system
    EFileId_McuFileSystem2 = 54  ///< the MCU's second flash file system
} EFileId;

/// Kinds of file systems. A request says 0: whichever it is.
typedef enum EFileSystemType {
    EFileSystemType_ExtFat16 = 1, ///< FAT16
    EFileSystemType_UbiFs = 2,    ///< UBIFS, on raw flash
    EFileSystemType_Ext3 = 3,     ///< ext3
    EFileSystemType_Ext4 = 4      ///< ext4
} EFileSystemType;

/// How a file system can be used.
typedef enum EFileSystemAccess {
    EFileSystemAccess_None = 0,         ///< not mounted
    EFileSystemAccess_ReadOnly = 1,     ///< mounted for reading
    EFileSystemAccess_ReadWrite = 2,    ///< mounted for reading and writing
    EFileSystemAccess_ReadWriteSync = 3 ///< the same, and every write is on the flash when it returns
} EFileSystemAccess;

/// "Mount this file system so." 12 bytes.
typedef struct SApiMountReq {
    uint32_t filesystem_id;     ///< #EFileId
    uint32_t filesystem_type;   ///< #EFileSystemType, or 0
    uint32_t filesystem_access; ///< #EFileSystemAccess
} SApiMountReq;

/// The answer. 16 bytes.
typedef struct SApiMountResp {
    uint32_t success_code;      ///< 0 when it is mounted so
    uint32_t filesystem_id;     ///< as in the request
    uint32_t filesystem_type;   ///< #EFileSystemType
    uint32_t filesystem_access; ///< #EFileSystemAccess now
} SApiMountResp;

/// Has the mount service mount both MCU file systems for reading and writing and waits for both answers, up to 5 s for
/// each. Answers are counted, not matched to requests.
/// @param mySicad address of the calling EU, to which the answers go. 0 is logged at severity Error: nothing is sent
///   then, and nothing waited for.
/// @param printFlag feature id of the log lines
void MountFilesystemsToRwMode(TAaSysComSicad mySicad, uint32_t printFlag);

/// Sends one request for a read-write mount. It is not sent when there is no memory for it.
/// @param mySicad address to which the answer goes
/// @param printFlag feature id of the log lines
/// @param fsId #EFileId of the file system
void requestRwMount(TAaSysComSicad mySicad, uint32_t printFlag, uint32_t fsId);

/// Waits up to 5 s for one answer and logs it: at severity Info what it says, at Error that none came.
/// @param printFlag feature id of the log lines
void receiveMountResp(uint32_t printFlag);

/// Asks the driver whether a file system has to be mounted otherwise.
/// @param printFlag feature id of the log lines
/// @param ddalFfsId the driver's number of the file system
/// @param flags 1: it is to be read-write; 0: read-only
/// @return 0 when it is so already; 1 when not, and also when the driver fails (logged at severity Warning), knows a
///   mode of its own, or @p flags is another number
TBoolean isMountNeeded(uint32_t printFlag, uint32_t ddalFfsId, uint32_t flags);

#ifdef __cplusplus
}
#endif

#endif
