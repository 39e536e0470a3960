// SPDX-License-Identifier: MIT
#include "image/ImageMaker.hpp"

#include "FailingFilePort.hpp"
#include "Image.hpp"
#include "SyslogCapture.hpp"
#include "TestNode.hpp"
#include "binary.h"
#include "files/NewFile.hpp"
#include "image/ImageText.hpp"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

using test::payloadOf;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;
using ::testing::UnorderedElementsAre;
using testkit::FailingFilePort;
using testkit::FileOperation;

class ImageMakerTest : public ::testing::Test {
protected:
    void make(const ImageFacts& facts) const
    {
        makeImage(path("payload"), path("image"), facts, [](std::uint64_t) {});
    }
    void make() const { make(m_facts); }

    std::string path(const std::string& name) const { return m_node.boardRoot() + "/" + name; }

    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_node.boardRoot())) {
            names.push_back(entry.path().filename());
        }
        return names;
    }

    testkit::TestNode m_node;
    test::SyslogCapture m_syslog;
    ImageFacts m_facts{.version = 1,
                       .targetUnit = "NAXE",
                       .swId = "FPGA",
                       .swVersion = "0x20A",
                       .buildTime = "now",
                       .hwSwIds = {0x3A01, 0x3A05}};
};

/// Sizes whose last bytes mean something in XML are among them.
TEST_F(ImageMakerTest, ImageOfAnySizeIsValidOnTheBoard)
{
    for (const std::size_t size : {1U, 2U, 3U, 4U, 38U, 60U, 62U, 65'535U, 65'536U, 65'537U, 100'000U}) {
        m_node.writeBoardFile("/payload", payloadOf(size));

        make();

        EXPECT_EQ(binary_validate("/image", 0x3A01), 0) << size;
        EXPECT_EQ(binary_copy_without_trailer("/image", "/copy"), 0);
        EXPECT_EQ(m_node.readBoardFile("/copy"), payloadOf(size));
        std::uint32_t version = 0;
        EXPECT_EQ(binary_version("/image", 0x3A05, 0, &version), 0);
        EXPECT_EQ(version, 0x20AU);
    }
}

TEST_F(ImageMakerTest, FactsAreReadBack)
{
    m_node.writeBoardFile("/payload", payloadOf(1000));
    m_facts.targetUnit = "<&>]]>'\" \xC3\xA4";
    m_facts.hwSwIds = {0, 0xFFFFFFFF};
    make();

    const ImageFile image(path("image"));
    m_facts.length = 1000;
    m_facts.crc32 = test::crcOf(payloadOf(1000));
    EXPECT_EQ(image.facts(), m_facts);
    EXPECT_EQ(image.payloadLength(), 1000U);
}

TEST_F(ImageMakerTest, TrailerIsWrittenForPeopleToo)
{
    m_facts.crc32 = 0x20A;
    m_facts.length = 7;
    m_facts.targetUnit = "";

    EXPECT_EQ(trailerXml(m_facts), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                   "<trailer>\n"
                                   "  <Version>1</Version>\n"
                                   "  <Crc32>0x0000020A</Crc32>\n"
                                   "  <Length>7</Length>\n"
                                   "  <SwId>FPGA</SwId>\n"
                                   "  <SwVersion>0x20A</SwVersion>\n"
                                   "  <BuildTime>now</BuildTime>\n"
                                   "  <HwSwIdList>\n"
                                   "    <HwSwId>0x3A01</HwSwId>\n"
                                   "    <HwSwId>0x3A05</HwSwId>\n"
                                   "  </HwSwIdList>\n"
                                   "</trailer>\n");
}

TEST_F(ImageMakerTest, TextsThatXmlDoesNotKeepAreRefused)
{
    m_node.writeBoardFile("/payload", "payload");
    m_facts.swId = "a\rb";

    EXPECT_THAT([this] { make(); },
                ThrowsMessage<Failure>("the texts of the trailer would not be read back as they are given: they have "
                                       "characters that XML does not keep"));
    EXPECT_THAT(files(), UnorderedElementsAre("payload"));
}

