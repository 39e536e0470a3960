// SPDX-License-Identifier: MIT
#include "AaGpuXml.hpp"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace {

class XmlDoctypeTest : public ::testing::Test {
protected:
    EAaGpuXmlResult resultOf(const std::string& text)
    {
        const std::unique_ptr<AaGpuXmlNode> tree(m_parser.AaGpuXmlParse(text, ""));
        EXPECT_EQ(tree != nullptr, m_parser.AaGpuXmlLastResult() == AA_GPU_XML_OK);
        return m_parser.AaGpuXmlLastResult();
    }
    /// What comes of a document with these declarations in it.
    EAaGpuXmlResult resultWith(const std::string& declarations)
    {
        return resultOf("<!DOCTYPE a [" + declarations + "]><a/>");
    }

    AaGpuXmlParser m_parser{0};
};

TEST_F(XmlDoctypeTest, DeclarationsAreReadOver)
{
    for (const char* const text : {"<!DOCTYPE a><a/>", "<!DOCTYPE a ><a/>", "<!DOCTYPE a SYSTEM 'a.dtd'><a/>",
                                   "<!DOCTYPE a SYSTEM \"a.dtd\" ><a/>", "<!DOCTYPE a PUBLIC '-//A//B' \"b\"><a/>",
                                   "<!DOCTYPE a []><a/>", "<!DOCTYPE a SYSTEM 'a'[ ] ><a/>", "<!DOCTYPE b><a/>",
                                   "<?xml version='1.0'?>\n<!-- c --><!DOCTYPE a>\n<?d e?><a/>"}) {
        EXPECT_EQ(resultOf(text), AA_GPU_XML_OK) << text << m_parser.AaGpuXmlLastError();
    }
}

TEST_F(XmlDoctypeTest, EveryKindOfDeclarationIsReadOver)
{
    for (const char* const declarations :
         {"<!ELEMENT a EMPTY>",
          "<!ELEMENT a ANY >",
          "<!ELEMENT a (#PCDATA)>",
          "<!ELEMENT a ( #PCDATA )*>",
          "<!ELEMENT a (#PCDATA|b | c)*>",
          "<!ELEMENT a (b)>",
          "<!ELEMENT a (b?,c*,d+)>",
          "<!ELEMENT a ( b | c )+>",
          "<!ELEMENT a ((b,(c|d)*)?|e)>",
          "<!ATTLIST a>",
          "<!ATTLIST a b CDATA #IMPLIED>",
          "<!ATTLIST a b ID #REQUIRED c IDREFS #IMPLIED d ENTITIES #IMPLIED e NMTOKENS #IMPLIED >",
          "<!ATTLIST a b (c|1d | e) #IMPLIED>",
          "<!ATTLIST a b NOTATION (c|d) #IMPLIED>",
          "<!ENTITY a 'b'>",
          "<!ENTITY a \"&b;&#65;'\" >",
          "<!ENTITY % a 'b'>",
          "<!ENTITY a SYSTEM 'b'>",
          "<!ENTITY a PUBLIC 'b' 'c'>",
          "<!ENTITY a SYSTEM 'b' NDATA c>",
          "<!NOTATION a SYSTEM 'b'>",
          "<!NOTATION a PUBLIC 'b'>",
          "<!NOTATION a PUBLIC 'b' 'c'>",
          "<!-- a -->",
          "<?a b?>",
          " \n <!ELEMENT a ANY>\n<!ELEMENT b ANY> "}) {
        EXPECT_EQ(resultWith(declarations), AA_GPU_XML_OK) << declarations << m_parser.AaGpuXmlLastError();
    }
}

TEST_F(XmlDoctypeTest, WrongDeclarationsAreFaults)
{
    for (const char* const text :
         {"<!DOCTYPE><a/>", "<!DOCTYPEa><a/>", "<!DOCTYPE a", "<!DOCTYPE a [", "<!DOCTYPE a []", "<!DOCTYPE a b><a/>",
          "<!DOCTYPE a SYSTEM><a/>", "<!DOCTYPE a SYSTEM a><a/>", "<!DOCTYPE a PUBLIC 'a'><a/>",
          "<!DOCTYPE a PUBLIC '{' 'b'><a/>", "<!DOCTYPE a PUBLIC 'a''b'><a/>", "<!DOCTYPE aSYSTEM'a'><a/>",
          "<!DOCTYPE a><!DOCTYPE a><a/>", "<!doctype a><a/>"}) {
        EXPECT_EQ(resultOf(text), AA_GPU_XML_NOT_WELL_FORMED) << text;
    }
}

