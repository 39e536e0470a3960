// SPDX-License-Identifier: MIT
// The table of the integrator's guide has every function of the seams, each with the rules of the suite.
#include "SuiteRun.hpp"

#include <fstream>
#include <gmock/gmock.h>
#include <regex>

namespace dorn::conformance {
namespace {

using Table = std::map<std::string, std::set<std::string>>;

/// Functions and rule ids of the rows "| `function` | caller | rule | `id`, `id` |".
Table guideTable()
{
    std::ifstream guide(DORN_TREE "/Docs/integrators-guide.md");
    const std::regex row("^\\| `([A-Za-z_0-9]+)` \\|([^|]+)\\|([^|]+)\\|([^|]+)\\|$");
    const std::regex ruleId("`([a-z0-9.-]+)`");
    Table table;
    for (std::string line; std::getline(guide, line);) {
        std::smatch matched;
        if (!std::regex_match(line, matched, row)) {
            continue;
        }
        EXPECT_FALSE(table.contains(matched[1])) << matched[1] << " has two rows";
        const std::string ids = matched[4];
        std::set<std::string>& rules = table[matched[1]];
        for (std::sregex_iterator id(ids.begin(), ids.end(), ruleId), end; id != end; ++id) {
            rules.insert((*id)[1]);
        }
    }
    return table;
}

class GuideTest : public SuiteTest {};

TEST_F(GuideTest, TableHasTheFunctionsAndRulesOfTheSuite)
{
    Table suite;
    for (const auto& [id, functions] : listedRules()) {
        for (const std::string& function : functions) {
            suite[function].insert(id);
        }
    }

    EXPECT_GT(suite.size(), 100U);
    EXPECT_THAT(guideTable(), ::testing::ContainerEq(suite));
}

TEST_F(GuideTest, CountOfTheRulesIsThatOfTheSuite)
{
    std::ifstream guide(DORN_TREE "/Docs/integrators-guide.md");
    const std::regex sentence("^([0-9]+) rules hold them\\..*");
    std::vector<std::string> counts;
    for (std::string line; std::getline(guide, line);) {
        std::smatch matched;
        if (std::regex_match(line, matched, sentence)) {
            counts.push_back(matched[1]);
        }
    }

    EXPECT_THAT(counts, ::testing::ElementsAre(std::to_string(listedRules().size())));
}

} // namespace
} // namespace dorn::conformance
