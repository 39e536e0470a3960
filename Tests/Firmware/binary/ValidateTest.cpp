// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaFile.h"
#include "FirmwareTest.hpp"

#include <thread>

extern "C" std::int32_t checkInC(const char* path, const char* copy);

namespace dorn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using testkit::FailNth;

constexpr std::uint32_t ownId = 0x3A01;

class ValidateTest : public FirmwareTest {
protected:
    std::int32_t validate(const std::string& image, std::uint32_t own = ownId) const
    {
        write(image);
        return binary_validate(path, own);
    }

    /// What a trailer of @p content for the payload #payload comes to.
    std::int32_t validateContent(const std::string& content, std::uint32_t own = ownId) const
    {
        return validate(imageOf(payload, trailerOf(content)), own);
    }

    const std::string payload = payloadOf(1000);
    const std::string crcElement = element("Crc32", std::to_string(crcOf(payload)));
    const std::string listElement = element("HwSwIdList", element("HwSwId", "3A01"));
    const std::string crcText = decimalAndHex(crcOf(payload));
};

TEST_F(ValidateTest, GoodImageIsValid)
{
    EXPECT_EQ(validate(goodImage()), 0);
    EXPECT_THAT(m_log.texts(), ElementsAre("Info 0x20003 TrailerVersion: 1", "Info 0x20003 TargetUnit: NAXE",
                                           "Info 0x20003 SwId: FPGA", "Info 0x20003 SwVersion: 0x20A",
                                           "Info 0x20003 BuildTime: 2026-11-21 09:18:01",
                                           "Info 0x20003 CRC32: " + crcText, "Info 0x20003 File Length: 1000 (0x3e8)"));
    EXPECT_THAT(m_syslog.texts(),
                ElementsAreArray(joined({trailerLines(goodImage()),
                                         {crcLine(crcOf(payload)), "info scan_hwswid(): Found HwSwId: 0x3a01",
                                          "info scan_hwswid(): Matching HwSwId found: 0x3a01"}})));
}

TEST_F(ValidateTest, MissingFieldsAreZeroAndEmpty)
{
    EXPECT_EQ(validateContent(crcElement + listElement), 0);
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Info 0x20003 TrailerVersion: 0", "Info 0x20003 TargetUnit: ", "Info 0x20003 SwId: ",
                            "Info 0x20003 SwVersion: ", "Info 0x20003 BuildTime: ", "Info 0x20003 CRC32: " + crcText,
                            "Info 0x20003 File Length: 0 (0x0)"));
}

TEST_F(ValidateTest, NumbersAreLoggedWithTheirSign)
{
    EXPECT_EQ(validateContent(element("Version", "0xFFFFFFFE") + element("Crc32", "0x80000000") +
                              element("Length", "0xFFFFFFFF")),
              70413);
    EXPECT_EQ(m_log.texts()[0], "Info 0x20003 TrailerVersion: -2");
    EXPECT_EQ(m_log.texts()[5], "Info 0x20003 CRC32: -2147483648 (0x80000000)");
    EXPECT_EQ(m_log.texts()[6], "Info 0x20003 File Length: -1 (0xffffffff)");
}

TEST_F(ValidateTest, LengthIsNotComparedWithAnything)
{
    EXPECT_EQ(validateContent(crcElement + listElement + element("Length", "7")), 0);
}

TEST_F(ValidateTest, CrcMayBeWrittenInEitherBase)
{
    std::array<char, 32> hex{};
    for (const char* const format : {"0x%x", "0X%X", " 0x%08x "}) {
        std::snprintf(hex.data(), hex.size(), format, crcOf(payload));
        EXPECT_EQ(validateContent(element("Crc32", hex.data()) + listElement), 0) << hex.data();
    }
}

TEST_F(ValidateTest, TrailerThatCannotBeReadIsAFailure)
{
    EXPECT_EQ(binary_validate(path, ownId), 70406);
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Error 0x20003 Reading the file trailer failed, errorCode: 70406 (0x11306)"));
}

TEST_F(ValidateTest, TrailerOffsetThatIsInvalidIsAFailure)
{
    EXPECT_EQ(validate("payload" + wordOf(0)), 70407);
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Error 0x20003 Reading the file trailer failed, errorCode: 70407 (0x11307)"));
}

TEST_F(ValidateTest, TrailerThatIsNotXmlIsAFailure)
{
    EXPECT_EQ(validate(imageOf(payload, "<trailer>")), 70401);
    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x20003 Trailer data parsing failed (code: 1)"));
}

