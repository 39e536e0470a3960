// SPDX-License-Identifier: MIT
/// @file InvalidParameterException.hpp
/// An argument that a function cannot work with.
#pragma once

#include "CHwapiException.hpp"

namespace vel::hwapi::common {

/// Thrown for a wrong argument; nothing has been changed then.
class InvalidParameterException : public CHwapiException {
public:
    /// @param description which argument is wrong
    InvalidParameterException(const std::string& description, const char* file, ssize_t line)
        : CHwapiException("Invalid parameter", description, file, line)
    {
    }
};

} // namespace vel::hwapi::common
