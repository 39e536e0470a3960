// SPDX-License-Identifier: MIT
#include "answers/TagText.hpp"

#include "Outcome.hpp"
#include "TestConsole.hpp"

#include <gmock/gmock.h>

namespace dorn::tool {
namespace {

using ::testing::ThrowsMessage;

Bytes bytes(std::initializer_list<int> values)
{
    Bytes result;
    for (const int value : values) {
        result.push_back(static_cast<std::byte>(value));
    }
    return result;
}

TEST(TagTextTest, TextIsShownAsText)
{
    EXPECT_EQ(formOf(bytesOf("cell 7")), TagForm::Text);
    EXPECT_EQ(formOf(bytesOf("h\u00e9 \u20ac \U0001F4E1")), TagForm::Text);
    EXPECT_EQ(formOf(bytesOf("LTE1")), TagForm::Text);
    EXPECT_EQ(formOf({}), TagForm::Text);
}

TEST(TagTextTest, TwoOrFourOtherBytesAreANumber)
{
    EXPECT_EQ(formOf(numberBytes(60, TagForm::U16)), TagForm::U16);
    EXPECT_EQ(formOf(numberBytes(60, TagForm::U32)), TagForm::U32);
}

TEST(TagTextTest, AllElseIsHexadecimal)
{
    EXPECT_EQ(formOf(bytes({1})), TagForm::Hex);
    EXPECT_EQ(formOf(bytes({1, 2, 3})), TagForm::Hex);
    EXPECT_EQ(formOf(bytes({1, 2, 3, 4, 5})), TagForm::Hex);
}

TEST(TagTextTest, ControlCharactersAreNoText)
{
    for (const int character : {0x00, 0x09, 0x0A, 0x1B, 0x1F, 0x7F}) {
        EXPECT_EQ(formOf(bytes({'a', character, 'b'})), TagForm::Hex) << character;
    }
    EXPECT_EQ(formOf(bytes({'a', 0xC2, 0x9B})), TagForm::Hex); // of the second set
}

TEST(TagTextTest, BytesThatAreNoUtf8AreNoText)
{
    const std::vector<Bytes> wrong{
        bytes({'a', 0x80, 'b'}),              // a follower alone
        bytes({'a', 'b', 0xC3}),              // cut off
        bytes({0xC3, 'a', 'b'}),              // no follower
        bytes({0xC0, 0xAF, 'a'}),             // longer than needed
        bytes({0xE0, 0x80, 0xAF}),            // longer than needed
        bytes({0xF0, 0x80, 0x80, 0xAF, 'a'}), // longer than needed
        bytes({0xED, 0xA0, 0x80}),            // a surrogate
        bytes({0xF4, 0x90, 0x80, 0x80, 'a'}), // beyond Unicode
        bytes({0xF5, 0x80, 0x80, 0x80, 'a'}), // beyond Unicode
        bytes({0xFF, 'a', 'b'}),
    };
    for (const Bytes& value : wrong) {
        EXPECT_EQ(formOf(value), TagForm::Hex) << hexText(value);
    }
}

TEST(TagTextTest, EveryFormHasItsName)
{
    for (const TagForm form : {TagForm::Text, TagForm::U16, TagForm::U32, TagForm::Hex}) {
        EXPECT_EQ(parseForm("--as", formName(form)), form);
    }
    EXPECT_THAT([] { parseForm("--as", "float"); },
                ThrowsMessage<UsageError>("--as: 'float' is none of text, u16, u32, hex"));
}

TEST(TagTextTest, ValueIsShownInTheWantedForm)
{
    EXPECT_EQ(tagValueText(bytesOf("AB"), TagForm::Text), "AB");
    EXPECT_EQ(tagValueText(bytesOf("A\nB"), TagForm::Text), "A\\nB");
    EXPECT_EQ(tagValueText(numberBytes(0xFFFF, TagForm::U16), TagForm::U16), "65535");
    EXPECT_EQ(tagValueText(numberBytes(0xFFFFFFFF, TagForm::U32), TagForm::U32), "4294967295");
    EXPECT_EQ(tagValueText(bytes({0x01, 0xAB}), TagForm::Hex), "01ab");
}

TEST(TagTextTest, NumberOfAnotherSizeIsAFailure)
{
    EXPECT_THAT([] { tagValueText(bytesOf("ABC"), TagForm::U16); },
                ThrowsMessage<Failure>("its value has 3 bytes; a u16 has 2"));
    EXPECT_THAT([] { tagValueText(bytesOf("ABC"), TagForm::U32); },
                ThrowsMessage<Failure>("its value has 3 bytes; a u32 has 4"));
}

TEST(TagTextTest, DescriptionSaysTheType)
{
    EXPECT_EQ(describedValue(numberBytes(60, TagForm::U32)), "60 (u32)");
    EXPECT_EQ(describedValue(bytesOf("green")), "green (text)");
    EXPECT_EQ(describedValue({}), "empty");
}

TEST(TagTextTest, TableShowsTypesAndValues)
{
    TestConsole console;

    EXPECT_EQ(tagTable({{"a", bytesOf("text")}, {"bcd", numberBytes(7, TagForm::U16)}, {"e", {}}}, console),
              "TAG  TYPE  VALUE\n"
              "a    text  text\n"
              "bcd  u16   7\n"
              "e    text\n");
}

TEST(TagTextTest, TableShowsTheBeginOfLongValues)
{
    TestConsole console;
    const std::string begin(63, 'x');

    EXPECT_EQ(tagTable({{"a", bytesOf(begin + "y")}}, console), "TAG  TYPE  VALUE\na    text  " + begin + "y\n");
    EXPECT_EQ(tagTable({{"a", bytesOf(begin + "\u00e9!")}}, console),
              "TAG  TYPE  VALUE\na    text  " + begin + "... (66 bytes)\n");
}

TEST(TagTextTest, NameSaysNothingToTheTerminal)
{
    TestConsole console;

    EXPECT_EQ(tagTable({{"a\033b", {}}}, console), "TAG     TYPE  VALUE\na\\x1bb  text\n");
    EXPECT_EQ(tagNames({{"a\033b", {}}}), "a\\x1bb\n");
}

TEST(TagTextTest, JsonHasValueAndBytes)
{
    EXPECT_EQ(jsonLine(tagJson({"a", bytesOf("h\u00e9")})),
              "{\"name\":\"a\",\"type\":\"text\",\"value\":\"h\u00e9\",\"hex\":\"68c3a9\"}");
    EXPECT_EQ(jsonLine(tagJson({"a", bytes({1, 2, 3})})),
              R"({"name":"a","type":"hex","value":"010203","hex":"010203"})");
    const Json number = tagJson({"a", numberBytes(60, TagForm::U32)});
    EXPECT_EQ(number["type"], "u32");
    EXPECT_EQ(number["value"], 60);
}

} // namespace
} // namespace dorn::tool
