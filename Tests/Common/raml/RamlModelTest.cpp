// SPDX-License-Identifier: MIT
#include "RamlTest.hpp"

#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"
#include "raml/dataclasses/RAML_Type.hpp"

#include <array>
#include <cstdio>
#include <gmock/gmock.h>
#include <set>
#include <type_traits>

namespace RAML {
namespace {

using dorn::test::debugLine;
using dorn::test::errorLine;
using testing::ElementsAre;
using testing::IsEmpty;

class RamlModelTest : public dorn::test::RamlTest {};

std::string addressOf(const RAML_ManagedObjectType& mo)
{
    char text[32];
    std::snprintf(text, sizeof text, "%p", static_cast<const void*>(&mo));
    return text;
}

RAML_ManagedObjectType::pointer managedObject(const std::string& distName)
{
    RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
    mo->setDistName(distName);
    return mo;
}

TEST_F(RamlModelTest, DocumentBeginsEmpty)
{
    const RAML_Type::pointer document = RAML_Type::create();
    EXPECT_THAT(document->cmDataList, IsEmpty());
    EXPECT_EQ(document->xmlns, "");
    EXPECT_EQ(document->version, "");
    EXPECT_EQ(document.use_count(), 1);
}

TEST_F(RamlModelTest, DocumentSaysWhenItBeginsAndEnds)
{
    {
        const RAML_Type::pointer document = RAML_Type::create();
        EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("Constructor of Raml_Type")));
        document->cmDataList.push_back(RAML_CMDataType::create());
        m_log.clear();
    }
    EXPECT_THAT(m_log.texts(),
                ElementsAre(debugLine("Destructor of CmDataType []"), debugLine("Destructor of Raml_Type")));
}

TEST_F(RamlModelTest, ClearCmDataListEmptiesIt)
{
    const RAML_Type::pointer document = RAML_Type::create();
    document->cmDataList.push_back(RAML_CMDataType::create());
    document->clearCmDataList();
    EXPECT_THAT(document->cmDataList, IsEmpty());
}

TEST_F(RamlModelTest, BlockBeginsWithoutPlanAndScope)
{
    const RAML_CMDataType::pointer cmData = RAML_CMDataType::create();
    EXPECT_EQ(cmData->type, RAML_PLAN_NONE);
    EXPECT_EQ(cmData->scope, RAML_SCOPE_NONE);
    EXPECT_THAT(cmData->header.logs, IsEmpty());
    EXPECT_THAT(cmData->managedObjects, IsEmpty());
    EXPECT_THAT((std::vector{cmData->name, cmData->id, cmData->domain, cmData->adaptationVersionMajor}),
                ElementsAre("", "", "", ""));
}

TEST_F(RamlModelTest, BlockSaysWhenItBeginsAndEnds)
{
    std::string address;
    {
        const RAML_CMDataType::pointer cmData = RAML_CMDataType::create();
        EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("Constructor of CmDataType []")));
        cmData->name = "the block";
        cmData->managedObjects.push_back(managedObject("A-1"));
        address = addressOf(*cmData->managedObjects[0]);
        m_log.clear();
    }
    EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("Destructor of Raml_ManagedObjectType [A-1] " + address),
                                           debugLine("Destructor of CmDataType [the block]")));
}

TEST_F(RamlModelTest, ClearMOsEmptiesTheBlock)
{
    const RAML_CMDataType::pointer cmData = RAML_CMDataType::create();
    cmData->managedObjects.push_back(managedObject("A-1"));
    cmData->clearMOs();
    EXPECT_THAT(cmData->managedObjects, IsEmpty());
}

TEST_F(RamlModelTest, ManagedObjectBeginsEmpty)
{
    const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
    EXPECT_THAT((std::vector{mo->getClassName(), mo->getVersion(), mo->getDistName(), mo->getId(), mo->getName(),
                             mo->getVendor(), mo->getTimeStamp(), mo->getOperationName(), mo->getSequenceNo()}),
                ElementsAre("", "", "", "", "", "", "", "", ""));
    EXPECT_THAT(mo->getParameters(), IsEmpty());
    EXPECT_EQ(mo->getOperation(), RAML_OP_NONE);
    EXPECT_EQ(mo->getLevelScope(), RAML_LSCOPE_NONE);
    EXPECT_EQ(mo->getFuncScope(), RAML_FSCOPE_NONE);
    EXPECT_EQ(mo->getFilter(), RAML_FILTER_NONE);
    EXPECT_EQ(mo->getDefaults().name + mo->getDefaults().id + mo->getDefaults().status, "");
}

