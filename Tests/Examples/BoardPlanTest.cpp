// SPDX-License-Identifier: MIT
#include "BoardPlan.hpp"

#include "NodeTest.hpp"
#include "PlanTexts.hpp"

#include <gmock/gmock.h>

#include <array>
#include <ostream>

namespace dorn::examples {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* object = "Board=1,A=1";
constexpr ERadHwapi feature = ERadHwapi_GENIO;

const char* checkOrder(std::span<const PlanNumber> numbers)
{
    return numbers[0].value <= numbers[1].value ? nullptr : "low is above high";
}

class BoardPlanTest : public testkit::NodeTest {
protected:
    void plan(const std::string& text) { m_node.writeBoardFile(boardPlanFile, text); }
    bool apply() { return applyPlan(feature, object, m_numbers, checkOrder); }
    auto values() const { return std::pair(m_numbers[0].value, m_numbers[1].value); }

    std::array<PlanNumber, 2> m_numbers{{{"low", -10, 10, 1}, {"high", -10, 10, 2}}};
};

TEST_F(BoardPlanTest, NumbersOfThePlanAreTakenAndLogged)
{
    plan(planFor(object, planned("high", "10") + planned("low", "-10")));

    EXPECT_TRUE(apply());

    EXPECT_EQ(values(), std::pair(-10, 10));
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Vip 0x2000a Plan /opt/dorn/plan.xml applied to Board=1,A=1: low=-10 high=10"));
}

TEST_F(BoardPlanTest, NumberThatThePlanDoesNotHaveStays)
{
    plan(planFor(object, planned("high", "5"), "create"));
    EXPECT_TRUE(apply());
    EXPECT_EQ(values(), std::pair(1, 5));
}

TEST_F(BoardPlanTest, FirstObjectInAPlanBlockCounts)
{
    const std::string begin = "<raml version='2.1' xmlns='x'>";
    const auto block = [](const std::string& type, const std::string& high) {
        return "<cmData type='" + type + "'><managedObject class='A' operation='update' distName='Board=1,A=1'>" +
               planned("high", high) + "</managedObject></cmData>";
    };
    plan(begin + block("actual", "4") + block("plan", "5") + block("plan", "6") + "</raml>");
    EXPECT_TRUE(apply());
    EXPECT_EQ(values(), std::pair(1, 5));
}

TEST_F(BoardPlanTest, PlanThatIsNotThereOrForOthersIsPassedOver)
{
    EXPECT_FALSE(apply());
    plan(planFor("Board=1,B=1", planned("x", "1")));
    EXPECT_FALSE(apply());
    plan(planFor(object, planned("low", "0"), "update", "actual"));
    EXPECT_FALSE(apply());
    EXPECT_EQ(values(), std::pair(1, 2));
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(BoardPlanTest, PlanThatCannotBeReadIsTold)
{
    m_node.writeBoardFile(std::string(boardPlanFile) + "/folder-instead", "");
    EXPECT_FALSE(apply());
    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x20066 Opening of RAML file failed",
                                           "Warning 0x2000a Plan /opt/dorn/plan.xml not applied to Board=1,A=1: the "
                                           "document has errors or cannot be read"));
}

struct Refusal {
    const char* name;
    std::string plan;
    const char* trouble;

    friend std::ostream& operator<<(std::ostream& stream, const Refusal& refusal) { return stream << refusal.plan; }
};

class BoardPlanRefusalTest : public BoardPlanTest, public testing::WithParamInterface<Refusal> {};

TEST_P(BoardPlanRefusalTest, NothingIsTaken)
{
    plan(GetParam().plan);

    EXPECT_FALSE(apply());

    EXPECT_EQ(values(), std::pair(1, 2));
    ASSERT_THAT(m_log.texts(), testing::Not(IsEmpty()));
    EXPECT_EQ(m_log.texts().back(),
              std::string("Warning 0x2000a Plan /opt/dorn/plan.xml not applied to Board=1,A=1: ") + GetParam().trouble);
}

const std::string good = planned("low", "0");

INSTANTIATE_TEST_SUITE_P(
    Plans, BoardPlanRefusalTest,
    testing::Values(
        Refusal{"NoXml", "<raml", "the document has errors or cannot be read"},
        Refusal{"Empty", "", "the document has errors or cannot be read"},
        Refusal{"Error", planFor(object, good + "<p>1</p>"), "the document has errors or cannot be read"},
        Refusal{"Deleted", planFor(object, good, "delete"), "it is neither created nor updated"},
        Refusal{"UnknownParameter", planFor(object, good + planned("Low", "1")), "nobody knows Low"},
        Refusal{"Word", planFor(object, good + planned("high", "5O")), "high is no number from -10 to 10"},
        Refusal{"NoValue", planFor(object, good + planned("high", "")), "high is no number from -10 to 10"},
        Refusal{"Blank", planFor(object, good + planned("high", " 5")), "high is no number from -10 to 10"},
        Refusal{"Fraction", planFor(object, good + planned("high", "5.5")), "high is no number from -10 to 10"},
        Refusal{"TooGreat", planFor(object, good + planned("high", "11")), "high is no number from -10 to 10"},
        Refusal{"TooSmall", planFor(object, good + planned("high", "-11")), "high is no number from -10 to 10"},
        Refusal{"Immense", planFor(object, good + planned("high", "99999999999")), "high is no number from -10 to 10"},
        Refusal{"List", planFor(object, good + "<list name='high'><p>5</p></list>"),
                "high is no number from -10 to 10"},
        Refusal{"Nonsense", planFor(object, planned("low", "3")), "low is above high"}),
    [](const auto& test) { return test.param.name; });

} // namespace
} // namespace dorn::examples
