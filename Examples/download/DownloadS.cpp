// SPDX-License-Identifier: MIT
#include "DownloadS.hpp"

#include "AaSysLog.h"
#include "Answer.hpp"
#include "OwnUnit.hpp"
#include "mount.h"
#include "rioDio.h"

#include <array>
#include <cstring>
#include <limits>
#include <string>

namespace dorn::examples {
namespace {

constexpr std::array<std::uint32_t, 2> flashFileSystems{1, 2}; // the driver's numbers
constexpr std::uint32_t readWrite = 1;

struct Transfer {
    std::int32_t writeResult = ERioWrite_Failed;
    std::int32_t validationResult = -1;
};

Transfer transfer(const SDownloadReq& request)
{
    Transfer result;
    if (request.device > std::numeric_limits<std::uint16_t>::max()) {
        return result;
    }
    const auto device = static_cast<std::uint16_t>(request.device);
    const std::uint64_t address = std::uint64_t{request.addressHigh} << 32 | request.addressLow;
    const std::string file(request.file.data(), strnlen(request.file.data(), request.file.size()));
    result.writeResult = writeBinaryFileToSrio(device, address, file.c_str());
    if (result.writeResult != ERioWrite_Done) {
        return result;
    }
    result.validationResult = validateSrioWrite(device, address, file.c_str());
    if (result.validationResult != 0) {
        std::array<char, RIO_DUMP_FILE_NAME_SIZE> name{};
        DumpDataToFile(&request, sizeof request, device, "download", name.data());
    }
    return result;
}

} // namespace

DownloadS::DownloadS() : Service("DownloadS", downloadServiceCpid, ERadHwapi_SWDL, ERadHwapiState_SrioState) {}

void DownloadS::Init()
{
    logOwnUnit(GetRadId());
    AddMsgHandler(&DownloadS::HandleDownload);
}

bool DownloadS::makeWritable()
{
    const auto isNeeded = [this] {
        bool isAnyNeeded = false;
        for (const std::uint32_t fileSystem : flashFileSystems) {
            isAnyNeeded = isMountNeeded(GetRadId(), fileSystem, readWrite) != 0 || isAnyNeeded;
        }
        return isAnyNeeded;
    };
    if (!isNeeded()) {
        return true;
    }
    MountFilesystemsToRwMode(GetSicad(), GetRadId());
    return !isNeeded();
}

void DownloadS::HandleDownload(DownloadReqMsg request)
{
    const bool isWritable = makeWritable();
    const Transfer result = transfer(*request.GetPayload());
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "Download to device 0x%X: %s", request->device,
                   result.validationResult == 0 ? "verified" : "failed");
    answerTo<DownloadRespMsg>(request, *this, [&](DownloadRespMsg answer) {
        answer->writeResult = result.writeResult;
        answer->validationResult = result.validationResult;
        answer->isWritable = isWritable ? 1 : 0;
    });
}

} // namespace dorn::examples
