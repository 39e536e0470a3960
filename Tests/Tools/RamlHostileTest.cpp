// SPDX-License-Identifier: MIT
// Documents that are made to do harm end in a clear result: without deep recursion, in time in proportion to their
// size. A document of these sizes that took quadratic time would not end within the bound of a test.
#include "NodeTest.hpp"
#include "RamlDocuments.hpp"
#include "Sanitizers.hpp"
#include "raml/RamlReading.hpp"

#include <functional>
#include <gtest/gtest.h>
#include <ostream>
#include <pthread.h>
#include <stdexcept>

namespace dorn::tool {
namespace {

using namespace RAML;

constexpr std::size_t million = 1'000'000;
constexpr std::size_t deep = 100'000;

std::string repeated(const std::string& text, std::size_t count)
{
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t index = 0; index < count; ++index) {
        result += text;
    }
    return result;
}

std::string nested(const std::string& begin, const std::string& end)
{
    return repeated(begin, deep) + repeated(end, deep);
}

std::string numbered(const std::string& before, const std::string& after, std::size_t count)
{
    std::string result;
    for (std::size_t index = 0; index < count; ++index) {
        result += before + std::to_string(index) + after;
    }
    return result;
}

/// Does something on a stack that no deep recursion fits.
void onSmallStack(std::function<void()> action)
{
    constexpr std::size_t kibibyte = 1024;
    const std::size_t size = (test::hasAddressSanitizer || test::hasThreadSanitizer ? 1024 : 128) * kibibyte;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, size);
    pthread_t thread{};
    const auto run = [](void* argument) -> void* {
        (*static_cast<std::function<void()>*>(argument))();
        return nullptr;
    };
    const int result = pthread_create(&thread, &attributes, run, &action);
    pthread_attr_destroy(&attributes);
    if (result != 0) {
        throw std::runtime_error("no thread");
    }
    pthread_join(thread, nullptr);
}

struct HostileCase {
    const char* name;
    std::function<std::string()> text;
    RAML_ParsingResult result;
};

void PrintTo(const HostileCase& test, std::ostream* stream)
{
    *stream << test.name;
}

class RamlHostileTest : public testkit::NodeTest, public ::testing::WithParamInterface<HostileCase> {};

TEST_P(RamlHostileTest, ResultIsClear)
{
    const std::string text = GetParam().text();
    RamlReading reading;
    onSmallStack([&] { reading = readRaml(text, 8); });
    EXPECT_EQ(reading.result, GetParam().result)
        << (reading.findings.empty() ? "" : findingText(reading.findings.front()));
    EXPECT_LE(reading.findings.size(), 8U);
    EXPECT_EQ(reading.findings.empty(), reading.result == RAML_OK);
    onSmallStack([&] { reading.document.reset(); });
}

std::string inValue(const std::string& value)
{
    return ramlAround(ramlObject("A", "A=1", ramlParameter("a", value)));
}

