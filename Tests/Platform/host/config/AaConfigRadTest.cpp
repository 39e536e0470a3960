// SPDX-License-Identifier: MIT
#include "AaConfigRad.h"

#include "FailingFilePort.hpp"
#include "NodeTest.hpp"
#include "config/RadStore.hpp"
#include "node/EeTable.hpp"
#include "node/PerNode.hpp"
#include "port/Clock.hpp"

#include <atomic>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <vector>

namespace {

using dorn::host::closeNode;
using dorn::host::EeTable;
using dorn::host::PerNode;
using dorn::host::radParameterName;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr uint16_t lamps = 3;
constexpr TAaConfigRadId lampsFirst = 0x30000;
constexpr TAaConfigRadId lampsLast = 0x30004;
constexpr uint16_t farAway = 60000; ///< has no view
constexpr TAaConfigRadId farAwayFirst = 60000U << 16;

/// Results of what the initialise functions below call.
std::vector<int32_t> results;

void declareLamps()
{
    results.push_back(AaConfigRadSetMaxTagCount(lamps, lampsLast));
    results.push_back(AaConfigRadSetDefault(0x30000, "RED", 7));
    results.push_back(AaConfigRadSetDefault(0x30001, "GREEN", 0));
    results.push_back(AaConfigRadSetDefault(0x30003, "RED", 0xFFFFFFFF));
}

void declareFarAway()
{
    AaConfigRadSetMaxTagCount(farAway, farAwayFirst + 2);
    AaConfigRadSetDefault(farAwayFirst + 1, "FAR", 5);
}

void declareNothing() {}

class AaConfigRadTest : public dorn::testkit::NodeTest {
protected:
    AaConfigRadTest() { results.clear(); }
};

TEST_F(AaConfigRadTest, DomainHasItsDefaultsAfterRegistration)
{
    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    EXPECT_THAT(results, ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(AaConfigRadGetValue(0x30000), 7U);
    EXPECT_EQ(AaConfigRadGetValue(0x30001), 0U);
    EXPECT_EQ(AaConfigRadGetValue(0x30003), 0xFFFFFFFFU);
}

TEST_F(AaConfigRadTest, SetValueIsRead)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    EXPECT_EQ(AaConfigRadSetValue(0x30000, 123456789), 0);
    EXPECT_EQ(AaConfigRadGetValue(0x30000), 123456789U);
    EXPECT_EQ(AaConfigRadReadValue(0x30000), 123456789U);
    EXPECT_EQ(AaConfigRadGetValue(0x30001), 0U);
}

TEST_F(AaConfigRadTest, IdentifierThatIsNotDeclaredButInTheDomainHoldsAValue)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    EXPECT_EQ(AaConfigRadGetValue(0x30002), 0U);
    EXPECT_EQ(AaConfigRadSetValue(0x30002, 9), 0);
    EXPECT_EQ(AaConfigRadGetValue(0x30002), 9U);
}

TEST_F(AaConfigRadTest, IdentifierOutsideTheDomainReadsZeroAndCannotBeSet)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    for (const TAaConfigRadId outside : {lampsLast, lampsFirst + 1023, lampsFirst + 1024, lampsFirst + 0xFFFF}) {
        EXPECT_EQ(AaConfigRadSetValue(outside, 1), 1) << outside;
        EXPECT_EQ(AaConfigRadGetValue(outside), 0U) << outside;
        EXPECT_EQ(AaConfigRadReadValue(outside), 0U) << outside;
    }
}

TEST_F(AaConfigRadTest, DomainThatIsNotRegisteredReadsZeroAndCannotBeSet)
{
    EXPECT_EQ(AaConfigRadGetValue(0x30000), 0U);
    EXPECT_EQ(AaConfigRadSetValue(0x30000, 1), 1);
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    for (const TAaConfigRadId other : {0U, 0x20000U, 0x40000U, farAwayFirst, 0x01030000U, 0xFFFF0000U}) {
        EXPECT_EQ(AaConfigRadGetValue(other), 0U) << other;
        EXPECT_EQ(AaConfigRadSetValue(other, 1), 1) << other;
    }
}

TEST_F(AaConfigRadTest, DomainWithoutAViewWorksTheSame)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(farAway, "Far", declareFarAway), 0);
    EXPECT_EQ(AaConfigRadGetValue(farAwayFirst + 1), 5U);
    EXPECT_EQ(AaConfigRadSetValue(farAwayFirst + 1, 6), 0);
    EXPECT_EQ(AaConfigRadGetValue(farAwayFirst + 1), 6U);
    EXPECT_EQ(AaConfigRadSetValue(farAwayFirst + 2, 6), 1);
    EXPECT_EQ(AaConfigRadGetValue(farAwayFirst + 2), 0U);
}

