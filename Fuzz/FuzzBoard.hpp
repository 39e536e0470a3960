// SPDX-License-Identifier: MIT
/// @file FuzzBoard.hpp
/// What fuzz targets that use the target's files share.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace dorn::fuzz {

/// What has to hold, whatever the input is.
inline void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// A board root of this program's own.
class FuzzBoard {
public:
    FuzzBoard()
    {
        require(mkdtemp(m_root.data()) != nullptr);
        setenv("DORN_ROOT", m_root.c_str(), 1);
        setenv("DORN_RUN_DIR", m_root.c_str(), 1);
        setenv("DORN_LOG", "none", 1);
    }
    ~FuzzBoard()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_root, ignored);
    }
    FuzzBoard(const FuzzBoard&) = delete;
    FuzzBoard& operator=(const FuzzBoard&) = delete;

    /// Where a path of the target lies on this machine.
    std::string place(const std::string& path) const { return m_root + path; }

private:
    std::string m_root = std::filesystem::temp_directory_path().string() + "/fuzzXXXXXX";
};

} // namespace dorn::fuzz
