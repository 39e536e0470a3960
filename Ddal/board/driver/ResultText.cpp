// SPDX-License-Identifier: MIT
#include "driver/ResultText.hpp"

#include "ddal_error.h"

#include <array>
#include <cstddef>

namespace dorn::board {
namespace {

constexpr std::array<const char*, 14> resultTexts{
    "no error",
    "failed",
    "invalid argument",
    "board description cannot be read",
    "board description is malformed",
    "not found",
    "handle is not open for this",
    "address is not in the device's memory",
    "file cannot be used",
    "input/output error",
    "no resources left",
    "device is busy",
    "device does not answer",
    "not supported",
};
static_assert(resultTexts.size() == DDAL_ERROR_NOT_SUPPORTED + 1);

} // namespace

std::string resultText(std::int32_t code)
{
    const bool isKnown = code >= 0 && static_cast<std::size_t>(code) < resultTexts.size();
    return isKnown ? resultTexts[static_cast<std::size_t>(code)] : "unknown error " + std::to_string(code);
}

} // namespace dorn::board