TEST_F(ValidateTest, TrailerInAnEncodingThatIsNotRead)
{
    EXPECT_EQ(validate(imageOf(payload, "<?xml version='1.0' encoding='UTF-16'?><trailer/>")), 70401);
    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x20003 Trailer data parsing failed (code: 2)"));
}

TEST_F(ValidateTest, TrailerThatIsEmptyIsAFailure)
{
    EXPECT_EQ(validate(imageOf(payload, "")), 70401);
    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x20003 Trailer data parsing failed (code: 1)"));
}

TEST_F(ValidateTest, TrailerIsReadUpToItsFirstNul)
{
    EXPECT_EQ(validate(imageOf(payload, trailerOf(crcElement + listElement) + std::string("\0</nonsense>", 12))), 0);
    EXPECT_EQ(validate(imageOf(payload, std::string("<trailer>\0</trailer>", 20))), 70401);
}

TEST_F(ValidateTest, TrailerMayBeALongerDocument)
{
    EXPECT_EQ(validate(imageOf(payload, "<?xml version='1.0' encoding='UTF-8'?>\n<!-- made here -->\n" +
                                            trailerOf(crcElement + listElement) + "\n<!-- > -->\n")),
              0);
}

TEST_F(ValidateTest, DocumentOfAnotherElementHasNoTrailer)
{
    EXPECT_EQ(validate(imageOf(payload, element("image", trailerOf(crcElement + listElement)))), 70401);
    EXPECT_THAT(m_log.texts(), ElementsAre("Debug 0x20003 SW_DL_ERROR!!! could not find node"));
}

TEST_F(ValidateTest, PayloadThatIsDamagedIsAFailure)
{
    std::string image = goodImage();
    image[500] = static_cast<char>(image[500] ^ 1);
    const auto damaged = static_cast<int>(crcOf(std::string_view(image).substr(0, 1000)));

    EXPECT_EQ(validate(image), 70413);
    EXPECT_EQ(m_log.texts().back(),
              "Error 0x20003 CRC check failed: /ffs/run/boot/image.bin. Calculated CRC32: " + std::to_string(damaged) +
                  ", Assumed: " + std::to_string(static_cast<int>(crcOf(payload))));
    EXPECT_EQ(m_log.texts().size(), 8U);
}

TEST_F(ValidateTest, CrcThatCannotBeComputedIsAFailure)
{
    const FailNth<AaFileOpen> failure(2);

    EXPECT_EQ(validate(goodImage()), 70413);
    EXPECT_EQ(m_log.texts().back(),
              "Error 0x20003 CRC check failed: /ffs/run/boot/image.bin. Calculated CRC32: 0, Assumed: " +
                  std::to_string(static_cast<int>(crcOf(payload))));
}

TEST_F(ValidateTest, CrcThatCannotBeComputedIsNoCrcOfZero)
{
    const FailNth<AaFileOpen> failure(2);

    EXPECT_EQ(validateContent(listElement), 70413);
}

TEST_F(ValidateTest, ImageForAnotherBoardIsRefused)
{
    EXPECT_EQ(validate(goodImage(), 0x3B01), 70411);
    EXPECT_EQ(m_log.texts().back(),
              "Error 0x20003 Own HwSwId not found from trailer, binary is not compatible with this board!");
}

TEST_F(ValidateTest, ImageWithoutListIsRefused)
{
    EXPECT_EQ(validateContent(crcElement), 70411);
}

TEST_F(ValidateTest, MinorDifferenceIsAllowed)
{
    EXPECT_EQ(validate(goodImage(), 0x3A77), 0);
    EXPECT_EQ(m_syslog.texts().back(),
              "info scan_hwswid(): Found matching HwSwId with minor version difference: 0x3a01");
}

TEST_F(ValidateTest, LogNeedsNoInfoToWork)
{
    const testkit::TestNode quiet;
    quiet.writeBoardFile(path, goodImage());
    m_log.clear();

    EXPECT_EQ(binary_validate(path, ownId), 0);
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(ValidateTest, FileMayBeValidatedByManyAtOnce)
{
    write(goodImage());
    std::array<std::int32_t, 4> results{-1, -1, -1, -1};
    std::vector<std::thread> threads;
    for (std::int32_t& result : results) {
        threads.emplace_back([&result] { result = binary_validate(path, ownId); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(results, ElementsAre(0, 0, 0, 0));
}

TEST_F(ValidateTest, WorksInC)
{
    write(goodImage());

    EXPECT_EQ(checkInC(path, "/copy"), 0x20A);
    EXPECT_EQ(checkInC("/missing", "/copy"), -1);
}

} // namespace
} // namespace dorn::test
