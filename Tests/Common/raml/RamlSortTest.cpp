// SPDX-License-Identifier: MIT
#include "RamlTest.hpp"

#include "OutputCapture.hpp"
#include "raml/RAML_ostream.hpp"
#include "raml/RamlMoPtr_less.hpp"
#include "raml/RamlMoPtr_validclass.hpp"

#include <algorithm>
#include <gmock/gmock.h>
#include <iostream>
#include <map>
#include <random>
#include <set>
#include <sstream>

namespace RAML {
namespace {

using dorn::test::errorLine;
using dorn::test::errorsOf;
using dorn::testkit::OutputCapture;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string emptyForValidity = errorLine("empty RamlMo::pointer in RamlMoPtr_validclass::operator()");
const std::string emptyFirst = errorLine("empty mo1 in RamlMo::pointer in RamlMoPtr_less::operator()");
const std::string emptySecond = errorLine("empty mo2 in RamlMo::pointer in RamlMoPtr_less::operator()");

class RamlSortTest : public dorn::test::RamlTest {
protected:
    /// An object of a class; "" for none.
    static RAML_ManagedObjectType::pointer object(const std::string& className, const std::string& distName = "X")
    {
        if (className.empty()) {
            return {};
        }
        RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
        mo->setClassName(className);
        mo->setDistName(distName);
        mo->setOperation(RAML_OP_CREATE);
        return mo;
    }

    void fill(const std::vector<std::string>& classNames)
    {
        m_cmData->clearMOs();
        for (const std::string& className : classNames) {
            m_cmData->managedObjects.push_back(object(className));
        }
        m_log.clear();
    }

    /// Sorts the block. @return what went to standard output
    std::string sort()
    {
        const OutputCapture output;
        m_cmData->sort(m_ranks);
        std::cout.flush();
        return output.standardOutput();
    }

    std::vector<std::string> classNames() const
    {
        std::vector<std::string> names;
        for (const RAML_ManagedObjectType::pointer& mo : m_cmData->managedObjects) {
            names.push_back(mo ? mo->mClassname : "");
        }
        return names;
    }

    static std::string written(const std::string& className)
    {
        std::ostringstream stream;
        stream << object(className);
        return stream.str() + "\n";
    }

