// SPDX-License-Identifier: MIT
// Writes what is installed beside the command: its manual and its completion, and the manual of the conformance suite,
// which knows none of the command's texts. Run by the build. Usage: dorn-manual DIRECTORY
#include "Completion.hpp"
#include "Nouns.hpp"
#include "Options.hpp"
#include "Program.hpp"
#include "files/NewFile.hpp"
#include "manual/HelpPage.hpp"
#include "manual/ManualPage.hpp"

#include <CLI/CLI.hpp>
#include <exception>
#include <filesystem>
#include <iostream>
#include <span>
#include <string>

namespace {

using namespace dorn::tool;

void write(const std::filesystem::path& path, const std::string& text)
{
    std::filesystem::create_directories(path.parent_path());
    NewFile file(path.string());
    file.write(std::as_bytes(std::span(text)));
    file.keep();
}

void writePage(const std::filesystem::path& directory, const ManualPage& page)
{
    write(directory / "man1" / (page.name + ".1"), page.text);
}

void writeAll(const std::filesystem::path& directory)
{
    Program program;
    addNouns(program);
    for (const ManualPage& page : manualPages(program)) {
        writePage(directory, page);
    }
    const std::string suite = "dorn-conformance";
    writePage(directory / "conformance",
              helpPage(suite, dorn::conformance::helpText(suite), program.commandLine().version()));
    write(directory / "bash" / "dorn", bashCompletion(program));
    write(directory / "zsh" / "_dorn", zshCompletionFunction(program));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "Usage: dorn-manual DIRECTORY\n";
        return 2;
    }
    try {
        writeAll(argv[1]);
    } catch (const std::exception& error) {
        std::cerr << "dorn-manual: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
