// SPDX-License-Identifier: MIT
/// @file MsgSendingException.hpp
/// What is thrown when a message could not be made or sent.
#pragma once

#include "CHwapiException.hpp"

namespace vel::hwapi::common {

/// Thrown when a message could not be made or sent.
class MsgSendingException : public CHwapiException {
public:
    MsgSendingException(const std::string& description, const char* file, ssize_t line)
        : CHwapiException("Message sending failed", description, file, line)
    {
    }
};

} // namespace vel::hwapi::common
