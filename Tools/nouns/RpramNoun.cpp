// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Program.hpp"
#include "answers/RpramText.hpp"
#include "text/Values.hpp"
#include "waiting/TimeLimit.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

constexpr const char* awaited = "the board's storage";
constexpr const char* names = "dorn rpram list --names";
constexpr const char* fieldHelp = "Name or number of the field";

struct ListOptions {
    bool isAll = false;
    bool asJson = false;
    bool asNames = false;
};

struct FieldOptions {
    std::string field;
    std::string value;
    std::string text;
    bool asHistory = false;
    bool asJson = false;
};

std::vector<RpramEntry> readEntries(bool isAll)
{
    std::vector<RpramEntry> entries;
    for (const RpramField& field : rpramFields()) {
        RpramEntry entry{field, readRpram(field)};
        if (isAll || entry.value) {
            entries.push_back(std::move(entry));
        }
    }
    return entries;
}

Outcome list(const ListOptions& options, Console& console)
{
    if (options.asNames) {
        for (const RpramField& field : rpramFields()) {
            console.print(field.name + "\n");
        }
        return Outcome::Fine;
    }
    const std::vector<RpramEntry> entries = answerOf(awaited, [&options] { return readEntries(options.isAll); });
    if (options.asJson) {
        console.print(jsonText(jsonArray(entries, rpramJson)));
    } else if (!entries.empty()) {
        console.print(rpramTable(entries, console));
    } else {
        console.remark("no reset-persistent field has been written; --all lists them");
    }
    return Outcome::Fine;
}

Outcome printHistory(const RpramField& field, Console& console)
{
    for (const std::string& line : answerOf(awaited, [&field] { return rpramHistory(field); })) {
        console.print(printable(line) + "\n");
    }
    return Outcome::Fine;
}

Outcome get(const FieldOptions& options, Console& console)
{
    const RpramField& field = rpramFieldNamed(options.field);
    const RpramEntry entry{field, answerOf(awaited, [&field] { return readRpram(field); })};
    if (!entry.value) {
        throw Failure("field '" + field.name + "' has not been written");
    }
    if (options.asHistory) {
        return printHistory(field, console);
    }
    console.print(options.asJson ? jsonText(rpramJson(entry)) : rpramValueText(*entry.value) + "\n");
    return Outcome::Fine;
}

Outcome set(const FieldOptions& options)
{
    const RpramField& field = rpramFieldNamed(options.field);
    const auto value = parseUnsigned<std::uint32_t>("VALUE", options.value);
    if (options.text.find('\n') != std::string::npos) {
        throw UsageError("TEXT: a line feed in it would begin an earlier value");
    }
    answerOf(awaited, [&] { writeRpram(field, {value, options.text}); });
    return Outcome::Fine;
}

} // namespace

void addRpramNoun(Program& program)
{
    CLI::App& noun = program.addNoun("rpram", "The reset-persistent fields: what survives a reset of the unit");

    const auto listed = std::make_shared<ListOptions>();
    CLI::App& listVerb =
        program.addVerb(noun, {"list", "Lists the fields that have been written", "dorn rpram list --all"},
                        [listed](Console& console) { return list(*listed, console); });
    listVerb.add_flag("--all", listed->isAll, "Also those that have not been written");
    CLI::Option* const json = listVerb.add_flag("--json", listed->asJson, "Prints JSON");
    listVerb.add_flag("--names", listed->asNames, "Prints the names of all fields, one a line")->excludes(json);

    const auto got = std::make_shared<FieldOptions>();
    CLI::App& getVerb =
        program.addVerb(noun, {"get", "Prints what a field holds", "dorn rpram get ResetType --history", names},
                        [got](Console& console) { return get(*got, console); });
    getVerb.add_option("FIELD", got->field, fieldHelp)->required();
    CLI::Option* const history =
        getVerb.add_flag("--history", got->asHistory, "Prints the lines of its file, the newest value first");
    getVerb.add_flag("--json", got->asJson, "Prints JSON")->excludes(history);

    const auto stored = std::make_shared<FieldOptions>();
    CLI::App& setVerb = program.addVerb(noun, {"set", "Writes a field", "dorn rpram set user1 0x1F marked", names},
                                        [stored](Console&) { return set(*stored); });
    setVerb.add_option("FIELD", stored->field, fieldHelp)->required();
    setVerb.add_option("VALUE", stored->value, "New value, 0 to 4294967295 or 0xFFFFFFFF")->required();
    setVerb.add_option("TEXT", stored->text, "Text to remember with it; cut to what fits into a line of 99 characters");
}

} // namespace dorn::tool
