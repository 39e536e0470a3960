// SPDX-License-Identifier: MIT
/// @file RpramText.hpp
/// Reset-persistent fields as people and programs see them.
#pragma once

#include "Console.hpp"
#include "answers/RpramFields.hpp"
#include "text/Json.hpp"

#include <optional>
#include <string>
#include <vector>

namespace dorn::tool {

/// A field with what it holds; nothing when it has not been written.
struct RpramEntry {
    RpramField field;
    std::optional<RpramValue> value;
};

/// A table of fields.
std::string rpramTable(const std::vector<RpramEntry>& entries, const Console& console);
/// "0x3 warm"
std::string rpramValueText(const RpramValue& value);
/// `value` and `text` are null for a field that has not been written.
Json rpramJson(const RpramEntry& entry);

} // namespace dorn::tool
