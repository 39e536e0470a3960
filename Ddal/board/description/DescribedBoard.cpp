// SPDX-License-Identifier: MIT
#include "description/DescribedBoard.hpp"

#include "description/TreeBlob.hpp"
#include "description/TreeDirectory.hpp"
#include "node/BoardRoot.hpp"
#include "node/PerNode.hpp"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace dorn::board {
namespace {

constexpr const char* boardNode = "board";
constexpr const char* boardCompatible = "dorn,board";
constexpr const char* targetPath = "/proc/device-tree";

std::string originOf(const std::string& path)
{
    return "board description '" + path + "'";
}

TreeNode readTree(const std::string& path)
{
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored) ? readTreeDirectory(path, boardNode)
                                                        : readTreeBlob(path, boardNode);
}

BoardNode requireBoard(const BoardNode& root, const std::string& origin)
{
    const auto board = root.findChild(boardNode);
    if (!board) {
        throw BoardFailure(DDAL_ERROR_BAD_DESCRIPTION, origin + " has no node '/board'");
    }
    if (!board->lists("compatible", boardCompatible)) {
        board->failAt("compatible", std::string("does not list '") + boardCompatible + "'");
    }
    return *board;
}

} // namespace

DescribedBoard::Source DescribedBoard::readSource()
{
    const char* const named = std::getenv("DORN_BOARD");
    const bool isNamed = named && *named;
    const std::string path = isNamed ? named : targetPath;
    try {
        return {path, readTree(isNamed ? path : host::boardPath(path))};
    } catch (const TreeError& error) {
        throw BoardFailure(DDAL_ERROR_NO_DESCRIPTION,
                           originOf(path) + " " + error.what() + (isNamed ? "" : " (DORN_BOARD can name another one)"));
    }
}

DescribedBoard::DescribedBoard() : DescribedBoard(readSource()) {}

DescribedBoard::DescribedBoard(Source source) : DescribedBoard(std::move(source.tree), originOf(source.path))
{
    m_path = source.path;
}

DescribedBoard::DescribedBoard(TreeNode tree, const std::string& origin)
    : m_tree(std::move(tree)), m_root(m_tree, origin + ": ", "/"), m_board(requireBoard(m_root, origin))
{
}

const DescribedBoard& DescribedBoard::get()
{
    return host::PerNode<DescribedBoard>::get();
}

std::vector<BoardNode> DescribedBoard::parts(const std::string& group) const
{
    const auto node = findPart(group);
    return node ? node->numberedChildren() : std::vector<BoardNode>();
}

} // namespace dorn::board