TEST_F(AaConfigRadTest, EveryWordOfAViewIsReadable)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    const uint32_t* const view = AaConfigRadViews[lamps];
    ASSERT_NE(view, nullptr);
    std::uint64_t sum = 0;
    for (std::size_t index = 4; index < 0x10000; ++index) {
        sum += view[index];
    }
    EXPECT_EQ(sum, 0U);
}

TEST_F(AaConfigRadTest, ClosedNodeLeavesNoValues)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    const uint32_t* const view = AaConfigRadViews[lamps];
    closeNode();
    EXPECT_EQ(AaConfigRadViews[lamps], nullptr);
    EXPECT_EQ(view[0], 0U); // a reader that is under way does not fall
    EXPECT_EQ(AaConfigRadGetValue(0x30000), 0U);
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    EXPECT_EQ(AaConfigRadGetValue(0x30000), 7U);
}

TEST_F(AaConfigRadTest, RegisteringAgainKeepsTheValues)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    AaConfigRadSetValue(0x30000, 8);
    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    EXPECT_EQ(AaConfigRadGetValue(0x30000), 8U);
    closeNode();
    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    EXPECT_EQ(AaConfigRadGetValue(0x30000), 8U);
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(AaConfigRadTest, WrongArgumentsOfARegistrationAreRefused)
{
    const std::string longest(31, 'n');
    const std::string tooLong(32, 'n');
    EXPECT_EQ(AaConfigRadRegisterDomain(0, "Zero", declareNothing), 1);
    EXPECT_EQ(AaConfigRadRegisterDomain(5, nullptr, declareNothing), 1);
    EXPECT_EQ(AaConfigRadRegisterDomain(5, "", declareNothing), 1);
    EXPECT_EQ(AaConfigRadRegisterDomain(5, tooLong.c_str(), declareNothing), 1);
    EXPECT_EQ(AaConfigRadRegisterDomain(5, "Five", nullptr), 1);
    EXPECT_EQ(AaConfigRadRegisterDomain(5, longest.c_str(), declareNothing), 0);
}

TEST_F(AaConfigRadTest, DeclarationsOutsideARegistrationAreRefused)
{
    EXPECT_EQ(AaConfigRadSetMaxTagCount(lamps, lampsLast), 1);
    EXPECT_EQ(AaConfigRadSetDefault(lampsFirst, "RED", 0), 1);
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    EXPECT_EQ(AaConfigRadSetMaxTagCount(lamps, lampsLast), 1);
    EXPECT_EQ(AaConfigRadSetDefault(lampsFirst, "RED", 0), 1);
}

TEST_F(AaConfigRadTest, DeclarationsInAnotherThreadThanTheRegistrationAreRefused)
{
    const auto declareElsewhere = [] {
        std::thread([] { results.push_back(AaConfigRadSetMaxTagCount(lamps, lampsLast)); }).join();
    };
    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareElsewhere), 0);
    EXPECT_THAT(results, ElementsAre(1));
}

TEST_F(AaConfigRadTest, DeclarationsThatDoNotFitAreRefused)
{
    const auto declare = [] {
        const std::string longest(63, 'n');
        const std::string tooLong(64, 'n');
        results = {AaConfigRadSetDefault(0x30000, "BEFORE THE SIZE", 0),
                   AaConfigRadSetMaxTagCount(4, 0x40004),
                   AaConfigRadSetMaxTagCount(lamps, 0x40004),
                   AaConfigRadSetMaxTagCount(lamps, 0x2FFFF),
                   AaConfigRadSetMaxTagCount(lamps, lampsLast),
                   AaConfigRadSetDefault(lampsLast, "OUTSIDE", 0),
                   AaConfigRadSetDefault(0x40000, "ELSEWHERE", 0),
                   AaConfigRadSetDefault(0x30000, nullptr, 0),
                   AaConfigRadSetDefault(0x30000, "", 0),
                   AaConfigRadSetDefault(0x30000, tooLong.c_str(), 0),
                   AaConfigRadSetDefault(0x30000, longest.c_str(), 0)};
    };

    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declare), 0);
    EXPECT_THAT(results, ElementsAre(1, 1, 1, 1, 0, 1, 1, 1, 1, 1, 0));
    EXPECT_EQ(std::string(63, 'n'), radParameterName(0x30000));
}