    TmlMoHierarchyMap m_ranks{{"A", 1}, {"B", 2}, {"C", 3}, {"C2", 3}};
    RAML_CMDataType::pointer m_cmData = RAML_CMDataType::create();
};

TEST_F(RamlSortTest, ClassesOfTheMapAreValid)
{
    const RamlMoPtr_validclass isValid(m_ranks);
    EXPECT_TRUE(isValid(object("A")));
    EXPECT_FALSE(isValid(object("a")));
    EXPECT_FALSE(isValid(object("AA")));
    EXPECT_EQ(&isValid.mrTmlValidClasses, &m_ranks);
    EXPECT_THAT(errorsOf(m_log), IsEmpty());
}

TEST_F(RamlSortTest, EmptyPointerIsNotValid)
{
    EXPECT_FALSE(RamlMoPtr_validclass(m_ranks)(nullptr));
    EXPECT_THAT(errorsOf(m_log), ElementsAre(emptyForValidity));
}

TEST_F(RamlSortTest, LesserRankComesFirst)
{
    const RamlMoPtr_less less(m_ranks);
    EXPECT_TRUE(less(object("A"), object("B")));
    EXPECT_FALSE(less(object("B"), object("A")));
    EXPECT_FALSE(less(object("A"), object("A")));
    EXPECT_FALSE(less(object("C"), object("C2")));
    EXPECT_FALSE(less(object("C2"), object("C")));
}

TEST_F(RamlSortTest, ClassWithoutRankComesAfterThoseWithOne)
{
    const RamlMoPtr_less less(m_ranks);
    EXPECT_TRUE(less(object("C"), object("x")));
    EXPECT_FALSE(less(object("x"), object("C")));
    EXPECT_FALSE(less(object("x"), object("y")));
    EXPECT_FALSE(less(object("y"), object("x")));
    EXPECT_THAT(errorsOf(m_log), IsEmpty());
}

TEST_F(RamlSortTest, EmptyPointerComesLast)
{
    const RamlMoPtr_less less(m_ranks);
    const RAML_ManagedObjectType::pointer known = object("A");
    const RAML_ManagedObjectType::pointer unknown = object("x");
    m_log.clear();
    EXPECT_FALSE(less(nullptr, known));
    EXPECT_TRUE(less(known, nullptr));
    EXPECT_FALSE(less(nullptr, unknown));
    EXPECT_TRUE(less(unknown, nullptr));
    EXPECT_FALSE(less(nullptr, nullptr));
    EXPECT_THAT(m_log.texts(), ElementsAre(emptyFirst, emptySecond, emptyFirst, emptySecond, emptyFirst));
}

TEST_F(RamlSortTest, ValidObjectsAreOrderedByRank)
{
    fill({"C", "B", "A", "B", "A"});
    EXPECT_EQ(sort(), "");
    EXPECT_THAT(classNames(), ElementsAre("A", "A", "B", "B", "C"));
    EXPECT_THAT(errorsOf(m_log), IsEmpty());
}

TEST_F(RamlSortTest, OtherObjectsAreWrittenInTheirOrder)
{
    fill({"y", "B", "x", "A", "y"});
    EXPECT_EQ(sort(), written("y") + written("x") + written("y"));
}

TEST_F(RamlSortTest, VectorKeepsItsSizeAndEndsWithEmptyPointers)
{
    fill({"x", "B", "y", "A"});
    sort();
    // B and A are moved to places 0 and 1. Place 1 is overwritten, places 2 and 3 keep y and what A has left.
    EXPECT_THAT(classNames(), ElementsAre("A", "B", "y", ""));
}

TEST_F(RamlSortTest, BlockWithoutValidObjectIsWrittenAndStays)
{
    m_ranks.clear();
    fill({"A", "B", "A"});
    EXPECT_EQ(sort(), written("A") + written("B") + written("A"));
    EXPECT_THAT(classNames(), testing::UnorderedElementsAre("A", "B", "A"));
    EXPECT_THAT(errorsOf(m_log), IsEmpty());
}

TEST_F(RamlSortTest, EmptyBlockIsSorted)
{
    EXPECT_EQ(sort(), "");
    EXPECT_THAT(classNames(), IsEmpty());
}

TEST_F(RamlSortTest, EmptyPointersAreLoggedAndNotWritten)
{
    fill({"", "A"});
    EXPECT_EQ(sort(), "");
    EXPECT_THAT(classNames(), ElementsAre("A", ""));
    // Once when the others are written, once when they are removed, and once for each comparison in between.
    const std::vector<std::string> errors = errorsOf(m_log);
    ASSERT_THAT(errors, SizeIs(testing::Ge(3U)));
    EXPECT_THAT((std::vector(errors.begin(), errors.begin() + 2)), Each(emptyForValidity));
    EXPECT_THAT((std::vector(errors.begin() + 2, errors.end())), Each(testing::AnyOf(emptyFirst, emptySecond)));
}

TEST_F(RamlSortTest, EmptyPointersAmongObjectsWithoutRankComeLast)
{
    m_ranks.clear();
    fill({"A", "", "B", ""});
    EXPECT_EQ(sort(), written("A") + written("B"));
    const std::vector<std::string> names = classNames();
    ASSERT_THAT(names, SizeIs(4));
    EXPECT_THAT((std::vector{names[0], names[1]}), testing::UnorderedElementsAre("A", "B"));
    EXPECT_THAT((std::vector{names[2], names[3]}), Each(""));
}

TEST_F(RamlSortTest, EachComparisonThatMeetsAnEmptyPointerIsLoggedOnce)
{
    fill({"C", "", "B", "", "A", "", "A"});

    // The valid objects in front, what they leave and the empty pointers behind them: sorted here with the same
    // function, so that the comparisons are the same.
    std::vector<RAML_ManagedObjectType::pointer> objects = m_cmData->managedObjects;
    std::stable_partition(objects.begin(), objects.end(), [](const auto& mo) { return mo != nullptr; });
    std::vector<std::string> expected(6, emptyForValidity); // two passes look at three empty pointers
    std::sort(objects.begin(), objects.end(), [this, &expected](const auto& mo1, const auto& mo2) {
        if (!mo1 || !mo2) {
            expected.push_back(mo1 ? emptySecond : emptyFirst);
        }
        return RamlMoPtr_less(m_ranks)(mo1, mo2);
    });
    ASSERT_THAT(expected, SizeIs(testing::Gt(6U)));

    m_log.clear();
    sort();

    EXPECT_EQ(errorsOf(m_log), expected);
}

TEST_F(RamlSortTest, BlockMayBeSortedAgain)
{
    fill({"x", "C", "y", "B", "z", "A"});
    sort();
    const std::vector<std::string> once = classNames();
    EXPECT_THAT(once, ElementsAre("A", "B", "C", testing::AnyOf("x", "y", "z", ""), testing::_, testing::_));
    m_log.clear();
    const std::string writtenAgain = sort();
    EXPECT_THAT((std::vector(once.begin(), once.begin() + 3)), ElementsAre("A", "B", "C"));
    EXPECT_THAT(classNames(), SizeIs(6));
    EXPECT_EQ(std::count(writtenAgain.begin(), writtenAgain.end(), '\n'), once[3].empty() ? 0 : 3);
    EXPECT_THAT(errorsOf(m_log), testing::Contains(emptyForValidity));
}

TEST_F(RamlSortTest, NoValidObjectIsLostOrThereTwice)
{
    const std::vector<std::string> classes{"A", "B", "C", "C2", "x", "y", ""};
    std::mt19937 random(7);

    for (int round = 0; round < 300; ++round) {
        std::vector<std::string> names(random() % 40);
        std::generate(names.begin(), names.end(), [&] { return classes[random() % classes.size()]; });
        fill(names);
        const auto isValid = [this](const RAML_ManagedObjectType::pointer& mo) {
            return mo && m_ranks.contains(mo->mClassname);
        };
        std::multiset<RAML_ManagedObjectType*> before;
        for (const RAML_ManagedObjectType::pointer& mo : m_cmData->managedObjects) {
            if (isValid(mo)) {
                before.insert(mo.get());
            }
        }

        sort();

        const auto& sorted = m_cmData->managedObjects;
        ASSERT_EQ(sorted.size(), names.size());
        const auto endOfValid = sorted.begin() + static_cast<std::ptrdiff_t>(before.size());
        std::multiset<RAML_ManagedObjectType*> after;
        std::for_each(sorted.begin(), endOfValid,
                      [&after](const RAML_ManagedObjectType::pointer& mo) { after.insert(mo.get()); });
        EXPECT_EQ(after, before);
        EXPECT_TRUE(std::is_sorted(sorted.begin(), endOfValid, [this](const auto& mo1, const auto& mo2) {
            return m_ranks.at(mo1->mClassname) < m_ranks.at(mo2->mClassname);
        }));
        EXPECT_TRUE(std::none_of(endOfValid, sorted.end(), isValid));
        EXPECT_TRUE(std::is_partitioned(endOfValid, sorted.end(),
                                        [](const RAML_ManagedObjectType::pointer& mo) { return mo != nullptr; }));
    }
}

} // namespace
} // namespace RAML
