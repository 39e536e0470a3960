// SPDX-License-Identifier: MIT
/// @file FuzzBoard.hpp
/// A board root of a fuzz target's own.
#pragma once

#include "Require.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace dorn::fuzz {

/// Points the environment at directories of its own, without log; they are gone at its end.
class FuzzBoard {
public:
    FuzzBoard()
    {
        require(mkdtemp(m_directory.data()) != nullptr);
        setenv("DORN_ROOT", m_directory.c_str(), 1);
        setenv("DORN_RUN_DIR", m_directory.c_str(), 1);
        setenv("DORN_LOG", "none", 1);
    }
    ~FuzzBoard()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_directory, ignored);
    }
    FuzzBoard(const FuzzBoard&) = delete;
    FuzzBoard& operator=(const FuzzBoard&) = delete;

    /// Where a path of the board lies on this machine.
    std::string place(const std::string& path) const { return m_directory + path; }
    /// @param path of the board: "/image.bin"
    void write(const std::string& path, const std::string& content) const
    {
        std::ofstream(place(path), std::ios::binary) << content;
    }
    std::string read(const std::string& path) const
    {
        std::ifstream file(place(path), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::string m_directory = std::filesystem::temp_directory_path().string() + "/fuzzXXXXXX";
};

} // namespace dorn::fuzz