TEST_F(RamlModelTest, ManagedObjectSaysWhenItBeginsAndEnds)
{
    std::string address;
    {
        const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
        address = addressOf(*mo);
        EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("Constructor of Raml_ManagedObjectType [] " + address)));
        mo->setDistName("A-1");
        mo->addMOparams(RAML_ParameterType::create());
        m_log.clear();
    }
    EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("Destructor of Raml_ManagedObjectType [A-1] " + address),
                                           debugLine("Destructor of RAML_ParameterType"),
                                           debugLine("Destructor of RAML_MOParameterType ")));
}

template <class Value>
using Getter = const Value& (RAML_ManagedObjectType::*)() const;

TEST_F(RamlModelTest, GettersReturnReferences)
{
    using Mo = RAML_ManagedObjectType;
    constexpr std::array<Getter<std::string>, 9> texts{&Mo::getClassName, &Mo::getVersion,       &Mo::getDistName,
                                                       &Mo::getId,        &Mo::getName,          &Mo::getVendor,
                                                       &Mo::getTimeStamp, &Mo::getOperationName, &Mo::getSequenceNo};
    const RAML_ManagedObjectType mo;
    std::set<const std::string*> places;
    for (const Getter<std::string> get : texts) {
        places.insert(&(mo.*get)());
    }
    EXPECT_EQ(places, (std::set{&mo.mClassname, &mo.mVersion, &mo.mDistName, &mo.mId, &mo.mName, &mo.mVendor,
                                &mo.mTimeStamp, &mo.mOperationName, &mo.mSequenceNumber}));
    static_assert(std::is_same_v<decltype(&Mo::getDefaults), Getter<RAML_MODefaultsType>>);
    static_assert(std::is_same_v<decltype(&Mo::getParameters), Getter<std::vector<RAML_MOParameterType::pointer>>>);
    static_assert(std::is_same_v<decltype(&Mo::getOperation), Getter<RAML_MOOperationType>>);
    static_assert(std::is_same_v<decltype(&Mo::getLevelScope), Getter<RAML_MOLevelScopeType>>);
    static_assert(std::is_same_v<decltype(&Mo::getFuncScope), Getter<RAML_MOFuncScopeType>>);
    static_assert(std::is_same_v<decltype(&Mo::getFilter), Getter<RAML_MOFilterType>>);
}

TEST_F(RamlModelTest, SettersStoreTexts)
{
    const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
    mo->setClassName("class");
    mo->setVersion("version");
    mo->setOperationName("action name");
    mo->setDistName("dist name");
    mo->setId("id");
    mo->setName("name");
    mo->setVendor("vendor");
    mo->setTimeStamp("time stamp");
    mo->setSequenceNo("0x07");

    EXPECT_THAT(
        (std::vector{mo->getClassName(), mo->getVersion(), mo->getOperationName(), mo->getDistName(), mo->getId(),
                     mo->getName(), mo->getVendor(), mo->getTimeStamp(), mo->getSequenceNo()}),
        ElementsAre("class", "version", "action name", "dist name", "id", "name", "vendor", "time stamp", "0x07"));
    EXPECT_THAT(
        (std::vector{mo->mClassname, mo->mVersion, mo->mOperationName, mo->mDistName, mo->mId, mo->mName, mo->mVendor,
                     mo->mTimeStamp, mo->mSequenceNumber}),
        ElementsAre("class", "version", "action name", "dist name", "id", "name", "vendor", "time stamp", "0x07"));
}

TEST_F(RamlModelTest, SettersConvertTexts)
{
    const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();

    mo->setOperation("update");
    mo->setLevelScope("wholeSubtree");
    mo->setFuncScope("QOS");
    mo->setFilter("PM");

    EXPECT_EQ(mo->getOperation(), RAML_OP_UPDATE);
    EXPECT_EQ(mo->getLevelScope(), RAML_LSCOPE_WHOLE_SUBTREE);
    EXPECT_EQ(mo->getFuncScope(), RAML_FSCOPE_QOS);
    EXPECT_EQ(mo->getFilter(), RAML_FILTER_PM);

    mo->setOperation("Update");
    mo->setLevelScope("x");
    mo->setFuncScope("x");
    mo->setFilter("x");

    EXPECT_EQ(mo->getOperation(), RAML_OP_INVALID);
    EXPECT_EQ(mo->getLevelScope(), RAML_LSCOPE_INVALID);
    EXPECT_EQ(mo->getFuncScope(), RAML_FSCOPE_INVALID);
    EXPECT_EQ(mo->getFilter(), RAML_FILTER_INVALID);
}

