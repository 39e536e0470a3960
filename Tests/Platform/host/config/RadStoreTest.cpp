// SPDX-License-Identifier: MIT
#include "config/RadStore.hpp"

#include "NodeTest.hpp"
#include "OutputCapture.hpp"

#include <cstring>
#include <fstream>
#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace dorn::host {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

RadDeclaration lamps()
{
    return {3, "Lamps", {{"RED", 7}, {"GREEN", 0}, {}, {"RED", 1}}};
}

RadDeclaration pumps()
{
    return {700, "Pumps", {{"LEFT", 1}, {"RIGHT", 2}}};
}

/// The node as a tool sees it: the domains were registered by somebody else.
class RadStoreTest : public testkit::NodeTest {
protected:
    void registerElsewhere(const RadDeclaration& declaration)
    {
        ASSERT_EQ(PerNode<RadStore>::get().registerDomain(declaration), "");
        closeNode();
    }
    RadStore& store() { return PerNode<RadStore>::get(); }
    std::vector<std::string> domainNames()
    {
        std::vector<std::string> names;
        for (const RadDomain* const domain : store().domains()) {
            names.push_back(domain->name());
        }
        return names;
    }
    std::string lookupError(const std::string& domain, const std::string& parameter)
    {
        try {
            return "found " + std::to_string(store().idOf(domain, parameter));
        } catch (const RadLookupError& error) {
            return error.what();
        }
    }
    std::string pathOf(const std::string& name) const { return m_node.nodeDirectory() + "/rad/" + name; }
};

TEST_F(RadStoreTest, EmptyNodeHasNoDomains)
{
    EXPECT_THAT(store().domains(), IsEmpty());
    EXPECT_EQ(store().domain(3), nullptr);
}

TEST_F(RadStoreTest, ToolSeesAllDomainsInTheOrderOfTheirNumbers)
{
    registerElsewhere(pumps());
    registerElsewhere(lamps());
    EXPECT_THAT(domainNames(), ElementsAre("Lamps", "Pumps"));
    EXPECT_EQ(store().domains()[1]->number(), 700);
    EXPECT_EQ(store().domains()[1]->size(), 2U);
    EXPECT_EQ(store().domain(700)->name(), "Pumps");
}

TEST_F(RadStoreTest, ToolSeesParametersWithNameDefaultAndValue)
{
    registerElsewhere(lamps());
    ASSERT_TRUE(store().set(0x30003, 99));

    const std::vector<RadParameter> parameters = RadStore::parametersOf(*store().domain(3));

    ASSERT_EQ(parameters.size(), 3U);
    EXPECT_EQ(parameters[0].id, 0x30000U);
    EXPECT_EQ(parameters[0].name, "RED");
    EXPECT_EQ(parameters[0].defaultValue, 7U);
    EXPECT_EQ(parameters[0].value, 7U);
    EXPECT_EQ(parameters[1].name, "GREEN");
    EXPECT_EQ(parameters[2].id, 0x30003U);
    EXPECT_EQ(parameters[2].defaultValue, 1U);
    EXPECT_EQ(parameters[2].value, 99U);
}

TEST_F(RadStoreTest, DomainThatOnlyOthersHaveRegisteredIsNotOnesOwn)
{
    registerElsewhere(lamps());
    ASSERT_TRUE(store().set(0x30000, 9));
    EXPECT_EQ(store().registered(3), nullptr);
    EXPECT_EQ(AaConfigRadGetValue(0x30000), 0U);
    EXPECT_EQ(AaConfigRadSetValue(0x30000, 1), 1);
}

TEST_F(RadStoreTest, OnlyIdentifiersOfTheNodeCanBeSet)
{
    registerElsewhere(lamps());
    EXPECT_TRUE(store().set(0x30002, 1)); // not declared, but in the domain
    EXPECT_FALSE(store().set(0x30004, 1));
    EXPECT_FALSE(store().set(0x40000, 1));
}

TEST_F(RadStoreTest, ParameterIsFoundByItsNames)
{
    registerElsewhere(lamps());
    registerElsewhere(pumps());
    EXPECT_EQ(store().idOf("Lamps", "GREEN"), 0x30001U);
    EXPECT_EQ(store().idOf("Pumps", "RIGHT"), 0x2BC0001U);
}

