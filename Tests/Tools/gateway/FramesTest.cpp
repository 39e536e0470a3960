// SPDX-License-Identifier: MIT
#include "gateway/Frames.hpp"

#include <gmock/gmock.h>
#include <random>

namespace dorn::gateway::test {
namespace {

WireBytes parcelOf(const Parcel& parcel, const WireBytes& records)
{
    const auto preamble = parcelPreamble(parcel);
    WireBytes bytes(preamble.begin(), preamble.end());
    bytes.insert(bytes.end(), records.begin(), records.end());
    return bytes;
}

WireBytes twoRecords()
{
    WireBytes records;
    const WireBytes payload(3, std::byte{0x5A});
    appendRecord(records, {0xABCDEF01, 0x01010042, 0x01020300, 3}, payload);
    appendRecord(records, {2, 0, 0x01020301, 0}, {});
    return records;
}

Parcel someParcel()
{
    Parcel parcel;
    parcel.session = 0x1122334455667788;
    parcel.number = 7;
    parcel.confirmation = {0x99AABBCCDDEEFF00, 12};
    parcel.count = 2;
    return parcel;
}

bool isGarbage(const WireBytes& bytes)
{
    return std::holds_alternative<Garbage>(readWire(bytes));
}

std::vector<unsigned> numbersOf(const WireBytes& bytes)
{
    std::vector<unsigned> numbers;
    for (const std::byte byte : bytes) {
        numbers.push_back(std::to_integer<unsigned>(byte));
    }
    return numbers;
}

TEST(FramesTest, GreetingIsReadAsItWasWritten)
{
    const WireMessage message = readWire(wireBytes(Greeting{0x0102030405060708, 9, 0x0101, 0x0102}));

    const auto* const greeting = std::get_if<Greeting>(&message);
    ASSERT_TRUE(greeting);
    EXPECT_EQ(greeting->epoch, 0x0102030405060708U);
    EXPECT_EQ(greeting->attempt, 9U);
    EXPECT_EQ(greeting->from, 0x0101);
    EXPECT_EQ(greeting->to, 0x0102);
}

TEST(FramesTest, GreetingHasItsBytesInTheOrderOfTheWire)
{
    EXPECT_EQ(numbersOf(wireBytes(Greeting{0x1112131415161718, 0x0102030405060708, 0xA1A2, 0xB1B2})),
              (std::vector<unsigned>{0x64, 0x6F, 0x67, 0x77, 1,    0,    1,    0,    // preamble
                                     0x08, 0x07, 0x06, 0x05, 0x04, 0x03, 0x02, 0x01, // attempt
                                     0x18, 0x17, 0x16, 0x15, 0x14, 0x13, 0x12, 0x11, // epoch
                                     0xA2, 0xA1, 0xB2, 0xB1}));
}

TEST(FramesTest, WelcomeIsReadAsItWasWritten)
{
    const WireMessage message = readWire(wireBytes(Welcome{1, 2, 3, 4}));

    const auto* const welcome = std::get_if<Welcome>(&message);
    ASSERT_TRUE(welcome);
    EXPECT_EQ(welcome->attempt, 1U);
    EXPECT_EQ(welcome->epoch, 2U);
    EXPECT_EQ(welcome->session, 3U);
    EXPECT_EQ(welcome->expected, 4U);
}

TEST(FramesTest, ShortMessagesAreReadAsTheyWereWritten)
{
    const WireMessage confirmation = readWire(wireBytes(Confirmation{5, 6}));
    const WireMessage ping = readWire(wireBytes(Ping{7, 8}));
    const WireMessage pong = readWire(wireBytes(Pong{{9, 10}, 11}));
    const WireMessage refusal = readWire(wireBytes(Refusal{RefusalCode::WrongNode, 12}));

    EXPECT_EQ(std::get<Confirmation>(confirmation).session, 5U);
    EXPECT_EQ(std::get<Confirmation>(confirmation).expected, 6U);
    EXPECT_EQ(std::get<Ping>(ping).session, 7U);
    EXPECT_EQ(std::get<Ping>(ping).stamp, 8U);
    EXPECT_EQ(std::get<Pong>(pong).confirmation.session, 9U);
    EXPECT_EQ(std::get<Pong>(pong).confirmation.expected, 10U);
    EXPECT_EQ(std::get<Pong>(pong).stamp, 11U);
    EXPECT_EQ(std::get<Refusal>(refusal).code, RefusalCode::WrongNode);
    EXPECT_EQ(std::get<Refusal>(refusal).what, 12U);
}

TEST(FramesTest, ParcelIsReadWithItsRecords)
{
    const WireBytes bytes = parcelOf(someParcel(), twoRecords());

    const WireMessage message = readWire(bytes);

    const auto* const parcel = std::get_if<Parcel>(&message);
    ASSERT_TRUE(parcel);
    EXPECT_EQ(parcel->session, 0x1122334455667788U);
    EXPECT_EQ(parcel->number, 7U);
    EXPECT_EQ(parcel->confirmation.session, 0x99AABBCCDDEEFF00U);
    EXPECT_EQ(parcel->confirmation.expected, 12U);
    std::span<const std::byte> rest = parcel->records;
    const Record first = takeRecord(rest);
    EXPECT_EQ(first.header.id, 0xABCDEF01U);
    EXPECT_EQ(first.header.sender, 0x01010042U);
    EXPECT_EQ(first.header.receiver, 0x01020300U);
    EXPECT_EQ(numbersOf({first.payload.begin(), first.payload.end()}), (std::vector<unsigned>{0x5A, 0x5A, 0x5A}));
    const Record second = takeRecord(rest);
    EXPECT_EQ(second.header.id, 2U);
    EXPECT_EQ(second.header.receiver, 0x01020301U);
    EXPECT_TRUE(second.payload.empty());
    EXPECT_TRUE(rest.empty());
}

TEST(FramesTest, GreatestMessageFits)
{
    WireBytes records;
    appendRecord(records, {1, 2, 3, 65535}, WireBytes(65535));
    Parcel parcel = someParcel();
    parcel.count = 1;
    const WireBytes bytes = parcelOf(parcel, records);

    EXPECT_LE(bytes.size(), greatestWireMessage);
    EXPECT_TRUE(std::holds_alternative<Parcel>(readWire(bytes)));
}

TEST(FramesTest, MessageCutAnywhereIsGarbage)
{
    const std::vector<WireBytes> all{wireBytes(Greeting{1, 2, 3, 4}),     wireBytes(Welcome{1, 2, 3, 4}),
                                     wireBytes(Confirmation{1, 2}),       wireBytes(Ping{1, 2}),
                                     wireBytes(Pong{{1, 2}, 3}),          wireBytes(Refusal{RefusalCode::Version, 1}),
                                     parcelOf(someParcel(), twoRecords())};
    for (const WireBytes& whole : all) {
        for (std::size_t size = 0; size < whole.size(); ++size) {
            EXPECT_TRUE(isGarbage({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)})) << size;
        }
    }
}

TEST(FramesTest, MessageWithAByteTooManyIsGarbage)
{
    for (WireBytes bytes : {wireBytes(Greeting{1, 2, 3, 4}), wireBytes(Welcome{1, 2, 3, 4}),
                            wireBytes(Confirmation{1, 2}), wireBytes(Ping{1, 2}), wireBytes(Pong{{1, 2}, 3}),
                            wireBytes(Refusal{RefusalCode::Version, 1}), parcelOf(someParcel(), twoRecords())}) {
        bytes.push_back(std::byte{0});
        EXPECT_TRUE(isGarbage(bytes));
    }
}

TEST(FramesTest, ParcelWithAnotherCountOfRecordsIsGarbage)
{
    for (const std::uint32_t count : {0U, 1U, 3U, 0xFFFFFFFFU}) {
        Parcel parcel = someParcel();
        parcel.count = count;
        EXPECT_TRUE(isGarbage(parcelOf(parcel, twoRecords()))) << count;
    }
}

TEST(FramesTest, ParcelWithoutRecordsIsGarbage)
{
    Parcel parcel = someParcel();
    parcel.count = 0;
    EXPECT_TRUE(isGarbage(parcelOf(parcel, {})));
}

TEST(FramesTest, RecordWithSomethingInItsPaddingIsGarbage)
{
    WireBytes records = twoRecords();
    records[14] = std::byte{1};
    EXPECT_TRUE(isGarbage(parcelOf(someParcel(), records)));
}

TEST(FramesTest, NumbersThatAreNeverZeroAreGarbageWhenTheyAre)
{
    EXPECT_TRUE(isGarbage(wireBytes(Greeting{0, 2, 3, 4})));
    EXPECT_TRUE(isGarbage(wireBytes(Welcome{1, 0, 3, 4})));
    EXPECT_TRUE(isGarbage(wireBytes(Welcome{1, 2, 0, 4})));
    EXPECT_TRUE(isGarbage(wireBytes(Welcome{1, 2, 3, 0})));
}

TEST(FramesTest, GreetingOfAnotherVersionIsToldWithItsAttempt)
{
    WireBytes bytes = wireBytes(Greeting{1, 0x0A0B, 3, 4});
    bytes[4] = std::byte{2};
    bytes.resize(100);

    const WireMessage message = readWire(bytes);

    const auto* const other = std::get_if<OtherVersion>(&message);
    ASSERT_TRUE(other);
    EXPECT_EQ(other->version, 2);
    EXPECT_TRUE(other->isGreeting);
    EXPECT_EQ(other->attempt, 0x0A0BU);
}

TEST(FramesTest, AnythingElseOfAnotherVersionIsNoGreeting)
{
    WireBytes bytes = wireBytes(Ping{1, 2});
    bytes[5] = std::byte{1};

    const WireMessage message = readWire(bytes);

    ASSERT_TRUE(std::holds_alternative<OtherVersion>(message));
    EXPECT_EQ(std::get<OtherVersion>(message).version, 0x101);
    EXPECT_FALSE(std::get<OtherVersion>(message).isGreeting);
}

TEST(FramesTest, OtherMagicOrKindIsGarbage)
{
    WireBytes bytes = wireBytes(Ping{1, 2});
    bytes[0] ^= std::byte{1};
    EXPECT_TRUE(isGarbage(bytes));
    for (const unsigned kind : {0U, 8U, 255U}) {
        bytes = wireBytes(Ping{1, 2});
        bytes[6] = std::byte(kind);
        EXPECT_TRUE(isGarbage(bytes)) << kind;
    }
}

TEST(FramesTest, RandomChangesNeverLeadOutOfTheParcel)
{
    std::mt19937 random(1);
    const WireBytes whole = parcelOf(someParcel(), twoRecords());
    for (int round = 0; round < 20000; ++round) {
        WireBytes bytes = whole;
        for (auto changes = 1 + random() % 3; changes > 0; --changes) {
            bytes[random() % bytes.size()] = std::byte(random() % 256);
        }
        const WireMessage message = readWire(bytes);
        if (const auto* const parcel = std::get_if<Parcel>(&message)) {
            std::span<const std::byte> rest = parcel->records;
            std::uint32_t count = 0;
            for (; !rest.empty(); ++count) {
                takeRecord(rest);
            }
            EXPECT_EQ(count, parcel->count);
        }
    }
}

} // namespace
} // namespace dorn::gateway::test
