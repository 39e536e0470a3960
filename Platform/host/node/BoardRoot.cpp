// SPDX-License-Identifier: MIT
#include "node/BoardRoot.hpp"

#include <cstdlib>
#include <filesystem>

namespace dorn::host {

std::string boardPath(const std::string& targetPath)
{
    if (targetPath.empty() || targetPath.front() != '/') {
        return {};
    }
    // lexically_normal() drops every ".." that would lead above "/".
    const std::string normal = std::filesystem::path(targetPath).lexically_normal().string();
    const char* const root = std::getenv("DORN_ROOT");
    if (!root || !*root) {
        return normal;
    }
    std::string path = root;
    while (!path.empty() && path.back() == '/') {
        path.pop_back();
    }
    return path + normal;
}

} // namespace dorn::host
