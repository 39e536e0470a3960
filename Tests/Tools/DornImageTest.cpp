// SPDX-License-Identifier: MIT
#include "DornCommand.hpp"

#include "Image.hpp"
#include "NodeTest.hpp"
#include "SyslogCapture.hpp"
#include "TestBoard.hpp"
#include "binary.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace dorn::tool {
namespace {

using test::contentFor;
using test::imageOf;
using test::payloadOf;
using test::trailerOf;
using test::wordOf;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

/// Files of this machine, where the board root happens to be: so that the library can look at them too.
class DornImageTest : public testkit::NodeTest {
protected:
    DornImageTest() { m_node.writeBoardFile("/payload", payloadOf(1000)); }

    std::string path(const std::string& name) const { return m_node.boardRoot() + "/" + name; }

    CommandResult create(const std::vector<std::string>& options) const
    {
        std::vector<std::string> arguments{"image", "create", path("payload"), path("image")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return dorn(arguments);
    }

    void writeGoodImage() const { m_node.writeBoardFile("/image", test::goodImage()); }

    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_node.boardRoot())) {
            names.push_back(entry.path().filename());
        }
        return names;
    }

    const std::string crcText = [] {
        std::array<char, 16> text{};
        std::snprintf(text.data(), text.size(), "0x%08X", test::crcOf(payloadOf(1000)));
        return std::string(text.data());
    }();

    test::SyslogCapture m_syslog;
};

TEST_F(DornImageTest, ImageIsCreated)
{
    const CommandResult result =
        create({"--sw-version", "0x20A", "--hwswid", "3A01", "--hwswid", "0x3A05", "--target-unit", "NAXE", "--sw-id",
                "FPGA", "--build-time", "today", "--trailer-version", "2"});

    EXPECT_EQ(result, (CommandResult{0,
                                     "image:        " + path("image") +
                                         ", 1340 bytes\n"
                                         "payload:      1000 bytes\n"
                                         "trailer:      version 2, 340 bytes\n"
                                         "CRC-32:       " +
                                         crcText +
                                         "\n"
                                         "length:       1000\n"
                                         "target unit:  NAXE\n"
                                         "software:     FPGA\n"
                                         "version:      522 (0x20A)\n"
                                         "build time:   today\n"
                                         "boards:       0x3A01 0x3A05\n",
                                     ""}));
    EXPECT_EQ(binary_validate("/image", 0x3A05), 0);
    EXPECT_EQ(dorn({"image", "show", path("image")}), result);
}

TEST_F(DornImageTest, CreateSaysWhatIsMissing)
{
    EXPECT_EQ(create({"--hwswid", "3A01"}),
              (CommandResult{2, "", "dorn: 'dorn image create' needs --sw-version\nTry 'dorn image create --help'\n"}));
    EXPECT_EQ(create({"--sw-version", "7"}),
              (CommandResult{2, "", "dorn: 'dorn image create' needs --hwswid\nTry 'dorn image create --help'\n"}));
    EXPECT_EQ(create({"--sw-version", "0X7", "--hwswid", "3A01"}),
              (CommandResult{2, "",
                             "dorn: --sw-version: a board would read '0X7' as 0; write 0x7\n"
                             "Try 'dorn image create --help'\n"}));
    EXPECT_EQ(create({"--sw-version", "7", "--hwswid", "none"}),
              (CommandResult{2, "",
                             "dorn: --hwswid: 'none' is not a number of 32 bits in hexadecimal digits\n"
                             "Try 'dorn image create --help'\n"}));
    EXPECT_THAT(files(), UnorderedElementsAre("payload"));
}

TEST_F(DornImageTest, FileIsNotMadeOfItself)
{
    std::filesystem::create_hard_link(path("payload"), path("image"));

    EXPECT_EQ(create({"--sw-version", "7", "--hwswid", "3A01"}),
              (CommandResult{2, "",
                             "dorn: '" + path("payload") + "' and '" + path("image") +
                                 "' are the same file\nTry 'dorn image create --help'\n"}));
    EXPECT_EQ(m_node.readBoardFile("/payload"), payloadOf(1000));

    writeGoodImage();
    EXPECT_EQ(dorn({"image", "extract", path("image"), path("image")}).status, 2);
    EXPECT_EQ(m_node.readBoardFile("/image"), test::goodImage());
}

