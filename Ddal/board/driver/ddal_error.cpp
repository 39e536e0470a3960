// SPDX-License-Identifier: MIT
#include "ddal_error.h"

#include "driver/DriverText.hpp"
#include "driver/ResultText.hpp"

int32_t ddal_strerror(int32_t code, char* buffer, uint32_t maxLength)
{
    using namespace dorn::board;
    if (buffer) {
        *buffer = '\0';
    }
    return driverCall(DriverFunction("ddal_strerror"),
                      [&] { TextBuffer::ofLength(maxLength, buffer).write(resultText(code)); });
}
