// SPDX-License-Identifier: MIT
// Result texts, boot loader, FPGAs and file systems, as far as they can be asked without changing the board.
#include "Check.hpp"
#include "Guarded.hpp"
#include "Options.hpp"
#include "Rules.hpp"
#include "ddal_boot.h"
#include "ddal_error.h"
#include "ddal_ffs.h"
#include "ddal_fpga.h"

#include <array>
#include <cctype>
#include <climits>
#include <string>

namespace dorn::conformance {
namespace {

constexpr uint32_t nowhere = 0xFFFFFFF0;
constexpr const char* missingFile = "/dorn-conformance/no-such-image";

std::string resultText(int32_t code, std::size_t size = 128)
{
    Guarded buffer(size);
    const std::string what = "ddal_strerror(" + std::to_string(code) + ")";
    expectEqual(ddal_strerror(code, buffer.data(), static_cast<uint32_t>(size - 1)), DDAL_OK, what);
    return buffer.text(what);
}

void everyResultHasAText()
{
    for (int32_t code = DDAL_OK; code <= DDAL_ERROR_NOT_SUPPORTED; ++code) {
        const std::string text = resultText(code);
        expect(!text.empty(), "the text of result " + std::to_string(code) + " is empty");
        expect(text.back() != '.', "the text of result " + std::to_string(code) + " ends in a full stop: " + text);
    }
    for (const int32_t code : {4711, -4711}) {
        expect(resultText(code).find(std::to_string(code)) != std::string::npos,
               "the text of result " + std::to_string(code) + ", which is none, does not have its number");
    }
}

void resultTextsAreCut()
{
    const std::string whole = resultText(DDAL_ERROR_TIMEOUT);
    for (std::size_t size = 1; size <= whole.size() + 2; ++size) {
        expectEqual(resultText(DDAL_ERROR_TIMEOUT, size), whole.substr(0, size - 1),
                    "the text in a buffer of " + std::to_string(size) + " bytes");
    }
    expectEqual(ddal_strerror(DDAL_OK, nullptr, 10), DDAL_ERROR_INVALID_ARGUMENT, "ddal_strerror() into null");
    char character = 'x';
    expectEqual(ddal_strerror(DDAL_OK, &character, 0xFFFFFFFFU), DDAL_ERROR_INVALID_ARGUMENT,
                "ddal_strerror() with a length that cannot be");
}

void bootLocationIsRead()
{
    int32_t location = INT_MIN;
    const int32_t result = ddal_boot_get_uboot_id(&location);
    expectEqual(ddal_boot_get_uboot_id(nullptr), DDAL_ERROR_INVALID_ARGUMENT, "ddal_boot_get_uboot_id() into null");
    if (result == DDAL_ERROR_NOT_FOUND) {
        skip("the board does not tell where its boot loader was started from: result 5, not found");
    }
    expectEqual(result, DDAL_OK, "ddal_boot_get_uboot_id()");
    expect(location != INT_MIN, "ddal_boot_get_uboot_id() returned 0 and stored nothing");
}

void bootVersionIsRead()
{
    Guarded buffer(DDAL_BOOT_VERSION_SIZE);
    const int32_t result = ddal_boot_get_uboot_version(buffer.data());
    expectEqual(ddal_boot_get_uboot_version(nullptr), DDAL_ERROR_INVALID_ARGUMENT,
                "ddal_boot_get_uboot_version() into null");
    if (result == DDAL_ERROR_NOT_FOUND) {
        skip("the board has no version of its boot loader: result 5, not found");
    }
    expectEqual(result, DDAL_OK, "ddal_boot_get_uboot_version()");
    const std::string version = buffer.text("ddal_boot_get_uboot_version()");
    expect(!version.empty() && std::isdigit(static_cast<unsigned char>(version.front())) != 0,
           "the version does not begin with a decimal number: '" + version + "'");
}

void missingBootImageIsRefused()
{
    expectEqual(ddal_boot_update_uboot(missingFile), DDAL_ERROR_BAD_FILE,
                "ddal_boot_update_uboot() of a file that is not there");
    expectEqual(ddal_boot_update_uboot(nullptr), DDAL_ERROR_INVALID_ARGUMENT, "ddal_boot_update_uboot(null)");
}

/// An FPGA of the board: the one that was named, or the board-management unit.
uint32_t anyFpga()
{
    if (options().fpga) {
        return *options().fpga;
    }
    for (const uint32_t fpga : {0U, 1U}) {
        uint32_t version = 0;
        if (ddal_fpga_get_active_version(fpga, &version) == DDAL_OK) {
            return fpga;
        }
    }
    skip("the board has neither FPGA 0 nor 1, the board-management unit; name another one with --fpga");
}

void fpgaVersionIsRead()
{
    uint32_t version = 0;
    uint32_t again = 1;
    uint32_t untouched = 77;
    expectEqual(ddal_fpga_get_active_version(nowhere, &untouched), DDAL_ERROR_NOT_FOUND,
                "ddal_fpga_get_active_version() of an FPGA that is not there");
    expectEqual(untouched, 77U, "what it was to store into");
    const uint32_t fpga = anyFpga();
    expectEqual(ddal_fpga_get_active_version(fpga, &version), DDAL_OK,
                "ddal_fpga_get_active_version() of FPGA " + std::to_string(fpga));
    expectEqual(ddal_fpga_get_active_version(fpga, &again), DDAL_OK, "the same asked again");
    expectEqual(again, version, "the version asked again");
    expectEqual(ddal_fpga_get_active_version(fpga, nullptr), DDAL_ERROR_INVALID_ARGUMENT,
                "ddal_fpga_get_active_version() into null");
}

void missingFpgaImageIsRefused()
{
    const uint32_t fpga = anyFpga();
    expectEqual(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, missingFile), DDAL_ERROR_BAD_FILE,
                "ddal_fpga_update_mod() of a file that is not there");
    expectEqual(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, nullptr), DDAL_ERROR_INVALID_ARGUMENT,
                "ddal_fpga_update_mod() without file");
}

