// SPDX-License-Identifier: MIT
/// @file AutodetTest.hpp
/// Fixture of the tests of unit autodetection.
#pragma once

#include "RecordingPlatform.hpp"
#include "ScriptedDrivers.hpp"
#include "new/ApiAutodetInfo.h"
#include "new/IdentityCaches.hpp"

#include <gmock/gmock.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace dorn::test {

/// Gives every test a platform, drivers and a process that has asked nothing yet.
class AutodetTest : public testing::Test {
protected:
    AutodetTest()
    {
        using vel::hwapi::adet::IdentityCaches;
        std::construct_at<IdentityCaches>(&vel::hwapi::adet::identityCaches());
        m_drivers.units[0] = {"TARN", 0xA00123, "900001A.101", "L1200000001"};
    }

    /// What a function with buffer and length writes: all bytes of the buffer, `#` for those it leaves as they are.
    /// Empty when it returns 0; then it has written nothing.
    template <typename Function>
    static std::string ask(Function function, std::uint32_t length)
    {
        constexpr std::size_t guard = 16;
        std::string buffer(length + guard, '#');
        const TBoolean result = function(buffer.data(), length);
        EXPECT_EQ(buffer.substr(length), std::string(guard, '#')) << "written behind the buffer";
        buffer.resize(length);
        if (result == 0) {
            EXPECT_EQ(buffer, std::string(length, '#')) << "written although it failed";
            return "";
        }
        EXPECT_EQ(result, 1U);
        return buffer;
    }

    /// The log lines so far.
    std::vector<std::string> log() const
    {
        std::vector<std::string> lines;
        for (const std::string& call : m_platform.calls()) {
            if (call.find(" 0x20063 ") != std::string::npos) {
                lines.push_back(call);
            }
        }
        return lines;
    }

    std::vector<std::string> driverCalls() const { return m_platform.calls("ddal_"); }

    RecordingPlatform m_platform;
    ScriptedDrivers m_drivers;
};

/// @p text as it stands in a buffer of @p length bytes after `strncpy`.
inline std::string inBuffer(std::string text, std::size_t length)
{
    text.resize(length, '\0');
    return text;
}

} // namespace dorn::test
