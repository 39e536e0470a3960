// SPDX-License-Identifier: MIT
#include "nouns/raml/RamlVerbs.hpp"

#include "Program.hpp"
#include "files/InputFile.hpp"
#include "raml/RamlRanks.hpp"
#include "raml/RamlReading.hpp"
#include "raml/RamlWriting.hpp"
#include "text/Values.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

using namespace RAML;

struct SortOptions {
    std::string file;
    std::string ranks;
    RamlInput input;
    RamlWritingOptions writing;
    bool isRankedOnly = false;
};

std::string joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + printable(word);
    }
    return text;
}

Outcome sort(const SortOptions& options, Console& console)
{
    if (options.file == standardInputName && options.ranks == standardInputName) {
        throw UsageError("only one of document and ranks can be standard input");
    }
    const TmlMoHierarchyMap ranks =
        parseRanks(readRamlText(options.ranks, options.input, console), shownName(options.ranks));
    const RAML_Type::pointer document = readGoodRaml(options.file, options.input, console);
    const std::vector<std::string> unranked = sortRaml(*document, ranks);
    if (options.isRankedOnly) {
        dropUnranked(*document, ranks);
    }
    const WrittenRaml written = writeRaml(*document, options.writing.isForced);
    if (options.writing.asJson) {
        Json json = writtenRamlJson(written);
        json["unranked"] = unranked;
        console.print(jsonText(json));
        return Outcome::Fine;
    }
    printWrittenRaml(written, console);
    if (!unranked.empty()) {
        console.remark("no rank: " + joined(unranked) +
                       (options.isRankedOnly ? "; their objects are left out" : "; their objects come last"));
    }
    return Outcome::Fine;
}

} // namespace

void addRamlSort(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<SortOptions>();
    CLI::App& verb =
        program.addVerb(noun,
                        {.name = "sort",
                         .description = "Prints a document with its objects in the order of their classes' ranks",
                         .example = "dorn raml sort plan.xml --ranks ranks.txt",
                         .files = everyArgument},
                        [options](Console& console) { return sort(*options, console); });
    verb.add_option("FILE", options->file, "The document, \"-\" for standard input")->required();
    verb.add_option("--ranks", options->ranks, "The ranks: a class a line in their order, or CLASS RANK")
        ->type_name("FILE")
        ->required();
    verb.add_flag("--ranked-only", options->isRankedOnly, "Leaves out objects whose class has no rank");
    addRamlInput(verb, options->input);
    addRamlWriting(verb, options->writing);
}

} // namespace dorn::tool
