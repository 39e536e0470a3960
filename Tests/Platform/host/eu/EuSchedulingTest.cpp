// SPDX-License-Identifier: MIT
#include "Process.hpp"
#include "TestNode.hpp"

#include <gtest/gtest.h>

namespace dorn::host::test {
namespace {

TEST(EuSchedulingTest, WhereRealTimeIsDeniedEusRunTimeSharedAndOneLineSaysSo)
{
    const testkit::TestNode node({.log = "stderr", .logLevel = "debug"});
    testkit::Process process(DORN_EU_SCHEDULING_PROGRAM);

    EXPECT_EQ(process.waitForEnd(), 0);

    EXPECT_EQ(process.standardOutput(), "time-shared\ntime-shared\n");
    const std::string line = "EU Eager and others run time-shared: this process may not use real-time scheduling\n";
    const std::string error = process.standardError();
    ASSERT_GE(error.size(), line.size()) << error;
    EXPECT_EQ(error.substr(error.size() - line.size()), line);
    EXPECT_NE(error.find(" debug "), std::string::npos) << error;
    EXPECT_EQ(error.find('\n'), error.size() - 1) << error;
}

} // namespace
} // namespace dorn::host::test