TEST_F(AaConfigRadTest, DomainOfTheGreatestSizeHoldsEveryIdentifier)
{
    const auto declare = [] {
        results.push_back(AaConfigRadSetMaxTagCount(0xFFFF, 0)); // the identifier after 0xFFFFFFFF
        results.push_back(AaConfigRadSetDefault(0xFFFFFFFF, "LAST", 3));
    };
    ASSERT_EQ(AaConfigRadRegisterDomain(0xFFFF, "Greatest", declare), 0);
    EXPECT_THAT(results, ElementsAre(0, 0));
    EXPECT_EQ(AaConfigRadGetValue(0xFFFFFFFF), 3U);
    EXPECT_EQ(AaConfigRadSetValue(0xFFFFFFFF, 4), 0);
    EXPECT_EQ(AaConfigRadGetValue(0xFFFFFFFF), 4U);
}

TEST_F(AaConfigRadTest, WholeDomainWithAViewHoldsEveryIdentifier)
{
    const auto declare = [] { results.push_back(AaConfigRadSetMaxTagCount(lamps, 0x40000)); };
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declare), 0);
    EXPECT_THAT(results, ElementsAre(0));
    EXPECT_EQ(AaConfigRadSetValue(0x3FFFF, 4), 0);
    EXPECT_EQ(AaConfigRadGetValue(0x3FFFF), 4U);
    EXPECT_EQ(AaConfigRadViews[lamps][0xFFFF], 4U);
}

TEST_F(AaConfigRadTest, InitialiseFunctionMayRegisterAnotherDomain)
{
    const auto declareBoth = [] {
        results.push_back(AaConfigRadRegisterDomain(farAway, "Far", declareFarAway));
        results.push_back(AaConfigRadSetMaxTagCount(lamps, lampsLast));
    };
    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareBoth), 0);
    EXPECT_THAT(results, ElementsAre(0, 0));
    EXPECT_EQ(AaConfigRadGetValue(farAwayFirst + 1), 5U);
}

/// What another declaration of the domain "Lamps" gives.
class AaConfigRadDifferenceTest : public AaConfigRadTest {
protected:
    AaConfigRadDifferenceTest()
    {
        EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
        AaConfigRadSetValue(0x30000, 8);
    }
    ~AaConfigRadDifferenceTest() override { EXPECT_EQ(AaConfigRadGetValue(0x30000), 8U); }
};

TEST_F(AaConfigRadDifferenceTest, OtherNameIsRefused)
{
    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lights", declareLamps), 3);
    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x0 R&D domain 3 \"Lights\" is not registered: its name is "
                                           "\"Lights\" here and \"Lamps\" on the node"));
}

TEST_F(AaConfigRadDifferenceTest, OtherSizeIsRefused)
{
    const auto declare = [] { AaConfigRadSetMaxTagCount(lamps, lampsLast + 2000); };
    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declare), 3);
    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x0 R&D domain 3 \"Lamps\" is not registered: it has 2004 "
                                           "identifiers here and 4 on the node"));
}

TEST_F(AaConfigRadDifferenceTest, OtherParameterNameIsRefused)
{
    const auto declare = [] {
        declareLamps();
        AaConfigRadSetDefault(0x30001, "BLUE", 0);
    };
    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declare), 3);
    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x0 R&D domain 3 \"Lamps\" is not registered: parameter 0x30001 is "
                                           "\"BLUE\" with default 0 here and \"GREEN\" with default 0 on the node"));
}

TEST_F(AaConfigRadDifferenceTest, OtherDefaultIsRefused)
{
    const auto declare = [] {
        declareLamps();
        AaConfigRadSetDefault(0x30001, "GREEN", 1);
        AaConfigRadSetDefault(0x30002, "NEW", 1);
    };
    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declare), 3);
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Warning 0x0 R&D domain 3 \"Lamps\" is not registered: parameter 0x30001 is \"GREEN\" with "
                            "default 1 here and \"GREEN\" with default 0 on the node, and 1 more differ"));
}

TEST_F(AaConfigRadDifferenceTest, ParameterThatOnlyOneSideHasIsADifference)
{
    const auto declare = [] {
        declareLamps();
        AaConfigRadSetDefault(0x30002, "NEW", 1);
    };
    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declare), 3);
    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x0 R&D domain 3 \"Lamps\" is not registered: parameter 0x30002 is "
                                           "\"NEW\" with default 1 here and none on the node"));
}

