// SPDX-License-Identifier: MIT
/// @file PostFuzz.cpp
/// Any bytes as a POST file of each kind: what is read keeps its limits and holds nothing but what the file has and
/// ones, and an update leaves the new result in front of what was the newest.
#include "AaMem.h"
#include "FuzzBoard.hpp"
#include "PostFile.h"
#include "Require.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

using dorn::fuzz::FuzzBoard;
using dorn::fuzz::require;

constexpr const char* path = "/post.txt";
constexpr std::uint32_t ones = 0xFFFFFFFF;
constexpr std::size_t mcuTests = sizeof(SMcuPostResult) / sizeof(EPostState);
constexpr std::size_t pairsBegin = 4; // words of a record; the one before is the number of pairs
constexpr std::size_t recordWords = pairsBegin + 2 * POST_FILE_PAIRS_MAX;
using Words = std::array<std::uint32_t, recordWords>;

void release(void* block)
{
    AaMemUnRefDbg(block, __FILE__, __LINE__);
}

std::vector<SMcuPostResult> queryMcu()
{
    SMcuPostResult* results = nullptr;
    std::uint32_t count = 0;
    require(QueryMcuPost(path, &results, &count) == EStatus_NoError);
    const std::vector<SMcuPostResult> all(results, results + count);
    release(results);
    return all;
}

template <class Record>
std::vector<Words> queryPairs(EStatus (*query)(const char*, Record***, std::uint32_t*))
{
    Record** results = nullptr;
    std::uint32_t count = 0;
    require(query(path, &results, &count) == EStatus_NoError);
    std::vector<Words> all(count);
    for (std::uint32_t index = 0; index < count; ++index) {
        std::memcpy(all[index].data(), results[index], sizeof(Words));
        release(results[index]);
    }
    release(results);
    return all;
}

std::size_t lineCount(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

void checkMcu(const FuzzBoard& board, const std::string& text)
{
    board.write(path, text);
    const std::vector<SMcuPostResult> before = queryMcu();
    const SMcuPostResult result{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, ones};
    require(UpdateMcuPost(path, &result) == EStatus_NoError);
    const std::vector<SMcuPostResult> after = queryMcu();
    require(after.size() == 2 && std::memcmp(&after[0], &result, sizeof result) == 0);
    SMcuPostResult older{};
    std::fill_n(&older.PostRam, mcuTests, POST_FILE_MCU_MARKER);
    if (!before.empty()) {
        older = before[0];
    }
    require(std::memcmp(&after[1], &older, sizeof older) == 0);
}

template <class Record>
void checkPairs(const FuzzBoard& board, const std::string& text,
                EStatus (*query)(const char*, Record***, std::uint32_t*), EStatus (*update)(const char*, const Record*))
{
    board.write(path, text);
    const std::vector<Words> before = queryPairs(query);
    require(before.size() <= 2);
    for (const Words& words : before) {
        const std::size_t pairs = std::min<std::size_t>(words[pairsBegin - 1], POST_FILE_PAIRS_READ_MAX);
        const auto* const behind = words.data() + pairsBegin + 2 * pairs;
        require(std::all_of(behind, words.data() + words.size(), [](std::uint32_t word) { return word == ones; }));
    }
    const std::array<std::uint32_t, 6> result{7, 8, 9, 1, 11, 12};
    require(update(path, reinterpret_cast<const Record*>(result.data())) == EStatus_NoError);
    require(lineCount(board.read(path)) == (before.empty() ? 1 : 2));
    const std::vector<Words> after = queryPairs(query);
    require(after.size() == (before.empty() ? 1 : 2));
    require(after[0][pairsBegin - 1] == 1 && after[0][pairsBegin] == 11 && after[0][pairsBegin + 1] == 12);
    require(before.empty() || after[1] == before[0]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzBoard board;
    const std::string text(reinterpret_cast<const char*>(data), size);
    checkMcu(board, text);
    checkPairs(board, text, QueryDspPost, UpdateDspPost);
    checkPairs(board, text, QueryPostData2, UpdatePostData2);
    return 0;
}