TEST_F(DornImageTest, ImageIsShownAsJson)
{
    writeGoodImage();

    const CommandResult result = dorn({"image", "show", path("image"), "--json"});

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.answer, R"({
  "file": ")" + path("image") + R"(",
  "size": )" + std::to_string(test::goodImage().size()) +
                                 R"(,
  "payloadLength": 1000,
  "trailer": {
    "version": 1,
    "crc32": )" + std::to_string(test::crcOf(payloadOf(1000))) +
                                 R"(,
    "length": 1000,
    "targetUnit": "NAXE",
    "swId": "FPGA",
    "swVersion": "0x20A",
    "buildTime": "2026-11-21 09:18:01",
    "hwSwIds": [
      14849
    ]
  },
  "softwareVersion": 522
}
)");
}

TEST_F(DornImageTest, MissingFieldsAreShownAsNothing)
{
    m_node.writeBoardFile("/image", imageOf("payload", "<trailer/>"));

    EXPECT_EQ(dorn({"image", "show", path("image")}), (CommandResult{0,
                                                                     "image:        " + path("image") +
                                                                         ", 21 bytes\n"
                                                                         "payload:      7 bytes\n"
                                                                         "trailer:      version 0, 14 bytes\n"
                                                                         "CRC-32:       0x00000000\n"
                                                                         "length:       0\n"
                                                                         "target unit:  -\n"
                                                                         "software:     -\n"
                                                                         "version:      '', read as 0 (0x0)\n"
                                                                         "build time:   -\n"
                                                                         "boards:       -\n",
                                                                     ""}));
}

TEST_F(DornImageTest, WhatIsNoImageIsToldWhy)
{
    const auto reasonOf = [this](const std::string& content) {
        m_node.writeBoardFile("/image", content);
        const CommandResult result = dorn({"image", "show", path("image")});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.answer, "");
        return replaced(result.remarks, path("image"), "FILE");
    };

    EXPECT_EQ(reasonOf("abc"), "dorn: 'FILE' is no firmware image: it has 3 bytes\n");
    EXPECT_EQ(reasonOf("payload" + wordOf(0)),
              "dorn: 'FILE' is no firmware image: its last four bytes place the trailer at offset 0 of 11 bytes\n");
    EXPECT_EQ(reasonOf("payload" + wordOf(11)),
              "dorn: 'FILE' is no firmware image: its last four bytes place the trailer at offset 11 of 11 bytes\n");
    EXPECT_THAT(reasonOf(imageOf("payload", "<trailer>")),
                HasSubstr("dorn: the trailer of 'FILE' is not well-formed XML: 1:"));
    EXPECT_EQ(reasonOf(imageOf("payload", "<image/>")), "dorn: the trailer of 'FILE' has no element 'trailer'\n");
    EXPECT_EQ(reasonOf(imageOf("payload", std::string(17U << 20, ' '))),
              "dorn: 'FILE' has a trailer of 17825796 bytes, and 16777216 are read at most; are its last four bytes "
              "damaged?\n");
    EXPECT_EQ(dorn({"image", "show", path("missing")}),
              (CommandResult{1, "", "dorn: '" + path("missing") + "' cannot be opened: No such file or directory\n"}));
    EXPECT_EQ(dorn({"image", "show", m_node.boardRoot()}),
              (CommandResult{1, "", "dorn: '" + m_node.boardRoot() + "' is no regular file\n"}));
}

TEST_F(DornImageTest, FileOfTwoGibibytesIsNoImage)
{
    m_node.writeBoardFile("/image", "");
    std::filesystem::resize_file(path("image"), std::uintmax_t{1} << 31);

    EXPECT_EQ(
        dorn({"image", "show", path("image")}),
        (CommandResult{1, "", "dorn: '" + path("image") + "' has 2147483648 bytes; an image is smaller than 2 GiB\n"}));
}

TEST_F(DornImageTest, GoodImageIsVerified)
{
    writeGoodImage();
    const std::string good = path("image") + ": good, CRC-32 " + crcText + ", version 522 (0x20A)";

    EXPECT_EQ(dorn({"image", "verify", path("image")}), (CommandResult{0, good + "\n", ""}));
    EXPECT_EQ(dorn({"image", "verify", path("image"), "--hwswid", "3A01"}),
              (CommandResult{0, good + ", fits 0x3A01\n", ""}));
    EXPECT_EQ(dorn({"image", "verify", path("image"), "--hwswid", "3A02"}),
              (CommandResult{0, good + ", fits 0x3A02 as a minor version of 0x3A01\n", ""}));
}

