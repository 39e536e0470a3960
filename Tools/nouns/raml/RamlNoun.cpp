// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Program.hpp"
#include "nouns/raml/RamlVerbs.hpp"

#include <CLI/CLI.hpp>

namespace dorn::tool {

void addRamlNoun(Program& program)
{
    CLI::App& noun = program.addNoun("raml", "RAML configuration documents, in files or pipes");
    addRamlCheck(program, noun);
    addRamlShow(program, noun);
    addRamlGet(program, noun);
    addRamlDiff(program, noun);
    addRamlSort(program, noun);
    addRamlStats(program, noun);
    addRamlFormat(program, noun);
    addRamlGenerate(program, noun);
}

} // namespace dorn::tool
