// SPDX-License-Identifier: MIT
#include "raml/RamlFile.hpp"

#include "AaFile.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <new>
#include <system_error>

namespace RAML {
namespace {

struct CloseFile {
    void operator()(AaFile* file) const { AaFileClose(file); }
};
using File = std::unique_ptr<AaFile, CloseFile>;

/// @p name as the platform wants it. A relative name stays one when there is no working directory, and cannot be
/// opened.
std::string absoluteName(const std::string& name)
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(name, error);
    return error ? name : path.string();
}

/// Appends what is left of the file, up to @p size bytes. @return how many bytes; -1 on failure.
std::int32_t append(AaFile& file, std::string& text, std::int32_t size)
{
    const std::size_t before = text.size();
    text.resize(before + static_cast<std::size_t>(size));
    const std::int32_t count = AaFileRead(&file, text.data() + before, static_cast<std::uint32_t>(size));
    text.resize(before + static_cast<std::size_t>(std::max(count, 0)));
    return count;
}

bool readAll(AaFile& file, std::string& text)
{
    constexpr std::int32_t step = 1 << 16;
    constexpr int maximumSteps = 1 << 10;
    const std::int32_t size = AaFileGetSize(&file); // 0 for what is no ordinary file, whatever it holds
    if (size < 0 || size > INT32_MAX - step) {
        return false;
    }
    std::int32_t wanted = size + step; // more than there is, so that one read does
    for (int count = 0; count < maximumSteps; ++count) {
        const std::int32_t taken = append(file, text, wanted);
        if (taken < wanted) {
            return taken >= 0;
        }
        wanted = step;
    }
    return false;
}

} // namespace

bool readFile(const std::string& name, std::string& text)
{
    try {
        const File file(AaFileOpen(absoluteName(name).c_str(), "rb"));
        return file && readAll(*file, text);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace RAML
