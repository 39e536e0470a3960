// SPDX-License-Identifier: MIT
/// @file RamlStats.hpp
/// How much of what there is in a RAML document.
#pragma once

#include "Console.hpp"
#include "raml/dataclasses/RAML_Type.hpp"
#include "text/Json.hpp"

#include <array>
#include <cstdint>
#include <map>
#include <string>

namespace dorn::tool {

/// Of one class of managed objects, or of all.
struct RamlClassStats {
    std::uint64_t objects = 0;
    std::uint64_t parameters = 0; ///< simple ones
    std::uint64_t lists = 0;
    std::uint64_t elements = 0;      ///< values and items of the lists
    std::uint64_t valueBytes = 0;    ///< of all values
    std::uint64_t greatestValue = 0; ///< bytes of the longest value
};

struct RamlStats {
    std::uint64_t bytes = 0; ///< of the text
    std::uint64_t blocks = 0;
    std::uint64_t logs = 0;
    std::uint64_t repeatedNames =
        0; ///< objects whose distinguished name an earlier one has; findManagedObject() misses them
    std::array<std::uint64_t, 8> operations{}; ///< objects by RAML_MOOperationType
    RamlClassStats all;
    std::map<std::string, RamlClassStats> classes;
};

RamlStats ramlStats(const RAML::RAML_Type& document, std::uint64_t bytes);

std::string ramlStatsText(const RamlStats& stats, const Console& console);
Json ramlStatsJson(const RamlStats& stats);

/// "1 block", "2 blocks"
std::string counted(std::uint64_t count, const std::string& what);

} // namespace dorn::tool
