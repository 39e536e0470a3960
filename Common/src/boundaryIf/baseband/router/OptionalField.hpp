// SPDX-License-Identifier: MIT
/// @file OptionalField.hpp
/// The optional fields of the router's records: a value and a flag that tells whether it has been set.
#pragma once

#include <type_traits>

namespace vel::hwapi::common::bif::baseband::router {

/// Stores a value and marks it as set.
template <class Value>
constexpr void setField(Value& field, bool& isSet, std::type_identity_t<Value> value)
{
    field = value;
    isSet = true;
}

} // namespace vel::hwapi::common::bif::baseband::router
