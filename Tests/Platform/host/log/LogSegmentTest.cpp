// SPDX-License-Identifier: MIT
#include "log/LogSegment.hpp"

#include <gtest/gtest.h>

namespace dorn::host {
namespace {

TEST(SegmentNameTest, FileNameTellsWhoseItIs)
{
    EXPECT_EQ(segmentFileName({"Clock", 4711, 0x1879F2BC, 1}), "Clock.4711.1879f2bc.1.log");
}

TEST(SegmentNameTest, FileNameReadsBack)
{
    for (const SegmentName& name : {SegmentName{"Clock", 4711, 0x1879F2BC, 1}, SegmentName{"a.b.c", 0, 0, 0},
                                    SegmentName{"x", 0x7FFFFFFF, 0x7FFFFFFFFFFFFFFF, 1}}) {
        SegmentName read;
        EXPECT_TRUE(parseSegmentFileName(segmentFileName(name), read));
        EXPECT_EQ(read, name);
    }
}

TEST(SegmentNameTest, EeNameBecomesPartOfAFileName)
{
    EXPECT_EQ(segmentFileName({"../a b\n", 1, 2, 0}), "_.._a_b_.1.2.0.log");
    EXPECT_EQ(segmentFileName({"", 1, 2, 0}), "_.1.2.0.log");
    EXPECT_EQ(segmentFileName({std::string(200, 'n'), 1, 2, 0}), std::string(63, 'n') + ".1.2.0.log");
}

TEST(SegmentNameTest, OtherFileNamesAreRefused)
{
    SegmentName name;
    EXPECT_TRUE(parseSegmentFileName("Clock.1.a.0.log", name));
    for (const char* const fileName :
         {"", ".", "..", "log", ".log", "Clock.log", "Clock.1.a.0", "Clock.1.a.2.log", "Clock.1.a.00.log",
          "Clock.x.a.0.log", "Clock.1.A.0.log", "Clock.-1.a.0.log", "Clock.1..0.log", ".1.a.0.log",
          "Clock.1.a.0.log.broken", "1.a.0.log", "Clock.1.a.4294967296.log", "Clock.1.ffffffffffffffff.0.log"}) {
        EXPECT_FALSE(parseSegmentFileName(fileName, name)) << fileName;
    }
}

} // namespace
} // namespace dorn::host
