// SPDX-License-Identifier: MIT
/// @file CHwapiException.hpp
/// Root of the exceptions that the library throws.
///
/// A class of the family stands for a kind of failure and gives it a fixed reason; the description says what failed.
/// Throw with the place of the throw: `throw InvalidParameterException("no such port", __FILE__, __LINE__);`
#pragma once

#include <exception>
#include <string>
#include <sys/types.h>

namespace vel::hwapi::common {

/// Root of the exceptions that the library throws: a reason, a description and the place of the throw.
class CHwapiException : public std::exception {
public:
    /// @param reason kind of failure; what what() returns
    /// @param description what failed
    /// @param file source file of the throw; null counts as an empty name
    /// @param line source line of the throw
    CHwapiException(const std::string& reason, const std::string& description, const char* file, ssize_t line);
    CHwapiException(const CHwapiException&) = default;
    CHwapiException& operator=(const CHwapiException&) = default;
    ~CHwapiException() override;

    /// Returns the reason, not the description.
    const char* what() const noexcept override;

    /// Source file of the throw, as `__FILE__` names it; empty when it was thrown without.
    const std::string& getFile() const noexcept { return m_file; }
    /// Source line of the throw.
    ssize_t getLine() const noexcept { return m_line; }
    /// What failed, in this case; the reason says which kind of failure it is.
    const std::string& getDescription() const noexcept { return m_description; }

private:
    std::string m_reason;
    std::string m_description;
    std::string m_file;
    ssize_t m_line;
};

} // namespace vel::hwapi::common
