// SPDX-License-Identifier: MIT
/// @file InFolder.hpp
/// Where a command under test works, and leaves what it makes.
#pragma once

#include <filesystem>

namespace dorn::tool {

/// This process, and what it starts, works in a folder as long as this lives.
class InFolder {
public:
    explicit InFolder(const std::filesystem::path& folder) { std::filesystem::current_path(folder); }
    ~InFolder() { std::filesystem::current_path(m_before); }
    InFolder(const InFolder&) = delete;
    InFolder& operator=(const InFolder&) = delete;

private:
    const std::filesystem::path m_before = std::filesystem::current_path();
};

} // namespace dorn::tool
