// SPDX-License-Identifier: MIT
/// @file LogFixture.hpp
/// A node with features for tests of the log.
#pragma once

#include "AaConfigRad.h"
#include "OutputCapture.hpp"
#include "TestNode.hpp"
#include "log/LogLine.hpp"
#include "log/LogName.hpp"
#include "node/PerNode.hpp"

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>

namespace dorn::host {

constexpr std::uint32_t clocks = 0x20013;    ///< a feature with the name "CLKS"
constexpr std::uint32_t twin = 0x20014;      ///< another one with the name "EAC"
constexpr std::uint32_t otherTwin = 0x20015; ///< and one with the same name
constexpr std::uint32_t nameless = 0x7F0042; ///< a feature that is not registered

/// Takes what goes to standard error. Ends with the first look at it, so that a test that fails can say so.
class ErrorOutput {
public:
    std::string take()
    {
        const std::string text = m_capture->standardError();
        m_capture.reset();
        return text;
    }

private:
    std::optional<testkit::OutputCapture> m_capture{std::in_place};
};

/// Gives a test a node on which the EE is called "Clock".
class LogTest : public ::testing::Test {
protected:
    LogTest() { useLog("none"); }

    /// Has the next line open a log as the environment would say it.
    void useLog(const std::string& sinks, const std::string& level = "")
    {
        closeNode();
        setenv("DORN_LOG", sinks.c_str(), 1);
        setenv("DORN_LOG_LEVEL", level.c_str(), 1);
        nameLog("Clock");
    }

    static void registerFeatures()
    {
        AaConfigRadRegisterDomain(2, "HWA", [] {
            AaConfigRadSetMaxTagCount(2, 0x20100);
            AaConfigRadSetDefault(clocks, "CLKS", 0);
            AaConfigRadSetDefault(twin, "EAC", 0);
            AaConfigRadSetDefault(otherTwin, "EAC", 0);
        });
    }

    /// The process as a line tells it.
    static std::string process(const std::string& eeName = "Clock")
    {
        return eeName + "[" + std::to_string(getpid()) + "]";
    }

    testkit::TestNode m_node;
};

} // namespace dorn::host
