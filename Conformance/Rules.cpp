// SPDX-License-Identifier: MIT
#include "Rules.hpp"

#include <algorithm>
#include <array>

namespace dorn::conformance {
namespace {

constexpr std::array ruleTables{
    startupRules, memoryRules, semaphoreRules, euRules,      addressRules,  messageRules, receiveRules,
    timerRules,   fileRules,   parameterRules, tagRules,     observerRules, logRules,     troubleRules,
    xmlRules,     driverRules, identityRules,  rapidIoRules, flashRules,    resetRules,
};
constexpr std::array roleTables{
    startupRoles, addressRoles, messageRoles, parameterRoles, tagRoles, observerRoles,
};

template <class Entry, class Tables>
std::vector<Entry> joined(const Tables& tables)
{
    std::vector<Entry> all;
    for (const auto& table : tables) {
        const auto entries = table();
        all.insert(all.end(), entries.begin(), entries.end());
    }
    return all;
}

} // namespace

std::vector<Rule> allRules()
{
    return joined<Rule>(ruleTables);
}

const Rule* findRule(std::string_view id)
{
    static const std::vector<Rule> rules = allRules();
    const auto found = std::ranges::find(rules, id, &Rule::id);
    return found == rules.end() ? nullptr : &*found;
}

const Role* findRole(std::string_view name)
{
    static const std::vector<Role> roles = joined<Role>(roleTables);
    const auto found = std::ranges::find(roles, name, &Role::name);
    return found == roles.end() ? nullptr : &*found;
}

bool doesExercise(const Rule& rule, std::string_view function)
{
    std::string_view rest = rule.functions;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(' '), rest.size());
        if (rest.substr(0, end) == function) {
            return true;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
}

} // namespace dorn::conformance
