// SPDX-License-Identifier: MIT
#include "Folder.hpp"

#include "AaFile.h"
#include "Check.hpp"
#include "Options.hpp"

#include <array>
#include <climits>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace dorn::conformance {

Folder::Folder() : m_path(options().directory + "/" + std::to_string(getpid()))
{
    expectEqual(AaFileCreateDir(m_path.c_str()), 0, "AaFileCreateDir() of " + m_path);
}

Folder::~Folder()
{
    std::array<char, PATH_MAX> buffer{};
    if (AaFileGetBoardPath(m_path.c_str(), buffer.data(), buffer.size()) == 0) {
        std::error_code ignored;
        std::filesystem::remove_all(buffer.data(), ignored);
    }
}

std::string Folder::realPath(const std::string& name) const
{
    return boardPath(path(name));
}

std::string boardPath(const std::string& path)
{
    std::array<char, PATH_MAX> buffer{};
    expectEqual(AaFileGetBoardPath(path.c_str(), buffer.data(), buffer.size()), 0, "AaFileGetBoardPath() of " + path);
    return buffer.data();
}

void writeFile(const std::string& path, const std::string& content)
{
    AaFile* const file = AaFileOpen(path.c_str(), "w");
    expect(file != nullptr, "AaFileOpen() of " + path + " for writing gave null");
    const int32_t written = AaFileWrite(file, content.data(), static_cast<uint32_t>(content.size()));
    const int32_t closed = AaFileClose(file);
    expectEqual(written, content.size(), "AaFileWrite()");
    expectEqual(closed, 0, "AaFileClose()");
}

std::string readFile(const std::string& path)
{
    AaFile* const file = AaFileOpen(path.c_str(), "r");
    expect(file != nullptr, "AaFileOpen() of " + path + " for reading gave null");
    std::string content;
    std::array<char, 4096> buffer{};
    int32_t size = 0;
    while ((size = AaFileRead(file, buffer.data(), buffer.size())) > 0) {
        content.append(buffer.data(), static_cast<std::size_t>(size));
    }
    AaFileClose(file);
    expectEqual(size, 0, "AaFileRead() at the end of the file");
    return content;
}

} // namespace dorn::conformance
