// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaFile.h"
#include "FirmwareTest.hpp"

namespace dorn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

/// What binary_version() gives.
struct Answer {
    std::int32_t result;
    std::uint32_t version;

    bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* stream)
{
    *stream << answer.result << ", version " << answer.version;
}

class VersionTest : public FirmwareTest {
protected:
    Answer read(std::uint32_t own = 0x3A01, std::int32_t minor = 0) const
    {
        Answer answer{0, 0xDEADBEEF};
        answer.result = binary_version(path, own, minor, &answer.version);
        return answer;
    }

    /// The version that is read from this text.
    std::uint32_t versionOf(const std::string& text) const
    {
        write(imageOf("payload", trailerOf(element("SwVersion", text) + list)));
        const Answer answer = read();
        EXPECT_EQ(answer.result, 0);
        return answer.version;
    }

    const std::string list = element("HwSwIdList", element("HwSwId", "3A01"));
    static constexpr const char* reading = "info binary_version(): Reading file '/ffs/run/boot/image.bin' trailer";
};

TEST_F(VersionTest, VersionOfAGoodImageIsRead)
{
    write(goodImage());

    EXPECT_EQ(read(), (Answer{0, 0x20A}));
    EXPECT_THAT(m_syslog.texts(),
                ElementsAreArray(joined(
                    {{reading},
                     trailerLines(goodImage()),
                     {"info binary_version(): Version:    1", "info binary_version(): TargetUnit: NAXE",
                      "info binary_version(): SwId:       FPGA", "info binary_version(): SwVersion:  0x20A",
                      "info binary_version(): BuildTime:  2026-11-21 09:18:01",
                      "info binary_version(): Crc32:      " + decimalAndHex(crcOf(payloadOf(1000))),
                      "info binary_version(): Length:     1000 (0x3e8)", "info scan_hwswid(): Found HwSwId: 0x3a01",
                      "info scan_hwswid(): Matching HwSwId found: 0x3a01"}})));
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(VersionTest, NumbersAreLoggedWithTheirSign)
{
    write(imageOf("payload", trailerOf(element("Version", "-2") + element("Crc32", "0x80000000") +
                                       element("Length", "0xFFFFFFFF"))));
    read();

    const std::vector<std::string> lines = m_syslog.texts();
    EXPECT_EQ(lines[5], "info binary_version(): Version:    -2");
    EXPECT_EQ(lines[10], "info binary_version(): Crc32:      -2147483648 (0x80000000)");
    EXPECT_EQ(lines[11], "info binary_version(): Length:     -1 (0xffffffff)");
}

TEST_F(VersionTest, VersionIsHexadecimalBehindASmallPrefixOnly)
{
    EXPECT_EQ(versionOf("0x10"), 16U);
    EXPECT_EQ(versionOf("0X10"), 0U);
    EXPECT_EQ(versionOf("10"), 10U);
    EXPECT_EQ(versionOf(" 0x10"), 0U);
    EXPECT_EQ(versionOf("20A"), 20U);
    EXPECT_EQ(versionOf("5000000000"), 0xFFFFFFFFU);
    EXPECT_EQ(versionOf(""), 0U);
}

TEST_F(VersionTest, PayloadIsNotLookedAt)
{
    write(imageOf("payload", trailerOf(element("Crc32", "1") + element("SwVersion", "7") + list)));

    EXPECT_EQ(read(), (Answer{0, 7}));
}

TEST_F(VersionTest, TrailerThatCannotBeReadIsAFailure)
{
    EXPECT_EQ(read(), (Answer{-1, 0}));
    EXPECT_THAT(m_syslog.texts(),
                ElementsAre(reading, "info get_trailer(): Could not open file: /ffs/run/boot/image.bin",
                            "info binary_version(): Trailer read failed 70406 (0x11306)"));
}

TEST_F(VersionTest, TrailerOffsetThatIsInvalidIsAFailure)
{
    write("payload" + wordOf(11));

    EXPECT_EQ(read(), (Answer{-1, 0}));
    EXPECT_EQ(m_syslog.texts().back(), "info binary_version(): Trailer read failed 70407 (0x11307)");
}

TEST_F(VersionTest, TrailerThatIsNotXmlIsAFailure)
{
    write(imageOf("payload", "no XML"));

    EXPECT_EQ(read(), (Answer{-2, 0}));
    EXPECT_THAT(m_syslog.texts(), ElementsAreArray(joined({{reading},
                                                           trailerLines(imageOf("payload", "no XML")),
                                                           {"info binary_version(): XML parsing failed 1"}})));
}

TEST_F(VersionTest, DocumentOfAnotherElementHasNoTrailer)
{
    write(imageOf("payload", "<image/>"));

    EXPECT_EQ(read(), (Answer{-3, 0}));
    EXPECT_THAT(m_syslog.texts(), ElementsAreArray(joined({{reading},
                                                           trailerLines(imageOf("payload", "<image/>")),
                                                           {"info binary_version(): Invalid trailer XML"}})));
}

TEST_F(VersionTest, ImageForAnotherBoardHasNoVersion)
{
    write(goodImage());

    EXPECT_EQ(read(0x3B01, 1), (Answer{1, 0}));
    EXPECT_EQ(m_syslog.texts().back(), "info binary_version(): Binary is not compatible with this board!");
}

TEST_F(VersionTest, ImageWithoutListFitsNobody)
{
    write(imageOf("payload", trailerOf(element("SwVersion", "7"))));

    EXPECT_EQ(read(0, 1), (Answer{1, 0}));
}

TEST_F(VersionTest, MinorDifferenceIsAllowedOnlyWhenAskedFor)
{
    write(goodImage());

    EXPECT_EQ(read(0x3A02, 1), (Answer{0, 0x20A}));
    EXPECT_EQ(read(0x3A02, 0), (Answer{1, 0}));
    EXPECT_EQ(m_syslog.texts().back(), "info binary_version(): Binary is not compatible with this board!");
}

} // namespace
} // namespace dorn::test
