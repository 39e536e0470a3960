// SPDX-License-Identifier: MIT
/// @file BoardPlace.hpp
/// Where a board is run.
#pragma once

#include "board/BoardDescription.hpp"

namespace dorn::tool {

/// Points the environment of this process, and so of its children, at the device tree and the board root of a
/// description, as far as it does not say where they are already, and sets the description's variables, as far as it
/// does not have them. Before anything of the node is opened, and before there is a second thread.
void settleBoard(const BoardDescription& board);

/// Puts the description's files on the board root, if the environment says where it is: for who has the node to
/// himself.
/// @throws Failure when they cannot be put there.
void putBoardFiles(const BoardDescription& board);

} // namespace dorn::tool
