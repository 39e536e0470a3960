// SPDX-License-Identifier: MIT
#include "board/Menu.hpp"

#include <algorithm>
#include <string_view>

namespace dorn::tool {
namespace {

constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

} // namespace

Menu::Menu(std::string title, std::vector<Item> items) : m_title(std::move(title)), m_items(std::move(items))
{
    m_items.resize(std::min(m_items.size(), letters.size()));
}

Key Menu::keyOf(std::size_t place)
{
    return letters[place];
}

const Menu::Item* Menu::chosenBy(Key key) const
{
    const std::size_t place = letters.find(key);
    return place < m_items.size() ? &m_items[place] : nullptr;
}

} // namespace dorn::tool
