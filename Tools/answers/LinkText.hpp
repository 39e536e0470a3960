// SPDX-License-Identifier: MIT
/// @file LinkText.hpp
/// Baseband links as people and programs see them.
#pragma once

#include "Console.hpp"
#include "LinkMessages.hpp"
#include "text/Json.hpp"

#include <string>
#include <vector>

namespace dorn::tool {

/// "cpri0"
std::string linkName(const examples::SLink& link);
/// What the link receives: "HFNSYNC".
std::string linkRxText(const examples::SLink& link);
/// Whether that is all that it can be.
bool isLinkUp(const examples::SLink& link);
/// "LOS, LOF"; "-" for none.
std::string linkConditionsText(const examples::SLink& link);

std::string linkTable(const std::vector<examples::SLink>& links, const Console& console);
Json linksJson(const std::vector<examples::SLink>& links);
/// The names of the links, one a line.
std::string linkNames(const std::vector<examples::SLink>& links);

} // namespace dorn::tool
