// SPDX-License-Identifier: MIT
/// @file Program.hpp
/// The command `dorn`: nouns, their verbs, and what happens between a command line and an exit status.
#pragma once

#include "Console.hpp"
#include "Outcome.hpp"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace dorn::tool {

/// What help says of a verb.
struct VerbText {
    std::string name;
    std::string description;
    std::string example; ///< one command line, as it would be typed
    /// Command line that lists, line by line, what its arguments can be, but for those that are files; for completion.
    std::string values = {};
    /// How many of its first arguments are files; the command line of `values` gets the first behind it.
    unsigned files = 0;
    /// Whether it runs on as a service does, and logs as one. Others say what goes wrong in their own words.
    bool isService = false;
};

/// VerbText::files of a verb all of whose arguments are files.
constexpr unsigned everyArgument = 0xFFFFFFFF;

/// Does what a verb is for. May throw Failure, UsageError, and whatever the host provider throws.
using Action = std::function<Outcome(Console&)>;

/// 1. Nouns add themselves and their verbs (Nouns.hpp), each with its options.
/// 2. run() takes a command line apart and calls the action of the verb that it names.
class Program {
public:
    Program();
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Adds a noun that has verbs.
    CLI::App& addNoun(const std::string& name, const std::string& description);
    /// Adds a part of a noun, which has verbs of its own: `dorn board link show`. addVerb() takes it for a noun.
    CLI::App& addPart(CLI::App& noun, const std::string& name, const std::string& description);
    /// Adds a verb to a noun. The action keeps alive what the options are stored in.
    CLI::App& addVerb(CLI::App& noun, const VerbText& text, Action action);
    /// Has a noun that stands alone do what one of its verbs does without options: `dorn gateway`.
    void setVerbOfBareNoun(CLI::App& noun, const CLI::App& verb);
    /// Adds a noun that is a verb at the same time.
    CLI::App& addCommand(const VerbText& text, Action action);

    Outcome run(const std::vector<std::string>& arguments, Console& console);

    /// All that has been added.
    const CLI::App& commandLine() const { return *m_commandLine; }
    /// VerbText::values of a verb.
    const std::string& valuesOf(const CLI::App& verb) const;
    /// VerbText::files of a verb.
    unsigned filesOf(const CLI::App& verb) const;

private:
    struct Verb {
        Action action;
        std::string values;
        unsigned files;
        bool isService;
    };

    Outcome carryOut(Console& console) const;
    void explainWrongUse(const std::string& reason, Console& console) const;
    const CLI::App& chosen() const;

    std::unique_ptr<CLI::App> m_commandLine;
    std::map<const CLI::App*, Verb> m_verbs;
};

/// Whether an option stands for itself alone.
bool isFlag(const CLI::Option& option);

/// "dorn rad set"
std::string commandOf(const CLI::App& command);

} // namespace dorn::tool
