// SPDX-License-Identifier: MIT
#include "raml/RamlWriting.hpp"

#include "NodeTest.hpp"
#include "Outcome.hpp"
#include "RamlDocuments.hpp"
#include "TestConsole.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

class RamlWritingTest : public testkit::NodeTest {
protected:
    static std::string troubleOf(const std::string& objects)
    {
        const RAML::RAML_Type::pointer document = ramlModel(ramlAround(objects));
        return whyNotKept(*document, writtenRaml(*document));
    }
};

TEST_F(RamlWritingTest, OperationThatIsNotWrittenIsTold)
{
    EXPECT_EQ(troubleOf(ramlObject("A", "A=1") + ramlObject("A", "A=2", "", "subscribe")),
              "operation subscribe of 'A=2' is not written");
}

TEST_F(RamlWritingTest, TextThatIsNotEscapedIsTold)
{
    EXPECT_EQ(troubleOf(ramlObject("A", "A=1", ramlParameter("a", "1 &lt; 2"))), "");
    const std::string trouble = troubleOf(ramlObject("A", "A=1", ramlParameter("a", "1 &lt; 2 &lt; 3")));
    EXPECT_TRUE(
        trouble.starts_with("only one character of a parameter's value, and none elsewhere, is escaped; in what "
                            "is written: 8:"))
        << trouble;
}

/// Not an error, but not what was meant either.
TEST_F(RamlWritingTest, ValueThatReadsBackAsAnotherIsTold)
{
    EXPECT_EQ(troubleOf(ramlObject("A", "A=1", ramlParameter("a", "&amp;amp;&amp;lt;"))), "'A=1' reads back changed");
}

TEST_F(RamlWritingTest, UnwrittenAttributesAreCounted)
{
    const RAML::RAML_Type::pointer document = ramlModel(
        "<raml version=\"2.1\" xmlns=\"x\"><cmData type=\"plan\" name=\"n\"><header><log dateTime=\"t\" action=\"a\" "
        "appInfo=\"i\"/></header><managedObject class=\"A\" distName=\"A=1\" operation=\"create\" id=\"1\" "
        "funcScope=\"PM\"><list name=\"l\"><item operation=\"create\"/><item "
        "operation=\"x\"/></list></managedObject></cmData></raml>");
    EXPECT_EQ(unwrittenFields(*document), (UnwrittenFields{{"cmData@name", 1},
                                                           {"item@operation", 2},
                                                           {"log@appInfo", 1},
                                                           {"managedObject@funcScope", 1},
                                                           {"managedObject@id", 1}}));
}

TEST_F(RamlWritingTest, WhatWouldNotReadBackIsPrintedOnlyByForce)
{
    const RAML::RAML_Type::pointer document = ramlModel(ramlAround(ramlObject("A", "A=1", "", "subscribe")));
    EXPECT_THROW(writeRaml(*document, false), Failure);

    const WrittenRaml forced = writeRaml(*document, true);
    TestConsole console;
    printWrittenRaml(forced, console);
    EXPECT_EQ(console.answer(), writtenRaml(*document));
    EXPECT_EQ(console.remarks(), "dorn: this does not read back: operation subscribe of 'A=1' is not written\n");
    EXPECT_EQ(writtenRamlJson(forced), (Json{{"document", writtenRaml(*document)},
                                             {"readsBack", false},
                                             {"trouble", "operation subscribe of 'A=1' is not written"},
                                             {"notWritten", Json::object()}}));
}

TEST_F(RamlWritingTest, WhatIsNotWrittenIsRemarked)
{
    const WrittenRaml written{"text", "", {{"cmData@name", 1}, {"log@appInfo", 2}}};
    TestConsole console;
    printWrittenRaml(written, console);
    EXPECT_EQ(console.answer(), "text");
    EXPECT_EQ(console.remarks(), "dorn: not written: cmData@name (1), log@appInfo (2)\n");
    EXPECT_EQ(jsonLine(writtenRamlJson(written)),
              R"({"document":"text","readsBack":true,"trouble":null,"notWritten":{"cmData@name":1,"log@appInfo":2}})");
}

} // namespace
} // namespace dorn::tool
