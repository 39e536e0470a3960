// SPDX-License-Identifier: MIT
/// @file RpramFields.hpp
/// The reset-persistent fields by the names under which operators know them.
#pragma once

#include "RpramShared.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dorn::tool {

/// A field that has storage.
struct RpramField {
    ERP_RAM_field field;
    std::string name; ///< "ResetType": the name of its file without what all have in common
    std::string path; ///< of its file, on the target
};

/// All of them, in the order of their numbers.
const std::vector<RpramField>& rpramFields();

/// The field that a person named, or gave the number of. @throws UsageError when there is none.
const RpramField& rpramFieldNamed(const std::string& text);

/// What a field holds.
struct RpramValue {
    std::uint32_t value;
    std::string text;

    bool operator==(const RpramValue&) const = default;
};

/// @return nothing when the field has not been written. @throws Failure when it cannot be read.
std::optional<RpramValue> readRpram(const RpramField& field);

/// The values that the field has had, as they stand in its file, newest first.
std::vector<std::string> rpramHistory(const RpramField& field);

/// Writes a field and looks whether it has been stored. @throws Failure when it has not.
void writeRpram(const RpramField& field, const RpramValue& value);

} // namespace dorn::tool
