// SPDX-License-Identifier: MIT
#include "raml/RamlReading.hpp"

#include "Outcome.hpp"
#include "files/InputFile.hpp"
#include "log/LogObserver.hpp"
#include "rad/ERadHwapi.h"
#include "raml/RamlFields.hpp"
#include "text/Values.hpp"
#include "xml/XmlDocument.hpp"

#include <CLI/CLI.hpp>
#include <optional>
#include <thread>

namespace dorn::tool {
namespace {

using namespace RAML;

/// Collects the error lines of a parser that works in this thread.
class FindingCollector {
public:
    FindingCollector(const RamlParser& parser, RamlReading& reading, std::size_t most)
        : m_parser(parser),
          m_reading(reading),
          m_most(most),
          m_number(host::addLogObserver([this](const host::LogLine& line) { note(line); }))
    {
    }
    ~FindingCollector() { host::removeLogObserver(m_number); }
    FindingCollector(const FindingCollector&) = delete;
    FindingCollector& operator=(const FindingCollector&) = delete;

private:
    void note(const host::LogLine& line)
    {
        if (line.featureId != ERadHwapi_RAML || line.severity != EAaSysLogSeverityLevel_Error ||
            std::this_thread::get_id() != m_thread || ++m_reading.findingCount > m_most) {
            return;
        }
        RamlFinding& finding = m_reading.findings.emplace_back();
        finding.text = line.text;
        if (const AaGpuXmlNode* const element = m_parser.currentElement()) {
            finding.line = element->AaGpuXmlGetLine();
            finding.column = element->AaGpuXmlGetColumn();
            finding.element = element->AaGpuXmlGetName();
        }
    }

    const RamlParser& m_parser;
    RamlReading& m_reading;
    std::size_t m_most;
    std::thread::id m_thread = std::this_thread::get_id();
    int m_number;
};

/// Adds to the one finding of a text that is no XML where that is and why.
void addXmlFault(const std::string& text, RamlReading& reading)
{
    const std::optional<host::XmlFault> fault =
        host::parseXml(text, "", host::XmlFaultPolicy::GiveNothing, host::XmlExtent::Whole).fault;
    if (fault && !reading.findings.empty()) {
        RamlFinding& finding = reading.findings.front();
        finding.line = fault->line;
        finding.column = fault->column;
        finding.reason = fault->reason;
    }
}

} // namespace

RamlReading readRaml(const std::string& text, std::size_t most)
{
    RamlReading reading;
    if (text.empty()) { // what a service is told of an empty file; only a file's name would make the parser say so
        reading.result = RAML_INVALID_FILE_FORMAT;
        reading.findings.push_back({"Empty file"});
        reading.findingCount = 1;
        return reading;
    }
    RamlParser parser;
    {
        const FindingCollector collector(parser, reading, most);
        reading.document = parser.parseRaml(text, reading.result, false);
    }
    if (reading.result == RAML_MALFORMED_XML) {
        addXmlFault(text, reading);
    }
    return reading;
}

RamlReading readRaml(const std::string& text, std::size_t most, const std::string& file, Console& console)
{
    constexpr std::size_t great = std::size_t{32} << 20U;
    if (text.size() < great) {
        return readRaml(text, most);
    }
    console.showProgress("parsing " + shownName(file) + "  " + sizeText(text.size()));
    RamlReading reading = readRaml(text, most);
    console.showProgress("");
    return reading;
}

void addRamlInput(CLI::App& verb, RamlInput& input)
{
    verb.add_option("--limit", input.limit, "Refuses what is greater, 256M without it")->type_name("SIZE");
}

std::string readRamlText(const std::string& file, const RamlInput& input, Console& console)
{
    return readInput(file, parseSize("--limit", input.limit), console);
}

RAML_Type::pointer readGoodRaml(const std::string& file, const RamlInput& input, Console& console)
{
    return goodRaml(readRamlText(file, input, console), file, console);
}

RAML_Type::pointer goodRaml(const std::string& text, const std::string& file, Console& console)
{
    const RamlReading reading = readRaml(text, 1, file, console);
    if (reading.result != RAML_OK) {
        const std::string finding = reading.findings.empty() ? "" : ": " + findingText(reading.findings.front());
        throw Failure(shownName(file) + " is " + std::string(nameOf(reading.result)) + finding +
                      "; 'dorn raml check' shows all that is wrong");
    }
    return reading.document;
}

std::string findingText(const RamlFinding& finding)
{
    std::string text;
    if (finding.line != 0) {
        text += std::to_string(finding.line) + ":" + std::to_string(finding.column) + ": ";
    }
    if (!finding.element.empty()) {
        text += "<" + printable(finding.element) + ">: ";
    }
    text += finding.text;
    if (!finding.reason.empty()) {
        text += " (" + finding.reason + ")";
    }
    return text;
}

} // namespace dorn::tool
