// SPDX-License-Identifier: MIT
/// @file SfpText.hpp
/// SFP cages as people and programs see them.
#pragma once

#include "Console.hpp"
#include "SfpMessages.hpp"
#include "text/Json.hpp"

#include <string>
#include <vector>

namespace dorn::tool {

/// What is in a cage: "ready".
std::string sfpModuleText(const examples::SSfpCage& cage);

std::string sfpTable(const std::vector<examples::SSfpCage>& cages, const Console& console);
Json sfpJson(const std::vector<examples::SSfpCage>& cages);
/// The numbers of the cages, one a line.
std::string sfpCageNumbers(const std::vector<examples::SSfpCage>& cages);

} // namespace dorn::tool
