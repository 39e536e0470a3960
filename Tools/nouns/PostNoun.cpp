// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Program.hpp"
#include "answers/PostText.hpp"
#include "waiting/TimeLimit.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

struct ShowOptions {
    std::string path;
    std::string kind;
    bool asJson = false;
};

Outcome show(const ShowOptions& options, Console& console)
{
    const PostView view = answerOf("the board's file system", [&options] {
        return readPost(options.path, options.kind.empty() ? kindOfFile(options.path) : parseKind(options.kind));
    });
    console.print(options.asJson ? jsonText(postJson(view)) : postText(view, console));
    return Outcome::Fine;
}

} // namespace

void addPostNoun(Program& program)
{
    CLI::App& noun = program.addNoun("post", "The results of power-on self-tests");
    const auto options = std::make_shared<ShowOptions>();
    CLI::App& verb = program.addVerb(
        noun, {"show", "Shows the results that a file holds, the latest first", "dorn post show /ffs/run/post_mcu.txt"},
        [options](Console& console) { return show(*options, console); });
    verb.add_option("FILE", options->path, "The file, with its path on the board")->required();
    verb.add_option("--kind", options->kind, "mcu, dsp or data2, if the file's form does not tell");
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

} // namespace dorn::tool
