// SPDX-License-Identifier: MIT
/// @file RamlVerbs.hpp
/// The verbs of the noun raml. Each is a source file of its own, RamlVerb<Verb>.cpp.
#pragma once

namespace CLI {
class App;
}

namespace dorn::tool {

class Program;

void addRamlCheck(Program& program, CLI::App& noun);
void addRamlShow(Program& program, CLI::App& noun);
void addRamlGet(Program& program, CLI::App& noun);
void addRamlDiff(Program& program, CLI::App& noun);
void addRamlSort(Program& program, CLI::App& noun);
void addRamlStats(Program& program, CLI::App& noun);
void addRamlFormat(Program& program, CLI::App& noun);
void addRamlGenerate(Program& program, CLI::App& noun);

} // namespace dorn::tool