TEST_F(RamlModelTest, SettersTakeEnumerators)
{
    const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
    mo->setOperation(RAML_OP_SUBSCRIBE);
    mo->setLevelScope(RAML_LSCOPE_FIRST_LEVEL_ONLY);
    mo->setFuncScope(RAML_FSCOPE_HW);
    mo->setFilter(RAML_FILTER_CM);
    EXPECT_EQ(mo->mOperation, RAML_OP_SUBSCRIBE);
    EXPECT_EQ(mo->mLevelScope, RAML_LSCOPE_FIRST_LEVEL_ONLY);
    EXPECT_EQ(mo->mFuncScope, RAML_FSCOPE_HW);
    EXPECT_EQ(mo->mFilter, RAML_FILTER_CM);
}

TEST_F(RamlModelTest, DefaultsAndParametersAreReplacedWhole)
{
    const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
    mo->setDefaults({.name = "a", .id = "b", .status = "c"});
    mo->setParameters({RAML_ParameterType::create("x", "1"), RAML_ParameterType::create("y", "2")});
    mo->setDefaults({.name = "d", .id = {}, .status = {}});
    mo->setParameters({RAML_ParameterType::create("z", "3")});
    EXPECT_EQ(mo->mDefaults.name, "d");
    EXPECT_EQ(mo->mDefaults.status, "");
    ASSERT_EQ(mo->mParameters.size(), 1U);
    EXPECT_EQ(mo->mParameters[0]->name, "z");
}

TEST_F(RamlModelTest, ParametersAreAppendedAndCleared)
{
    const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
    const RAML_ParameterType::pointer parameter = RAML_ParameterType::create("x", "1");
    const RAML_ListType::pointer list = RAML_ListType::create();
    mo->addMOparams(parameter);
    mo->addMOparams(list);
    EXPECT_THAT(mo->getParameters(), ElementsAre(parameter, list));
    mo->clearMOparams();
    EXPECT_THAT(mo->getParameters(), IsEmpty());
}

TEST_F(RamlModelTest, OperationIsToldAsItIsWritten)
{
    const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
    EXPECT_EQ(mo->toString(RAML_OP_QUERY), "query");
    EXPECT_EQ(mo->toString(RAML_OP_AUTO), "auto");
    EXPECT_EQ(mo->toString(RAML_OP_SUBSCRIBE), "");
    EXPECT_EQ(mo->toString(RAML_OP_INVALID), "");
    EXPECT_EQ(mo->toString(static_cast<RAML_MOOperationType>(10)), "");
    EXPECT_EQ(mo->toString(static_cast<RAML_MOOperationType>(-1)), "");
}

TEST_F(RamlModelTest, PlanAndScopeAreToldByTheirTexts)
{
    const RAML_CMDataType::pointer cmData = RAML_CMDataType::create();
    const std::vector<std::string> plans{"actual", "plan", "defaults", "none", ""};
    for (std::size_t value = 0; value < plans.size(); ++value) {
        EXPECT_EQ(cmData->toString(static_cast<RAML_PlanType>(value)), plans[value]);
    }
    const std::vector<std::string> scopes{"all", "hierarchy", "changes", "selection", "", "", ""};
    for (std::size_t value = 0; value < scopes.size(); ++value) {
        EXPECT_EQ(cmData->toString(static_cast<RAML_ScopeType>(value)), scopes[value]);
    }
    EXPECT_EQ(cmData->toString(static_cast<RAML_PlanType>(-1)), "");
    EXPECT_EQ(cmData->toString(static_cast<RAML_ScopeType>(-1)), "");
}

