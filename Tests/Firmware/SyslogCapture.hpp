// SPDX-License-Identifier: MIT
/// @file SyslogCapture.hpp
/// The lines that a test's code gives to `syslog`.
#pragma once

#include <string>
#include <vector>

namespace dorn::test {

/// Collects every line while it lives; one at a time. A program that links it has a `syslog` of its own, which drops
/// the lines that nobody collects.
class SyslogCapture {
public:
    SyslogCapture();
    ~SyslogCapture();
    SyslogCapture(const SyslogCapture&) = delete;
    SyslogCapture& operator=(const SyslogCapture&) = delete;

    /// The lines so far in the form `info binary_crc(): text`: priority, text.
    std::vector<std::string> texts() const;
};

} // namespace dorn::test