TEST_F(AaConfigRadTest, StoreThatCannotBeMadeIsAnErrorWithItsReason)
{
    dorn::testkit::FullDisk disk;
    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 2);
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Error 0x0 R&D domain 3 \"Lamps\" is not registered: store '" + m_node.nodeDirectory() +
                            "/rad/control' cannot be created: No space left on device"));
    EXPECT_EQ(AaConfigRadGetValue(0x30000), 0U);
}

TEST_F(AaConfigRadTest, DiskThatIsFullOnlyForAWhileIsForgotten)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(farAway, "Far", declareFarAway), 0);
    {
        dorn::testkit::FullDisk disk;
        EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 2);
    }
    EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    EXPECT_EQ(AaConfigRadGetValue(0x30000), 7U);
}

TEST_F(AaConfigRadTest, WrittenValueIsPublishedInTheListOfEes)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    AaConfigRadSetValue(0x30001, 1); // the list is not open: nothing to tell
    PerNode<EeTable>::get().enter("LampS", 0x123);
    AaConfigRadSetValue(0x30000, 42);
    const auto ees = PerNode<EeTable>::get().list();
    ASSERT_EQ(ees.size(), 1U);
    ASSERT_EQ(ees[0].published.size(), 1U);
    EXPECT_EQ(ees[0].published[0].id, 0x30000U);
    EXPECT_EQ(ees[0].published[0].value, 42U);
}

/// Looks, whenever it is asked for the time of day, what a parameter has in the store.
class LookingClock : public dorn::host::Clock {
public:
    explicit LookingClock(TAaConfigRadId id) : m_id(id) {}
    dorn::host::Nanoseconds monotonic() const override { return m_real.monotonic(); }
    dorn::host::Nanoseconds wall() const override
    {
        m_seen.push_back(AaConfigRadGetValue(m_id));
        return m_real.wall();
    }
    void waitWhile(std::atomic<std::uint32_t>& word, std::uint32_t expected, dorn::host::Deadline until,
                   bool shared) override
    {
        m_real.waitWhile(word, expected, until, shared);
    }
    int waitDescriptors(std::span<pollfd> entries, dorn::host::Deadline until) override
    {
        return m_real.waitDescriptors(entries, until);
    }
    const std::vector<std::uint32_t>& seen() const { return m_seen; }

private:
    dorn::host::Clock& m_real = dorn::host::Clock::get();
    TAaConfigRadId m_id;
    mutable std::vector<std::uint32_t> m_seen;
    dorn::host::ClockScope m_scope{*this};
};

TEST_F(AaConfigRadTest, ValueThatOthersCanReadIsInTheListOfEesAlready)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    PerNode<EeTable>::get().enter("LampS", 0x123);
    const LookingClock clock(0x30000); // the list notes the time with the value

    AaConfigRadSetValue(0x30000, 42);

    EXPECT_THAT(clock.seen(), ElementsAre(7U));
    EXPECT_EQ(PerNode<EeTable>::get().list().at(0).published.at(0).value, 42U);
}

TEST_F(AaConfigRadTest, ParameterNamesAreThereForTheLog)
{
    EXPECT_STREQ(radParameterName(0x30001), "");
    ASSERT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declareLamps), 0);
    ASSERT_EQ(AaConfigRadRegisterDomain(farAway, "Far", declareFarAway), 0);
    EXPECT_STREQ(radParameterName(0x30001), "GREEN");
    EXPECT_STREQ(radParameterName(0x30002), "");
    EXPECT_STREQ(radParameterName(0x30004), "");
    EXPECT_STREQ(radParameterName(0x40001), "");
    EXPECT_STREQ(radParameterName(farAwayFirst + 1), "FAR");
}

TEST_F(AaConfigRadTest, ThreadsMayRegisterTheSameDomainAtOnce)
{
    const auto declare = [] {
        AaConfigRadSetMaxTagCount(lamps, lampsLast);
        AaConfigRadSetDefault(0x30000, "RED", 7);
    };

    std::vector<std::thread> threads;
    for (int count = 0; count < 4; ++count) {
        threads.emplace_back([declare] {
            EXPECT_EQ(AaConfigRadRegisterDomain(lamps, "Lamps", declare), 0);
            EXPECT_EQ(AaConfigRadGetValue(0x30000), 7U);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace
