// SPDX-License-Identifier: MIT
#include "xml/XmlEncoding.hpp"

#include <gtest/gtest.h>
#include <string>

namespace {

using dorn::host::declaredXmlEncoding;
using dorn::host::isXmlEncodingName;
using dorn::host::latin1ToUtf8;
using dorn::host::XmlEncoding;
using dorn::host::xmlEncodingOf;

TEST(XmlEncodingTest, EncodingNamesAreKnownInAnyCase)
{
    EXPECT_EQ(xmlEncodingOf("UTF-8"), XmlEncoding::Utf8);
    EXPECT_EQ(xmlEncodingOf("utf8"), XmlEncoding::Utf8);
    EXPECT_EQ(xmlEncodingOf("US-ASCII"), XmlEncoding::Ascii);
    EXPECT_EQ(xmlEncodingOf("ascii"), XmlEncoding::Ascii);
    EXPECT_EQ(xmlEncodingOf("ISO-8859-1"), XmlEncoding::Latin1);
    EXPECT_EQ(xmlEncodingOf("Latin1"), XmlEncoding::Latin1);
    EXPECT_EQ(xmlEncodingOf("ISO-8859-15"), std::nullopt);
    EXPECT_EQ(xmlEncodingOf(""), std::nullopt);
}

TEST(XmlEncodingTest, NamesOfEncodingsAreShortWords)
{
    EXPECT_TRUE(isXmlEncodingName("KOI8-R"));
    EXPECT_TRUE(isXmlEncodingName("x_1.2"));
    EXPECT_FALSE(isXmlEncodingName(""));
    EXPECT_FALSE(isXmlEncodingName("8bit"));
    EXPECT_FALSE(isXmlEncodingName("UTF 8"));
    EXPECT_FALSE(isXmlEncodingName("UTF\n8"));
    EXPECT_TRUE(isXmlEncodingName(std::string(40, 'x')));
    EXPECT_FALSE(isXmlEncodingName(std::string(41, 'x')));
}

TEST(XmlEncodingTest, DeclarationGivesTheEncoding)
{
    EXPECT_EQ(declaredXmlEncoding("<?xml version='1.0' encoding='UTF-8'?><a/>"), "UTF-8");
    EXPECT_EQ(declaredXmlEncoding("<?xml version=\"1.0\" encoding = \"latin1\" standalone='yes'?><a/>"), "latin1");
}

TEST(XmlEncodingTest, TextWithoutADeclaredEncodingGivesNone)
{
    EXPECT_EQ(declaredXmlEncoding(""), "");
    EXPECT_EQ(declaredXmlEncoding("<?xml"), "");
    EXPECT_EQ(declaredXmlEncoding("<a encoding='UTF-8'/>"), "");
    EXPECT_EQ(declaredXmlEncoding("<?xml version='1.0'?><a encoding='UTF-8'/>"), "");
    EXPECT_EQ(declaredXmlEncoding("<?xmlish encoding='UTF-8'?>"), "");
    EXPECT_EQ(declaredXmlEncoding("<?xml encoding='UTF-8"), "");
    EXPECT_EQ(declaredXmlEncoding("<?xml encoding="), "");
    EXPECT_EQ(declaredXmlEncoding("<?xml encoding=UTF-8?>"), "");
}

TEST(XmlEncodingTest, Latin1CharactersBecomeUtf8)
{
    EXPECT_EQ(latin1ToUtf8("a\x7F\x80\xE4\xFF"), "a\x7F\xC2\x80\xC3\xA4\xC3\xBF");
}

} // namespace