TEST_F(RadStoreTest, NamesThatAreNotThereAreNamedInTheError)
{
    registerElsewhere(lamps());
    EXPECT_EQ(lookupError("Pumps", "LEFT"), "no domain 'Pumps' on this node");
    EXPECT_EQ(lookupError("Lamps", "BLUE"), "domain 'Lamps' has no parameter 'BLUE'");
    EXPECT_EQ(lookupError("Lamps", ""), "domain 'Lamps' has no parameter ''");
    EXPECT_EQ(lookupError("lamps", "GREEN"), "no domain 'lamps' on this node");
}

TEST_F(RadStoreTest, NameOfTwoParametersIsAnErrorWithBothIdentifiers)
{
    registerElsewhere(lamps());
    EXPECT_EQ(lookupError("Lamps", "RED"),
              "'RED' in domain 'Lamps' is the name of 0x30000 and 0x30003; give the identifier");
}

TEST_F(RadStoreTest, NameOfThreeParametersIsAnErrorWithAllIdentifiers)
{
    registerElsewhere({3, "Lamps", {{"RED", 0}, {"RED", 0}, {"RED", 0}}});
    EXPECT_EQ(lookupError("Lamps", "RED"),
              "'RED' in domain 'Lamps' is the name of 0x30000, 0x30001 and 0x30002; give the identifier");
}

TEST_F(RadStoreTest, OtherFilesInTheDirectoryAreNoDomains)
{
    registerElsewhere(lamps());
    for (const char* const name : {"0", "65536", "3x", "-3", "12.new", "13"}) {
        std::ofstream(pathOf(name)) << "something else";
    }
    EXPECT_THAT(domainNames(), ElementsAre("Lamps"));
}

TEST_F(RadStoreTest, StoreThatWasNeverCompletedIsNoDomainAndIsMadeAnewByTheNextRegistration)
{
    EXPECT_THAT(store().domains(), IsEmpty());
    RadDomain(PerNode<RunDirectory>::get(), 3, 4); // its maker was killed here
    EXPECT_THAT(store().domains(), IsEmpty());
    EXPECT_FALSE(store().set(0x30000, 1));
    EXPECT_EQ(store().registerDomain(lamps()), "");
    EXPECT_THAT(domainNames(), ElementsAre("Lamps"));
    EXPECT_EQ(store().domain(3)->value(0), 7U);
}

TEST_F(RadStoreTest, IncompleteStoreOfAnotherSizeIsMadeAnewAsWell)
{
    EXPECT_THAT(store().domains(), IsEmpty());
    RadDomain(PerNode<RunDirectory>::get(), 3, 9000);
    EXPECT_EQ(store().registerDomain(lamps()), "");
    EXPECT_EQ(store().domain(3)->size(), 4U);
}

TEST_F(RadStoreTest, DamagedStoreIsSetAside)
{
    registerElsewhere(lamps());
    std::fstream(pathOf("3"), std::ios::in | std::ios::out).write("####", 4);
    testkit::OutputCapture output;
    EXPECT_EQ(store().registerDomain(lamps()), "");
    EXPECT_EQ(store().domain(3)->value(0), 7U);
    EXPECT_TRUE(std::ifstream(pathOf("3.broken")).good());
    EXPECT_EQ(output.standardError(), "dorn: store '" + pathOf("3") +
                                          "' is damaged or of another version; set aside as '" + pathOf("3") +
                                          ".broken'\n");
}

TEST_F(RadStoreTest, StoreWithAnImpossibleSizeIsNoDomain)
{
    registerElsewhere(lamps());
    const std::uint32_t size = 0x10001;
    std::array<char, sizeof size> bytes{};
    std::memcpy(bytes.data(), &size, sizeof size);
    std::fstream file(pathOf("3"), std::ios::in | std::ios::out);
    file.seekp(24);
    file.write(bytes.data(), sizeof size);
    file.close();
    EXPECT_THAT(store().domains(), IsEmpty());
}

} // namespace
} // namespace dorn::host
