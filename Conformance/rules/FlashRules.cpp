// SPDX-License-Identifier: MIT
// Flashing.
#include "Check.hpp"
#include "Options.hpp"
#include "Rules.hpp"
#include "ddal_boot.h"
#include "ddal_fpga.h"

#include <array>
#include <string>

namespace dorn::conformance {
namespace {

void bootLoaderIsFlashed()
{
    if (!options().bootImage) {
        skip("name a boot loader that the board may be given with --boot-image");
    }
    int32_t before = -1;
    int32_t after = -2;
    ddal_boot_get_uboot_id(&before);
    expectEqual(ddal_boot_update_uboot(options().bootImage->c_str()), DDAL_OK,
                "ddal_boot_update_uboot() of " + *options().bootImage);
    ddal_boot_get_uboot_id(&after);
    expectEqual(after, before, "where the boot loader was started from, after another was flashed");
}

void fpgaIsFlashed()
{
    if (!options().fpga || !options().fpgaImage) {
        skip("name an FPGA and an image that it may be given with --fpga and --fpga-image");
    }
    const uint32_t fpga = *options().fpga;
    uint32_t before = 0;
    uint32_t after = 1;
    ddal_fpga_get_active_version(fpga, &before);
    const char* const image = options().fpgaImage->c_str();
    expectEqual(ddal_fpga_update_mod(fpga, 77, image), DDAL_ERROR_INVALID_ARGUMENT,
                "ddal_fpga_update_mod() of slot 77");
    expectEqual(ddal_fpga_update_mod(fpga, DDAL_FPGA_SLOT_PRIMARY, image), DDAL_OK,
                "ddal_fpga_update_mod() of " + *options().fpgaImage);
    ddal_fpga_get_active_version(fpga, &after);
    expectEqual(after, before, "the active version after another image was flashed");
}

constexpr std::array rules{
    Rule{"flash.boot-loader-is-flashed", "ddal_boot.h", "ddal_boot_update_uboot",
         "A boot loader is flashed with result 0; what ddal_boot_get_uboot_id() says does not change before the reset",
         bootLoaderIsFlashed, Effect::Destructive},
    Rule{
        "flash.fpga-is-flashed", "ddal_fpga.h", "ddal_fpga_update_mod",
        "An image is flashed with result 0 and the active version does not change by it; an unknown slot is an invalid "
        "argument",
        fpgaIsFlashed, Effect::Destructive},
};

} // namespace

Rules flashRules()
{
    return rules;
}

} // namespace dorn::conformance
