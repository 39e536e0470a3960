// SPDX-License-Identifier: MIT
#include "Usage.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <unistd.h>

namespace dorn::soak {
namespace {

std::string folderOf(pid_t pid)
{
    return "/proc/" + std::to_string(pid);
}

std::size_t entriesIn(const std::string& folder)
{
    std::error_code error;
    const std::filesystem::directory_iterator begin(folder, error);
    return error ? 0 : static_cast<std::size_t>(std::distance(begin, std::filesystem::directory_iterator()));
}

std::size_t kilobytesOf(pid_t pid)
{
    std::ifstream file(folderOf(pid) + "/status");
    for (std::string word; file >> word;) {
        if (word == "VmRSS:") {
            std::size_t kilobytes = 0;
            file >> kilobytes;
            return kilobytes;
        }
    }
    return 0;
}

std::size_t childrenOf(pid_t pid)
{
    std::ifstream file(folderOf(pid) + "/task/" + std::to_string(pid) + "/children");
    return static_cast<std::size_t>(std::distance(std::istream_iterator<pid_t>(file), std::istream_iterator<pid_t>()));
}

std::size_t filesBelow(const std::string& folder)
{
    std::error_code error;
    const std::filesystem::recursive_directory_iterator begin(folder, error);
    return error ? 0 : static_cast<std::size_t>(std::distance(begin, std::filesystem::recursive_directory_iterator()));
}

std::string grown(const char* what, std::size_t before, std::size_t now, std::size_t allowed)
{
    return now <= before + allowed
               ? ""
               : std::string(what) + " have grown from " + std::to_string(before) + " to " + std::to_string(now) + "; ";
}

} // namespace

Usage usageOf(const std::vector<pid_t>& services, const std::string& runDirectory)
{
    Usage usage;
    usage.descriptors = entriesIn("/proc/self/fd");
    usage.children = childrenOf(getpid());
    usage.ownKilobytes = kilobytesOf(getpid());
    usage.files = filesBelow(runDirectory);
    for (const pid_t service : services) {
        usage.serviceDescriptors += entriesIn(folderOf(service) + "/fd");
        usage.serviceKilobytes += kilobytesOf(service);
    }
    return usage;
}

std::string growth(const Usage& before, const Usage& now)
{
    constexpr std::size_t someDescriptors = 100;     // the logs of 64 processes that have ended are kept, and read
    constexpr std::size_t someKilobytes = 16 * 1024; // logs and tables are mapped as they fill
    constexpr std::size_t someFiles = 64;            // the logs of the latest processes are kept
    return grown("own descriptors", before.descriptors, now.descriptors, someDescriptors) +
           grown("children", before.children, now.children, 0) +
           grown("own kilobytes", before.ownKilobytes, now.ownKilobytes, someKilobytes) +
           grown("descriptors of services", before.serviceDescriptors, now.serviceDescriptors,
                 before.serviceDescriptors / 2) +
           grown("kilobytes of services", before.serviceKilobytes, now.serviceKilobytes, before.serviceKilobytes / 2) +
           grown("files", before.files, now.files, someFiles);
}

std::string usageText(const Usage& usage)
{
    return "own: " + std::to_string(usage.descriptors) + " descriptors, " + std::to_string(usage.children) +
           " children, " + std::to_string(usage.ownKilobytes) +
           " KiB; services: " + std::to_string(usage.serviceDescriptors) + " descriptors, " +
           std::to_string(usage.serviceKilobytes) + " KiB; " + std::to_string(usage.files) + " files";
}

} // namespace dorn::soak
