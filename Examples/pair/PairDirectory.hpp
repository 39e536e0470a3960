// SPDX-License-Identifier: MIT
/// @file PairDirectory.hpp
/// Where both halves lie while they are shown.
#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace dorn::pair {

/// A directory of its own that is gone in the end.
class PairDirectory {
public:
    /// @throws std::system_error when it cannot be made.
    PairDirectory()
    {
        if (!mkdtemp(m_path.data())) {
            throw std::system_error(errno, std::generic_category(), m_path);
        }
    }
    ~PairDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    PairDirectory(const PairDirectory&) = delete;
    PairDirectory& operator=(const PairDirectory&) = delete;

    std::filesystem::path path() const { return m_path; }

private:
    /// No symbolic link in it: the platform follows none.
    std::string m_path = std::filesystem::canonical(std::filesystem::temp_directory_path()).string() + "/dpXXXXXX";
};

} // namespace dorn::pair
