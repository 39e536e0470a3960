// SPDX-License-Identifier: MIT
#include "board/BoardDescription.hpp"

#include "AaGpuXml.hpp"
#include "Outcome.hpp"
#include "board/ElementReader.hpp"
#include "xml/XmlDocument.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
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
          m_xml(m_path),
          m_folder(std::filesystem::path(m_path).parent_path()),
          m_programs(std::move(programs))
    {
    }

    BoardDescription read();

private:
    void readBoard(const AaGpuXmlNode& element);
    void readService(const AaGpuXmlNode& element);
    void readServicePart(const AaGpuXmlNode& element, ServiceDescription& service);
    void readRestart(const AaGpuXmlNode& element, RestartPolicy& policy);
    void readEnd(const AaGpuXmlNode& element, ServiceDescription& service);
    void readVariable(const AaGpuXmlNode& element, std::vector<Variable>& variables);
    void readAfter(const AaGpuXmlNode& element, ServiceDescription& service);

    void wantPath(const AaGpuXmlNode& element, const std::string& path, bool isThere);
    std::string path(const std::string& text) const;
    std::string programPath(const AaGpuXmlNode& element, const std::string& text);

    std::string m_path;
    ElementReader m_xml;
    std::filesystem::path m_folder;
    std::filesystem::path m_programs;
    BoardDescription m_board;
    RestartPolicy m_restart; ///< of the services to come that say nothing else
};

BoardDescription DescriptionReader::read()
{
    const host::XmlDocument document = host::parseXml(contentOf(m_path), "", host::XmlFaultPolicy::GiveNothing);
    if (document.fault) {
        m_xml.complain(document.fault->line, document.fault->reason);
    } else {
        readBoard(**document.root->AaGpuXmlGetFirstChildren());
    }
    if (!m_xml.complaints().empty()) {
        throw Failure(m_xml.complaints());
    }
    return std::move(m_board);
}

void DescriptionReader::readBoard(const AaGpuXmlNode& element)
{
    if (!isCalled(element, "board")) {
        m_xml.complain(element, "the document element is " + inBrackets(element) + ", not <board>");
        return;
    }
    m_xml.checkAttributes(element, {"name", "tree", "root", "files"});
    m_board.name = m_xml.required(element, "name");
    m_board.tree = path(attributeOf(element, "tree").value_or(""));
    m_board.root = path(attributeOf(element, "root").value_or(""));
    m_board.files = path(attributeOf(element, "files").value_or(""));
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
            m_xml.refuse(child);
        }
    });
    if (m_board.services.empty()) {
        m_xml.complain(element, "the board has no <service>");
    }
}

void DescriptionReader::readService(const AaGpuXmlNode& element)
{
    m_xml.checkAttributes(element, {"name", "program", "after", "ready"});
    ServiceDescription service{m_xml.required(element, "name"), ""};
    const auto isOfThisName = [&service](const ServiceDescription& other) { return other.name == service.name; };
    if (!service.name.empty()) {
        if (std::any_of(m_board.services.begin(), m_board.services.end(), isOfThisName)) {
            m_xml.complain(element, "there is a service " + inQuotes(service.name) + " above");
        }
        service.program = programPath(element, attributeOf(element, "program").value_or("Dorn" + service.name + "Exe"));
    }
    service.restart = m_restart;
    readAfter(element, service);
    service.ready = static_cast<Readiness>(m_xml.word(element, "ready", readyWords).value_or(0));
    forElementsOf(element, [this, &service](const AaGpuXmlNode& child) { readServicePart(child, service); });
    m_board.services.push_back(std::move(service));
}

void DescriptionReader::readServicePart(const AaGpuXmlNode& element, ServiceDescription& service)
{
    if (isCalled(element, "argument")) {
        m_xml.checkAttributes(element, {});
        m_xml.refuseElementsIn(element);
        service.arguments.emplace_back(element.AaGpuXmlGetValue());
    } else if (isCalled(element, "environment")) {
        readVariable(element, service.environment);
    } else if (isCalled(element, "restart")) {
        readRestart(element, service.restart);
    } else if (isCalled(element, "end")) {
        readEnd(element, service);
    } else {
        m_xml.refuse(element);
    }
}

void DescriptionReader::readRestart(const AaGpuXmlNode& element, RestartPolicy& policy)
{
    m_xml.checkAttributes(element, {"when", "first", "greatest", "limit", "within"});
    m_xml.refuseElementsIn(element);
    if (const auto when = m_xml.word(element, "when", restartWords)) {
        policy.when = static_cast<RestartWhen>(*when);
    }
    m_xml.seconds(element, "first", policy.first);
    m_xml.seconds(element, "greatest", policy.greatest);
    m_xml.seconds(element, "within", policy.within);
    if (const auto limit = m_xml.number(element, "limit", 1'000'000)) {
        policy.limit = static_cast<std::uint32_t>(*limit);
    }
    if (policy.first > policy.greatest) {
        m_xml.complain(element, "the first delay is longer than the greatest");
    }
}

void DescriptionReader::readEnd(const AaGpuXmlNode& element, ServiceDescription& service)
{
    m_xml.checkAttributes(element, {"status", "within"});
    m_xml.refuseElementsIn(element);
    m_xml.seconds(element, "within", service.endWithin);
    if (const auto status = m_xml.number(element, "status", 255)) {
        service.goodStatus = static_cast<int>(*status);
    }
}

void DescriptionReader::readVariable(const AaGpuXmlNode& element, std::vector<Variable>& variables)
{
    m_xml.checkAttributes(element, {"name", "value"});
    m_xml.refuseElementsIn(element);
    const std::string name = m_xml.required(element, "name");
    if (name.find('=') != std::string::npos) {
        m_xml.complain(element, inQuotes(name) + " is no name of a variable");
    }
    variables.emplace_back(name, attributeOf(element, "value").value_or(""));
}

/// Only services listed above: so no two wait for each other.
void DescriptionReader::readAfter(const AaGpuXmlNode& element, ServiceDescription& service)
{
    std::istringstream names(attributeOf(element, "after").value_or(""));
    for (std::string name; names >> name;) {
        const auto found = std::find_if(m_board.services.begin(), m_board.services.end(),
                                        [&name](const ServiceDescription& other) { return other.name == name; });
        if (found == m_board.services.end()) {
            m_xml.complain(element, "after: no service " + inQuotes(name) + " is listed above");
        } else {
            service.after.push_back(static_cast<std::size_t>(found - m_board.services.begin()));
        }
    }
}

void DescriptionReader::wantPath(const AaGpuXmlNode& element, const std::string& path, bool isThere)
{
    if (!path.empty() && !isThere) {
        m_xml.complain(element, "there is no " + inQuotes(path));
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
        m_xml.complain(element, "there is no program " + inQuotes(program));
    }
    return program;
}

} // namespace

BoardDescription readBoardDescription(const std::string& path, const std::string& programs)
{
    return DescriptionReader(path, programs).read();
}

} // namespace dorn::tool