const HostileCase hostileCases[] = {
    {"MillionAttributes",
     [] {
         return ramlAround("<managedObject class='A' distName='A=1' " + numbered("a", "='' ", million) +
                           "operation='create'/>");
     },
     RAML_OK},
    {"MillionAttributesOfTheSameName",
     [] { return "<raml version='2.1' xmlns='' " + repeated("a='' ", million) + "/>"; }, RAML_MALFORMED_XML},
    {"MillionObjects",
     [] { return ramlAround(numbered("<managedObject class='A' operation='create' distName='", "'/>", million)); },
     RAML_OK},
    {"MillionErrors", [] { return ramlAround(repeated("<q/>", million)); }, RAML_SYNTAX_ERROR},
    {"MillionBlocks", [] { return "<raml version='2.1' xmlns=''>" + repeated("<cmData/>", million) + "</raml>"; },
     RAML_SYNTAX_ERROR},
    {"MillionParameters", [] { return ramlAround(ramlObject("A", "A=1", numbered("<p name='", "'/>", million))); },
     RAML_OK},
    {"MillionItems",
     [] { return ramlAround(ramlObject("A", "A=1", "<list name='l'>" + repeated("<item/>", million) + "</list>")); },
     RAML_OK},
    {"MillionPiecesOfText", [] { return inValue(repeated("a<!-- -->b<?c?><![CDATA[d]]>", million)); }, RAML_OK},
    {"MillionReferences", [] { return inValue(repeated("&amp;&#x41;", million)); }, RAML_OK},
    {"MillionRightBrackets", [] { return inValue("<![CDATA[" + repeated("]", million) + "]]>"); }, RAML_OK},
    {"MillionDashes", [] { return "<!--" + repeated(" -", million) + "--><raml/>"; }, RAML_MALFORMED_XML},
    {"MillionLinesBeforeAFault", [] { return repeated("\n", million) + "<raml>" + repeated("\r\n", million) + "<"; },
     RAML_MALFORMED_XML},
    {"DeepDocument", [] { return nested("<raml>", "</raml>"); }, RAML_SYNTAX_ERROR},
    {"DeepDocumentThatIsCut", [] { return repeated("<raml>", deep); }, RAML_MALFORMED_XML},
    {"DeepUnknownElements", [] { return ramlAround(nested("<a>", "</a>")); }, RAML_SYNTAX_ERROR},
    {"DeepObjects",
     [] {
         return ramlAround(nested("<managedObject class='A' distName='A=1' operation='create'>", "</managedObject>"));
     },
     RAML_SYNTAX_ERROR},
    {"DeepLists", [] { return ramlAround(ramlObject("A", "A=1", nested("<list name=''>", "</list>"))); },
     RAML_SYNTAX_ERROR},
    {"DeepItems",
     [] { return ramlAround(ramlObject("A", "A=1", "<list name=''>" + nested("<item>", "</item>") + "</list>")); },
     RAML_SYNTAX_ERROR},
    {"DeepExtension", [] { return ramlAround(ramlObject("A", "A=1", nested("<extension>", "</extension>"))); },
     RAML_OK},
    {"DeepText", [] { return ramlAround(ramlObject("A", "A=1", "<p name='a'>" + nested("x<b>", "y</b>") + "</p>")); },
     RAML_OK},
    {"DeepDeclarations",
     [] { return "<!DOCTYPE raml [<!ELEMENT a " + repeated("(", deep) + "b" + repeated(")", deep) + ">]><raml/>"; },
     RAML_SYNTAX_ERROR},
    {"DeepConditionalSections", [] { return "<!DOCTYPE raml [" + nested("<![INCLUDE[", "]]>") + "]><raml/>"; },
     RAML_MALFORMED_XML},
    {"EntityBomb",
     [] {
         return "<!DOCTYPE raml [<!ENTITY e0 'lol'>" +
                [] {
                    std::string entities;
                    for (int index = 1; index < 30; ++index) {
                        const std::string before = "&e" + std::to_string(index - 1) + ";";
                        entities += "<!ENTITY e" + std::to_string(index) + " '" + repeated(before, 10) + "'>";
                    }
                    return entities;
                }() +
                "]>" + inValue("&e29;");
     },
     RAML_MALFORMED_XML},
    {"EntityOfItself", [] { return "<!DOCTYPE raml [<!ENTITY e '&e;'>]>" + inValue("&e;"); }, RAML_MALFORMED_XML},
    {"EntityFromAFile", [] { return "<!DOCTYPE raml [<!ENTITY e SYSTEM 'file:///dev/zero'>]>" + inValue("&e;"); },
     RAML_MALFORMED_XML},
    {"MillionEntities",
     [] { return "<!DOCTYPE raml [" + numbered("<!ENTITY e", " 'x'>", million) + "]>" + inValue("x"); }, RAML_OK},
    {"ZeroBytes", [] { return std::string(million, '\0'); }, RAML_MALFORMED_XML},
    {"ZeroByteInAValue", [] { return inValue(std::string(1, '\0')); }, RAML_MALFORMED_XML},
    {"ZeroByteByReference", [] { return inValue("&#0;"); }, RAML_MALFORMED_XML},
    {"ControlCharacter", [] { return inValue("\x01"); }, RAML_MALFORMED_XML},
    {"BrokenUtf8", [] { return inValue("\xC3("); }, RAML_MALFORMED_XML},
    {"OverlongUtf8", [] { return inValue("\xC0\x80"); }, RAML_MALFORMED_XML},
    {"SurrogateInUtf8", [] { return inValue("\xED\xA0\x80"); }, RAML_MALFORMED_XML},
    {"CutUtf8", [] { return ramlAround("") + "\xE2\x82"; }, RAML_MALFORMED_XML},
    {"Utf16LittleEndian", [] { return std::string("\xFF\xFE<\0r\0a\0m\0l\0/\0>\0", 16); }, RAML_MALFORMED_XML},
    {"Utf16BigEndian", [] { return std::string("\xFE\xFF\0<\0r\0a\0m\0l\0/\0>", 16); }, RAML_MALFORMED_XML},
    {"Utf16WithoutMark", [] { return std::string("<\0r\0a\0m\0l\0/\0>\0", 14); }, RAML_MALFORMED_XML},
    {"Utf32", [] { return std::string("\xFF\xFE\0\0<\0\0\0/\0\0\0", 12); }, RAML_MALFORMED_XML},
    {"LongNames", [] { return ramlAround("<" + std::string(10 * million, 'a') + "/>"); }, RAML_SYNTAX_ERROR},
    {"LongValueThatIsCut", [] { return "<raml><p>" + std::string(64 * million, 'a'); }, RAML_MALFORMED_XML},
    {"LongCommentThatIsCut", [] { return "<raml/><!--" + std::string(16 * million, '-'); }, RAML_MALFORMED_XML},
    {"Blanks", [] { return std::string(million, ' '); }, RAML_MALFORMED_XML},
    {"Noise",
     [] {
         std::string noise;
         unsigned state = 1;
         while (noise.size() < million) {
             state = state * 1664525U + 1013904223U;
             noise += static_cast<char>(state >> 24U);
         }
         return noise;
     },
     RAML_MALFORMED_XML},
};

INSTANTIATE_TEST_SUITE_P(Documents, RamlHostileTest, ::testing::ValuesIn(hostileCases),
                         [](const auto& test) { return test.param.name; });

} // namespace
} // namespace dorn::tool
