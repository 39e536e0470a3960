// SPDX-License-Identifier: MIT
#include "description/BoardNode.hpp"

#include <algorithm>
#include <exception>

namespace dorn::board {
namespace {

constexpr std::size_t cellSize = 4;

std::uint32_t cellAt(const TreeBytes& value, std::size_t index)
{
    std::uint32_t cell = 0;
    for (std::size_t byte = 0; byte < cellSize; ++byte) {
        cell = cell << 8 | std::to_integer<std::uint32_t>(value[index * cellSize + byte]);
    }
    return cell;
}

/// The texts of a list, each without the zero that ends it. The value ends with a zero.
std::vector<std::string> textsOf(const TreeBytes& value)
{
    std::vector<std::string> texts;
    for (auto begin = value.begin(); begin != value.end();) {
        const auto end = std::find(begin, value.end(), std::byte(0));
        texts.emplace_back(reinterpret_cast<const char*>(&*begin), static_cast<std::size_t>(end - begin));
        begin = end + 1;
    }
    return texts;
}

} // namespace

std::optional<BoardNode> BoardNode::findChild(const std::string& name) const
{
    for (const TreeNode& child : m_node->children) {
        if (const BoardNode found = nodeOf(child); child.name == name && found.isInUse()) {
            return found;
        }
    }
    return std::nullopt;
}

BoardNode BoardNode::child(const std::string& name) const
{
    if (auto found = findChild(name)) {
        return *found;
    }
    fail(DDAL_ERROR_NOT_FOUND, "has no node '" + name + "'");
}

BoardNode BoardNode::numberedChild(std::uint32_t number) const
{
    std::exception_ptr broken;
    for (const TreeNode& child : m_node->children) {
        const BoardNode node = nodeOf(child);
        try {
            if (node.has("reg") && node.number() == number && node.isInUse()) {
                return node;
            }
        } catch (const BoardFailure&) {
            broken = std::current_exception();
        }
    }
    if (broken) {
        std::rethrow_exception(broken);
    }
    fail(DDAL_ERROR_NOT_FOUND, "has no node with reg " + std::to_string(number));
}

std::vector<BoardNode> BoardNode::numberedChildren() const
{
    std::vector<BoardNode> children;
    for (const TreeNode& child : m_node->children) {
        if (const BoardNode node = nodeOf(child); node.has("reg") && node.isInUse()) {
            children.push_back(node);
        }
    }
    std::stable_sort(children.begin(), children.end(), [](const BoardNode& left, const BoardNode& right) {
        return *left.find("reg") < *right.find("reg");
    });
    return children;
}

std::string BoardNode::text(const std::string& property) const
{
    const TreeBytes& value = require(property);
    if (value.empty() || value.back() != std::byte(0)) {
        failAt(property, "is no text: it does not end with a zero");
    }
    if (std::find(value.begin(), value.end(), std::byte(0)) + 1 != value.end()) {
        failAt(property, "is no single text: it has a zero inside");
    }
    return textsOf(value).front();
}

std::string BoardNode::textIfAny(const std::string& property) const
{
    return has(property) ? text(property) : std::string();
}

bool BoardNode::lists(const std::string& property, const std::string& text) const
{
    const TreeBytes& value = require(property);
    if (value.empty() || value.back() != std::byte(0)) {
        failAt(property, "is no list of texts: it does not end with a zero");
    }
    const std::vector<std::string> texts = textsOf(value);
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

std::optional<std::uint32_t> BoardNode::cellIfAny(const std::string& property) const
{
    return has(property) ? std::optional(cell(property)) : std::nullopt;
}

std::vector<std::uint32_t> BoardNode::cells(const std::string& property, std::size_t count) const
{
    const TreeBytes& value = require(property);
    if (value.size() != count * cellSize) {
        failAt(property, "has " + std::to_string(value.size()) + " bytes, not " + std::to_string(count * cellSize));
    }
    std::vector<std::uint32_t> cells;
    for (std::size_t index = 0; index < count; ++index) {
        cells.push_back(cellAt(value, index));
    }
    return cells;
}

void BoardNode::fail(ddal_result code, const std::string& text) const
{
    throw BoardFailure(code, m_origin + "node '" + m_path + "' " + text);
}

void BoardNode::failAt(const std::string& property, const std::string& reason) const
{
    throw BoardFailure(DDAL_ERROR_BAD_DESCRIPTION,
                       m_origin + "property '" + property + "' of node '" + m_path + "' " + reason);
}

const TreeBytes* BoardNode::find(const std::string& property) const
{
    for (const TreeProperty& one : m_node->properties) {
        if (one.name == property) {
            return &one.value;
        }
    }
    return nullptr;
}

const TreeBytes& BoardNode::require(const std::string& property) const
{
    const TreeBytes* const value = find(property);
    if (!value) {
        fail(DDAL_ERROR_BAD_DESCRIPTION, "has no property '" + property + "'");
    }
    return *value;
}

bool BoardNode::isInUse() const
{
    return !has("status") || lists("status", "okay") || lists("status", "ok");
}

BoardNode BoardNode::nodeOf(const TreeNode& child) const
{
    return {child, m_origin, (m_path == "/" ? "" : m_path) + "/" + child.name};
}

} // namespace dorn::board
