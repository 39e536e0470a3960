// SPDX-License-Identifier: MIT
/// @file BoardParts.hpp
/// The parts of the noun `board`. Each is a source file of its own, which defines the function that adds it.
#pragma once

namespace CLI {
class App;
}

namespace dorn::tool {

class Program;

void addBoardSfp(Program& program, CLI::App& board);
void addBoardLink(Program& program, CLI::App& board);
void addBoardClock(Program& program, CLI::App& board);

} // namespace dorn::tool
