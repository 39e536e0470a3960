// SPDX-License-Identifier: MIT
// Properties of generated documents: what is made, read, written and read again is the same.
#include "NodeTest.hpp"
#include "RamlDocuments.hpp"
#include "TestConsole.hpp"
#include "generator/RamlGenerator.hpp"
#include "raml/RamlDiff.hpp"
#include "raml/RamlReading.hpp"
#include "raml/RamlWriting.hpp"

#include <gtest/gtest.h>
#include <utility>

namespace dorn::tool {
namespace {

using namespace RAML;

/// A shape that the seed determines: from next to nothing to some hundred objects.
testkit::RamlShape shapeOf(std::uint64_t seed)
{
    testkit::RandomNumbers random(seed);
    testkit::RamlShape shape{.seed = seed};
    shape.objects = random.below(random.oneIn(10) ? 300 : 12);
    shape.blocks = static_cast<std::uint32_t>(1 + random.below(4));
    shape.logs = static_cast<std::uint32_t>(random.below(4));
    shape.classes = static_cast<std::uint32_t>(1 + random.below(40));
    shape.depth = static_cast<std::uint32_t>(1 + random.below(8));
    shape.parameters = static_cast<std::uint32_t>(random.below(12));
    shape.lists = static_cast<std::uint32_t>(random.below(4));
    shape.listElements = static_cast<std::uint32_t>(random.below(6));
    shape.valueBytes = static_cast<std::uint32_t>(random.below(50));
    return shape;
}

constexpr std::uint64_t seeds = 300;

class RamlRoundTripTest : public testkit::NodeTest {};

TEST_F(RamlRoundTripTest, PlainDocumentReadsBackWhole)
{
    for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
        testkit::RamlShape shape = shapeOf(seed);
        shape.isPlain = true;
        const RAML_Type::pointer document = ramlModel(testkit::ramlText(shape));
        const std::string written = writtenRaml(*document);
        const RAML_Type::pointer again = ramlModel(written);

        EXPECT_TRUE(diffRaml(*document, *again, RamlDiffFields::All).empty()) << "seed " << seed;
        EXPECT_EQ(whyNotKept(*document, written), "") << "seed " << seed;
        EXPECT_TRUE(unwrittenFields(*document).empty()) << "seed " << seed;
        EXPECT_EQ(writtenRaml(*again), written) << "seed " << seed;
    }
}

/// A document that the writer does not keep is always noticed, and one that it keeps never suspected.
TEST_F(RamlRoundTripTest, LossIsNoticed)
{
    unsigned kept = 0;
    for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
        const RAML_Type::pointer document = ramlModel(testkit::ramlText(shapeOf(seed)));
        const std::string written = writtenRaml(*document);
        const RamlReading reading = readRaml(written, 1);
        const bool isKept =
            reading.result == RAML_OK && diffRaml(*document, *reading.document, RamlDiffFields::Written).empty();
        EXPECT_EQ(whyNotKept(*document, written).empty(), isKept) << "seed " << seed;
        kept += isKept ? 1 : 0;
    }
    EXPECT_GT(kept, 0U);
    EXPECT_LT(kept, seeds);
}

TEST_F(RamlRoundTripTest, DocumentDoesNotDifferFromItself)
{
    for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
        const std::string text = testkit::ramlText(shapeOf(seed));
        EXPECT_TRUE(diffRaml(*ramlModel(text), *ramlModel(text), RamlDiffFields::All).empty()) << "seed " << seed;
    }
}

/// What is removed one way is added the other way.
TEST_F(RamlRoundTripTest, DifferenceIsTheSameBothWays)
{
    const auto swapped = [](RamlChangeKind kind) {
        return kind == RamlChangeKind::Removed ? RamlChangeKind::Added
               : kind == RamlChangeKind::Added ? RamlChangeKind::Removed
                                               : kind;
    };
    for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
        const RAML_Type::pointer one = ramlModel(testkit::ramlText(shapeOf(seed)));
        const RAML_Type::pointer other = ramlModel(testkit::ramlText(shapeOf(seed + 1)));
        std::multiset<std::pair<RamlChangeKind, std::string>> there;
        for (const RamlChange& change : diffRaml(*one, *other, RamlDiffFields::All)) {
            there.emplace(change.kind, change.subject);
        }
        std::multiset<std::pair<RamlChangeKind, std::string>> back;
        for (const RamlChange& change : diffRaml(*other, *one, RamlDiffFields::All)) {
            back.emplace(swapped(change.kind), change.subject);
        }
        EXPECT_EQ(there, back) << "seed " << seed;
        EXPECT_FALSE(there.empty()) << "seed " << seed;
    }
}

TEST_F(RamlRoundTripTest, OneChangedValueIsTheOneDifference)
{
    for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
        testkit::RamlShape shape = shapeOf(seed);
        shape.isPlain = true;
        std::string text = testkit::ramlText(shape);
        const RAML_Type::pointer before = ramlModel(text);
        const std::size_t value = text.find("</p>", text.size() / 2);
        if (value == std::string::npos) {
            continue;
        }
        text.insert(value, "changed");
        const std::vector<RamlChange> changes = diffRaml(*before, *ramlModel(text), RamlDiffFields::All);

        ASSERT_EQ(changes.size(), 1U) << "seed " << seed;
        ASSERT_EQ(changes.front().differences.size(), 1U) << "seed " << seed;
        const RamlDifference& difference = changes.front().differences.front();
        EXPECT_EQ(*difference.before + "changed", *difference.after) << "seed " << seed;
    }
}

} // namespace
} // namespace dorn::tool
