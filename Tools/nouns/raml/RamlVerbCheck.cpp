// SPDX-License-Identifier: MIT
#include "nouns/raml/RamlVerbs.hpp"

#include "Program.hpp"
#include "files/InputFile.hpp"
#include "raml/RamlFields.hpp"
#include "raml/RamlReading.hpp"
#include "raml/RamlStats.hpp"
#include "text/Json.hpp"
#include "text/SourceLines.hpp"

#include <CLI/CLI.hpp>
#include <limits>
#include <memory>

namespace dorn::tool {
namespace {

using namespace RAML;

constexpr std::size_t screen = 8; ///< findings that fit one screen, with what they point at

struct CheckOptions {
    std::vector<std::string> files;
    RamlInput input;
    bool isAll = false;
    bool asJson = false;
};

/// A file and what came of reading it.
struct Checked {
    std::string file;
    std::string text;
    RamlReading reading;
};

/// A file that cannot be read is what a service calls it, with the reason.
Checked check(const std::string& file, const CheckOptions& options, Console& console)
{
    const std::size_t most = options.isAll ? std::numeric_limits<std::size_t>::max() : screen;
    Checked checked{file, {}, {}};
    try {
        checked.text = readRamlText(file, options.input, console);
        checked.reading = readRaml(checked.text, most, file, console);
    } catch (const Failure& failure) {
        checked.reading.result = RAML_RESOURCE_LIMITATION;
        checked.reading.findings.push_back({"Opening of RAML file failed"});
        checked.reading.findings.front().reason = failure.what();
        checked.reading.findingCount = 1;
    }
    return checked;
}

std::size_t objectCount(const RamlReading& reading)
{
    std::size_t count = 0;
    if (reading.document) {
        for (const RAML_CMDataType::pointer& block : reading.document->cmDataList) {
            count += block->managedObjects.size();
        }
    }
    return count;
}

std::size_t blockCount(const RamlReading& reading)
{
    return reading.document ? reading.document->cmDataList.size() : 0;
}

void printFindings(const Checked& checked, const std::string& name, Console& console)
{
    SourceLines lines(checked.text);
    for (const RamlFinding& finding : checked.reading.findings) {
        console.print(name + ":" + (finding.line == 0 ? " " : "") + findingText(finding) + "\n");
        if (finding.line != 0) {
            console.print(console.paint(Colour::Faint, lines.excerpt(finding.line, finding.column)));
        }
    }
}

void print(const Checked& checked, Console& console)
{
    const RamlReading& reading = checked.reading;
    const std::string name = checked.file == standardInputName ? "<stdin>" : checked.file;
    printFindings(checked, name, console);
    const bool isGood = reading.result == RAML_OK;
    std::string summary =
        name + ": " + console.paint(isGood ? Colour::Green : Colour::Red, nameOf(reading.result)) + ": ";
    if (!isGood) {
        summary += counted(reading.findingCount, "error") + "; ";
        if (const std::size_t left = reading.findingCount - reading.findings.size()) {
            summary += std::to_string(left) + " more with --all; ";
        }
    }
    summary += counted(blockCount(reading), "block") + " and " + counted(objectCount(reading), "managed object") +
               " can be used\n";
    console.print(summary);
}

Json findingJson(const RamlFinding& finding)
{
    Json json{{"line", nullptr}, {"column", nullptr}, {"element", nullptr}, {"text", finding.text}};
    if (finding.line != 0) {
        json["line"] = finding.line;
        json["column"] = finding.column;
    }
    if (!finding.element.empty()) {
        json["element"] = finding.element;
    }
    if (!finding.reason.empty()) {
        json["reason"] = finding.reason;
    }
    return json;
}

Json checkedJson(const Checked& checked)
{
    const RamlReading& reading = checked.reading;
    return {{"file", checked.file},
            {"result", nameOf(reading.result)},
            {"code", static_cast<int>(reading.result)},
            {"blocks", blockCount(reading)},
            {"managedObjects", objectCount(reading)},
            {"errorCount", reading.findingCount},
            {"errors", jsonArray(reading.findings, findingJson)}};
}

Outcome checkAll(const CheckOptions& options, Console& console)
{
    Outcome outcome = Outcome::Fine;
    Json json = Json::array();
    for (const std::string& file : options.files) {
        const Checked checked = check(file, options, console);
        if (checked.reading.result != RAML_OK) {
            outcome = Outcome::No;
        }
        if (options.asJson) {
            json.push_back(checkedJson(checked));
        } else {
            print(checked, console);
        }
    }
    if (options.asJson) {
        console.print(jsonText(json));
    }
    return outcome;
}

} // namespace

void addRamlCheck(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<CheckOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {.name = "check",
                                      .description = "Tells what is wrong with documents, and where",
                                      .example = "dorn raml check plan.xml",
                                      .files = everyArgument},
                                     [options](Console& console) { return checkAll(*options, console); });
    verb.add_option("FILE", options->files, "The documents, \"-\" for standard input")->required();
    verb.add_flag("--all", options->isAll, "All errors, not only the first " + std::to_string(screen));
    addRamlInput(verb, options->input);
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

} // namespace dorn::tool
