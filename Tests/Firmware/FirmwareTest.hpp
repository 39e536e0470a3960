// SPDX-License-Identifier: MIT
/// @file FirmwareTest.hpp
/// Fixture for tests of firmware images.
#pragma once

#include "FailNth.hpp"
#include "Image.hpp"
#include "LogCapture.hpp"
#include "SyslogCapture.hpp"
#include "TestNode.hpp"

#include <cstddef>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace dorn::test {

/// While it lives, an allocation with `malloc` of at least so many bytes fails.
class LargeAllocationsFail {
public:
    explicit LargeAllocationsFail(std::size_t size);
    ~LargeAllocationsFail();
    LargeAllocationsFail(const LargeAllocationsFail&) = delete;
    LargeAllocationsFail& operator=(const LargeAllocationsFail&) = delete;
};

/// A board with the image file #path, both logs, and a look at the descriptors at the end.
class FirmwareTest : public ::testing::Test {
protected:
    FirmwareTest();
    void TearDown() override;

    /// Makes #path a file of these bytes.
    void write(const std::string& image) const { m_node.writeBoardFile(path, image); }

    static constexpr const char* path = "/ffs/run/boot/image.bin";

    testkit::TestNode m_node{{.logLevel = "debug"}};
    testkit::LogCapture m_log;
    SyslogCapture m_syslog;
    std::ptrdiff_t m_descriptors;
};

/// The lines of get_trailer() when it reads the image at FirmwareTest::path.
std::vector<std::string> trailerLines(const std::string& image);

/// The lines of @p parts, one after the other.
std::vector<std::string> joined(const std::vector<std::vector<std::string>>& parts);

/// A number as `%d (0x%x)` prints it.
std::string decimalAndHex(std::uint32_t value);

/// The line with which calculate_crc() ends.
std::string crcLine(std::uint32_t crc);

} // namespace dorn::test
