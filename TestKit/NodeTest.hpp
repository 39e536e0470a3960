// SPDX-License-Identifier: MIT
/// @file NodeTest.hpp
/// GoogleTest fixture for tests that use the platform.
#pragma once

#include "LogCapture.hpp"
#include "TestNode.hpp"

#include <gtest/gtest.h>

namespace dorn::testkit {

/// Gives every test a node and its log:
///
///     class GreeterSTest : public NodeTest { ... };
class NodeTest : public ::testing::Test {
protected:
    /// The test's own node: run directory and board root.
    TestNode m_node;
    /// The log lines since the test began.
    LogCapture m_log;
};

} // namespace dorn::testkit
