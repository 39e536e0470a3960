// SPDX-License-Identifier: MIT
/// @file BoardNode.hpp
/// A node of the board's description, with the properties that are read from it checked.
#pragma once

#include "description/BoardFailure.hpp"
#include "description/DeviceTree.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dorn::board {

/// Refers to the tree, which outlives it. A node whose `status` says that it is not in use is treated as if it were not
/// there.
///
/// What is missing is #DDAL_ERROR_NOT_FOUND where it is a node, for a board need not have everything, and
/// #DDAL_ERROR_BAD_DESCRIPTION where it is a property that every such node has. The texts name node and property.
class BoardNode {
public:
    /// @param origin how messages begin: "board description '/boards/tarn.dtb': "
    BoardNode(const TreeNode& node, std::string origin, std::string path)
        : m_node(&node), m_origin(std::move(origin)), m_path(std::move(path))
    {
    }

    /// "/board/units/unit@0"
    const std::string& path() const { return m_path; }

    std::optional<BoardNode> findChild(const std::string& name) const;
    /// @throws BoardFailure when there is none.
    BoardNode child(const std::string& name) const;
    /// The child whose `reg` begins with the cell @p number; one with a broken `reg` is in nobody's way unless it might
    /// be the one. @throws BoardFailure when there is none.
    BoardNode numberedChild(std::uint32_t number) const;
    /// All children that have a `reg`, in the order of its bytes.
    std::vector<BoardNode> numberedChildren() const;

    bool has(const std::string& property) const { return find(property) != nullptr; }
    /// A text: bytes that end with their only zero. @throws BoardFailure
    std::string text(const std::string& property) const;
    /// The text of a property that a node need not have; empty without it. @throws BoardFailure
    std::string textIfAny(const std::string& property) const;
    /// A list of texts that has @p text among them. @throws BoardFailure
    bool lists(const std::string& property, const std::string& text) const;
    /// A cell: 32 bits, most significant byte first. @throws BoardFailure
    std::uint32_t cell(const std::string& property) const { return cells(property, 1).front(); }
    /// The cell of a property that a node need not have. @throws BoardFailure
    std::optional<std::uint32_t> cellIfAny(const std::string& property) const;
    /// So many cells, not more and not less. @throws BoardFailure
    std::vector<std::uint32_t> cells(const std::string& property, std::size_t count) const;
    /// The one cell of `reg`.
    std::uint32_t number() const { return cell("reg"); }

    [[noreturn]] void fail(ddal_result code, const std::string& text) const;
    /// Fails because of a property. @param reason as in "has 3 bytes, not 4"
    [[noreturn]] void failAt(const std::string& property, const std::string& reason) const;

private:
    const TreeBytes* find(const std::string& property) const;
    const TreeBytes& require(const std::string& property) const;
    bool isInUse() const;
    BoardNode nodeOf(const TreeNode& child) const;

    const TreeNode* m_node;
    std::string m_origin;
    std::string m_path;
};

} // namespace dorn::board
