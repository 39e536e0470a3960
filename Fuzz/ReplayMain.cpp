// SPDX-License-Identifier: MIT
/// @file ReplayMain.cpp
/// Runs a fuzz target on files, without a fuzzer: `<program> <file or folder>...`
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

/// The files that an argument means, in a fixed order.
std::vector<std::filesystem::path> filesOf(const std::filesystem::path& argument)
{
    if (!std::filesystem::is_directory(argument)) {
        return {argument};
    }
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(argument)) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// @return whether the file could be read.
bool replay(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        std::fprintf(stderr, "%s: cannot be read\n", path.c_str());
        return false;
    }
    std::printf("%s\n", path.c_str());
    std::fflush(stdout); // so that the last line names the culprit of a crash
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    std::size_t count = 0;
    for (const std::string& argument : std::vector<std::string>(argv + 1, argv + argc)) {
        for (const std::filesystem::path& path : filesOf(argument)) {
            if (!replay(path)) {
                return 1;
            }
            ++count;
        }
    }
    std::printf("%zu files\n", count);
    return count != 0 ? 0 : 1;
}
