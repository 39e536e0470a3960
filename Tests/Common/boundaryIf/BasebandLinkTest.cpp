// SPDX-License-Identifier: MIT
#include "Drivers.hpp"

#include <gmock/gmock.h>

#include <tuple>

namespace {

using namespace dorn::test;
using vel::hwapi::common::bif::baseband::EBasebandLinkType;
using vel::hwapi::common::bif::baseband::EBasebandLinkType_Cpri;
using vel::hwapi::common::bif::baseband::EBasebandLinkType_Obsai;
using vel::hwapi::common::bif::baseband::EBasebandLinkType_Undefined;

/// A link of any type, whose fields a test sets one by one.
class AnyLink : public AbstractBasebandLink {
public:
    using AbstractBasebandLink::AbstractBasebandLink;
    using AbstractBasebandLink::setBasebandLinkData;
    using AbstractBasebandLink::setLinkHumanName;
    using AbstractBasebandLink::setLinkIdentifier;
    using AbstractBasebandLink::setLinkUniqueIdentifier;
    AnyLink(EBasebandLinkType type) : AbstractBasebandLink(type) {}
    AnyLink(EBasebandLinkType type, std::int32_t id, std::int32_t uniqueId, std::string name)
        : AbstractBasebandLink(type, id, uniqueId, std::move(name))
    {
    }
};

using Fields = std::tuple<EBasebandLinkType, std::int32_t, std::int32_t, std::string>;

Fields fieldsOf(const AbstractBasebandLink& link)
{
    return {link.getLinkType(), link.getLinkIdentifier(), link.getLinkUniqueIdentifier(), link.getLinkHumanName()};
}

TEST(BasebandLinkTest, CpriLinkIsMadeInFourWays)
{
    EXPECT_EQ(fieldsOf(CpriLink()), Fields(EBasebandLinkType_Cpri, 0, 0, "no name"));
    EXPECT_EQ(fieldsOf(CpriLink(3)), Fields(EBasebandLinkType_Cpri, 3, 0, "no name"));
    EXPECT_EQ(fieldsOf(CpriLink(25, "x")), Fields(EBasebandLinkType_Cpri, 5, 25, "x"));
    EXPECT_EQ(fieldsOf(CpriLink(3, 25, "x")), Fields(EBasebandLinkType_Cpri, 3, 25, "x"));
}

TEST(BasebandLinkTest, ObsaiLinkIsMadeInFourWays)
{
    EXPECT_EQ(fieldsOf(AbstractObsaiLink()), Fields(EBasebandLinkType_Obsai, 0, 0, "no name"));
    EXPECT_EQ(fieldsOf(AbstractObsaiLink(3)), Fields(EBasebandLinkType_Obsai, 3, 0, "no name"));
    EXPECT_EQ(fieldsOf(AbstractObsaiLink(25, "x")), Fields(EBasebandLinkType_Obsai, 5, 25, "x"));
    EXPECT_EQ(fieldsOf(AbstractObsaiLink(3, 25, "x")), Fields(EBasebandLinkType_Obsai, 3, 25, "x"));
}

TEST(BasebandLinkTest, UniqueIdsFormThreeGroupsNumberedFromZero)
{
    const std::vector<std::pair<std::int32_t, std::int32_t>> linkIdsOfUniqueIds{
        {-1, -1}, {0, 0},   {1, 1},  {8, 8},  {9, 0},  {10, 1},     {12, 3},
        {18, 9},  {19, 10}, {20, 0}, {21, 1}, {25, 5}, {1000, 980}, {2'147'483'647, 2'147'483'627},
    };
    for (const auto& [uniqueId, linkId] : linkIdsOfUniqueIds) {
        EXPECT_EQ(CpriLink(uniqueId, "x").getLinkIdentifier(), linkId) << uniqueId;
        AnyLink link(EBasebandLinkType_Undefined);
        link.setBasebandLinkData(uniqueId, "y");
        EXPECT_EQ(fieldsOf(link), Fields(EBasebandLinkType_Undefined, linkId, uniqueId, "y"));
    }
}

TEST(BasebandLinkTest, ObsaiLinkBecomesAnother)
{
    AbstractObsaiLink link(3, 25, "x");

    link.setObsaiLinkData(12, "y");

    EXPECT_EQ(fieldsOf(link), Fields(EBasebandLinkType_Obsai, 3, 12, "y"));
    link.setObsaiLinkData(9, "z");
    EXPECT_EQ(fieldsOf(link), Fields(EBasebandLinkType_Obsai, 0, 9, "z"));
}

TEST(BasebandLinkTest, FieldsAreSetOneByOne)
{
    AnyLink link(EBasebandLinkType_Cpri);

    link.setLinkIdentifier(1);
    EXPECT_EQ(fieldsOf(link), Fields(EBasebandLinkType_Cpri, 1, 0, "no name"));
    link.setLinkUniqueIdentifier(2);
    EXPECT_EQ(fieldsOf(link), Fields(EBasebandLinkType_Cpri, 1, 2, "no name"));
    link.setLinkHumanName("three");
    EXPECT_EQ(fieldsOf(link), Fields(EBasebandLinkType_Cpri, 1, 2, "three"));
}

TEST(BasebandLinkTest, CopiesHaveAllFields)
{
    const AnyLink link(EBasebandLinkType_Obsai, 1, 2, "three");
    AnyLink assigned(EBasebandLinkType_Cpri);

    const AnyLink copy(link);
    assigned = link;

    EXPECT_EQ(fieldsOf(copy), fieldsOf(link));
    EXPECT_EQ(fieldsOf(assigned), fieldsOf(link));
}

TEST(BasebandLinkTest, ObsaiLinksAreEqualByTheirUniqueId)
{
    EXPECT_EQ(AbstractObsaiLink(1, 25, "x"), AbstractObsaiLink(2, 25, "y"));
    EXPECT_NE(AbstractObsaiLink(1, 25, "x"), AbstractObsaiLink(1, 26, "x"));
}

TEST(BasebandLinkTest, CpriLinksAreEqualByTheirLinkId)
{
    EXPECT_EQ(CpriLink(1, 25, "x"), CpriLink(1, 26, "y"));
    EXPECT_NE(CpriLink(1, 25, "x"), CpriLink(2, 25, "x"));
}

TEST(BasebandLinkTest, LinksOfDifferentTypesAreUnequal)
{
    const CpriLink cpriLink(1, 2, "x");
    const AbstractObsaiLink obsaiLink(1, 2, "x");
    const AbstractBasebandLink& one = cpriLink;
    const AbstractBasebandLink& other = obsaiLink;

    EXPECT_FALSE(one == other);
    EXPECT_FALSE(other == one);
}

TEST(BasebandLinkTest, LinkOfUndefinedTypeIsNotEvenEqualToItself)
{
    const AnyLink link(EBasebandLinkType_Undefined, 1, 2, "x");

    EXPECT_FALSE(link == link);
    EXPECT_FALSE(AnyLink(EBasebandLinkType{3}) == AnyLink(EBasebandLinkType{3}));
}

TEST(BasebandLinkTest, LinksAreMadeByDerivedClassesOnly)
{
    static_assert(std::has_virtual_destructor_v<AbstractBasebandLink>);
    static_assert(!std::is_constructible_v<AbstractBasebandLink, EBasebandLinkType>);
    static_assert(!std::is_convertible_v<std::int32_t, CpriLink>);
    SUCCEED();
}

TEST(BasebandLinkTest, TimingSetHasAnId)
{
    EXPECT_EQ(ObsaiTimingSet().GetTimingSetId(), 0U);
    EXPECT_EQ(ObsaiTimingSet(7).GetTimingSetId(), 7U);
    static_assert(std::has_virtual_destructor_v<ObsaiTimingSet>);
}

} // namespace
