// SPDX-License-Identifier: MIT
#include "mount.h"

#include "AaSysLog.h"
#include "ddal_ffs.h"
#include "hwapiMsgQueue.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

static_assert(sizeof(SApiMountReq) == 12);
static_assert(offsetof(SApiMountReq, filesystem_access) == 8);
static_assert(sizeof(SApiMountResp) == 16);
static_assert(offsetof(SApiMountResp, filesystem_access) == 12);

namespace {

constexpr std::int32_t responseTimeout = 5'000'000; // micro-seconds
constexpr std::uint32_t anyType = 0;
constexpr std::uint32_t readOnly = 0;  // of isMountNeeded()'s flags
constexpr std::uint32_t readWrite = 1; // the same

/// What a response says; zeros where it is too short to say anything.
SApiMountResp contentOf(void* message)
{
    SApiMountResp response{};
    if (const void* const payload = AaSysComMsgGetPayload(message)) {
        std::memcpy(&response, payload, std::min<std::size_t>(sizeof response, AaSysComMsgGetPayloadSize(message)));
    }
    return response;
}

const char* modeName(bool isReadWrite)
{
    return isReadWrite ? "RW" : "RO";
}

} // namespace

void MountFilesystemsToRwMode(TAaSysComSicad mySicad, uint32_t printFlag)
{
    if (mySicad == 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, printFlag, "%s(): Invalid API_MOUNT_REQ_MSG sender", __func__);
        return;
    }
    requestRwMount(mySicad, printFlag, EFileId_McuFileSystem1);
    requestRwMount(mySicad, printFlag, EFileId_McuFileSystem2);
    receiveMountResp(printFlag);
    receiveMountResp(printFlag);
}

void requestRwMount(TAaSysComSicad mySicad, uint32_t printFlag, uint32_t fsId)
{
    void* message = AaSysComMsgCreate(API_MOUNT_REQ_MSG, sizeof(SApiMountReq),
                                      AaSysComSicadGet(API_MOUNT_SERVICE_CPID, API_MOUNT_SERVICE_NID));
    if (!message) {
        return;
    }
    const SApiMountReq request{fsId, anyType, EFileSystemAccess_ReadWrite};
    std::memcpy(AaSysComMsgGetPayload(message), &request, sizeof request);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, printFlag, "%s(): Requesting RW mount for fs 0x%X.", __func__, fsId);
    AaSysComMsgSendS(&message, mySicad);
}

void receiveMountResp(uint32_t printFlag)
{
    constexpr std::array<std::uint16_t, 2> filter{1, API_MOUNT_RESP_MSG};
    void* message = hwapiMsgQueueReceiveSelective(responseTimeout, filter.data());
    if (!message) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, printFlag, "%s(): Timeout for API_MOUNT_RESP_MSG", __func__);
        return;
    }
    const SApiMountResp response = contentOf(message);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, printFlag,
                   "%s(): Received API_MOUNT_RESP_MSG (fsId 0x%X, type 0x%X, mode 0x%X, success_code 0x%X) from 0x%X.",
                   __func__, response.filesystem_id, response.filesystem_type, response.filesystem_access,
                   response.success_code, AaSysComMsgGetSender(message));
    AaSysComMsgDestroy(&message);
}

TBoolean isMountNeeded(uint32_t printFlag, uint32_t ddalFfsId, uint32_t flags)
{
    const auto id = static_cast<std::int32_t>(ddalFfsId);
    std::uint32_t mode = DDAL_FFS_READ_ONLY;
    const std::int32_t result = ddal_ffs_is_mounted(ddalFfsId, &mode);
    if (result != DDAL_OK) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, printFlag,
                       "%s(): ddal_ffs_is_mounted() for FS %d (0x%X) FAILED. Returned %d", __func__, id, ddalFfsId,
                       result);
        return 1;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, printFlag,
                   "%s(): ddal_ffs_is_mounted() for FS %d (0x%X) OK. Current mount mode is %s (%d).", __func__, id,
                   ddalFfsId, modeName(mode == DDAL_FFS_READ_WRITE), static_cast<std::int32_t>(mode));
    const bool isSo =
        (mode == DDAL_FFS_READ_ONLY && flags == readOnly) || (mode == DDAL_FFS_READ_WRITE && flags == readWrite);
    if (!isSo) {
        return 1;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, printFlag,
                   "%s(): %d (0x%X) is in the requested mode %s already, do nothing", __func__, id, ddalFfsId,
                   modeName(flags == readWrite));
    return 0;
}
