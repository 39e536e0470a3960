// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Program.hpp"
#include "new/NewService.hpp"
#include "text/Json.hpp"
#include "text/Values.hpp"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <system_error>

namespace dorn::tool {
namespace {

constexpr const char* firstOwnCpid = "0x0300"; // the examples' are below

struct ServiceOptions {
    std::string name;
    std::string directory;
    std::string cpid = firstOwnCpid;
    bool asJson = false;
};

/// Where the library is installed that this command was installed with; empty where CMake looks by itself. A command
/// that was not installed knows none.
std::string installationPrefix()
{
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path prefix = program.parent_path().parent_path();
    if (error || prefix == "/usr" || prefix == "/usr/local" || prefix == "/") {
        return "";
    }
    return std::filesystem::exists(prefix / DORN_CMAKE_FOLDER, error) ? prefix.string() : "/where/dorn/is/installed";
}

NewService wishOf(const ServiceOptions& options)
{
    checkServiceName(options.name);
    const auto cpid = parseUnsigned<std::uint16_t>("--cpid", options.cpid);
    if (cpid == 0) {
        throw UsageError("--cpid: 0 is no address");
    }
    return {options.name, options.directory.empty() ? options.name : options.directory, cpid, installationPrefix()};
}

std::string madeText(const NewService& service, const std::vector<ServiceFile>& files)
{
    std::string text = "Made the service " + service.name + " in " + service.directory + ":\n ";
    for (const ServiceFile& file : files) {
        text += " " + file.name;
    }
    return text + "\nBuild it and run its test:\n  cd " + shellWord(service.directory) + "\n  cmake -S . -B build" +
           prefixOption(service.prefix) +
           "\n  cmake --build build && ctest --test-dir build --output-on-failure\nREADME.md tells how to run it.\n";
}

Json madeJson(const NewService& service, const std::vector<ServiceFile>& files)
{
    Json names = Json::array();
    for (const ServiceFile& file : files) {
        names.push_back(file.name);
    }
    return {{"name", service.name},
            {"executable", "Dorn" + service.name + "Exe"},
            {"directory", service.directory},
            {"files", names}};
}

Outcome makeService(const ServiceOptions& options, Console& console)
{
    const NewService service = wishOf(options);
    const std::vector<ServiceFile> files = filesOf(service);
    makeFolder(service.directory, files);
    console.print(options.asJson ? jsonText(madeJson(service, files)) : madeText(service, files));
    return Outcome::Fine;
}

} // namespace

void addNewNoun(Program& program)
{
    CLI::App& noun = program.addNoun("new", "Begins something of your own");
    const auto options = std::make_shared<ServiceOptions>();
    CLI::App& verb = program.addVerb(
        noun, {"service", "Makes a folder with a service, its test and what builds them", "dorn new service Fan"},
        [options](Console& console) { return makeService(*options, console); });
    verb.add_option("NAME", options->name, "Name of the service: Fan gives the executable DornFanExe")->required();
    verb.add_option("--directory", options->directory, "Folder to make; NAME, where you are, without it")
        ->type_name("D");
    verb.add_option("--cpid", options->cpid, std::string("Address of the service; ") + firstOwnCpid + " without it")
        ->type_name("N");
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

} // namespace dorn::tool
