// SPDX-License-Identifier: MIT
#include "post/PairRecord.hpp"

using namespace vel::hwapi::common;

EStatus UpdateDspPost(const char* filename, const DspReadyInd* result)
{
    return post::update(filename, result);
}

EStatus QueryDspPost(const char* filename, DspReadyInd*** results, uint32_t* nbrOfResults)
{
    return post::query(filename, results, nbrOfResults);
}
