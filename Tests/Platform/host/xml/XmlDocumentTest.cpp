// SPDX-License-Identifier: MIT
#include "xml/XmlDocument.hpp"

#include <gtest/gtest.h>
#include <string>

namespace {

using dorn::host::parseXml;
using dorn::host::XmlDocument;
using dorn::host::XmlFaultPolicy;

/// The tree before the fault as text: "name[child child]" with attributes in front; "none" without a tree.
std::string beforeFault(const std::string& text)
{
    const XmlDocument document = parseXml(text, {}, XmlFaultPolicy::GiveWhatStandsBefore);
    EXPECT_TRUE(document.fault) << text;
    if (!document.root) {
        return "none";
    }
    const AaGpuXmlNode& element = **document.root->AaGpuXmlGetFirstChildren();
    std::string names;
    for (auto child = element.AaGpuXmlGetFirstChildren(); child != element.AaGpuXmlGetLastChildren(); ++child) {
        names += (names.empty() ? "" : " ") + std::string((*child)->AaGpuXmlGetName());
    }
    return std::string(element.AaGpuXmlGetName()) + "[" + names + "]";
}

TEST(XmlDocumentTest, GoodTextHasATreeAndNoFault)
{
    const XmlDocument document = parseXml("<a/>", {}, XmlFaultPolicy::GiveWhatStandsBefore);
    EXPECT_NE(document.root, nullptr);
    EXPECT_FALSE(document.fault);
}

TEST(XmlDocumentTest, FaultGivesNothingUnlessAskedFor)
{
    const XmlDocument document = parseXml("<a><b/></c>", {}, XmlFaultPolicy::GiveNothing);
    EXPECT_EQ(document.root, nullptr);
    ASSERT_TRUE(document.fault);
    EXPECT_EQ(document.fault->line, 1U);
}

TEST(XmlDocumentTest, CompleteElementsBeforeAnUnclosedDocumentElementAreThere)
{
    EXPECT_EQ(beforeFault("<a><b/><c>1</c>"), "a[b c]");
    EXPECT_EQ(beforeFault("<a><b/><c>1</c>\n"), "a[b c]");
    EXPECT_EQ(beforeFault("<a x='1'><b/>"), "a[x b]");
}

TEST(XmlDocumentTest, ElementThatTheFaultLiesInIsLeftOut)
{
    EXPECT_EQ(beforeFault("<a><b/><c>1</a>"), "a[b]");
    EXPECT_EQ(beforeFault("<a><b/><c>1"), "a[b]");
    EXPECT_EQ(beforeFault("<a><b/><c>1</c"), "a[b]");
    EXPECT_EQ(beforeFault("<a><b/><c>1</d></a>"), "a[b]");
    EXPECT_EQ(beforeFault("<a><b/><c x=></c></a>"), "a[b]");
    EXPECT_EQ(beforeFault("<a><b/><c x='1></c></a>"), "a[b]");
    EXPECT_EQ(beforeFault("<a><b/><c><d></c></a>"), "a[b]");
}

TEST(XmlDocumentTest, ElementBeforeAFaultThatLiesBetweenElementsIsKept)
{
    EXPECT_EQ(beforeFault("<a><b/><c>1</c></d></a>"), "a[b c]");
    EXPECT_EQ(beforeFault("<a><b/><c>1</c><"), "a[b c]");
    EXPECT_EQ(beforeFault("<a><b/><c>1</c><1></a>"), "a[b c]");
    EXPECT_EQ(beforeFault("<a><b/><c>1</c><!-- <d/> "), "a[b c]");
    EXPECT_EQ(beforeFault("<a><b/><c>1</c><![CDATA[ "), "a[b c]");
    EXPECT_EQ(beforeFault("<a><b/><c>1</c></a"), "a[b c]");
}

TEST(XmlDocumentTest, NothingAfterTheFaultIsThere)
{
    EXPECT_EQ(beforeFault("<a><b/><c></b><d/></a>"), "a[b]");
}

TEST(XmlDocumentTest, DocumentElementIsWholeBeforeAFaultBehindIt)
{
    EXPECT_EQ(beforeFault("<a><b/><c/></a><d/>"), "a[b c]");
    EXPECT_EQ(beforeFault("<a><b/><c/></a>text"), "a[b c]");
    EXPECT_EQ(beforeFault("<a><b/><c/></a></e>"), "a[b c]");
}

TEST(XmlDocumentTest, NothingIsThereWhenTheFaultComesFirst)
{
    EXPECT_EQ(beforeFault("text<a><b/></a>"), "none");
    EXPECT_EQ(beforeFault("<!-- <a><b/></a>"), "none");
    EXPECT_EQ(beforeFault("<a x='1'"), "none");
    EXPECT_EQ(beforeFault("<a>"), "none");
    EXPECT_EQ(beforeFault(""), "none");
}

TEST(XmlDocumentTest, ZeroByteEndsWhatIsRead)
{
    using namespace std::string_literals;
    EXPECT_EQ(beforeFault("<a><b/><c/>\0<d/></a>"s), "a[b c]");
    EXPECT_EQ(beforeFault("<a><b/><c>\0</c></a>"s), "a[b]");
}

} // namespace
