// SPDX-License-Identifier: MIT
// The page that describes the nodes and properties of a board tells all of them, and no others.
#include "description/TreeBlob.hpp"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace dorn::board {
namespace {

std::string contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What the first group of @p pattern matches in @p text.
std::set<std::string> allIn(const std::string& text, const std::string& pattern)
{
    const std::regex regex(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
        found.insert((*match)[1]);
    }
    return found;
}

/// The properties of boards alone that the drivers and the operator's command read.
std::set<std::string> readProperties()
{
    std::set<std::string> all;
    for (const char* const folder : {DORN_BOARD_CODE, DORN_TOOL_CODE}) {
        for (const auto& file : std::filesystem::recursive_directory_iterator(folder)) {
            if (file.is_regular_file()) {
                all.merge(allIn(contentOf(file.path()), "\"(dorn,[a-z0-9-]+)\""));
            }
        }
    }
    all.erase("dorn,board"); // which is no property: boards are compatible with it
    return all;
}

class BindingPageTest : public ::testing::Test {
protected:
    /// Whether the page has a node of this name in a path or in a table.
    bool describesNode(const std::string& name) const
    {
        const std::string kind = name.substr(0, name.find('@'));
        return std::regex_search(m_page, std::regex("[`/]" + kind + "[@`/]"));
    }

    void expectDescribed(const TreeNode& node) const
    {
        const std::set<std::string> general{"#address-cells", "#size-cells", "phandle"};
        EXPECT_TRUE(node.name.empty() || describesNode(node.name)) << node.name;
        for (const TreeProperty& property : node.properties) {
            const bool isDescribed = m_page.find('`' + property.name + '`') != std::string::npos;
            EXPECT_TRUE(isDescribed || general.contains(property.name)) << node.name << " " << property.name;
        }
        for (const TreeNode& child : node.children) {
            expectDescribed(child);
        }
    }

    const std::string m_page = contentOf(DORN_BINDING_PAGE);
};

TEST_F(BindingPageTest, PropertiesAreThoseThatAreRead)
{
    const std::set<std::string> described = allIn(m_page, "`(dorn,[a-z0-9-]+)`");

    EXPECT_EQ(described, readProperties());
    EXPECT_GE(described.size(), 19U);
}

TEST_F(BindingPageTest, AllThatTheExampleBoardsHaveIsDescribed)
{
    for (const char* const blob : {DORN_TARN_SINGLE, DORN_TARN_PAIR_MASTER}) {
        expectDescribed(readTreeBlob(blob, "board"));
    }
}

TEST_F(BindingPageTest, WhatNoBoardHasIsNotDescribed)
{
    EXPECT_FALSE(describesNode("cpus"));
    EXPECT_FALSE(describesNode("uni@0"));
}

} // namespace
} // namespace dorn::board
