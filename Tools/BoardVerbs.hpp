// SPDX-License-Identifier: MIT
/// @file BoardVerbs.hpp
/// The verbs of the noun `board`. A verb is a source file of its own that defines the function which adds it; here it
/// gets its line.
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
