// SPDX-License-Identifier: MIT
#include "MountS.hpp"

#include "AaSysLog.h"
#include "Answer.hpp"
#include "OwnUnit.hpp"
#include "description/BoardFailure.hpp"
#include "description/DescribedBoard.hpp"
#include "device/FileSystem.hpp"

namespace dorn::examples {
namespace {

/// The flash file system with an identifier of messages; the driver counts them from 1. @throws board::BoardFailure
board::FileSystem fileSystem(std::uint32_t fileId)
{
    if (fileId != EFileId_McuFileSystem1 && fileId != EFileId_McuFileSystem2) {
        throw board::BoardFailure(DDAL_ERROR_NOT_FOUND, "file " + std::to_string(fileId) + " is no file system");
    }
    return board::FileSystem(board::DescribedBoard::get().part("file-systems", fileId - EFileId_McuFileSystem1 + 1));
}

/// Mounts the file system that @p response names, and fills in what became of it. @throws board::BoardFailure
void mount(std::uint32_t access, SApiMountResp& response)
{
    const board::FileSystem files = fileSystem(response.filesystem_id);
    response.filesystem_access = files.mode();
    if (access > EFileSystemAccess_ReadWrite) {
        throw board::BoardFailure(DDAL_ERROR_INVALID_ARGUMENT, "there is no access " + std::to_string(access));
    }
    files.mount(access);
    response.filesystem_access = access;
}

} // namespace

MountS::MountS() : Service("MountS", API_MOUNT_SERVICE_CPID, ERadHwapi_FLASH, ERadHwapiState_SwDlState) {}

void MountS::Init()
{
    logOwnUnit(GetRadId());
    AddMsgHandler(&MountS::HandleMount);
}

void MountS::HandleMount(ApiMountReqMsg request)
{
    SApiMountResp response{DDAL_OK, request->filesystem_id, EFileSystemType_UbiFs, EFileSystemAccess_None};
    try {
        mount(request->filesystem_access, response);
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "File system %u mounted with access %u",
                       response.filesystem_id, response.filesystem_access);
    } catch (const board::BoardFailure& failure) {
        response.success_code = static_cast<std::uint32_t>(failure.code());
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "File system %u not mounted: %s",
                       response.filesystem_id, failure.what());
    }
    answerTo<ApiMountRespMsg>(request, *this, [&](ApiMountRespMsg answer) { *answer.GetPayload() = response; });
}

} // namespace dorn::examples
