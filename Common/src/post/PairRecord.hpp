// SPDX-License-Identifier: MIT
/// @file PairRecord.hpp
/// POST results that are a header and a number of pairs: what the lines of such a file have in common.
#pragma once

#include "PostFile.h"
#include "post/HexReader.hpp"
#include "post/PostArrays.hpp"
#include "post/PostLine.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace vel::hwapi::common::post {

/// What is special of a kind of record: the numbers that its line begins with, where the number of pairs stands, where
/// the pairs stand, the two numbers of one, and how an array of records grows.
template <class Record>
struct PairRecord;

template <>
struct PairRecord<DspReadyInd> {
    static constexpr std::array header{&DspReadyInd::bootStatus, &DspReadyInd::boardId, &DspReadyInd::chipNumber,
                                       &DspReadyInd::numberOfPosts};
    static constexpr auto count = &DspReadyInd::numberOfPosts;
    static constexpr auto pairs = &DspReadyInd::postResults;
    static constexpr auto first = &SPostResult::testCaseNumber;
    static constexpr auto second = &SPostResult::resultCode;
    static constexpr auto increase = increaseDspPostResultArray;
};

template <>
struct PairRecord<SApi2PostDataResp> {
    static constexpr std::array header{&SApi2PostDataResp::numOfPost};
    static constexpr auto count = &SApi2PostDataResp::numOfPost;
    static constexpr auto pairs = &SApi2PostDataResp::post;
    static constexpr auto first = &SPost::postCase;
    static constexpr auto second = &SPost::postState;
    static constexpr auto increase = increasePostData2ResultArray;
};

/// Reads what a line has; the rest of the record stays as it is. A reading position never gets beyond the 1023 bytes of
/// a line.
template <class Record>
void parse(const char* line, Record& record)
{
    using Kind = PairRecord<Record>;
    HexReader reader(line);
    for (const auto word : Kind::header) {
        if (!reader.number(record.*word)) {
            return;
        }
    }
    if (!reader.character(':')) {
        return;
    }
    auto* pair = record.*Kind::pairs;
    for (auto left = std::min(record.*Kind::count, POST_FILE_PAIRS_READ_MAX); left != 0; --left, ++pair) {
        if (!reader.number(pair->*Kind::first) || !reader.number(pair->*Kind::second)) {
            return;
        }
    }
}

/// Makes the line of a record, with @p pairCount pairs. @return false when there is no memory.
template <class Record>
bool make(PostLine& line, const Record& record, std::uint32_t pairCount)
{
    using Kind = PairRecord<Record>;
    constexpr std::uint64_t ends = 3; // ": " and the line feed
    if (!line.reserve((Kind::header.size() + 2ULL * pairCount) * PostLine::numberLength + ends)) {
        return false;
    }
    const auto add = [&line](std::uint32_t number) {
        line.add(number);
        line.add(" ");
    };
    for (const auto word : Kind::header) {
        add(record.*word);
    }
    line.add(": ");
    const auto* const pairs = record.*Kind::pairs;
    std::for_each(pairs, pairs + pairCount, [&add](const auto& pair) {
        add(pair.*Kind::first);
        add(pair.*Kind::second);
    });
    line.add("\n");
    return true;
}

/// The results that a file has, two at most.
template <class Record>
class PairRecords {
public:
    PairRecords() = default;
    ~PairRecords() { clear(); }
    PairRecords(const PairRecords&) = delete;
    PairRecords& operator=(const PairRecords&) = delete;

    Reading read(const char* filename)
    {
        const LineTaker take = [](const char* line, void* records) {
            return static_cast<PairRecords*>(records)->add(line);
        };
        const Reading reading = readLines(filename, take, this);
        return m_hasMemory ? reading : Reading::NoMemory;
    }

    const Record* newest() const { return m_length != 0 ? m_array[0] : nullptr; }
    std::uint32_t length() const { return m_length; }
    /// Gives the array away.
    Record** release()
    {
        m_length = 0;
        return m_array.release();
    }

private:
    static constexpr std::uint32_t mostResults = 2;

    /// @return whether one more is wanted.
    bool add(const char* line)
    {
        Record** const longer = PairRecord<Record>::increase(m_array.get(), m_length, 1);
        m_hasMemory = longer != nullptr;
        if (!m_hasMemory) {
            return false;
        }
        static_cast<void>(m_array.release()); // has been released already
        m_array.reset(longer);
        parse(line, *longer[m_length++]);
        return m_length < mostResults;
    }

    void clear()
    {
        std::for_each(m_array.get(), m_array.get() + m_length, BlockRelease());
        m_length = 0;
    }

    PlatformBlock<Record*[]> m_array;
    std::uint32_t m_length = 0;
    bool m_hasMemory = true;
};

template <class Record>
EStatus update(const char* filename, const Record* result)
{
    using Kind = PairRecord<Record>;
    if (!result || result->*Kind::count == 0) {
        return EStatus_NoError;
    }
    PairRecords<Record> previous;
    if (previous.read(filename) == Reading::NoMemory) {
        return EStatus_UndefinedError;
    }
    std::array<PostLine, 2> lines;
    std::size_t lineCount = 1;
    if (!make(lines[0], *result, result->*Kind::count)) {
        return EStatus_UndefinedError;
    }
    if (const Record* const older = previous.newest()) {
        if (!make(lines[lineCount++], *older, std::min(older->*Kind::count, POST_FILE_PAIRS_MAX))) {
            return EStatus_UndefinedError;
        }
    }
    return writeLines(filename, std::span(lines).first(lineCount));
}

template <class Record>
EStatus query(const char* filename, Record*** results, std::uint32_t* nbrOfResults)
{
    if (!results || !nbrOfResults) {
        return EStatus_UndefinedError;
    }
    *results = nullptr;
    *nbrOfResults = 0;
    PairRecords<Record> records;
    const Reading reading = records.read(filename);
    if (reading != Reading::NoMemory) {
        *nbrOfResults = records.length();
        *results = records.release();
    }
    return reading == Reading::Done ? EStatus_NoError : EStatus_UndefinedError;
}

} // namespace vel::hwapi::common::post
