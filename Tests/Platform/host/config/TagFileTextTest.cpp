// SPDX-License-Identifier: MIT
#include "config/TagFile.hpp"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <string>
#include <vector>

namespace dorn::host {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The entries of a text as "line name=bytes", then its complaints as "line! reason".
std::vector<std::string> read(const std::string& text)
{
    std::vector<std::string> lines;
    const TagFileContent content = parseTagFile(text);
    for (const TagFileContent::Entry& entry : content.entries) {
        lines.push_back(std::to_string(entry.line) + " " + entry.tag.name + "=" +
                        std::string(reinterpret_cast<const char*>(entry.tag.value.data()), entry.tag.value.size()));
    }
    for (const TagFileContent::Complaint& complaint : content.complaints) {
        lines.push_back(std::to_string(complaint.line) + "! " + complaint.reason);
    }
    return lines;
}

/// The one line that an entry gives.
std::string entry(const std::string& attributes, const std::string& value)
{
    const std::vector<std::string> lines = read("<dorn>\n<tag " + attributes + ">" + value + "</tag>\n</dorn>");
    return lines.size() == 1 ? lines[0] : "not one line";
}

template <class Number>
std::string inMemory(Number number)
{
    std::string bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

TEST(TagFileTextTest, EntriesAreReadInTheirOrder)
{
    EXPECT_THAT(read("<?xml version='1.0'?>\n<dorn>\n <tag name='a'>1</tag>\n\n <tag name='b'>2</tag>\n"
                     "<!-- more --> <tag name='a'>3</tag>\n</dorn>\n"),
                ElementsAre("3 a=1", "5 b=2", "6 a=3"));
}

TEST(TagFileTextTest, FileWithoutEntriesIsGood)
{
    EXPECT_THAT(read("<dorn/>"), IsEmpty());
    EXPECT_THAT(read("<dorn> <!-- nothing --> </dorn>"), IsEmpty());
}

TEST(TagFileTextTest, StringsAreKeptAsWritten)
{
    EXPECT_EQ(entry("name='a'", " x &lt;y&gt; "), "2 a= x <y> ");
    EXPECT_EQ(entry("name='a' type='string'", "x"), "2 a=x");
    EXPECT_EQ(entry("name='a'", ""), "2 a=");
    EXPECT_EQ(entry("name='a'", "<![CDATA[<b>]]>"), "2 a=<b>");
}

TEST(TagFileTextTest, NumbersHaveTheSizeOfTheirType)
{
    EXPECT_EQ(entry("name='a' type='u8'", "16"), "2 a=\x10");
    EXPECT_EQ(entry("name='a' type='u16'", "0x1234"), "2 a=" + inMemory<std::uint16_t>(0x1234));
    EXPECT_EQ(entry("name='a' type='u32'", " 305419896\n"), "2 a=" + inMemory<std::uint32_t>(0x12345678));
    EXPECT_EQ(entry("name='a' type='u32'", "0XffFFffFF"), "2 a=\xFF\xFF\xFF\xFF");
    EXPECT_EQ(entry("name='a' type='u8'", "255"), "2 a=\xFF");
    EXPECT_EQ(entry("name='a' type='u16'", "65535"), "2 a=\xFF\xFF");
}

TEST(TagFileTextTest, BytesArePairsOfHexadecimalDigits)
{
    EXPECT_EQ(entry("name='a' type='bytes'", "0a FF\n41"), "2 a=\x0A\xFF"
                                                           "A");
    EXPECT_EQ(entry("name='a' type='bytes'", "4142"), "2 a=AB");
    EXPECT_EQ(entry("name='a' type='bytes'", ""), "2 a=");
}

TEST(TagFileTextTest, BadNumberIsPassedOver)
{
    const std::string u8 = " is not a number from 0 to 255";
    EXPECT_EQ(entry("name='a' type='u8'", "256"), "2! entry is passed over: tag 'a': '256'" + u8);
    EXPECT_EQ(entry("name='a' type='u8'", "-1"), "2! entry is passed over: tag 'a': '-1'" + u8);
    EXPECT_EQ(entry("name='a' type='u8'", "+1"), "2! entry is passed over: tag 'a': '+1'" + u8);
    EXPECT_EQ(entry("name='a' type='u8'", ""), "2! entry is passed over: tag 'a': ''" + u8);
    EXPECT_EQ(entry("name='a' type='u8'", "0x"), "2! entry is passed over: tag 'a': '0x'" + u8);
    EXPECT_EQ(entry("name='a' type='u8'", "1 2"), "2! entry is passed over: tag 'a': '1 2'" + u8);
    EXPECT_EQ(entry("name='a' type='u8'", "0x-1"), "2! entry is passed over: tag 'a': '0x-1'" + u8);
    EXPECT_EQ(entry("name='a' type='u16'", "65536"),
              "2! entry is passed over: tag 'a': '65536' is not a number from 0 to 65535");
    EXPECT_EQ(entry("name='a' type='u32'", "4294967296"),
              "2! entry is passed over: tag 'a': '4294967296' is not a number from 0 to 4294967295");
}

TEST(TagFileTextTest, BadBytesArePassedOver)
{
    const std::string reason = " is not a row of bytes of two hexadecimal digits each";
    EXPECT_EQ(entry("name='a' type='bytes'", "0"), "2! entry is passed over: tag 'a': '0'" + reason);
    EXPECT_EQ(entry("name='a' type='bytes'", "0 a"), "2! entry is passed over: tag 'a': '0 a'" + reason);
    EXPECT_EQ(entry("name='a' type='bytes'", "0g"), "2! entry is passed over: tag 'a': '0g'" + reason);
    EXPECT_EQ(entry("name='a' type='bytes'", "0x41"), "2! entry is passed over: tag 'a': '0x41'" + reason);
}

TEST(TagFileTextTest, UnknownTypeIsPassedOver)
{
    EXPECT_EQ(entry("name='a' type='u64'", "1"),
              "2! entry is passed over: tag 'a': type 'u64' is none of string, u8, u16, u32, bytes");
}

TEST(TagFileTextTest, EntryWithoutAPossibleNameIsPassedOver)
{
    EXPECT_EQ(entry("", "1"), "2! entry is passed over: it has no name");
    EXPECT_EQ(entry("name=''", "1"), "2! entry is passed over: its name has 0 bytes; 1 to 255 are possible");
    EXPECT_EQ(entry("name='" + std::string(256, 'n') + "'", "1"),
              "2! entry is passed over: its name has 256 bytes; 1 to 255 are possible");
    EXPECT_EQ(entry("name='" + std::string(255, 'n') + "'", "1"), "2 " + std::string(255, 'n') + "=1");
}

TEST(TagFileTextTest, EntryWithTooLongAValueIsPassedOver)
{
    EXPECT_EQ(entry("name='a'", std::string(65536, 'v')),
              "2! entry is passed over: tag 'a': its value has 65536 bytes; at most 65535 are possible");
    EXPECT_EQ(entry("name='a'", std::string(65535, 'v')), "2 a=" + std::string(65535, 'v'));
}

TEST(TagFileTextTest, EntryWithMoreInItThanAnEntryHasIsPassedOver)
{
    EXPECT_EQ(entry("name='a' unit='s'", "1"), "2! entry is passed over: attribute 'unit' is not known");
    EXPECT_EQ(entry("name='a'", "1<b/>"), "2! entry is passed over: there is an element 'b' inside it");
}

TEST(TagFileTextTest, BadEntryDoesNotTouchTheOthers)
{
    EXPECT_THAT(read("<dorn><tag name='a'>1</tag>\n<tag>2</tag>\n<tag name='c'>3</tag></dorn>"),
                ElementsAre("1 a=1", "3 c=3", "2! entry is passed over: it has no name"));
}

TEST(TagFileTextTest, OtherElementsTextAndAttributesArePassedOver)
{
    EXPECT_THAT(read("<dorn><tags/>\n<tag name='a'>1</tag></dorn>"),
                ElementsAre("2 a=1", "1! element 'tags' is passed over: only 'tag' is known"));
    EXPECT_THAT(read("<dorn>\n<tag name='a'>1</tag>\n more \n</dorn>"),
                ElementsAre("2 a=1", "1! text 'more' between the entries is passed over"));
    EXPECT_THAT(read("<dorn version='2'><tag name='a'>1</tag></dorn>"),
                ElementsAre("1 a=1", "1! attribute 'version' is not known"));
}

TEST(TagFileTextTest, FileOfAnotherKindIsPassedOver)
{
    EXPECT_THAT(read("\n<raml><tag name='a'>1</tag></raml>"),
                ElementsAre("2! file is passed over: its element is 'raml', not 'dorn'"));
}

TEST(TagFileTextTest, FileIsUsedUpToWhereItIsNotWellFormed)
{
    EXPECT_THAT(read("<dorn>\n<tag name='a'>1</tag>\n<tag name='b'>2</tga>\n<tag name='c'>3</tag>\n</dorn>"),
                ElementsAre("2 a=1", "3! file is passed over from column 18 on: an end tag has another name than its "
                                     "element"));
    EXPECT_THAT(read("<dorn>\n<tag name='a'>1</tag>"),
                ElementsAre("2 a=1", "2! file is passed over from column 22 on: an element is not closed"));
    EXPECT_THAT(read(""), ElementsAre("1! file is passed over from column 1 on: there is no element"));
}

TEST(TagFileTextTest, ComplaintsAreFitForALogLine)
{
    EXPECT_EQ(entry("name='a' type='u8'", "1&#10;2\x7F"
                                          "3"),
              "2! entry is passed over: tag 'a': '1?2?3' is not a number from 0 to 255");
    EXPECT_EQ(entry("name='a' type='u8'", std::string(61, '1')),
              "2! entry is passed over: tag 'a': '" + std::string(60, '1') + "...' is not a number from 0 to 255");
}

TEST(TagFileTextTest, ExampleOfTheDocumentationIsGood)
{
    std::ifstream file(DORN_CONFIG_EXAMPLE);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(read(text),
                ElementsAre("3 sys.unit.ownboard=\x10", "4 sys.orv.fpga.technology=2", "5 site.name=Harbour north",
                            "6 site.vlan=" + inMemory<std::uint16_t>(0x1F4), "7 site.key=\xDE\xAD\xBE\xEF"));
}

} // namespace
} // namespace dorn::host
