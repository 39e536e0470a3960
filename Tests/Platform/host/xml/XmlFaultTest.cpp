// SPDX-License-Identifier: MIT
#include "AaGpuXml.hpp"

#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <string>

namespace {

/// A text that is not well-formed, and what the parser says of it.
struct Fault {
    std::string text;
    std::string error;

    friend std::ostream& operator<<(std::ostream& stream, const Fault& fault) { return stream << fault.text; }
};

class XmlFaultTest : public ::testing::TestWithParam<Fault> {};

TEST_P(XmlFaultTest, TextIsNotTaken)
{
    AaGpuXmlParser parser(0);
    const std::unique_ptr<AaGpuXmlNode> tree(parser.AaGpuXmlParse(GetParam().text, ""));
    EXPECT_EQ(tree, nullptr);
    EXPECT_EQ(parser.AaGpuXmlLastError(), GetParam().error);
    EXPECT_EQ(parser.AaGpuXmlLastResult(), AA_GPU_XML_NOT_WELL_FORMED);
}

constexpr const char* notClosed = ": an element is not closed";
constexpr const char* otherName = ": an end tag has another name than its element";
constexpr const char* wrongMarkup = ": '<' begins neither an element nor anything else";
constexpr const char* wrongStart = ": a start tag is wrong or does not end";
constexpr const char* wrongEnd = ": an end tag is wrong or does not end";
constexpr const char* wrongAttribute = ": an attribute is wrong or does not end";
constexpr const char* twice = ": an attribute is there twice";
constexpr const char* wrongInstruction = ": a declaration or processing instruction is wrong or does not end";
constexpr const char* wrongComment = ": a comment is wrong or does not end";
constexpr const char* wrongCdata = ": a CDATA section is wrong or does not end";
constexpr const char* noElement = ": there is no element";
constexpr const char* secondElement = ": there is a second element beside the first";
constexpr const char* outside = ": there is text outside the element";
constexpr const char* noCharacter = ": a reference leads to what is no character of XML";
constexpr const char* wrongCharacterReference = ": a reference to a character is wrong or does not end";
constexpr const char* wrongReference = ": '&' begins no reference, or one that does not end";
constexpr const char* unknownEntity = ": there is a reference to an unknown entity";
constexpr const char* control = ": there is a control character";
constexpr const char* notUtf8 = ": there are bytes that are not UTF-8";
constexpr const char* notAllowed = ": there is a character that XML does not allow";
constexpr const char* noBlank = ": white space is missing";

Fault fault(std::string text, const char* position, const char* reason)
{
    return {std::move(text), std::string(position) + reason};
}

INSTANTIATE_TEST_SUITE_P(Elements, XmlFaultTest,
                         ::testing::Values(fault("<a>", "1:4", notClosed), fault("<a>\n<b>\n</b>", "3:5", notClosed),
                                           fault("<a>x", "1:5", notClosed), fault("<a>\n<b>\n</a>", "3:3", otherName),
                                           fault("<a>\n</b>", "2:3", otherName), fault("<ab></a>", "1:7", otherName),
                                           fault("<a></ab>", "1:6", otherName), fault("<a></A>", "1:6", otherName),
                                           fault("<a></a\xC3\xA4>", "1:6", otherName), fault("<a></a", "1:7", wrongEnd),
                                           fault("<a></a x=''>", "1:8", wrongEnd), fault("<a></ a>", "1:6", otherName),
                                           fault("<a", "1:3", wrongStart), fault("<a /", "1:4", wrongStart),
                                           fault("<a/ >", "1:3", wrongStart),
                                           fault("<a x='1'y='2'/>", "1:9", wrongStart),
                                           fault("<a'/>", "1:3", wrongStart), fault("<a><1/></a>", "1:5", wrongMarkup),
                                           fault("<a>< b/></a>", "1:5", wrongMarkup),
                                           fault("<a><!x></a>", "1:5", wrongMarkup), fault("<a><", "1:5", wrongMarkup),
                                           fault("<", "1:2", wrongMarkup), fault("<\xC2\xB7/>", "1:2", wrongMarkup),
                                           fault("<a><!DOCTYPE a></a>", "1:5", wrongMarkup)));

INSTANTIATE_TEST_SUITE_P(
    Attributes, XmlFaultTest,
    ::testing::Values(fault("<a x/>", "1:5", wrongAttribute), fault("<a x=/>", "1:6", wrongAttribute),
                      fault("<a x=1/>", "1:6", wrongAttribute), fault("<a x'1'/>", "1:5", wrongAttribute),
                      fault("<a\nx='1>", "2:6", wrongAttribute), fault("<a x='<'/>", "1:7", wrongAttribute),
                      fault("<a x='1\"/>", "1:11", wrongAttribute), fault("<a ='1'/>", "1:4", wrongAttribute),
                      fault("<a x='1' x='2'/>", "1:10", twice), fault("<a y='' x=''\n x=\"\"></a>", "2:2", twice),
                      fault("<a 0='' />", "1:4", wrongAttribute),
                      fault("<a a='' b='' c='' d='' e='' f='' g='' h='' i='' j='' k='' l='' m='' n='' o='' p='' q='' "
                            "f=''/>",
                            "1:89", twice)));

INSTANTIATE_TEST_SUITE_P(
    Text, XmlFaultTest,
    ::testing::Values(
        fault("<a>]]></a>", "1:4", ": ']]>' stands in text"), fault("<a>&</a>", "1:5", wrongReference),
        fault("<a>&x</a>", "1:6", wrongReference), fault("<a>& x;</a>", "1:5", wrongReference),
        fault("<a>&x;</a>", "1:4", unknownEntity), fault("<a>&LT;</a>", "1:4", unknownEntity),
        fault("<a>&nbsp;</a>", "1:4", unknownEntity), fault("<a b='&c;'/>", "1:7", unknownEntity),
        fault("<a>&#;</a>", "1:4", wrongCharacterReference), fault("<a>&#x;</a>", "1:4", wrongCharacterReference),
        fault("<a>&#65</a>", "1:4", wrongCharacterReference), fault("<a>&#6F;</a>", "1:4", wrongCharacterReference),
        fault("<a>&#X41;</a>", "1:4", wrongCharacterReference), fault("<a>&#0;</a>", "1:4", noCharacter),
        fault("<a>&#8;</a>", "1:4", noCharacter), fault("<a>&#xD800;</a>", "1:4", noCharacter),
        fault("<a>&#xFFFE;</a>", "1:4", noCharacter), fault("<a>&#x110000;</a>", "1:4", noCharacter),
        fault("<a>&#99999999999999999999;</a>", "1:4", noCharacter), fault("<a b='&#1;'/>", "1:7", noCharacter)));

INSTANTIATE_TEST_SUITE_P(
    Characters, XmlFaultTest,
    ::testing::Values(fault("<a>\x01</a>", "1:4", control), fault("<a b='\x1F'/>", "1:7", control),
                      fault("<a><!--\x08--></a>", "1:8", control), fault("<a><?b \x0B?></a>", "1:8", control),
                      fault("<a><![CDATA[\x0C]]></a>", "1:13", control), fault("<a>\x80</a>", "1:4", notUtf8),
                      fault("<a>\xC3</a>", "1:4", notUtf8), fault("<a>\xC0\x80</a>", "1:4", notUtf8),
                      fault("<a>\xE0\x80\x80</a>", "1:4", notUtf8), fault("<a>\xF0\x80\x80\x80</a>", "1:4", notUtf8),
                      fault("<a>\xF8\x88\x80\x80\x80</a>", "1:4", notUtf8), fault("<a>\xFF</a>", "1:4", notUtf8),
                      fault("<a>\xE2\x82</a>", "1:4", notUtf8), fault("<a>\xED\xA0\x80</a>", "1:4", notAllowed),
                      fault("<a>\xEF\xBF\xBE</a>", "1:4", notAllowed),
                      fault("<a>\xF4\x90\x80\x80</a>", "1:4", notAllowed), fault("<a><!--\xFF--></a>", "1:8", notUtf8),
                      fault("<a \xFF=''/>", "1:4", wrongAttribute)));

INSTANTIATE_TEST_SUITE_P(OtherMarkup, XmlFaultTest,
                         ::testing::Values(fault("<a><!-- b</a>", "1:14", wrongComment),
                                           fault("<a><!-- b -- c --></a>", "1:13", wrongComment),
                                           fault("<a><!-- b ---></a>", "1:13", wrongComment),
                                           fault("<a><![CDATA[ b</a>", "1:19", wrongCdata),
                                           fault("<a><![cdata[b]]></a>", "1:5", wrongMarkup),
                                           fault("<a><?b</a>", "1:7", noBlank),
                                           fault("<a><?b </a>", "1:12", wrongInstruction),
                                           fault("<a><? b?></a>", "1:6", wrongInstruction),
                                           fault("<a><?xml x?></a>", "1:4", wrongInstruction),
                                           fault("<a><?XmL?></a>", "1:4", wrongInstruction)));

INSTANTIATE_TEST_SUITE_P(
    Declarations, XmlFaultTest,
    ::testing::Values(fault("<?xml version='1.0'", "1:20", wrongInstruction),
                      fault("<?xml?><a/>", "1:1", wrongInstruction),
                      fault("<?xml encoding='UTF-8'?><a/>", "1:7", wrongInstruction),
                      fault("<?xml version='1.'?><a/>", "1:15", wrongInstruction),
                      fault("<?xml version='2.0'?><a/>", "1:15", wrongInstruction),
                      fault("<?xml version='1.0x'?><a/>", "1:15", wrongInstruction),
                      fault("<?xml version=1.0?><a/>", "1:15", wrongInstruction),
                      fault("<?xml version='1.0'encoding='UTF-8'?><a/>", "1:20", wrongInstruction),
                      fault("<?xml version='1.0' standalone='yes' encoding='UTF-8'?><a/>", "1:38", wrongInstruction),
                      fault("<?xml version='1.0' standalone='maybe'?><a/>", "1:32", wrongInstruction),
                      fault("<?xml version='1.0' encoding=''?><a/>", "1:30", wrongInstruction),
                      fault(" <?xml version='1.0'?><a/>", "1:2", wrongInstruction)));

INSTANTIATE_TEST_SUITE_P(
    Document, XmlFaultTest,
    ::testing::Values(fault("", "1:1", noElement), fault(" \n ", "2:2", noElement),
                      fault("<?xml version='1.0'?><!-- a -->", "1:32", noElement), fault("\n x<a/>", "2:2", outside),
                      fault("<a/>\r\n\r\n  x", "3:3", outside), fault("no XML at all", "1:1", outside),
                      fault("<a/>&amp;", "1:5", outside), fault("<a/>\n <b/>", "2:2", secondElement),
                      fault("<a></a>\n</b>", "2:2", wrongMarkup), fault("<a/><![CDATA[x]]>", "1:6", wrongMarkup),
                      fault("<![CDATA[]]><a/>", "1:2", wrongMarkup), fault("<a/><!DOCTYPE a>", "1:6", wrongMarkup)));

} // namespace
