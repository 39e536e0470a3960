// SPDX-License-Identifier: MIT
#include "nouns/raml/RamlVerbs.hpp"

#include "Program.hpp"
#include "generator/RamlGenerator.hpp"
#include "text/Json.hpp"
#include "text/Table.hpp"
#include "text/Values.hpp"
#include "waiting/ProgressBar.hpp"

#include <CLI/CLI.hpp>
#include <array>
#include <memory>
#include <unistd.h>

namespace dorn::tool {
namespace {

using testkit::RamlShape;

/// A number of a shape that people can give.
struct Dimension {
    const char* option;
    const char* description;
    std::uint32_t RamlShape::*number;
};
constexpr std::array<Dimension, 8> dimensions{{
    {"--blocks", "cmData elements", &RamlShape::blocks},
    {"--logs", "Log entries in each header", &RamlShape::logs},
    {"--classes", "Classes of managed objects", &RamlShape::classes},
    {"--depth", "Greatest number of parts in a distinguished name", &RamlShape::depth},
    {"--parameters", "Simple parameters of an object, on average", &RamlShape::parameters},
    {"--lists", "Lists of an object, on average", &RamlShape::lists},
    {"--elements", "Values or items of a list, on average", &RamlShape::listElements},
    {"--value-bytes", "Bytes of a value, on average", &RamlShape::valueBytes},
}};
constexpr std::uint64_t greatestNumber = 1'000'000;
constexpr std::uint64_t greatestObjects = 1'000'000'000;

struct GenerateOptions {
    std::string seed;
    std::string objects;
    std::string size;
    std::array<std::string, dimensions.size()> numbers;
    std::vector<std::string> faults;
    bool isPlain = false;
    bool areFaultsListed = false;
    bool asJson = false;
};

testkit::RamlFault parseFault(const std::string& name)
{
    if (const std::optional<testkit::RamlFault> fault = testkit::ramlFaultOf(name)) {
        return *fault;
    }
    throw UsageError("--fault: '" + name + "' is none; 'dorn raml generate --list-faults' shows all that there are");
}

RamlShape shapeOf(const GenerateOptions& options)
{
    RamlShape shape;
    if (!options.seed.empty()) {
        shape.seed = parseUnsigned<std::uint64_t>("--seed", options.seed);
    }
    if (!options.objects.empty()) {
        shape.objects = parseNumber("--objects", options.objects, greatestObjects);
    }
    if (!options.size.empty()) {
        shape.bytes = parseSize("--size", options.size);
    }
    for (std::size_t index = 0; index < dimensions.size(); ++index) {
        const Dimension& dimension = dimensions[index];
        if (!options.numbers[index].empty()) {
            shape.*dimension.number =
                static_cast<std::uint32_t>(parseNumber(dimension.option, options.numbers[index], greatestNumber));
        }
    }
    for (const std::string& fault : options.faults) {
        shape.faults.push_back(parseFault(fault));
    }
    shape.isPlain = options.isPlain;
    return shape;
}

std::string faultTable(const Console& console)
{
    Table table({"FAULT", "WHAT IS WRONG"});
    for (const testkit::RamlFaultText& fault : testkit::ramlFaults) {
        table.add({std::string(fault.name), std::string(fault.description)});
    }
    return table.text(console);
}

Json faultsJson()
{
    Json json = Json::array();
    for (const testkit::RamlFaultText& fault : testkit::ramlFaults) {
        json.push_back({{"name", fault.name}, {"description", fault.description}});
    }
    return json;
}

/// What stands around a document that is printed as JSON while it grows.
struct Frame {
    std::string begin;
    std::string end;
};

Frame jsonFrame(const RamlShape& shape)
{
    Json json{{"seed", shape.seed}, {"faults", Json::array()}, {"document", ""}};
    for (const testkit::RamlFault fault : shape.faults) {
        json["faults"].push_back(testkit::textOf(fault).name);
    }
    const std::string whole = jsonText(json);
    const std::size_t middle = whole.rfind('"');
    return {whole.substr(0, middle), whole.substr(middle)};
}

/// A piece of a JSON string.
std::string inJson(std::string_view piece)
{
    const std::string quoted = jsonLine(Json(piece));
    return quoted.substr(1, quoted.size() - 2);
}

/// A document that scrolls by on a terminal shows by itself how far it has come.
bool isSeenGrowing()
{
    return isatty(STDOUT_FILENO) == 1;
}

Outcome generate(const GenerateOptions& options, Console& console)
{
    if (options.areFaultsListed) {
        console.print(options.asJson ? jsonText(faultsJson()) : faultTable(console));
        return Outcome::Fine;
    }
    const RamlShape shape = shapeOf(options);
    testkit::RamlGenerator generator(shape);
    const Frame frame = options.asJson ? jsonFrame(shape) : Frame{};
    ProgressBar progress(console, "generating");
    const bool showsProgress = !isSeenGrowing();
    std::uint64_t bytes = 0;
    console.print(frame.begin);
    for (std::string_view piece = generator.next(); !piece.empty() && !console.isClosed(); piece = generator.next()) {
        if (options.asJson) {
            console.print(inJson(piece));
        } else {
            console.print(piece);
        }
        bytes += piece.size();
        if (showsProgress) {
            progress.show(generator.progress(), bytes);
        }
    }
    console.print(frame.end);
    return Outcome::Fine;
}

} // namespace

void addRamlGenerate(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<GenerateOptions>();
    CLI::App& verb =
        program.addVerb(noun,
                        {"generate", "Prints a document for tests; the same seed and options give the same document",
                         "dorn raml generate --seed 7 --objects 1000 --depth 4 > plan.xml"},
                        [options](Console& console) { return generate(*options, console); });
    verb.add_option("--seed", options->seed, "Which of all such documents; 1 without it")->type_name("N");
    CLI::Option* const objects =
        verb.add_option("--objects", options->objects, "Managed objects; 10 without it")->type_name("N");
    verb.add_option("--size", options->size, "Adds objects until the document is so great, as 10M")
        ->type_name("SIZE")
        ->excludes(objects);
    const RamlShape usual;
    for (std::size_t index = 0; index < dimensions.size(); ++index) {
        const Dimension& dimension = dimensions[index];
        verb.add_option(dimension.option, options->numbers[index],
                        dimension.description + ("; " + std::to_string(usual.*dimension.number)) + " without it")
            ->type_name("N");
    }
    verb.add_flag("--plain", options->isPlain, "Only what services keep when they write a document");
    verb.add_option("--fault", options->faults, "Makes this wrong, once; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
    verb.add_flag("--list-faults", options->areFaultsListed, "Lists what can be made wrong instead");
    verb.add_flag("--json", options->asJson, "Prints JSON: the document, its seed and faults");
}

} // namespace dorn::tool
