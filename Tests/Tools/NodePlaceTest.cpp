// SPDX-License-Identifier: MIT
#include "node/NodePlace.hpp"

#include "Outcome.hpp"
#include "TestNode.hpp"
#include "node/RunDirectory.hpp"

#include <array>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

namespace dorn::tool {
namespace {

using ::testing::ThrowsMessage;

struct PartCase {
    NodePart part;
    const char* file;
    const char* sentence;
};

constexpr std::array<PartCase, 7> cases{{
    {NodePart::Services, "ees", "no services have run here"},
    {NodePart::RadParameters, "rad/control", "no R&D parameters have been registered here"},
    {NodePart::Tags, "tags/data.mdb", "no tags have been set here"},
    {NodePart::Messages, "cpids", "no services have run here"},
    {NodePart::Log, "log.control", "no log has been written here"},
    {NodePart::DriverFaults, "board.faults", "no driver function has been told to fail here"},
    {NodePart::Gateway, "cpids", "no gateway has run here"},
}};

class NodePlaceTest : public ::testing::TestWithParam<PartCase> {
protected:
    testkit::TestNode m_node;
};

TEST_P(NodePlaceTest, PartThatIsNotThereIsMissedInWords)
{
    EXPECT_FALSE(NodePlace().has(GetParam().part));
    EXPECT_THAT([] { NodePlace().require(GetParam().part); },
                ThrowsMessage<Failure>(std::string(GetParam().sentence) + ": node 0x0F01 in '" + m_node.runDirectory() +
                                       "' (DORN_RUN_DIR and DORN_NID choose another)"));
}

TEST_P(NodePlaceTest, PartThatIsThereIsSeen)
{
    const std::filesystem::path file = m_node.nodeDirectory() + "/" + GetParam().file;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "something";

    EXPECT_TRUE(NodePlace().has(GetParam().part));
    EXPECT_NO_THROW(NodePlace().require(GetParam().part));
}

TEST_P(NodePlaceTest, LookingMakesNothing)
{
    EXPECT_FALSE(NodePlace().has(GetParam().part));

    EXPECT_TRUE(std::filesystem::is_empty(m_node.runDirectory()));
}

INSTANTIATE_TEST_SUITE_P(Parts, NodePlaceTest, ::testing::ValuesIn(cases));

TEST(NodePlaceOfAnotherNodeTest, NodeIdIsThatOfTheEnvironment)
{
    const testkit::TestNode node({.nodeId = 0x0A02});

    EXPECT_EQ(NodePlace().nodeName(), "node 0x0A02");
    EXPECT_THAT([] { NodePlace().require(NodePart::Services); },
                ThrowsMessage<Failure>("no services have run here: node 0x0A02 in '" + node.runDirectory() +
                                       "' (DORN_RUN_DIR and DORN_NID choose another)"));
}

TEST(NodePlaceOfAnotherNodeTest, WrongEnvironmentIsAnError)
{
    const testkit::TestNode node;
    setenv("DORN_NID", "east", 1);

    EXPECT_THAT([] { NodePlace(); }, ThrowsMessage<host::EnvironmentError>(
                                         "DORN_NID 'east' is not a node id (0 to 65535, or 0x0000 to 0xFFFF)"));

    unsetenv("DORN_NID");
}

TEST(NodePlaceOfAnotherNodeTest, PlaceThatCannotBeSeenIsNotTakenForEmpty)
{
    const testkit::TestNode node;
    const std::string path = node.runDirectory() + "/0f01";
    std::ofstream(path) << "a file where a directory should be";

    EXPECT_THAT([] { NodePlace().has(NodePart::Services); },
                ThrowsMessage<Failure>("'" + path + "/ees' cannot be seen: Not a directory"));
}

} // namespace
} // namespace dorn::tool