TEST_F(DornImageTest, ImageForAnotherBoardIsRefused)
{
    writeGoodImage();
    const auto refusal = [this](const std::string& id) {
        return "dorn: '" + path("image") + "' is not meant for the board " + id +
               "; 'dorn image show' lists the boards that it is meant for\n";
    };

    EXPECT_EQ(dorn({"image", "verify", path("image"), "--hwswid", "3B01"}), (CommandResult{1, "", refusal("0x3B01")}));
    EXPECT_EQ(dorn({"image", "verify", path("image"), "--hwswid", "3A02", "--exact"}),
              (CommandResult{1, "", refusal("0x3A02")}));
}

TEST_F(DornImageTest, DamagedImageIsRefused)
{
    std::string image = test::goodImage();
    image[7] = static_cast<char>(image[7] ^ 1);
    m_node.writeBoardFile("/image", image);
    std::array<char, 16> damaged{};
    std::snprintf(damaged.data(), damaged.size(), "0x%08X", test::crcOf(std::string_view(image).substr(0, 1000)));
    const std::string refusal = "dorn: '" + path("image") + "' is damaged: its payload has the CRC-32 " +
                                damaged.data() + ", its trailer says " + crcText + "\n";

    EXPECT_EQ(dorn({"image", "verify", path("image")}), (CommandResult{1, "", refusal}));
    EXPECT_EQ(dorn({"image", "extract", path("image"), path("copy")}), (CommandResult{1, "", refusal}));
    EXPECT_THAT(files(), UnorderedElementsAre("payload", "image"));
}

TEST_F(DornImageTest, EachOfSeveralImagesIsVerified)
{
    writeGoodImage();
    const CommandResult result =
        dorn({"image", "verify", path("payload"), path("image"), path("missing"), "--hwswid", "3A01"});

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.answer, path("image") + ": good, CRC-32 " + crcText + ", version 522 (0x20A), fits 0x3A01\n");
    EXPECT_THAT(result.remarks, HasSubstr("dorn: '" + path("payload") + "' is no firmware image: "));
    EXPECT_THAT(result.remarks, HasSubstr("dorn: '" + path("missing") + "' cannot be opened: "));
}

TEST_F(DornImageTest, VerdictsAreGivenAsJson)
{
    writeGoodImage();
    m_node.writeBoardFile("/other", "x");

    const CommandResult result = dorn({"image", "verify", path("image"), path("other"), "--hwswid", "3A02", "--json"});

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.remarks, "dorn: '" + path("other") + "' is no firmware image: it has 1 bytes\n");
    EXPECT_EQ(result.answer, R"([
  {
    "file": ")" + path("image") +
                                 R"(",
    "result": 0,
    "crc32": )" + std::to_string(test::crcOf(payloadOf(1000))) +
                                 R"(,
    "softwareVersion": 522,
    "hwSwId": 14849
  },
  {
    "file": ")" + path("other") +
                                 R"(",
    "result": 70406,
    "reason": "')" + path("other") +
                                 R"(' is no firmware image: it has 1 bytes"
  }
]
)");
}

/// The command and the library agree on what is wrong with an image.
TEST_F(DornImageTest, VerdictIsTheLibrarys)
{
    std::string damaged = test::goodImage();
    damaged[0] = static_cast<char>(damaged[0] ^ 1);
    const std::string payload = payloadOf(10);
    const std::vector<std::string> images{test::goodImage(),
                                          damaged,
                                          "",
                                          "abc",
                                          wordOf(0),
                                          "payload" + wordOf(11),
                                          imageOf(payload, ""),
                                          imageOf(payload, "<trailer>"),
                                          imageOf(payload, "<image/>"),
                                          imageOf(payload, trailerOf("")),
                                          imageOf(payload, trailerOf(contentFor(payload)) + std::string("\0<", 2)),
                                          imageOf(payload, trailerOf(test::element("Crc32", "0"))),
                                          imageOf(payload, std::string(17U << 20, ' '))};
    for (const std::string& image : images) {
        m_node.writeBoardFile("/image", image);
        for (const std::string id : {"3A01", "3A02", "3B01"}) {
            const auto own = static_cast<std::uint32_t>(std::stoul(id, nullptr, 16));
            const CommandResult result = dorn({"image", "verify", path("image"), "--hwswid", id, "--json"});

            EXPECT_THAT(result.answer, HasSubstr("\"result\": " + std::to_string(binary_validate("/image", own))));
        }
    }
}

