// SPDX-License-Identifier: MIT
/// @file RamlTest.hpp
/// What the tests of the RAML library share.
#pragma once

#include "AaGpuXml.hpp"
#include "LogCapture.hpp"
#include "TestNode.hpp"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace dorn::test {

/// A node that keeps every line.
class RamlTest : public ::testing::Test {
protected:
    /// The document element of a text; it lives until the next one is asked for.
    AaGpuXmlNode* nodeOf(const std::string& text)
    {
        AaGpuXmlParser parser(0);
        m_tree.reset(parser.AaGpuXmlParse(text, ""));
        return *m_tree->AaGpuXmlGetFirstChildren();
    }

    testkit::TestNode m_node{{.logLevel = "debug"}};
    testkit::LogCapture m_log;

private:
    std::unique_ptr<AaGpuXmlNode> m_tree;
};

inline std::string debugLine(const std::string& text)
{
    return "Debug 0x20066 " + text;
}

inline std::string errorLine(const std::string& text)
{
    return "Error 0x20066 " + text;
}

/// The lines that are errors.
inline std::vector<std::string> errorsOf(const testkit::LogCapture& log)
{
    std::vector<std::string> lines = log.texts();
    std::erase_if(lines, [](const std::string& line) { return !line.starts_with("Error "); });
    return lines;
}

} // namespace dorn::test
