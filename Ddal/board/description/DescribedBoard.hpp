// SPDX-License-Identifier: MIT
/// @file DescribedBoard.hpp
/// The board as its description says: what drivers of real hardware would find out by asking it.
#pragma once

#include "description/BoardNode.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace dorn::board {

/// The description, read once. Docs/device-tree-binding.md tells its nodes and properties.
///
/// It is the device-tree blob or the unpacked tree that `DORN_BOARD` names; without that variable it is the target's
/// `/proc/device-tree`, looked for below the board root.
class DescribedBoard {
public:
    /// Reads the description that the environment gives. Use it through `host::PerNode<DescribedBoard>`, which tries
    /// again at the next use when it fails. @throws BoardFailure
    DescribedBoard();
    /// Takes a tree. @param origin where it comes from, as messages begin: "board description 'x'"
    /// @throws BoardFailure when it has no node for the board.
    DescribedBoard(TreeNode tree, const std::string& origin);
    DescribedBoard(const DescribedBoard&) = delete;
    DescribedBoard& operator=(const DescribedBoard&) = delete;

    /// The process's one for its node. @throws BoardFailure
    static const DescribedBoard& get();

    /// Where it was read from.
    const std::string& path() const { return m_path; }
    /// What the board is called; may be empty.
    std::string model() const { return m_root.textIfAny("model"); }

    /// A node below the one for the board, by name. @throws BoardFailure when there is none.
    BoardNode part(const std::string& name) const { return m_board.child(name); }
    std::optional<BoardNode> findPart(const std::string& name) const { return m_board.findChild(name); }
    /// A node by the name of the group that it is in, and its number. @throws BoardFailure when there is none.
    BoardNode part(const std::string& group, std::uint32_t number) const { return part(group).numberedChild(number); }
    /// All nodes of a group, in the order of their numbers; none when there is no such group.
    std::vector<BoardNode> parts(const std::string& group) const;
    /// The node for the board itself.
    const BoardNode& board() const { return m_board; }

private:
    struct Source {
        std::string path;
        TreeNode tree;
    };
    static Source readSource();
    explicit DescribedBoard(Source source);

    std::string m_path;
    TreeNode m_tree;
    BoardNode m_root;
    BoardNode m_board;
};

} // namespace dorn::board
