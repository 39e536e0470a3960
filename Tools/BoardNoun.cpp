// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "BoardParts.hpp"
#include "Program.hpp"

namespace dorn::tool {

void addBoardNoun(Program& program)
{
    CLI::App& noun = program.addNoun("board", "The hardware of the board, and what happens to it");
    addBoardSfp(program, noun);
    addBoardLink(program, noun);
    addBoardClock(program, noun);
}

} // namespace dorn::tool