TEST_F(RamlModelTest, ParameterHasNameAndValue)
{
    const RAML_ParameterType::pointer empty = RAML_ParameterType::create();
    const RAML_ParameterType::pointer parameter = RAML_ParameterType::create("x", "1");
    EXPECT_EQ(empty->name + empty->value, "");
    EXPECT_EQ(empty->getType(), RAML_P);
    EXPECT_EQ(parameter->name, "x");
    EXPECT_EQ(parameter->value, "1");
    EXPECT_EQ(parameter->type, RAML_P);
}

TEST_F(RamlModelTest, ParameterSaysWhenItEnds)
{
    RAML_ParameterType::create("x", "1");
    EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("Destructor of RAML_ParameterType"),
                                           debugLine("Destructor of RAML_MOParameterType ")));
}

TEST_F(RamlModelTest, BaseOfParametersTakesTypeAndName)
{
    const RAML_MOParameterType parameter(RAML_LIST, "x");
    EXPECT_EQ(parameter.name, "x");
    EXPECT_EQ(parameter.getType(), RAML_LIST);
    EXPECT_EQ(RAML_MOParameterType::create()->name, "");
}

TEST_F(RamlModelTest, TypesHaveNames)
{
    RAML_MOParameterType parameter;
    const std::vector<std::string> names{"RAML_LIST", "RAML_LIST_P", "RAML_P", "RAML_ITEM"};
    for (std::size_t value = 0; value < names.size(); ++value) {
        RAML_ParamType type = static_cast<RAML_ParamType>(value);
        EXPECT_EQ(parameter.paramTypeToString(type), names[value]);
    }
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(RamlModelTest, WrongTypeHasNoName)
{
    EXPECT_EQ(RAML_MOParameterType::paramTypeToString(static_cast<RAML_ParamType>(4)), "");
    EXPECT_THAT(m_log.texts(), ElementsAre(errorLine("No such RAML_ParamType")));
}

TEST_F(RamlModelTest, ListBeginsEmptyAndSaysWhenItEnds)
{
    {
        const RAML_ListType::pointer list = RAML_ListType::create();
        EXPECT_EQ(list->name, "");
        EXPECT_EQ(list->type, RAML_LIST);
        EXPECT_THAT(list->listElements, IsEmpty());
    }
    EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("Destructor of RAML_MOParameterType ")));
}

TEST_F(RamlModelTest, ListElementsAreAppendedAndCleared)
{
    const RAML_ListType::pointer list = RAML_ListType::create();
    const RAML_ListParameterType::pointer bare = RAML_ListParameterType::create();
    const RAML_ItemType::pointer item = RAML_ItemType::create();
    list->add(bare);
    list->add(item);
    EXPECT_THAT(list->listElements, ElementsAre(bare, item));
    list->clear();
    EXPECT_THAT(list->listElements, IsEmpty());
}

TEST_F(RamlModelTest, ListElementsHaveTheirTypeAndSayWhenTheyBegin)
{
    EXPECT_EQ(RAML_ListParameterType::create()->getType(), RAML_LIST_P);
    EXPECT_EQ(RAML_ItemType::create()->getType(), RAML_ITEM);
    EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("Constructor RAML_ListElementType (type=RAML_LIST_P)"),
                                           debugLine("Constructor RAML_ListElementType (type=RAML_ITEM)")));
}

TEST_F(RamlModelTest, ListElementOfAWrongTypeIsReported)
{
    const RAML_ListElementType element(static_cast<RAML_ParamType>(9));
    EXPECT_EQ(element.getType(), 9);
    EXPECT_THAT(m_log.texts(), ElementsAre(errorLine("No such RAML_ParamType"),
                                           debugLine("Constructor RAML_ListElementType (type=)")));
}

TEST(RamlModelWithoutDebugLinesTest, ListElementOfAWrongTypeIsReported)
{
    const dorn::testkit::TestNode node{{.logLevel = "error"}};
    const dorn::testkit::LogCapture log;
    const RAML_ListElementType item(RAML_ITEM); // the first line of a node finds out which ones are on
    const RAML_ListElementType element(static_cast<RAML_ParamType>(9));
    EXPECT_THAT(log.texts(), ElementsAre(errorLine("No such RAML_ParamType")));
}

