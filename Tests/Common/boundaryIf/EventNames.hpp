// SPDX-License-Identifier: MIT
/// @file EventNames.hpp
/// The names of all events. This header does not show the interfaces, so nothing orders the static objects of a source
/// file that includes it after them.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace dorn::test {

/// What each event name is, and what it has to be.
std::vector<std::pair<std::string, std::string>> eventNames();

/// The names as static objects of other source files have seen them when they were initialized.
extern const std::vector<std::pair<std::string, std::string>> namesSeenByFirstFile;
extern const std::vector<std::pair<std::string, std::string>> namesSeenByLastFile;

} // namespace dorn::test
