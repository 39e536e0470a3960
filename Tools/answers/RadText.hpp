// SPDX-License-Identifier: MIT
/// @file RadText.hpp
/// R&D parameters as people and programs see them.
#pragma once

#include "Console.hpp"
#include "answers/RadDirectory.hpp"
#include "port/Clock.hpp"
#include "text/Json.hpp"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace dorn::tool {

/// How values are written for people.
enum class RadBase { Decimal, Hexadecimal };
std::string radValueText(std::uint32_t value, RadBase base);

/// A table in which values other than the default are marked "changed".
std::string radTable(const std::vector<RadEntry>& entries, RadBase base, const Console& console);
Json radJson(const std::vector<RadEntry>& entries);
Json radJson(const RadEntry& entry);
/// One "HWA/FIRM" a line; the number for names that are there more than once.
std::string radAddresses(const std::vector<RadEntry>& entries);

/// A parameter that has got another value.
struct RadChange {
    RadEntry entry;
    std::uint32_t before;
};

/// "HWA/FIRM 0x20054: 0 -> 1"
std::string radChangeText(const RadChange& change, RadBase base);
Json radChangeJson(const RadChange& change);

/// Remembers values, so that a change can be told with what was there before.
class RadMemory {
public:
    explicit RadMemory(const std::vector<RadEntry>& entries);

    /// Notes a value. A parameter that is new has had its default before.
    /// @return the change if the value is another one.
    std::optional<RadChange> note(const RadEntry& entry);

private:
    std::map<TAaConfigRadId, std::uint32_t> m_values;
};

} // namespace dorn::tool
