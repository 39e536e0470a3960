// SPDX-License-Identifier: MIT
#include "FirmwareS.hpp"

#include "AaSysLog.h"
#include "Answer.hpp"
#include "FpgaUpdate.hpp"
#include "OwnUnit.hpp"
#include "ddal_watchdog.h"

namespace dorn::examples {
namespace {

/// In the order of EFirmwareOutcome.
constexpr std::array<const char*, 5> outcomeTexts{"flashed, in use from the next reset on", "up to date",
                                                  "updates are switched off", "refused", "failed"};
static_assert(outcomeTexts.size() == EFirmwareOutcome_Failed + 1);

} // namespace

FirmwareS::FirmwareS() : Service("FirmwareS", firmwareServiceCpid, ERadHwapi_SWDL, ERadHwapiState_AdetFirmwareFpgaState)
{
    GetArgumentParser().SetArgumentInfo("-v Switch this service's prints on\n");
}

unsigned int FirmwareS::PreStartup()
{
    SetVerbose(GetArgumentParser().ReadArgument("v") == "arg on" ? 1 : 0);
    return 1;
}

void FirmwareS::Init()
{
    logOwnUnit(GetRadId());
    AddMsgHandler(&FirmwareS::HandleUpdate);
    AddMsgHandler(&FirmwareS::HandleReset);
}

void FirmwareS::HandleUpdate(FirmwareUpdateReqMsg request)
{
    answerTo<FirmwareUpdateRespMsg>(request, *this, [&](FirmwareUpdateRespMsg answer) {
        const SFirmwareUpdateResp report = updateFpga();
        const bool isBad = report.outcome >= EFirmwareOutcome_Refused;
        AaSysLogPrintE(isBad ? EAaSysLogSeverityLevel_Error : EAaSysLogSeverityLevel_Info, GetRadId(),
                       "FPGA version 0x%X, image '%s': %s (%d)", report.activeVersion, report.file.data(),
                       outcomeTexts.at(report.outcome), report.result);
        *answer.GetPayload() = report;
    });
}

void FirmwareS::HandleReset(BoardResetReqMsg request)
{
    const std::int32_t result = ddal_watchdog_reboot(); // returns only when it fails
    AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "The board is not reset (%d) although 0x%08X asks for it",
                   result, request.GetSender());
}

} // namespace dorn::examples