TEST_F(ImageMakerTest, PayloadThatIsNoneIsRefused)
{
    EXPECT_THAT([this] { make(); },
                ThrowsMessage<Failure>("'" + path("payload") + "' cannot be opened: No such file or directory"));
    m_node.writeBoardFile("/payload", "");
    EXPECT_THAT([this] { make(); },
                ThrowsMessage<Failure>("'" + path("payload") + "' is empty; an image has a payload"));
    std::filesystem::remove(path("payload"));
    std::filesystem::create_directory(path("payload"));
    EXPECT_THAT([this] { make(); }, ThrowsMessage<Failure>("'" + path("payload") + "' is no regular file"));
}

TEST_F(ImageMakerTest, PayloadThatIsTooLargeIsRefusedBeforeItIsRead)
{
    m_node.writeBoardFile("/payload", "");
    std::filesystem::resize_file(path("payload"), 0x7FFFFFFF);
    EXPECT_THAT([this] { make(); }, ThrowsMessage<Failure>(HasSubstr("bytes; an image is smaller than 2 GiB")));

    std::filesystem::resize_file(path("payload"), std::uintmax_t{1} << 32);
    EXPECT_THAT([this] { make(); }, ThrowsMessage<Failure>("'" + path("payload") +
                                                           "' has 4294967296 bytes; an image is smaller than 2 GiB"));
    EXPECT_THAT(files(), UnorderedElementsAre("payload"));
}

TEST_F(ImageMakerTest, TrailerThatIsTooLongIsRefused)
{
    m_node.writeBoardFile("/payload", "payload");
    m_facts.swId = std::string(16U << 20, 'x');

    EXPECT_THAT([this] { make(); }, ThrowsMessage<Failure>(HasSubstr(" bytes, and 16777216 are read at most")));
}

