// SPDX-License-Identifier: MIT
#include "nouns/raml/RamlVerbs.hpp"

#include "Program.hpp"
#include "raml/RamlLookup.hpp"
#include "raml/RamlReading.hpp"
#include "raml/RamlTree.hpp"
#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"
#include "text/Values.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

using namespace RAML;

struct GetOptions {
    std::string file;
    std::string distName;
    std::string parameter;
    RamlInput input;
    bool asJson = false;
};

/// An element of a list on one line: a value, or "limit=10 mode=on" of an item.
std::string elementText(const RAML_ListElementType& element)
{
    if (const auto* const value = dynamic_cast<const RAML_ListParameterType*>(&element)) {
        return printable(value->value);
    }
    std::string text;
    if (const auto* const item = dynamic_cast<const RAML_ItemType*>(&element)) {
        for (const RAML_ItemParameterType& parameter : item->params) {
            text += (text.empty() ? "" : " ") + printable(parameter.name) + "=" + printable(parameter.value);
        }
    }
    return text;
}

void print(const RAML_MOParameterType& parameter, Console& console)
{
    if (const auto* const simple = dynamic_cast<const RAML_ParameterType*>(&parameter)) {
        console.print(printable(simple->value) + "\n");
    } else if (const auto* const list = dynamic_cast<const RAML_ListType*>(&parameter)) {
        for (const RAML_ListElementType::pointer& element : list->listElements) {
            console.print(elementText(*element) + "\n");
        }
    }
}

Outcome get(const GetOptions& options, Console& console)
{
    const RAML_Type::pointer document = readGoodRaml(options.file, options.input, console);
    const RAML_ManagedObjectType::pointer object = findObject(*document, options.file, options.distName);
    const RAML_MOParameterType::pointer parameter = findParameter(*object, options.parameter);
    if (options.asJson) {
        console.print(jsonText(ramlJson(*parameter)));
    } else {
        print(*parameter, console);
    }
    return Outcome::Fine;
}

} // namespace

void addRamlGet(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<GetOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {.name = "get",
                                      .description = "Prints the value of a parameter, of a list an element a line",
                                      .example = "dorn raml get plan.xml Board=1,Fan=2 limit",
                                      .values = "dorn raml show --names",
                                      .files = 1},
                                     [options](Console& console) { return get(*options, console); });
    verb.add_option("FILE", options->file, "The document, \"-\" for standard input")->required();
    verb.add_option("DISTNAME", options->distName, "Distinguished name of the managed object")->required();
    verb.add_option("PARAMETER", options->parameter, "Name of the parameter or list")->required();
    addRamlInput(verb, options->input);
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

} // namespace dorn::tool
