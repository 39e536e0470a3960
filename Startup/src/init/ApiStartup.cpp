// SPDX-License-Identifier: MIT
#include "init/ApiStartup.h"

#include "AaConfigRad.h"
#include "AaConfigTag.h"
#include "AaStartup.h"
#include "AaSysLog.h"
#include "hwapiMsgQueue.h"
#include "rad/RadHwapiStateTable.hpp"
#include "rad/RadHwapiTable.hpp"

#include <cstdint>
#include <cstdio>
#include <span>

using vel::hwapi::common::RadParameter;

namespace {

constexpr const char* configurationFile = "/opt/dorn/dorn.xml";

bool startEe(const char* program, const char* name, std::uint16_t tbts)
{
    std::int32_t status = 0;
    if (AaConfigEarlyStartup() != 0) {
        // The number that belongs into this line is the status of the next step, which has not run: always 0.
        std::printf("%s: AaConfigEarlyStartup() failed %d\n", program, status);
        return false;
    }
    AaConfigTagSetString("tessel.service.aapro.eename", name);
    AaConfigTagSetU16("tessel.service.aatbts.cpid", tbts);
    status = AaStartupEeStartup();
    if (status != 0) {
        std::printf("%s: AaStartupEeStartup() failed %d\n", program, status);
        return false;
    }
    return true;
}

bool registerRadDomains()
{
    std::int32_t status = AaConfigRadRegisterDomain(RAD_HWAPI_DOMAIN, "HWA", ApiStartupInitializeRadParameters);
    if (status != 0) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "Dorn, R&D domain register failed %d", status);
        return false;
    }
    status = AaConfigRadRegisterDomain(RAD_HWAPI_STATE_DOMAIN, "HWAState", ApiStartupInitializeStateRadParameters);
    if (status != 0) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "HWAState, R&D domain register failed %d", status);
        return false;
    }
    return true;
}

void declareParameters(std::uint16_t domain, std::uint32_t last, std::span<const RadParameter> table)
{
    AaConfigRadSetMaxTagCount(domain, last);
    for (const RadParameter& parameter : table) {
        AaConfigRadSetDefault(parameter.id, parameter.name, parameter.defaultValue);
    }
}

} // namespace

TBoolean ApiStartupInitializeExecutable(std::int32_t argc, char** argv, const char* name, std::uint16_t tbts)
{
    const char* program = argc > 0 && argv && argv[0] ? argv[0] : "";
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    std::printf("%s: EE Start...\n", program);

    if (!startEe(program, name, tbts)) {
        return 0;
    }
    AaConfigTagReadFile(configurationFile);
    AaSysLogPrint(EAaSysLogSeverityLevel_Info, "Dorn, Tessel EE initialization done");

    const bool registered = registerRadDomains();
    hwapiMsgQueueCreateAccessMutex();
    return registered ? 1 : 0;
}

void ApiStartupInitializeRadParameters()
{
    declareParameters(RAD_HWAPI_DOMAIN, ERadHwapi_Last, vel::hwapi::common::radHwapiTable);
}

void ApiStartupInitializeStateRadParameters()
{
    declareParameters(RAD_HWAPI_STATE_DOMAIN, ERadHwapiState_Last, vel::hwapi::common::radHwapiStateTable);
}
