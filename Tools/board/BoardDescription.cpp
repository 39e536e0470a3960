// SPDX-License-Identifier: MIT
#include "board/BoardDescription.hpp"

#include "AaGpuXml.hpp"
#include "Outcome.hpp"
#include "Values.hpp"
#include "xml/XmlDocument.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <string_view>
#include <unistd.h>

namespace dorn::tool {
namespace {

constexpr std::array<const char*, 3> restartWords{"never", "on-failure", "always"};
constexpr std::array<const char*, 2> readyWords{"state", "start"};

std::string contentOf(const std::string& path)
{
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        throw Failure("'" + path + "' cannot be read: it is a directory");
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open() || file.bad()) {
        throw Failure("'" + path + "' cannot be read: " + std::strerror(errno));
    }
    return text;
}

/// Reads one description and gathers what is wrong with it.
class DescriptionReader {
public:
    DescriptionReader(std::string path, std::filesystem::path programs)
        : m_path(std::move(path)),
          m_folder(std::filesystem::path(m_path).parent_path()),
          m_programs(std::move(programs))
    {
    }

    BoardDescription read();

private:
    using Names = std::vector<std::string_view>;

    void complain(std::uint32_t line, const std::string& what)
    {
        m_complaints += (m_complaints.empty() ? "" : "\n") + m_path + ":" + std::to_string(line) + ": " + what;
    }
    void complain(const AaGpuXmlNode& node, const std::string& what) { complain(node.AaGpuXmlGetLine(), what); }

    void readBoard(const AaGpuXmlNode& element);
    void readService(const AaGpuXmlNode& element);
    void readServicePart(const AaGpuXmlNode& element, ServiceDescription& service);
    void readRestart(const AaGpuXmlNode& element, RestartPolicy& policy);
    void readEnd(const AaGpuXmlNode& element, ServiceDescription& service);
    void readVariable(const AaGpuXmlNode& element, std::vector<Variable>& variables);
    void readAfter(const AaGpuXmlNode& element, ServiceDescription& service);

    void checkAttributes(const AaGpuXmlNode& element, const Names& known);
    void refuseElement(const AaGpuXmlNode& element);
    void refuseElementsIn(const AaGpuXmlNode& element);
    void wantPath(const AaGpuXmlNode& element, const std::string& path, bool isThere);
    std::optional<std::string> attribute(const AaGpuXmlNode& element, std::string_view name) const;
    std::string required(const AaGpuXmlNode& element, std::string_view name);
    template <std::size_t count>
    std::optional<std::size_t> word(const AaGpuXmlNode& element, std::string_view name,
                                    const std::array<const char*, count>& words);
    void seconds(const AaGpuXmlNode& element, std::string_view name, host::Nanoseconds& value);
    std::optional<std::uint64_t> number(const AaGpuXmlNode& element, std::string_view name, std::uint64_t greatest);
    std::string path(const std::string& text) const;
    std::string programPath(const AaGpuXmlNode& element, const std::string& text);

