// SPDX-License-Identifier: MIT
#include "post/HexReader.hpp"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>

namespace vel::hwapi::common::post {

bool HexReader::number(std::uint32_t& number)
{
    m_at += std::strspn(m_at, " \t\n\v\f\r");
    const bool isNegative = *m_at == '-';
    const char* const digits = m_at + (isNegative || *m_at == '+' ? 1 : 0);
    if (!std::isxdigit(static_cast<unsigned char>(*digits))) {
        return false;
    }
    char* end = nullptr;
    const unsigned long long value = std::strtoull(digits, &end, 16); // wider than 32 bits everywhere
    const bool isPrefixAlone = end == digits + 1 && *digits == '0' && (*end == 'x' || *end == 'X');
    m_at = isPrefixAlone ? end + 1 : end;
    number = static_cast<std::uint32_t>(std::min<unsigned long long>(value, UINT32_MAX));
    if (isNegative && value <= UINT32_MAX) {
        number = 0 - number;
    }
    return true;
}

bool HexReader::character(char expected)
{
    m_at += std::strspn(m_at, " \t\n\v\f\r");
    const bool isThere = *m_at == expected;
    m_at += isThere ? 1 : 0;
    return isThere;
}

} // namespace vel::hwapi::common::post
