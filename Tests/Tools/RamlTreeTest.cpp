// SPDX-License-Identifier: MIT
#include "raml/RamlTree.hpp"

#include "RamlDocuments.hpp"
#include "TestConsole.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

const std::string fullDocument =
    "<raml version=\"2.1E\" xmlns=\"raml21.xsd\"><cmData type=\"plan\" scope=\"all\" domain=\"d\" "
    "adaptationVersionMajor=\"1\" name=\"n\" id=\"7\"><header><log dateTime=\"t\" action=\"a\" user=\"u\" "
    "appInfo=\"i\">made</log><log dateTime=\"t\" action=\"b\"/></header>"
    "<managedObject class=\"Fan\" distName=\"Fan=1\" operation=\"subscribe\" version=\"1.0\" id=\"2\" name=\"left\" "
    "vendor=\"v\" timeStamp=\"s\" actionName=\"reset\" levelScope=\"wholeSubtree\" funcScope=\"ETH_IF\" filter=\"CM\" "
    "sequenceNo=\"07\"><p name=\"speed\">40</p><list name=\"steps\"><p>1</p><item operation=\"delete\"><p "
    "name=\"from\">30</p><p/></item></list></managedObject>"
    "<managedObject class=\"Led\" distName=\"Led=1\" operation=\"create\"/></cmData>"
    "<cmData type=\"actual\"><managedObject class=\"A\" distName=\"B\" operation=\"auto\" levelScope=\"x\" "
    "funcScope=\"x\" filter=\"x\"/></cmData></raml>";

TEST(RamlTreeTest, DocumentIsATreeOfAllThatItHas)
{
    TestConsole console;
    printRamlTree("plan.xml", *ramlModel(fullDocument), console);
    EXPECT_EQ(console.answer(), R"(plan.xml  version=2.1E xmlns=raml21.xsd
├─ cmData  id=7 type=plan scope=all domain=d adaptationVersionMajor=1 name=n
│  ├─ log  dateTime=t action=a user=u appInfo=i: made
│  ├─ log  dateTime=t action=b
│  ├─ Fan Fan=1  operation=subscribe version=1.0 id=2 name=left vendor=v timeStamp=s actionName=reset levelScope=wholeSubtree funcScope=0x04000000 filter=CM sequenceNo=07
│  │  ├─ speed = 40
│  │  └─ steps (2)
│  │     ├─ = 1
│  │     └─ item  operation=delete
│  │        ├─ from = 30
│  │        └─  = 
│  └─ Led Led=1  operation=create
└─ cmData  type=actual scope=changes
   └─ A B  operation=auto levelScope=(invalid) funcScope=0x80000000 filter=(invalid)
)");
}

TEST(RamlTreeTest, OneObjectIsATreeOfItsOwn)
{
    TestConsole console;
    printRamlTree(*ramlModel(ramlAround(ramlObject("Fan", "Fan=1", ramlParameter("speed", "40"))))
                       ->cmDataList.front()
                       ->managedObjects.front(),
                  console);
    EXPECT_EQ(console.answer(), "Fan Fan=1  operation=create\n└─ speed = 40\n");
}

TEST(RamlTreeTest, LongValueIsCutBetweenTwoCharacters)
{
    std::string value(199, 'x');
    value += "\xC3\xA4\xC3\xA4";
    TestConsole console;
    printRamlTree(*ramlModel(ramlAround(ramlObject("A", "B", ramlParameter("v", value))))
                       ->cmDataList.front()
                       ->managedObjects.front(),
                  console);
    EXPECT_EQ(console.answer(), "A B  operation=create\n└─ v = " + std::string(199, 'x') + "... (203 bytes)\n");
}

TEST(RamlTreeTest, ControlCharactersDoNotReachTheTerminal)
{
    TestConsole console;
    printRamlTree(*ramlModel(ramlAround(ramlObject("A", "B", ramlParameter("a&#10;b", "1\n2"))))
                       ->cmDataList.front()
                       ->managedObjects.front(),
                  console);
    EXPECT_EQ(console.answer(), "A B  operation=create\n└─ a\\nb = 1\\n2\n");
}

TEST(RamlTreeTest, NamesAreColouredAndAllElseIsFaint)
{
    TestConsole console(true);
    printRamlTree(*ramlModel(ramlAround(ramlObject("A", "B", ramlParameter("a", "1"))))
                       ->cmDataList.front()
                       ->managedObjects.front(),
                  console);
    EXPECT_EQ(console.answer(), "A \033[32mB\033[0m \033[2m operation=create\033[0m\n\033[2m└─ \033[0ma = 1\n");
}

TEST(RamlTreeTest, JsonHasTheAttributesOfTheDocument)
{
    EXPECT_EQ(
        jsonLine(ramlJson(*ramlModel(fullDocument))),
        R"({"version":"2.1E","xmlns":"raml21.xsd","blocks":[{"id":"7","type":"plan","scope":"all","domain":"d",)"
        R"("adaptationVersionMajor":"1","name":"n","logs":[{"dateTime":"t","action":"a","user":"u","appInfo":"i",)"
        R"("text":"made"},{"dateTime":"t","action":"b","text":""}],"managedObjects":[{"class":"Fan",)"
        R"("distName":"Fan=1","operation":"subscribe","version":"1.0","id":"2","name":"left","vendor":"v",)"
        R"("timeStamp":"s","actionName":"reset","levelScope":"wholeSubtree","funcScope":"0x04000000","filter":"CM",)"
        R"("sequenceNo":"07","parameters":[{"name":"speed","value":"40"},{"name":"steps","list":["1",)"
        R"({"operation":"delete","parameters":[{"name":"from","value":"30"},{"name":"","value":""}]}]}]},)"
        R"({"class":"Led","distName":"Led=1","operation":"create","parameters":[]}]},)"
        R"({"type":"actual","scope":"changes","logs":[],"managedObjects":[{"class":"A","distName":"B",)"
        R"json("operation":"auto","levelScope":"(invalid)","funcScope":"0x80000000","filter":"(invalid)",)json"
        R"("parameters":[]}]}]})");
}

} // namespace
} // namespace dorn::tool