    std::string m_path;
    std::filesystem::path m_folder;
    std::filesystem::path m_programs;
    BoardDescription m_board;
    RestartPolicy m_restart; ///< of the services to come that say nothing else
    std::string m_complaints;
};

template <class Action>
void forElementsOf(const AaGpuXmlNode& parent, const Action& action)
{
    for (auto child = parent.AaGpuXmlGetFirstChildren(); child != parent.AaGpuXmlGetLastChildren(); ++child) {
        if ((*child)->AaGpuXmlGetType() == AA_GPU_XML_ELEMENT_NODE) {
            action(**child);
        }
    }
}

bool isCalled(const AaGpuXmlNode& node, std::string_view name)
{
    return name == node.AaGpuXmlGetName();
}

std::string inQuotes(const std::string& text)
{
    return "'" + printable(text) + "'";
}

std::string shown(const AaGpuXmlNode& element)
{
    return "<" + printable(element.AaGpuXmlGetName()) + ">";
}

BoardDescription DescriptionReader::read()
{
    const host::XmlDocument document = host::parseXml(contentOf(m_path), "", host::XmlFaultPolicy::GiveNothing);
    if (document.fault) {
        complain(document.fault->line, document.fault->reason);
    } else {
        readBoard(**document.root->AaGpuXmlGetFirstChildren());
    }
    if (!m_complaints.empty()) {
        throw Failure(m_complaints);
    }
    return std::move(m_board);
}

void DescriptionReader::readBoard(const AaGpuXmlNode& element)
{
    if (!isCalled(element, "board")) {
        complain(element, "the document element is " + shown(element) + ", not <board>");
        return;
    }
    checkAttributes(element, {"name", "tree", "root", "files"});
    m_board.name = required(element, "name");
    m_board.tree = path(attribute(element, "tree").value_or(""));
    m_board.root = path(attribute(element, "root").value_or(""));
    m_board.files = path(attribute(element, "files").value_or(""));
    std::error_code error;
    wantPath(element, m_board.tree, std::filesystem::is_regular_file(m_board.tree, error));
    wantPath(element, m_board.files, std::filesystem::is_directory(m_board.files, error));
    forElementsOf(element, [this](const AaGpuXmlNode& child) {
        if (isCalled(child, "service")) {
            readService(child);
        } else if (isCalled(child, "environment")) {
            readVariable(child, m_board.environment);
        } else if (isCalled(child, "restart")) {
            m_restart = {};
            readRestart(child, m_restart);
        } else {
            refuseElement(child);
        }
    });
    if (m_board.services.empty()) {
        complain(element, "the board has no <service>");
    }
}

void DescriptionReader::readService(const AaGpuXmlNode& element)
{
    checkAttributes(element, {"name", "program", "after", "ready"});
    ServiceDescription service{required(element, "name"), ""};
    const auto isOfThisName = [&service](const ServiceDescription& other) { return other.name == service.name; };
    if (!service.name.empty()) {
        if (std::any_of(m_board.services.begin(), m_board.services.end(), isOfThisName)) {
            complain(element, "there is a service " + inQuotes(service.name) + " above");
        }
        service.program = programPath(element, attribute(element, "program").value_or("Dorn" + service.name + "Exe"));
    }
    service.restart = m_restart;
    readAfter(element, service);
    service.ready = static_cast<Readiness>(word(element, "ready", readyWords).value_or(0));
    forElementsOf(element, [this, &service](const AaGpuXmlNode& child) { readServicePart(child, service); });
    m_board.services.push_back(std::move(service));
}

void DescriptionReader::readServicePart(const AaGpuXmlNode& element, ServiceDescription& service)
{
    if (isCalled(element, "argument")) {
        checkAttributes(element, {});
        refuseElementsIn(element);
        service.arguments.emplace_back(element.AaGpuXmlGetValue());
    } else if (isCalled(element, "environment")) {
        readVariable(element, service.environment);
    } else if (isCalled(element, "restart")) {
        readRestart(element, service.restart);
    } else if (isCalled(element, "end")) {
        readEnd(element, service);
    } else {
        refuseElement(element);
    }
}

void DescriptionReader::readRestart(const AaGpuXmlNode& element, RestartPolicy& policy)
{
    checkAttributes(element, {"when", "first", "greatest", "limit", "within"});
    refuseElementsIn(element);
    if (const auto when = word(element, "when", restartWords)) {
        policy.when = static_cast<RestartWhen>(*when);
    }
    seconds(element, "first", policy.first);
    seconds(element, "greatest", policy.greatest);
    seconds(element, "within", policy.within);
    if (const auto limit = number(element, "limit", 1'000'000)) {
        policy.limit = static_cast<std::uint32_t>(*limit);
    }
    if (policy.first > policy.greatest) {
        complain(element, "the first delay is longer than the greatest");
    }
}

void DescriptionReader::readEnd(const AaGpuXmlNode& element, ServiceDescription& service)
{
    checkAttributes(element, {"status", "within"});
    refuseElementsIn(element);
    seconds(element, "within", service.endWithin);
    if (const auto status = number(element, "status", 255)) {
        service.goodStatus = static_cast<int>(*status);
    }
}

void DescriptionReader::readVariable(const AaGpuXmlNode& element, std::vector<Variable>& variables)
{
    checkAttributes(element, {"name", "value"});
    refuseElementsIn(element);
    const std::string name = required(element, "name");
    if (name.find('=') != std::string::npos) {
        complain(element, inQuotes(name) + " is no name of a variable");
    }
    variables.emplace_back(name, attribute(element, "value").value_or(""));
}

/// Only services listed above: so no two wait for each other.
void DescriptionReader::readAfter(const AaGpuXmlNode& element, ServiceDescription& service)
{
    std::istringstream names(attribute(element, "after").value_or(""));
    for (std::string name; names >> name;) {
        const auto found = std::find_if(m_board.services.begin(), m_board.services.end(),
                                        [&name](const ServiceDescription& other) { return other.name == name; });
        if (found == m_board.services.end()) {
            complain(element, "after: no service " + inQuotes(name) + " is listed above");
        } else {
            service.after.push_back(static_cast<std::size_t>(found - m_board.services.begin()));
        }
    }
}

void DescriptionReader::checkAttributes(const AaGpuXmlNode& element, const Names& known)
{
    for (auto child = element.AaGpuXmlGetFirstChildren(); child != element.AaGpuXmlGetLastChildren(); ++child) {
        const AaGpuXmlNode& node = **child;
        if (node.AaGpuXmlGetType() == AA_GPU_XML_ATTRIBUTE_NODE &&
            std::find(known.begin(), known.end(), node.AaGpuXmlGetName()) == known.end()) {
            complain(node, shown(element) + " has no attribute " + inQuotes(node.AaGpuXmlGetName()));
        }
    }
}

void DescriptionReader::refuseElement(const AaGpuXmlNode& element)
{
    complain(element, shown(element) + " does not belong here");
}

void DescriptionReader::refuseElementsIn(const AaGpuXmlNode& element)
{
    forElementsOf(element, [this](const AaGpuXmlNode& child) { refuseElement(child); });
}

void DescriptionReader::wantPath(const AaGpuXmlNode& element, const std::string& path, bool isThere)
{
    if (!path.empty() && !isThere) {
        complain(element, "there is no " + inQuotes(path));
    }
}

std::optional<std::string> DescriptionReader::attribute(const AaGpuXmlNode& element, std::string_view name) const
{
    for (auto child = element.AaGpuXmlGetFirstChildren(); child != element.AaGpuXmlGetLastChildren(); ++child) {
        if ((*child)->AaGpuXmlGetType() == AA_GPU_XML_ATTRIBUTE_NODE && isCalled(**child, name)) {
            return (*child)->AaGpuXmlGetValue();
        }
    }
    return std::nullopt;
}

std::string DescriptionReader::required(const AaGpuXmlNode& element, std::string_view name)
{
    std::string value = attribute(element, name).value_or("");
    if (value.empty()) {
        complain(element, shown(element) + " needs the attribute '" + std::string(name) + "'");
    }
    return value;
}

template <std::size_t count>
std::optional<std::size_t> DescriptionReader::word(const AaGpuXmlNode& element, std::string_view name,
                                                   const std::array<const char*, count>& words)
{
    const auto value = attribute(element, name);
    if (!value) {
        return std::nullopt;
    }
    const auto found = std::find(words.begin(), words.end(), *value);
    if (found != words.end()) {
        return static_cast<std::size_t>(found - words.begin());
    }
    std::string all;
    for (const char* const one : words) {
        all += std::string(all.empty() ? "" : ", ") + one;
    }
    complain(element, std::string(name) + ": " + inQuotes(*value) + " is none of " + all);
    return std::nullopt;
}

void DescriptionReader::seconds(const AaGpuXmlNode& element, std::string_view name, host::Nanoseconds& value)
{
    if (const auto text = attribute(element, name)) {
        try {
            value = parseSeconds(std::string(name), *text);
        } catch (const UsageError& error) {
            complain(element, error.what());
        }
    }
}

std::optional<std::uint64_t> DescriptionReader::number(const AaGpuXmlNode& element, std::string_view name,
                                                       std::uint64_t greatest)
{
    const auto text = attribute(element, name);
    try {
        return text ? std::optional(parseNumber(std::string(name), *text, greatest)) : std::nullopt;
    } catch (const UsageError& error) {
        complain(element, error.what());
        return std::nullopt;
    }
}

std::string DescriptionReader::path(const std::string& text) const
{
    return text.empty() ? "" : std::filesystem::absolute(m_folder / text).lexically_normal().string();
}

bool isProgram(const std::filesystem::path& path)
{
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

/// Without a folder it lies beside this command, or, where that is installed, where packages have their services.
std::string DescriptionReader::programPath(const AaGpuXmlNode& element, const std::string& text)
{
    if (text.find('/') == std::string::npos) {
        const std::filesystem::path installed = m_programs.parent_path() / "libexec" / "dorn" / text;
        if (isProgram(installed) && !isProgram(m_programs / text)) {
            return installed;
        }
    }
    const std::string program = text.find('/') != std::string::npos ? path(text) : (m_programs / text).string();
    if (!isProgram(program)) {
        complain(element, "there is no program " + inQuotes(program));
    }
    return program;
}

} // namespace

BoardDescription readBoardDescription(const std::string& path, const std::string& programs)
{
    return DescriptionReader(path, programs).read();
}

} // namespace dorn::tool
