// SPDX-License-Identifier: MIT
// The page about RAML documents shows what the command really prints.
#include "Process.hpp"
#include "ShownCommands.hpp"
#include "TestNode.hpp"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace dorn::tool {
namespace {

/// The commands of the page, from the first to the last, in a folder with the documents that it speaks of.
TEST(RamlDocumentTest, EveryCommandPrintsWhatThePageShows)
{
    std::ifstream page(DORN_RAML_DOCUMENT);
    const std::vector<ShownCommand> commands = shownCommands({std::istreambuf_iterator<char>(page), {}});
    ASSERT_GE(commands.size(), 10U);
    const testkit::TestNode node;
    const std::string folder = node.boardRoot();
    std::filesystem::copy(DORN_RAML_DOCUMENT_FILES, folder);
    for (const ShownCommand& command : commands) {
        const std::string script = "cd \"$1\" && dorn() { \"$0\" \"$@\"; } && " + command.typed;
        testkit::Process shell("/bin/bash", {"-c", "exec 2>&1; " + script, DORN_COMMAND, folder});
        shell.waitForEnd();

        EXPECT_EQ(shell.standardOutput(), command.output) << command.typed;
    }
}

} // namespace
} // namespace dorn::tool
