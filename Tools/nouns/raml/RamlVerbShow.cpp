// SPDX-License-Identifier: MIT
#include "nouns/raml/RamlVerbs.hpp"

#include "Program.hpp"
#include "files/InputFile.hpp"
#include "raml/RamlLookup.hpp"
#include "raml/RamlReading.hpp"
#include "raml/RamlTree.hpp"
#include "text/Values.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

using namespace RAML;

struct ShowOptions {
    std::string file;
    std::string distName;
    RamlInput input;
    bool asNames = false;
    bool asJson = false;
};

void showObject(const RAML_ManagedObjectType& object, const ShowOptions& options, Console& console)
{
    if (options.asJson) {
        console.print(jsonText(ramlJson(object)));
    } else {
        printRamlTree(object, console);
    }
}

void showNames(const RAML_Type& document, Console& console)
{
    for (const RAML_CMDataType::pointer& block : document.cmDataList) {
        for (const RAML_ManagedObjectType::pointer& object : block->managedObjects) {
            console.print(printable(object->mDistName) + "\n");
        }
    }
}

Outcome show(const ShowOptions& options, Console& console)
{
    const RAML_Type::pointer document = readGoodRaml(options.file, options.input, console);
    if (options.asNames) {
        showNames(*document, console);
    } else if (!options.distName.empty()) {
        showObject(*findObject(*document, options.file, options.distName), options, console);
    } else if (options.asJson) {
        console.print(jsonText(ramlJson(*document)));
    } else {
        printRamlTree(options.file == standardInputName ? "<stdin>" : options.file, *document, console);
    }
    return Outcome::Fine;
}

} // namespace

void addRamlShow(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<ShowOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {.name = "show",
                                      .description = "Shows a document or one of its managed objects as a tree",
                                      .example = "dorn raml show plan.xml Board=1,Fan=2",
                                      .values = "dorn raml show --names",
                                      .files = 1},
                                     [options](Console& console) { return show(*options, console); });
    verb.add_option("FILE", options->file, "The document, \"-\" for standard input")->required();
    CLI::Option* const name = verb.add_option("DISTNAME", options->distName, "Distinguished name of an object");
    CLI::Option* const names =
        verb.add_flag("--names", options->asNames, "Prints the distinguished names alone, one a line")->excludes(name);
    addRamlInput(verb, options->input);
    verb.add_flag("--json", options->asJson, "Prints JSON")->excludes(names);
}

} // namespace dorn::tool
