// SPDX-License-Identifier: MIT
/// @file MsgHandlingException.hpp
/// A message that could not be handled.
#pragma once

#include "CHwapiException.hpp"

namespace vel::hwapi::common {

/// Thrown while a message is handled. In a message delegate it ends the service.
class MsgHandlingException : public CHwapiException {
public:
    /// @param description what could not be handled
    MsgHandlingException(const std::string& description, const char* file, ssize_t line)
        : CHwapiException("Message handling error", description, file, line)
    {
    }
};

} // namespace vel::hwapi::common
