// SPDX-License-Identifier: MIT
#include "nouns/raml/RamlVerbs.hpp"

#include "Program.hpp"
#include "raml/RamlReading.hpp"
#include "raml/RamlWriting.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

struct FormatOptions {
    std::string file;
    RamlInput input;
    RamlWritingOptions writing;
};

Outcome format(const FormatOptions& options, Console& console)
{
    const RAML::RAML_Type::pointer document = readGoodRaml(options.file, options.input, console);
    const WrittenRaml written = writeRaml(*document, options.writing.isForced);
    if (options.writing.asJson) {
        console.print(jsonText(writtenRamlJson(written)));
    } else {
        printWrittenRaml(written, console);
    }
    return Outcome::Fine;
}

} // namespace

void addRamlFormat(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<FormatOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {.name = "format",
                                      .description = "Prints a document as services write it; tells what gets lost",
                                      .example = "dorn raml format plan.xml",
                                      .files = everyArgument},
                                     [options](Console& console) { return format(*options, console); });
    verb.add_option("FILE", options->file, "The document, \"-\" for standard input")->required();
    addRamlInput(verb, options->input);
    addRamlWriting(verb, options->writing);
}

} // namespace dorn::tool
