// SPDX-License-Identifier: MIT
#include "CHwapiException.hpp"

namespace vel::hwapi::common {

CHwapiException::CHwapiException(const std::string& reason, const std::string& description, const char* file,
                                 ssize_t line)
    : m_reason(reason), m_description(description), m_file(file ? file : ""), m_line(line)
{
}

CHwapiException::~CHwapiException() = default;

const char* CHwapiException::what() const noexcept
{
    return m_reason.c_str();
}

} // namespace vel::hwapi::common
