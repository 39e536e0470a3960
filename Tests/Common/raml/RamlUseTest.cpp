// SPDX-License-Identifier: MIT
// What a service does with the library; Docs/raml.md quotes it.
#include "RamlTest.hpp"

#include "OutputCapture.hpp"
#include "raml/RAML_ostream.hpp"
#include "raml/RamlParser.hpp"
#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"

#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <iostream>
#include <sstream>

namespace {

constexpr const char* site = R"(<?xml version="1.0" encoding="UTF-8"?>
<raml version="2.1" xmlns="raml21.xsd">
  <cmData type="plan" scope="changes" id="17">
    <header>
      <log dateTime="2026-03-01T12:00:00" action="created" user="planner">two cells</log>
    </header>
    <managedObject class="CELL" operation="create" distName="SITE-1/CELL-2" version="1.0">
      <p name="power">430</p>
      <list name="neighbours">
        <p>SITE-1/CELL-1</p>
        <p>SITE-2/CELL-1</p>
      </list>
      <list name="carriers">
        <item>
          <p name="band">8</p>
          <p name="width">20</p>
        </item>
      </list>
    </managedObject>
    <managedObject class="SITE" operation="update" distName="SITE-1" version="1.0">
      <p name="label">north &amp; south</p>
    </managedObject>
  </cmData>
</raml>
)";

void configureCell(const std::string& distName, const std::string& power)
{
    std::cout << distName << " sends at " << power << '\n';
}

void useSite(const std::string& fileName)
{
    RAML::RamlParser parser;
    RAML::RAML_ParsingResult result{};
    const RAML::RAML_Type::pointer document = parser.parseRaml(fileName, result, true);
    if (result != RAML::RAML_OK) {
        std::cout << fileName << " is not used, result " << result << '\n';
        return; // what is wrong stands in the log
    }
    for (const RAML::RAML_CMDataType::pointer& block : document->cmDataList) {
        for (const RAML::RAML_ManagedObjectType::pointer& mo : block->managedObjects) {
            const auto power = boost::dynamic_pointer_cast<RAML::RAML_ParameterType>(mo->findParameter("power"));
            if (mo->getClassName() == "CELL" && power) {
                configureCell(mo->getDistName(), power->value);
            }
        }
    }
}

std::string bandsOf(const RAML::RAML_ManagedObjectType& cell)
{
    std::string bands;
    const auto carriers = boost::dynamic_pointer_cast<RAML::RAML_ListType>(cell.findParameter("carriers"));
    if (!carriers) {
        return bands;
    }
    for (const RAML::RAML_ListElementType::pointer& element : carriers->listElements) {
        if (const auto item = boost::dynamic_pointer_cast<RAML::RAML_ItemType>(element)) {
            for (const RAML::RAML_ItemParameterType& parameter : item->params) {
                bands += parameter.name == "band" ? parameter.value + " " : "";
            }
        }
    }
    return bands;
}

void sortForActivation(RAML::RAML_CMDataType& block)
{
    const RAML::TmlMoHierarchyMap ranks{{"SITE", 1}, {"CELL", 2}};
    // Those that cannot be activated go, unless sort() is to write them.
    std::erase_if(block.managedObjects, std::not_fn(RAML::RamlMoPtr_validclass(ranks)));
    block.sort(ranks);
}

RAML::RAML_Type::pointer answer()
{
    RAML::RAML_ManagedObjectType::pointer cell = RAML::RAML_ManagedObjectType::create();
    cell->setClassName("CELL");
    cell->setDistName("SITE-1/CELL-2");
    cell->setVersion("1.0");
    cell->setOperation(RAML::RAML_OP_UPDATE);
    cell->addMOparams(RAML::RAML_ParameterType::create("power", "400"));

    RAML::RAML_CMDataType::pointer block = RAML::RAML_CMDataType::create();
    block->type = RAML::RAML_PLAN_ACTUAL;
    block->scope = RAML::RAML_SCOPE_CHANGES;
    block->managedObjects.push_back(cell);

    RAML::RAML_Type::pointer document = RAML::RAML_Type::create();
    document->version = "2.1";
    document->xmlns = "raml21.xsd";
    document->cmDataList.push_back(block);
    return document;
}

void writeTo(const std::string& path, const RAML::RAML_Type& document)
{
    std::ofstream file(path);
    file << document;
    if (!file) {
        std::cout << path << " cannot be written\n";
    }
}

class RamlUseTest : public dorn::test::RamlTest {
protected:
    RAML::RAML_CMDataType::pointer block() const
    {
        RAML::RAML_ParsingResult result{};
        return RAML::RamlParser().parseRaml(site, result, false)->cmDataList.at(0);
    }
};

TEST_F(RamlUseTest, CellsOfAFileAreConfigured)
{
    m_node.writeBoardFile("/ffs/site.xml", site);
    const dorn::testkit::OutputCapture output;
    useSite("/ffs/site.xml");
    useSite("/ffs/none.xml");
    std::cout.flush();
    EXPECT_EQ(output.standardOutput(), "SITE-1/CELL-2 sends at 430\n/ffs/none.xml is not used, result 4\n");
}

TEST_F(RamlUseTest, ListsAreLookedInto)
{
    EXPECT_EQ(bandsOf(*block()->findManagedObject("SITE-1/CELL-2")), "8 ");
    EXPECT_EQ(bandsOf(*block()->findManagedObject("SITE-1")), "");
}

TEST_F(RamlUseTest, ObjectsAreSortedForActivation)
{
    const RAML::RAML_CMDataType::pointer sorted = block();
    sorted->managedObjects.push_back(RAML::RAML_ManagedObjectType::create());
    sortForActivation(*sorted);
    EXPECT_THAT(dorn::test::errorsOf(m_log), testing::IsEmpty());
    ASSERT_EQ(sorted->managedObjects.size(), 2U);
    EXPECT_EQ(sorted->managedObjects[0]->getClassName(), "SITE");
    EXPECT_EQ(sorted->managedObjects[1]->getClassName(), "CELL");
}

TEST_F(RamlUseTest, AnswerIsWritten)
{
    const std::string path = m_node.boardPath("/answer.xml");
    m_node.writeBoardFile("/answer.xml", "");
    writeTo(path, *answer());
    RAML::RAML_ParsingResult result{};
    const RAML::RAML_Type::pointer read = RAML::RamlParser().parseRaml("/answer.xml", result, true);
    EXPECT_EQ(result, RAML::RAML_OK);
    EXPECT_EQ(read->cmDataList.at(0)->managedObjects.at(0)->getDistName(), "SITE-1/CELL-2");
}

} // namespace