TEST_F(DornImageTest, PayloadIsExtracted)
{
    writeGoodImage();

    EXPECT_EQ(dorn({"image", "extract", path("image"), path("copy")}), (CommandResult{0, "", ""}));
    EXPECT_EQ(m_node.readBoardFile("/copy"), payloadOf(1000));
}

TEST_F(DornImageTest, PayloadIsExtractedUncheckedWhenAskedFor)
{
    m_node.writeBoardFile("/image", imageOf("payload", "no XML"));

    EXPECT_EQ(dorn({"image", "extract", path("image"), path("copy")}).status, 1);
    EXPECT_EQ(dorn({"image", "extract", path("image"), path("copy"), "--unchecked"}), (CommandResult{0, "", ""}));
    EXPECT_EQ(m_node.readBoardFile("/copy"), "payload");
}

TEST_F(DornImageTest, PlaceThatIsMissingIsTold)
{
    writeGoodImage();

    EXPECT_EQ(
        dorn({"image", "extract", path("image"), path("missing/copy")}),
        (CommandResult{1, "", "dorn: '" + path("missing/copy") + "' cannot be made: No such file or directory\n"}));
}

TEST_F(DornImageTest, WhatIsNoRegularFileIsNotReplaced)
{
    writeGoodImage();
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink(path("pipe"), path("link"));
    std::filesystem::create_directory(path("directory"));

    for (const char* const name : {"pipe", "link", "directory"}) {
        const CommandResult refused{1, "",
                                    "dorn: '" + path(name) + "' is no regular file, and is not replaced by one\n"};
        EXPECT_EQ(dorn({"image", "extract", path("image"), path(name)}), refused);
        EXPECT_EQ(dorn({"image", "create", path("payload"), path(name), "--sw-version", "7", "--hwswid", "1"}),
                  refused);
    }
    EXPECT_TRUE(std::filesystem::is_fifo(path("pipe")));
    EXPECT_EQ(files().size(), 5U);
}

TEST_F(DornImageTest, LinkStaysAndLeadsToTheNewFile)
{
    writeGoodImage();
    m_node.writeBoardFile("/copy", "old");
    std::filesystem::create_symlink(path("copy"), path("link"));

    EXPECT_EQ(dorn({"image", "extract", path("image"), path("link")}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
    EXPECT_EQ(m_node.readBoardFile("/copy"), payloadOf(1000));
}

TEST_F(DornImageTest, BoardIsKnownByItsDeviceTree)
{
    writeGoodImage();
    testkit::TestBoard board;
    board.cells("units/unit@0", "dorn,hw-sw-id", {0x3A02});

    EXPECT_EQ(dorn({"image", "verify", path("image"), "--board", board.path()}),
              (CommandResult{0,
                             path("image") + ": good, CRC-32 " + crcText +
                                 ", version 522 (0x20A), fits 0x3A02 as a minor version of 0x3A01\n",
                             ""}));
    EXPECT_EQ(dorn({"image", "verify", path("image"), "--board", board.path(), "--exact"}).status, 1);
    board.remove("units");
    EXPECT_EQ(dorn({"image", "verify", path("image"), "--board", board.path()}).status, 1);
    EXPECT_THAT(dorn({"image", "verify", path("image"), "--board", path("payload")}).remarks,
                HasSubstr("dorn: board description '" + path("payload") + "' "));
}

TEST_F(DornImageTest, OneBoardIsGivenInOneWay)
{
    EXPECT_EQ(
        dorn({"image", "verify", path("image"), "--exact"}),
        (CommandResult{2, "", "dorn: '--exact' needs '--hwswid' or '--board'\nTry 'dorn image verify --help'\n"}));
    EXPECT_EQ(
        dorn({"image", "verify", path("image"), "--hwswid", "1", "--board", "x"}),
        (CommandResult{2, "", "dorn: '--hwswid' and '--board' do not go together\nTry 'dorn image verify --help'\n"}));
}

} // namespace
} // namespace dorn::tool
