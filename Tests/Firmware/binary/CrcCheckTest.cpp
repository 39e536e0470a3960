// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaFile.h"
#include "FirmwareTest.hpp"

namespace dorn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using testkit::FailNth;

class CrcCheckTest : public FirmwareTest {
protected:
    std::int32_t check(const std::string& image) const
    {
        write(image);
        return binary_crc(path);
    }

    const std::string payload = payloadOf(1000);
};

TEST_F(CrcCheckTest, GoodImageIsWhole)
{
    EXPECT_EQ(check(goodImage()), 0);
    EXPECT_THAT(m_syslog.texts(), ElementsAreArray(joined({trailerLines(goodImage()), {crcLine(crcOf(payload))}})));
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(CrcCheckTest, NothingButTheCrcCounts)
{
    EXPECT_EQ(check(imageOf(payload, trailerOf(element("Crc32", std::to_string(crcOf(payload)))))), 0);
}

TEST_F(CrcCheckTest, TrailerThatCannotBeReadIsAFailure)
{
    EXPECT_EQ(binary_crc(path), 70406);
    EXPECT_THAT(m_syslog.texts(),
                ElementsAre("info get_trailer(): Could not open file: /ffs/run/boot/image.bin",
                            "info binary_crc(): File '/ffs/run/boot/image.bin' trailer read failed 70406 (0x11306)"));
}

TEST_F(CrcCheckTest, TrailerOffsetThatIsInvalidIsAFailure)
{
    EXPECT_EQ(check("payload" + wordOf(0)), 70407);
    EXPECT_EQ(m_syslog.texts().back(),
              "info binary_crc(): File '/ffs/run/boot/image.bin' trailer read failed 70407 (0x11307)");
}

TEST_F(CrcCheckTest, TrailerThatIsNotXmlIsAFailure)
{
    const std::string image = imageOf(payload, "<trailer>");

    EXPECT_EQ(check(image), 70401);
    EXPECT_THAT(m_syslog.texts(),
                ElementsAreArray(joined({trailerLines(image), {"info binary_crc(): XML parsing failed 1"}})));
}

TEST_F(CrcCheckTest, DocumentOfAnotherElementHasNoTrailer)
{
    const std::string image = imageOf(payload, "<Trailer/>");

    EXPECT_EQ(check(image), 70401);
    EXPECT_THAT(m_syslog.texts(),
                ElementsAreArray(joined({trailerLines(image), {"info binary_crc(): Invalid trailer XML"}})));
}

TEST_F(CrcCheckTest, PayloadThatIsDamagedIsAFailure)
{
    std::string image = goodImage();
    image[0] = static_cast<char>(image[0] ^ 0x80);
    const std::uint32_t damaged = crcOf(std::string_view(image).substr(0, 1000));

    EXPECT_EQ(check(image), 70413);
    EXPECT_THAT(
        m_syslog.texts(),
        ElementsAreArray(joined(
            {trailerLines(image),
             {crcLine(damaged), "info binary_crc(): CRC check failed: /ffs/run/boot/image.bin. Calculated CRC32: " +
                                    std::to_string(static_cast<int>(damaged)) +
                                    ", Assumed: " + std::to_string(static_cast<int>(crcOf(payload)))}})));
}

TEST_F(CrcCheckTest, CrcThatIsMissingIsZero)
{
    EXPECT_EQ(check(imageOf(payload, "<trailer/>")), 70413);
    EXPECT_EQ(m_syslog.texts().back(),
              "info binary_crc(): CRC check failed: /ffs/run/boot/image.bin. Calculated CRC32: " +
                  std::to_string(static_cast<int>(crcOf(payload))) + ", Assumed: 0");
}

TEST_F(CrcCheckTest, CrcThatCannotBeComputedIsAFailure)
{
    const FailNth<AaFileOpen> failure(2);

    EXPECT_EQ(check(imageOf(payload, "<trailer/>")), 70413);
    EXPECT_EQ(m_syslog.texts().back(),
              "info binary_crc(): CRC check failed: /ffs/run/boot/image.bin. Calculated CRC32: 0, Assumed: 0");
}

} // namespace
} // namespace dorn::test
