// SPDX-License-Identifier: MIT
#include "nouns/raml/RamlVerbs.hpp"

#include "Program.hpp"
#include "files/InputFile.hpp"
#include "raml/RamlDiff.hpp"
#include "raml/RamlReading.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

using namespace RAML;

struct DiffOptions {
    std::string before;
    std::string after;
    RamlInput input;
    bool asJson = false;
};

Outcome diff(const DiffOptions& options, Console& console)
{
    if (options.before == standardInputName && options.after == standardInputName) {
        throw UsageError("only one of the documents can be standard input");
    }
    const RAML_Type::pointer before = readGoodRaml(options.before, options.input, console);
    const RAML_Type::pointer after = readGoodRaml(options.after, options.input, console);
    const std::vector<RamlChange> changes = diffRaml(*before, *after, RamlDiffFields::All);
    if (options.asJson) {
        console.print(jsonText(jsonArray(changes, ramlChangeJson)));
    } else {
        for (const RamlChange& change : changes) {
            console.print(ramlChangeText(change, console));
        }
    }
    return changes.empty() ? Outcome::Fine : Outcome::No;
}

} // namespace

void addRamlDiff(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<DiffOptions>();
    CLI::App& verb = program.addVerb(
        noun,
        {.name = "diff",
         .description = "Compares two documents by distinguished name and parameter; status 1 if they differ",
         .example = "dorn raml diff plan.xml plan-new.xml",
         .files = everyArgument},
        [options](Console& console) { return diff(*options, console); });
    verb.add_option("BEFORE", options->before, "One document, \"-\" for standard input")->required();
    verb.add_option("AFTER", options->after, "The other")->required();
    addRamlInput(verb, options->input);
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

} // namespace dorn::tool