TEST_F(ImageMakerTest, PayloadThatChangesIsRefused)
{
    m_node.writeBoardFile("/payload", payloadOf(100'000));
    const auto shorten = [this](std::uint64_t) { std::filesystem::resize_file(path("payload"), 70'000); };

    EXPECT_THAT([&] { makeImage(path("payload"), path("image"), m_facts, shorten); },
                ThrowsMessage<Failure>("'" + path("payload") + "' was changed while it was read"));
    EXPECT_THAT(files(), UnorderedElementsAre("payload"));
}

TEST_F(ImageMakerTest, FailureLeavesTheOldImage)
{
    m_node.writeBoardFile("/payload", payloadOf(100'000));
    m_node.writeBoardFile("/image", "old");
    for (const FileOperation operation :
         {FileOperation::Open, FileOperation::Write, FileOperation::Sync, FileOperation::Rename}) {
        const FailingFilePort broken(operation, 1, EIO);
        EXPECT_THAT([this] { make(); }, ThrowsMessage<Failure>(HasSubstr("'" + path("image") + "' cannot be ")));
        EXPECT_TRUE(broken.hasFailed());
    }
    {
        const testkit::FullDisk disk(90'000);
        EXPECT_THAT([this] { make(); },
                    ThrowsMessage<Failure>("'" + path("image") + "' cannot be written: No space left on device"));
    }
    EXPECT_EQ(m_node.readBoardFile("/image"), "old");
    EXPECT_THAT(files(), UnorderedElementsAre("payload", "image"));
}

TEST_F(ImageMakerTest, WriteThatIsInterruptedGoesOn)
{
    m_node.writeBoardFile("/payload", payloadOf(1000));
    const FailingFilePort interrupted(FileOperation::Write, 1, EINTR);

    make();

    EXPECT_EQ(binary_crc("/image"), 0);
}

TEST_F(ImageMakerTest, NewFileIsSeenOnlyWhenItIsWhole)
{
    {
        NewFile file(path("new"));
        file.write(Bytes(10));
        EXPECT_FALSE(std::filesystem::exists(path("new")));
        file.keep();
    }
    EXPECT_THAT(files(), UnorderedElementsAre("new"));
    EXPECT_EQ(m_node.readBoardFile("/new"), std::string(10, '\0'));
}

TEST_F(ImageMakerTest, VersionIsTakenOnlyIfABoardReadsItAsItIsMeant)
{
    EXPECT_EQ(parseSoftwareVersion("--sw-version", "0x20A"), "0x20A");
    EXPECT_EQ(parseSoftwareVersion("--sw-version", "522"), "522");
    EXPECT_EQ(parseSoftwareVersion("--sw-version", "0"), "0");
    EXPECT_EQ(parseSoftwareVersion("--sw-version", "4294967295"), "4294967295");
    const auto parse = [](const std::string& text) { return [text] { parseSoftwareVersion("--sw-version", text); }; };

    EXPECT_THAT(parse("0X20A"),
                ThrowsMessage<UsageError>("--sw-version: a board would read '0X20A' as 0; write 0x20A"));
    EXPECT_THAT(parse("20A"), ThrowsMessage<UsageError>(HasSubstr("'20A' is not a number")));
    EXPECT_THAT(parse(" 1"), ThrowsMessage<UsageError>(HasSubstr("' 1' is not a number")));
    EXPECT_THAT(parse("1.2"), ThrowsMessage<UsageError>(HasSubstr("'1.2' is not a number")));
    EXPECT_THAT(parse(""), ThrowsMessage<UsageError>(HasSubstr("'' is not a number")));
    EXPECT_THAT(parse("4294967296"), ThrowsMessage<UsageError>(HasSubstr("4294967296 is too great")));
}

TEST_F(ImageMakerTest, HwSwIdIsHexadecimal)
{
    EXPECT_EQ(parseHwSwId("--hwswid", "3A01"), 0x3A01U);
    EXPECT_EQ(parseHwSwId("--hwswid", "0x3a01"), 0x3A01U);
    EXPECT_EQ(parseHwSwId("--hwswid", "0XFFFFFFFF"), 0xFFFFFFFFU);
    for (const char* const text : {"", "0x", "xyz", "-1", "3A01 ", "100000000"}) {
        EXPECT_THAT([text] { parseHwSwId("--hwswid", text); },
                    ThrowsMessage<UsageError>("--hwswid: '" + std::string(text) +
                                              "' is not a number of 32 bits in hexadecimal digits"));
    }
}

TEST_F(ImageMakerTest, VersionIsShownAsItIsRead)
{
    EXPECT_EQ(softwareVersionText("522"), "522 (0x20A)");
    EXPECT_EQ(softwareVersionText("0x20A"), "522 (0x20A)");
    EXPECT_EQ(softwareVersionText("0x20a"), "'0x20a', read as 522 (0x20A)");
    EXPECT_EQ(softwareVersionText("0X10"), "'0X10', read as 0 (0x0)");
    EXPECT_EQ(softwareVersionText(""), "'', read as 0 (0x0)");
}

TEST_F(ImageMakerTest, BoardFitsByItsIdOrItsMinorVersion)
{
    EXPECT_EQ(fittingHwSwId({0x3A02, 0x3A01}, 0x3A01, true), 0x3A01U);
    EXPECT_EQ(fittingHwSwId({0x3B01, 0x3A02, 0x3A03}, 0x3A01, true), 0x3A02U);
    EXPECT_EQ(fittingHwSwId({0x3A02}, 0x3A01, false), std::nullopt);
    EXPECT_EQ(fittingHwSwId({0x3B01}, 0x3A01, true), std::nullopt);
    EXPECT_EQ(fittingHwSwId({}, 0, true), std::nullopt);
}

} // namespace
} // namespace dorn::tool
