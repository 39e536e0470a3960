// SPDX-License-Identifier: MIT
/// @file EnumName.hpp
/// Names of enumerators, for log lines and displays: `nameOf(ESwPllState_Holdover)` is "Holdover".
///
/// An enumeration has names by a function namesOf() beside it, which takes any of its values and returns them all.
#pragma once

#include <array>
#include <string_view>

namespace vel::hwapi::common::bif {

/// One enumerator and its name, a row of what namesOf() returns.
template <class Enum>
struct EnumName {
    /// The enumerator.
    Enum value;
    /// What nameOf() returns for it.
    std::string_view name;
};

/// @return "unknown" for a value that is no enumerator's, such as hardware may report
template <class Enum>
constexpr std::string_view nameOf(Enum value)
{
    for (const EnumName<Enum>& entry : namesOf(value)) {
        if (entry.value == value) {
            return entry.name;
        }
    }
    return "unknown";
}

} // namespace vel::hwapi::common::bif
