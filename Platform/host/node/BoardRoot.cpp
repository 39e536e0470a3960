// SPDX-License-Identifier: MIT
#include "node/BoardRoot.hpp"

#include <cerrno>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace dorn::host {
namespace {

using Components = std::deque<std::string>;

/// As many as the kernel follows.
constexpr int maximumLinks = 40;

Components componentsOf(const std::filesystem::path& path)
{
    Components components;
    for (const std::filesystem::path& component : path.relative_path()) {
        if (!component.empty() && component != ".") {
            components.push_back(component);
        }
    }
    return components;
}

/// Follows the links of @p path as a process would whose "/" is @p root. Reads the components of @p path that are
/// there; the rest stands as it is. @return the path below @p root; empty when there are too many links.
std::string followLinks(const std::string& root, const std::string& path, LastLink lastLink)
{
    Components left = componentsOf(path);
    std::string followed;
    int links = 0;
    while (!left.empty()) {
        const std::string name = left.front();
        left.pop_front();
        if (name == "..") { // out of a link
            followed.erase(followed.empty() ? 0 : followed.find_last_of('/'));
            continue;
        }
        const std::string next = followed + "/" + name;
        const bool isFollowed = lastLink == LastLink::Followed || !left.empty() || path.back() == '/';
        std::error_code error;
        const std::filesystem::path target =
            isFollowed ? std::filesystem::read_symlink(root + next, error) : std::filesystem::path();
        if (error || target.empty()) {
            followed = next;
            continue;
        }
        if (++links > maximumLinks) {
            errno = ELOOP;
            return {};
        }
        if (target.is_absolute()) {
            followed.clear();
        }
        const Components inserted = componentsOf(target);
        left.insert(left.begin(), inserted.begin(), inserted.end());
    }
    return path.back() == '/' || followed.empty() ? followed + "/" : followed;
}

/// The path by its name on Linux: the platform calls the storage that survives a reset "/rpram", Linux "/var/tmp".
std::string linuxPath(const std::string& path)
{
    constexpr std::string_view platformName = "/rpram";
    const bool isBelow =
        path.starts_with(platformName) && (path.size() == platformName.size() || path[platformName.size()] == '/');
    return isBelow ? "/var/tmp" + path.substr(platformName.size()) : path;
}

} // namespace

std::string boardPath(const std::string& targetPath, LastLink lastLink)
{
    if (targetPath.empty() || targetPath.front() != '/') {
        return {};
    }
    // lexically_normal() drops every ".." that would lead above "/".
    const std::string normal = linuxPath(std::filesystem::path(targetPath).lexically_normal().string());
    const char* const root = std::getenv("DORN_ROOT");
    std::string path = root ? root : "";
    while (!path.empty() && path.back() == '/') {
        path.pop_back();
    }
    if (path.empty()) {
        return normal;
    }
    const std::string followed = followLinks(path, normal, lastLink);
    return followed.empty() ? std::string() : path + followed;
}

} // namespace dorn::host
