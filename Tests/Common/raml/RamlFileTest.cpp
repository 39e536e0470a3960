// SPDX-License-Identifier: MIT
#include "ModelText.hpp"
#include "RamlTest.hpp"
#include "RamlTexts.hpp"

#include "FailNth.hpp"
#include "raml/RamlParser.hpp"

#include "AaFile.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace RAML {
namespace {

using dorn::test::debugLine;
using dorn::test::errorLine;
using dorn::test::errorsOf;
using dorn::test::inObject;
using dorn::test::structureOf;
using dorn::testkit::FailEvery;
using dorn::testkit::FailNth;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string openingFailed = errorLine("Opening of RAML file failed");
const std::string corrupt =
    errorLine("Could not load XML file. XML possibly corrupt. Please check the raml document and try loading again!");
const std::string good = "raml(2.1,ns) cmData(actual,all) A:A-1(x=1)";

class RamlFileTest : public dorn::test::RamlTest {
protected:
    RAML_Type::pointer parseFile(const std::string& name) { return m_parser.parseRaml(name, m_result, true); }

    void write(const std::string& content) const { m_node.writeBoardFile("/ffs/site.xml", content); }

    RamlParser m_parser;
    RAML_ParsingResult m_result = RAML_OK;
};

TEST_F(RamlFileTest, FileOfTheTargetIsRead)
{
    write(inObject("<p name='x'>1</p>"));
    EXPECT_EQ(structureOf(parseFile("/ffs/site.xml")), good);
    EXPECT_EQ(m_result, RAML_OK);
    EXPECT_THAT(errorsOf(m_log), IsEmpty());
}

TEST_F(RamlFileTest, LongFileIsReadWhole)
{
    const std::string value(300'000, 'v');
    write(inObject("<p name='x'>" + value + "</p>"));
    EXPECT_EQ(structureOf(parseFile("/ffs/site.xml")), "raml(2.1,ns) cmData(actual,all) A:A-1(x=" + value + ")");
}

TEST_F(RamlFileTest, FileThatTellsNoSizeIsReadWhole)
{
    const std::string value(300'000, 'v');
    write(inObject("<p name='x'>" + value + "</p>"));
    const FailNth<AaFileGetSize> noSize(1, 0);
    EXPECT_EQ(structureOf(parseFile("/ffs/site.xml")), "raml(2.1,ns) cmData(actual,all) A:A-1(x=" + value + ")");
    EXPECT_TRUE(noSize.hasFailed());
}

TEST_F(RamlFileTest, RelativeNameCountsFromTheWorkingDirectory)
{
    const std::string directory = std::filesystem::current_path().string();
    m_node.writeBoardFile(directory + "/sub folder/site.xml", inObject("<p name='x'>1</p>"));
    EXPECT_EQ(structureOf(parseFile("sub folder/../sub folder/site.xml")), good);
}

TEST_F(RamlFileTest, MissingFileCannotBeOpened)
{
    m_log.clear();
    EXPECT_EQ(parseFile("/ffs/site.xml"), nullptr);
    EXPECT_EQ(m_result, RAML_RESOURCE_LIMITATION);
    EXPECT_THAT(m_log.texts(),
                ElementsAre(debugLine("RamlParser::parseRaml"), debugLine("RamlParser::load"), openingFailed));
}

TEST_F(RamlFileTest, EmptyNameCannotBeOpened)
{
    EXPECT_EQ(parseFile(""), nullptr);
    EXPECT_EQ(m_result, RAML_RESOURCE_LIMITATION);
    EXPECT_THAT(errorsOf(m_log), ElementsAre(openingFailed));
}

TEST_F(RamlFileTest, FolderCannotBeRead)
{
    m_node.writeBoardFile("/ffs/folder/file", "");
    EXPECT_EQ(parseFile("/ffs/folder"), nullptr);
    EXPECT_EQ(m_result, RAML_RESOURCE_LIMITATION);
    EXPECT_THAT(errorsOf(m_log), ElementsAre(openingFailed));
}

TEST_F(RamlFileTest, FileThatMayNotBeOpenedIsAFailure)
{
    write(inObject(""));
    const FailEvery<AaFileOpen> denied;
    EXPECT_EQ(parseFile("/ffs/site.xml"), nullptr);
    EXPECT_EQ(m_result, RAML_RESOURCE_LIMITATION);
    EXPECT_THAT(errorsOf(m_log), ElementsAre(openingFailed));
}

TEST_F(RamlFileTest, FileThatCannotBeReadIsAFailure)
{
    write(inObject(""));
    const FailNth<AaFileRead> broken(1);
    EXPECT_EQ(parseFile("/ffs/site.xml"), nullptr);
    EXPECT_EQ(m_result, RAML_RESOURCE_LIMITATION);
    EXPECT_THAT(errorsOf(m_log), ElementsAre(openingFailed));
}

TEST_F(RamlFileTest, ReadErrorInTheMiddleIsNoEndOfTheFile)
{
    write(inObject("<p name='x'>1</p>") + std::string(300'000, ' '));
    const FailNth<AaFileGetSize> noSize(1, 0); // so that it is read in parts
    const FailNth<AaFileRead> broken(3);
    EXPECT_EQ(parseFile("/ffs/site.xml"), nullptr);
    EXPECT_TRUE(broken.hasFailed());
    EXPECT_EQ(m_result, RAML_RESOURCE_LIMITATION);
    EXPECT_THAT(errorsOf(m_log), ElementsAre(openingFailed));
}

TEST_F(RamlFileTest, FileTooLargeForThePlatformIsAFailure)
{
    write(inObject(""));
    for (const std::int32_t size : {-1, INT32_MAX}) {
        const FailNth<AaFileGetSize> tooLarge(1, size);
        m_result = RAML_OK;
        EXPECT_EQ(parseFile("/ffs/site.xml"), nullptr);
        EXPECT_EQ(m_result, RAML_RESOURCE_LIMITATION);
    }
}

TEST_F(RamlFileTest, EndlessFileIsGivenUp)
{
    write(" ");
    const FailNth<AaFileGetSize> noSize(1, 0);
    const FailEvery<AaFileRead> endless(1 << 16);
    EXPECT_EQ(parseFile("/ffs/site.xml"), nullptr);
    EXPECT_EQ(m_result, RAML_RESOURCE_LIMITATION);
    EXPECT_LE(endless.count(), 1024U);
}

TEST_F(RamlFileTest, EmptyFileIsReported)
{
    write("");
    m_log.clear();
    EXPECT_EQ(parseFile("/ffs/site.xml"), nullptr);
    EXPECT_EQ(m_result, RAML_INVALID_FILE_FORMAT);
    EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("RamlParser::parseRaml"), debugLine("RamlParser::load"),
                                           errorLine("Empty file")));
}

TEST_F(RamlFileTest, FileOfBlanksReachesTheXmlParser)
{
    write(" \n\n");
    EXPECT_EQ(parseFile("/ffs/site.xml"), nullptr);
    EXPECT_EQ(m_result, RAML_MALFORMED_XML);
    EXPECT_THAT(errorsOf(m_log), ElementsAre(corrupt));
}

TEST_F(RamlFileTest, ZeroBytesAreReadAndMalformed)
{
    write(inObject("") + std::string(1, '\0'));
    EXPECT_EQ(parseFile("/ffs/site.xml"), nullptr);
    EXPECT_EQ(m_result, RAML_MALFORMED_XML);
    write(std::string(3, '\0'));
    EXPECT_EQ(parseFile("/ffs/site.xml"), nullptr);
    EXPECT_EQ(m_result, RAML_MALFORMED_XML);
    EXPECT_THAT(errorsOf(m_log), ElementsAre(corrupt, corrupt));
}

TEST_F(RamlFileTest, FilesAreClosed)
{
    write(inObject(""));
    const dorn::testkit::CountCalls<AaFileClose> closed;
    parseFile("/ffs/site.xml");
    parseFile("/ffs/none.xml");
    {
        const FailNth<AaFileRead> broken(1);
        parseFile("/ffs/site.xml");
    }
    EXPECT_EQ(closed.count(), 2U);
}

TEST_F(RamlFileTest, FileThatCannotBeReadLeavesTheParserUsable)
{
    parseFile("/ffs/none.xml");
    EXPECT_EQ(structureOf(m_parser.parseRaml(inObject("<p name='x'>1</p>"), m_result, false)), good);
    EXPECT_EQ(m_result, RAML_OK);
}

} // namespace
} // namespace RAML
