// SPDX-License-Identifier: MIT
#include "nouns/raml/RamlVerbs.hpp"

#include "Program.hpp"
#include "raml/RamlReading.hpp"
#include "raml/RamlStats.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

struct StatsOptions {
    std::string file;
    RamlInput input;
    bool asJson = false;
};

Outcome showStats(const StatsOptions& options, Console& console)
{
    const std::string text = readRamlText(options.file, options.input, console);
    const RamlStats stats = ramlStats(*goodRaml(text, options.file, console), text.size());
    console.print(options.asJson ? jsonText(ramlStatsJson(stats)) : ramlStatsText(stats, console));
    return Outcome::Fine;
}

} // namespace

void addRamlStats(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<StatsOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {.name = "stats",
                                      .description = "Counts classes, parameters and sizes",
                                      .example = "dorn raml stats plan.xml",
                                      .files = everyArgument},
                                     [options](Console& console) { return showStats(*options, console); });
    verb.add_option("FILE", options->file, "The document, \"-\" for standard input")->required();
    addRamlInput(verb, options->input);
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

} // namespace dorn::tool
