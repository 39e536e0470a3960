// SPDX-License-Identifier: MIT
#include "OutputCapture.hpp"

#include "OpenDescriptors.hpp"

#include <cstdio>
#include <gtest/gtest.h>
#include <iostream>

namespace dorn::testkit {
namespace {

TEST(OutputCaptureTest, StreamsAreKeptApart)
{
    const OutputCapture output;

    std::printf("answer\n");
    std::fprintf(stderr, "reason\n");
    std::cout << "more\n";

    EXPECT_EQ(output.standardOutput(), "answer\nmore\n");
    EXPECT_EQ(output.standardError(), "reason\n");
}

TEST(OutputCaptureTest, LongOutputIsKeptWhole)
{
    const OutputCapture output;
    const std::string text(10'000, 'x');

    std::fputs(text.c_str(), stdout);

    EXPECT_EQ(output.standardOutput(), text);
}

TEST(OutputCaptureTest, OutputGoesWhereItWentBeforeAtTheEnd)
{
    const OutputCapture outer;
    {
        const OutputCapture inner;
        std::printf("inner\n");
    }
    std::printf("outer\n");

    EXPECT_EQ(outer.standardOutput(), "outer\n");
}

TEST(OutputCaptureTest, NoDescriptorIsLeftOpen)
{
    const std::ptrdiff_t before = openDescriptors();
    {
        const OutputCapture output;
    }

    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
} // namespace dorn::testkit
