// SPDX-License-Identifier: MIT
#include "board/BoardPlace.hpp"

#include "Outcome.hpp"

#include <cstdlib>
#include <filesystem>

namespace dorn::tool {
namespace {

constexpr int unlessSet = 0;

void putFiles(const std::string& from, const std::string& root)
{
    using std::filesystem::copy_options;
    std::error_code error;
    std::filesystem::create_directories(root, error);
    if (!error && !from.empty()) {
        std::filesystem::copy(from, root, copy_options::recursive | copy_options::overwrite_existing, error);
    }
    if (error) {
        throw Failure("the board's files cannot be put into '" + root + "': " + error.message() +
                      " (DORN_ROOT chooses another place)");
    }
}

} // namespace

void settleBoard(const BoardDescription& board)
{
    if (!board.tree.empty()) {
        setenv("DORN_BOARD", board.tree.c_str(), unlessSet);
    }
    if (!board.root.empty()) {
        setenv("DORN_ROOT", board.root.c_str(), unlessSet);
    }
    for (const auto& [name, value] : board.environment) {
        setenv(name.c_str(), value.c_str(), unlessSet);
    }
}

void putBoardFiles(const BoardDescription& board)
{
    const char* const root = std::getenv("DORN_ROOT");
    if (root && *root) {
        putFiles(board.files, root);
    }
}

} // namespace dorn::tool