void fileSystemModeIsRead()
{
    uint32_t untouched = 77;
    expectEqual(ddal_ffs_is_mounted(nowhere, &untouched), DDAL_ERROR_NOT_FOUND,
                "ddal_ffs_is_mounted() of a file system that is not there");
    expectEqual(untouched, 77U, "what it was to store into");
    const uint32_t fileSystem = options().fileSystem.value_or(1);
    uint32_t mode = 0xFFFF0000;
    const int32_t result = ddal_ffs_is_mounted(fileSystem, &mode);
    if (result == DDAL_ERROR_NOT_FOUND && !options().fileSystem) {
        skip("the board has no file system 1; name one with --file-system");
    }
    expectEqual(result, DDAL_OK, "ddal_ffs_is_mounted(" + std::to_string(fileSystem) + ")");
    expect(mode != 0xFFFF0000, "ddal_ffs_is_mounted() returned 0 and stored nothing");
    expectEqual(ddal_ffs_is_mounted(fileSystem, nullptr), DDAL_ERROR_INVALID_ARGUMENT,
                "ddal_ffs_is_mounted() into null");
}

constexpr std::array rules{
    Rule{"driver.every-result-has-a-text", "ddal_error.h", "ddal_strerror",
         "Every result has a text without a full stop; one that is none has its number in it", everyResultHasAText},
    Rule{"driver.result-texts-are-cut", "ddal_error.h", "ddal_strerror",
         "A text that is longer than maxLength characters is cut; null, and a length that cannot be, are invalid "
         "arguments",
         resultTextsAreCut},
    Rule{"driver.boot-location-is-read", "ddal_boot.h", "ddal_boot_get_uboot_id",
         "Where the boot loader was started from is stored; null is an invalid argument", bootLocationIsRead},
    Rule{"driver.boot-version-is-read", "ddal_boot.h", "ddal_boot_get_uboot_version",
         "The boot loader's version is a terminated text that begins with a decimal number, in 64 bytes",
         bootVersionIsRead},
    Rule{"driver.missing-boot-image-is-refused", "ddal_boot.h", "ddal_boot_update_uboot",
         "A boot loader that cannot be read is DDAL_ERROR_BAD_FILE, and nothing is flashed", missingBootImageIsRefused},
    Rule{"driver.fpga-version-is-read", "ddal_fpga.h", "ddal_fpga_get_active_version",
         "An FPGA's active version is stored; one that is not there is DDAL_ERROR_NOT_FOUND", fpgaVersionIsRead},
    Rule{"driver.missing-fpga-image-is-refused", "ddal_fpga.h", "ddal_fpga_update_mod",
         "An image that cannot be read is DDAL_ERROR_BAD_FILE, and nothing is flashed", missingFpgaImageIsRefused},
    Rule{"driver.file-system-mode-is-read", "ddal_ffs.h", "ddal_ffs_is_mounted",
         "How a file system is mounted is stored, also that it is not; one that is not there is DDAL_ERROR_NOT_FOUND",
         fileSystemModeIsRead},
};

} // namespace

Rules driverRules()
{
    return rules;
}

} // namespace dorn::conformance
