// SPDX-License-Identifier: MIT
// The names of events: what they are, and when they are there.
#include "EventNames.hpp"

#include "Drivers.hpp"

#include <gmock/gmock.h>

#include <set>
#include <type_traits>

namespace {

using namespace dorn::test;

constexpr std::size_t eventCount = 22;

TEST(EventNamesTest, EventsHaveTheirNames)
{
    ASSERT_EQ(eventNames().size(), eventCount);
    for (const auto& [name, expected] : eventNames()) {
        EXPECT_EQ(name, expected);
    }
}

TEST(EventNamesTest, NoTwoEventsHaveTheSameName)
{
    std::set<std::string> names;
    for (const auto& [name, expected] : eventNames()) {
        EXPECT_TRUE(names.insert(name).second) << name;
    }
}

TEST(EventNamesTest, NamesAreThereForStaticObjectsOfAnySourceFile)
{
    EXPECT_EQ(namesSeenByFirstFile, eventNames());
    EXPECT_EQ(namesSeenByLastFile, eventNames());
}

TEST(EventNamesTest, NamesAreStringsThatNobodyChanges)
{
    static_assert(std::is_same_v<decltype(sfp::AbstractSfpBif::SFP_EVENT_NAME), const std::string>);
    EXPECT_EQ(&sfp::AbstractSfpBif::SFP_EVENT_NAME, &Sfp::SFP_EVENT_NAME);
}

} // namespace
