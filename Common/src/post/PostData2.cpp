// SPDX-License-Identifier: MIT
#include "post/PairRecord.hpp"

using namespace vel::hwapi::common;

EStatus UpdatePostData2(const char* filename, const SApi2PostDataResp* result)
{
    return post::update(filename, result);
}

EStatus QueryPostData2(const char* filename, SApi2PostDataResp*** results, uint32_t* nbrOfResults)
{
    return post::query(filename, results, nbrOfResults);
}
