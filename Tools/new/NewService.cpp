// SPDX-License-Identifier: MIT
#include "new/NewService.hpp"

#include "Outcome.hpp"
#include "files/NewFile.hpp"
#include "new/ServiceTemplate.hpp"
#include "port/FilePort.hpp"
#include "text/Values.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace dorn::tool {
namespace {

constexpr std::size_t longestName = 32; // the node's list of processes holds 39 characters

/// Macros of the headers that a service includes.
constexpr auto macros = std::to_array<std::string_view>({"ASSERT", "EOF", "NULL", "TEST"});

bool isUpperCamelCase(const std::string& name)
{
    const auto isPlain = [](unsigned char c) { return c < 0x80 && std::isalnum(c) != 0; };
    return !name.empty() && name.front() >= 'A' && name.front() <= 'Z' &&
           std::all_of(name.begin(), name.end(), isPlain);
}

bool isIn(std::span<const std::string_view> names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string replaced(std::string text, std::string_view from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/// "ServiceTest.cpp.in" is "FanTest.cpp" in the folder.
std::string fileName(std::string_view templateName, const std::string& serviceName)
{
    constexpr std::string_view ending = ".in";
    constexpr std::string_view general = "Service";
    std::string name(templateName.substr(0, templateName.size() - ending.size()));
    if (name == "gitignore") {
        return ".gitignore"; // which would be at work among the templates
    }
    return name.starts_with(general) ? serviceName + name.substr(general.size()) : name;
}

/// A folder that goes with all that is in it, unless it is kept.
class NewFolder {
public:
    explicit NewFolder(std::string path) : m_path(std::move(path))
    {
        const int result = host::FilePort::get().makeDirectory(AT_FDCWD, m_path.c_str(), 0777);
        if (result == -EEXIST) {
            m_isKept = true;
            throw Failure("'" + m_path + "' is there already, and is left as it is; --directory names another folder");
        }
        if (result < 0) {
            m_isKept = true;
            throw Failure("'" + m_path + "' cannot be made: " + std::strerror(-result));
        }
    }
    ~NewFolder()
    {
        std::error_code ignored;
        if (!m_isKept) {
            std::filesystem::remove_all(m_path, ignored);
        }
    }
    NewFolder(const NewFolder&) = delete;
    NewFolder& operator=(const NewFolder&) = delete;

    void keep() { m_isKept = true; }

private:
    std::string m_path;
    bool m_isKept = false;
};

} // namespace

void checkServiceName(const std::string& name)
{
    const std::string quoted = "NAME: '" + printable(name) + "'";
    if (!isUpperCamelCase(name)) {
        throw UsageError(quoted + " cannot be a service's name: it begins with a capital letter and is made of letters "
                                  "and digits, such as Fan or ClimateS");
    }
    if (name.ends_with("Exe")) {
        throw UsageError(quoted + " ends in 'Exe', which the executable's name adds: 'Fan' gives DornFanExe");
    }
    if (name.size() > longestName) {
        throw UsageError(quoted + " is longer than " + std::to_string(longestName) + " characters");
    }
    if (isIn(headerNames(), name) || isIn(macros, name)) {
        throw UsageError(quoted + " is taken: the library has something of that name");
    }
}

std::vector<ServiceFile> filesOf(const NewService& service)
{
    std::string beginsSmall = service.name;
    beginsSmall.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(beginsSmall.front())));
    const std::string version = DORN_VERSION;
    std::vector<ServiceFile> files;
    for (const TemplateFile& file : serviceTemplate()) {
        std::string text = replaced(std::string(file.text), "@Name@", service.name);
        text = replaced(std::move(text), "@name@", beginsSmall);
        text = replaced(std::move(text), "@cpid@", hexNumber(service.cpid, 4));
        text = replaced(std::move(text), "@version@", version.substr(0, version.rfind('.')));
        text = replaced(std::move(text), "@prefixOption@", prefixOption(service.prefix));
        files.push_back({fileName(file.name, service.name), std::move(text)});
    }
    std::sort(files.begin(), files.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return files;
}

void makeFolder(const std::string& directory, const std::vector<ServiceFile>& files)
{
    NewFolder folder(directory);
    for (const ServiceFile& file : files) {
        NewFile content((std::filesystem::path(directory) / file.name).string());
        content.write(std::as_bytes(std::span(file.text)));
        content.keep();
    }
    folder.keep();
}

std::string shellWord(const std::string& text)
{
    const auto isHarmless = [](unsigned char c) {
        return std::isalnum(c) != 0 || std::strchr("/._-+,:=@%", static_cast<int>(c)) != nullptr;
    };
    if (!text.empty() && std::all_of(text.begin(), text.end(), isHarmless)) {
        return text;
    }
    return "'" + replaced(text, "'", "'\\''") + "'";
}

std::string prefixOption(const std::string& prefix)
{
    return prefix.empty() ? "" : " -DCMAKE_PREFIX_PATH=" + shellWord(prefix);
}

} // namespace dorn::tool
