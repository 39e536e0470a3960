// SPDX-License-Identifier: MIT
/// @file PostArrays.hpp
/// The arrays of POST results that queries give.
#pragma once

#include "PostFile.h"

#include <cstddef>
#include <cstdint>

/// Each of these makes an array of @p length plus @p increment elements whose first @p length elements are those of
/// @p results, which is released. New results are filled with ones; where the elements are pointers, each points to a
/// new record with room for #POST_FILE_PAIRS_MAX tests.
/// @return the array; null when there is no memory, and then @p results is as it was.
SMcuPostResult* increaseMcuPostResultArray(SMcuPostResult* results, std::uint32_t length, std::uint32_t increment);
DspReadyInd** increaseDspPostResultArray(DspReadyInd** results, std::uint32_t length, std::uint32_t increment);
SApi2PostDataResp** increasePostData2ResultArray(SApi2PostDataResp** results, std::uint32_t length,
                                                 std::uint32_t increment);

namespace vel::hwapi::common::post {

/// Bytes of a record with room for #POST_FILE_PAIRS_MAX tests.
inline constexpr std::uint32_t recordSize = 4 * sizeof(std::uint32_t) + POST_FILE_PAIRS_MAX * 2 * sizeof(std::uint32_t);
static_assert(offsetof(DspReadyInd, postResults) + POST_FILE_PAIRS_MAX * sizeof(SPostResult) == recordSize);
static_assert(offsetof(SApi2PostDataResp, post) + POST_FILE_PAIRS_MAX * sizeof(SPost) == recordSize);
static_assert(sizeof(SMcuPostResult) == 14 * sizeof(std::uint32_t));

} // namespace vel::hwapi::common::post
