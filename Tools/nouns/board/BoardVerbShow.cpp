// SPDX-License-Identifier: MIT
#include "Program.hpp"
#include "answers/BoardText.hpp"
#include "nouns/board/BoardVerbs.hpp"
#include "waiting/TimeLimit.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

struct ShowOptions {
    bool asJson = false;
};

Outcome show(const ShowOptions& options, Console& console)
{
    const BoardView view = answerOf("the board", [] { return viewOf(board::DescribedBoard::get()); });
    console.print(options.asJson ? jsonText(boardJson(view)) : boardText(view, console));
    return Outcome::Fine;
}

} // namespace

void addBoardShow(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<ShowOptions>();
    CLI::App& verb = program.addVerb(
        noun, {"show", "Shows what the board has, what has been flashed and how it is mounted", "dorn board show"},
        [options](Console& console) { return show(*options, console); });
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

} // namespace dorn::tool
