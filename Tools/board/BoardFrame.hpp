// SPDX-License-Identifier: MIT
/// @file BoardFrame.hpp
/// The picture of a board that runs.
#pragma once

#include "board/BoardObserver.hpp"
#include "board/EventText.hpp"
#include "board/Frame.hpp"
#include "board/Menu.hpp"
#include "board/ServiceLine.hpp"

#include <deque>
#include <string>
#include <vector>

namespace dorn::tool {

/// What a picture shows.
struct BoardContent {
    std::string board;     ///< its name
    std::string node;      ///< "node 0x0F01"
    std::string age;       ///< how long it has been running
    std::string condition; ///< "15 of 15 run", "ending"
    bool isWell = false;   ///< whether that is as it is to be
    bool isEnding = false; ///< whether all have been asked to end
    std::vector<ServiceLine> services;
    BoardPicture picture;
    std::deque<SupervisorEvent> events; ///< the oldest first
    const Menu* menu = nullptr;         ///< a choice in front of the rest
    bool isHelpWanted = false;
};

/// Puts as much into a picture of any size as there is room for, the most important first.
Frame boardFrame(const BoardContent& content, FrameSize size);

} // namespace dorn::tool
