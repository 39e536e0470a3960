// SPDX-License-Identifier: MIT
#include "SupervisorS.hpp"

#include "BoardPipe.hpp"
#include "LogCapture.hpp"
#include "ServiceUnderTest.hpp"
#include "SupervisorFifo.h"
#include "TestNode.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

namespace dorn::examples {
namespace {

class SupervisorSTest : public testing::Test {
protected:
    ~SupervisorSTest() override { close(m_fifo); }

    testkit::TestNode m_node{{.logLevel = "info"}};
    testkit::LogCapture m_lines;
    int m_fifo = openBoardPipe("/tmp", "/tmp/SupervisorFifo");
};

TEST_F(SupervisorSTest, WhatServicesTellIsLogged)
{
    ASSERT_GE(m_fifo, 0);
    SupervisorS supervisor(m_fifo);
    testkit::ServiceUnderTest service(supervisor);
    ASSERT_TRUE(service.waitUntilReady());

    EXPECT_EQ(SupervisorFifoWrite(5, "hello"), 0);
    EXPECT_TRUE(m_lines.waitFor("Info 0x20040 Supervisor is told: hello"));

    EXPECT_EQ(SupervisorFifoWrite(5, "again"), 0);
    EXPECT_TRUE(m_lines.waitFor("Info 0x20040 Supervisor is told: again"));

    EXPECT_EQ(SupervisorFifoWrite(10, "two\nlines\n"), 0); // two messages that are read together
    EXPECT_TRUE(m_lines.waitFor("Info 0x20040 Supervisor is told: two"));
    EXPECT_TRUE(m_lines.waitFor("Info 0x20040 Supervisor is told: lines"));
}

} // namespace
} // namespace dorn::examples
