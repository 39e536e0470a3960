// SPDX-License-Identifier: MIT
#include "../ClassLayout.hpp"

#include "raml/RamlMoPtr_less.hpp"
#include "raml/RamlMoPtr_validclass.hpp"
#include "raml/RamlParser.hpp"
#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"
#include "raml/dataclasses/RAML_Type.hpp"

#include <gmock/gmock.h>
#include <type_traits>

using TreePointer = std::unique_ptr<AaGpuXmlNode>;
DORN_EXPOSE(DocumentNodeTag, RAML::RamlParser, TreePointer, mDocumentNode)
DORN_EXPOSE(DefaultConfigTag, RAML::RamlParser, bool, mDefaultConfigRequired)

namespace RAML {
namespace {

using namespace dorn::test::layout;
using dorn::test::offsetsIn;
using dorn::test::slotOf;
using testing::Each;
using testing::ElementsAre;

constexpr std::size_t vector = sizeof(std::vector<int>);

template <class... Classes>
constexpr bool haveVirtualDestructor = (std::has_virtual_destructor_v<Classes> && ...);

TEST(RamlLayoutTest, ClassesWithAVirtualTableHaveAVirtualDestructor)
{
    static_assert(haveVirtualDestructor<RAML_Type, RAML_HeaderType, RAML_LogType, RAML_ManagedObjectType,
                                        RAML_MOParameterType, RAML_ParameterType, RAML_ListType, RAML_ListElementType,
                                        RAML_ListParameterType, RAML_ItemType, RamlParser>);
}

TEST(RamlLayoutTest, RecordsAndBlocksHaveNoVirtualFunctions)
{
    static_assert(!std::is_polymorphic_v<RAML_CMDataType>);
    static_assert(!std::is_polymorphic_v<RAML_MODefaultsType>);
    static_assert(!std::is_polymorphic_v<RAML_ItemParameterType>);
    static_assert(!std::is_polymorphic_v<RamlMoPtr_validclass>);
    static_assert(!std::is_polymorphic_v<RamlMoPtr_less>);
}

template <class... Functions>
std::vector<int> slotsOf(Functions... functions)
{
    return {slotOf(functions)...};
}

template <class Enumeration>
using SetEnumeration = void (RAML_ManagedObjectType::*)(Enumeration);

TEST(RamlLayoutTest, NothingButDestructorsIsVirtual)
{
    using Mo = RAML_ManagedObjectType;
    using SetText = void (Mo::*)(const std::string&);
    EXPECT_EQ(slotOf(static_cast<SetText>(&Mo::setOperation)), -1);
    EXPECT_EQ(slotOf(static_cast<SetText>(&Mo::setLevelScope)), -1);
    EXPECT_EQ(slotOf(static_cast<SetText>(&Mo::setFuncScope)), -1);
    EXPECT_EQ(slotOf(static_cast<SetText>(&Mo::setFilter)), -1);
    EXPECT_EQ(slotOf(static_cast<SetEnumeration<RAML_MOOperationType>>(&Mo::setOperation)), -1);
    EXPECT_EQ(slotOf(static_cast<SetEnumeration<RAML_MOLevelScopeType>>(&Mo::setLevelScope)), -1);
    EXPECT_EQ(slotOf(static_cast<SetEnumeration<RAML_MOFuncScopeType>>(&Mo::setFuncScope)), -1);
    EXPECT_EQ(slotOf(static_cast<SetEnumeration<RAML_MOFilterType>>(&Mo::setFilter)), -1);
    EXPECT_EQ(slotOf(static_cast<void (RAML_ItemType::*)(const std::string&)>(&RAML_ItemType::setListItemOperation)),
              -1);
    EXPECT_EQ(
        slotOf(static_cast<void (RAML_ItemType::*)(RAML_ListItemOperationType)>(&RAML_ItemType::setListItemOperation)),
        -1);
    EXPECT_THAT(slotsOf(&RAML_Type::clearCmDataList, &Mo::getDefaults, &Mo::getParameters, &Mo::getClassName,
                        &Mo::getVersion, &Mo::getDistName, &Mo::getId, &Mo::getName, &Mo::getVendor, &Mo::getTimeStamp,
                        &Mo::getOperation, &Mo::getOperationName, &Mo::getLevelScope, &Mo::getFuncScope, &Mo::getFilter,
                        &Mo::getSequenceNo, &Mo::setDefaults, &Mo::setParameters, &Mo::setClassName, &Mo::setVersion,
                        &Mo::setOperationName, &Mo::setDistName, &Mo::setId, &Mo::setName, &Mo::setVendor,
                        &Mo::setTimeStamp, &Mo::setSequenceNo, &Mo::addMOparams<RAML_ParameterType::pointer>,
                        &Mo::addMOparams<RAML_ListType::pointer>, &Mo::clearMOparams, &Mo::findParameter, &Mo::toString,
                        &RAML_MOParameterType::getType, &RAML_ListElementType::getType,
                        &RAML_ListType::add<RAML_ListParameterType::pointer>,
                        &RAML_ListType::add<RAML_ItemType::pointer>, &RAML_ListType::clear,
                        &RAML_ItemType::getListItemOperation),
                Each(-1));
    EXPECT_THAT(slotsOf(&RamlParser::parseRaml, &RamlParser::load, &RamlParser::in_raml, &RamlParser::in_cmData,
                        &RamlParser::in_cmDataAttributesOnly, &RamlParser::in_header, &RamlParser::in_mo,
                        &RamlParser::in_list, &RamlParser::in_item, &RamlParser::getPlanType, &RamlParser::getScopeType,
                        &RamlParser::getNextSiblingNode, &RamlParser::GetAttributeValue,
                        &RamlParser::defaultConfigRequired, &RamlParser::currentElement),
                Each(-1));
}

TEST(RamlLayoutTest, MembersOfDocumentAndHeaderKeepTheirPlaces)
{
    const RAML_Type document;
    EXPECT_THAT(offsetsIn(document, &RAML_Type::cmDataList, &RAML_Type::xmlns, &RAML_Type::version),
                ElementsAre(word, word + vector, word + vector + text));
    const RAML_HeaderType header;
    EXPECT_THAT(offsetsIn(header, &RAML_HeaderType::logs), ElementsAre(word));
}

TEST(RamlLayoutTest, MembersOfBlockKeepTheirPlaces)
{
    const RAML_CMDataType cmData;
    constexpr std::size_t objects = sizeof(RAML_HeaderType);
    constexpr std::size_t type = objects + vector;
    constexpr std::size_t name = aligned(type + 8);
    EXPECT_THAT(offsetsIn(cmData, &RAML_CMDataType::managedObjects), ElementsAre(objects));
    EXPECT_THAT(offsetsIn(cmData, &RAML_CMDataType::header), ElementsAre(0U));
    EXPECT_THAT(offsetsIn(cmData, &RAML_CMDataType::type), ElementsAre(type));
    EXPECT_THAT(offsetsIn(cmData, &RAML_CMDataType::scope), ElementsAre(type + 4));
    EXPECT_THAT(offsetsIn(cmData, &RAML_CMDataType::name, &RAML_CMDataType::id, &RAML_CMDataType::domain,
                          &RAML_CMDataType::adaptationVersionMajor),
                ElementsAre(name, name + text, name + 2 * text, name + 3 * text));
}

TEST(RamlLayoutTest, MembersOfLogKeepTheirPlaces)
{
    const RAML_LogType log;
    EXPECT_THAT(offsetsIn(log, &RAML_LogType::dateTime, &RAML_LogType::action, &RAML_LogType::user,
                          &RAML_LogType::appInfo, &RAML_LogType::appVersion, &RAML_LogType::adaptationVersionMinor,
                          &RAML_LogType::text),
                ElementsAre(word, word + text, word + 2 * text, word + 3 * text, word + 4 * text, word + 5 * text,
                            word + 6 * text));
}

TEST(RamlLayoutTest, MembersOfManagedObjectKeepTheirPlaces)
{
    using Mo = RAML_ManagedObjectType;
    const Mo mo;
    constexpr std::size_t parameters = word + 3 * text;
    constexpr std::size_t className = parameters + vector;
    constexpr std::size_t operation = className + 2 * text;
    constexpr std::size_t operationName = aligned(operation + 4);
    constexpr std::size_t levelScope = operationName + 6 * text;
    constexpr std::size_t sequenceNumber = aligned(levelScope + 12);
    EXPECT_THAT(offsetsIn(mo, &Mo::mDefaults), ElementsAre(word));
    EXPECT_THAT(offsetsIn(mo, &Mo::mParameters), ElementsAre(parameters));
    EXPECT_THAT(offsetsIn(mo, &Mo::mClassname, &Mo::mVersion, &Mo::mOperationName, &Mo::mDistName, &Mo::mId, &Mo::mName,
                          &Mo::mVendor, &Mo::mTimeStamp, &Mo::mSequenceNumber),
                ElementsAre(className, className + text, operationName, operationName + text, operationName + 2 * text,
                            operationName + 3 * text, operationName + 4 * text, operationName + 5 * text,
                            sequenceNumber));
    EXPECT_THAT(offsetsIn(mo, &Mo::mOperation), ElementsAre(operation));
    EXPECT_THAT(offsetsIn(mo, &Mo::mLevelScope), ElementsAre(levelScope));
    EXPECT_THAT(offsetsIn(mo, &Mo::mFuncScope), ElementsAre(levelScope + 4));
    EXPECT_THAT(offsetsIn(mo, &Mo::mFilter), ElementsAre(levelScope + 8));
}

TEST(RamlLayoutTest, MembersOfRecordsKeepTheirPlaces)
{
    const RAML_MODefaultsType defaults;
    EXPECT_THAT(offsetsIn(defaults, &RAML_MODefaultsType::name, &RAML_MODefaultsType::id, &RAML_MODefaultsType::status),
                ElementsAre(0U, text, 2 * text));
    const RAML_ItemParameterType parameter;
    EXPECT_THAT(offsetsIn(parameter, &RAML_ItemParameterType::name, &RAML_ItemParameterType::value),
                ElementsAre(0U, text));
}

TEST(RamlLayoutTest, MembersOfParametersKeepTheirPlaces)
{
    const RAML_ParameterType parameter;
    constexpr std::size_t behindBase = aligned(word + text + 4);
    EXPECT_THAT(offsetsIn<RAML_MOParameterType>(parameter, &RAML_MOParameterType::name), ElementsAre(word));
    EXPECT_THAT(offsetsIn<RAML_MOParameterType>(parameter, &RAML_MOParameterType::type), ElementsAre(word + text));
    EXPECT_THAT(offsetsIn(parameter, &RAML_ParameterType::value), ElementsAre(behindBase));
    const RAML_ListType list;
    EXPECT_THAT(offsetsIn(list, &RAML_ListType::listElements), ElementsAre(behindBase));
}

TEST(RamlLayoutTest, MembersOfListElementsKeepTheirPlaces)
{
    const RAML_ListParameterType bare;
    EXPECT_THAT(offsetsIn<RAML_ListElementType>(bare, &RAML_ListElementType::type), ElementsAre(word));
    EXPECT_THAT(offsetsIn(bare, &RAML_ListParameterType::value), ElementsAre(aligned(word + 4)));
    const RAML_ItemType item;
    EXPECT_THAT(offsetsIn(item, &RAML_ItemType::params), ElementsAre(aligned(word + 4)));
    EXPECT_THAT(offsetsIn(item, &RAML_ItemType::mListItemOperation), ElementsAre(aligned(word + 4) + vector));
}

TEST(RamlLayoutTest, MembersOfParserKeepTheirPlaces)
{
    const RamlParser parser;
    EXPECT_THAT(offsetsIn(parser, exposed(dorn::test::DocumentNodeTag{})), ElementsAre(word));
    EXPECT_THAT(offsetsIn(parser, exposed(dorn::test::DefaultConfigTag{})), ElementsAre(2 * word));
}

TEST(RamlLayoutTest, NodesAreHeldByBoostPointers)
{
    static_assert(std::is_same_v<RAML_Type::pointer, boost::shared_ptr<RAML_Type>>);
    static_assert(std::is_same_v<RAML_CMDataType::pointer, boost::shared_ptr<RAML_CMDataType>>);
    static_assert(std::is_same_v<RAML_ManagedObjectType::pointer, boost::shared_ptr<RAML_ManagedObjectType>>);
    static_assert(std::is_same_v<RAML_MOParameterType::pointer, boost::shared_ptr<RAML_MOParameterType>>);
    static_assert(std::is_same_v<RAML_ParameterType::pointer, boost::shared_ptr<RAML_ParameterType>>);
    static_assert(std::is_same_v<RAML_ListType::pointer, boost::shared_ptr<RAML_ListType>>);
    static_assert(std::is_same_v<RAML_ListElementType::pointer, boost::shared_ptr<RAML_ListElementType>>);
    static_assert(std::is_same_v<RAML_ListParameterType::pointer, boost::shared_ptr<RAML_ListParameterType>>);
    static_assert(std::is_same_v<RAML_ItemType::pointer, boost::shared_ptr<RAML_ItemType>>);
    static_assert(std::is_same_v<TmlMoHierarchyMap, std::map<std::string, int>>);
}

} // namespace
} // namespace RAML
