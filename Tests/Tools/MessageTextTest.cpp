// SPDX-License-Identifier: MIT
#include "answers/MessageText.hpp"

#include "syscom/MessageTap.hpp"

#include <cstring>
#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

constexpr std::int64_t newYear = 1'735'689'600'000'000'000;

/// ClimateS is process 100 and holds 0x0211; LedS holds 0x0212.
const Names names{0x0F01,
                  [](TAaSysComCpid cpid) -> std::string {
                      return cpid == 0x0211 ? "ClimateS" : cpid == 0x0212 ? "LedS" : "";
                  },
                  [](std::int32_t pid) -> std::string { return pid == 100 ? "ClimateS" : ""; }};

SeenMessage seen()
{
    return {host::Nanoseconds(newYear), 100, 0, 0x2101, 0x0F010211, 0x0F010212, 3, bytesOf("abc")};
}

Bytes recordWith(const host::TapRecord& head, const std::string& payload)
{
    Bytes record(sizeof head);
    std::memcpy(record.data(), &head, sizeof head);
    const Bytes bytes = bytesOf(payload);
    record.insert(record.end(), bytes.begin(), bytes.end());
    return record;
}

host::TapRecord head(std::uint16_t payloadSize)
{
    return {newYear, 100, 2, {host::FrameHeader::magicNumber, 1, payloadSize, 0x2101, 0x0F010211, 0x0F010212, 0}};
}

TEST(MessageTextTest, RecordIsTakenApart)
{
    const auto message = readTapRecord(recordWith(head(5), "abc"));

    ASSERT_TRUE(message);
    EXPECT_EQ(message->wall.count(), newYear);
    EXPECT_EQ(message->pid, 100);
    EXPECT_EQ(message->missed, 2U);
    EXPECT_EQ(message->id, 0x2101U);
    EXPECT_EQ(message->sender, 0x0F010211U);
    EXPECT_EQ(message->receiver, 0x0F010212U);
    EXPECT_EQ(message->length, 5U);
    EXPECT_EQ(message->payload, bytesOf("abc"));
}

TEST(MessageTextTest, WhatIsNoRecordIsNotBelieved)
{
    host::TapRecord wrongMagic = head(3);
    wrongMagic.header.magic = 0;
    Bytes tooShort = recordWith(head(0), "");
    tooShort.pop_back();

    EXPECT_FALSE(readTapRecord({}));
    EXPECT_FALSE(readTapRecord(tooShort));
    EXPECT_FALSE(readTapRecord(recordWith(wrongMagic, "abc")));
    EXPECT_FALSE(readTapRecord(recordWith(head(2), "abc")));
}

TEST(MessageTextTest, FilterAcceptsByIdAndByEitherCpid)
{
    EXPECT_TRUE((MessageFilter{}).accepts(seen()));
    EXPECT_TRUE((MessageFilter{0x2101, std::nullopt}).accepts(seen()));
    EXPECT_FALSE((MessageFilter{0x2102, std::nullopt}).accepts(seen()));
    EXPECT_TRUE((MessageFilter{std::nullopt, 0x0211}).accepts(seen()));
    EXPECT_TRUE((MessageFilter{std::nullopt, 0x0212}).accepts(seen()));
    EXPECT_FALSE((MessageFilter{std::nullopt, 0x0213}).accepts(seen()));
    EXPECT_FALSE((MessageFilter{0x2102, 0x0211}).accepts(seen()));
}

TEST(MessageTextTest, LineTellsWhoSendsWhatToWhom)
{
    EXPECT_EQ(messageText(seen(), names, false),
              "2025-01-01T00:00:00.000000Z 0x2101 ClimateS 0x0211 -> LedS 0x0212 3 bytes");
}

TEST(MessageTextTest, SenderWithoutCpidIsKnownByItsProcess)
{
    SeenMessage message = seen();
    message.sender = 0;
    message.length = 1;
    EXPECT_EQ(messageText(message, names, false), "2025-01-01T00:00:00.000000Z 0x2101 ClimateS -> LedS 0x0212 1 byte");
    message.pid = 7;
    EXPECT_EQ(messageText(message, names, false), "2025-01-01T00:00:00.000000Z 0x2101 process 7 -> LedS 0x0212 1 byte");
}

