// SPDX-License-Identifier: MIT
#include "Conformance.hpp"

#include "Finding.hpp"
#include "Options.hpp"
#include "Rules.hpp"
#include "Runner.hpp"
#include "SpawnedProcess.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <fnmatch.h>
#include <string>
#include <string_view>
#include <vector>

namespace dorn::conformance {
namespace {

constexpr int allKept = 0;
constexpr int someBroken = 1;
constexpr int wrongUse = 2;

bool isWanted(const Rule& rule)
{
    if (options().function && !doesExercise(rule, *options().function)) {
        return false;
    }
    if (options().patterns.empty()) {
        return true;
    }
    for (const std::string& pattern : options().patterns) {
        if (fnmatch(pattern.c_str(), std::string(rule.id).c_str(), 0) == 0) {
            return true;
        }
    }
    return false;
}

std::vector<Rule> wantedRules()
{
    std::vector<Rule> rules = allRules();
    std::erase_if(rules, [](const Rule& rule) { return !isWanted(rule); });
    if (rules.empty()) {
        throw WrongUse("no rule is called so; --list prints them all");
    }
    return rules;
}

int print(std::string_view text)
{
    return std::printf("%.*s", static_cast<int>(text.size()), text.data());
}

void list(const std::vector<Rule>& rules)
{
    for (const Rule& rule : rules) {
        print(rule.id);
        print("  [");
        print(rule.header);
        print(rule.effect == Effect::Destructive ? ", destructive]  " : "]  ");
        print(rule.functions);
        print("\n    ");
        print(rule.text);
        print("\n");
    }
}

/// Every line of a text behind a margin.
void printIndented(const std::string& text, const char* margin)
{
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        std::printf("%s%.*s\n", margin, static_cast<int>(end - begin), text.data() + begin);
        begin = end + 1;
    }
}

void print(const Rule& rule, const Trial& trial)
{
    constexpr std::array words{"kept   ", "BROKEN ", "skipped"};
    const std::string id(rule.id);
    std::printf("%s  %s\n", words[static_cast<std::size_t>(trial.finding.verdict)], id.c_str());
    if (trial.finding.verdict == Verdict::Broken) {
        printIndented("the rule:  " + std::string(rule.text), "         ");
        printIndented("what came: " + trial.finding.text, "         ");
        printIndented("read:      " + std::string(rule.header) + ", about " + std::string(rule.functions), "         ");
    } else if (trial.finding.verdict == Verdict::Skipped) {
        printIndented(trial.finding.text, "         ");
    }
    if (trial.finding.verdict == Verdict::Broken || options().isVerbose) {
        printIndented(trial.output, "         | ");
    }
    std::fflush(stdout);
}

Trial tryOne(const Rule& rule)
{
    if (rule.effect == Effect::Destructive && !options().isDestructive) {
        return {{Verdict::Skipped, "it changes the board: try it with --destructive"}, ""};
    }
    return options().isHere ? Trial{tryRule(rule), ""} : tryInChild(rule);
}

int tryAll(const std::vector<Rule>& rules)
{
    std::array<unsigned, 3> counts{};
    for (const Rule& rule : rules) {
        const Trial trial = tryOne(rule);
        print(rule, trial);
        ++counts[static_cast<std::size_t>(trial.finding.verdict)];
    }
    std::printf("%zu rules: %u kept, %u broken, %u skipped\n", rules.size(), counts[0], counts[1], counts[2]);
    return counts[1] == 0 ? allKept : someBroken;
}

/// The child's side of tryInChild().
int tryForParent(const std::string& id)
{
    const Rule* const rule = findRule(id);
    if (!rule) {
        throw WrongUse("there is no rule '" + id + "'");
    }
    endWithParent();
    if (options().report >= 0) {
        fcntl(options().report, F_SETFD, FD_CLOEXEC);
    }
    report(tryRule(*rule));
    return allKept;
}

int playRole(const std::string& name)
{
    const Role* const role = findRole(name);
    if (!role) {
        throw WrongUse("there is no role '" + name + "'");
    }
    endWithParent();
    startPlatform();
    role->play(options().roleArguments);
    return allKept;
}

int runOrThrow(int argc, char** argv)
{
    readOptions(argc, argv);
    if (options().role) {
        return playRole(*options().role);
    }
    if (options().rule) {
        return tryForParent(*options().rule);
    }
    if (options().isHelp) {
        print(helpText(argv[0]));
        return allKept;
    }
    const std::vector<Rule> rules = wantedRules();
    if (options().isList) {
        list(rules);
        return allKept;
    }
    return tryAll(rules);
}

} // namespace

int runConformance(int argc, char** argv)
{
    try {
        return runOrThrow(argc, argv);
    } catch (const WrongUse& wrong) {
        std::fprintf(stderr, "%s: %s\nTry '%s --help'.\n", argv[0], wrong.what(), argv[0]);
        return wrongUse;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
        return options().role ? someBroken : wrongUse;
    }
}

} // namespace dorn::conformance
