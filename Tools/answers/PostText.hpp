// SPDX-License-Identifier: MIT
/// @file PostText.hpp
/// The results of power-on self-tests, as operators see them.
#pragma once

#include "Console.hpp"
#include "text/Json.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dorn::tool {

/// What a POST file is about; its form tells which.
enum class PostKind { Mcu, Dsp, Data2 };

/// One result of a file.
struct PostResult {
    std::vector<std::pair<std::string, std::uint32_t>> head; ///< what is said of the whole
    std::vector<std::pair<std::string, std::uint32_t>> tests;
    bool isThere = true; ///< false for the line that stands for no result
};

struct PostView {
    PostKind kind;
    std::vector<PostResult> results; ///< the newest first
};

/// The kind of a file, from its first line.
PostKind kindOfLine(std::string_view line);
/// "mcu", "dsp", "data2"
const char* kindName(PostKind kind);
/// @throws UsageError when it is the name of none.
PostKind parseKind(const std::string& name);

/// Reads a file of the board. @throws Failure when it cannot be read.
PostView readPost(const std::string& path, PostKind kind);
/// The kind of a file of the board. @throws Failure when it cannot be read.
PostKind kindOfFile(const std::string& path);

std::string postText(const PostView& view, const Console& console);
Json postJson(const PostView& view);

} // namespace dorn::tool
