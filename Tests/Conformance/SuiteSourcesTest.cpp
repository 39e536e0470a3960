// SPDX-License-Identifier: MIT
// The suite can be built with nothing but the seams.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <string>

namespace dorn::conformance {
namespace {

namespace fs = std::filesystem;

TEST(SuiteSourcesTest, IncludeOnlyTheSeamsAndEachOther)
{
    const fs::path tree(DORN_TREE);
    const std::regex include("#include \"([^\"]+)\"");
    unsigned includes = 0;
    for (const auto& entry : fs::recursive_directory_iterator(tree / "Conformance")) {
        std::ifstream source(entry.path());
        for (std::string line; std::getline(source, line);) {
            std::smatch matched;
            if (!std::regex_search(line, matched, include)) {
                continue;
            }
            ++includes;
            EXPECT_TRUE(fs::exists(tree / "Conformance" / matched[1].str()) ||
                        fs::exists(tree / "Platform/include" / matched[1].str()) ||
                        fs::exists(tree / "Ddal/include" / matched[1].str()))
                << entry.path() << " includes " << matched[1];
        }
    }
    EXPECT_GT(includes, 100U);
}

} // namespace
} // namespace dorn::conformance
