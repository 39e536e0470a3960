// SPDX-License-Identifier: MIT
#include "LongDriverText.hpp"

#include "ddal_error.h"
#include "driver/DriverText.hpp"
#include "driver/ResultText.hpp"

namespace dorn::test {

std::string talkativeText()
{
    std::string text;
    while (text.size() < 100) {
        text += static_cast<char>('a' + text.size() % 26);
    }
    return text;
}

} // namespace dorn::test

std::int32_t ddal_strerror(std::int32_t code, char* buffer, std::uint32_t maxLength)
{
    using namespace dorn;
    return board::driverCall(board::DriverFunction("ddal_strerror"), [&] {
        const bool isTalkative = code == test::talkativeCode;
        board::TextBuffer::ofLength(maxLength, buffer)
            .write(isTalkative ? test::talkativeText() : board::resultText(code));
    });
}
