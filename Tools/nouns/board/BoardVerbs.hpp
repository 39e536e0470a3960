// SPDX-License-Identifier: MIT
/// @file BoardVerbs.hpp
/// The verbs of the noun `board`, and its parts with verbs of their own. Each is a source file of its own,
/// BoardVerb<Verb>.cpp.
#pragma once

namespace CLI {
class App;
} // namespace CLI

namespace dorn::tool {

class Program;

void addBoardShow(Program& program, CLI::App& noun);
void addBoardFault(Program& program, CLI::App& noun);
void addBoardRun(Program& program, CLI::App& noun);
void addBoardReset(Program& program, CLI::App& noun);
void addBoardRio(Program& program, CLI::App& noun);
void addBoardSfp(Program& program, CLI::App& noun);
void addBoardLink(Program& program, CLI::App& noun);
void addBoardClock(Program& program, CLI::App& noun);

} // namespace dorn::tool