TEST_F(RamlModelTest, ItemTakesItsOperationAsTextOrEnumerator)
{
    const RAML_ItemType::pointer item = RAML_ItemType::create();
    EXPECT_EQ(item->getListItemOperation(), RAML_LIST_ITEM_OP_NONE);
    item->setListItemOperation("delete");
    EXPECT_EQ(item->mListItemOperation, RAML_LIST_ITEM_OP_DELETE);
    item->setListItemOperation("update");
    EXPECT_EQ(item->mListItemOperation, RAML_LIST_ITEM_OP_INVALID);
    item->setListItemOperation(RAML_LIST_ITEM_OP_CREATE);
    EXPECT_EQ(item->getListItemOperation(), RAML_LIST_ITEM_OP_CREATE);
}

TEST_F(RamlModelTest, RecordsAreCopiedAndMoved)
{
    static_assert(std::is_copy_constructible_v<RAML_LogType> && std::is_copy_assignable_v<RAML_LogType>);
    static_assert(std::is_copy_constructible_v<RAML_ItemParameterType>);
    static_assert(std::is_nothrow_move_constructible_v<RAML_ItemParameterType>);
    static_assert(std::is_nothrow_move_constructible_v<RAML_LogType>, "a vector of them grows without copying");
    RAML_LogType log;
    log.text = "text";
    log.appVersion = "7";
    const RAML_LogType copy = log;
    EXPECT_EQ(copy.text + copy.appVersion, "text7");
}

TEST_F(RamlModelTest, ManagedObjectIsFoundByItsWholeName)
{
    const RAML_CMDataType::pointer cmData = RAML_CMDataType::create();
    cmData->managedObjects = {managedObject("A-1"), managedObject("A-1/B-1"), managedObject("A-1/B-1")};
    m_log.clear();
    EXPECT_EQ(cmData->findManagedObject("A-1/B-1"), cmData->managedObjects[1]);
    EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("managed object [A-1/B-1] found")));
}

TEST_F(RamlModelTest, ManagedObjectThatIsNotThereIsNotFound)
{
    const RAML_CMDataType::pointer cmData = RAML_CMDataType::create();
    cmData->managedObjects = {managedObject("A-1")};
    m_log.clear();
    EXPECT_EQ(cmData->findManagedObject("A"), nullptr);
    EXPECT_EQ(cmData->findManagedObject("a-1"), nullptr);
    EXPECT_EQ(cmData->findManagedObject("A-1 "), nullptr);
    EXPECT_EQ(cmData->findManagedObject(""), nullptr);
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(RamlModelTest, ParameterIsFoundByItsWholeName)
{
    const RAML_ManagedObjectType::pointer mo = managedObject("A-1");
    const RAML_ListType::pointer list = RAML_ListType::create();
    list->name = "y";
    const RAML_ItemType::pointer item = RAML_ItemType::create();
    item->params.push_back({"inside", "1"});
    list->add(item);
    mo->mParameters = {RAML_ParameterType::create("x", "1"), list, RAML_ParameterType::create("x", "2"),
                       RAML_ParameterType::create("y", "3")};
    m_log.clear();
    EXPECT_EQ(mo->findParameter("x"), mo->mParameters[0]);
    EXPECT_EQ(mo->findParameter("y"), list);
    EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("parameter [x] found"), debugLine("parameter [y] found")));
}

TEST_F(RamlModelTest, ParameterThatIsNotThereIsNotFound)
{
    const RAML_ManagedObjectType::pointer mo = managedObject("A-1");
    const RAML_ListType::pointer list = RAML_ListType::create();
    list->name = "y";
    const RAML_ItemType::pointer item = RAML_ItemType::create();
    item->params.push_back({"inside", "1"});
    list->add(item);
    mo->addMOparams(list);
    m_log.clear();
    EXPECT_EQ(mo->findParameter("inside"), nullptr);
    EXPECT_EQ(mo->findParameter("Y"), nullptr);
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(RamlModelTest, LookupsPassOverEmptyPointers)
{
    const RAML_CMDataType::pointer cmData = RAML_CMDataType::create();
    cmData->managedObjects = {nullptr, managedObject("A-1")};
    const RAML_ManagedObjectType::pointer mo = cmData->managedObjects[1];
    mo->mParameters = {nullptr, RAML_ParameterType::create("x", "1")};
    EXPECT_EQ(cmData->findManagedObject("A-1"), mo);
    EXPECT_EQ(cmData->findManagedObject("B-1"), nullptr);
    EXPECT_EQ(mo->findParameter("x"), mo->mParameters[1]);
    EXPECT_EQ(mo->findParameter("y"), nullptr);
}

} // namespace
} // namespace RAML
