// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string read(const std::filesystem::path& path)
{
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// The blocks of a document that are marked as @p language.
std::vector<std::string> blocksOf(const std::string& document, const std::string& language)
{
    std::vector<std::string> blocks;
    const std::string begin = "\n```" + language + "\n";
    for (std::size_t at = document.find(begin); at != std::string::npos; at = document.find(begin, at)) {
        at += begin.size();
        const std::size_t end = document.find("```", at);
        blocks.push_back(document.substr(at, end - at));
    }
    return blocks;
}

TEST(RecipesInDocumentTest, EverySnippetIsQuotedFromCodeThatIsBuilt)
{
    std::vector<std::string> sources;
    for (const auto& entry : std::filesystem::directory_iterator(DORN_RECIPES_FOLDER)) {
        sources.push_back(read(entry.path()));
    }
    const std::string document = read(DORN_RECIPES_DOCUMENT);
    std::vector<std::string> blocks = blocksOf(document, "cpp");
    const std::vector<std::string> cmakeBlocks = blocksOf(document, "cmake");
    blocks.insert(blocks.end(), cmakeBlocks.begin(), cmakeBlocks.end());

    EXPECT_GE(blocks.size(), 8U);
    for (const std::string& block : blocks) {
        EXPECT_TRUE(std::any_of(sources.begin(), sources.end(), [&](const std::string& source) {
            return source.find(block) != std::string::npos;
        })) << block;
    }
}

} // namespace
