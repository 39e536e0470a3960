// SPDX-License-Identifier: MIT
/// @file StandardStreams.hpp
/// The three descriptors that a process is given: made sure of, and written to without risk.
#pragma once

#include "port/Clock.hpp"

#include <cstddef>
#include <string_view>

namespace dorn::host {

/// Opens `/dev/null` for each of the descriptors 0, 1 and 2 that is closed, so that no file of the program's gets its
/// number and then what is meant for standard output or standard error. Reading and writing there goes on to fail as it
/// does without the descriptors. To be called before anything else is opened.
void openMissingStandardStreams();

/// How long a writer waits for a standard error that takes nothing: a pipe whose reader is busy, a stopped terminal.
constexpr Nanoseconds standardErrorPatience = std::chrono::milliseconds(100);

/// Whether standard error is a file, or a device such as /dev/null, that takes everything at once, or closed.
bool isStandardErrorAlwaysReady();

/// Writes @p text to standard error as it is at the moment. A file gets it as any writer's. A pipe, socket or terminal
/// gets what it takes within @p patience; one that nobody reads any more fails without a SIGPIPE.
/// @return the bytes written; when they are fewer than those of @p text, `errno` tells why.
std::size_t writeToStandardError(std::string_view text, Nanoseconds patience = standardErrorPatience);
/// The same without a look at what it is, for one that is known to be always ready.
std::size_t writeToReadyStandardError(std::string_view text);

} // namespace dorn::host
