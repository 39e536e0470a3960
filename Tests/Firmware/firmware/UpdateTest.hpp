// SPDX-License-Identifier: MIT
/// @file UpdateTest.hpp
/// Fixture for tests of firmware updates.
#pragma once

#include "FirmwareTest.hpp"
#include "TestBoard.hpp"
#include "firmware.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace dorn::test {

constexpr std::uint32_t boardHwSwId = 0x3A01;

/// A board with drivers and a directory of images.
class UpdateTest : public FirmwareTest {
protected:
    UpdateTest();

    /// Has the unit be this one. Before anything asks a driver.
    void useUnit(const std::string& unitId);

    /// Puts an image into the directory: a payload that begins with the version, as the drivers find it.
    void putImage(const std::string& name, std::uint32_t version, std::uint32_t hwSwId = boardHwSwId) const;
    /// The payload of such an image.
    static std::string payloadWith(std::uint32_t version);

    /// Lines of a function, without those of the functions that it calls, since the last call of this.
    std::vector<std::string> linesOf(const std::string& function);

    /// A buffer for file names that holds something.
    struct NameBuffer {
        std::array<char, 200> text{};
        NameBuffer() { text.fill('x'), text.back() = '\0'; }

        char* data() { return text.data(); }
        std::uint32_t size() const { return static_cast<std::uint32_t>(text.size()); }
        std::string name() const { return text.data(); }
    };

    static constexpr const char* directory = "/ffs/run/boot";

    testkit::TestBoard m_board;

private:
    std::size_t m_linesSeen = 0;
};

/// A line about a driver function that failed with #DDAL_ERROR_IO.
std::string driverFailure(const std::string& function, const std::string& driverFunction);

} // namespace dorn::test
