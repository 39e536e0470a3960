// SPDX-License-Identifier: MIT
#include "ServiceBook.hpp"

#include "AaConfigTag.h"
#include "NodeTest.hpp"

#include <gmock/gmock.h>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

class ServiceBookTest : public testkit::NodeTest {
protected:
    static std::vector<std::uint32_t> addressesOf(const ServiceBook& book)
    {
        std::vector<std::uint32_t> addresses;
        for (const SRedundantService& service : book.list()) {
            addresses.push_back(service.address);
        }
        return addresses;
    }

    ServiceBook m_book;
};

TEST_F(ServiceBookTest, ServicesAreListedByAddress)
{
    EXPECT_EQ(m_book.add(0x0F010300, ERedundancyMode_All), ERedundancyRegisterStatus_Ok);
    EXPECT_EQ(m_book.add(0x0F010200, ERedundancyMode_RealTime), ERedundancyRegisterStatus_Ok);
    EXPECT_EQ(m_book.add(0x0F010250, ERedundancyMode_Switchover), ERedundancyRegisterStatus_Ok);

    EXPECT_THAT(addressesOf(m_book), ElementsAre(0x0F010200U, 0x0F010250U, 0x0F010300U));
}

TEST_F(ServiceBookTest, ServiceThatRegistersAgainBeginsAnew)
{
    m_book.add(0x200, ERedundancyMode_All);
    m_book.find(0x200)->state = ERedundancyState_Ready;

    m_book.add(0x200, ERedundancyMode_RealTime);

    EXPECT_THAT(addressesOf(m_book), ElementsAre(0x200U));
    EXPECT_EQ(m_book.find(0x200)->mode, ERedundancyMode_RealTime);
    EXPECT_EQ(m_book.find(0x200)->state, 0U);
}

TEST_F(ServiceBookTest, UnknownModeIsRefused)
{
    EXPECT_EQ(m_book.add(0x200, 0), ERedundancyRegisterStatus_UnknownMode);
    EXPECT_EQ(m_book.add(0x200, ERedundancyMode_None), ERedundancyRegisterStatus_UnknownMode);
    EXPECT_EQ(m_book.add(0x200, 5), ERedundancyRegisterStatus_UnknownMode);

    EXPECT_THAT(addressesOf(m_book), IsEmpty());
}

TEST_F(ServiceBookTest, OneServiceTooManyIsRefused)
{
    for (std::uint32_t address = 1; address <= maxRedundantServices; ++address) {
        ASSERT_EQ(m_book.add(address, ERedundancyMode_All), ERedundancyRegisterStatus_Ok);
    }

    EXPECT_EQ(m_book.add(0x999, ERedundancyMode_All), ERedundancyRegisterStatus_TooManyServices);
    EXPECT_EQ(m_book.add(1, ERedundancyMode_RealTime), ERedundancyRegisterStatus_Ok);
    EXPECT_EQ(m_book.find(0x999), nullptr);
}

TEST_F(ServiceBookTest, WhoIsRegisteredIsKnownToTheNextManager)
{
    m_book.add(0x200, ERedundancyMode_All);
    m_book.add(0x300, ERedundancyMode_RealTime);
    m_book.find(0x200)->state = ERedundancyState_Ready;
    ServiceBook next;

    next.load(0);

    EXPECT_THAT(addressesOf(next), ElementsAre(0x200U, 0x300U));
    EXPECT_EQ(next.find(0x300)->mode, ERedundancyMode_RealTime);
    EXPECT_EQ(next.find(0x200)->state, 0U);
}

TEST_F(ServiceBookTest, RemovedServiceIsForgotten)
{
    m_book.add(0x200, ERedundancyMode_All);

    EXPECT_TRUE(m_book.remove(0x200));
    EXPECT_FALSE(m_book.remove(0x200));

    ServiceBook next;
    next.load(0);
    EXPECT_THAT(addressesOf(next), IsEmpty());
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(ServiceBookTest, BookWithoutTagIsEmpty)
{
    m_book.load(0);

    EXPECT_THAT(addressesOf(m_book), IsEmpty());
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(ServiceBookTest, DamagedTagIsUsedAsFarAsItMakesSense)
{
    const std::array<std::uint32_t, 5> damaged{0x200, ERedundancyMode_All, 0x300, 77, 0x400};
    AaConfigTagSet(registrationsTag, damaged.data(), sizeof damaged);

    m_book.load(0x20080);

    EXPECT_THAT(addressesOf(m_book), ElementsAre(0x200U));
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Warning 0x20080 Tag dorn.redundancy.services is damaged: 1 services taken from it"));
}

TEST_F(ServiceBookTest, TagWithTooManyServicesIsCut)
{
    std::vector<SRedundancyRegistration> registrations;
    for (std::uint32_t address = 1; address <= maxRedundantServices + 1; ++address) {
        registrations.push_back({address, ERedundancyMode_All});
    }
    AaConfigTagSet(registrationsTag, registrations.data(),
                   static_cast<std::uint32_t>(registrations.size() * sizeof registrations[0]));

    m_book.load(0x20080);

    EXPECT_EQ(m_book.list().size(), maxRedundantServices);
    EXPECT_EQ(m_log.texts().size(), 1U);
}

} // namespace
} // namespace dorn::examples
