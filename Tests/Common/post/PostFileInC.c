/* SPDX-License-Identifier: MIT */
#include "PostFile.h"

#include <string.h>

EStatus recordPostInC(const char* filename);
uint32_t postRecordSizeInC(void);

EStatus recordPostInC(const char* filename)
{
    DspReadyInd result;
    memset(&result, 0, sizeof result);
    result.numberOfPosts = 1;
    result.postResults[0].testCaseNumber = 5;
    result.postResults[0].resultCode = 6;
    return UpdateDspPost(filename, &result);
}

uint32_t postRecordSizeInC(void)
{
    return (uint32_t)sizeof(DspReadyInd);
}
