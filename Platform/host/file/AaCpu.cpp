// SPDX-License-Identifier: MIT
#include "AaCpu.h"

#include "file/ByteOrder.hpp"

void AaCpuBitSwapByteOrder32(uint32_t* word)
{
    if (word) {
        *word = dorn::host::fromLittleEndian(*word);
    }
}
