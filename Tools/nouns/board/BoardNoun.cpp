// SPDX-License-Identifier: MIT
#include "Nouns.hpp"
#include "Program.hpp"
#include "nouns/board/BoardVerbs.hpp"

#include <CLI/CLI.hpp>

namespace dorn::tool {

void addBoardNoun(Program& program)
{
    CLI::App& noun = program.addNoun("board", "The hardware of the board, and what happens to it");
    addBoardShow(program, noun);
    addBoardRun(program, noun);
    addBoardFault(program, noun);
    addBoardReset(program, noun);
    addBoardRio(program, noun);
    addBoardSfp(program, noun);
    addBoardLink(program, noun);
    addBoardClock(program, noun);
}

} // namespace dorn::tool