TEST(MessageTextTest, UnknownPartiesAreShownByCpid)
{
    SeenMessage message = seen();
    message.pid = 7;
    message.sender = 0x0F01F000;
    message.receiver = 0x0F01F001;

    EXPECT_EQ(messageText(message, names, false),
              "2025-01-01T00:00:00.000000Z 0x2101 process 7 0xF000 -> 0xF001 3 bytes");
}

TEST(MessageTextTest, ReceiverOnAnotherNodeIsNotTakenForOneOfThisNode)
{
    SeenMessage message = seen();
    message.receiver = 0x0F020212;

    EXPECT_EQ(messageText(message, names, false),
              "2025-01-01T00:00:00.000000Z 0x2101 ClimateS 0x0211 -> 0x0F02:0x0212 3 bytes");
    EXPECT_EQ(messageJson(message, names, false)["receiver"].dump(), R"({"name":"","node":3842,"cpid":530})");
}

TEST(MessageTextTest, PayloadStandsBelow)
{
    EXPECT_EQ(messageText(seen(), names, true),
              "2025-01-01T00:00:00.000000Z 0x2101 ClimateS 0x0211 -> LedS 0x0212 3 bytes\n"
              "    0000  61 62 63                                          abc");
}

TEST(MessageTextTest, MessageWithoutPayloadHasNothingBelow)
{
    SeenMessage message = seen();
    message.length = 0;
    message.payload.clear();

    EXPECT_EQ(messageText(message, names, true),
              "2025-01-01T00:00:00.000000Z 0x2101 ClimateS 0x0211 -> LedS 0x0212 0 bytes");
}

TEST(MessageTextTest, PayloadThatDidNotFitIsCounted)
{
    SeenMessage message = seen();
    message.length = 5;

    EXPECT_EQ(messageText(message, names, true),
              "2025-01-01T00:00:00.000000Z 0x2101 ClimateS 0x0211 -> LedS 0x0212 5 bytes\n"
              "    0000  61 62 63                                          abc\n"
              "    2 more bytes");
}

TEST(MessageTextTest, JsonTellsTheSame)
{
    EXPECT_EQ(jsonLine(messageJson(seen(), names, true)),
              R"({"time":"2025-01-01T00:00:00.000000Z","id":8449,)"
              R"("sender":{"name":"ClimateS","node":3841,"cpid":529,"pid":100},)"
              R"("receiver":{"name":"LedS","node":3841,"cpid":530},"length":3,"payload":"616263"})");
    EXPECT_FALSE(messageJson(seen(), names, false).contains("payload"));
}

TEST(MessageTextTest, MissedMessagesAreCounted)
{
    SeenMessage message = seen();
    message.missed = 3;
    EXPECT_EQ(missedText(message, names), "2025-01-01T00:00:00.000000Z 3 messages of ClimateS missed");
    EXPECT_EQ(jsonLine(missedJson(message, names)),
              R"({"time":"2025-01-01T00:00:00.000000Z","missed":3,"name":"ClimateS","pid":100})");
    message.missed = 1;
    message.pid = 7;
    EXPECT_EQ(missedText(message, names), "2025-01-01T00:00:00.000000Z 1 message of process 7 missed");
}

TEST(MessageTextTest, ReplyIsShownWithItsPayload)
{
    const Reply reply{0x2102, {"LedS", 0x0F010212}, bytesOf("abc")};

    EXPECT_EQ(replyText(reply, 0x0F01), "0x2102 from LedS 0x0212, 3 bytes\n"
                                        "    0000  61 62 63                                          abc\n");
    EXPECT_EQ(jsonLine(replyJson(reply)), R"({"id":8450,"sender":{"name":"LedS","node":3841,"cpid":530},)"
                                          R"("length":3,"payload":"616263"})");
}

} // namespace
} // namespace dorn::tool