TEST_F(XmlDoctypeTest, WrongDeclarationsInsideAreFaults)
{
    for (const char* const declarations : {"<!FOO>",
                                           "<a/>",
                                           "text",
                                           "&a;",
                                           "<!ELEMENT>",
                                           "<!ELEMENT a>",
                                           "<!ELEMENT a b>",
                                           "<!ELEMENT a ()>",
                                           "<!ELEMENT a (b,c|d)>",
                                           "<!ELEMENT a (b",
                                           "<!ELEMENT a (b))>",
                                           "<!ELEMENT a (b,)>",
                                           "<!ELEMENT a (#PCDATA|b)>",
                                           "<!ELEMENT a (b|#PCDATA)*>",
                                           "<!ELEMENT a (#PCDATA)+>",
                                           "<!ELEMENT aEMPTY>",
                                           "<!ATTLIST>",
                                           "<!ATTLIST a b>",
                                           "<!ATTLIST a b FOO #IMPLIED>",
                                           "<!ATTLIST a b CDATA>",
                                           "<!ATTLIST a b CDATA #FOO>",
                                           "<!ATTLIST a b () #IMPLIED>",
                                           "<!ATTLIST a b NOTATION #IMPLIED>",
                                           "<!ENTITY a>",
                                           "<!ENTITY a b>",
                                           "<!ENTITY a '%b;'>",
                                           "<!ENTITY a '&'>",
                                           "<!ENTITY a '&#0;'>",
                                           "<!ENTITY % a SYSTEM 'b' NDATA c>",
                                           "<!ENTITY a SYSTEM 'b'NDATA c>",
                                           "<!ENTITY %a 'b'>",
                                           "<!NOTATION a>",
                                           "<!NOTATION a 'b'>",
                                           "<!NOTATION a PUBLIC 'b''c'>",
                                           "<!NOTATION a SYSTEM>",
                                           "%a",
                                           "% a;",
                                           "<![INCLUDE[]]>"}) {
        EXPECT_EQ(resultWith(declarations), AA_GPU_XML_NOT_WELL_FORMED) << declarations;
    }
}

TEST_F(XmlDoctypeTest, DocumentThatNeedsWhatIsDeclaredIsNotSupported)
{
    EXPECT_EQ(resultOf("<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>"), AA_GPU_XML_NOT_SUPPORTED);
    EXPECT_EQ(m_parser.AaGpuXmlLastError(), "1:34: there is a reference to an unknown entity");
    EXPECT_EQ(resultOf("<!DOCTYPE a SYSTEM 'a.dtd'><a b='&c;'/>"), AA_GPU_XML_NOT_SUPPORTED);
    EXPECT_EQ(resultWith("<!ATTLIST a b CDATA 'c'>"), AA_GPU_XML_NOT_SUPPORTED);
    EXPECT_EQ(m_parser.AaGpuXmlLastError(), "1:34: defaults of attributes are not supported");
    EXPECT_EQ(resultWith("<!ATTLIST a b CDATA #FIXED 'c'>"), AA_GPU_XML_NOT_SUPPORTED);
    EXPECT_EQ(resultWith("<!ENTITY % a 'b'> %a;"), AA_GPU_XML_NOT_SUPPORTED);
    EXPECT_EQ(m_parser.AaGpuXmlLastError(), "1:32: parameter entities are not supported");
}

TEST_F(XmlDoctypeTest, EntitiesThatGrowAreNotFollowed)
{
    std::string declarations = "<!ENTITY e0 'lol'>";
    for (int level = 1; level < 40; ++level) {
        const std::string below = "&e" + std::to_string(level - 1) + ";";
        declarations += "<!ENTITY e" + std::to_string(level) + " '" + below + below + below + below + "'>";
    }
    EXPECT_EQ(resultWith(declarations), AA_GPU_XML_OK);
    EXPECT_EQ(resultOf("<!DOCTYPE a [" + declarations + "]><a>&e39;</a>"), AA_GPU_XML_NOT_SUPPORTED);
    EXPECT_EQ(resultOf("<!DOCTYPE a [<!ENTITY b '&b;'>]><a>&b;</a>"), AA_GPU_XML_NOT_SUPPORTED);
}

TEST_F(XmlDoctypeTest, DeepContentModelTakesNoStack)
{
    constexpr std::size_t depth = 300'000;
    EXPECT_EQ(resultWith("<!ELEMENT a " + std::string(depth, '(') + "b" + std::string(depth, ')') + ">"),
              AA_GPU_XML_OK);
}

} // namespace
