// SPDX-License-Identifier: MIT
// A process of a test's board: `BoardProgram WORK [ARGUMENTS...]` says what it has done.
#include "ddal_ffs.h"
#include "ddal_fpga.h"
#include "ddal_rio.h"
#include "ddal_watchdog.h"
#include "node/EeTable.hpp"
#include "node/PerNode.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using Arguments = std::vector<std::string>;

std::uint32_t number(const std::string& text)
{
    return static_cast<std::uint32_t>(std::strtoul(text.c_str(), nullptr, 0));
}

void say(const std::string& text)
{
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
}

/// Enters the node's list of processes, as every service does.
void enter(const std::string& name)
{
    dorn::host::PerNode<dorn::host::EeTable>::get().enter(name, 0x0300);
}

/// live: is a service of the node until somebody kills it
void live(const Arguments&)
{
    enter("Living");
    say("lives");
    for (;;) {
        pause();
    }
}

/// reboot: says what the watchdog returns, if it does
void reboot(const Arguments&)
{
    enter("Rebooting");
    say("watchdog returned " + std::to_string(ddal_watchdog_reboot()));
}

/// count CALLS: says how many calls have failed
void count(const Arguments& arguments)
{
    unsigned failed = 0;
    for (std::uint32_t call = 0; call < number(arguments.at(0)); ++call) {
        std::uint32_t version = 0;
        failed += ddal_fpga_get_active_version(1, &version) != DDAL_OK ? 1 : 0;
    }
    say(std::to_string(failed));
}

/// write ADDRESS TEXT: to the memory of the DSP
void write(const Arguments& arguments)
{
    std::int32_t handle = -1;
    ddal_rio_copy_open_fd(0, 0x10, DDAL_RIO_WRITE, &handle);
    say(std::to_string(ddal_rio_copy_to_fd(handle, number(arguments.at(0)), arguments.at(1).data(),
                                           static_cast<std::uint32_t>(arguments.at(1).size()))));
}

/// read ADDRESS SIZE: from the memory of the DSP
void read(const Arguments& arguments)
{
    std::int32_t handle = -1;
    std::string text(number(arguments.at(1)), '#');
    ddal_rio_copy_open_fd(0, 0x10, DDAL_RIO_READ, &handle);
    ddal_rio_copy_from_fd(handle, number(arguments.at(0)), text.data(), number(arguments.at(1)));
    say(text);
}

/// version: of FPGA 0x10002
void version(const Arguments&)
{
    std::uint32_t version = 0;
    ddal_fpga_get_active_version(0x10002, &version);
    say(std::to_string(version));
}

/// mode ID: of a file system
void mode(const Arguments& arguments)
{
    std::uint32_t mode = 0;
    ddal_ffs_is_mounted(number(arguments.at(0)), &mode);
    say(std::to_string(mode));
}

/// flash PATH...: flashes the images in turn, for ever
void flash(const Arguments& arguments)
{
    say("flashes");
    for (std::size_t round = 0;; ++round) {
        ddal_fpga_update_mod(0x10002, DDAL_FPGA_SLOT_PRIMARY, arguments.at(round % arguments.size()).c_str());
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::map<std::string, void (*)(const Arguments&)> works{
        {"live", live}, {"reboot", reboot},   {"count", count}, {"write", write},
        {"read", read}, {"version", version}, {"mode", mode},   {"flash", flash}};
    if (argc < 2 || !works.contains(argv[1])) {
        return 2;
    }
    works.at(argv[1])(Arguments(argv + 2, argv + argc));
    return 0;
}
