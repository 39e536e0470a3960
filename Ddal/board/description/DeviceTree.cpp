// SPDX-License-Identifier: MIT
#include "description/DeviceTree.hpp"

#include <algorithm>

namespace dorn::board {
namespace {

bool isTreeCharacter(char character)
{
    constexpr std::string_view others = ",._+-?#@";
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') || others.find(character) != std::string_view::npos;
}

} // namespace

void requireTreeName(std::string_view name)
{
    if (name.empty() || !std::all_of(name.begin(), name.end(), isTreeCharacter)) {
        throw TreeError("is damaged: a node or property has a name that no device tree has");
    }
}

} // namespace dorn::board
