// SPDX-License-Identifier: MIT
#include "FpgaUpdate.hpp"

#include "binary.h"
#include "ddal_devicetree.h"
#include "ddal_fpga.h"
#include "firmware.h"

#include <algorithm>
#include <cstdio>

namespace dorn::examples {
namespace {

constexpr const char* imageDirectory = "/ffs/run/boot";

/// What get_fpga() gives.
struct Fpga {
    const char* name = nullptr;
    const char* chip = nullptr;
    std::uint32_t id = 0;

    Fpga() { get_fpga(&name, &chip, &id); }
};

SFirmwareUpdateResp report(EFirmwareOutcome outcome, std::int32_t result, const char* file)
{
    SFirmwareUpdateResp report{};
    report.outcome = outcome;
    report.result = result;
    std::snprintf(report.file.data(), report.file.size(), "%s", file);
    ddal_fpga_get_active_version(Fpga().id, &report.activeVersion); // stays 0 when that fails
    return report;
}

/// All checks of an image; what is wrong with it goes to the log.
std::int32_t validate(const char* file)
{
    std::uint32_t hwSwId = 0;
    const bool isKnown = ddal_devicetree_get_hw_sw_id(0, &hwSwId) == DDAL_OK;
    return isKnown ? binary_validate(file, hwSwId) : static_cast<std::int32_t>(FIRMWARE_HWSWID_NOT_READ);
}

/// Tells of the first image that is called as the FPGA's why it does not fit.
SFirmwareUpdateResp whyNoneFits()
{
    constexpr std::int32_t most = 10;
    char files[most][FIRMWARE_FILE_NAME_SIZE] = {};
    const std::int32_t count = std::min(find_binary_multiple(imageDirectory, nullptr, Fpga().chip, files, most), most);
    for (std::int32_t index = 0; index < count; ++index) {
        if (const std::int32_t result = validate(files[index]); result > 0) {
            return report(EFirmwareOutcome_Refused, result, files[index]);
        }
    }
    return report(EFirmwareOutcome_Failed, FIRMWARE_NO_IMAGE, "");
}

} // namespace

SFirmwareUpdateResp updateFpga()
{
    if (is_firmware_update_disabled()) {
        return report(EFirmwareOutcome_Disabled, 0, "");
    }
    char file[FIRMWARE_FILE_NAME_SIZE] = {};
    const std::int32_t needed = is_fpga_update_needed(file, sizeof file);
    if (needed == FIRMWARE_NO_IMAGE) {
        return whyNoneFits();
    }
    if (needed < 0) {
        return report(EFirmwareOutcome_Failed, needed, "");
    }
    if (needed == 0 && !is_firmware_update_forced("fpga")) {
        return report(EFirmwareOutcome_UpToDate, 0, file);
    }
    if (const std::int32_t result = validate(file); result > 0) {
        return report(EFirmwareOutcome_Refused, result, file);
    }
    const std::int32_t result = update_fpga(file);
    return report(result == 0 ? EFirmwareOutcome_Flashed : EFirmwareOutcome_Failed, result, file);
}

} // namespace dorn::examples
