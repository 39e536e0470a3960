// SPDX-License-Identifier: MIT
/// @file Menu.hpp
/// A choice that is made with one key.
#pragma once

#include "board/Keyboard.hpp"

#include <functional>
#include <string>
#include <vector>

namespace dorn::tool {

/// Offers things, each with a letter of its own: a to z, then A to Z; no more than 52.
class Menu {
public:
    struct Item {
        std::string text;
        std::function<void()> choose;
    };

    explicit Menu(std::string title, std::vector<Item> items);

    const std::string& title() const { return m_title; }
    const std::vector<Item>& items() const { return m_items; }
    /// The key of the item at a place.
    static Key keyOf(std::size_t place);
    /// What a key chooses; null when nothing has it.
    const Item* chosenBy(Key key) const;

private:
    std::string m_title;
    std::vector<Item> m_items;
};

} // namespace dorn::tool
