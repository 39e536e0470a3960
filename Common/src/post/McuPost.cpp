// SPDX-License-Identifier: MIT
#include "PostFile.h"

#include "post/HexReader.hpp"
#include "post/PostArrays.hpp"
#include "post/PostLine.hpp"

#include <algorithm>
#include <array>

using namespace vel::hwapi::common;
using namespace vel::hwapi::common::post;

namespace {

using Result = SMcuPostResult;

/// In the order of the file.
constexpr std::array fields{&Result::PostRam,         &Result::PostBootImage,   &Result::PostRuntimeSW,
                            &Result::PostFpgaImage,   &Result::PostCrtmFlash,   &Result::PostBootFlash,
                            &Result::PostMount3gFm,   &Result::PostMountLtFm,   &Result::PostMountVendorFm,
                            &Result::PostMountDb,     &Result::PostMount3gSdmN, &Result::PostMount3gSdmE,
                            &Result::PostMountLtSdmA, &Result::PostMountLtSdmB};
static_assert(fields.size() * sizeof(EPostState) == sizeof(Result));

/// Results that have been read. The array grows ahead of them, so that a file of many lines takes time in proportion.
struct McuResults {
    PlatformBlock<Result[]> array;
    std::uint32_t length = 0;
    std::uint32_t capacity = 0;
    bool hasMemory = true;

    bool makeRoom()
    {
        if (length == capacity) {
            const std::uint32_t increment = std::max(capacity, 2U);
            Result* const longer = increaseMcuPostResultArray(array.get(), length, increment);
            hasMemory = longer != nullptr;
            if (hasMemory) {
                static_cast<void>(array.release()); // has been released already
                array.reset(longer);
                capacity += increment;
            }
        }
        return hasMemory;
    }
};

/// Leaves the result as it is when there are not enough numbers.
void parse(const char* line, Result& result)
{
    HexReader reader(line);
    Result parsed{};
    if (std::all_of(fields.begin(), fields.end(), [&](auto field) { return reader.number(parsed.*field); })) {
        result = parsed;
    }
}

Reading read(const char* filename, McuResults& results)
{
    const LineTaker take = [](const char* line, void* context) {
        auto& all = *static_cast<McuResults*>(context);
        if (all.makeRoom()) {
            parse(line, all.array[all.length++]);
        }
        return all.hasMemory;
    };
    const Reading reading = readLines(filename, take, &results);
    return results.hasMemory ? reading : Reading::NoMemory;
}

bool make(PostLine& line, const Result& result)
{
    if (!line.reserve(fields.size() * PostLine::numberLength)) {
        return false;
    }
    for (const auto field : fields) {
        line.add(result.*field);
        line.add(field == fields.back() ? "\n" : " ");
    }
    return true;
}

Result marked()
{
    Result result{};
    for (const auto field : fields) {
        result.*field = POST_FILE_MCU_MARKER;
    }
    return result;
}

} // namespace

EStatus UpdateMcuPost(const char* filename, const SMcuPostResult* result)
{
    McuResults previous;
    if (!result || read(filename, previous) == Reading::NoMemory) {
        return EStatus_UndefinedError;
    }
    std::array<PostLine, 2> lines;
    if (!make(lines[0], *result) || !make(lines[1], previous.length != 0 ? previous.array[0] : marked())) {
        return EStatus_UndefinedError;
    }
    return writeLines(filename, lines);
}

EStatus QueryMcuPost(const char* filename, SMcuPostResult** results, uint32_t* nbrOfResults)
{
    if (!results || !nbrOfResults) {
        return EStatus_UndefinedError;
    }
    *results = nullptr;
    *nbrOfResults = 0;
    McuResults all;
    const Reading reading = read(filename, all);
    if (reading != Reading::NoMemory) {
        *nbrOfResults = all.length;
        *results = all.array.release();
    }
    return reading == Reading::Done ? EStatus_NoError : EStatus_UndefinedError;
}
