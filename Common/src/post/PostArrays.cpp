// SPDX-License-Identifier: MIT
#include "post/PostArrays.hpp"

#include "PlatformBlock.hpp"

#include <algorithm>
#include <cstring>

using namespace vel::hwapi::common;
using namespace vel::hwapi::common::post;

namespace {

constexpr int allOnes = 0xFF;

/// A longer array with the same first elements; null when there is no memory.
template <class Element>
Element* lengthened(const Element* elements, std::uint32_t length, std::uint32_t increment)
{
    auto* const longer = allocateArray<Element>(std::uint64_t{length} + increment);
    if (longer) {
        std::copy_n(elements, length, longer);
    }
    return longer;
}

/// Makes records until @p end or until there is no memory. @return where it has ended.
template <class Record>
Record** makeRecords(Record** begin, Record** end)
{
    for (; begin != end; ++begin) {
        void* const record = AaMemMallocDbg(recordSize, __FILE__, __LINE__);
        if (!record) {
            break;
        }
        *begin = static_cast<Record*>(std::memset(record, allOnes, recordSize));
    }
    return begin;
}

template <class Record>
Record** increased(Record** results, std::uint32_t length, std::uint32_t increment)
{
    PlatformBlock<Record*[]> longer(lengthened(results, length, increment));
    if (!longer) {
        return nullptr;
    }
    Record** const begin = longer.get() + length;
    Record** const end = makeRecords(begin, begin + increment);
    if (end != begin + increment) {
        std::for_each(begin, end, BlockRelease());
        return nullptr;
    }
    BlockRelease()(results);
    return longer.release();
}

} // namespace

SMcuPostResult* increaseMcuPostResultArray(SMcuPostResult* results, std::uint32_t length, std::uint32_t increment)
{
    auto* const longer = lengthened(results, length, increment);
    if (longer) {
        std::memset(longer + length, allOnes, increment * sizeof *longer);
        BlockRelease()(results);
    }
    return longer;
}

DspReadyInd** increaseDspPostResultArray(DspReadyInd** results, std::uint32_t length, std::uint32_t increment)
{
    return increased(results, length, increment);
}

SApi2PostDataResp** increasePostData2ResultArray(SApi2PostDataResp** results, std::uint32_t length,
                                                 std::uint32_t increment)
{
    return increased(results, length, increment);
}
